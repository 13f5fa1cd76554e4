#include "Otio/FileUrl.h"

#include <gtest/gtest.h>

namespace velmora::otio {
namespace {

TEST(FileUrl, encodesAllThatIsNotPlain) {
  const struct {
    const char* path;
    const char* url;
  } rows[] = {
      {"/a/b.wav", "file:///a/b.wav"},
      {"/a b/c.wav", "file:///a%20b/c.wav"},
      {"/Az09-._~", "file:///Az09-._~"},
      {"/100%.wav", "file:///100%25.wav"},
      {"/?#[]@!$&'()*+,;=:", "file:///%3F%23%5B%5D%40%21%24%26%27%28%29%2A%2B%2C%3B%3D%3A"},
      {"/Gr\xC3\xBC\xC3\x9F.wav", "file:///Gr%C3%BC%C3%9F.wav"},
      {"/\xFF\x01\n", "file:///%FF%01%0A"},
  };
  for (const auto& row : rows) EXPECT_EQ(FileUrl(row.path), row.url);
}

}  // namespace
}  // namespace velmora::otio
