#include "request/section_reader.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "request/request_line.h"

namespace {

enum class Section { Header, Variables, Equations };

// Procedures that accept a word, as a bit per procIndex.
constexpr uint32_t procBits(std::initializer_list<int32_t> procs) {
  uint32_t bits = 0;
  for (int32_t p : procs) bits |= 1u << p;
  return bits;
}
constexpr uint32_t kAll = procBits({1, 2, 3, 4, 5, 6, 7, 8, 9});
constexpr uint32_t kShow = procBits({PROC_DISPLAYCR, PROC_POSTOPT});
constexpr uint32_t kSections = procBits({PROC_DISPLAYCR, PROC_POSTOPT, PROC_PICTURE, PROC_MATCHIT});
constexpr uint32_t kCross = procBits({PROC_DISPLAYCR, PROC_POSTOPT, PROC_PICTURE});

// What a word of the table does.
enum class WordEffect {
  PageWidth,
  Verbose,
  Identify,
  Intersect,
  InSolution,
  NotInSolution,
  Binding,
  NotBinding,
  Equation,
  ListEquation,
  ListVariable,
  InEquation,
  Variable,
  InVariable
};

struct WordEntry {
  std::string_view prefix;
  uint32_t procs;
  WordEffect effect;
};

// The words, tested in this order, each as a prefix of the line.
constexpr std::array<WordEntry, 18> kWords = {{
    {"PW=", kAll, WordEffect::PageWidth},
    {"VERBOSE", procBits({PROC_NONOPT}), WordEffect::Verbose},
    {"IDENTIFY", procBits({PROC_NONOPT}), WordEffect::Identify},
    {"INTERSECT", kShow, WordEffect::Intersect},
    {"INSOLUTION", procBits({PROC_POSTOPT}), WordEffect::InSolution},
    {"BASIC", procBits({PROC_POSTOPT}), WordEffect::InSolution},
    {"NOTINSOLUTION", procBits({PROC_POSTOPT}), WordEffect::NotInSolution},
    {"NONBASIC", procBits({PROC_POSTOPT}), WordEffect::NotInSolution},
    {"NOTBASIC", procBits({PROC_POSTOPT}), WordEffect::NotInSolution},
    {"BINDING", procBits({PROC_POSTOPT}), WordEffect::Binding},
    {"NONBINDING", procBits({PROC_POSTOPT}), WordEffect::NotBinding},
    {"NOTBINDING", procBits({PROC_POSTOPT}), WordEffect::NotBinding},
    {"EQUATION", kSections, WordEffect::Equation},
    {"LISTEQUATION", procBits({PROC_MATCHIT}), WordEffect::ListEquation},
    {"LISTVARIABLE", procBits({PROC_MATCHIT}), WordEffect::ListVariable},
    {"INEQUATION", kCross, WordEffect::InEquation},
    {"VARIABLE", kSections, WordEffect::Variable},
    {"INVARIABLE", kCross, WordEffect::InVariable},
}};

// The words that bring "Input not valid" rather than the long message when refused.
constexpr std::array<std::string_view, 24> kKnownWords = {
    "VERBOSE",       "IDENTIFY",       "INSOLUTION",     "NOTINSOLUTION",  "BINDING",
    "NOTBINDING",    "NONBINDING",     "NONINSOLUTION",  "LISTVARIBLE",    "LISTEQUATION",
    "$VERBOSE",      "$IDENTIFY",      "$INSOLUTION",    "$NOTINSOLUTION", "$BINDING",
    "$NOTBINDING",   "$NONBINDING",    "$NONINSOLUTION", "$LISTVARIBLE",   "$LISTEQUATION",
    "$LISTVARIBLES", "$LISTEQUATIONS", "LISTVARIBLES",   "LISTEQUATIONS",
};

constexpr std::string_view kTheEnd = "THEEND";

std::string_view trimRight(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

// The first NAME_LEN characters of a line, blank-padded.
void firstName(std::string_view line, std::string& out) {
  out.assign(line.substr(0, static_cast<size_t>(NAME_LEN)));
  out.resize(NAME_LEN, ' ');
}

// Every element pattern of request k "*".
void starLabels(const SelectionSide& side, int32_t k) {
  for (int32_t p = 1; p <= MAX_SYMBOL_DIM; ++p) {
    char* at = side.labelAt(k, p);
    std::fill(at, at + NAME_LEN, ' ');
    at[0] = '*';
  }
}

// Request k of a side with `symbol`, every element pattern "*", dim 0 and the given slots.
void supplyRequest(const SelectionSide& side, int32_t k, std::string_view symbol,
                   std::string_view text, int32_t direct, int32_t cross) {
  side.raw.set(k, text);
  side.symbol.set(k, symbol);
  starLabels(side, k);
  side.dim[k] = 0;
  for (int32_t s = 1; s <= SPEC_SLOTS; ++s) side.selSpec(k, s) = 0;
  side.selSpec(k, SPEC_DIRECT) = direct;
  side.selSpec(k, SPEC_CROSS) = cross;
}

// Supplies the one request of a side (its count becomes 1), when the side has room for it.
void supplyOnly(const SelectionSide& side, int32_t& count, std::string_view symbol,
                std::string_view text, int32_t direct, int32_t cross) {
  if (side.capacity < 1) return;
  supplyRequest(side, 1, symbol, text, direct, cross);
  count = 1;
}

// The direct slot of a supplied request: list (or filter) when the side's filter says so.
int32_t suppliedDirect(int32_t filter) { return filter == FILTER_ON ? FILTER_ON : FILTER_NONE; }

void supplyNoway(const SelectionSide& side, int32_t& count, int32_t filter) {
  supplyOnly(side, count, NOWAY_TEXT, NOWAY_TEXT, suppliedDirect(filter), 0);
}

// Under PICTURE or INTERSECT a cross request selects its own items too. True when one of
// them did not select them before.
bool promoteCross(const SelectionSide& side, int32_t count) {
  bool directWasZero = false;
  for (int32_t k = 1; k <= count; ++k) {
    if (side.selSpec(k, SPEC_CROSS) > 0) {
      if (side.selSpec(k, SPEC_DIRECT) == 0) directWasZero = true;
      side.selSpec(k, SPEC_DIRECT) = side.selSpec(k, SPEC_CROSS);
    }
  }
  return directWasZero;
}

// Supplies what the user did not ask for, at the end of a section.
void completeLists(const SectionContext& context, const SectionState& state, RequestLists& lists,
                   const RequestFlags& flags) {
  const bool promote = context.procIndex == PROC_PICTURE || flags.intersect > 0;
  const bool counting = context.defaultMode == DEFAULT_COUNT;
  const int32_t crossStar = state.requestMode == REQUEST_CROSS ? 1 : 0;
  int32_t varAsked = state.varAsked;
  int32_t equAsked = state.equAsked;

  if (lists.varCount == 0) {
    if (counting) {
      supplyOnly(lists.col, lists.varCount, "*", "*", suppliedDirect(flags.varFilter), 0);
      varAsked = ASKED_SUPPLIED;
    }
    if (varAsked == ASKED_WORD || (varAsked == ASKED_NOBODY && equAsked == ASKED_NOBODY)) {
      supplyOnly(lists.col, lists.varCount, "*", "", 1, crossStar);
    }
  }
  bool equationsDone = false;
  if (lists.varCount > 0 && promote && promoteCross(lists.col, lists.varCount) &&
      lists.equCount == 0 && flags.intersect == 0) {
    supplyNoway(lists.row, lists.equCount, flags.equFilter);
    equationsDone = true;
  }
  if (!equationsDone && lists.equCount == 0) {
    const int32_t filtered = suppliedDirect(flags.equFilter);
    if (counting) {
      supplyOnly(lists.row, lists.equCount, "*", "*", filtered, 0);
      equAsked = ASKED_SUPPLIED;
    }
    if (equAsked == ASKED_WORD || (equAsked == ASKED_NOBODY && varAsked == ASKED_NOBODY)) {
      supplyOnly(lists.row, lists.equCount, "*", "*",
                 state.requestMode == REQUEST_DIRECT ? 1 : filtered, crossStar);
    }
    return;
  }
  if (lists.equCount > 0 && promote && promoteCross(lists.row, lists.equCount) &&
      lists.varCount == 0 && flags.intersect == 0) {
    supplyNoway(lists.col, lists.varCount, flags.varFilter);
  }
}

// A section that ended before any section word: MATCHIT completes its lists, the others ask
// for everything.
void endInHeader(const SectionContext& context, const SectionState& state, RequestLists& lists,
                 const RequestFlags& flags) {
  if (context.defaultMode == DEFAULT_COUNT) {
    completeLists(context, state, lists, flags);
    return;
  }
  supplyOnly(lists.col, lists.varCount, "*", "", 1, 0);
  supplyOnly(lists.row, lists.equCount, "*", "", 1, 0);
}

// The "too large" messages; the reader returns behind them.
void varListFull(const SectionContext& context, int32_t capacity) {
  constexpr std::string_view t =
      "('Number of variable requests too large',/,1X,'    Maximum is ',I4,/,1X,"
      "'**** Fatal error in MODRAKE')";
  writeLine(*context.statusChannel, t, {capacity});
  writeLine(*context.logChannel, t, {capacity});
}

void equListFull(const SectionContext& context, int32_t capacity) {
  for (Channel* ch : {context.statusChannel, context.logChannel}) {
    writeFree(*ch, {"****Number of equation requests too large", "     Maximum is ", capacity,
                    "Fatal error"});
  }
}

// A line that the header state does not accept.
void refuseInHeader(const SectionContext& context, SectionState& state, std::string_view line,
                    std::string_view keyword) {
  const std::string_view shown = line.substr(0, 50);
  const int32_t code = isKnownRequestWord(keyword);
  std::string_view t;
  if (code == WORD_KNOWN) {
    t = "(' Input not valid for this procedure -- ',A)";
  } else if (!state.hintGiven) {
    t = "(' Type of item to be selected not identified ',/,1X,' Input ignored -- ',A,/,1X,"
        "'You must preceed input with VARIABLE EQUATION etc ',/,1X,"
        "'If you wish this to be a silent comment proceed with ?',/,1X,"
        "'If you wish this to be a echoed comment proceed with #',/)";
  } else {
    t = "(' Input ignored -- ',A)";
  }
  writeLine(*context.statusChannel, t, {shown});
  writeLine(*context.logChannel, t, {shown});
  state.hintGiven = true;
}

// Stores a request line of a section as request count + 1 of `side`. False when the list is
// full: its message is written and the reader returns.
bool storeRequest(const SectionContext& context, SectionState& state, RequestLists& lists,
                  const RequestFlags& flags, bool variables, std::string_view line) {
  const SelectionSide& side = variables ? lists.col : lists.row;
  int32_t& count = variables ? lists.varCount : lists.equCount;
  const int32_t k = count + 1;
  // A request of the variable section in direct mode bears on the variables, in cross mode on
  // the equations; the other way about in the equation section.
  const bool bearsOnVariables = variables == (state.requestMode == REQUEST_DIRECT);
  (bearsOnVariables ? state.varAsked : state.equAsked) = ASKED_REQUEST;

  if (k > side.capacity) {  // a side without room for a single request
    if (variables) {
      varListFull(context, side.capacity);
    } else {
      equListFull(context, side.capacity);
    }
    return false;
  }
  splitRequest(line, side, k);
  const int32_t filter = variables ? flags.varFilter : flags.equFilter;
  for (int32_t s = 1; s <= SPEC_SLOTS; ++s) side.selSpec(k, s) = 0;
  side.selSpec(k, state.requestMode == REQUEST_DIRECT ? SPEC_DIRECT : SPEC_CROSS) = filter;
  if (variables) {
    count = k;
    if (k + 1 > side.capacity) {
      varListFull(context, side.capacity);
      return false;
    }
  } else {
    if (k + 1 > side.capacity) {
      equListFull(context, side.capacity);
      return false;
    }
    count = k;
  }
  return true;
}

// Reads the next request line that is no comment into `line` (normalized). False at the end
// of the input; a read error is told once and ends the input as well.
bool nextLine(const SectionContext& context, std::FILE* source, std::string& line) {
  for (;;) {
    if (source == nullptr) return false;
    const LineRead r = readRequestFileLine(source, line, MAX_LINE);
    if (r == LineRead::Error) {
      writeFree(*context.statusChannel, {"Error encountered reading MRK file"});
      writeFree(*context.logChannel, {"Error encountered reading MRK file"});
    }
    if (r != LineRead::Ok) return false;
    int32_t isComment = 0;
    normalizeRequestLine(line, isComment, MAX_LINE, context.run);
    if (isComment == 0) return true;
  }
}

}  // namespace

int32_t isKnownRequestWord(std::string_view text) {
  const std::string_view t = trimRight(text.substr(0, static_cast<size_t>(NAME_LEN)));
  if (t.empty()) return WORD_KNOWN;
  if (t == NOWAY_TEXT || t == "NOWAY&") return WORD_NOWAY;
  for (std::string_view w : kKnownWords) {
    if (t == w) return WORD_KNOWN;
  }
  return WORD_UNKNOWN;
}

SectionWord classifyRequestWord(std::string_view line, const SectionContext& context,
                                SectionState& state, RequestFlags& flags, bool& consumed) {
  consumed = false;
  const uint32_t me =
      context.procIndex >= 1 && context.procIndex <= 9 ? 1u << context.procIndex : 0u;
  const bool showing = context.defaultMode == DEFAULT_SHOW;
  for (const WordEntry& w : kWords) {
    if ((w.procs & me) == 0 || !line.starts_with(w.prefix)) continue;
    switch (w.effect) {
      case WordEffect::PageWidth:
        break;
      case WordEffect::Verbose:
        flags.verbosity = VERBOSITY_VERBOSE;
        break;
      case WordEffect::Identify:
        flags.verbosity = VERBOSITY_IDENTIFY;
        break;
      case WordEffect::Intersect:
        flags.intersect = 1;
        break;
      case WordEffect::InSolution:
        flags.varFilter = FILTER_ON;
        break;
      case WordEffect::NotInSolution:
        flags.varFilter = FILTER_OFF;
        break;
      case WordEffect::Binding:
        flags.equFilter = FILTER_ON;
        break;
      case WordEffect::NotBinding:
        flags.equFilter = FILTER_OFF;
        break;
      case WordEffect::Equation:
      case WordEffect::ListEquation:
        state.requestMode = REQUEST_DIRECT;
        if (state.equAsked == ASKED_NOBODY) state.equAsked = ASKED_WORD;
        if (context.procIndex == PROC_MATCHIT) {
          flags.equFilter = w.effect == WordEffect::Equation ? FILTER_NONE : FILTER_ON;
        }
        return SectionWord::Equations;
      case WordEffect::Variable:
      case WordEffect::ListVariable:
        state.requestMode = REQUEST_DIRECT;
        if (state.varAsked == ASKED_NOBODY) state.varAsked = ASKED_WORD;
        if (context.procIndex == PROC_MATCHIT) {
          flags.varFilter = w.effect == WordEffect::Variable ? FILTER_NONE : FILTER_ON;
        }
        return SectionWord::Variables;
      case WordEffect::InEquation:
      case WordEffect::InVariable:
        if (!showing) continue;
        state.requestMode = REQUEST_CROSS;
        return w.effect == WordEffect::InEquation ? SectionWord::Equations : SectionWord::Variables;
    }
    consumed = true;
    return SectionWord::None;
  }
  return SectionWord::None;
}

void splitRequest(std::string_view line, const SelectionSide& side, int32_t k) {
  line = trimRight(line.substr(0, static_cast<size_t>(MAX_LINE)));
  const size_t n = line.size();
  starLabels(side, k);
  size_t pos = 0;
  while (pos < n && line[pos] != '(' && line[pos] != ' ') ++pos;
  side.symbol.set(k, line.substr(0, std::min<size_t>(pos, NAME_LEN)));

  int32_t dim = 1;
  if (pos < n && line[pos] == '(' && pos + 1 < n) {
    ++pos;
    dim = 0;
    bool closed = false;
    while (pos < n && !closed) {
      size_t from = pos;
      size_t to = pos;  // one past the element
      const char c = line[pos];
      if (c == '"' || c == '\'') {
        const size_t close = line.find(c, pos + 1);
        to = close == std::string_view::npos ? n : close + 1;
        pos = to + 1;  // the character behind the closing quote is skipped
      } else {
        while (to < n && line[to] != ',' && line[to] != ')' && line[to] != ' ') ++to;
        closed = to < n && line[to] == ')';
        pos = to + 1;
      }
      ++dim;
      if (dim <= MAX_SYMBOL_DIM) {
        const size_t len = std::min<size_t>(to - from, NAME_LEN);
        char* at = side.labelAt(k, dim);
        std::fill(at, at + NAME_LEN, ' ');
        std::copy_n(line.data() + from, len, at);
      }
    }
    dim = std::min(dim, MAX_SYMBOL_DIM);
  } else if (pos < n && line[pos] == '(') {
    dim = 0;
  }
  side.dim[k] = dim;
}

void readRequestSection(const SectionContext& context, RequestLists& lists, RequestFlags& flags,
                        std::string& currentKeyword) {
  std::FILE* source = context.requestChannel;
  if (context.analysisProblemsPending == 1) {
    source = context.analysisChannel;
    if (source != nullptr) std::rewind(source);
  }
  for (const SelectionSide* side : {&lists.col, &lists.row}) {
    side->selSpec.fill(0);
    side->dim.fill(0);
    if (side->capacity >= 1) side->raw.set(1, "");
  }
  flags.varFilter = FILTER_NONE;
  flags.equFilter = FILTER_NONE;
  lists.varCount = 0;
  lists.equCount = 0;
  currentKeyword.assign(static_cast<size_t>(NAME_LEN), ' ');

  SectionState state;
  Section section = Section::Header;
  std::string line;
  while (nextLine(context, source, line)) {
    firstName(line, currentKeyword);
    int32_t word = 0;
    bool consumed = false;

    if (section == Section::Header) {
      lookupKeyword(*context.run, currentKeyword, word, 2);
      if (word > 0) {
        endInHeader(context, state, lists, flags);
        return;
      }
      const SectionWord opened = classifyRequestWord(line, context, state, flags, consumed);
      if (opened != SectionWord::None) {
        section = opened == SectionWord::Variables ? Section::Variables : Section::Equations;
      } else if (!consumed) {
        refuseInHeader(context, state, line, currentKeyword);
      }
      continue;
    }

    const bool variables = section == Section::Variables;
    const SelectionSide& side = variables ? lists.col : lists.row;
    const int32_t next = (variables ? lists.varCount : lists.equCount) + 1;
    if (next <= side.capacity) side.raw.set(next, line);
    lookupKeyword(*context.run, currentKeyword, word, variables ? 1 : 2);
    if (word == PROC_PAGE_WIDTH) {
      setPageWidth(*context.run, currentKeyword);
      continue;
    }
    if (word > 0) {
      completeLists(context, state, lists, flags);
      return;
    }
    const SectionWord opened = classifyRequestWord(line, context, state, flags, consumed);
    if (opened != SectionWord::None) {
      section = opened == SectionWord::Variables ? Section::Variables : Section::Equations;
      continue;
    }
    if (consumed) continue;
    if (!storeRequest(context, state, lists, flags, variables, line)) return;
  }

  // The input has ended.
  if (section != Section::Header && context.analysisProblemsPending == 1) {
    currentKeyword.assign(static_cast<size_t>(NAME_LEN), ' ');
    return;
  }
  firstName(kTheEnd, currentKeyword);
  if (section == Section::Header) {
    endInHeader(context, state, lists, flags);
  } else {
    completeLists(context, state, lists, flags);
  }
}

SectionContext sectionContextOf(RunContext& run, int32_t defaultMode) {
  SectionContext c;
  c.run = &run;
  c.procIndex = run.procIndex;
  c.defaultMode = defaultMode;
  c.analysisProblemsPending = run.analysisProblemsPending;
  c.requestChannel = run.requestChannel;
  c.analysisChannel = run.analysisChannel;
  c.statusChannel = &run.statusChannel;
  c.logChannel = &run.logChannel;
  return c;
}
