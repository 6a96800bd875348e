// The size of BLOCKPIC's block tables, worked out before modrake starts, so that a model whose
// names make thousands of symbols is caught with a word on what helps instead of a run that
// takes gigabytes.
#pragma once

#include <cstdint>
#include <string>

#include "host/instance.h"
#include "orva/options.h"

// The tables grow with variable blocks times equation blocks: per pair two doubles and two
// counts.
inline constexpr int64_t kBlockPairBytes = 2 * 8 + 2 * 4;
// Above this the terminal is told.
inline constexpr int64_t kBlockTableWarnBytes = int64_t{256} << 20;

// Bytes of the block pair tables under the capacities of the options (VARBLOCK and EQUBLOCK,
// or the number of symbols + 3 when they are under 1).
int64_t orvaBlockTableBytes(const HostInstance& instance, const OrvaOptions& options);

// The warning for standard error when those bytes pass kBlockTableWarnBytes, else "".
std::string orvaBlockTableWarning(const HostInstance& instance, const OrvaOptions& options);
