#include "run/request_loop.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "host/control_file.h"
#include "host/host.h"
#include "base/procedures.h"
#include "base/text.h"
#include "request/request_line.h"
#include "run/dispatch.h"
#include "run/run_state.h"

namespace {


// The request loop's own state.
struct LoopState {
  bool requestOpen = false;
  bool requestExhausted = false;
  bool procedureRan = false;
};
LoopState loop;

// Opens the request file; false when it is missing or does not open, after the messages.
bool openRequestFile() {
  std::error_code ec;
  const bool exists = std::filesystem::exists(runState.requestPath, ec);
  if (!exists) {
    const std::string path(trimBlanks(runState.requestPath));
    for (Channel* ch : {&runState.logChannel, &runState.statusChannel}) {
      writeFree(*ch, {"Looked but couldnt find input file ", path});
      writeFree(*ch, {" If you are using the IDE then make sure"});
      writeFree(*ch, {"    your project is in the same directory as "});
      writeFree(*ch, {"    the source file or that the mrk file"});
      writeFree(*ch, {"    is in the same directory as the source file"});
      writeFree(*ch, {"    using the save as commands"});
    }
    writeFree(runState.statusChannel);
    writeFree(runState.logChannel);
    return false;
  }
  runState.requestChannel = std::fopen(runState.requestPath.c_str(), "r");
  if (runState.requestChannel == nullptr) {
    writeFree(runState.statusChannel, {"Error encountered with files opening MRK file"});
    writeFree(runState.logChannel, {"Error encountered with files opening MRK file"});
    return false;
  }
  return true;
}

// Steps 2 to 4 of reading a keyword: true with a keyword line in currentKeyword; false when
// the input is used up (end of file, or a read error after its message).
bool readKeywordLine() {
  for (;;) {
    if (!loop.requestOpen || loop.requestExhausted) return false;
    const LineRead r =
        readRequestFileLine(runState.requestChannel, runState.requestLine, MAX_LINE);
    if (r == LineRead::End) {
      loop.requestExhausted = true;
      return false;
    }
    if (r == LineRead::Error) {
      writeFree(runState.statusChannel, {"Error encountered reading MRK file"});
      writeFree(runState.logChannel, {"Error encountered reading MRK file"});
      loop.requestExhausted = true;
      return false;
    }
    int32_t isComment = 0;
    normalizeRequestLine(runState.requestLine, isComment, MAX_LINE, &runState);
    if (isComment > 0) continue;
    if (runState.commentCount > 0) echoComments();
    runState.currentKeyword = keywordText(runState.requestLine);
    return true;
  }
}

void assumeBlockPicture() {
  writeFree(runState.logChannel, {"Assuming BLOCKPIC is requested"});
  writeFree(runState.statusChannel, {"Assuming BLOCKPIC is requested"});
  runState.currentKeyword = keywordText("BLOCKPIC");
}

// Step 5 of the dispatch: the width of the next report.
void fixPageWidth() {
  if (runState.pageWidthRequest < 1) {
    const int32_t width = heldPageWidth(oveGetIntOpt(runState.environment, kOptPageWidth));
    runState.pageSize = oveGetIntOpt(runState.environment, kOptPageSize);
    if (runState.pageWidthRequest == 0) runState.pageWidthRequest = width;
  }
  // A PW= line may ask for any width from 0 to 999; reports are laid out for 50 to 254.
  runState.pageWidth = heldPageWidth(runState.pageWidthRequest);
  writeFree(runState.logChannel);
}

[[noreturn]] void endRun() {
  writeFree(runState.logChannel);
  writeFree(runState.logChannel, {"MODRAKE All Done"});
  writeFree(runState.logChannel);
  if (!runState.solutionExpected) {
    ovmSolveStatSet(runState.model, 1);
    ovmModelStatSet(runState.model, 14);
  }
  writeLine(runState.statusChannel, "A2", {"=2"});
  stopRun(runState, 0);
}

}  // namespace

void setScaling(int32_t flag) {
  runState.useScale = 0;
  if (flag != 0 && ovmScaleOpt(runState.model) != 0) runState.useScale = 1;
}

void upperCase(std::string& text, int32_t length) {
  const size_t n = std::min(text.size(), static_cast<size_t>(length > 0 ? length : 0));
  for (size_t p = 0; p < n; ++p) {
    if (text[p] >= 'a' && text[p] <= 'z') text[p] = static_cast<char>(text[p] - 'a' + 'A');
  }
}

void echoComments() {
  if (runState.commentCount <= 0) return;
  writeFree(runState.statusChannel);
  writeFree(runState.statusChannel, {" User comments "});
  writeFree(runState.statusChannel);
  const int32_t kept = std::min(runState.commentCount, COMMENT_CAPACITY);
  for (int32_t k = 0; k < kept; ++k) {
    std::string& text = runState.commentLines[static_cast<size_t>(k)];
    text.resize(COMMENT_LEN, ' ');
    writeLine(runState.statusChannel, "4X,A", {text});
    writeLine(runState.logChannel, "4X,A", {text});
    text.clear();
  }
  runState.commentCount = 0;
}

void writeProcedureTitles(const ProcedureRow& row) {
  std::string keyword(row.keyword);
  keyword.append(static_cast<size_t>(row.titleBlanks), ' ');
  writeFree(runState.logChannel, {"#### Executing " + keyword});
  writeFree(runState.statusChannel, {"----#### Executing " + keyword});
  writeLine(runState.statusChannel, "A", {"=L#### MODRAKE " + keyword});
}

void runRequestLoop() {
  // Where the loop goes on: reading the next keyword, its step 5 (the requests are used up),
  // or the dispatch of the keyword in currentKeyword.
  enum class Next { ReadKeyword, UsedUp, Dispatch };
  Next next = Next::ReadKeyword;

  loop.requestOpen = openRequestFile();
  if (!loop.requestOpen) {
    loop.procedureRan = true;
    assumeBlockPicture();
    next = Next::Dispatch;
  }

  for (;;) {
    if (next == Next::ReadKeyword) next = readKeywordLine() ? Next::Dispatch : Next::UsedUp;
    if (next == Next::UsedUp) {
      if (loop.procedureRan) endRun();
      loop.procedureRan = true;
      assumeBlockPicture();
    }
    next = Next::ReadKeyword;

    lookupKeyword(runState, runState.currentKeyword, runState.procIndex, 1);
    if (runState.procIndex == PROC_PAGE_WIDTH) {
      setPageWidth(runState, runState.currentKeyword);
      std::error_code ec;
      const bool stillThere = std::filesystem::exists(runState.requestPath, ec);
      next = (stillThere && readKeywordLine()) ? Next::Dispatch : Next::UsedUp;
      continue;
    }
    if (runState.procIndex == PROC_END) {
      next = Next::UsedUp;
      continue;
    }
    if (runState.procIndex == PROC_NONE) {
      const char first = runState.currentKeyword.empty() ? ' ' : runState.currentKeyword[0];
      if (first != '?' && first != '#') {
        writeFree(runState.logChannel,
                  {"CANT MATCH KEYWORD ", keywordText(runState.currentKeyword)});
      }
      continue;
    }

    fixPageWidth();
    const ProcedureRow& procedure = procedureRow(static_cast<Proc>(runState.procIndex));
    hostPhaseBegin(runState.environment, procedure.keyword);
    const bool sectionRead = runProcedure(procedure, runState);
    hostPhaseEnd(runState.environment);
    loop.procedureRan = true;
    if (sectionRead) next = Next::Dispatch;
  }
}
