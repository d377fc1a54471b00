#pragma once

#include <memory>

#include "base/virtual_time.h"
#include "sampling/monitor.h"
#include "sampling/testing/fake_readers.h"

namespace quillmark::testing {

// A monitor on virtual time over fake readers, whose queue jobs wait until the test runs them.
struct MonitorRig {
  VirtualClock clock;
  VirtualMainLoop loop{clock};
  ManualSerialQueue queue;
  FakeSystemCounters counters;
  FakeProcessReader processes;
  FakeHeavyReaders heavy;
  RecordingConsumers consumers;
  std::shared_ptr<Monitor> monitor =
      Monitor::create({loop, queue, clock, counters, processes, heavy, consumers});

  // Runs the measurement in flight and its hand-off to the main thread.
  void finishMeasurement() {
    queue.runAll();
    loop.runUntilIdle();
  }
};

}  // namespace quillmark::testing
