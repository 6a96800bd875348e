// The instance in the project's own binary form, by which orva hands a model (and a solution
// that it has) to modrake through the scratch folder, so that the model is read once per run.
//
// Layout, little-endian: the 8 bytes "ORVAINST", the version (uint32), then every field of
// HostInstance in one fixed order (numbers as themselves, a vector as its length (uint64) and
// its elements, a text as its length and its bytes), then a checksum (uint64) of all that
// comes after the version. The loader reads the file in one pass straight into the
// instance's vectors, checks each length against the bytes left before it allocates, and
// refuses a short, foreign, corrupt or newer file with a message that names the file, as it
// refuses an instance that is not sound (hostCheckInstance) or holds a name with a control
// character (hostNameFault).
#pragma once

#include <cstdint>
#include <string>

#include "host/instance.h"

inline constexpr uint32_t kInstanceFileVersion = 2;

bool writeInstanceFile(const std::string& path, const HostInstance& instance, std::string& error);
bool loadInstanceFile(const std::string& path, HostInstance& instance, std::string& error);
// As loadInstanceFile, but a checksum that does not match the body is let pass: for the fuzz
// target, which cannot forge checksums, so that what stands behind the checksum is tried too.
bool loadInstanceFileWithoutChecksum(const std::string& path, HostInstance& instance,
                                     std::string& error);
