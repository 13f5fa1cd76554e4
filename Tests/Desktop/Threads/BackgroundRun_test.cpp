#include "Desktop/Logic/BackgroundRun.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

namespace velmora::desktop {
namespace {

using TextRun = BackgroundRun<std::string>;

// Something that one thread waits for and another one brings about.
class Signal {
 public:
  void Raise() {
    const std::lock_guard lock(mutex_);
    ++raised_;
    changed_.notify_all();
  }
  void WaitFor(int times = 1) {
    std::unique_lock lock(mutex_);
    ASSERT_TRUE(
        changed_.wait_for(lock, std::chrono::seconds(60), [&] { return raised_ >= times; }));
  }
  int Count() {
    const std::lock_guard lock(mutex_);
    return raised_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int raised_ = 0;
};

// Work that goes on until it is asked to stop.
TextRun::Work UntilStopped(Signal& begun, const std::string& result) {
  return [&begun, result](const TextRun::Stopped& stopped) {
    begun.Raise();
    while (!stopped()) std::this_thread::yield();
    return result;
  };
}

TextRun::Work AtOnce(const std::string& result) {
  return [result](const TextRun::Stopped&) { return result; };
}

TEST(BackgroundRun, handsOverWhatCameOfIt) {
  Signal ended;
  TextRun run([&] { ended.Raise(); });
  EXPECT_FALSE(run.IsRunning());
  EXPECT_EQ(run.Take(), std::nullopt);
  ASSERT_TRUE(run.Start(AtOnce("A")));
  ended.WaitFor();
  EXPECT_FALSE(run.IsRunning());
  EXPECT_EQ(run.Take(), "A");
  EXPECT_EQ(run.Take(), std::nullopt) << "once";
}

TEST(BackgroundRun, nothingIsThereToTakeWhileItRuns) {
  Signal begun;
  Signal ended;
  TextRun run([&] { ended.Raise(); });
  ASSERT_TRUE(run.Start(UntilStopped(begun, "A")));
  begun.WaitFor();
  EXPECT_TRUE(run.IsRunning());
  EXPECT_EQ(run.Take(), std::nullopt);
  run.Stop();
  ended.WaitFor();
  EXPECT_EQ(run.Take(), "A") << "what was asked to stop still has an outcome";
}

TEST(BackgroundRun, whatIsStartedLastReplacesWhatRuns) {
  Signal begun;
  Signal ended;
  TextRun run([&] { ended.Raise(); });
  ASSERT_TRUE(run.Start(UntilStopped(begun, "A")));
  begun.WaitFor();
  ASSERT_TRUE(run.Start(AtOnce("B")));
  ended.WaitFor();
  EXPECT_EQ(run.Take(), "B");
  EXPECT_EQ(ended.Count(), 1) << "nobody is told of A";
}

TEST(BackgroundRun, whatWaitsIsReplacedWithoutHavingBegun) {
  Signal begun;
  Signal release;
  Signal ended;
  Signal never;
  TextRun run([&] { ended.Raise(); });
  ASSERT_TRUE(run.Start([&](const TextRun::Stopped&) {
    begun.Raise();
    release.WaitFor();  // deaf to being stopped
    return std::string("A");
  }));
  begun.WaitFor();
  ASSERT_TRUE(run.Start(UntilStopped(never, "B")));
  ASSERT_TRUE(run.Start(AtOnce("C")));
  EXPECT_TRUE(run.IsRunning());
  release.Raise();
  ended.WaitFor();
  EXPECT_EQ(run.Take(), "C");
  EXPECT_EQ(never.Count(), 0);
}

TEST(BackgroundRun, whatIsDroppedIsNeverTaken) {
  Signal begun;
  Signal ended;
  TextRun run([&] { ended.Raise(); });
  ASSERT_TRUE(run.Start(UntilStopped(begun, "A")));
  begun.WaitFor();
  run.Drop();
  EXPECT_FALSE(run.IsRunning());
  ASSERT_TRUE(run.Start(AtOnce("B")));
  ended.WaitFor();
  run.Drop();
  EXPECT_EQ(run.Take(), std::nullopt) << "nor is what had come and was not taken";
}

TEST(BackgroundRun, closingStopsAndWaits) {
  Signal begun;
  Signal ended;
  std::atomic<bool> left = false;
  TextRun run([&] { ended.Raise(); });
  ASSERT_TRUE(run.Start([&](const TextRun::Stopped& stopped) {
    begun.Raise();
    while (!stopped()) std::this_thread::yield();
    left = true;
    return std::string("A");
  }));
  begun.WaitFor();
  run.Close();
  EXPECT_TRUE(left);
  EXPECT_EQ(run.Take(), std::nullopt);
  EXPECT_EQ(ended.Count(), 0);
  EXPECT_FALSE(run.Start(AtOnce("B"))) << "nothing runs after it";
  run.Close();
}

TEST(BackgroundRun, goingAwayDoesTheSame) {
  Signal begun;
  {
    TextRun run([] {});
    ASSERT_TRUE(run.Start(UntilStopped(begun, "A")));
    begun.WaitFor();
  }
  const TextRun idle([] {});  // and one that never ran needs no thread
}

TEST(BackgroundRun, manyStartsInARowGiveTheLast) {
  Signal ended;
  TextRun run([&] { ended.Raise(); });
  for (int i = 0; i <= 2000; ++i) {
    ASSERT_TRUE(run.Start(AtOnce(std::to_string(i))));
    const auto early = run.Take();
    if (early) {
      EXPECT_EQ(*early, std::to_string(i)) << "only of the one that was started last";
    }
    if (early && i == 2000) return;
  }
  while (run.IsRunning()) std::this_thread::yield();
  EXPECT_EQ(run.Take(), "2000");
}

}  // namespace
}  // namespace velmora::desktop
