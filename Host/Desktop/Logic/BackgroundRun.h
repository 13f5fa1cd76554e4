#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace velmora::desktop {

/// Work that must not keep the window waiting, on a thread of its own. What was started last
/// counts: whatever ran or waited before is asked to stop, and what comes of it is thrown away. The
/// operations belong to one thread, the main thread; none but Close waits for work.
///
///     main thread        Start(A)     Start(B)                     Take() = B's
///     work's thread         A ......... stops, thrown away   B ...... ended()
template <class Result>
class BackgroundRun {
 public:
  /// Whether the work is to stop; to be asked now and then, from any thread.
  using Stopped = std::function<bool()>;
  using Work = std::function<Result(const Stopped& stopped)>;

  /// `ended` is called on the work's thread when there is something to take. After Close it is
  /// called no more.
  explicit BackgroundRun(std::function<void()> ended) : ended_(std::move(ended)) {}
  ~BackgroundRun() { Close(); }
  BackgroundRun(const BackgroundRun&) = delete;
  BackgroundRun& operator=(const BackgroundRun&) = delete;

  /// False if there is no thread to be had, or after Close: then nothing runs.
  [[nodiscard]] bool Start(Work work) {
    Drop();
    const std::lock_guard lock(mutex_);
    if (closed_ || !HaveThread()) return false;
    latest_ = std::make_shared<Job>();
    latest_->work = std::move(work);
    waiting_ = latest_;
    wake_.notify_one();
    return true;
  }

  /// Asks what runs to stop. What comes of it can still be taken.
  void Stop() {
    const std::lock_guard lock(mutex_);
    if (latest_) latest_->stopped = true;
  }

  /// Asks what runs to stop and throws away what comes of it, or came and was not taken.
  void Drop() {
    const std::lock_guard lock(mutex_);
    if (latest_) latest_->stopped = true;
    latest_.reset();
    waiting_.reset();
    result_.reset();
  }

  /// True from Start until there is something to take, or until Drop.
  [[nodiscard]] bool IsRunning() const {
    const std::lock_guard lock(mutex_);
    return latest_ != nullptr;
  }

  /// What came of the work that was started last, once; none while it runs.
  [[nodiscard]] std::optional<Result> Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(result_, std::nullopt);
  }

  /// Drops everything and returns when the thread has ended.
  void Close() {
    Drop();
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
      wake_.notify_one();
    }
    if (thread_.joinable()) thread_.join();
  }

 private:
  struct Job {
    Work work;
    std::atomic<bool> stopped = false;
  };

  [[nodiscard]] bool HaveThread() {
    if (thread_.joinable()) return true;
    try {
      thread_ = std::thread([this] { WorkOff(); });
    } catch (const std::system_error&) {
      return false;
    }
    return true;
  }

  void WorkOff() {
    std::unique_lock lock(mutex_);
    while (true) {
      wake_.wait(lock, [this] { return closed_ || waiting_; });
      if (closed_) return;
      const std::shared_ptr<Job> job = std::exchange(waiting_, nullptr);
      lock.unlock();
      Result result = job->work([&job] { return job->stopped.load(); });
      job->work = nullptr;  // what it holds goes here, not under the lock
      lock.lock();
      if (job != latest_) continue;
      latest_.reset();
      result_ = std::move(result);
      lock.unlock();
      ended_();
      lock.lock();
    }
  }

  const std::function<void()> ended_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::shared_ptr<Job> latest_;   ///< started last, and neither ended nor dropped
  std::shared_ptr<Job> waiting_;  ///< the same while the thread has not taken it up
  std::optional<Result> result_;  ///< of the one that was started last
  bool closed_ = false;
  std::thread thread_;  ///< started with the first work
};

}  // namespace velmora::desktop
