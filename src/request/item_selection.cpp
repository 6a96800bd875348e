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

// A plain element pattern meets one name only: it begins with a character of its own and holds
// no blank, "*" or "?" and no leading quote. Such a pattern meets a name exactly when it equals
// the name's compared form below.
bool isPlainPattern(std::string_view pattern) {
  const int32_t n = usedLength(pattern.data(), static_cast<int32_t>(pattern.size()));
  if (n == 0 || isQuote(pattern[0])) return false;
  for (int32_t q = 0; q < n; ++q) {
    if (pattern[q] == ' ' || pattern[q] == '*' || pattern[q] == '?') return false;
  }
  return true;
}

// The compared form of a name: normalized, and blank from its first blank on, as a pattern
// without blanks reads it (the name "AB X" is met by the pattern "AB").
void comparedForm(std::string_view text, char (&out)[kName]) {
  normalizeName(text, out);
  char* blank = std::find(out, out + kName, ' ');
  std::fill(blank, out + kName, ' ');
}

// One item's labels as a match reads them: their text, fetched from the dictionary at the first
// pattern that reads it when the item carries UEL numbers, and their compared forms.
struct ItemForms {
  char text[MAX_SYMBOL_DIM][kName];
  uint32_t fetched = 0;  // bit p - 1: label p's text is in `text`
  char form[MAX_SYMBOL_DIM][kName];
  int32_t made = 0;
  std::string_view label(const ItemName& item, int32_t p) {
    if (item.uels == nullptr) return item.labels.view(p);
    const TextTable own{&text[0][0], kName, MAX_SYMBOL_DIM};
    if ((fetched & (1u << (p - 1))) == 0) {
      labelPart(item.dictionary, item.uels[p - 1], own, p);
      fetched |= 1u << (p - 1);
    }
    return own.view(p);
  }
  const char* at(const ItemName& item, int32_t p) {
    for (; made < p; ++made) comparedForm(label(item, made + 1), form[made]);
    return form[p - 1];
  }
};

// The number of a compared form (NAME_LEN characters), given when the form is first met.
int32_t formNumber(SymbolMemo& memo, std::string_view form) {
  const auto next = static_cast<int32_t>(memo.formNumbers.size()) + 1;
  return memo.formNumbers.try_emplace(std::string(form), next).first->second;
}

// The form number of label p of an item named by UEL numbers.
int32_t uelFormNumber(SymbolMemo& memo, const ItemName& item, int32_t p, ItemForms& forms) {
  const auto uel = static_cast<size_t>(item.uels[p - 1]);
  if (uel >= memo.uelForm.size()) {
    memo.uelForm.resize(std::max(uel + 1, 2 * memo.uelForm.size()), 0);
  }
  int32_t& number = memo.uelForm[uel];
  if (number == 0) number = formNumber(memo, std::string_view(forms.at(item, p), kName));
  return number;
}

// Whether one item's labels meet the element patterns of request k.
bool labelsMeet(const SelectionSide& side, int32_t k, const ItemName& item, SymbolMemo& memo,
                ItemForms& forms) {
  const int32_t n = std::min(side.dim[k], item.dim);
  const size_t at = static_cast<size_t>(k - 1) * MAX_SYMBOL_DIM;
  for (int32_t p = 1; p <= n; ++p) {
    const std::string_view pattern = side.label(k, p);
    const int32_t patternForm = memo.patternForm[at + static_cast<size_t>(p - 1)];
    if (patternForm > 0 && item.uels != nullptr && item.uels[p - 1] > 0) {
      if (uelFormNumber(memo, item, p, forms) != patternForm) return false;
    } else if (patternForm > 0) {
      // Most plain patterns of a list differ from a label in its first eight bytes.
      const char* form = forms.at(item, p);
      uint64_t head = 0, formHead = 0;
      std::memcpy(&head, pattern.data(), sizeof head);
      std::memcpy(&formHead, form, sizeof formHead);
      if (head != formHead) return false;
      if (std::memcmp(pattern.data() + sizeof head, form + sizeof head, kName - sizeof head) != 0)
        return false;
    } else if (!matchPattern(pattern, forms.label(item, p))) {
      return false;
    }
  }
  return true;
}

