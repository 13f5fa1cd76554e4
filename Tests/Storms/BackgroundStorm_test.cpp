// Work of the window on a thread of its own, started, stopped, dropped and closed at any moment.

#include <atomic>
#include <optional>
#include <string>

#include "Desktop/Logic/BackgroundRun.h"
#include "Storms/Storm.h"

namespace velmora::desktop {
namespace {

class BackgroundRound {
 public:
  explicit BackgroundRound(test::Dice& dice) : dice_(dice) {}

  void Run() {
    for (int steps = dice_.Between(5, 30); steps > 0 && !closed_; --steps) {
      Act();
      dice_.Dawdle();
    }
    if (!closed_) End();
    EXPECT_EQ(working_, 0) << "nothing works on after the end";
    EXPECT_EQ(overlaps_, 0) << "one work at a time";
  }

 private:
  void Act() {
    switch (dice_.Throw(9)) {
      case 0:
      case 1:
      case 2:
      case 3:
        Start();
        break;
      case 4:
        run_.Stop();
        stopped_ = true;
        break;
      case 5:
        run_.Drop();
        wanted_.reset();
        break;
      case 6:
      case 7:
        Take();
        break;
      default:
        if (dice_.OneIn(6)) Close();
        break;
    }
  }

  void Start() {
    const int number = ++started_;
    const int kind = dice_.Throw(3);
    const unsigned seed = dice_.Seed();
    ASSERT_TRUE(run_.Start([this, number, kind, seed](const BackgroundRun<int>::Stopped& stopped) {
      if (working_++ != 0) ++overlaps_;
      test::Dice own(seed);
      if (kind == 0) own.Dawdle();  // deaf to being stopped
      while (kind == 1 && !stopped()) test::GiveWay();
      --working_;
      return number;
    }));
    wanted_ = number;
    endless_ = kind == 1;
    stopped_ = false;
  }

  void Take() {
    const bool runs = run_.IsRunning();
    const std::optional<int> taken = run_.Take();
    if (!taken) {
      if (wanted_ && !runs) ADD_FAILURE() << "what had ended was not there";
      return;
    }
    EXPECT_EQ(taken, wanted_) << "of what was started last, once";
    EXPECT_TRUE(!endless_ || stopped_);
    wanted_.reset();
  }

  void Close() {
    run_.Close();
    closed_ = true;
    const int told = told_;
    EXPECT_FALSE(run_.Start([](const BackgroundRun<int>::Stopped&) { return 0; }));
    EXPECT_EQ(run_.Take(), std::nullopt);
    EXPECT_EQ(told_, told);
  }

  void End() {
    if (dice_.OneIn(3)) return Close();
    if (wanted_ && endless_) {
      run_.Stop();
      stopped_ = true;
    }
    while (run_.IsRunning()) test::GiveWay();
    Take();
    EXPECT_FALSE(wanted_) << "what was started last is never lost";
    Close();  // what was dropped may still be on its way out
  }

  test::Dice& dice_;
  int started_ = 0;
  std::optional<int> wanted_;  ///< started last, neither taken nor dropped
  bool endless_ = false;       ///< it ends only when it is stopped
  bool stopped_ = false;
  bool closed_ = false;
  std::atomic<int> told_ = 0;
  std::atomic<int> working_ = 0;
  std::atomic<int> overlaps_ = 0;
  BackgroundRun<int> run_{[this] { ++told_; }};  // last: it uses all of the above
};

TEST(BackgroundStorm, latestWorkAloneIsTaken) {
  test::RunStorm([](test::Dice& dice) { BackgroundRound(dice).Run(); });
}

}  // namespace
}  // namespace velmora::desktop
