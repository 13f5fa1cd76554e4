// Several threads need a library at once for the first time, and one that is not there.

#include <math.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Media/LateLibrary.h"
#include "Storms/Storm.h"

#if VELMORA_LATE_LIBRARIES

namespace velmora::media {
namespace {

struct Functions {
  decltype(&::fabsf) fabs;
  decltype(&::sqrtf) sqrt;
};

void Find(LateLibrary& library, Functions& functions) {
  library.Find(VELMORA_FUNCTION(fabsf), functions.fabs);
  library.Find(VELMORA_FUNCTION(sqrtf), functions.sqrt);
}

TEST(LateLibraryStorm, allGetTheFunctionsOrTheTrouble) {
  test::RunStorm([](test::Dice& dice) {
    LateFunctions<Functions> there("libm.so.6", Find);
    LateFunctions<Functions> missing("libvelmora-none.so.1", Find);
    const int threads = dice.Between(2, 6);
    std::atomic<int> right = 0;
    std::atomic<int> waiting = threads;
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i) {
      all.emplace_back([&, own = test::Dice(dice.Seed())]() mutable {
        --waiting;
        while (waiting > 0) test::GiveWay();
        own.Dawdle();
        std::string trouble;
        std::string why;
        const bool missingFirst = own.OneIn(2);
        if (missingFirst && missing.Get(why) != nullptr) return;
        const Functions* const functions = there.Get(trouble);
        if (functions == nullptr || !trouble.empty()) return;
        if (!missingFirst && missing.Get(why) != nullptr) return;
        if (functions->fabs(-3) == 3 && functions->sqrt(4) == 2 && !why.empty()) ++right;
      });
    }
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(right, threads);
  });
}

}  // namespace
}  // namespace velmora::media

#endif
