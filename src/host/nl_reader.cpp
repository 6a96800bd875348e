// AMPL .nl files in their text form into one HostInstance. The file is read here, line by line,
// so that a fault is told with its line; the derivatives at the file's initial point come from
// the AMPL solver library, run in a child process (nl_evaluator.h).
//
// Rows: the objectives first (the first one an =E= row with the objective variable `objvar`,
// further ones =N= rows), then the constraints in the file's order, a range l <= body <= u
// (l < u) as a =G= row `SYM_lo` and an =L= row `SYM_up`. Columns: the file's variables in its
// order, then `objvar`. An entry is nonlinear when its variable stands in the expression of the
// row's constraint or objective, directly or through a defined variable.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "host/names.h"
#include "host/nl_evaluator.h"
#include "host/readers_internal.h"

namespace {

// Arity of the expression operators read here; -1 for those followed by a count of operands.
int operatorArity(long op) {
  switch (op) {
    case 0: case 1: case 2: case 3: case 4: case 5: case 6:     // + - * / rem pow less
    case 20: case 21: case 22: case 23: case 24: case 28:       // or and < <= == >=
    case 29: case 30: case 48: case 55: case 56: case 57:       // > != atan2 div precision round
    case 58: case 75: case 77:                                  // trunc x^c c^x
      return 2;
    case 13: case 14: case 15: case 16: case 34: case 76:       // floor ceil abs neg not x^2
      return 1;
    case 35:                                                    // if-then-else
      return 3;
    case 11: case 12: case 54:                                  // min max sum
      return -1;
    default:
      return (op >= 37 && op <= 53) ? 1 : 0;                    // tanh .. acos (48 above)
  }
}

struct Line {
  std::string_view text;  // without comment and surrounding blanks
  int64_t number = 0;     // line number; in the binary form the byte offset
};

// What the reader expects next. The text form has it on one line; the binary form has it as
// bytes (whole numbers 4-byte, reals 8-byte, little-endian), which the source spells out as
// that line.
enum class Shape { Segment, Term, Count, Pair, WholePair, Bound };

struct Linear {
  int32_t var;
  double coef;
};

class NlText {
 public:
  NlText(const std::string& path, std::string text) : path_(path), text_(std::move(text)) {}

  // From here on the segments are in the binary form.
  void binaryFromHere() { binary_ = true; }

  bool next(Line& line, Shape shape = Shape::Segment) {
    if (binary_) return nextBinary(line, shape);
    while (at_ < text_.size()) {
      std::size_t end = text_.find('\n', at_);
      if (end == std::string::npos) end = text_.size();
      std::string_view s(text_.data() + at_, end - at_);
      at_ = end < text_.size() ? end + 1 : end;  // a last line without its break ends the text
      ++number_;
      if (const auto hash = s.find('#'); hash != std::string_view::npos) s = s.substr(0, hash);
      while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
      while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
      if (s.empty() && number_ > 1) continue;
      line = {s, number_};
      return true;
    }
    return false;
  }
  // The next line, which must be there.
  bool need(Line& line, std::string_view what, std::string& error, Shape shape) {
    if (next(line, shape)) return true;
    error = at({{}, binary_ ? static_cast<int64_t>(at_) : number_}) + "the file ends before " +
            std::string(what);
    return false;
  }
  std::size_t size() const { return text_.size(); }
  bool cut() const { return cut_; }
  std::string place(const Line& line) const {
    return (binary_ ? "at byte " : "on line ") + std::to_string(line.number);
  }
  std::string at(const Line& line) const {
    return path_ + (binary_ ? ": byte " : ":") + std::to_string(line.number) + ": ";
  }

