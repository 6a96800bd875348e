#include "run/dispatch.h"

#include <string>

#include "analysis/analysis.h"
#include "listings/blocklist.h"
#include "model/work_array.h"
#include "pictures/blockpic.h"
#include "request/request_line.h"
#include "run/request_loop.h"
#include "run/run_state.h"

namespace {

void partition(int32_t phase) {
  int64_t total = 0;
  int32_t status = 0;
  partitionWorkArray(1, total, phase, PICTURE_WIDTH, status);
}

void statusBlank() { writeFree(runState.statusChannel); }

void comments() {
  if (runState.commentCount > 0) echoComments();
}

// Scale factors in the procedures that ask for them at scaleRequest 1 or more.
void scaleAboveZero() { setScaling(runState.scaleRequest > 0 ? 1 : 0); }
// ... and in those that ask for them at 0 or more.
void scaleFromZero() { setScaling(runState.scaleRequest >= 0 ? 1 : 0); }

// Passes over the lines of a procedure's section as its reader would: up to the next line
// that is a procedure keyword, which is left in currentKeyword, or to the end of the input,
// which leaves THEEND. Comments are kept for their echo; PW= lines set the width.
void passOverSection() {
  std::string line;
  std::string keyword(NAME_LEN, ' ');
  while (runState.requestChannel != nullptr) {
    const LineRead r = readRequestFileLine(runState.requestChannel, line, MAX_LINE);
    if (r == LineRead::Error) {
      writeFree(runState.statusChannel, {"Error encountered reading MRK file"});
      writeFree(runState.logChannel, {"Error encountered reading MRK file"});
    }
    if (r != LineRead::Ok) break;
    int32_t isComment = 0;
    normalizeRequestLine(line, isComment, 1, MAX_LINE);
    if (isComment > 0) continue;
    keyword.assign(line, 0, NAME_LEN);
    int32_t word = 0;
    lookupKeyword(keyword, word, 2);
    if (word > 0) {
      runState.currentKeyword = keyword;
      return;
    }
  }
  runState.currentKeyword = "THEEND";
  runState.currentKeyword.resize(NAME_LEN, ' ');
}

// In place of a procedure that this build lacks: one line on the status file and the log; its
// section is passed over.
void unavailable(int32_t procIndex) {
  const std::string text = "**** " + std::string(procedureKeyword(procIndex)) +
                           " is not available in this build";
  writeFree(runState.statusChannel, {text});
  writeFree(runState.logChannel, {text});
  passOverSection();
}

// ---- the nine procedures ----------------------------------------------------------------

// DISPLAYCR (1), POSTOPT (2), NONOPT (8), ADVISORY (9): the solution step, then the engine.
void postSolutionBranch(int32_t procIndex) {
  if (procIndex == 1) {
    scaleAboveZero();
  } else {
    scaleFromZero();
  }
  partition(1);
  writeLine(runState.statusChannel, "A2", {"=1"});
  // The solution step stands here: POSTOPT and NONOPT load the solution, DISPLAYCR and
  // ADVISORY read none.
  partition(2);
  statusBlank();
  writeProcedureTitles(procIndex);
  comments();
  unavailable(procIndex);  // runPostSolutionEngine(...)
  statusBlank();
}

void pictureBranch() {
  scaleAboveZero();
  statusBlank();
  writeProcedureTitles(3);
  comments();
  partition(3);
  unavailable(3);  // runPicture(...)
}

void blockPictureBranch() {
  scaleAboveZero();
  statusBlank();
  writeProcedureTitles(4);
  comments();
  partition(4);
  const BlockPicRegions r = blockPicRegions();
  RunState& rs = runState;
  int32_t colBlockUsed = 0;
  int32_t rowBlockUsed = 0;
  runBlockPicture(rs.rowCount, rs.colCount, colBlockUsed, rowBlockUsed, rs.icblock, rs.irblock,
                  r.colBlockName, r.rowBlockName, r.colBlockCount, r.rowBlockCount,
                  rs.dictionary, r.colBlockOf, r.rowBlockOf, r.colBlockNameAlt, r.blockPairMax,
                  r.blockPairMin, r.blockPairCount, r.blockPairCountB, r.colSignTable,
                  r.rowSignTable, r.blockRowRhs, r.blockRowType, r.blockColBoundTable,
                  r.rowActivity, r.rowScale, r.colScale);
}

void blockListBranch() {
  scaleAboveZero();
  statusBlank();
  writeProcedureTitles(6);
  statusBlank();
  comments();
  partition(6);
  const BlockListRegions r = blockListRegions();
  RunState& rs = runState;
  int32_t colBlockUsed = 0;
  int32_t rowBlockUsed = 0;
  runBlockList(rs.icblock, rs.irblock, rs.rowCount, rs.colCount, colBlockUsed, rowBlockUsed,
               r.colBlockName, r.rowBlockName, r.colBlockCount, r.rowBlockCount, rs.dictionary,
               r.colBlockOf, r.rowBlockOf, r.colSignTable, r.rowSignTable, r.blockRowRhs,
               r.blockRowType, r.blockColBoundTable, r.blkColWorkA, r.blkColWorkB,
               r.blkColWorkC, r.blkColWorkD, r.blkRowWorkA, r.blkRowWorkB, r.blkRowWorkC,
               r.blkRowWorkD, r.blkRowPair, r.blkColMax, r.blkColMin, r.blkRowMax, r.blkRowMin,
               r.rowActivity, r.rowScale, r.colScale);
}

void matchItBranch() {
  scaleAboveZero();
  statusBlank();
  writeProcedureTitles(7);
  comments();
  partition(7);
  unavailable(7);  // runMatchIt(...)
}

}  // namespace

bool runProcedure(int32_t procIndex) {
  switch (procIndex) {
    case 1:
    case 2:
    case 8:
    case 9:
      postSolutionBranch(procIndex);
      return true;
    case 3:
      pictureBranch();
      return true;
    case 4:
      blockPictureBranch();
      return false;
    case 5:
      runAnalysis();
      return false;
    case 6:
      blockListBranch();
      return false;
    case 7:
      matchItBranch();
      return true;
    default:
      return false;
  }
}
