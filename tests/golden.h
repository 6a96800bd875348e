// Whole expected listings, written by hand, as text files under tests/golden/, and the reading
// of files for the tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

// The audit line as the host gives it for this system, 75 characters: the value of @AUDIT@.
std::string auditLine();

// The lines of a file, without their line ends.
std::vector<std::string> readLines(const std::filesystem::path& path);

// The lines of a text, without their line ends.
std::vector<std::string> splitLines(const std::string& text);

// The whole text of a file.
std::string readFile(const std::filesystem::path& path);

// One case of a case file: what is expected, and the text of the input file that gives it.
struct FileCase {
  std::string expected, text;
};

// The cases of tests/data/NAME. A case opens with a line "### EXPECTED"; the lines up to the
// next such line, each ended by a newline, are its text.
std::vector<FileCase> readCases(const std::string& name);

// `text` with each @KEY@ replaced by its value in `vars`.
std::string substitute(std::string text, const std::map<std::string, std::string>& vars);

// True when the lines of the golden file tests/golden/NAME stand in `lines` one after another.
::testing::AssertionResult containsGolden(const std::vector<std::string>& lines,
                                          const std::string& name);

// Compares `lines` with the golden file tests/golden/NAME line for line, after each @KEY@ of the
// file is replaced by its value in `vars`; a failure names the first line that differs. With
// `prefix`, only the lines the golden file holds are compared, and more may follow.
::testing::AssertionResult matchesGolden(const std::vector<std::string>& lines,
                                         const std::string& name,
                                         const std::map<std::string, std::string>& vars = {},
                                         bool prefix = false);
