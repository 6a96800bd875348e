// The host's control file: one `Name = value` per line. orva writes it, the environment
// object reads it.
#pragma once

#include <string>
#include <utility>
#include <vector>

// Entries of the host control file.
inline constexpr const char* kOptNameStaFile = "NameStaFile";
inline constexpr const char* kOptNameWrkDir = "NameWrkDir";
inline constexpr const char* kOptNameScrDir = "NameScrDir";
inline constexpr const char* kOptNameScrExt = "NameScrExt";
inline constexpr const char* kOptPageWidth = "PageWidth";
inline constexpr const char* kOptPageSize = "PageSize";
inline constexpr const char* kOptModelFile = "ModelFile";
inline constexpr const char* kOptModelFormat = "ModelFormat";
inline constexpr const char* kOptDataFile = "DataFile";
inline constexpr const char* kOptSolutionFile = "SolutionFile";
inline constexpr const char* kOptInputName = "InputName";
inline constexpr const char* kOptScaleSource = "ScaleSource";
inline constexpr const char* kOptInstanceFile = "InstanceFile";
inline constexpr const char* kOptPhaseFile = "PhaseFile";

using HostOptions = std::vector<std::pair<std::string, std::string>>;

// Parses a control file. On failure returns false with `error` naming the file, the line and
// what is wrong (an unknown entry, a line without "=", a malformed integer).
bool readHostControlFile(const std::string& path, HostOptions& options, std::string& error);
bool writeHostControlFile(const std::string& path, const HostOptions& options,
                          std::string& error);
