// The report notation: every report line is written from a template such as
// "(1X,A16,1X,A3,1X,5I5,3X,F10.4,1X,F10.4)" and its values, or as a free-form line.
//
// Template items: 'text', Iw, Fw.d, Ew.d, Aw, A, nX, /, repeat counts nIw nFw.d nEw.d nAw nA,
// and groups n(...). An outer pair of parentheses writes nothing.
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// One value handed to a template: an integer, a real or a text.
struct FmtValue {
  enum class Kind { Int, Real, Text };
  Kind kind;
  int64_t i = 0;
  double r = 0.0;
  std::string_view s;

  FmtValue(int v) : kind(Kind::Int), i(v) {}
  FmtValue(long v) : kind(Kind::Int), i(v) {}
  FmtValue(long long v) : kind(Kind::Int), i(v) {}
  FmtValue(double v) : kind(Kind::Real), r(v) {}
  FmtValue(std::string_view v) : kind(Kind::Text), s(v) {}
  FmtValue(const char* v) : kind(Kind::Text), s(v) {}
  FmtValue(const std::string& v) : kind(Kind::Text), s(v) {}
};

// A sink of report lines: a file (status file, standard output), or, for tests, a list of
// lines in memory.
struct Channel {
  std::FILE* file = nullptr;
  std::vector<std::string>* lines = nullptr;
};

// The lines a template gives for these values, without line ends.
std::vector<std::string> formatTemplate(std::string_view tmpl, std::span<const FmtValue> values);
std::vector<std::string> formatTemplate(std::string_view tmpl,
                                        std::initializer_list<FmtValue> values = {});

// Writes the lines of a template to a channel.
void writeLine(Channel& channel, std::string_view tmpl, std::span<const FmtValue> values);
void writeLine(Channel& channel, std::string_view tmpl,
               std::initializer_list<FmtValue> values = {});

// A free-form line: one blank, then each item at its full length (numbers in free form).
std::string formatFree(std::initializer_list<FmtValue> items);
void writeFree(Channel& channel, std::initializer_list<FmtValue> items = {});

// Writes one finished line as it stands.
void writeRaw(Channel& channel, std::string_view line);

// False for a template that the interpreter cannot read to its end (such a template is written
// up to its fault).
bool templateIsWellFormed(std::string_view tmpl);

// When true (the default), a malformed template or a text handed to I, F or E fails an
// assertion in debug builds. Tests that feed faulty templates on purpose clear it.
extern bool notationStrict;

// A message meant for both the log and the status file is written twice with the same words,
// one writeLine or writeFree for each channel, in the order its report gives; a line is never
// formatted once and copied.
