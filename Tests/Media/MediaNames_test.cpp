#include <gtest/gtest.h>

#include "Media/AudioFacts.h"

namespace velmora::media {
namespace {

TEST(FileKind, names) {
  EXPECT_STREQ(NameOf(FileKind::Pcm), "pcm");
  EXPECT_STREQ(NameOf(FileKind::Other), "other");
}

}  // namespace
}  // namespace velmora::media