 private:
  // Whole numbers of each segment's first line; -1 for a letter that begins no segment here.
  static int segmentCounts(char key) {
    switch (key) {
      case 'C': case 'x': case 'd': case 'k': return 1;
      case 'O': case 'J': case 'G': case 'S': return 2;
      case 'V': return 3;
      case 'r': case 'b': return 0;
      default: return -1;
    }
  }
  // The next `bytes` bytes as a little-endian number.
  bool bits(std::size_t bytes, uint64_t& u) {
    if (text_.size() - at_ < bytes) return false;
    u = 0;
    for (std::size_t b = bytes; b-- > 0;) u = (u << 8) | static_cast<unsigned char>(text_[at_ + b]);
    at_ += bytes;
    return true;
  }
  bool whole(std::size_t bytes = 4) {
    uint64_t u = 0;
    if (!bits(bytes, u)) return false;
    spell(bytes == 2 ? static_cast<int64_t>(static_cast<int16_t>(u))
                     : static_cast<int64_t>(static_cast<int32_t>(u)));
    return true;
  }
  bool real() {
    uint64_t u = 0;
    if (!bits(8, u)) return false;
    double v = 0.0;
    std::memcpy(&v, &u, sizeof v);
    spell(v);
    return true;
  }
  template <class T>
  void spell(T v) {
    char buf[40];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v);
    line_ += ' ';
    line_.append(buf, ec == std::errc() ? end : buf);
  }
  // One line's worth of bytes. At the end of the file there is none; a line that the file cuts
  // short is given as far as it goes, and `cut()` says so.
  bool nextBinary(Line& line, Shape shape) {
    const std::size_t start = at_;
    line_.clear();
    if (at_ >= text_.size()) return false;
    bool ok = true;
    if (shape == Shape::Segment || shape == Shape::Term || shape == Shape::Bound)
      line_ += text_[at_++];
    {
      const char key = line_.empty() ? ' ' : line_[0];
      switch (shape) {
        case Shape::Segment:
          for (int k = segmentCounts(key); ok && k > 0; --k) ok = whole();
          if (ok && key == 'S') {  // "Skind count name", the name after its length
            line_.erase(1, 1);
            uint64_t length = 0;
            ok = bits(4, length) && length <= text_.size() - at_;
            if (ok) line_.append(" ").append(text_, at_, length);
            if (ok) at_ += length;
          }
          break;
        case Shape::Term:
          if (key == 'n') ok = real();
          else if (key == 'o' || key == 'v' || key == 'l') ok = whole();
          else if (key == 's') ok = whole(2);
          break;
        case Shape::Count:
          ok = whole();
          break;
        case Shape::Pair:
          ok = whole() && real();
          break;
        case Shape::WholePair:
          ok = whole() && whole();
          break;
        case Shape::Bound: {
          static constexpr int kValues[] = {2, 1, 1, 0, 1};
          const int code = key - '0';
          line_[0] = ' ';
          line_ += std::to_string(code);
          for (int k = code >= 0 && code < 5 ? kValues[code] : 0; ok && k > 0; --k) ok = real();
          break;
        }
      }
    }
    cut_ = !ok;
    if (cut_) {  // no number of it can be read, and nothing after it
      line_ += " ?";
      at_ = text_.size();
    }
    line = {line_, static_cast<int64_t>(start)};
    return true;
  }

  std::string path_;
  std::string text_;
  std::size_t at_ = 0;
  int64_t number_ = 0;
  bool binary_ = false;
  bool cut_ = false;
  std::string line_;  // the line spelled out of the binary form
};

// Whole numbers and reals of one line, blank-separated.
bool splitNumbers(std::string_view s, std::vector<double>& out) {
  out.clear();
  std::size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && std::isspace(static_cast<unsigned char>(s[i]))) ++i;
    if (i == s.size()) break;
    std::size_t j = i;
    while (j < s.size() && !std::isspace(static_cast<unsigned char>(s[j]))) ++j;
    double v = 0.0;
    const char* first = s.data() + i;
    const char* last = s.data() + j;
    if (*first == '+') ++first;
    auto [ptr, ec] = std::from_chars(first, last, v);
    if (ec != std::errc() || ptr != last) {
      std::string word(s.substr(i, j - i));
      if (word == "Infinity" || word == "inf") v = kHostInf;
      else if (word == "-Infinity" || word == "-inf") v = -kHostInf;
      else return false;
    }
    out.push_back(v);
    i = j;
  }
  return true;
}

bool wholeNumber(double v) { return std::isfinite(v) && v == std::floor(v) && std::fabs(v) < 2e9; }

class NlReader {
 public:
  NlReader(const std::string& path, std::string text, HostInstance& inst, std::string& error)
      : path_(path), in_(path, std::move(text)), inst_(inst), error_(error) {}

  bool read();

 private:
  bool fail(const Line& line, const std::string& what) {
    error_ = in_.at(line) + what + (in_.cut() ? " (the file ends there)" : "");
    return false;
  }
  // A header or segment line of whole numbers: `count` of them at least, `most` at most.
  bool numbers(const Line& line, std::string_view text, std::size_t count, std::size_t most,
               std::vector<long>& out, const char* what);
  bool header();
  bool expression(std::vector<int32_t>& vars, bool& single, double& constant);
  // `count` lines "index number" of the segment begun on `head` (J, G and V terms, x, d and
  // suffix values), each index below `limit`.
  bool pairLines(const Line& head, long count, int32_t limit, std::vector<Linear>& out,
                 Shape shape = Shape::Pair);
  bool boundLines(const Line& head, long count, std::vector<int>& code, std::vector<double>& lo,
                  std::vector<double>& up, bool rows);
  bool build();
  bool readNames(const std::string& file, std::size_t least, std::size_t most,
                 std::vector<std::string>& names, bool& present);

  std::string path_;
  NlText in_;
  HostInstance& inst_;
  std::string& error_;

