#include "Spot/SpotRun.h"

#include <utility>

namespace velmora {

namespace {

/// The system's status for what the user gave up (userCanceledErr).
constexpr std::int32_t kGivenUp = -128;

}  // namespace

/// What RunSpot sees of the view: nothing is reported any more once the run is aborted.
class SpotRun::Observer : public SpotObserver {
 public:
  Observer(SpotRun& run, SpotDisplay& display) : run_(run), display_(display) {}

  bool Aborted() override { return run_.aborted_; }
  void Report(std::int32_t progress) override { run_.Report(progress, display_); }
  void Log(const std::string& line) override {
    // Messages given up by a closing view are no failures of the host.
    if (!run_.closing_) display_.Log(line);
  }

 private:
  SpotRun& run_;
  SpotDisplay& display_;
};

/// The view's host until the view closes. From then on each attempt fails at once, so that a worker
/// in the middle of its eighty gets to its next look at the abort.
class SpotRun::Host : public RegionHost {
 public:
  Host(SpotRun& run, RegionHost& host) : run_(run), host_(host) {}

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    return run_.closing_ ? kGivenUp : host_.MakeAlias(path, alias);
  }
  std::int32_t Send(const RegionMessage& message) override {
    return run_.closing_ ? kGivenUp : host_.Send(message);
  }

 private:
  SpotRun& run_;
  RegionHost& host_;
};

SpotRun::SpotRun(std::shared_ptr<Queue> queue, SharedSpotProject work, SpotOptions options)
    : queue_(std::move(queue)), work_(std::move(work)), options_(std::move(options)) {}

SpotRun::~SpotRun() {
  End();
}

bool SpotRun::Execute(RegionHost& host, SpotDisplay& display) {
  struct Ending {
    SpotRun& run;
    ~Ending() { run.End(); }
  } ending{*this};

  if (!WaitForTurn()) return false;
  Host guardedHost(*this, host);
  Observer observer(*this, display);
  const SpotProject project{work_.project.get(), work_.numEvents, work_.minTrack, work_.firstEvent};
  return RunSpot(project, options_, guardedHost, observer) && !aborted_;
}

bool SpotRun::WaitForTurn() {
  std::unique_lock lock(queue_->mutex);
  queue_->changed.wait(lock, [this] { return aborted_ || ended_ || queue_->runs.front() == this; });
  return !aborted_ && !ended_;
}

void SpotRun::Report(std::int32_t progress, SpotDisplay& display) {
  std::unique_lock lock(queue_->mutex);
  if (aborted_) return;
  progress_ = progress;
  reportWaits_ = true;
  lock.unlock();
  display.PostReport(progress);
  lock.lock();
  queue_->changed.wait(lock, [this] { return aborted_ || !reportWaits_; });
}

void SpotRun::DeliverReport(const std::function<void(std::int32_t)>& show) {
  {
    const std::lock_guard lock(queue_->mutex);
    if (aborted_ || !reportWaits_) return;
  }
  struct Release {
    SpotRun& run;
    ~Release() {
      const std::lock_guard lock(run.queue_->mutex);
      run.reportWaits_ = false;
      run.queue_->changed.notify_all();
    }
  } release{*this};
  // The worker stands still and the lock is free: what is shown may abort this very run.
  show(progress_);
}

void SpotRun::Abort() {
  const std::lock_guard lock(queue_->mutex);
  AbortLocked();
}

void SpotRun::AbortLocked() {
  aborted_ = true;
  progress_ = -1;
  queue_->changed.notify_all();
}

void SpotRun::End() {
  // First the project, which may be deleted here: who waits for the end finds it gone.
  work_ = {};
  const std::lock_guard lock(queue_->mutex);
  ended_ = true;
  std::erase(queue_->runs, this);
  queue_->changed.notify_all();
}

SpotRuns::SpotRuns() : queue_(std::make_shared<SpotRun::Queue>()) {}

SpotRuns::~SpotRuns() {
  Close();
}

std::shared_ptr<SpotRun> SpotRuns::Request(SharedSpotProject work, SpotOptions options) {
  std::shared_ptr<SpotRun> run(new SpotRun(queue_, std::move(work), std::move(options)));
  const std::lock_guard lock(queue_->mutex);
  queue_->runs.push_back(run.get());
  return run;
}

bool SpotRuns::Idle() const {
  const std::lock_guard lock(queue_->mutex);
  return queue_->runs.empty();
}

void SpotRuns::Close() {
  std::unique_lock lock(queue_->mutex);
  for (SpotRun* run : queue_->runs) {
    run->closing_ = true;
    run->AbortLocked();
  }
  queue_->changed.wait(lock, [this] { return queue_->runs.empty(); });
}

}  // namespace velmora
