// The window's own host is filled by spots while the window takes, copies and empties its session.

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Desktop/Logic/SessionReceiver.h"
#include "Model/ViewModel.h"
#include "Spot/SpotQueue.h"
#include "Spot/Threads/SpotQueueSupport.h"
#include "Storms/Storm.h"
#include "Support/TemporaryFolder.h"

namespace velmora::desktop {
namespace {

using test::Dice;

class SessionRun : public SpotDisplay, public std::enable_shared_from_this<SessionRun> {
 public:
  SessionRun(std::shared_ptr<SpotTask> task, SessionReceiver& receiver, test::MainLoop& loop)
      : task_(std::move(task)), receiver_(receiver), loop_(loop) {}

  void Start() {
    thread_ = std::thread([this] {
      completed_ = task_->Execute(receiver_, *this, &receiver_);
      over_ = true;
    });
  }
  void Abort() {
    aborted_ = true;
    task_->Abort();
  }
  bool Aborted() const { return aborted_; }
  bool Over() const { return over_; }
  bool Join() {
    thread_.join();
    return completed_;
  }
  void PostReport(std::int32_t /*progress*/) override {
    loop_.Post([self = shared_from_this()] { self->task_->DeliverReport([](std::int32_t) {}); });
  }
  void Log(const std::string& /*line*/) override {}

 private:
  const std::shared_ptr<SpotTask> task_;
  SessionReceiver& receiver_;
  test::MainLoop& loop_;
  bool aborted_ = false;
  bool completed_ = false;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

class SessionRound {
 public:
  SessionRound(Dice& dice, const test::TemporaryFolder& folder) : dice_(dice), folder_(folder) {}

  void Run() {
    Load();
    for (int steps = dice_.Between(5, 25); steps > 0; --steps) {
      Act();
      dice_.Dawdle();
    }
    if (dice_.OneIn(3)) {
      queue_.Close();
      closed_ = true;
    }
    loop_.RunUntil([this] {
      return std::all_of(runs_.begin(), runs_.end(), [](const auto& run) { return run->Over(); });
    });
    for (const auto& run : runs_) {
      const bool completed = run->Join();
      EXPECT_TRUE(completed || run->Aborted() || closed_);
      if (!completed || run->Aborted()) allComplete_ = false;
    }
    CheckSession();
  }

 private:
  void Act() {
    switch (dice_.Throw(12)) {
      case 0:
      case 1:
        Request();
        break;
      case 2:
        if (!runs_.empty()) runs_.back()->Abort();
        break;
      case 3:
        Load();
        break;
      case 4:
        if (dice_.OneIn(3)) Clear();
        break;
      case 5:
        receiver_.SetNative(dice_.OneIn(2));
        settings_.SetRates({44100, dice_.Throw(8)});
        break;
      case 6:
        LookAtCopy();
        break;
      case 7:
      case 8:
        Take();
        break;
      case 9:
        (void)receiver_.Summary();
        (void)receiver_.HasRecord();
        if (!receiver_.HasRegions()) {
          EXPECT_EQ(taken_, 0U) << "what was handed out is there until Clear";
        }
        if (dice_.OneIn(3)) receiver_.TargetWritten({});
        break;
      default:
        for (int calls = dice_.Throw(12); calls > 0 && loop_.RunOne(); --calls) dice_.Dawdle();
        break;
    }
  }

  void Load() {
    const std::string path = folder_.Path(dice_.OneIn(2) ? "plain.adl" : "fades.adl");
    ASSERT_TRUE(model_.LoadFile(path));
    receiver_.Loaded(model_.project.get(), path);
  }

  void Request() {
    if (runs_.size() >= 4) return;
    SpotOptions options = test::PlainOptions();
    options.positionMode = dice_.Throw(4);
    auto run = std::make_shared<SessionRun>(queue_.Request(test::WorkOf(model_), options),
                                            receiver_, loop_);
    runs_.push_back(run);
    cuts_ += static_cast<std::size_t>(model_.numEvents);
    run->Start();
  }

  void Clear() {
    answered_ = notices_;
    receiver_.Clear();
    taken_ = 0;
    cleared_ = true;
  }

  void Take() {
    answered_ = notices_;
    for (const host::SessionRegion& region : receiver_.TakeNew()) {
      ++taken_;
      EXPECT_EQ(region.path, folder_.Path("voice.wav"));
      EXPECT_EQ(region.stop - region.start, 480);
    }
  }

  void LookAtCopy() {
    const std::shared_ptr<const SpottedSession> copy = receiver_.Copy();
    ASSERT_NE(copy, nullptr);
    EXPECT_GE(copy->session.Regions().size(), taken_);
    for (const host::SessionRegion& region : copy->session.Regions()) {
      EXPECT_EQ(region.path, folder_.Path("voice.wav"));
    }
  }

  void CheckSession() {
    EXPECT_FALSE(receiver_.IsFilling());
    const int answered = answered_;
    const std::size_t before = taken_;
    Take();
    if (taken_ > before) {
      EXPECT_GT(notices_, answered) << "the window was told that there is something to take";
    }
    EXPECT_EQ(receiver_.Summary().regions, taken_) << "each region is handed out once";
    if (allComplete_ && !cleared_) {
      EXPECT_EQ(taken_, cuts_) << "of runs that end by themselves no region is lost";
    }
    LookAtCopy();
  }

  Dice& dice_;
  const test::TemporaryFolder& folder_;
  SessionSettings settings_;
  std::atomic<int> notices_ = 0;
  int answered_ = 0;  ///< notices before the last Take or Clear
  SessionReceiver receiver_{[this] { ++notices_; }, &settings_};
  test::MainLoop loop_;
  ViewModel model_;
  std::vector<std::shared_ptr<SessionRun>> runs_;
  std::size_t taken_ = 0;  ///< since the session was emptied
  std::size_t cuts_ = 0;   ///< of all runs
  bool cleared_ = false;
  bool closed_ = false;
  bool allComplete_ = true;
  SpotQueue queue_;  // last: its runs use all of the above
};

TEST(SessionStorm, eachRegionIsHandedOutOnce) {
  const test::TemporaryFolder folder;
  test::WriteProject(folder, "plain.adl", 8);
  test::WriteProject(folder, "fades.adl", 3, "(Infade) 00.00.00,00/0100 _ 0 0 0");
  test::RunStorm([&](Dice& dice) { SessionRound(dice, folder).Run(); });
}

}  // namespace
}  // namespace velmora::desktop