  long nVar_ = 0, nCon_ = 0, nObj_ = 0, nlc_ = 0, nlvc_ = 0, nlvo_ = 0, nlvb_ = 0;
  long nwv_ = 0, nbv_ = 0, niv_ = 0, nlvbi_ = 0, nlvci_ = 0, nlvoi_ = 0, nzc_ = 0, nzo_ = 0;
  long defined_ = 0;
  std::vector<std::vector<int32_t>> definedVars_;  // the variables behind each defined variable
  std::vector<std::vector<int32_t>> conVars_, objVars_;
  std::vector<double> conConstant_, objConstant_;
  std::vector<char> conComplex_;  // a constant expression of more than one term
  std::vector<std::vector<Linear>> conLinear_, objLinear_;
  std::vector<int> objSense_;
  std::vector<int> conCode_, varCode_;
  std::vector<double> conLo_, conUp_, varLo_, varUp_;
  std::vector<double> x0_;
  std::vector<int32_t> stamp_;
  int32_t stampNow_ = 0;
};

bool NlReader::numbers(const Line& line, std::string_view text, std::size_t count,
                       std::size_t most, std::vector<long>& out, const char* what) {
  std::vector<double> values;
  if (!splitNumbers(text, values) || values.size() < count || values.size() > most)
    return fail(line, std::string("expected ") + what);
  out.clear();
  for (double v : values) {
    if (!wholeNumber(v) || v < 0) return fail(line, std::string("expected ") + what);
    out.push_back(static_cast<long>(v));
  }
  out.resize(most, 0);
  return true;
}

bool NlReader::header() {
  Line l;
  if (!in_.next(l) || l.text.empty()) {
    error_ = path_ + ": an empty file, not an AMPL .nl file";
    return false;
  }
  if (l.text[0] != 'g' && l.text[0] != 'b')
    return fail(l, "not an AMPL .nl file (its first line begins with g, or b in the binary form)");
  const bool binary = l.text[0] == 'b';
  std::vector<long> v;
  struct Step {
    std::size_t least, most;
    const char* what;
  };
  const Step steps[] = {
      {5, 6, "the counts of variables, constraints, objectives, ranges and equations"},
      {2, 6, "the counts of nonlinear constraints and objectives"},
      {2, 2, "the counts of network constraints"},
      {3, 3, "the counts of nonlinear variables in constraints, objectives and both"},
      {4, 4, "the counts of linear network variables, functions, arithmetic and flags"},
      {5, 5, "the counts of discrete variables"},
      {2, 2, "the counts of Jacobian and gradient entries"},
      {2, 2, "the longest names of constraints and variables"},
      {5, 5, "the counts of common expressions"},
  };
  for (const Step& s : steps) {
    if (!in_.need(l, "the end of the header", error_, Shape::Segment)) return false;
    if (!numbers(l, l.text, s.least, s.most, v, s.what)) return false;
    if (&s == &steps[0]) {
      nVar_ = v[0]; nCon_ = v[1]; nObj_ = v[2];
      if (v[5] > 0) return fail(l, "logical constraints are not read by this host");
    } else if (&s == &steps[1]) {
      nlc_ = v[0];
      if (v[2] > 0) return fail(l, "complementarity constraints are not read by this host");
      if (nlc_ > nCon_ || v[1] > nObj_)
        return fail(l, "more nonlinear constraints or objectives than there are");
    } else if (&s == &steps[3]) {
      nlvc_ = v[0]; nlvo_ = v[1]; nlvb_ = v[2];
      if (nlvc_ > nVar_ || nlvo_ > nVar_ || nlvb_ > std::min(nlvc_, nlvo_))
        return fail(l, "the counts of nonlinear variables do not fit the variables");
    } else if (&s == &steps[4]) {
      nwv_ = v[0];
      if (v[1] > 0) return fail(l, "imported functions are not read by this host");
    } else if (&s == &steps[5]) {
      nbv_ = v[0]; niv_ = v[1]; nlvbi_ = v[2]; nlvci_ = v[3]; nlvoi_ = v[4];
      if (nbv_ + niv_ + std::max(nlvc_, nlvo_) + nwv_ > nVar_ || nlvbi_ > nlvb_ ||
          nlvci_ > nlvc_ - nlvb_ || nlvoi_ > nlvo_ - nlvb_)
        return fail(l, "the counts of discrete variables do not fit the variables");
    } else if (&s == &steps[6]) {
      nzc_ = v[0]; nzo_ = v[1];
    } else if (&s == &steps[8]) {
      defined_ = v[0] + v[1] + v[2] + v[3] + v[4];
    }
  }
  if (binary) in_.binaryFromHere();
  // Every variable and constraint takes a line of its bounds, every objective and defined
  // variable a segment: counts beyond the file's size are a damaged header.
  const auto bytes = static_cast<long>(in_.size());
  if (nVar_ > bytes || nCon_ > bytes || nObj_ > bytes || defined_ > bytes) {
    error_ = path_ + ": the counts of the header are more than a file of " +
             std::to_string(bytes) + " bytes can hold";
    return false;
  }
  const auto m = static_cast<std::size_t>(nCon_), o = static_cast<std::size_t>(nObj_);
  conVars_.resize(m); conConstant_.assign(m, 0.0); conComplex_.assign(m, 0); conLinear_.resize(m);
  objVars_.resize(o); objConstant_.assign(o, 0.0); objLinear_.resize(o); objSense_.assign(o, 0);
  x0_.assign(static_cast<std::size_t>(nVar_), 0.0);
  stamp_.assign(static_cast<std::size_t>(nVar_), 0);
  return true;
}

