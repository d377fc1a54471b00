#include "sensors/linux/drm_fdinfo.h"

#include <gtest/gtest.h>

#include "sampling/linux/testing/temp_tree.h"
#include "sensors/linux/linux_heavy_readers.h"

namespace quillmark {
namespace {

// As i915 prints it (kernel 6.1), with a capacity line and a memory line the reader ignores.
constexpr std::string_view kI915 =
    "pos:\t0\nflags:\t02100002\nmnt_id:\t26\nino:\t718\ndrm-driver:\ti915\n"
    "drm-pdev:\t0000:00:02.0\ndrm-client-id:\t42\ndrm-engine-render:\t2000000000 ns\n"
    "drm-engine-copy:\t0 ns\ndrm-engine-capacity-video:\t2\ndrm-total-system:\t4 MiB\n";

std::string i915(std::uint64_t client, std::uint64_t renderNs) {
  return "drm-driver:\ti915\ndrm-pdev:\t0000:00:02.0\ndrm-client-id:\t" + std::to_string(client) +
         "\ndrm-engine-render:\t" + std::to_string(renderNs) + " ns\n";
}

TEST(DrmFdinfo, ParsesEngineTimeAndCycles) {
  const auto usage = parseDrmFdinfo(kI915);
  ASSERT_TRUE(usage);
  EXPECT_EQ(usage->pdev, "0000:00:02.0");
  EXPECT_EQ(usage->clientId, 42u);
  EXPECT_EQ(usage->engineNs, (std::map<std::string, std::uint64_t>{{"copy", 0}, {"render", 2000000000}}));
  const auto xe = parseDrmFdinfo(
      "drm-client-id: 7\ndrm-pdev: 0000:03:00.0\ndrm-cycles-rcs: 500\n"
      "drm-total-cycles-rcs: 1000\ndrm-engine-bcs: garbage\n");
  ASSERT_TRUE(xe);
  EXPECT_EQ(xe->cycles.at("rcs"), 500u);
  EXPECT_EQ(xe->totalCycles.at("rcs"), 1000u);
  EXPECT_TRUE(xe->engineNs.empty());
  EXPECT_EQ(parseDrmFdinfo("pos:\t0\nflags:\t02\n"), std::nullopt);  // not a DRM descriptor
}

TEST(DrmFdinfo, TrackerSumsClientsAndIgnoresNewcomersAndBackwardCounters) {
  DrmBusyTracker tracker;
  EXPECT_TRUE(
      tracker.update({*parseDrmFdinfo(i915(1, 1'000'000'000)), *parseDrmFdinfo(i915(2, 0))}, 10.0).empty());
  const auto busy =
      tracker.update({*parseDrmFdinfo(i915(1, 1'300'000'000)), *parseDrmFdinfo(i915(2, 200'000'000)),
                      *parseDrmFdinfo(i915(3, 9'000'000'000))},  // new: adds nothing
                     11.0);
  EXPECT_NEAR(busy.at("0000:00:02.0"), 50.0, 1e-9);  // 0.5 s of render time in 1 s
  const auto after = tracker.update({*parseDrmFdinfo(i915(1, 1'000'000'000))}, 12.0);  // went back
  EXPECT_EQ(after.at("0000:00:02.0"), 0.0);
}

TEST(DrmFdinfo, IntelCardGetsItsLoadFromClientDescriptors) {
  testing::TempTree tree;
  tree.write("sys/devices/pci0000:00/0000:00:02.0/power/runtime_status", "active\n");
  tree.write("sys/bus/pci/drivers/i915/bind", "");
  tree.symlink(tree.path("sys/bus/pci/drivers/i915"), "sys/devices/pci0000:00/0000:00:02.0/driver");
  tree.symlink(tree.path("sys/devices/pci0000:00/0000:00:02.0"), "sys/class/drm/card0/device");
  tree.symlink("/dev/dri/renderD128", "proc/4242/fd/5");
  tree.symlink("/dev/dri/renderD128", "proc/4242/fd/6");  // the same client twice
  tree.symlink("/dev/null", "proc/4242/fd/0");
  tree.write("proc/4242/fdinfo/5", i915(9, 1'000'000'000));
  tree.write("proc/4242/fdinfo/6", i915(9, 1'000'000'000));
  tree.write("proc/4242/fdinfo/0", "pos:\t0\n");
  SensorInventory inventory;
  double clock = 0;
  LinuxHeavyReaders readers(inventory, {tree.root(), "libnvidia-ml.so.1", [&] { return clock; }, false});
  EXPECT_EQ(readers.readGPU(), std::nullopt);  // one sample is not a rate
  clock = 2;
  tree.write("proc/4242/fdinfo/5", i915(9, 1'500'000'000));
  tree.write("proc/4242/fdinfo/6", i915(9, 1'500'000'000));
  const auto gpu = readers.readGPU();
  ASSERT_TRUE(gpu);
  EXPECT_NEAR(gpu->deviceUtil, 25.0, 1e-9);
  EXPECT_EQ(inventory.gpus().at(0).driver, "i915");
}

}  // namespace
}  // namespace quillmark
