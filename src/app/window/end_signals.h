#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace kestrel {

/// Turns SIGINT, SIGTERM and SIGHUP into a call from the event loop, so that the program ends as by
/// its window: the command stopped, the programming voltage off. One of these at a time.
class EndSignals final {
 public:
  explicit EndSignals(std::function<void()> end);
  ~EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace kestrel
