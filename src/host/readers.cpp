#include <glpk.h>
#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <nlohmann/json_fwd.hpp>

#include "host/readers_internal.h"

namespace {
struct FormatName {
  ModelFormat format;
  const char* word;
};
constexpr FormatName kFormats[] = {
    {ModelFormat::Json, "json"}, {ModelFormat::MathProg, "mathprog"},
    {ModelFormat::Mps, "mps"},   {ModelFormat::FixedMps, "fixed-mps"},
    {ModelFormat::Lp, "lp"},     {ModelFormat::Nl, "nl"},
};

std::string lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}
}  // namespace

bool parseModelFormat(const std::string& word, ModelFormat& format) {
  const std::string w = lower(word);
  for (const FormatName& f : kFormats)
    if (w == f.word) {
      format = f.format;
      return true;
    }
  return false;
}

bool formatFromExtension(const std::string& path, ModelFormat& format) {
  const auto slash = path.find_last_of('/');
  const auto dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return false;
  const std::string ext = lower(path.substr(dot + 1));
  if (ext == "json") format = ModelFormat::Json;
  else if (ext == "mod") format = ModelFormat::MathProg;
  else if (ext == "mps") format = ModelFormat::Mps;
  else if (ext == "lp") format = ModelFormat::Lp;
  else if (ext == "nl") format = ModelFormat::Nl;
  else return false;
  return true;
}

const char* modelFormatName(ModelFormat format) {
  for (const FormatName& f : kFormats)
    if (f.format == format) return f.word;
  return "unknown";
}

std::string modelReaderVersions() {
  return std::string("GLPK ") + glp_version() + " (MathProg and LP models, and the solve)\n" +
         "nlohmann-json " + std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + "." +
         std::to_string(NLOHMANN_JSON_VERSION_MINOR) + "." +
         std::to_string(NLOHMANN_JSON_VERSION_PATCH) + " (native instances, .json)\n" +
         "AMPL solver library (.nl models: functions and derivatives)\n";
}

bool hostRegularFile(const std::string& path, const char* what, std::string& error) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    error = path + ": cannot read the " + what + ": " + std::strerror(errno);
    return false;
  }
  if (!S_ISREG(info.st_mode)) {
    error = path + ": the " + what + " is " +
            (S_ISDIR(info.st_mode) ? "a folder" : "not a plain file (a device or a pipe)");
    return false;
  }
  return true;
}

namespace {

bool readByFormat(const ModelSource& source, HostInstance& instance, std::string& error,
                  const HostProgress& progress) {
  switch (source.format) {
    case ModelFormat::Json:
      return readJsonModel(source.path, instance, error);
    case ModelFormat::Nl:
      return readNlModel(source.path, instance, error);
    case ModelFormat::FixedMps:
      return readMpsModel(source.path, true, source.symbols, instance, error, progress);
    case ModelFormat::Mps: {
      // A .mps file that the free form refuses may be in the fixed form; the free form's
      // complaint is the one told when both refuse it.
      if (readMpsModel(source.path, false, source.symbols, instance, error, progress)) return true;
      std::string fixedError;
      return readMpsModel(source.path, true, source.symbols, instance, fixedError, progress);
    }
    default:
      return readGlpkModel(source, instance, error);
  }
}

}  // namespace

bool readModel(const ModelSource& source, HostInstance& instance, std::string& error,
               const HostProgress& progress) {
  if (!hostRegularFile(source.path, "model file", error)) return false;
  if (!source.dataPath.empty() && !hostRegularFile(source.dataPath, "data file", error))
    return false;
  if (!readByFormat(source, instance, error, progress)) return false;
  if (!hostInfiniteBounds(instance, error)) {
    error = source.path + ": " + error;
    return false;
  }
  return true;
}
