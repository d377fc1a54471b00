#include "sampling/linux/proc_parsers.h"

#include <array>
#include <charconv>
#include <cstring>

namespace quillmark::procfs {
namespace {

// The line at the front of rest (without its '\n'); rest moves past it.
std::string_view takeLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

void skipBlanks(std::string_view& text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  text.remove_prefix(i);
}

// An unsigned decimal after optional blanks; absent when there is no digit or it overflows.
// These run dozens of times per tick, so only the twentieth digit and beyond pay for the check.
std::optional<std::uint64_t> takeNumber(std::string_view& text) {
  skipBlanks(text);
  std::uint64_t value = 0;
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    const auto digit = static_cast<unsigned>(static_cast<unsigned char>(text[i]) - '0');
    if (digit > 9) break;
    if (i < 19) {
      value = value * 10 + digit;
    } else if (__builtin_mul_overflow(value, 10u, &value) || __builtin_add_overflow(value, digit, &value)) {
      return std::nullopt;
    }
  }
  if (i == 0) return std::nullopt;
  text.remove_prefix(i);
  return value;
}

// Steps over one blank-separated number without converting it.
bool skipNumber(std::string_view& text) {
  skipBlanks(text);
  std::size_t i = 0;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
  text.remove_prefix(i);
  return i > 0;
}

// Fields are single-space separated after comm; a field that is not there ends the parse.
bool skipFields(std::string_view& text, int count) {
  for (int i = 0; i < count; ++i) {
    const void* space = std::memchr(text.data(), ' ', text.size());
    if (!space) return false;
    text.remove_prefix(static_cast<const char*>(space) - text.data() + 1);
  }
  return true;
}

// One decimal field of a stat line and the space after it; the last field wanted may instead end
// the line. from_chars takes a sign only into a signed type, so a negative tick count is damage.
template <class T>
bool takeStatField(std::string_view& text, T& out, bool last = false) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (text.empty()) return last;
  if (text[0] != ' ' && !(last && text[0] == '\n')) return false;
  text.remove_prefix(1);
  return true;
}

bool addInto(std::uint64_t& sum, std::uint64_t value) { return !__builtin_add_overflow(sum, value, &sum); }

// The columns after a cpu label: user nice system idle iowait irq softirq steal guest guest_nice.
// Kernels before 2.6 print only the first four; the missing ones count as 0.
std::optional<CPUTicks> foldCPUColumns(std::string_view columns) {
  std::array<std::uint64_t, 8> c{};
  std::size_t count = 0;
  while (count < c.size()) {
    auto value = takeNumber(columns);
    if (!value) break;
    c[count++] = *value;
  }
  if (count < 4) return std::nullopt;
  CPUTicks ticks;
  // guest and guest_nice are already inside user and nice, so they are never added.
  ticks.user = c[0];
  ticks.nice = c[1];
  // irq and softirq are work done on the processor. steal is time the hypervisor gave to someone
  // else while this processor had work: it was not available to be idle, so it counts as busy,
  // and a starved virtual machine shows as loaded rather than idle.
  ticks.system = c[2];
  bool ok = addInto(ticks.system, c[5]) && addInto(ticks.system, c[6]) && addInto(ticks.system, c[7]);
  // iowait is idle time with I/O outstanding.
  ticks.idle = c[3];
  ok = ok && addInto(ticks.idle, c[4]);
  if (!ok) return std::nullopt;
  return ticks;
}

std::optional<std::uint64_t> kibibytes(std::string_view value) {
  auto number = takeNumber(value);
  if (!number) return std::nullopt;
  skipBlanks(value);
  if (value.substr(0, 2) != "kB") return number;  // a count, not a size
  std::uint64_t bytes = 0;
  if (__builtin_mul_overflow(*number, 1024u, &bytes)) return std::nullopt;
  return bytes;
}

// Adds a `cpu` or `cpuN` line to reading; false when the line is not a cpu line at all.
bool addCPULine(std::string_view line, CPUReading& reading) {
  if (line.substr(0, 3) != "cpu") return false;
  line.remove_prefix(3);
  if (!line.empty() && (line[0] == ' ' || line[0] == '\t')) {
    if (!reading.total) reading.total = foldCPUColumns(line);
    return true;
  }
  auto number = takeNumber(line);
  if (!number || *number > 1'000'000 || line.empty() || line[0] != ' ') return true;
  if (auto ticks = foldCPUColumns(line))
    reading.perCore.push_back(CoreTicks{static_cast<int>(*number), *ticks});
  return true;
}

}  // namespace

CPUReading parseProcStatCPU(std::string_view text) {
  CPUReading reading;
  reading.perCore.reserve(16);  // small enough for malloc's fast path; bigger machines grow it
  bool inBlock = false;
  while (!text.empty()) {
    const bool isCPU = addCPULine(takeLine(text), reading);
    if (inBlock && !isCPU) break;
    inBlock = isCPU;
  }
  return reading;
}

ProcStat parseProcStat(std::string_view text) {
  ProcStat stat;
  stat.cpu.perCore.reserve(16);
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    if (addCPULine(line, stat.cpu) || line.substr(0, 6) != "btime ") continue;
    line.remove_prefix(6);
    auto seconds = takeNumber(line);
    if (seconds && *seconds <= static_cast<std::uint64_t>(INT64_MAX)) {
      stat.bootTime = static_cast<std::int64_t>(*seconds);
    }
  }
  return stat;
}

