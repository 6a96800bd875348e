#include "host/instance_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <type_traits>

#include "host/names.h"

namespace {

constexpr char kMagic[8] = {'O', 'R', 'V', 'A', 'I', 'N', 'S', 'T'};

// A running checksum over the body, eight bytes at a time. Writer and reader hand it the same
// pieces in the same order.
struct Checksum {
  uint64_t value = 0x6a09e667f3bcc908ull;
  void mix(uint64_t word) {
    value = (value ^ word) * 0x9e3779b97f4a7c15ull;
    value ^= value >> 29;
  }
  void add(const void* data, std::size_t size) { addPart(data, size, size, true); }
  // One part of a field of `total` bytes: every part but the last holds whole words, and the
  // last ends the field as add() of the whole field does.
  void addPart(const void* data, std::size_t size, uint64_t total, bool last) {
    const auto* p = static_cast<const unsigned char*>(data);
    std::size_t k = 0;
    for (; k + 8 <= size; k += 8) {
      uint64_t word;
      std::memcpy(&word, p + k, 8);
      mix(word);
    }
    if (!last) return;
    uint64_t tail = total;
    for (; k < size; ++k) tail = (tail << 8) | p[k];
    mix(tail);
  }
};

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// The fields of a symbol and of a label, for writing (const) and reading.
template <typename IO, typename S>
  requires std::is_same_v<std::remove_const_t<S>, HostSymbol>
void visitItem(IO& io, S& s) {
  io(s.name);
  io(s.isEquation);
  io(s.dim);
}
template <typename IO, typename L>
  requires std::is_same_v<std::remove_const_t<L>, HostLabel>
void visitItem(IO& io, L& l) {
  io(l.text);
  io(l.quote);
}

struct Writer {
  std::FILE* f;
  Checksum sum;
  bool ok = true;
  // An array goes to the file a megabyte at a time: handed to the system whole, an array of
  // tens of megabytes took four to five times as long to land in the file's pages.
  static constexpr std::size_t kPiece = std::size_t{1} << 20;
  void bytes(const void* data, std::size_t size) {
    sum.add(data, size);
    const auto* p = static_cast<const char*>(data);
    for (std::size_t done = 0; done < size;) {
      const std::size_t k = std::min(kPiece, size - done);
      if (std::fwrite(p + done, 1, k, f) != k) {
        ok = false;
        return;
      }
      done += k;
    }
  }
  template <typename T>
  void operator()(const T& value) {
    if constexpr (std::is_arithmetic_v<T>) {
      bytes(&value, sizeof value);
    } else if constexpr (std::is_same_v<T, std::string>) {
      const uint64_t n = value.size();
      bytes(&n, sizeof n);
      bytes(value.data(), value.size());
    } else if constexpr (std::is_arithmetic_v<typename T::value_type>) {
      const uint64_t n = value.size();
      bytes(&n, sizeof n);
      bytes(value.data(), value.size() * sizeof(typename T::value_type));
    } else {
      const uint64_t n = value.size();
      bytes(&n, sizeof n);
      for (const auto& item : value) visitItem(*this, item);
    }
  }
};

struct Reader {
  std::FILE* f;
  uint64_t left;  // bytes of the file not read yet
  Checksum sum;
  bool ok = true;
  bool bytes(void* data, std::size_t size) { return bytesPart(data, size, size, true); }
  // One part of a field of `total` bytes, as Checksum::addPart takes it.
  bool bytesPart(void* data, std::size_t size, uint64_t total, bool last) {
    if (!ok || size > left || (size > 0 && std::fread(data, 1, size, f) != size)) {
      ok = false;
      return false;
    }
    left -= size;
    sum.addPart(data, size, total, last);
    return true;
  }
  // A length, checked against what is left of the file for elements of `each` bytes.
  bool length(uint64_t& n, std::size_t each) {
    if (!bytes(&n, sizeof n)) return false;
    if (n > left / (each == 0 ? 1 : each)) ok = false;
    return ok;
  }
  template <typename T>
  void operator()(T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      unsigned char b = 0;
      bytes(&b, 1);
      if (b > 1) ok = false;
      value = b == 1;
    } else if constexpr (std::is_arithmetic_v<T>) {
      bytes(&value, sizeof value);
    } else if constexpr (std::is_same_v<T, std::string>) {
      uint64_t n = 0;
      if (!length(n, 1)) return;
      value.resize(n);
      bytes(value.data(), n);
    } else if constexpr (std::is_arithmetic_v<typename T::value_type>) {
      using Element = typename T::value_type;
      uint64_t n = 0;
      if (!length(n, sizeof(Element))) return;
      value.clear();
      value.reserve(n);
      // In pieces through a small buffer, so that the array is written once and never zeroed
      // first: the arrays of a large model run to hundreds of megabytes.
      constexpr uint64_t kPiece = 4096;  // whole words in every piece but the last
      Element piece[kPiece];
      const uint64_t total = n * sizeof(Element);
      for (uint64_t done = 0; done < n || (n == 0 && done == 0);) {
        const uint64_t k = std::min(kPiece, n - done);
        if (!bytesPart(piece, k * sizeof(Element), total, done + k == n)) return;
        value.insert(value.end(), piece, piece + k);
        done += k;
        if (n == 0) break;
      }
    } else {
      uint64_t n = 0;
      if (!length(n, 8)) return;  // every item takes at least 8 bytes
      value.resize(n);
      for (auto& item : value) {
        if (!ok) return;
        visitItem(*this, item);
      }
    }
  }
};

