#include "request/item_selection.h"

#include <algorithm>
#include <cstring>

#include "model/blocks.h"
#include "request/section_reader.h"

namespace {

constexpr int32_t kName = NAME_LEN;

bool isQuote(char c) { return c == '"' || c == '\''; }

// A model name as requests are compared with it: leading blanks and apostrophes go, control
// characters count as blanks, letters become capitals; NAME_LEN characters, blank-padded.
// A name's character as names are compared: control characters blank, letters upper case.
char normalizedChar(char c) {
  if (static_cast<unsigned char>(c) < 21) return ' ';
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Where a name's text begins: past leading blanks and quotes.
size_t nameBegin(std::string_view text) {
  size_t p = 0;
  while (p < text.size() && (text[p] == ' ' || text[p] == '\'')) ++p;
  return p;
}

void normalizeName(std::string_view text, char (&out)[kName]) {
  size_t p = nameBegin(text);
  int32_t q = 0;
  for (; p < text.size() && q < kName; ++p, ++q) out[q] = normalizedChar(text[p]);
  std::fill(out + q, out + kName, ' ');
}

// Length without trailing blanks.
int32_t usedLength(const char* s, int32_t n) {
  while (n > 0 && s[n - 1] == ' ') --n;
  return n;
}

// A quoted pattern against a normalized name: both without their quotes, compared exactly.
bool matchQuoted(const char* pattern, int32_t patternLength, const char* name) {
  const char* p = pattern + 1;
  int32_t pn = patternLength - 1;
  if (pn > 0 && isQuote(p[pn - 1])) --pn;
  const char* t = name;
  int32_t tn = usedLength(name, kName);
  if (tn > 0 && isQuote(t[0])) {
    ++t;
    --tn;
  }
  if (tn > 0 && isQuote(t[tn - 1])) --tn;
  return pn == tn && std::equal(p, p + pn, t);
}

// Whether one item's labels meet the element patterns of request k.
bool labelsMeet(const SelectionSide& side, int32_t k, const ItemName& item) {
  const int32_t n = std::min(side.dim[k], item.dim);
  for (int32_t p = 1; p <= n; ++p) {
    if (!matchPattern(side.label(k, p), item.labels.view(p))) return false;
  }
  return true;
}

// The memo's marks for the item's symbol, one per request: refreshed when the symbol changes,
// so that a walk over the items of one symbol matches its patterns once.
const uint8_t* symbolMarks(const SelectionSide& side, int32_t count, const ItemName& item,
                           SymbolMemo& memo) {
  const std::string_view s = item.symbol.substr(0, kName);
  const int32_t len = static_cast<int32_t>(s.size());
  if (memo.length != len || std::memcmp(memo.symbol, s.data(), s.size()) != 0 ||
      static_cast<int32_t>(memo.met.size()) < count) {
    memo.met.assign(static_cast<size_t>(std::max(count, 0)), 0);
    for (int32_t r = 1; r <= count; ++r) {
      memo.met[static_cast<size_t>(r - 1)] = matchPattern(side.symbol.view(r), s) ? 1 : 0;
    }
    std::memcpy(memo.symbol, s.data(), s.size());
    memo.length = len;
  }
  return memo.met.data();
}

ItemMatch matchList(const ItemName& item, const SelectionSide& side, int32_t count,
                    int32_t matchScope, int32_t requestIndex, SymbolMemo* memo) {
  ItemMatch m;
  int32_t first = 1, last = count;
  if (matchScope == SCOPE_ONE) first = last = requestIndex;
  if (first < 1 || last > count) return m;
  const bool stopAtFirst = matchScope == SCOPE_FIRST;
  const uint8_t* marks = memo != nullptr ? symbolMarks(side, count, item, *memo) : nullptr;
  for (int32_t k = first; k <= last; ++k) {
    const bool symbolMet = marks != nullptr ? marks[k - 1] != 0
                                            : matchPattern(side.symbol.view(k), item.symbol);
    if (!symbolMet) continue;
    if (item.dim != 0 && !labelsMeet(side, k, item)) continue;
    side.selSpec(k, SPEC_FOUND) = 1;
    if (side.selSpec(k, SPEC_DIRECT) > 0) m.directCode = side.selSpec(k, SPEC_DIRECT);
    if (side.selSpec(k, SPEC_CROSS) > 0) m.crossCode = side.selSpec(k, SPEC_CROSS);
    m.selected = 1;
    if (stopAtFirst) return m;
  }
  return m;
}

constexpr std::string_view kHint =
    "(8X,'Remember you must use set elements, not set',1X,'names to select',/,8X,"
    "'Also quoted items are matched exactly (wild cards are not considered)',/,16X,"
    "' and both beginning and ending ','quotes must be entered')";

// The lines for the requests of one list that met nothing.
void reportUnmet(const SelectionContext& context, const SelectionSide& side, int32_t count,
                 std::string_view notFound, bool& hintGiven) {
  for (int32_t k = 1; k <= count; ++k) {
    if (side.selSpec(k, SPEC_FOUND) >= 1) continue;
    const std::string_view raw = side.raw.view(k);
    const std::string_view first = raw.substr(0, kName);
    const int32_t code = isKnownRequestWord(first);
    if (code == WORD_NOWAY) continue;
    if (code == WORD_UNKNOWN) {
      const std::string_view text =
          raw.substr(0, static_cast<size_t>(usedLength(raw.data(), MAX_LINE)));
      writeLine(*context.logChannel, notFound, {text});
      writeLine(*context.statusChannel, notFound, {text});
      if (!hintGiven) writeLine(*context.statusChannel, kHint);
      hintGiven = true;
    } else {
      constexpr std::string_view t = "(1X,/,5X,'## Input not valid for this procedure ',A)";
      writeLine(*context.logChannel, t, {first});
      writeLine(*context.statusChannel, t, {first});
    }
  }
}

}  // namespace

bool matchPattern(std::string_view pattern, std::string_view text) {
  // Most patterns of a list differ from a name at the first character. A pattern that begins
  // with a plain character meets nothing whose normalized first character differs: that is
  // told without normalizing the whole name.
  const char lead0 = pattern.empty() ? ' ' : pattern[0];
  if (lead0 != ' ' && lead0 != '*' && lead0 != '?' && !isQuote(lead0)) {
    const size_t p = nameBegin(text);
    if ((p < text.size() ? normalizedChar(text[p]) : ' ') != lead0) return false;
  }
  char name[kName];
  normalizeName(text, name);
  char pat[kName];
  const size_t pl = std::min<size_t>(pattern.size(), kName);
  std::copy_n(pattern.data(), pl, pat);
  std::fill(pat + pl, pat + kName, ' ');
  const int32_t patternLength = usedLength(pat, kName);

  if ((patternLength == 1 && pat[0] == '*') || std::equal(pat, pat + kName, name)) return true;
  if (patternLength > 0 && isQuote(pat[0])) return matchQuoted(pat, patternLength, name);

  int32_t lead = 0;
  while (lead < kName && pat[lead] == ' ') ++lead;
  if (lead == kName) return true;
  for (int32_t q = 0; q < kName; ++q) {
    const char pc = lead + q < kName ? pat[lead + q] : ' ';
    const char tc = name[q];
    if (pc == '*') return true;
    if (pc == '?') continue;
    if (pc == ' ' && tc == ' ') return true;
    if (pc != tc) return false;
  }
  return true;
}

ItemMatch matchVarRequests(const ItemName& item, const RequestLists& lists, int32_t matchScope,
                           int32_t requestIndex, int32_t procIndex, SymbolMemo* memo) {
  if (lists.varCount < 1) {
    ItemMatch m;
    if (lists.equCount < 1 || procIndex > PROC_POSTOPT) {
      m.selected = 1;
      m.directCode = FILTER_NONE;
    }
    return m;
  }
  return matchList(item, lists.col, lists.varCount, matchScope, requestIndex, memo);
}

ItemMatch matchEquRequests(const ItemName& item, const RequestLists& lists, int32_t matchScope,
                           int32_t requestIndex, int32_t procIndex, SymbolMemo* memo) {
  if (lists.equCount < 1) {
    ItemMatch m;
    if (procIndex > PROC_POSTOPT) m.directCode = FILTER_ON;
    return m;
  }
  return matchList(item, lists.row, lists.equCount, matchScope, requestIndex, memo);
}

const ItemName& columnName(RunContext& run, ovdHandle dictionary, int32_t col,
                           ItemNameBuffer& buffer) {
  const TextTable labels{buffer.labelText, NAME_LEN, MAX_SYMBOL_DIM};
  int32_t symbolLength = 0, dim = 0, isNewSymbol = 0;
  varItemLabelParts(run, dictionary, col, buffer.symbol, symbolLength, labels, dim, isNewSymbol);
  buffer.item = {buffer.symbol, labels, std::clamp(dim, 0, MAX_SYMBOL_DIM)};
  return buffer.item;
}

const ItemName& rowName(ovdHandle dictionary, int32_t row, ItemNameBuffer& buffer) {
  const TextTable labels{buffer.labelText, NAME_LEN, MAX_SYMBOL_DIM};
  int32_t textLength = 0, dim = 0;
  equItemLabel(dictionary, row, buffer.symbol, textLength, LABEL_PARTS, labels, dim, MAX_LINE);
  buffer.item = {buffer.symbol, labels, std::clamp(dim, 0, MAX_SYMBOL_DIM)};
  return buffer.item;
}

void resolveRequests(const SelectionContext& context, const RequestLists& lists,
                     Vec1<int32_t> rowSelected) {
  bool hintGiven = false;
  ItemNameBuffer buffer;
  if (lists.varCount > 0) {
    SymbolMemo memo;
    for (int32_t j = 1; j <= context.colCount; ++j) {
      matchVarRequests(columnName(*context.run, context.dictionary, j, buffer), lists, SCOPE_ALL, 0,
                       context.procIndex, &memo);
    }
    reportUnmet(context, lists.col, lists.varCount,
                "(1X,/,5X,'## Did not find Requested Variable ',A)", hintGiven);
  }
  if (lists.equCount < 1 && context.procIndex > PROC_POSTOPT) {
    rowSelected.fill(-1);
    return;
  }
  if (lists.equCount < 1) return;  // no row can be selected
  SymbolMemo memo;
  for (int32_t i = 1; i <= context.rowCount; ++i) {
    const ItemMatch m = matchEquRequests(rowName(context.dictionary, i, buffer), lists, SCOPE_ALL,
                                         0, context.procIndex, &memo);
    if (m.selected > 0 && rowSelected[i] == 0) rowSelected[i] = m.directCode;
  }
  reportUnmet(context, lists.row, lists.equCount,
              "(1X,/,5X,'##  Did not find Requested Equation ',A)", hintGiven);
}

SelectionContext selectionContextOf(RunContext& run) {
  return {&run,           run.procIndex,       run.rowCount,       run.colCount,
          run.dictionary, &run.statusChannel, &run.logChannel};
}