MemInfo parseMemInfo(std::string_view text) {
  MemInfo info;
  struct Key {
    std::string_view name;
    std::optional<std::uint64_t> MemInfo::*field;
  };
  static constexpr std::array<Key, 9> keys{{
      {"MemTotal", &MemInfo::memTotal},
      {"MemFree", &MemInfo::memFree},
      {"Buffers", &MemInfo::buffers},
      {"Cached", &MemInfo::cached},
      {"Shmem", &MemInfo::shmem},
      {"AnonPages", &MemInfo::anonPages},
      {"SReclaimable", &MemInfo::sReclaimable},
      {"KReclaimable", &MemInfo::kReclaimable},
      {"Zswap", &MemInfo::zswap},
  }};
  // Every kernel prints SReclaimable after all the other keys we use (Zswap, the newest, comes
  // before AnonPages), so the forty-odd lines after it are not looked at. Lines are short, so a
  // plain loop finds the colon and the line's end faster than two memchr calls would.
  const std::size_t size = text.size();
  std::size_t i = 0;
  while (i < size) {
    const std::size_t start = i;
    while (i < size && text[i] != ':' && text[i] != '\n') ++i;
    const std::string_view name = text.substr(start, i - start);
    const std::size_t valueStart = i + 1;
    while (i < size && text[i] != '\n') ++i;
    ++i;
    if (valueStart > i - 1) continue;  // no colon on this line
    for (const Key& key : keys) {
      if (key.name != name) continue;
      info.*key.field = kibibytes(text.substr(valueStart, i - 1 - valueStart));
      if (key.field == &MemInfo::sReclaimable) return info;
      break;
    }
  }
  return info;
}

std::optional<std::uint64_t> parseZramMemUsed(std::string_view text) {
  // orig_data_size compr_data_size mem_used_total ...
  for (int i = 0; i < 2; ++i) {
    if (!takeNumber(text)) return std::nullopt;
  }
  return takeNumber(text);
}

std::vector<NetDevEntry> parseNetDev(std::string_view text) {
  std::vector<NetDevEntry> entries;
  parseNetDev(text, entries);
  return entries;
}

void parseNetDev(std::string_view text, std::vector<NetDevEntry>& entries) {
  entries.clear();
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    // Interface names cannot hold ':', and the two header lines have none.
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    std::string_view name = line.substr(0, colon);
    skipBlanks(name);
    if (name.empty()) continue;
    std::string_view columns = line.substr(colon + 1);
    // rx: bytes packets errs drop fifo frame compressed multicast | tx: bytes ...
    const auto rx = takeNumber(columns);
    bool ok = rx.has_value();
    for (int i = 0; ok && i < 7; ++i) ok = skipNumber(columns);
    const auto tx = ok ? takeNumber(columns) : std::nullopt;
    if (!tx) continue;
    entries.push_back(NetDevEntry{name, *rx, *tx});
  }
}

std::optional<std::uint64_t> parseHexAttribute(std::string_view text) {
  skipBlanks(text);
  if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") text.remove_prefix(2);
  std::uint64_t value = 0;
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    unsigned digit = 0;
    if (c >= '0' && c <= '9') {
      digit = static_cast<unsigned>(c - '0');
    } else if (c >= 'a' && c <= 'f') {
      digit = static_cast<unsigned>(c - 'a' + 10);
    } else if (c >= 'A' && c <= 'F') {
      digit = static_cast<unsigned>(c - 'A' + 10);
    } else {
      break;
    }
    if (value > (UINT64_MAX >> 4)) return std::nullopt;
    value = (value << 4) | digit;
  }
  if (i == 0) return std::nullopt;
  return value;
}

std::optional<std::uint64_t> parseDecimalAttribute(std::string_view text) { return takeNumber(text); }

std::optional<PidStat> parsePidStat(std::string_view text) {
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;
  PidStat stat;
  stat.comm = text.substr(open + 1, close - open - 1);
  std::string_view rest = text.substr(close + 1);
  // Field 3, the state: one letter.
  if (rest.size() < 3 || rest[0] != ' ' || rest[2] != ' ') return std::nullopt;
  stat.state = rest[1];
  rest.remove_prefix(3);
  // From field 4: ppid pgrp session tty_nr tpgid flags minflt cminflt majflt cmajflt utime stime
  // cutime cstime priority nice num_threads itrealvalue starttime vsize.
  const bool ok = takeStatField(rest, stat.ppid) && takeStatField(rest, stat.pgrp) && skipFields(rest, 1) &&
                  takeStatField(rest, stat.ttyNr) && takeStatField(rest, stat.tpgid) && skipFields(rest, 5) &&
                  takeStatField(rest, stat.utimeTicks) && takeStatField(rest, stat.stimeTicks) &&
                  skipFields(rest, 4) && takeStatField(rest, stat.threads) && skipFields(rest, 1) &&
                  takeStatField(rest, stat.startTicks) && takeStatField(rest, stat.vsizeBytes, /*last=*/true);
  if (!ok) return std::nullopt;
  return stat;
}

std::optional<std::uint64_t> parseStatmResident(std::string_view text) {
  if (!takeNumber(text)) return std::nullopt;
  return takeNumber(text);
}

}  // namespace quillmark::procfs
