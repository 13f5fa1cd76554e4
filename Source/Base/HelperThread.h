#pragma once

#include <pthread.h>

#include <memory>
#include <utility>

namespace velmora {

/// A thread that helps the one that starts it for some milliseconds: as std::thread, but it begins
/// on another processor where the system lets us say so (Linux).
///
/// A new thread may wait on the processor of whoever starts it until a time slice of 4 ms is over,
/// though another is idle: a guest's kernel takes a processor that its host has put to sleep for a
/// busy one. For a load of 30 ms that is an eighth, for each thread. Once it runs it may go
/// anywhere.
///
/// Its destructor waits for the end of the work. As in std::thread, an exception ends the program.
class HelperThread {
 public:
  HelperThread() = default;
  /// @throws std::system_error if there is no thread to be had
  template <typename Work>
  explicit HelperThread(Work work) {
    Start(std::make_unique<TaskOf<Work>>(std::move(work)));
  }
  ~HelperThread() { Join(); }
  HelperThread(HelperThread&& other) noexcept
      : thread_(other.thread_), isRunning_(std::exchange(other.isRunning_, false)) {}
  HelperThread& operator=(HelperThread&& other) noexcept {
    Join();
    thread_ = other.thread_;
    isRunning_ = std::exchange(other.isRunning_, false);
    return *this;
  }

  /// True until Join.
  [[nodiscard]] bool IsRunning() const { return isRunning_; }
  /// Waits until the work is done, if there is any.
  void Join();

 private:
  struct Task;
  struct Beginning;
  template <typename Work>
  struct TaskOf;

  void Start(std::unique_ptr<Task> task);
  static void* Run(void* beginning) noexcept;

  pthread_t thread_{};
  bool isRunning_ = false;
};

struct HelperThread::Task {
  virtual ~Task() = default;
  virtual void Do() = 0;
};

template <typename Work>
struct HelperThread::TaskOf : Task {
  explicit TaskOf(Work given) : work(std::move(given)) {}
  void Do() override { work(); }
  Work work;
};

}  // namespace velmora