// One expression in prefix form; `vars` gets the variables it holds, each once.
bool NlReader::expression(std::vector<int32_t>& vars, bool& single, double& constant) {
  vars.clear();
  ++stampNow_;
  long open = 1, terms = 0;
  single = false;
  Line l;
  auto addVar = [&](int32_t j) {
    if (stamp_[j] != stampNow_) {
      stamp_[j] = stampNow_;
      vars.push_back(j);
    }
  };
  while (open > 0) {
    if (!in_.need(l, "the end of an expression", error_, Shape::Term)) return false;
    ++terms;
    const char kind = l.text.empty() ? ' ' : l.text[0];
    std::vector<double> v;
    if (kind == 'o' || kind == 'v' || kind == 'n' || kind == 'l' || kind == 's') {
      if (!splitNumbers(l.text.substr(1), v) || v.size() != 1)
        return fail(l, "\"" + hostShownName(l.text) + "\" is not a term of an expression");
    }
    switch (kind) {
      case 'o': {
        if (!wholeNumber(v[0])) return fail(l, "an operator number must be whole");
        int arity = operatorArity(static_cast<long>(v[0]));
        if (arity == 0)
          return fail(l, "operator " + hostShownName(l.text) + " is not read by this host");
        if (arity < 0) {
          Line count;
          std::vector<long> c;
          if (!in_.need(count, "the count of operands", error_, Shape::Count) ||
              !numbers(count, count.text, 1, 1, c, "the count of operands") )
            return false;
          if (c[0] < 1) return fail(count, "an operator needs one operand or more");
          arity = static_cast<int>(std::min<long>(c[0], 1000000000));
        }
        open += arity - 1;
        break;
      }
      case 'v': {
        if (!wholeNumber(v[0]) || v[0] < 0) return fail(l, "a variable number must be whole");
        const auto j = static_cast<long>(v[0]);
        if (j < nVar_) {
          addVar(static_cast<int32_t>(j));
        } else if (j - nVar_ < static_cast<long>(definedVars_.size())) {
          for (int32_t k : definedVars_[static_cast<std::size_t>(j - nVar_)]) addVar(k);
        } else {
          return fail(l, "variable v" + std::to_string(j) + " is neither a variable nor defined before");
        }
        --open;
        break;
      }
      case 'n': case 'l': case 's':
        constant = v[0];
        --open;
        break;
      default:
        return fail(l, "\"" + hostShownName(l.text) + "\" is not a term of an expression" +
                           (kind == 'f' || kind == 'h' ? " read by this host" : ""));
    }
  }
  single = terms == 1 && vars.empty();
  return true;
}

bool NlReader::pairLines(const Line& head, long count, int32_t limit, std::vector<Linear>& out,
                         Shape shape) {
  Line l;
  std::vector<double> v;
  for (long k = 0; k < count; ++k) {
    if (!in_.need(l, "the end of the segment that begins " + in_.place(head), error_, shape))
      return false;
    if (!splitNumbers(l.text, v) || v.size() != 2 || !wholeNumber(v[0]) || v[0] < 0 ||
        v[0] >= limit || !std::isfinite(v[1]))
      return fail(l, "expected an index below " + std::to_string(limit) + " and a number");
    out.push_back({static_cast<int32_t>(v[0]), v[1]});
  }
  return true;
}

