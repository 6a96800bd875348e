// Symbol blocks: all rows, or all columns, of one symbol. buildBlockTables fills the tables
// of a block procedure; the label routines name single items, as parts for matching or as
// the text SYMBOL(label1,label2) that the reports print.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/run_context.h"
#include "host/host.h"
#include "model/views.h"

// Longest label text the dictionary gives; a label of this length is cut to one less, "~" last.
inline constexpr int32_t UEL_TEXT_LEN = 64;

// Fills the block tables from the dictionary: blocks numbered in order of first occurrence,
// colBlockName[colBlockUsed + 1] = "RHS". More blocks than icblock or irblock stop the run
// (exit code 77) with the capacity message. The symbol of the last column goes to
// run.lastColSymbol.
void buildBlockTables(RunContext& run, int32_t rowCount, int32_t colCount, int32_t& colBlockUsed,
                      int32_t& rowBlockUsed, int32_t icblock, int32_t irblock,
                      TextTable colBlockName, TextTable rowBlockName,
                      Vec1<int32_t> colBlockCount, Vec1<int32_t> rowBlockCount,
                      ovdHandle dictionary, Vec1<int32_t> colBlockOf, Vec1<int32_t> rowBlockOf);

// Status codes of blockRowRhs: the signs of the right-hand sides seen in a block. They are kept
// in the doubles of blockRowRhs, which the equation findings read in block mode.
inline constexpr double RHS_ALL_POSITIVE = 2.0;
inline constexpr double RHS_POSITIVE_AND_ZERO = 1.0;
inline constexpr double RHS_ALL_ZERO = 0.0;
inline constexpr double RHS_NEGATIVE_AND_ZERO = -1.0;
inline constexpr double RHS_ALL_NEGATIVE = -2.0;
inline constexpr double RHS_MIXED = -99.0;
inline constexpr double RHS_NONE_YET = 99.0;

// The next blockRowRhs status after a row with right-hand side r.
double nextBlockRhsStatus(double status, double r);

// Label forms of equItemLabel.
inline constexpr int32_t LABEL_PARTS = 2;  // symbol in `text`, labels in `labels`
inline constexpr int32_t LABEL_FULL = 3;   // SYMBOL(label1,label2) in `text`

// Names row `row` (1-based). `text` gets the symbol name (its first NAME_LEN characters) and
// `dim` the dimension. Form LABEL_PARTS fills labels[1..dim] with the first labels.width
// characters of each label, without quotes; form LABEL_FULL puts the full label text in
// `text`, quotes included. `text` never exceeds textCapacity characters: a longer text is cut
// with "~" as its last character. textLength is the length of `text`.
void equItemLabel(ovdHandle dictionary, int32_t row, std::string& text, int32_t& textLength,
                  int32_t form, TextTable labels, int32_t& dim, int32_t textCapacity);

// Full label text of column `col`, as equItemLabel in form LABEL_FULL. isNewSymbol is -1 when
// the column's symbol differs from run.lastColSymbol, else 0; lastColSymbol is updated.
void varItemLabel(RunContext& run, ovdHandle dictionary, int32_t col, std::string& text, int32_t& textLength,
                  int32_t& dim, int32_t& isNewSymbol, int32_t textCapacity);

// Parts of column `col`, as equItemLabel in form LABEL_PARTS; isNewSymbol as varItemLabel.
void varItemLabelParts(RunContext& run, ovdHandle dictionary, int32_t col, std::string& symbol,
                       int32_t& symbolLength, TextTable labels, int32_t& dim,
                       int32_t& isNewSymbol);

// Symbol number of row or column `index` (1-based), with `dim` and the UEL numbers of its
// labels in uels[0..dim-1] (room for MAX_SYMBOL_DIM), but neither the symbol's name nor the
// labels' text: a walk over many items names a symbol once, with symbolNameOf, when the number
// changes, and fetches a label's text with labelPart only when it reads it.
int32_t itemUelNumbers(ovdHandle dictionary, bool column, int32_t index, int32_t* uels,
                       int32_t& dim);
// The text of UEL `uel` into labels[k], as form LABEL_PARTS gives a label.
void labelPart(ovdHandle dictionary, int32_t uel, TextTable labels, int32_t k);
// A symbol's name as the label forms give it: its first NAME_LEN characters, no trailing blanks.
void symbolNameOf(ovdHandle dictionary, int32_t symbol, std::string& text);

// Symbol number of column `col`, with isNewSymbol and lastColSymbol as varItemLabel, for a
// walk that needs the symbol change of every column but the text of few.
int32_t varItemSymbol(RunContext& run, ovdHandle dictionary, int32_t col, int32_t& isNewSymbol);

// The block capacity stop: a model with more variable (or equation) blocks than `limit` ends
// the run with the message on the status file and the log, "=2" and exit code 77.
[[noreturn]] void blockCapacityStop(RunContext& run, bool variables, int32_t limit);

// Cuts a label text into report lines of about `width` characters, breaking only behind a
// comma: later lines are indented by the symbol and its parenthesis. A text of at most width
// characters, without "(", or whose first "(" is its last character is one line. Lines are
// cut at lineCapacity characters.
void foldItemLabel(std::string_view text, int32_t width, std::vector<std::string>& lines,
                   int32_t lineCapacity);
