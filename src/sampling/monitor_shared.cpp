#include "base/serial_queue.h"
#include "sampling/monitor.h"

namespace quillmark {

Monitor& Monitor::shared() {
  // Destroyed in reverse order at exit: the monitor first, then the queue (which finishes a job in
  // flight), then the readers the job may still be using.
  static const std::unique_ptr<SystemCounters> counters = SystemCounters::makePlatform();
  static const std::unique_ptr<ProcessReader> processReader = ProcessReader::makePlatform();
  static HeavyReaders heavy;
  static MonitorConsumers consumers;
  static const std::unique_ptr<SerialQueue> queue = SerialQueue::makeBackground("com.quillmark.app.monitor");
  static const std::shared_ptr<Monitor> monitor = Monitor::create(
      Environment{MainLoop::main(), *queue, Clock::system(), *counters, *processReader, heavy, consumers});
  return *monitor;
}

}  // namespace quillmark