// Bounds of rows (r) or columns (b): 0 l u, 1 u, 2 l, 3 (free), 4 c (fixed).
bool NlReader::boundLines(const Line& head, long count, std::vector<int>& code,
                          std::vector<double>& lo, std::vector<double>& up, bool rows) {
  if (!code.empty()) return fail(head, std::string("a second ") + (rows ? "r" : "b") + " segment");
  code.resize(static_cast<std::size_t>(count));
  lo.assign(static_cast<std::size_t>(count), -kHostInf);
  up.assign(static_cast<std::size_t>(count), kHostInf);
  Line l;
  std::vector<double> v;
  static constexpr std::size_t kValues[] = {2, 1, 1, 0, 1};
  for (long k = 0; k < count; ++k) {
    if (!in_.need(l, "the end of the bounds", error_, Shape::Bound)) return false;
    if (!splitNumbers(l.text, v) || v.empty() || !wholeNumber(v[0]) || v[0] < 0 || v[0] > 5)
      return fail(l, "expected a bound code from 0 to 4 and its values");
    const int c = static_cast<int>(v[0]);
    if (c == 5) return fail(l, "complementarity constraints are not read by this host");
    if (v.size() != kValues[c] + 1) return fail(l, "bound code " + std::to_string(c) + " takes " +
                                                      std::to_string(kValues[c]) + " values");
    for (std::size_t t = 1; t < v.size(); ++t)
      if (std::isnan(v[t])) return fail(l, "a bound is not a number");
    const auto at = static_cast<std::size_t>(k);
    code[at] = c;
    if (c == 0) { lo[at] = v[1]; up[at] = v[2]; }
    if (c == 1) up[at] = v[1];
    if (c == 2) lo[at] = v[1];
    if (c == 4) lo[at] = up[at] = v[1];
  }
  return true;
}

// Lines "index value" (x, d and suffix segments); into `into` when given.

