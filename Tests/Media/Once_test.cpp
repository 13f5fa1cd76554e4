#include "Media/Once.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <thread>
#include <vector>

namespace velmora::media {
namespace {

TEST(Once, oneThreadWorksAndAllSeeWhatItDid) {
  for (int round = 0; round < 100; ++round) {
    Once once;
    int done = 0;
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        once.Do([&] { ++done; });
        if (done != 1) ++wrong;
      });
    }
    threads.clear();
    EXPECT_EQ(done, 1);
    EXPECT_EQ(wrong, 0);
  }
}

TEST(Once, workThatAnExceptionEndsIsTriedAgain) {
  Once once;
  int tries = 0;
  EXPECT_THROW(once.Do([&] {
    ++tries;
    throw std::bad_alloc();
  }),
               std::bad_alloc);
  once.Do([&] { ++tries; });
  once.Do([&] { ++tries; });
  EXPECT_EQ(tries, 2);
}

}  // namespace
}  // namespace velmora::media
