// Item selection: which equations and variables of the model the requests of a section meet.
// matchPattern compares one pattern with one name; matchVarRequests and matchEquRequests test
// one item against a list; resolveRequests runs the whole model through both lists once and
// tells the user which requests met nothing.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/host.h"
#include "request/selection_tables.h"
#include "base/notation.h"

// True when `pattern` (a stored, normalized pattern) meets `text` (a model name, compared by
// its first NAME_LEN characters in capitals). "*" ends a pattern with a match, "?" passes one
// position or the end of the name, a quoted pattern is compared exactly, a blank one meets all.
// Allocates nothing.
bool matchPattern(std::string_view pattern, std::string_view text);

// An item under test: its symbol name and its first `dim` labels (NAME_LEN characters each).
// An item named from the dictionary carries its labels' UEL numbers instead of their text,
// which a match fetches only for a pattern that reads it.
struct ItemName {
  std::string_view symbol;
  TextTable labels;  // width NAME_LEN, MAX_SYMBOL_DIM entries; not filled when `uels` is set
  int32_t dim = 0;
  const int32_t* uels = nullptr;
  ovdHandle dictionary = nullptr;  // gives the text of `uels`
};

// The result of testing one item against a list.
struct ItemMatch {
  int32_t selected = 0;
  int32_t directCode = 0;  // direct of the last request met that had one
  int32_t crossCode = 0;   // cross of the last request met that had one
};

// Which requests to test and when to stop.
inline constexpr int32_t SCOPE_ALL = 1;    // all, every request met is marked
inline constexpr int32_t SCOPE_FIRST = 2;  // all, up to the first match
inline constexpr int32_t SCOPE_ONE = 3;    // request `requestIndex` only

// What a walk over many items keeps of one list: which requests' symbol patterns meet the
// symbol of the items at hand (a symbol is matched once, not once per item), and which element
// patterns are plain names, met by one name only, so that an item's label is compared with them
// by its normal form, made once per item, instead of by matching the pattern. Normal forms are
// numbered as they are met: a plain pattern and each UEL get the number of theirs, so that an
// item named by UEL numbers is compared by numbers and its labels' text is never fetched.
// A few symbols are kept, for walks whose symbols take turns (the halves of ranged rows).
struct SymbolMemo {
  struct Entry {
    std::vector<int32_t> met;  // the requests whose symbol pattern meets `symbol`, ascending
    // The same requests split by their first element pattern: those whose first pattern is
    // plain, by its form number and request, and the others (ascending), which an item's first
    // label cannot rule out by number alone.
    std::vector<std::pair<int32_t, int32_t>> byFirstForm;
    std::vector<int32_t> open;
    char symbol[NAME_LEN] = {};
    int32_t length = -1;  // -1: no symbol yet
  };
  static constexpr size_t kSymbols = 8;
  std::array<Entry, kSymbols> entries;
  size_t next = 0;             // the entry that the next new symbol takes
  size_t last = 0;             // the entry met last
  std::vector<int32_t> patternForm;  // per request and position, a plain pattern's form number
  std::vector<int32_t> uelForm;      // per UEL number, its label's form number; 0 not made yet
  std::unordered_map<std::string, int32_t> formNumbers;  // normal forms met, by their text
};

// Tests an item against the variable list (scope, requestIndex as above); marks `found` of
// every request met. An empty list selects every column (directCode 3) unless DISPLAYCR or
// POSTOPT have equation requests. `memo` may be null.
ItemMatch matchVarRequests(const ItemName& item, const RequestLists& lists, int32_t matchScope,
                           int32_t requestIndex, int32_t procIndex, SymbolMemo* memo);

// The same against the equation list. An empty list gives directCode 1 outside DISPLAYCR and
// POSTOPT, with selected 0.
ItemMatch matchEquRequests(const ItemName& item, const RequestLists& lists, int32_t matchScope,
                           int32_t requestIndex, int32_t procIndex, SymbolMemo* memo);

// What resolveRequests reads of the run; `run` keeps the memo of the last column named.
struct SelectionContext {
  RunContext* run = nullptr;
  int32_t procIndex = 0;
  int32_t rowCount = 0;
  int32_t colCount = 0;
  ovdHandle dictionary = nullptr;
  Channel* statusChannel = nullptr;
  Channel* logChannel = nullptr;
};

// What resolveRequests found for each column and row (1-based), for a procedure that needs it
// again.
struct ItemMatches {
  std::vector<ItemMatch> col, row;
};

// Runs every column and row through the lists once: marks found, fills rowSelected (cleared
// by the caller: 0, the directCode of the last request a selected row met, or -1 for all rows
// when a procedure beyond POSTOPT has no equation request), then writes a line for each request
// that met nothing. With `found`, keeps each item's match there, on both sides.
void resolveRequests(const SelectionContext& context, const RequestLists& lists,
                     Vec1<int32_t> rowSelected, ItemMatches* found = nullptr);

// Item names from the dictionary, into a reusable buffer of labels; the symbol's name is
// looked up again only when the symbol changes.
struct ItemNameBuffer {
  std::string symbol;
  int32_t symbolNumber = -1;
  int32_t uels[MAX_SYMBOL_DIM] = {};
  ItemName item;
};
const ItemName& columnName(RunContext& run, ovdHandle dictionary, int32_t col,
                           ItemNameBuffer& buffer);
const ItemName& rowName(ovdHandle dictionary, int32_t row, ItemNameBuffer& buffer);

// The names of one walk's items against one side of the lists: an item is named only when some
// of the first `count` requests of the side reads names. A list without requests, or whose
// requests meet every item (a symbol pattern "*" or blank, no element patterns), gives every
// item the same empty name, and a walk over a million items names none.
struct ItemNamer {
  ItemNamer(const SelectionSide& side, int32_t count);
  const ItemName& column(RunContext& run, ovdHandle dictionary, int32_t col);
  const ItemName& row(ovdHandle dictionary, int32_t row);

  bool needed;
  ItemNameBuffer buffer;
};

// The selection context for a procedure of this run.
SelectionContext selectionContextOf(RunContext& run);
