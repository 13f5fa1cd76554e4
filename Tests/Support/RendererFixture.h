#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/BwfReference.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {

/// A source and the one target that a renderer makes of it.
class RendererTest : public testing::Test {
 protected:
  std::string Source(const WaveFormat& format, const std::vector<std::int32_t>& samples) {
    return folder.Write("source.wav", PlainWave(format, samples));
  }
  std::string TargetBytes() const { return TemporaryFolder::Read(target); }
  std::vector<std::int32_t> TargetSamples(std::int32_t bits) const {
    return PcmSamples(bits, TargetBytes(), kHeaderBytes);
  }
  /// What a caller may count on: closed, valid, readable, and on disk after it is gone.
  void ExpectUsable(std::unique_ptr<AES31BWF> file) {
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->IsValid());
    EXPECT_EQ(file->stream, nullptr);
    EXPECT_EQ(file->GetPath(), target);
    EXPECT_FALSE(file->WriteFailed());
    if (file->GetFrames() > 0) {
      const auto bits = static_cast<std::int32_t>(file->GetBitsPerSample());
      EXPECT_EQ(file->GetSampleAt(0, 0), Decoded(TargetSamples(bits).at(0), bits));
    }
    file.reset();
    EXPECT_TRUE(std::filesystem::exists(target));
  }

  TemporaryFolder folder;
  const std::string target = folder.Path("target.wav");
};

}  // namespace velmora::test
