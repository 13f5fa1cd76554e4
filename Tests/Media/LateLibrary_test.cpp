#include "Media/LateLibrary.h"

#include <gtest/gtest.h>
#include <math.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Media/NameFolding.h"

// No test of whether something is loaded already: other tests of this program load it.
#if VELMORA_LATE_LIBRARIES

namespace velmora::media {
namespace {

/// What is looked for in libm, which every program has.
struct Functions {
  decltype(&::fabsf) fabs;
};

extern "C" float velmora_no_such_function(float value);

struct BadFunctions {
  decltype(&velmora_no_such_function) function;
};

void FindFabs(LateLibrary& library, Functions& functions) {
  library.Find(VELMORA_FUNCTION(fabsf), functions.fabs);
}

TEST(LateLibrary, functionIsFoundAndCalled) {
  LateFunctions<Functions> late("libm.so.6", FindFabs);
  std::string trouble;
  const Functions* const functions = late.Get(trouble);
  ASSERT_NE(functions, nullptr) << trouble;
  EXPECT_EQ(functions->fabs(-2), 2);
  EXPECT_EQ(trouble, "");
  EXPECT_EQ(late.Get(trouble), functions);
}

TEST(LateLibrary, missingLibraryIsNamed) {
  LateFunctions<Functions> late("libvelmora-none.so.1", FindFabs);
  for (const char* const time : {"first", "second"}) {
    std::string trouble;
    EXPECT_EQ(late.Get(trouble), nullptr) << time;
    EXPECT_EQ(trouble,
              "libvelmora-none.so.1 cannot be loaded: libvelmora-none.so.1: cannot open shared "
              "object file: No such file or directory")
        << time;
  }
}

TEST(LateLibrary, missingFunctionIsNamed) {
  LateFunctions<BadFunctions> late("libm.so.6", [](LateLibrary& library, BadFunctions& functions) {
    library.Find(VELMORA_FUNCTION(velmora_no_such_function), functions.function);
  });
  std::string trouble;
  EXPECT_EQ(late.Get(trouble), nullptr);
  EXPECT_EQ(trouble.find("libm.so.6 has no function velmora_no_such_function: "), 0u) << trouble;
}

TEST(LateLibrary, severalThreadsMayAsk) {
  LateFunctions<Functions> late("libm.so.6", FindFabs);
  std::atomic<int> right = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      std::string trouble;
      const Functions* const functions = late.Get(trouble);
      if (functions != nullptr && functions->fabs(-3) == 3) ++right;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 8);
}

// ICU's functions have its version in their names, which its header's macros put there.
#define velmora_numbered fabsf
TEST(LateLibrary, nameIsWhatTheHeaderMakesOfIt) {
  EXPECT_STREQ(VELMORA_NAME_OF(velmora_numbered), "fabsf");
}
#undef velmora_numbered

TEST(FoldedName, namesBeyondAsciiAreFoldedByTheLibrary) {
  EXPECT_EQ(FoldedName("\xC3\x89T\xC3\x89.WAV"), FoldedName("e\xCC\x81te\xCC\x81.wav"));
  EXPECT_NE(FoldedName("\xC3\x89T\xC3\x89.WAV"), FoldedName("ete.wav"));
}

}  // namespace
}  // namespace velmora::media

#endif
