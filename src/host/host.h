// The host's operations, as MODRAKE calls them: model (ovm), environment (ove), dictionary
// (ovd) and audit (ovp) objects. Indices are 1-based once ovmIndexBaseSet(model, 1) is called,
// but for the row and column arguments of ovdRowUels / ovdColUels, which count from 0.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct HostInstance;

struct OvpObject;
struct OveObject;
struct OvmObject;
struct OvdObject;
struct OveEvaluator;

using ovpHandle = OvpObject*;
using oveHandle = OveObject*;
using ovmHandle = OvmObject*;
using ovdHandle = OvdObject*;
using oveEvaluator = OveEvaluator*;

// ---- audit object ---------------------------------------------------------------------------
bool ovpXCreate(ovpHandle& audit, std::string& message);
void ovpSetSystemName(ovpHandle audit, std::string_view name);
std::string ovpGetAuditLine(ovpHandle audit);

// ---- environment object ---------------------------------------------------------------------
bool oveXCreate(oveHandle& environment, std::string& message);
void oveSkipIOLegacySet(oveHandle environment, bool skip);
// Reads the host's control file. 0 on success; on failure the reason, with file and line, is
// written to standard error and kept for oveLastError.
int oveInitEnvironmentLegacy(oveHandle environment, std::string_view controlFile);
const std::string& oveLastError(oveHandle environment);
void oveTerminateInstall(oveHandle environment);
// Options of the host control file. A missing text option gives "", a missing integer 0.
std::string oveGetStrOpt(oveHandle environment, std::string_view name);
int32_t oveGetIntOpt(oveHandle environment, std::string_view name);

// ---- model object ---------------------------------------------------------------------------
bool ovmXCreate(ovmHandle& model, std::string& message);
int ovmRegisterEnvironment(ovmHandle model, oveHandle environment, std::string& message);
// Reads the model named by the control file into the model object. 0 on success.
int ovmLoadDataLegacy(ovmHandle model, std::string& message);
void ovmIndexBaseSet(ovmHandle model, int32_t base);
void ovmObjStyleSet(ovmHandle model, int32_t style);

int32_t ovmM(ovmHandle model);
int32_t ovmN(ovmHandle model);
int32_t ovmNZ(ovmHandle model);
int32_t ovmNLN(ovmHandle model);
int32_t ovmObjVar(ovmHandle model);
int32_t ovmObjRow(ovmHandle model);
int32_t ovmValNAInt(ovmHandle model);
int32_t ovmSense(ovmHandle model);      // above 0 unless minimizing
int32_t ovmScaleOpt(ovmHandle model);   // nonzero when scale factors exist
void ovmPinfSet(ovmHandle model, double value);
void ovmMinfSet(ovmHandle model, double value);
std::string ovmNameInput(ovmHandle model);
std::string ovmNameDict(ovmHandle model);

int32_t ovmGetEquTypeOne(ovmHandle model, int32_t row);
double ovmGetRhsOne(ovmHandle model, int32_t row);
double ovmGetEquScaleOne(ovmHandle model, int32_t row);
double ovmGetEquLOne(ovmHandle model, int32_t row);
double ovmGetEquMOne(ovmHandle model, int32_t row);
int32_t ovmGetEquStatOne(ovmHandle model, int32_t row);
int32_t ovmGetEquCStatOne(ovmHandle model, int32_t row);

double ovmGetVarLowerOne(ovmHandle model, int32_t col);
double ovmGetVarUpperOne(ovmHandle model, int32_t col);
int32_t ovmGetVarTypeOne(ovmHandle model, int32_t col);
double ovmGetVarScaleOne(ovmHandle model, int32_t col);
double ovmGetVarLOne(ovmHandle model, int32_t col);
double ovmGetVarMOne(ovmHandle model, int32_t col);
int32_t ovmGetVarStatOne(ovmHandle model, int32_t col);
int32_t ovmGetVarCStatOne(ovmHandle model, int32_t col);

// Walks column `col`: the cursor starts at 0 and comes back 0 with the last entry; `row` under
// 1 means an empty column; `nonlinear` above 0 marks a nonlinear entry. Returns 0.
int ovmGetColJacInfoOne(ovmHandle model, int32_t col, int32_t& cursor, double& value,
                        int32_t& row, int32_t& nonlinear);