// The requests that meet the item's symbol, from the memo or matched now, so that a
// walk over the items of one symbol matches its patterns once; the plain patterns of the list,
// numbered at the first call.
const SymbolMemo::Entry& symbolRequests(const SelectionSide& side, int32_t count,
                                        const ItemName& item, SymbolMemo& memo) {
  const auto slots = static_cast<size_t>(std::max(count, 0)) * MAX_SYMBOL_DIM;
  const bool fresh = memo.patternForm.size() != slots;
  if (fresh) {
    memo.patternForm.assign(slots, 0);
    memo.uelForm.clear();
    memo.formNumbers.clear();
    for (int32_t k = 1; k <= count; ++k) {
      for (int32_t p = 1; p <= std::min(side.dim[k], MAX_SYMBOL_DIM); ++p) {
        const std::string_view pattern = side.label(k, p);
        if (pattern.size() != static_cast<size_t>(kName) || !isPlainPattern(pattern)) continue;
        memo.patternForm[static_cast<size_t>(k - 1) * MAX_SYMBOL_DIM + static_cast<size_t>(p - 1)] =
            formNumber(memo, pattern);
      }
    }
  }
  const std::string_view s = item.symbol.substr(0, kName);
  const auto len = static_cast<int32_t>(s.size());
  const auto holds = [&](const SymbolMemo::Entry& e) {
    return e.length == len && (len == 0 || std::memcmp(e.symbol, s.data(), s.size()) == 0);
  };
  if (!fresh) {
    if (holds(memo.entries[memo.last])) return memo.entries[memo.last];
    for (size_t q = 0; q < SymbolMemo::kSymbols; ++q) {
      if (holds(memo.entries[q])) return memo.entries[memo.last = q];
    }
  } else {
    for (SymbolMemo::Entry& e : memo.entries) e.length = -1;
  }
  memo.last = memo.next;
  SymbolMemo::Entry& e = memo.entries[memo.next];
  memo.next = (memo.next + 1) % SymbolMemo::kSymbols;
  e.met.clear();
  e.byFirstForm.clear();
  e.open.clear();
  for (int32_t r = 1; r <= count; ++r) {
    if (!matchPattern(side.symbol.view(r), s)) continue;
    e.met.push_back(r);
    const size_t firstPattern = static_cast<size_t>(r - 1) * MAX_SYMBOL_DIM;
    const int32_t form = side.dim[r] >= 1 ? memo.patternForm[firstPattern] : 0;
    if (form > 0) {
      e.byFirstForm.emplace_back(form, r);
    } else {
      e.open.push_back(r);
    }
  }
  std::sort(e.byFirstForm.begin(), e.byFirstForm.end());
  if (len > 0) std::memcpy(e.symbol, s.data(), s.size());
  e.length = len;
  return e;
}

ItemMatch matchList(const ItemName& item, const SelectionSide& side, int32_t count,
                    int32_t matchScope, int32_t requestIndex, SymbolMemo* memo) {
  ItemMatch m;
  int32_t first = 1, last = count;
  if (matchScope == SCOPE_ONE) first = last = requestIndex;
  if (first < 1 || last > count) return m;
  if (memo == nullptr) {  // a caller without a memo pays for the marks on every call
    SymbolMemo own;
    return matchList(item, side, count, matchScope, requestIndex, &own);
  }
  SymbolMemo& marks = *memo;
  const SymbolMemo::Entry& symbol = symbolRequests(side, count, item, marks);
  ItemForms forms;
  // Tests request k; true when the walk stops there.
  const auto test = [&](int32_t k) {
    if (item.dim != 0 && !labelsMeet(side, k, item, marks, forms)) return false;
    side.selSpec(k, SPEC_FOUND) = 1;
    if (side.selSpec(k, SPEC_DIRECT) > 0) m.directCode = side.selSpec(k, SPEC_DIRECT);
    if (side.selSpec(k, SPEC_CROSS) > 0) m.crossCode = side.selSpec(k, SPEC_CROSS);
    m.selected = 1;
    return matchScope == SCOPE_FIRST;
  };
  const std::vector<int32_t>& met = symbol.met;
  if (item.dim == 0 || item.uels == nullptr || item.uels[0] < 1) {
    for (auto it = std::lower_bound(met.begin(), met.end(), first);
         it != met.end() && *it <= last; ++it) {
      if (test(*it)) return m;
    }
    return m;
  }
  // Named by UEL numbers: of the requests whose first pattern is plain, only those of the first
  // label's form can meet the item. They and the open ones are tested in request order.
  const int32_t form = uelFormNumber(marks, item, 1, forms);
  auto plain = std::lower_bound(symbol.byFirstForm.begin(), symbol.byFirstForm.end(),
                                std::pair<int32_t, int32_t>{form, first});
  const auto plainEnd = symbol.byFirstForm.end();
  auto open = std::lower_bound(symbol.open.begin(), symbol.open.end(), first);
  while (true) {
    const bool plainLeft = plain != plainEnd && plain->first == form && plain->second <= last;
    const bool openLeft = open != symbol.open.end() && *open <= last;
    if (!plainLeft && !openLeft) return m;
    const bool takePlain = plainLeft && (!openLeft || plain->second < *open);
    const int32_t k = takePlain ? (plain++)->second : *open++;
    if (test(k)) return m;
  }
}

