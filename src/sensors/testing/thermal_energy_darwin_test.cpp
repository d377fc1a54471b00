// The thermal and energy readers compiled for Linux against the stub SDK and a scripted kernel.
#include <gtest/gtest.h>

#include <cstring>

#include "sampling/testing/fake_darwin_kernel.h"
#include "sensors/energy_reader.h"
#include "sensors/testing/fake_iokit.h"
#include "sensors/thermal_reader.h"

namespace quillmark {
namespace {

using fake_iokit::iokit;

fake_iokit::SMCKey celsius(float value) {
  fake_iokit::SMCKey key;
  key.bytes.resize(4);
  std::memcpy(key.bytes.data(), &value, 4);
  return key;
}

// The SMC remembers missing keys for the process, so the whole thermal story is one test.
TEST(ThermalReaderOnFakeSMC, HottestPerGroupAndMissingKeysCostNothingTheSecondTime) {
  fake_iokit::reset();
  iokit().smcKeys["Tp0A"] = celsius(48.5);
  iokit().smcKeys["Tp0D"] = celsius(52.0);
  iokit().smcKeys["TB0T"] = celsius(0.0);  // an idle sensor's 0 is a reading
  iokit().smcKeys["Ts0P"] = celsius(31.0);
  iokit().smcKeys["Ts1P"] = celsius(33.5);
  const ThermalSample first = ThermalReader::read();
  EXPECT_EQ(first.cpuC, 52.0);
  EXPECT_EQ(first.gpuC, std::nullopt);
  EXPECT_EQ(first.batteryC, 0.0);
  EXPECT_EQ(first.surfaceC, 33.5);
  EXPECT_EQ(iokit().exchanges.size(), 17u + 5u);  // every key described, the five present read

  iokit().exchanges.clear();
  EXPECT_EQ(ThermalReader::read(), first);
  EXPECT_EQ(iokit().exchanges.size(), 5u);
}

TEST(EnergyReaderOnFakeKernel, GroupsByCoalitionAndReadsEnergyAtOffset88) {
  fake_iokit::reset();
  auto& processes = fake_darwin::kernel().processes;
  processes.push_back({812, {}, 0, {}, 41, {}, {}});
  processes.push_back({455, {}, 0, {}, 41, {}, {}});
  processes.push_back({900, {}, 0, {}, 41, {}, {}});
  processes.push_back({77, {}, 0, {}, std::nullopt, {}, {}});  // coalition unreadable: dropped
  processes.push_back({78, {}, 0, {}, 99, {}, {}});            // usage call fails: no row
  iokit().coalitionEnergy[41] = 1'000'000'000;
  const std::vector<ProcessSample> input = {
      {812, "helper", 1, 0}, {455, "App", 1, 0}, {900, "x", 1, 0}, {77, "y", 1, 0}, {78, "z", 1, 0}};
  auto rows = EnergyReader::aggregatedRows(input);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0], (ProcessSample{455, "App", 0.0, 1'000'000'000}));
  EXPECT_EQ(iokit().coalitionBufferSizes, (std::vector<std::size_t>{512, 512}));

  iokit().now += 2.0;
  iokit().coalitionEnergy[41] = 4'000'000'000;
  EXPECT_EQ(EnergyReader::aggregatedRows(input)[0].cpuPercent, 1.5);
}

TEST(EnergyReaderOnFakeKernel, NoCoalitionCallMeansNoRows) {
  fake_iokit::reset();
  iokit().coalitionSymbol = false;
  fake_darwin::kernel().processes.push_back({812, {}, 0, {}, 41, {}, {}});
  iokit().coalitionEnergy[41] = 1;
  // The symbol is looked up once per process; ctest runs each test in its own.
  if (EnergyReader::available()) GTEST_SKIP() << "an earlier test in this process found the symbol";
  EXPECT_TRUE(EnergyReader::aggregatedRows({{812, "a", 0, 0}}).empty());
}

}  // namespace
}  // namespace quillmark