bool NlReader::read() {
  if (!header()) return false;
  Line l;
  std::vector<long> v;
  long jCount = 0, gCount = 0, definedSeen = 0;
  std::vector<char> conSeen(static_cast<std::size_t>(nCon_), 0), objSeen(static_cast<std::size_t>(nObj_), 0);
  const auto vars = static_cast<int32_t>(nVar_);
  while (in_.next(l)) {
    if (l.text.empty()) return fail(l, "an empty line where a segment begins");
    const char kind = l.text[0];
    const std::string_view rest = l.text.substr(1);
    bool single = false;
    double constant = 0.0;
    switch (kind) {
      case 'C': case 'O': {
        const bool con = kind == 'C';
        if (!numbers(l, rest, con ? 1 : 2, con ? 1 : 2, v, con ? "C and a constraint number"
                                                                : "O, an objective number and 0 or 1"))
          return false;
        const long limit = con ? nCon_ : nObj_;
        if (v[0] >= limit) return fail(l, std::string(con ? "constraint " : "objective ") +
                                              std::to_string(v[0]) + " does not exist");
        auto& seen = con ? conSeen : objSeen;
        if (seen[static_cast<std::size_t>(v[0])]) return fail(l, std::string(1, kind) + std::to_string(v[0]) + " given twice");
        seen[static_cast<std::size_t>(v[0])] = 1;
        const auto at = static_cast<std::size_t>(v[0]);
        if (!con) {
          if (v[1] > 1) return fail(l, "an objective's sense is 0 (minimize) or 1 (maximize)");
          objSense_[at] = static_cast<int>(v[1]);
        }
        auto& target = con ? conVars_[at] : objVars_[at];
        if (!expression(target, single, constant)) return false;
        if (single) (con ? conConstant_[at] : objConstant_[at]) = constant;
        else if (target.empty() && con) conComplex_[at] = 1;
        break;
      }
      case 'V': {
        if (!numbers(l, rest, 3, 3, v, "V, a variable number and two counts")) return false;
        if (v[0] != nVar_ + definedSeen || definedSeen >= defined_)
          return fail(l, "defined variable v" + std::to_string(v[0]) + " out of its order or count");
        std::vector<Linear> linear;
        if (!pairLines(l, v[1], vars, linear)) return false;
        std::vector<int32_t> inner;
        if (!expression(inner, single, constant)) return false;
        ++stampNow_;
        for (int32_t j : inner) stamp_[j] = stampNow_;
        for (const Linear& t : linear)
          if (stamp_[t.var] != stampNow_) {
            stamp_[t.var] = stampNow_;
            inner.push_back(t.var);
          }
        definedVars_.push_back(std::move(inner));
        ++definedSeen;
        break;
      }
      case 'J': case 'G': {
        const bool con = kind == 'J';
        if (!numbers(l, rest, 2, 2, v, con ? "J, a constraint number and a count"
                                           : "G, an objective number and a count"))
          return false;
        if (v[0] >= (con ? nCon_ : nObj_)) return fail(l, std::string(con ? "constraint " : "objective ") +
                                                          std::to_string(v[0]) + " does not exist");
        auto& target = con ? conLinear_[static_cast<std::size_t>(v[0])] : objLinear_[static_cast<std::size_t>(v[0])];
        if (!target.empty()) return fail(l, std::string(1, kind) + std::to_string(v[0]) + " given twice");
        if (!pairLines(l, v[1], vars, target)) return false;
        (con ? jCount : gCount) += v[1];
        break;
      }
      case 'r':
        if (!boundLines(l, nCon_, conCode_, conLo_, conUp_, true)) return false;
        break;
      case 'b':
        if (!boundLines(l, nVar_, varCode_, varLo_, varUp_, false)) return false;
        break;
      case 'x': case 'd': {
        if (!numbers(l, rest, 1, 1, v, kind == 'x' ? "x and a count" : "d and a count")) return false;
        std::vector<Linear> values;
        if (!pairLines(l, v[0], static_cast<int32_t>(kind == 'x' ? nVar_ : nCon_), values))
          return false;
        if (kind == 'x')
          for (const Linear& t : values) x0_[static_cast<std::size_t>(t.var)] = t.coef;
        break;
      }
      case 'k': {
        if (!numbers(l, rest, 1, 1, v, "k and a count")) return false;
        if (v[0] != std::max(0L, nVar_ - 1)) return fail(l, "k must give " + std::to_string(std::max(0L, nVar_ - 1)) + " counts");
        Line c;
        std::vector<long> one;
        for (long k = 0; k < v[0]; ++k)
          if (!in_.need(c, "the end of the column counts", error_, Shape::Count) ||
              !numbers(c, c.text, 1, 1, one, "a column count"))
            return false;
        break;
      }
      case 'S': {
        std::vector<double> s;
        std::string_view t = rest;
        const auto blank = t.find_first_of(" \t");
        const auto second = blank == std::string_view::npos ? t.npos : t.find_first_of(" \t", t.find_first_not_of(" \t", blank));
        if (!splitNumbers(t.substr(0, second), s) || s.size() != 2 || !wholeNumber(s[0]) ||
            !wholeNumber(s[1]) || s[1] < 0 || in_.cut())
          return fail(l, "expected S, a suffix kind, a count and a name");
        const int target = static_cast<int>(s[0]) & 3;
        const long limit = target == 0 ? nVar_ : target == 1 ? nCon_ : target == 2 ? nObj_ : 1;
        std::vector<Linear> values;
        if (!pairLines(l, static_cast<long>(s[1]), static_cast<int32_t>(limit), values,
                       (static_cast<int>(s[0]) & 4) ? Shape::Pair : Shape::WholePair))
          return false;
        break;
      }
      case 'F':
        return fail(l, "imported functions are not read by this host");
      case 'L':
        return fail(l, "logical constraints are not read by this host");
      default:
        return fail(l, "\"" + hostShownName(l.text.substr(0, 20)) + "\" begins no segment of a .nl file");
    }
  }
  if (nCon_ > 0 && conCode_.empty()) {
    error_ = path_ + ": the file has no r segment, the bounds of its constraints";
    return false;
  }
  if (nVar_ > 0 && varCode_.empty()) {
    error_ = path_ + ": the file has no b segment, the bounds of its variables";
    return false;
  }
  if (jCount != nzc_ || gCount != nzo_) {
    error_ = path_ + ": the header gives " + std::to_string(nzc_) + " Jacobian and " +
             std::to_string(nzo_) + " gradient entries, the file " + std::to_string(jCount) +
             " and " + std::to_string(gCount) + " (is it cut short?)";
    return false;
  }
  if (definedSeen != defined_) {
    error_ = path_ + ": the header gives " + std::to_string(defined_) +
             " defined variables, the file " + std::to_string(definedSeen);
    return false;
  }
  for (long c = 0; c < nCon_; ++c)
    if (conComplex_[static_cast<std::size_t>(c)]) {
      error_ = path_ + ": constraint " + std::to_string(c) +
               " has an expression without variables that is more than one number";
      return false;
    }
  return build();
}

std::string stem(const std::string& path) {
  const auto slash = path.find_last_of('/');
  const auto dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return path;
  return path.substr(0, dot);
}

bool NlReader::readNames(const std::string& file, std::size_t least, std::size_t most,
                         std::vector<std::string>& names, bool& present) {
  std::ifstream f(file, std::ios::binary);
  present = static_cast<bool>(f);
  names.clear();
  if (!present) return true;
  std::string line;
  int64_t number = 0;
  while (std::getline(f, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line.find_first_of(" \t") != std::string::npos) {
      error_ = file + ":" + std::to_string(number) + ": " +
               (line.empty() ? "an empty name" : "a name with a blank in it");
      return false;
    }
    if (const std::string fault = hostNameFault(line); !fault.empty()) {
      error_ = file + ":" + std::to_string(number) + ": " + fault;
      return false;
    }
    names.push_back(std::move(line));
  }
  if (names.size() < least || names.size() > most) {
    error_ = file + ": " + std::to_string(names.size()) + " names, the model needs " +
             std::to_string(least) + (most > least ? " or " + std::to_string(most) : "");
    return false;
  }
  return true;
}

