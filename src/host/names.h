// Names of rows and columns into the dictionary's symbols and labels.
//
// `sym[l1,l2]` and `sym(l1,l2)` are symbol `sym` with labels `l1`, `l2`; a label in quotes keeps
// its quote character. A name without brackets follows a symbol rule: by default (the native
// instance) one that ends in digits is its stem with the digits as one label (`x17` is `x(17)`).
// Anything else is a scalar symbol. Equation and variable symbols are separate. A name whose
// label count differs from that of its symbol's first member becomes a scalar symbol of its own
// full name.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/instance.h"

inline constexpr std::size_t kHostLabelLen = 64;

struct HostName {
  std::string symbol;
  std::vector<HostLabel> labels;
  std::string full;   // the name as written; the scalar symbol when the labels do not fit
};

// The one check of a name that every reader makes: "" when the name may be taken, else why not.
// A control character (a line break, a tab, any byte below 32, or 127) is refused: written raw
// it would split the lines of the status file and could forge the host's records.
std::string hostNameFault(std::string_view name);

// A name as a message may show it: control characters written as \n, \t, \r or \xNN.
std::string hostShownName(std::string_view name);


// How a name without brackets becomes a symbol and a label.
enum class SymbolRuleKind : int32_t {
  Auto,            // chosen from the names of the model (hostResolveSymbolRule)
  Scalar,          // the full name is a scalar symbol, as MathProg means it
  TrailingDigits,  // `x17` is x(17), `R0009` is R(0009)
  BeforeDigit,     // the part before the first digit: `BC1AGI.C` is BC(1AGI.C), `65` is #(65)
  First,           // the first N characters: first:3 makes `AUAEL` AUA(EL)
};

struct SymbolRule {
  SymbolRuleKind kind = SymbolRuleKind::Auto;
  int32_t first = 0;  // N of first:N
};

// The symbol of names that begin with a digit under before-digit.
inline constexpr const char* kDigitSymbol = "#";
// Most symbols of one kind that the automatic rule accepts before it shortens them.
inline constexpr int32_t kAutoSymbolLimit = 1000;

// Reads `auto`, `scalar`, `trailing-digits`, `before-digit` or `first:N` (N from 1 to 63).
bool parseSymbolRule(std::string_view word, SymbolRule& rule);
std::string symbolRuleName(const SymbolRule& rule);

// The rule that Auto stands for over one kind's names, given by `forEach`, which calls its
// argument once per name: when any name has brackets, the names without are scalar symbols, as
// in a file written from an algebraic model; else before-digit, unless that makes more than
// kAutoSymbolLimit symbols, in which case first:N with the largest N (at most 8) that does not,
// or first:1. Any other rule is returned as it is.
SymbolRule hostResolveSymbolRule(
    const SymbolRule& asked,
    const std::function<void(const std::function<void(std::string_view)>&)>& forEach);

// Splits a name by the rules above; a name without brackets by trailing digits, or by `rule`
// (which must not be Auto).
HostName hostParseName(std::string_view name);
HostName hostParseName(std::string_view name, const SymbolRule& rule);
// The same into `out`, whose strings and label list are reused: a reader that parses a
// million names allocates nothing per name.
void hostParseName(std::string_view name, const SymbolRule& rule, HostName& out);

// A name from a symbol and its labels, as a native instance may give them.
HostName hostMakeName(std::string symbol, std::vector<HostLabel> labels);

// Puts the name of item k into its second argument, whose strings it may reuse.
using HostNameAt = std::function<void(int32_t, HostName&)>;

// Builds the dictionary of an instance one name at a time, rows before columns, so that a
// reader need not keep a parsed name per row and column.
struct HostDictionaryBuilder {
  explicit HostDictionaryBuilder(HostInstance& inst);
  void addRow(const HostName& name);
  void addCol(const HostName& name);
  // Adds `count` rows (or columns) as hostNameChanges makes them distinct, for a reader that
  // keeps no parsed name per row and column.
  void addDistinct(bool rows, int32_t count, const HostNameAt& nameAt,
                   const std::vector<char>& made);

  HostInstance& inst;
  std::unordered_map<std::string, int32_t> uelOf;
  // Symbols by name, one table per kind; a second table holds the scalar symbols made for names
  // that break their symbol's label count when that full name is already a symbol with labels.
  std::unordered_map<std::string, int32_t> symbolOf[2];
  std::unordered_map<std::string, int32_t> scalarOf[2];
};

// The key that tells items of one kind apart: symbol and label texts as the dictionary keeps
// them (cut to 64 characters), quotes left out.
std::string hostItemKey(const HostName& name);

// The names of one kind (rows, or columns) that must change for every item to have a name of
// its own, as the dictionary tells items apart: by hostItemKey (`x17`, `x(17)` and `x['17']`
// are one item, and so are two names whose labels differ only beyond the 64th character).
// `count` names in the instance's order: `nameAt` gives the k-th, `made[k]` is 0 for a name
// from the file and not 0 for one the host made (halves of a ranged row, R<i>, C<j>, generated
// .nl names, objvar). Names from the file are taken first, in their order, then the names the
// host made: a name that is taken gets "_" added to its symbol until it is free. So a made
// name gives way to every name from the file, and a later name from the file to an earlier
// one. Gives the new names by place, in the order of places.
std::vector<std::pair<int32_t, HostName>> hostNameChanges(
    int32_t count, const HostNameAt& nameAt, const std::vector<char>& made);

// hostNameChanges applied to names held in a vector.
void hostDistinctNames(std::vector<HostName>& names, const std::vector<char>& made);

// Fills the dictionary of `inst` (symbols, labels, rowSymbol/rowUels, colSymbol/colUels) from
// one name per row and per column. Labels longer than 64 characters are cut to 64; labels that
// differ only beyond that stay separate labels.
void hostBuildDictionary(HostInstance& inst, const std::vector<HostName>& rowNames,
                         const std::vector<HostName>& colNames);
