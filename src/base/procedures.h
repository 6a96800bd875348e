// The nine procedures as one table: keyword, index, the work-array phase each lays out, the
// scaling rule, whether it reads its own section of the request file, and how its titles stand.
// The request loop runs procedures from this table and orva reads request files with it; the
// run layer binds each row to the routine that runs it.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// Procedure indices, as the request loop numbers them.
enum class Proc : int32_t {
  DisplayCR = 1,
  PostOpt = 2,
  Picture = 3,
  BlockPic = 4,
  Analysis = 5,
  BlockList = 6,
  MatchIt = 7,
  NonOpt = 8,
  Advisory = 9,
};
inline constexpr int32_t PROCEDURE_COUNT = 9;

// Layouts of the work array. Largest sizes the array for all of them at start-up; Solution is
// the first eleven regions of Display, at the same starts.
enum class Phase : int32_t {
  Largest = 0,
  Solution = 1,
  Display = 2,
  Picture = 3,
  BlockPic = 4,
  Analysis = 5,
  BlockList = 6,
  MatchIt = 7,
};
inline constexpr int32_t PHASE_COUNT = 7;

// When a procedure asks for the model's scale factors: at scaleRequest 1 or more, or at 0 or more.
enum class ScaleRule { AboveZero, FromZero };

// Blank status lines around the titles and the comment echo: none, one behind the titles
// (before the comments), or one behind the comments.
enum class TitleLayout { Plain, BlankAfterTitles, BlankAfterComments };

struct ProcedureRow {
  Proc proc;
  std::string_view keyword;
  Phase phase;          // the layout the procedure works in
  bool solutionStep;    // lays out Solution first and reads the solution there
  bool loadsSolution;   // needs the solution of the model (orva solves for it)
  ScaleRule scaling;
  bool readsSection;    // reads the lines of its section up to the next keyword
  int32_t titleBlanks;  // blanks behind the keyword in its three title lines
  TitleLayout titles;
};

inline constexpr std::array<ProcedureRow, PROCEDURE_COUNT> kProcedures = {{
    {Proc::DisplayCR, "DISPLAYCR", Phase::Display, true, false, ScaleRule::AboveZero, true, 0,
     TitleLayout::Plain},
    {Proc::PostOpt, "POSTOPT", Phase::Display, true, true, ScaleRule::FromZero, true, 0,
     TitleLayout::Plain},
    {Proc::Picture, "PICTURE", Phase::Picture, false, false, ScaleRule::AboveZero, true, 2,
     TitleLayout::Plain},
    {Proc::BlockPic, "BLOCKPIC", Phase::BlockPic, false, false, ScaleRule::AboveZero, false, 1,
     TitleLayout::Plain},
    {Proc::Analysis, "ANALYSIS", Phase::Analysis, false, false, ScaleRule::FromZero, false, 1,
     TitleLayout::BlankAfterComments},
    {Proc::BlockList, "BLOCKLIST", Phase::BlockList, false, false, ScaleRule::AboveZero, false, 1,
     TitleLayout::BlankAfterTitles},
    {Proc::MatchIt, "MATCHIT", Phase::MatchIt, false, false, ScaleRule::AboveZero, true, 1,
     TitleLayout::Plain},
    {Proc::NonOpt, "NONOPT", Phase::Display, true, true, ScaleRule::FromZero, true, 0,
     TitleLayout::Plain},
    {Proc::Advisory, "ADVISORY", Phase::Display, true, false, ScaleRule::FromZero, true, 0,
     TitleLayout::Plain},
}};

inline constexpr const ProcedureRow& procedureRow(Proc proc) {
  return kProcedures[static_cast<size_t>(static_cast<int32_t>(proc) - 1)];
}

// The procedure whose keyword, plain or in its $ form, begins `line` (a normalized request
// line); nullptr for any other line.
const ProcedureRow* procedureOfLine(std::string_view line);
