#include "Spot/SpotQueue.h"

#include <utility>

namespace velmora {

namespace {

/// The system's status for what the user gave up (userCanceledErr).
constexpr std::int32_t kGivenUp = -128;

}  // namespace

/// What RunSpot sees of the view: nothing is reported any more once the run is aborted.
class SpotTask::Observer : public SpotObserver {
 public:
  Observer(SpotTask& run, SpotDisplay& display) : run_(run), display_(display) {}

  bool Aborted() override { return run_.aborted_; }
  void Report(std::int32_t progress) override { run_.Report(progress, display_); }
  void Log(const std::string& line) override {
    // Messages given up by a closing view are no failures of the host.
    if (!run_.closing_) display_.Log(line);
  }

 private:
  SpotTask& run_;
  SpotDisplay& display_;
};

/// The view's host until the view closes. From then on each attempt fails at once, so that a worker
/// in the middle of its eighty gets to its next look at the abort.
class SpotTask::Host : public RegionHost {
 public:
  Host(SpotTask& run, RegionHost& host) : run_(run), host_(host) {}

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    return run_.closing_ ? kGivenUp : host_.MakeAlias(path, alias);
  }
  std::int32_t Send(const RegionMessage& message) override {
    return run_.closing_ ? kGivenUp : host_.Send(message);
  }

 private:
  SpotTask& run_;
  RegionHost& host_;
};

SpotTask::SpotTask(std::shared_ptr<Shared> shared, SharedSpotProject work, SpotOptions options)
    : shared_(std::move(shared)), work_(std::move(work)), options_(std::move(options)) {}

SpotTask::~SpotTask() {
  End();
}

bool SpotTask::Execute(RegionHost& host, SpotDisplay& display) {
  struct Ending {
    SpotTask& run;
    ~Ending() { run.End(); }
  } ending{*this};

  if (!WaitForTurn()) return false;
  Host guardedHost(*this, host);
  Observer observer(*this, display);
  const SpotProject project{work_.project.get(), work_.numEvents, work_.minTrack, work_.firstEvent};
  return RunSpot(project, options_, guardedHost, observer) && !aborted_;
}

bool SpotTask::WaitForTurn() {
  std::unique_lock lock(shared_->mutex);
  shared_->changed.wait(lock,
                        [this] { return aborted_ || ended_ || shared_->runs.front() == this; });
  return !aborted_ && !ended_;
}

void SpotTask::Report(std::int32_t progress, SpotDisplay& display) {
  std::unique_lock lock(shared_->mutex);
  if (aborted_) return;
  progress_ = progress;
  reportWaits_ = true;
  lock.unlock();
  display.PostReport(progress);
  lock.lock();
  shared_->changed.wait(lock, [this] { return aborted_ || !reportWaits_; });
}

void SpotTask::DeliverReport(const std::function<void(std::int32_t)>& show) {
  {
    const std::lock_guard lock(shared_->mutex);
    if (aborted_ || !reportWaits_) return;
  }
  struct Release {
    SpotTask& run;
    ~Release() {
      const std::lock_guard lock(run.shared_->mutex);
      run.reportWaits_ = false;
      run.shared_->changed.notify_all();
    }
  } release{*this};
  // The worker stands still and the lock is free: what is shown may abort this very run.
  show(progress_);
}

void SpotTask::Abort() {
  const std::lock_guard lock(shared_->mutex);
  AbortLocked();
}

void SpotTask::AbortLocked() {
  aborted_ = true;
  progress_ = -1;
  shared_->changed.notify_all();
}

void SpotTask::End() {
  // First the project, which may be deleted here: who waits for the end finds it gone.
  work_ = {};
  const std::lock_guard lock(shared_->mutex);
  ended_ = true;
  std::erase(shared_->runs, this);
  shared_->changed.notify_all();
}

SpotQueue::SpotQueue() : shared_(std::make_shared<SpotTask::Shared>()) {}

SpotQueue::~SpotQueue() {
  Close();
}

std::shared_ptr<SpotTask> SpotQueue::Request(SharedSpotProject work, SpotOptions options) {
  std::shared_ptr<SpotTask> run(new SpotTask(shared_, std::move(work), std::move(options)));
  const std::lock_guard lock(shared_->mutex);
  shared_->runs.push_back(run.get());
  return run;
}

bool SpotQueue::Idle() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->runs.empty();
}

void SpotQueue::Close() {
  std::unique_lock lock(shared_->mutex);
  for (SpotTask* run : shared_->runs) {
    run->closing_ = true;
    run->AbortLocked();
  }
  shared_->changed.wait(lock, [this] { return shared_->runs.empty(); });
}

}  // namespace velmora
