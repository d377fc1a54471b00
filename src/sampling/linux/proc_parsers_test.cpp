#include "sampling/linux/proc_parsers.h"

#include <gtest/gtest.h>

namespace quillmark::procfs {
namespace {

TEST(ProcStatParser, FoldsColumnsIntoFourStatesAndIndexesCoresByLabel) {
  // Captured with cpu1 offline (no cpu1 line), columns made distinct: user nice system idle
  // iowait irq softirq steal guest guest_nice.
  constexpr std::string_view text =
      "cpu  1000 20 300 40000 500 6 70 8 900 10\n"
      "cpu0 600 10 200 20000 300 4 50 5 400 5\n"
      "cpu2 400 10 100 20000 200 2 20 3 500 5\n"
      "intr 128503 0 0 0 0 0 0 1 1 8 0\nctxt 206694\nbtime 1795316988\nprocesses 5990\n";
  const ProcStat stat = parseProcStat(text);
  // guest and guest_nice are inside user and nice already; steal counts as system.
  EXPECT_EQ(stat.cpu.total, (CPUTicks{.user = 1000, .system = 384, .idle = 40500, .nice = 20}));
  ASSERT_EQ(stat.cpu.perCore.size(), 2u);
  EXPECT_EQ(stat.cpu.perCore[0].cpu, 0);
  EXPECT_EQ(stat.cpu.perCore[1].cpu, 2);
  EXPECT_EQ(stat.cpu.perCore[1].ticks, (CPUTicks{.user = 400, .system = 125, .idle = 20200, .nice = 10}));
  EXPECT_EQ(stat.bootTime, 1795316988);
  EXPECT_EQ(parseProcStatCPU(text).total, stat.cpu.total);
  EXPECT_EQ(parseProcStatCPU(text).perCore, stat.cpu.perCore);
}

TEST(ProcStatParser, DegradesLineByLineOnDamagedText) {
  // Old kernels print four columns; the rest count as zero.
  EXPECT_EQ(parseProcStat("cpu 1 2 3 4\n").cpu.total,
            (CPUTicks{.user = 1, .system = 3, .idle = 4, .nice = 2}));
  const ProcStat damaged = parseProcStat(
      "cpu 1 2 3\n"  // too few columns
      "cpu0 5 5 5 5 5 5 5 5 0 0\ncpu1 5 5 x 5\ncpu2 99999999999999999999999 1 1 1\ncpuX 1 1 1 1\n"
      "cpu3 7 7 7 7 7");  // no final newline
  EXPECT_FALSE(damaged.cpu.total);
  ASSERT_EQ(damaged.cpu.perCore.size(), 2u);
  EXPECT_EQ(damaged.cpu.perCore[1].cpu, 3);
  EXPECT_FALSE(damaged.bootTime);
  EXPECT_FALSE(parseProcStat("btime -5\n").bootTime);
}

TEST(MemInfoParser, ReadsKibibytesByNameAndToleratesMissingKeys) {
  const MemInfo info = parseMemInfo(
      "MemTotal:       24683620 kB\nMemFree:        24572060 kB\nCached:            18424 kB\n"
      "SwapCached:          99 kB\nShmem:              8884 kB\nHugePages_Total:       0\n");
  EXPECT_EQ(info.memTotal, 24683620ull * 1024);
  EXPECT_EQ(info.cached, 18424u * 1024);  // not SwapCached
  EXPECT_EQ(info.shmem, 8884u * 1024);
  EXPECT_FALSE(info.sReclaimable);
  EXPECT_FALSE(info.zswap);

  const MemInfo damaged = parseMemInfo("MemTotal: lots kB\nMemFree: 99999999999999999999 kB\nZswap:  12 kB");
  EXPECT_FALSE(damaged.memTotal);
  EXPECT_FALSE(damaged.memFree);
  EXPECT_EQ(damaged.zswap, 12u * 1024);
  EXPECT_FALSE(parseMemInfo("MemTotal: 18014398509481984 kB\n").memTotal);  // overflows as bytes
}

TEST(NetDevParser, ReadsBothByteColumnsOfEveryWellFormedRow) {
  const auto entries = parseNetDev(
      "Inter-|   Receive                                                |  Transmit\n"
      " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop\n"
      "  eth0: 18707108     778    0    0    0     0          0         0    48929     660    0    0    0\n"
      "eth1:5 1 0 0 0 0 0 0 7 1 0 0 0 0 0 0\n"  // old kernels put no blank after the colon
      "  eth2: 1 2 3 4 5 6 7 8\n"               // cut before the transmit block
      "     : 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1\n");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "eth0");
  EXPECT_EQ(entries[0].rxBytes, 18707108u);
  EXPECT_EQ(entries[0].txBytes, 48929u);
  EXPECT_EQ(entries[1].name, "eth1");
  EXPECT_EQ(entries[1].txBytes, 7u);
}

TEST(SmallFileParsers, ReadFlagsSizesZramPoolsAndStatm) {
  EXPECT_EQ(parseHexAttribute("0x1003\n"), 0x1003u);
  EXPECT_FALSE(parseHexAttribute("0x11112222333344445"));
  EXPECT_EQ(parseDecimalAttribute("1073741824\n"), 1073741824u);
  EXPECT_EQ(parseZramMemUsed("  4096000   1024000   1200000        0  1300000        3\n"), 1200000u);
  EXPECT_FALSE(parseZramMemUsed("4096000 1024000\n"));
  EXPECT_EQ(parseStatmResident("783 407 334 5 0 86 0\n"), 407u);
  EXPECT_FALSE(parseStatmResident("783\n"));
}

TEST(PidStatParser, ReadsTheFieldsAfterTheLastCloseParenthesis) {
  // After comm: state ppid pgrp session tty_nr tpgid flags minflt cminflt majflt cmajflt utime stime
  // cutime cstime priority nice num_threads itrealvalue starttime vsize rss ...
  const auto stat = parsePidStat(
      "5092 (a) b (c) d) T 1 5090 5091 0 -1 4194560 100 0 0 0 7 3 9 8 20 0 4 0 123456789012 8192000 300 "
      "18446744073709551615 1 1 0 0 0 0 0 0 0 0 0 0 17 1 0 0 0 0 0\n");
  ASSERT_TRUE(stat);
  EXPECT_EQ(stat->comm, "a) b (c) d");
  EXPECT_EQ(stat->state, 'T');
  EXPECT_EQ(std::make_pair(stat->ppid, stat->pgrp), std::make_pair(1, 5090));
  EXPECT_EQ(std::make_pair(stat->ttyNr, stat->tpgid), std::make_pair(0, -1));
  EXPECT_EQ(stat->utimeTicks, 7u);
  EXPECT_EQ(stat->stimeTicks, 3u);  // not cutime/cstime, the reaped children
  EXPECT_EQ(stat->threads, 4);
  EXPECT_EQ(stat->startTicks, 123456789012u);  // beyond what a double of seconds keeps exactly in ticks
  EXPECT_EQ(stat->vsizeBytes, 8192000u);

  // A name may hold a newline; a file may end right after vsize.
  const auto terminal = parsePidStat("7 (two\nlines) (x) R 1 7 7 34817 7 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0");
  ASSERT_TRUE(terminal);
  EXPECT_EQ(terminal->comm, "two\nlines) (x");
  EXPECT_EQ(terminal->state, 'R');
  EXPECT_EQ(std::make_pair(terminal->ttyNr, terminal->tpgid), std::make_pair(34817, 7));
  EXPECT_EQ(std::make_pair(terminal->startTicks, terminal->vsizeBytes),
            std::make_pair(std::uint64_t{5}, std::uint64_t{0}));
  EXPECT_EQ(parsePidStat("7 () S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0\n")->comm, "");
}

TEST(PidStatParser, RejectsDamagedLines) {
  // Each a variant of this line, which parses.
  ASSERT_TRUE(parsePidStat("7 (a) S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0"));
  for (const std::string_view damaged : {
           "",
           "7 a S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0",             // no comm
           "7 )a( S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0",           // parentheses reversed
           "7 (a) S 1 1 1 0 -1 0 0 0 0 0 1 2",                            // cut before starttime
           "7 (a) S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5",             // cut after starttime
           "7 (a) S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 ",            // vsize empty
           "7 (a)S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0",            // no space after comm
           "7 (a) SS 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0",          // state of two letters
           "7 (a) S 1 1 1 0 -1 0 0 0 0 0 -1 2 0 0 20 0 1 0 5 0",          // negative ticks
           "7 (a) S 1 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 -5 0",          // negative start
           "7 (a) S 1x 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0",          // junk in a number
           "7 (a) S 4294967296 1 1 0 -1 0 0 0 0 0 1 2 0 0 20 0 1 0 5 0",  // ppid past 32 bits
       }) {
    EXPECT_FALSE(parsePidStat(damaged)) << damaged;
  }
}

}  // namespace
}  // namespace quillmark::procfs
