#include "model/blocks.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "base/notation.h"
#include "base/text.h"

namespace {

// Symbol and labels of one row or column, as the dictionary gives them. A failed call leaves
// symbol 0 and no labels.
struct ItemUels {
  int32_t symbol = 0;
  int32_t dim = 0;
  std::array<int32_t, MAX_SYMBOL_DIM> uels{};
};

ItemUels rowUels(ovdHandle dictionary, int32_t row) {
  ItemUels u;
  if (ovdRowUels(dictionary, row - 1, u.symbol, u.uels.data(), u.dim) != 0) u = ItemUels{};
  if (u.dim < 0) u.dim = 0;
  if (u.dim > MAX_SYMBOL_DIM) u.dim = MAX_SYMBOL_DIM;
  return u;
}

ItemUels colUels(ovdHandle dictionary, int32_t col) {
  ItemUels u;
  if (ovdColUels(dictionary, col - 1, u.symbol, u.uels.data(), u.dim) != 0) u = ItemUels{};
  if (u.dim < 0) u.dim = 0;
  if (u.dim > MAX_SYMBOL_DIM) u.dim = MAX_SYMBOL_DIM;
  return u;
}

// The symbol name, its first NAME_LEN characters without trailing blanks.
void symbolName(ovdHandle dictionary, int32_t symbol, std::string& text) {
  text.clear();
  if (symbol < 1) return;
  const std::string name = ovdSymName(dictionary, symbol);
  std::string_view v = trimRight(name);
  if (v.size() > static_cast<size_t>(NAME_LEN)) v = trimRight(v.substr(0, NAME_LEN));
  text.assign(v);
}

// SYMBOL(label1,label2) into `text`, which already holds the symbol name.
void appendLabels(ovdHandle dictionary, const ItemUels& u, std::string& text) {
  if (u.dim == 0) return;
  text.push_back('(');
  std::string label;
  for (int32_t k = 0; k < u.dim; ++k) {
    char quote = ' ';
    label.clear();
    ovdUelLabel(dictionary, u.uels[k], quote, label);
    if (label.size() > static_cast<size_t>(UEL_TEXT_LEN)) label.resize(UEL_TEXT_LEN);
    std::string_view shown = trimRight(label);
    if (shown.size() == static_cast<size_t>(UEL_TEXT_LEN)) {
      label.resize(UEL_TEXT_LEN - 1);
      label.back() = '~';
      shown = label;
    }
    if (quote != ' ') text.push_back(quote);
    text.append(shown);
    if (quote != ' ') text.push_back(quote);
    text.push_back(k + 1 < u.dim ? ',' : ')');
  }
}

void fillParts(ovdHandle dictionary, const ItemUels& u, TextTable labels) {
  for (int32_t k = 1; k <= u.dim && k <= labels.n; ++k) {
    labelPart(dictionary, u.uels[k - 1], labels, k);
  }
}

// A text longer than its capacity keeps capacity - 1 characters and ends in "~".
void boundText(std::string& text, int32_t& textLength, int32_t textCapacity) {
  const size_t cap = textCapacity > 0 ? static_cast<size_t>(textCapacity) : 0;
  if (text.size() > cap) {
    text.resize(cap);
    if (cap > 0) text.back() = '~';
  }
  textLength = static_cast<int32_t>(text.size());
}

void noteSymbol(RunContext& run, int32_t symbol, int32_t& isNewSymbol) {
  isNewSymbol = symbol == run.lastColSymbol ? 0 : -1;
  run.lastColSymbol = symbol;
}

}  // namespace

void blockCapacityStop(RunContext& run, bool variables, int32_t limit) {
  const char* tmpl =
      variables ? "('  Exceeded maximum variable blocks which is',I4,/,' Expand or drop VARBLOCK "
                  "option in MODRAKE.OPT')"
                : "('  Exceeded maximum equation blocks which is',I4,/,' Expand or drop EQUBLOCK "
                  "option in MODRAKE.OPT')";
  writeLine(run.statusChannel, tmpl, {limit});
  writeLine(run.logChannel, tmpl, {limit});
  if (variables) writeFree(run.statusChannel);
  writeLine(run.statusChannel, "(A2)", {"=2"});
  stopRun(run, 77);
}

