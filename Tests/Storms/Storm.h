#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

// Storms: rounds of actions drawn by chance, from several threads at once, after each of which the
// rules must hold. ./test runs a few hundred rounds of each; the number is VELMORA_ROUNDS, and
// VELMORA_FIRST_ROUND is where they begin. A round draws the same actions each time, but not when
// its threads run: one that failed may need some repetitions to fail again.
namespace velmora::test {

/// What a round draws by.
class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}

  /// From 0 to below `sides`.
  int Throw(int sides) {
    return static_cast<int>(random_() % static_cast<std::mt19937::result_type>(sides));
  }
  bool OneIn(int sides) { return Throw(sides) == 0; }
  /// From `least` to `most`.
  int Between(int least, int most) { return least + Throw(most - least + 1); }
  unsigned Seed() { return static_cast<unsigned>(random_()); }

  /// Lets some time go by, so that other threads are anywhere: mostly next to none.
  void Dawdle() {
    switch (Throw(6)) {
      case 0:
        std::this_thread::sleep_for(std::chrono::microseconds(Throw(300)));
        break;
      case 1:
      case 2:
        for (volatile int i = Throw(3000); i > 0;) i = i - 1;
        break;
      default:
        break;
    }
  }

 private:
  std::mt19937 random_;
};

/// Gives way for a moment. On a busy machine a thread that yields comes back much later than one
/// that sleeps.
inline void GiveWay() {
  std::this_thread::sleep_for(std::chrono::microseconds(10));
}

inline int NumberOf(const char* variable, int usual) {
  const char* const text = std::getenv(variable);
  return text != nullptr ? std::atoi(text) : usual;
}

/// Runs `round` with fresh dice over and over, up to the first failure.
template <class Round>
void RunStorm(const Round& round) {
  constexpr int kUsualRounds = 200;
  const int first = NumberOf("VELMORA_FIRST_ROUND", 0);
  const int end = first + NumberOf("VELMORA_ROUNDS", kUsualRounds);
  for (int number = first; number < end; ++number) {
    SCOPED_TRACE("round " + std::to_string(number));
    Dice dice(static_cast<unsigned>(number));
    round(dice);
    if (testing::Test::HasFailure()) return;
  }
}

}  // namespace velmora::test
