// Model sources: every format becomes the same HostInstance, by the conversion rules of
// docs/host.md (objective variable and row, row types, ranged rows, names into symbols and
// labels).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "host/instance.h"
#include "host/names.h"

enum class ModelFormat { Json, MathProg, Mps, FixedMps, Lp, Nl };

// The format named by `--format` or a control file entry: json, mathprog, mps, fixed-mps, lp,
// nl. False for any other word.
bool parseModelFormat(const std::string& word, ModelFormat& format);
// The format that a file's extension implies (.json, .mod, .mps, .lp, .nl); false if none.
bool formatFromExtension(const std::string& path, ModelFormat& format);
const char* modelFormatName(ModelFormat format);

// The libraries that models are read with, one line each with its version and what it reads.
std::string modelReaderVersions();

struct ModelSource {
  std::string path;
  ModelFormat format = ModelFormat::Json;
  std::string dataPath;   // MathProg data file, or empty
  SymbolRule symbols;     // names without brackets in MPS and LP files; MathProg's are scalars
};

// Told the bytes read so far and the file's size while a reader goes through a large file.
using HostProgress = std::function<void(int64_t done, int64_t total)>;

// True when `path` is a plain file; else false with "PATH: the WHAT is a folder" (or a device,
// or missing) in `error`. A folder or a device is never read as a file.
bool hostRegularFile(const std::string& path, const char* what, std::string& error);

// Reads a model into `instance`. GLPK runs under glpkCall: nothing it does ends the process, and
// it prints nothing. Bounds of 1e+300 and beyond are infinite (hostInfiniteBounds). On failure
// returns false and sets `error` to a message that names the file, the line where there is one,
// and what is wrong.
bool readModel(const ModelSource& source, HostInstance& instance, std::string& error,
               const HostProgress& progress = nullptr);

// Computes GLPK's automatic scale factors for the instance and keeps them as its scale factors
// (hasScale true): rowScale r(i) is the factor that multiplies row i, colScale c(j) the factor
// that multiplies variable j, so that the scaled coefficient is a(i,j) / c(j) x r(i) and a
// scaled bound is the bound x c(j). The objective row is left unscaled.
bool hostAutoScale(HostInstance& instance, std::string& error);