namespace {

// Assigns blocks to n items in order of first occurrence. Items of the symbol of the item
// before them take its block at once; other symbols are looked up by number, and a symbol
// number not yet seen by its name, so that equal names share a block.
template <class UelsOf>
int32_t assignBlocks(RunContext& run, int32_t n, int32_t limit, int32_t capacity, bool variables,
                     ovdHandle dictionary, UelsOf uelsOf, TextTable blockName,
                     Vec1<int32_t> blockCount, Vec1<int32_t> blockOf, int32_t& lastSymbol) {
  std::unordered_map<int32_t, int32_t> blockOfSymbol;
  std::unordered_map<std::string, int32_t> blockOfName;
  std::string name;
  int32_t used = 0;
  int32_t prevSymbol = 0;
  int32_t prevBlock = 0;
  for (int32_t j = 1; j <= n; ++j) {
    const int32_t symbol = uelsOf(dictionary, j).symbol;
    int32_t block = 0;
    if (prevBlock > 0 && symbol == prevSymbol) {
      block = prevBlock;
    } else if (auto it = blockOfSymbol.find(symbol); it != blockOfSymbol.end()) {
      block = it->second;
    } else {
      symbolName(dictionary, symbol, name);
      if (auto jt = blockOfName.find(name); jt != blockOfName.end()) {
        block = jt->second;
      } else {
        if (used >= limit) blockCapacityStop(run, variables, capacity);
        block = ++used;
        blockName.set(block, name);
        blockCount[block] = 0;
        blockOfName.emplace(name, block);
      }
      blockOfSymbol.emplace(symbol, block);
    }
    blockCount[block] += 1;
    blockOf[j] = block;
    prevSymbol = symbol;
    prevBlock = block;
  }
  if (n > 0) lastSymbol = prevSymbol;
  return used;
}

}  // namespace

double nextBlockRhsStatus(double status, double r) {
  const bool none = status == RHS_NONE_YET;
  const bool positive = status == RHS_ALL_POSITIVE || status == RHS_POSITIVE_AND_ZERO;
  const bool negative = status == RHS_ALL_NEGATIVE || status == RHS_NEGATIVE_AND_ZERO;
  if (!none && !positive && !negative && status != RHS_ALL_ZERO) return RHS_MIXED;
  if (r > 0.0) {
    if (negative) return RHS_MIXED;
    return none || status == RHS_ALL_POSITIVE ? RHS_ALL_POSITIVE : RHS_POSITIVE_AND_ZERO;
  }
  if (r < 0.0) {
    if (positive) return RHS_MIXED;
    return none || status == RHS_ALL_NEGATIVE ? RHS_ALL_NEGATIVE : RHS_NEGATIVE_AND_ZERO;
  }
  if (positive) return RHS_POSITIVE_AND_ZERO;
  if (negative) return RHS_NEGATIVE_AND_ZERO;
  return RHS_ALL_ZERO;
}

void buildBlockTables(RunContext& run, int32_t rowCount, int32_t colCount, int32_t& colBlockUsed,
                      int32_t& rowBlockUsed, int32_t icblock, int32_t irblock,
                      TextTable colBlockName, TextTable rowBlockName, Vec1<int32_t> colBlockCount,
                      Vec1<int32_t> rowBlockCount, ovdHandle dictionary, Vec1<int32_t> colBlockOf,
                      Vec1<int32_t> rowBlockOf) {
  colBlockCount.fill(0);
  rowBlockCount.fill(0);
  // Capacities beyond the tables handed in would write past them.
  const int32_t colCapacity = std::min(icblock, std::min(colBlockCount.n, colBlockName.n - 1));
  const int32_t rowCapacity = std::min(irblock, std::min(rowBlockCount.n, rowBlockName.n));
  colBlockUsed = assignBlocks(run, colCount, colCapacity, icblock, true, dictionary, colUels,
                              colBlockName, colBlockCount, colBlockOf, run.lastColSymbol);
  if (colBlockUsed + 1 <= colBlockName.n) colBlockName.set(colBlockUsed + 1, "RHS");
  int32_t unused = 0;
  rowBlockUsed = assignBlocks(run, rowCount, rowCapacity, irblock, false, dictionary, rowUels,
                              rowBlockName, rowBlockCount, rowBlockOf, unused);
}