// 0 when a solution was loaded; then the reads above give it.
int ovmLoadSolutionLegacy(ovmHandle model);
int32_t ovmModelStat(ovmHandle model);
int32_t ovmSolveStat(ovmHandle model);
void ovmSolveStatSet(ovmHandle model, int32_t status);
void ovmModelStatSet(ovmHandle model, int32_t status);
void ovmUnloadSolutionLegacy(ovmHandle model);

// The instance behind a model object, for the host's own programs and tests.
const HostInstance& ovmInstance(ovmHandle model);

// ---- Jacobian at a point --------------------------------------------------------------------
// A model read from a .nl file is evaluated by the AMPL solver library over the file its
// instance names; any other model holds the derivatives of its entries but no expressions, so
// the stored derivatives are given at any point. `point` holds one value per column and
// `values` one per entry of the matrix in column order, both from element 0.
int oveInitJacLegacy(oveHandle environment, oveEvaluator& evaluator, ovmHandle model);
int oveEvalNewPointLegacy(oveHandle environment, oveEvaluator evaluator, const double* point);
// Next nonlinear row after `row`: rowCount + 1 to begin, -1 at the end.
int32_t oveNextNLLegacy(oveHandle environment, oveEvaluator evaluator, int32_t row);
// Writes the derivatives of `row` into `values`, at the places of the entries in column order.
int oveEvalJacLegacy(oveHandle environment, oveEvaluator evaluator, int32_t row,
                     const double* point, double& value, double* values, int32_t& errors,
                     int32_t& extra);

// ---- dictionary -----------------------------------------------------------------------------
bool ovdXCreate(ovdHandle& dictionary, std::string& message);
int ovdLoadEx(ovdHandle dictionary, std::string_view fileName, std::string& message);
int32_t ovdNLSyms(ovdHandle dictionary);
int32_t ovdLrgDim(ovdHandle dictionary);
// Symbol number, UEL list (room for at least 10) and dimension of a row or column, counted
// from 0. Returns 0 on success.
int ovdRowUels(ovdHandle dictionary, int32_t row0, int32_t& symbol, int32_t* uels,
               int32_t& dim);
int ovdColUels(ovdHandle dictionary, int32_t col0, int32_t& symbol, int32_t* uels,
               int32_t& dim);
std::string ovdSymName(ovdHandle dictionary, int32_t symbol);
// The label's text, at most 64 characters, and its quote character (' ' for none).
int ovdUelLabel(ovdHandle dictionary, int32_t uel, char& quote, std::string& text);

// ---- the host's own extensions, for orva and the tests ---------------------------------------
// A model object over an instance already in memory (no control file, no environment needed).
// What the instance leaves empty is filled by hostCompleteInstance. The index base is already
// 1; infinite bounds come back as +-infinity until ovmPinfSet/ovmMinfSet. nullptr (with the
// reason on standard error) when the instance's vectors do not fit together.
ovmHandle ovmCreateFromInstance(HostInstance instance);
// A dictionary over the same instance's symbols and labels, loaded already; nullptr as above.
ovdHandle ovdCreateFromInstance(const HostInstance& instance);
// Why the last call of ovmLoadSolutionLegacy or ovmLoadDataLegacy failed.
const std::string& ovmLastError(ovmHandle model);

// Phases of a run, marked in the file of the control file's PhaseFile entry when it has one:
// "begin PHASE" when a phase begins, "end PHASE SECONDS" when it ends. orva shows the phase
// in its progress line and prints the times with --timings. ovmLoadDataLegacy marks
// "loading"; the request loop marks each procedure.
void hostPhaseBegin(oveHandle environment, std::string_view phase);
void hostPhaseEnd(oveHandle environment);

// Objects live in a table of the process until freed here (the handle becomes nullptr), so
// that a run may end without releasing them. Freeing an evaluator is done with its model.
void ovpFree(ovpHandle& audit);
void oveFree(oveHandle& environment);
void ovmFree(ovmHandle& model);
void ovdFree(ovdHandle& dictionary);
