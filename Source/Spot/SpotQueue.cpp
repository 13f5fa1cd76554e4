#include "Spot/SpotQueue.h"

#include <algorithm>
#include <new>
#include <utility>

namespace velmora {

namespace {

/// The system's status for what the user gave up (userCanceledErr).
constexpr std::int32_t kGivenUp = -128;

}  // namespace

/// What RunSpot sees of the view.
class SpotTask::Observer : public SpotObserver {
 public:
  Observer(SpotTask& run, SpotDisplay& display, SpotFollower* follower)
      : run_(run), display_(display), follower_(follower) {}

  bool Aborted() override { return run_.aborted_; }
  void Report(std::int32_t progress) override { run_.Report(progress, display_); }
  void Log(const std::string& line) override {
    // Messages given up by a closing view are no failures of the host.
    if (!run_.closing_) display_.Log(line);
  }
  void FileMade(FilePass pass, std::int32_t event, const std::string& path,
                std::int32_t status) override {
    if (follower_ != nullptr) follower_->FileMade(pass, event, path, status);
  }
  void RegionTried(std::int32_t event, RegionPiece piece, std::int32_t attempt,
                   std::int32_t status) override {
    if (follower_ != nullptr) follower_->RegionTried(event, piece, attempt, status);
  }
  void RegionGivenUp(std::int32_t event, RegionPiece piece, std::int32_t status) override {
    if (follower_ != nullptr) follower_->RegionGivenUp(event, piece, status);
  }
  void CutLeftOut(std::int32_t event, const std::string& path) override {
    if (follower_ != nullptr) follower_->CutLeftOut(event, path);
  }

 private:
  SpotTask& run_;
  SpotDisplay& display_;
  SpotFollower* follower_;
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

bool SpotTask::Execute(RegionHost& host, SpotDisplay& display, SpotFollower* follower) {
  if (!Start()) return false;
  struct Ending {
    SpotTask& run;
    ~Ending() { run.End(); }
  } ending{*this};

  if (!WaitForTurn()) return false;
  Host guardedHost(*this, host);
  Observer observer(*this, display, follower);
  const SpotProject project{work_.project.get(), work_.numEvents, work_.minTrack, work_.firstEvent};
  // An exception that leaves a thread would end the whole host.
  try {
    if (follower != nullptr) follower->Began(project, options_);
  } catch (const std::bad_alloc&) {
    observer.Log("out of memory");
    observer.Report(-1);
    return false;
  }
  const bool finished = RunSpot(project, options_, guardedHost, observer) && !closing_;
  try {
    if (follower != nullptr) follower->Ended(options_, finished);
  } catch (const std::bad_alloc&) {
    observer.Log("out of memory");
  }
  return finished;
}

/// False if the queue has been closed before the thread came.
bool SpotTask::Start() {
  const std::lock_guard lock(shared_->mutex);
  started_ = true;
  return !ended_;
}

bool SpotTask::WaitForTurn() {
  std::unique_lock lock(shared_->mutex);
  shared_->changed.wait(lock, [this] { return aborted_ || shared_->runs.front() == this; });
  return !aborted_;
}

void SpotTask::Report(std::int32_t progress, SpotDisplay& display) {
  std::unique_lock lock(shared_->mutex);
  if (progress < 0) lastReport_ = true;
  if (!MayShowLocked()) return;
  progress_ = progress;
  reportWaits_ = true;
  lock.unlock();
  display.PostReport(progress);
  lock.lock();
  shared_->changed.wait(lock, [this] { return aborted_ || !reportWaits_; });
}

/// An abort that comes after the last look at it stops nothing: such a run still tells its end. By
/// then another run may have been requested, whose state on the display this one must not touch.
bool SpotTask::MayShowLocked() const {
  return !aborted_ || (lastReport_ && number_ == shared_->newest);
}

void SpotTask::DeliverReport(const std::function<void(std::int32_t)>& show) {
  {
    const std::lock_guard lock(shared_->mutex);
    if (!reportWaits_ || !MayShowLocked()) return;
  }
  struct Release {
    SpotTask& run;
    ~Release() {
      const std::lock_guard lock(run.shared_->mutex);
      run.reportWaits_ = false;
      run.shared_->changed.notify_all();
    }
  } release{*this};
  // The lock is free: what is shown may abort this very run.
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
  TakeWork();
  const std::lock_guard lock(shared_->mutex);
  ended_ = true;
  std::erase(shared_->runs, this);
  shared_->changed.notify_all();
}

/// Under the lock, since the queue takes the work of a run whose thread has not come.
SharedSpotProject SpotTask::TakeWork() {
  const std::lock_guard lock(shared_->mutex);
  return std::exchange(work_, {});
}

SpotQueue::SpotQueue() : shared_(std::make_shared<SpotTask::Shared>()) {}

SpotQueue::~SpotQueue() {
  Close();
}

std::shared_ptr<SpotTask> SpotQueue::Request(SharedSpotProject work, SpotOptions options) {
  std::shared_ptr<SpotTask> run(new SpotTask(shared_, std::move(work), std::move(options)));
  const std::lock_guard lock(shared_->mutex);
  shared_->runs.push_back(run.get());
  run->number_ = ++shared_->newest;
  return run;
}

bool SpotQueue::Idle() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->runs.empty();
}

void SpotQueue::Close() {
  std::unique_lock lock(shared_->mutex);
  ++shared_->newest;  // no run is the latest one any more: none tells its end
  for (SpotTask* run : shared_->runs) {
    run->closing_ = true;
    run->AbortLocked();
  }
  while (SpotTask* const run = FirstNotStartedLocked()) {
    run->ended_ = true;
    std::erase(shared_->runs, run);
    SharedSpotProject work = std::exchange(run->work_, {});
    lock.unlock();  // the project may be deleted here, and the run may go
    work = {};
    lock.lock();
  }
  shared_->changed.wait(lock, [this] { return shared_->runs.empty(); });
}

SpotTask* SpotQueue::FirstNotStartedLocked() const {
  const auto found = std::find_if(shared_->runs.begin(), shared_->runs.end(),
                                  [](const SpotTask* run) { return !run->started_; });
  return found != shared_->runs.end() ? *found : nullptr;
}

}  // namespace velmora