void equItemLabel(ovdHandle dictionary, int32_t row, std::string& text, int32_t& textLength,
                  int32_t form, TextTable labels, int32_t& dim, int32_t textCapacity) {
  const ItemUels u = rowUels(dictionary, row);
  dim = u.dim;
  symbolName(dictionary, u.symbol, text);
  if (form == LABEL_FULL) {
    appendLabels(dictionary, u, text);
  } else if (form == LABEL_PARTS) {
    fillParts(dictionary, u, labels);
  }
  boundText(text, textLength, textCapacity);
}

void varItemLabel(RunContext& run, ovdHandle dictionary, int32_t col, std::string& text, int32_t& textLength,
                  int32_t& dim, int32_t& isNewSymbol, int32_t textCapacity) {
  const ItemUels u = colUels(dictionary, col);
  noteSymbol(run, u.symbol, isNewSymbol);
  dim = u.dim;
  symbolName(dictionary, u.symbol, text);
  appendLabels(dictionary, u, text);
  boundText(text, textLength, textCapacity);
}

void varItemLabelParts(RunContext& run, ovdHandle dictionary, int32_t col, std::string& symbol,
                       int32_t& symbolLength, TextTable labels, int32_t& dim,
                       int32_t& isNewSymbol) {
  const ItemUels u = colUels(dictionary, col);
  noteSymbol(run, u.symbol, isNewSymbol);
  dim = u.dim;
  symbolName(dictionary, u.symbol, symbol);
  symbolLength = static_cast<int32_t>(symbol.size());
  fillParts(dictionary, u, labels);
}

int32_t itemUelNumbers(ovdHandle dictionary, bool column, int32_t index, int32_t* uels,
                       int32_t& dim) {
  const ItemUels u = column ? colUels(dictionary, index) : rowUels(dictionary, index);
  dim = u.dim;
  std::copy_n(u.uels.begin(), u.dim, uels);
  return u.symbol;
}

void labelPart(ovdHandle dictionary, int32_t uel, TextTable labels, int32_t k) {
  static std::string label;
  char quote = ' ';
  label.clear();
  ovdUelLabel(dictionary, uel, quote, label);
  labels.set(k, label);
}

void symbolNameOf(ovdHandle dictionary, int32_t symbol, std::string& text) {
  symbolName(dictionary, symbol, text);
}

int32_t varItemSymbol(RunContext& run, ovdHandle dictionary, int32_t col, int32_t& isNewSymbol) {
  const int32_t symbol = colUels(dictionary, col).symbol;
  noteSymbol(run, symbol, isNewSymbol);
  return symbol;
}

void foldItemLabel(std::string_view text, int32_t width, std::vector<std::string>& lines,
                   int32_t lineCapacity) {
  lines.clear();
  const size_t cap = lineCapacity > 0 ? static_cast<size_t>(lineCapacity) : 0;
  auto emit = [&](std::string line) {
    if (line.size() > cap) line.resize(cap);
    lines.push_back(std::move(line));
  };
  text = trimRight(text);
  const int64_t n = static_cast<int64_t>(text.size());
  const size_t paren = text.find('(');
  if (n <= width || paren == std::string_view::npos || paren + 1 == text.size()) {
    emit(std::string(text));
    return;
  }
  // Positions count from 1, as the column of the report line does.
  const int64_t p = static_cast<int64_t>(paren) + 1;
  auto at = [&](int64_t s) { return text[static_cast<size_t>(s - 1)]; };
  auto piece = [&](int64_t from, int64_t to, bool first) {
    std::string line(first ? 0 : static_cast<size_t>(p), ' ');
    line.append(text.substr(static_cast<size_t>(from - 1), static_cast<size_t>(to - from + 1)));
    emit(std::move(line));
  };
  int64_t column = p, start = 1, lastBreak = p, pending = 0;
  for (int64_t s = p + 1; s <= n; ++s) {
    ++column;
    if (at(s) != ',' && s != n) continue;
    if (column <= width) {
      ++pending;
      lastBreak = s;
      continue;
    }
    if (pending == 0) {
      lastBreak = s;
    } else {
      pending = 1;
    }
    const bool first = lines.empty();
    piece(start, lastBreak, first);
    column -= lastBreak - start + 1;
    if (first) column += p;
    start = lastBreak + 1;
    lastBreak = s;
  }
  if (pending > 0) piece(start, lastBreak, lines.empty());
}
