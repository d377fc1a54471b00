#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sampling/system_counters.h"

namespace quillmark::procfs {

// Parsers of the text files the Linux readers take from /proc and /sys. Each takes the whole file
// as read and never throws: a malformed line is skipped, a malformed file yields empty/absent.
// None allocates except where its result holds a container, so they can run on every tick.

// /proc/stat: the aggregate `cpu` line (absent when missing or malformed), one entry per `cpuN`
// line tagged with N (offline processors print no line, so positions mean nothing), and btime.
struct ProcStat {
  CPUReading cpu;
  std::optional<std::int64_t> bootTime;  // Unix seconds, whole
};
[[nodiscard]] ProcStat parseProcStat(std::string_view text);
// The same cpu lines alone: stops at the first line after them and spares the long intr line.
[[nodiscard]] CPUReading parseProcStatCPU(std::string_view text);

// The /proc/meminfo keys the memory breakdown uses, in bytes; absent when the kernel does not
// print the key (it depends on version and configuration) or its value is malformed.
struct MemInfo {
  std::optional<std::uint64_t> memTotal;
  std::optional<std::uint64_t> memFree;
  std::optional<std::uint64_t> buffers;
  std::optional<std::uint64_t> cached;
  std::optional<std::uint64_t> shmem;
  std::optional<std::uint64_t> anonPages;
  std::optional<std::uint64_t> sReclaimable;
  std::optional<std::uint64_t> kReclaimable;
  std::optional<std::uint64_t> zswap;
};
[[nodiscard]] MemInfo parseMemInfo(std::string_view text);

// /sys/block/zramN/mm_stat: mem_used_total, the memory the compressed pool occupies (bytes).
[[nodiscard]] std::optional<std::uint64_t> parseZramMemUsed(std::string_view text);

// One interface row of /proc/net/dev. `name` points into the parsed text.
struct NetDevEntry {
  std::string_view name;
  std::uint64_t rxBytes = 0;
  std::uint64_t txBytes = 0;
};
// Rows with a name and at least the receive block and the sent-bytes column; others are skipped.
[[nodiscard]] std::vector<NetDevEntry> parseNetDev(std::string_view text);
// The same into a vector the caller keeps, so a reader that runs every tick allocates nothing.
void parseNetDev(std::string_view text, std::vector<NetDevEntry>& entries);

// A sysfs hexadecimal attribute such as /sys/class/net/<if>/flags ("0x1003\n").
[[nodiscard]] std::optional<std::uint64_t> parseHexAttribute(std::string_view text);

// A decimal sysfs attribute such as /sys/block/zramN/disksize.
[[nodiscard]] std::optional<std::uint64_t> parseDecimalAttribute(std::string_view text);

// What the process scan and process control take from /proc/<pid>/stat (1-based field numbers of
// proc(5)). `comm` points into the parsed text.
struct PidStat {
  std::string_view comm;         // 2
  char state = '?';              // 3
  std::int32_t ppid = 0;         // 4
  std::int32_t pgrp = 0;         // 5
  std::int32_t ttyNr = 0;        // 7, 0 without a controlling terminal
  std::int32_t tpgid = -1;       // 8, the terminal's foreground group
  std::uint64_t utimeTicks = 0;  // 14
  std::uint64_t stimeTicks = 0;  // 15
  std::int64_t threads = 0;      // 20
  std::uint64_t startTicks = 0;  // 22: clock ticks after boot; with the pid, one process
  std::uint64_t vsizeBytes = 0;  // 23
};
// comm may hold spaces, parentheses and newlines, so it runs from the first '(' to the last ')'.
// Absent unless every field up to vsize is there and well formed.
[[nodiscard]] std::optional<PidStat> parsePidStat(std::string_view text);

// The resident pages of /proc/<pid>/statm (its second field). Not stat's field 24: since the
// memory counters became per-processor, stat prints the cheap estimate, which can be off by tens
// of pages per processor, while statm, status and ps show the exact sum.
[[nodiscard]] std::optional<std::uint64_t> parseStatmResident(std::string_view text);

}  // namespace quillmark::procfs
