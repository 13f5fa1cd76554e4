// A helper does its work once, somewhere, and whoever started it waits for its end.

#include "Base/HelperThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

#if defined(__linux__)
#include <sched.h>
#endif

namespace velmora {
namespace {

TEST(HelperThread, withoutWorkIsNoThread) {
  HelperThread none;
  EXPECT_FALSE(none.IsRunning());
  none.Join();
}

TEST(HelperThread, worksInAnotherThreadUntilJoin) {
  const std::thread::id here = std::this_thread::get_id();
  std::thread::id there = here;
  auto given = std::make_unique<int>(7);  // what cannot be copied, too
  int taken = 0;
  HelperThread helper([&there, &taken, given = std::move(given)] {
    there = std::this_thread::get_id();
    taken = *given;
  });
  EXPECT_TRUE(helper.IsRunning());
  helper.Join();
  EXPECT_FALSE(helper.IsRunning());
  EXPECT_NE(there, here);
  EXPECT_EQ(taken, 7);
  helper.Join();
}

TEST(HelperThread, isWaitedForByItsDestructorAndBeforeAnotherTakesItsPlace) {
  std::atomic<int> done = 0;
  const auto slow = [&done] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ++done;
  };
  {
    HelperThread helper(slow);
    helper = HelperThread([] {});
    EXPECT_EQ(done, 1);
    HelperThread other(slow);
    HelperThread moved(std::move(other));
  }
  EXPECT_EQ(done, 2);
}

#if defined(__linux__)

cpu_set_t Allowed() {
  cpu_set_t allowed;
  EXPECT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
  return allowed;
}

/// The processors that a helper may use once it runs.
cpu_set_t AllowedInHelper() {
  cpu_set_t there;
  CPU_ZERO(&there);
  HelperThread([&there] { there = Allowed(); }).Join();
  return there;
}

TEST(HelperThread, mayRunWhereverItsStarterMay) {
  const cpu_set_t all = Allowed();
  const cpu_set_t ofHelper = AllowedInHelper();
  EXPECT_TRUE(CPU_EQUAL(&ofHelper, &all));

  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(sched_getcpu(), &one);
  ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  const cpu_set_t ofPinned = AllowedInHelper();
  EXPECT_TRUE(CPU_EQUAL(&ofPinned, &one));
  ASSERT_EQ(sched_setaffinity(0, sizeof all, &all), 0);
}

#endif

}  // namespace
}  // namespace velmora