bool NlReader::build() {
  const std::string base = stem(path_);
  std::vector<std::string> rowFile, colFile;
  bool haveRows = false, haveCols = false;
  const auto m = static_cast<std::size_t>(nCon_), n = static_cast<std::size_t>(nVar_),
             o = static_cast<std::size_t>(nObj_);
  if (!readNames(base + ".row", m, m + o, rowFile, haveRows) ||
      !readNames(base + ".col", n, n, colFile, haveCols))
    return false;

  // The derivatives at the file's initial point, for every item with a nonlinear part.
  std::vector<NlRequest> requests;
  std::vector<int32_t> requestOf(m + o, -1);
  auto ask = [&](int32_t item, const std::vector<int32_t>& vars, std::size_t slot) {
    if (vars.empty()) return;
    requestOf[slot] = static_cast<int32_t>(requests.size());
    requests.push_back({item, vars});
  };
  for (std::size_t k = 0; k < o; ++k) ask(-1 - static_cast<int32_t>(k), objVars_[k], m + k);
  for (std::size_t c = 0; c < m; ++c) ask(static_cast<int32_t>(c), conVars_[c], c);
  std::vector<NlAnswer> answers;
  if (!requests.empty() && !nlEvaluateInChild(path_, x0_, requests, answers, error_)) return false;

  const SymbolRule scalar{SymbolRuleKind::Scalar, 0};
  const SymbolRule digits{SymbolRuleKind::TrailingDigits, 0};
  std::vector<HostName> rowNames, colNames;
  std::vector<char> rowMade, colMade;  // 1: a name the reader makes (hostNameChanges)
  // Variable groups of the file: nonlinear first, then linear arcs and others, binary, integer.
  const long nonlinear = std::max(nlvc_, nlvo_);
  auto integerVar = [&](long j) {
    if (j >= nVar_ - niv_) return true;
    if (j < nlvb_) return j >= nlvb_ - nlvbi_;
    if (j < nlvc_) return j >= nlvc_ - nlvci_;
    if (j < nonlinear) return j >= nonlinear - nlvoi_;
    return false;
  };
  for (long j = 0; j < nVar_; ++j) {
    const auto at = static_cast<std::size_t>(j);
    const bool binaryGroup = j >= nVar_ - niv_ - nbv_ && j < nVar_ - niv_;
    int32_t type = kVarContinuous;
    if (binaryGroup || (integerVar(j) && varLo_[at] == 0.0 && varUp_[at] == 1.0)) type = kVarBinary;
    else if (integerVar(j)) type = kVarInteger;
    inst_.colType.push_back(type);
    inst_.colLower.push_back(varLo_[at] + 0.0);
    inst_.colUpper.push_back(varUp_[at] + 0.0);
    std::string name;
    if (haveCols) {
      name = colFile[at];
    } else {
      const char* prefix = j < nonlinear ? "nv" : type == kVarBinary ? "b" : type == kVarInteger ? "i" : "v";
      name = prefix + std::to_string(j + 1);
    }
    colNames.push_back(hostParseName(name, haveCols ? scalar : digits));
    colMade.push_back(haveCols ? 0 : 1);
  }

  // Rows, each with its entries (variable, value, nonlinear mark).
  struct Entry {
    int32_t col;
    double value;
    int32_t nonlinear;
  };
  std::vector<std::vector<Entry>> rowEntries;
  std::vector<double> value(n, 0.0);
  std::vector<int32_t> mark(n, 0);
  std::vector<int32_t> place(n, -1);
  auto addRow = [&](const HostName& name, bool made, int32_t type, double rhs, int32_t item,
                    const std::vector<Linear>& linear, const std::vector<int32_t>& vars,
                    int32_t request) {
    std::vector<Entry> entries;
    for (const Linear& t : linear) {
      if (place[t.var] < 0) {
        place[t.var] = static_cast<int32_t>(entries.size());
        entries.push_back({t.var, 0.0, 0});
      }
      entries[place[t.var]].value += t.coef;
    }
    for (std::size_t k = 0; k < vars.size(); ++k) {
      const int32_t j = vars[k];
      if (place[j] < 0) {
        place[j] = static_cast<int32_t>(entries.size());
        entries.push_back({j, 0.0, 0});
      }
      Entry& e = entries[place[j]];
      e.nonlinear = 1;
      const NlAnswer& a = answers[static_cast<std::size_t>(request)];
      e.value = a.ok ? a.derivatives[k] : 0.0;
    }
    for (const Entry& e : entries) place[e.col] = -1;
    rowNames.push_back(name);
    rowMade.push_back(made ? 1 : 0);
    inst_.rowType.push_back(type);
    inst_.rowRhs.push_back(rhs + 0.0);
    inst_.rowNlItem.push_back(item);
    rowEntries.push_back(std::move(entries));
  };
  for (std::size_t k = 0; k < o; ++k) {
    const bool named = haveRows && rowFile.size() == m + o;
    const HostName parsed = hostParseName(named ? rowFile[m + k] : "o" + std::to_string(k + 1),
                                          named ? scalar : digits);
    if (k == 0) {
      inst_.minimizing = objSense_[0] == 0;
      inst_.objRow = static_cast<int32_t>(inst_.rowType.size()) + 1;
    }
    addRow(parsed, !named, k == 0 ? kRowE : kRowN, k == 0 ? -objConstant_[0] : 0.0, -1 - static_cast<int32_t>(k),
           objLinear_[k], objVars_[k], requestOf[m + k]);
  }
  for (std::size_t c = 0; c < m; ++c) {
    const std::string name = haveRows ? rowFile[c] : (static_cast<long>(c) < nlc_ ? "nc" : "c") + std::to_string(c + 1);
    HostName parsed = hostParseName(name, haveRows ? scalar : digits);
    // The constant of a linear body moves to the right-hand side.
    const double shift = conConstant_[c];
    const double lo = conLo_[c] - shift, up = conUp_[c] - shift;
    const auto item = static_cast<int32_t>(c);
    // The row type follows the bounds, so that an infinite bound of any code means none.
    const auto add = [&](const HostName& rowName, bool made, int32_t type, double rhs) {
      addRow(rowName, made, type, rhs, item, conLinear_[c], conVars_[c], requestOf[c]);
    };
    if (!std::isfinite(lo) && !std::isfinite(up)) add(parsed, !haveRows, kRowN, 0.0);
    else if (lo == up) add(parsed, !haveRows, kRowE, lo);
    else if (!std::isfinite(lo)) add(parsed, !haveRows, kRowL, up);
    else if (!std::isfinite(up)) add(parsed, !haveRows, kRowG, lo);
    else {
      add(hostMakeName(parsed.symbol + "_lo", parsed.labels), true, kRowG, lo);
      add(hostMakeName(parsed.symbol + "_up", parsed.labels), true, kRowL, up);
    }
  }
  if (o > 0) {
    colNames.push_back(hostParseName("objvar", scalar));
    colMade.push_back(1);
    inst_.colType.push_back(kVarContinuous);
    inst_.colLower.push_back(-kHostInf);
    inst_.colUpper.push_back(kHostInf);
    inst_.objVar = static_cast<int32_t>(inst_.colType.size());
    rowEntries[static_cast<std::size_t>(inst_.objRow - 1)].push_back({inst_.objVar - 1, -1.0, 0});
  }

  // Rows into columns: entries of a column in row order.
  const auto cols = inst_.colType.size();
  inst_.colStart.assign(cols + 1, 0);
  for (const auto& entries : rowEntries)
    for (const Entry& e : entries) ++inst_.colStart[static_cast<std::size_t>(e.col) + 1];
  for (std::size_t j = 0; j < cols; ++j) inst_.colStart[j + 1] += inst_.colStart[j];
  const auto nz = static_cast<std::size_t>(inst_.colStart[cols]);
  inst_.entryRow.assign(nz, 0);
  inst_.entryValue.assign(nz, 0.0);
  inst_.entryNonlinear.assign(nz, 0);
  std::vector<int32_t> fill(inst_.colStart.begin(), inst_.colStart.end() - 1);
  for (std::size_t i = 0; i < rowEntries.size(); ++i)
    for (const Entry& e : rowEntries[i]) {
      const auto k = static_cast<std::size_t>(fill[static_cast<std::size_t>(e.col)]++);
      inst_.entryRow[k] = static_cast<int32_t>(i);
      inst_.entryValue[k] = e.value;
      inst_.entryNonlinear[k] = e.nonlinear;
    }
  inst_.nlFile = path_;
  hostDistinctNames(rowNames, rowMade);
  hostDistinctNames(colNames, colMade);
  hostBuildDictionary(inst_, rowNames, colNames);
  hostCompleteInstance(inst_);
  return true;
}

}  // namespace

bool readNlModel(const std::string& path, HostInstance& inst, std::string& error) {
  std::ifstream f(path, std::ios::binary);
  if (!f) {
    error = path + ": cannot read the model file";
    return false;
  }
  std::ostringstream text;
  text << f.rdbuf();
  inst = HostInstance{};
  inst.sourcePath = path;
  const auto slash = path.find_last_of('/');
  const std::string file = slash == std::string::npos ? path : path.substr(slash + 1);
  inst.inputName = file.substr(0, file.find_last_of('.'));
  NlReader reader(path, text.str(), inst, error);
  return reader.read();
}
