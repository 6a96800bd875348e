// Helpers of the request tests: selection tables in memory and a section read from given lines,
// and a procedure that reads its own section, run on a model built in memory. Whole reports
// are golden files under tests/golden/requests/, written by hand.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "model/work_array.h"
#include "request/section_reader.h"

namespace request_test {

// Storage and views for both sides, `capacity` requests each; filled with junk first.
struct Tables {
  std::vector<char> text[2];
  std::vector<int32_t> ints[2];
  RequestLists lists;

  explicit Tables(int32_t colCapacity = 10, int32_t rowCapacity = 10)
      : lists{make(0, colCapacity), make(1, rowCapacity)} {}
  SelectionSide make(int side, int32_t c) {
    const size_t n = static_cast<size_t>(c);
    text[side].assign(n * (MAX_LINE + NAME_LEN + LABELS_LEN) + 1, 'x');
    ints[side].assign(n * (1 + SPEC_SLOTS) + 1, 7);
    char* t = text[side].data();
    int32_t* i = ints[side].data();
    return {c,
            {t, MAX_LINE, c},
            {t + n * MAX_LINE, NAME_LEN, c},
            {t + n * (MAX_LINE + NAME_LEN), LABELS_LEN, c},
            {i, c},
            {i + n, c, SPEC_SLOTS}};
  }
};

// A text without its trailing blanks.
inline std::string trim(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return std::string(s);
}

// Request k of a side, written as SYMBOL|dim|pattern 1|...|pattern dim|direct|cross, with
// blank patterns as "_".
inline std::string request(const SelectionSide& side, int32_t k) {
  std::string out = trim(side.symbol.view(k)) + "|" + std::to_string(side.dim[k]);
  for (int32_t p = 1; p <= side.dim[k]; ++p) {
    const std::string l = trim(side.label(k, p));
    out += "|" + (l.empty() ? std::string("_") : l);
  }
  return out + "|" + std::to_string(side.selSpec(k, SPEC_DIRECT)) + "|" +
         std::to_string(side.selSpec(k, SPEC_CROSS));
}

// One section read from `lines` under procedure `procIndex`.
struct Section {
  Tables tables;
  RequestFlags flags;
  std::string keyword;
  std::vector<std::string> status, log;
  Channel statusChannel{nullptr, &status}, logChannel{nullptr, &log};

  explicit Section(int32_t colCapacity = 10, int32_t rowCapacity = 10)
      : tables(colCapacity, rowCapacity) {}

  void read(int32_t procIndex, const std::vector<std::string>& lines,
            int32_t analysisProblemsPending = 0) {
    std::FILE* file = std::tmpfile();
    for (const std::string& l : lines) {
      std::fwrite(l.data(), 1, l.size(), file);
      std::fputc('\n', file);
    }
    if (analysisProblemsPending != 1) std::rewind(file);  // the reader rewinds that one itself
    SectionContext context;
    context.run = &runState;
    context.procIndex = procIndex;
    context.defaultMode = procIndex == PROC_MATCHIT ? DEFAULT_COUNT : DEFAULT_SHOW;
    context.analysisProblemsPending = analysisProblemsPending;
    (analysisProblemsPending == 1 ? context.analysisChannel : context.requestChannel) = file;
    context.statusChannel = &statusChannel;
    context.logChannel = &logChannel;
    readRequestSection(context, tables.lists, flags, keyword);
    std::fclose(file);
  }
  std::vector<std::string> vars() const { return all(tables.lists.col, tables.lists.varCount); }
  std::vector<std::string> equs() const { return all(tables.lists.row, tables.lists.equCount); }
  static std::vector<std::string> all(const SelectionSide& side, int32_t count) {
    std::vector<std::string> out;
    for (int32_t k = 1; k <= count; ++k) out.push_back(request(side, k));
    return out;
  }
};

struct SectionRun {
  analysis_test::RunFixture fx;
  std::FILE* requests = nullptr;

  // Starts the run and hands the procedure `lines` as its section.
  void start(const HostInstance& inst, int32_t procIndex, int32_t pageWidth,
             const std::vector<std::string>& lines) {
    fx.start(inst, pageWidth);
    runState.procIndex = procIndex;
    requests = std::tmpfile();
    for (const std::string& l : lines) std::fprintf(requests, "%s\n", l.c_str());
    std::rewind(requests);
    runState.requestChannel = requests;
  }
  // The regions of phase P on the run's sizes.
  template <Phase P>
  typename PhaseRecord<P>::type regions() const {
    bool fits = false;
    auto r = phaseRegions<P>(workArraySizes(runState), fits);
    EXPECT_TRUE(fits);
    return r;
  }
  ~SectionRun() {
    runState.requestChannel = nullptr;
    if (requests != nullptr) std::fclose(requests);
  }
};

}  // namespace request_test
