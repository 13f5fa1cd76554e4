#include "Report/Checksum.h"

#include <gtest/gtest.h>

#include "Support/TemporaryFolder.h"

namespace velmora::report {
namespace {

// The examples of FIPS 180-4's own test vectors: one block, and a million times "a".
TEST(Checksum, isThatOfTheStandard) {
  const test::TemporaryFolder folder;
  const Checksum one = ChecksumOf(folder.Write("one", std::string("abc")), {});
  EXPECT_EQ(one.bytes, 3);
  EXPECT_EQ(one.sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  const Checksum many = ChecksumOf(folder.Write("many", std::string(1'000'000, 'a')), {});
  EXPECT_EQ(many.bytes, 1'000'000);
  EXPECT_EQ(many.sha256, "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Checksum, saysWhyThereIsNone) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(ChecksumOf(folder.Path("gone"), {}).trouble, "No such file or directory");
  EXPECT_NE(ChecksumOf(folder.Path("."), {}).trouble, "");
}

TEST(Checksum, endsWhenItIsCancelled) {
  const test::TemporaryFolder folder;
  const Checksum sum = ChecksumOf(folder.Write("f", std::string(1'000'000, 'a')),
                                  [](std::int64_t) { return false; });
  EXPECT_EQ(sum.sha256, "");
  EXPECT_LT(sum.bytes, 1'000'000);
}

// As `printf %s "alert(1)" | openssl dgst -sha256 -binary | base64` tells it.
TEST(Checksum, ofAPolicyIsInBase64) {
  EXPECT_EQ(PolicyHash("alert(1)"), "sha256-bhHHL3z2vDgxUt0W3dWQOrprscmda2Y5pLsLg4GF+pI=");
}

}  // namespace
}  // namespace velmora::report
