// The run context: the plain record of one run that every procedure is handed. It carries what a
// procedure reads of the run (sizes, objective, infinities, page width, scaling, control values,
// host handles, channels) and the memos and stops it reaches through it (lastColSymbol, the
// findings of ANALYSIS for the scratch file, stopRun). The run layer owns the one instance;
// nothing below it names that instance.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "base/notation.h"

// The host's objects, opaque here: the run holds their handles and never looks inside.
struct OvpObject;
struct OveObject;
struct OvmObject;
struct OvdObject;

inline constexpr int32_t MAX_SYMBOL_DIM = 10;
inline constexpr int32_t PICTURE_WIDTH = 120;
inline constexpr int32_t MAX_LINE = 375;
inline constexpr int32_t NAME_LEN = 31;
inline constexpr int32_t LABELS_LEN = 310;
inline constexpr int32_t COMMENT_CAPACITY = 50;
inline constexpr int32_t COMMENT_LEN = 80;
inline constexpr int32_t PROBLEM_KINDS = 28;

// Reports are laid out for page widths of 50 to 254 characters.
inline constexpr int32_t MIN_PAGE_WIDTH = 50;
inline constexpr int32_t MAX_PAGE_WIDTH = 254;
inline int32_t heldPageWidth(int32_t width) {
  return width < MIN_PAGE_WIDTH ? MIN_PAGE_WIDTH : width > MAX_PAGE_WIDTH ? MAX_PAGE_WIDTH : width;
}

// Row types as MODRAKE reads them from the host (ovmGetEquTypeOne), and the item classes of a
// finding.
enum RowType : int32_t { ROW_E = 0, ROW_G = 1, ROW_L = 2, ROW_N = 3 };
inline bool isRowType(int32_t type) { return type >= ROW_E && type <= ROW_N; }
enum class ItemClass : int32_t { None, Variable, Equation };

inline constexpr double PLUS_INF = 3e+300;
inline constexpr double MINUS_INF = 4e+300;

struct RunContext {
  int32_t rowCount = 0;
  int32_t colCount = 0;
  int32_t nzCount = 0;
  int32_t objVar = 0;   // 1-based, 0 for none
  int32_t objRow = 0;   // 1-based, 0 for none
  bool minimizing = true;
  double plusInf = PLUS_INF;
  double minusInf = MINUS_INF;
  int32_t useScale = 0;
  int32_t procIndex = 0;
  int32_t pageWidth = 0;
  int32_t pageWidthRequest = 0;
  int32_t pageSize = 0;

  // The eight control records.
  bool solutionExpected = false;
  int32_t colSelCapacity = 0;
  int32_t rowSelCapacity = 0;
  int32_t icblock = 0;
  int32_t irblock = 0;
  int32_t scaleRequest = 0;
  int32_t largeLevelExp = 0;
  int32_t largeMarginalExp = 0;

  // Comments waiting for their echo; only the first COMMENT_CAPACITY are kept.
  int32_t commentCount = 0;
  std::array<std::string, COMMENT_CAPACITY> commentLines;

  int32_t analysisProblemsPending = 0;
  int32_t analysisProblemCount = 0;
  std::array<int32_t, PROBLEM_KINDS> analysisProblemTally{};
  double objectiveScale = 1.0;
  // The model status that the solution step hands to the post-solution engine: 0 when no
  // solution was read, else the host's.
  int32_t modelStatus = 0;

  std::string currentKeyword;  // at most NAME_LEN characters, blank-padded
  std::string requestLine;
  std::string requestPath;
  std::string controlPath;
  std::string analysisPath;
  std::string hostMessage;
  std::string auditLine;

  // Host handles.
  OvpObject* auditObject = nullptr;
  OveObject* environment = nullptr;
  OvmObject* model = nullptr;
  OvdObject* dictionary = nullptr;

  // Channels: status file and log (standard output) for reports; the three files read or
  // written by the run.
  Channel statusChannel;
  Channel logChannel;
  std::FILE* requestChannel = nullptr;
  std::FILE* controlChannel = nullptr;
  std::FILE* analysisChannel = nullptr;

  // Symbol number of the column last named by varItemLabel or varItemLabelParts.
  int32_t lastColSymbol = 0;
  // Item class of the last item written to the analysis scratch file.
  ItemClass lastItemClass = ItemClass::None;
};

// The 3-character codes that reports print: equation types by RowType, and
// variable classes (1 to 3 sign class of a continuous variable, else ovmGetVarTypeOne + 3).
inline constexpr std::array<const char*, 4> kEquTypeCodes = {"=E=", "=G=", "=L=", "=N="};
inline constexpr std::array<const char*, 10> kVarTypeCodes = {">=0", "<=0", "<0>", "BIN", "INT",
                                                              "SOS", "SOS", "spe", "spe", "spe"};

// Ends the process: flushes the log, closes the status channel, exits with `exitCode`.
[[noreturn]] void stopRun(RunContext& run, int exitCode);