// The fields of the file, in their one order, for writing and for reading. Written with
// `noSolution`, the solution vectors go as empty ones.
template <typename IO, typename Instance>
void visitInstance(IO& io, Instance& in, bool noSolution = false) {
  const auto solution = [&](auto& v) {
    if (!noSolution) return io(v);
    std::remove_cvref_t<decltype(v)> none;
    io(none);
  };
  io(in.inputName); io(in.sourcePath);
  io(in.rowCount); io(in.colCount); io(in.objVar); io(in.objRow);
  io(in.minimizing); io(in.hasScale); io(in.hasSolution); io(in.modelStat); io(in.solveStat);
  io(in.rowType); io(in.rowRhs); io(in.rowScale); solution(in.rowLevel);
  solution(in.rowMarginal); solution(in.rowStat); solution(in.rowCStat);
  io(in.colType); io(in.colLower); io(in.colUpper); io(in.colScale); solution(in.colLevel);
  solution(in.colMarginal); solution(in.colStat); solution(in.colCStat);
  io(in.colStart); io(in.entryRow); io(in.entryValue); io(in.entryNonlinear);
  io(in.symbols); io(in.labels);
  io(in.rowSymbol); io(in.rowUelStart); io(in.rowUels);
  io(in.colSymbol); io(in.colUelStart); io(in.colUels);
  io(in.nlFile); io(in.rowNlItem);
}

}  // namespace


bool writeInstanceFile(const std::string& path, const HostInstance& instance, std::string& error) {
  File file(std::fopen(path.c_str(), "wb"), &std::fclose);
  if (!file) {
    error = path + ": cannot write the instance: " + std::strerror(errno);
    return false;
  }
  Writer w{file.get(), {}};
  const uint32_t version = kInstanceFileVersion;
  bool ok = std::fwrite(kMagic, 1, sizeof kMagic, w.f) == sizeof kMagic &&
            std::fwrite(&version, sizeof version, 1, w.f) == 1;
  // A model without a solution leaves out the solution vectors that the loader makes again.
  visitInstance(w, instance, hostSolutionIsDefault(instance));
  const uint64_t sum = w.sum.value;
  ok = ok && w.ok && std::fwrite(&sum, sizeof sum, 1, w.f) == 1;
  if (std::fclose(file.release()) != 0) ok = false;
  if (!ok) error = path + ": cannot write the instance: " + std::strerror(errno);
  return ok;
}

namespace {

bool load(const std::string& path, HostInstance& instance, std::string& error, bool checksum) {
  File file(std::fopen(path.c_str(), "rb"), &std::fclose);
  struct stat st {};
  if (!file || fstat(fileno(file.get()), &st) != 0) {
    error = path + ": cannot read the instance: " + std::strerror(errno);
    return false;
  }
  char magic[sizeof kMagic] = {};
  uint32_t version = 0;
  const auto size = static_cast<uint64_t>(st.st_size);
  if (size < sizeof magic + sizeof version ||
      std::fread(magic, 1, sizeof magic, file.get()) != sizeof magic ||
      std::memcmp(magic, kMagic, sizeof magic) != 0 ||
      std::fread(&version, sizeof version, 1, file.get()) != 1) {
    error = path + ": not an instance file of this host";
    return false;
  }
  if (version != kInstanceFileVersion) {
    error = path + ": instance file version " + std::to_string(version) + ", this host reads " +
            std::to_string(kInstanceFileVersion);
    return false;
  }
  instance = HostInstance{};
  Reader r{file.get(), size - sizeof magic - sizeof version, {}};
  visitInstance(r, instance);
  const uint64_t computed = r.sum.value;
  uint64_t stored = 0;
  if (!r.ok || !r.bytes(&stored, sizeof stored)) {
    instance = HostInstance{};
    error = path + ": the instance file is cut short or damaged";
    return false;
  }
  if ((checksum && stored != computed) || r.left != 0) {
    instance = HostInstance{};
    error = path + ": the instance file is damaged (its checksum does not match)";
    return false;
  }
  hostRestoreSolutionDefaults(instance);
  // Names as a reader takes them: no control character, a label's quote blank, ' or ".
  std::string fault;
  for (const HostSymbol& s : instance.symbols)
    if (fault.empty()) fault = hostNameFault(s.name);
  for (const HostLabel& l : instance.labels) {
    if (fault.empty()) fault = hostNameFault(l.text);
    if (fault.empty() && l.quote != ' ' && l.quote != '\'' && l.quote != '"')
      fault = "the label \"" + hostShownName(l.text) + "\" has the quote character \"" +
              hostShownName(std::string(1, l.quote)) + "\", not ' or \"";
  }
  if (!fault.empty() || !hostCheckInstance(instance, error)) {
    error = path + ": " + (fault.empty() ? error : fault);
    instance = HostInstance{};
    return false;
  }
  return true;
}

}  // namespace

bool loadInstanceFile(const std::string& path, HostInstance& instance, std::string& error) {
  return load(path, instance, error, true);
}

bool loadInstanceFileWithoutChecksum(const std::string& path, HostInstance& instance,
                                     std::string& error) {
  return load(path, instance, error, false);
}
