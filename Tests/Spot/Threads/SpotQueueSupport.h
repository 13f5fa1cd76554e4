#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Model/ViewModel.h"
#include "Spot/SpotQueue.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {

/// The calls that wait for the main thread, which is the test's own.
class MainLoop {
 public:
  void Post(std::function<void()> call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
    changed_.notify_all();
  }
  /// Makes one waiting call; false if there is none.
  bool RunOne() {
    std::function<void()> call;
    {
      const std::lock_guard lock(mutex_);
      if (calls_.empty()) return false;
      call = std::move(calls_.front());
      calls_.pop_front();
    }
    call();
    return true;
  }
  /// Makes calls as they come until `done` holds.
  void RunUntil(const std::function<bool()>& done) {
    while (!done()) {
      if (RunOne()) continue;
      std::unique_lock lock(mutex_);
      changed_.wait_for(lock, std::chrono::milliseconds(1));
    }
  }
  /// Waits for a call without making it.
  void WaitForCall() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !calls_.empty(); });
  }
  std::size_t Waiting() const {
    const std::lock_guard lock(mutex_);
    return calls_.size();
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> calls_;
};

/// Which run made which call, over all runs of a test.
class CallLog {
 public:
  void Add(int run) {
    const std::lock_guard lock(mutex_);
    runs_.push_back(run);
  }
  /// The runs in the order of their calls, neighbours taken together: 1, 2, 1 means that two
  /// workers were at it side by side.
  std::vector<int> Order() const {
    const std::lock_guard lock(mutex_);
    std::vector<int> order = runs_;
    order.erase(std::unique(order.begin(), order.end()), order.end());
    return order;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<int> runs_;
};

/// A host that can hold the worker inside a message.
class HoldingHost : public RegionHost {
 public:
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    alias.assign(path, path + std::strlen(path));
    return 0;
  }
  std::int32_t Send(const RegionMessage& message) override {
    std::unique_lock lock(mutex_);
    ++sent_;
    for (const RegionParameter& parameter : message.parameters) {
      if (parameter.key != FourCharCode("SMSt")) continue;
      long position = 0;
      std::memcpy(&position, parameter.data.data(), sizeof position);
      positions_.push_back(position);
    }
    changed_.notify_all();
    changed_.wait(lock, [this] { return !held_; });
    return status_;
  }

  /// From now on each message stays inside Send until Release.
  void Hold() {
    Set([this] { held_ = true; });
  }
  void Release() {
    Set([this] { held_ = false; });
  }
  void Answer(std::int32_t status) {
    Set([this, status] { status_ = status; });
  }
  void WaitForSent(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this, count] { return sent_ >= count; });
  }
  int Sent() const {
    const std::lock_guard lock(mutex_);
    return sent_;
  }
  std::vector<long> Positions() const {
    const std::lock_guard lock(mutex_);
    return positions_;
  }

 private:
  template <class Change>
  void Set(Change change) {
    const std::lock_guard lock(mutex_);
    change();
    changed_.notify_all();
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool held_ = false;
  std::int32_t status_ = 0;
  int sent_ = 0;
  std::vector<long> positions_;
};

/// A run with the thread that executes it: what the view's own thread object is. Reports hold it
/// alive until they are delivered.
class Worker : public SpotDisplay, public RegionHost, public std::enable_shared_from_this<Worker> {
 public:
  static std::shared_ptr<Worker> Make(int number, std::shared_ptr<SpotTask> run, HoldingHost& host,
                                      MainLoop& loop, CallLog& log) {
    return std::shared_ptr<Worker>(new Worker(number, std::move(run), host, loop, log));
  }
  /// Ends a run that a failed test leaves.
  ~Worker() override {
    run->Abort();
    host_.Release();
    if (thread_.joinable()) thread_.join();
  }

  /// Starts the thread, which calls `before` first.
  void Start(std::function<void()> before = [] {}) {
    thread_ = std::thread([this, before = std::move(before)] {
      before();
      completed_ = run->Execute(*this, *this, follower);
      ended_ = true;
    });
  }
  /// The outcome of Execute, once the thread is over.
  bool Join() {
    thread_.join();
    return completed_;
  }
  bool Ended() const { return ended_; }

  void PostReport(std::int32_t progress) override {
    log_.Add(number_);
    posted_ = progress;
    ++posts_;
    loop_.Post([self = shared_from_this()] {
      self->run->DeliverReport([&](std::int32_t steps) { self->shown.push_back(steps); });
    });
  }
  void Log(const std::string& line) override {
    log_.Add(number_);
    const std::lock_guard lock(mutex_);
    lines_.push_back(line);
  }
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    log_.Add(number_);
    return host_.MakeAlias(path, alias);
  }
  std::int32_t Send(const RegionMessage& message) override {
    log_.Add(number_);
    const std::int32_t status = host_.Send(message);
    log_.Add(number_);
    return status;
  }

  std::int32_t Posted() const { return posted_; }
  int Posts() const { return posts_; }
  std::vector<std::string> Lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

  const std::shared_ptr<SpotTask> run;
  SpotFollower* follower = nullptr;  ///< set before the start, if at all
  std::vector<std::int32_t> shown;   ///< by the main thread

 private:
  Worker(int number, std::shared_ptr<SpotTask> itsRun, HoldingHost& host, MainLoop& loop,
         CallLog& log)
      : run(std::move(itsRun)), number_(number), host_(host), loop_(loop), log_(log) {}

  const int number_;
  HoldingHost& host_;
  MainLoop& loop_;
  CallLog& log_;
  std::atomic<bool> ended_ = false;
  std::atomic<std::int32_t> posted_ = 0;
  std::atomic<int> posts_ = 0;
  bool completed_ = false;
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
  std::thread thread_;
};

/// Writes a project of `cuts` cuts of 480 samples, a second apart from one hour on, all of one
/// 16-bit source; `edits` stands after each cut.
inline std::string WriteProject(const TemporaryFolder& folder, const std::string& name, int cuts,
                                const std::string& edits = "") {
  folder.Write("voice.wav", PlainWave({}, std::vector<std::int32_t>(4800, 1000)));
  std::string text =
      "<ADL>\n"
      "<SOURCE_INDEX>\n"
      "(Index) 0001 (F) \"URL:file://localhost/voice.wav\" _ 00.00.00.00/0000 00.00.00.02/0960\n"
      "</SOURCE_INDEX>\n"
      "<EVENT_LIST>\n";
  for (int i = 0; i < cuts; ++i) {
    const std::string second =
        std::string("01.00.") + static_cast<char>('0' + i / 10) + static_cast<char>('0' + i % 10);
    text += "(Entry) " + std::to_string(i + 1) + " (Cut) I 0001 0001 0001 00.00.00.00/0000 " +
            second + ".00/0000 " + second + ".00/0480 _ " + edits + "\n";
  }
  return folder.Write(name, text + "</EVENT_LIST>\n</ADL>\n");
}

/// Asks for no conversion of the 16-bit source.
inline SpotOptions PlainOptions() {
  SpotOptions options;
  options.sessionRate = 48000;
  options.frameRate = 2;  // 25 frames, as the project
  options.bitDepth = 16;
  options.depthSuffix = "_16bit";
  return options;
}

inline SharedSpotProject WorkOf(const ViewModel& model) {
  return {model.project, model.numEvents, model.minTrack, model.firstEvent};
}

}  // namespace velmora::test
