// The selection tables of one section: the requests read from it, one family for variables and
// one for equations, as views of their regions. readRequestSection fills them, the matching
// routines read them and mark each request that an item meets.
#pragma once

#include <cstdint>
#include <string_view>

#include "model/views.h"
#include "base/procedures.h"
#include "base/run_context.h"

// The procedures that read a section, as procIndex values.
inline constexpr int32_t PROC_DISPLAYCR = static_cast<int32_t>(Proc::DisplayCR);
inline constexpr int32_t PROC_POSTOPT = static_cast<int32_t>(Proc::PostOpt);
inline constexpr int32_t PROC_PICTURE = static_cast<int32_t>(Proc::Picture);
inline constexpr int32_t PROC_MATCHIT = static_cast<int32_t>(Proc::MatchIt);
inline constexpr int32_t PROC_NONOPT = static_cast<int32_t>(Proc::NonOpt);
inline constexpr int32_t PROC_ADVISORY = static_cast<int32_t>(Proc::Advisory);

// defaultMode of readRequestSection: PICTURE and the post-solution engine, and MATCHIT.
inline constexpr int32_t DEFAULT_SHOW = 0;
inline constexpr int32_t DEFAULT_COUNT = 3;

// Values of varFilter and equFilter, and so of a request's direct and cross slots.
inline constexpr int32_t FILTER_ON = 1;    // in solution, binding; in MATCHIT: list each item
inline constexpr int32_t FILTER_OFF = 2;   // not in solution, non-binding
inline constexpr int32_t FILTER_NONE = 3;  // no filter; in MATCHIT: count only

// Slots of colSelSpec[k] and rowSelSpec[k]; slots 3 and 4 stay 0.
inline constexpr int32_t SPEC_DIRECT = 1;
inline constexpr int32_t SPEC_CROSS = 2;
inline constexpr int32_t SPEC_FOUND = 5;
inline constexpr int32_t SPEC_SLOTS = 5;

// The text of a request that no model item can meet: names are compared in capitals.
inline constexpr std::string_view NOWAY_TEXT = "noway&";

// The requests of one side. Request k (1..capacity): raw line, symbol pattern, element
// patterns 1..MAX_SYMBOL_DIM of NAME_LEN characters each, number of positions given, and the
// slots of selSpec(k, SPEC_...).
struct SelectionSide {
  int32_t capacity = 0;
  TextTable raw;         // capacity x MAX_LINE
  TextTable symbol;      // capacity x NAME_LEN
  TextTable labels;      // capacity x LABELS_LEN
  Vec1<int32_t> dim;     // capacity
  Table2<int32_t> selSpec;  // capacity x SPEC_SLOTS

  std::string_view label(int32_t k, int32_t p) const {
    return labels.view(k).substr(static_cast<size_t>((p - 1) * NAME_LEN),
                                 static_cast<size_t>(NAME_LEN));
  }
  char* labelAt(int32_t k, int32_t p) const { return labels.at(k) + (p - 1) * NAME_LEN; }
};

// Both sides and their counts, as the calling procedure holds them.
struct RequestLists {
  SelectionSide col;
  SelectionSide row;
  int32_t varCount = 0;
  int32_t equCount = 0;
};

// The request lists over the ten selection tables of a procedure's regions.
template <class Regions>
RequestLists requestListsOf(const Regions& r, int32_t colSelCapacity, int32_t rowSelCapacity) {
  RequestLists lists;
  lists.col = {colSelCapacity > 0 ? colSelCapacity : 0,
               r.colSelRaw,
               r.colSelSymbol,
               r.colSelLabels,
               r.colSelDim,
               r.colSelSpec};
  lists.row = {rowSelCapacity > 0 ? rowSelCapacity : 0,
               r.rowSelRaw,
               r.rowSelSymbol,
               r.rowSelLabels,
               r.rowSelDim,
               r.rowSelSpec};
  return lists;
}

// Values of RequestFlags::verbosity set by NONOPT's words.
inline constexpr int32_t VERBOSITY_VERBOSE = 1;
inline constexpr int32_t VERBOSITY_IDENTIFY = 2;

// Modifiers of a section. The reader sets the filters to FILTER_NONE at its start and leaves
// intersect and verbosity as the caller gave them.
struct RequestFlags {
  int32_t intersect = 0;
  int32_t verbosity = 0;
  int32_t varFilter = FILTER_NONE;
  int32_t equFilter = FILTER_NONE;
};