// True when each of the first `count` requests of a side meets every item whatever its name.
bool meetsEveryItem(const SelectionSide& side, int32_t count) {
  for (int32_t k = 1; k <= count; ++k) {
    const std::string_view symbol = side.symbol.view(k);
    const int32_t n = usedLength(symbol.data(), static_cast<int32_t>(symbol.size()));
    const bool any = n == 0 || (n == 1 && symbol[0] == '*');
    if (!any || side.dim[k] != 0) return false;
  }
  return true;
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

namespace {

const ItemName& itemName(ovdHandle dictionary, bool column, int32_t index,
                         ItemNameBuffer& buffer) {
  int32_t dim = 0;
  const int32_t symbol = itemUelNumbers(dictionary, column, index, buffer.uels, dim);
  if (symbol != buffer.symbolNumber) {
    symbolNameOf(dictionary, symbol, buffer.symbol);
    buffer.symbolNumber = symbol;
  }
  buffer.item = {buffer.symbol, TextTable{},
                 std::clamp(dim, 0, MAX_SYMBOL_DIM), buffer.uels, dictionary};
  return buffer.item;
}

}  // namespace

const ItemName& columnName(RunContext& run, ovdHandle dictionary, int32_t col,
                           ItemNameBuffer& buffer) {
  const ItemName& item = itemName(dictionary, true, col, buffer);
  run.lastColSymbol = buffer.symbolNumber;
  return item;
}

const ItemName& rowName(ovdHandle dictionary, int32_t row, ItemNameBuffer& buffer) {
  return itemName(dictionary, false, row, buffer);
}

ItemNamer::ItemNamer(const SelectionSide& side, int32_t count)
    : needed(!meetsEveryItem(side, count)) {}

const ItemName& ItemNamer::column(RunContext& run, ovdHandle dictionary, int32_t col) {
  return needed ? columnName(run, dictionary, col, buffer) : buffer.item;
}

const ItemName& ItemNamer::row(ovdHandle dictionary, int32_t row) {
  return needed ? rowName(dictionary, row, buffer) : buffer.item;
}

void resolveRequests(const SelectionContext& context, const RequestLists& lists,
                     Vec1<int32_t> rowSelected, ItemMatches* found) {
  bool hintGiven = false;
  if (found != nullptr) *found = ItemMatches{};
  // A side without requests is walked only for the caller that keeps the matches: its items
  // all get the same answer, and none is named.
  if (lists.varCount > 0 || found != nullptr) {
    ItemNamer names(lists.col, lists.varCount);
    SymbolMemo memo;
    if (found != nullptr) found->col.resize(static_cast<size_t>(context.colCount) + 1);
    for (int32_t j = 1; j <= context.colCount; ++j) {
      const ItemMatch m = matchVarRequests(names.column(*context.run, context.dictionary, j),
                                           lists, SCOPE_ALL, 0, context.procIndex, &memo);
      if (found != nullptr) found->col[static_cast<size_t>(j)] = m;
    }
    reportUnmet(context, lists.col, lists.varCount,
                "(1X,/,5X,'## Did not find Requested Variable ',A)", hintGiven);
  }
  if (lists.equCount < 1 && context.procIndex > PROC_POSTOPT) rowSelected.fill(-1);
  if (lists.equCount < 1 && found == nullptr) return;  // no row can be selected
  ItemNamer names(lists.row, lists.equCount);
  SymbolMemo memo;
  if (found != nullptr) found->row.resize(static_cast<size_t>(context.rowCount) + 1);
  for (int32_t i = 1; i <= context.rowCount; ++i) {
    const ItemMatch m = matchEquRequests(names.row(context.dictionary, i), lists, SCOPE_ALL, 0,
                                         context.procIndex, &memo);
    if (found != nullptr) found->row[static_cast<size_t>(i)] = m;
    if (m.selected > 0 && rowSelected[i] == 0) rowSelected[i] = m.directCode;
  }
  reportUnmet(context, lists.row, lists.equCount,
              "(1X,/,5X,'##  Did not find Requested Equation ',A)", hintGiven);
}

SelectionContext selectionContextOf(RunContext& run) {
  return {&run,           run.procIndex,       run.rowCount,       run.colCount,
          run.dictionary, &run.statusChannel, &run.logChannel};
}
