#pragma once

#include <condition_variable>
#include <mutex>

namespace halcyra::testing {

/// Lets a test stop a fake engine's call on its worker thread and let it go on later, so that
/// the phase in between can be seen.
class Gate {
public:
  void hold() {
    std::lock_guard lock(mutex_);
    held_ = true;
  }
  void release() {
    {
      std::lock_guard lock(mutex_);
      held_ = false;
    }
    released_.notify_all();
  }
  /// Waits here while the gate is held.
  void pass() {
    std::unique_lock lock(mutex_);
    waiting_ = held_;
    released_.wait(lock, [this] { return !held_; });
    waiting_ = false;
  }
  /// Whether a call is waiting in `pass` right now.
  bool waiting() {
    std::lock_guard lock(mutex_);
    return waiting_;
  }

private:
  std::mutex mutex_;
  std::condition_variable released_;
  bool held_ = false;
  bool waiting_ = false;
};

} // namespace halcyra::testing
