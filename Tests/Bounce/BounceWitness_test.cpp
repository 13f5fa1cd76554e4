#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "BounceFixture.h"

namespace velmora::bounce {
namespace {

/// What a command prints, its errors included.
std::string OutputOf(const std::string& command) {
  std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
  std::string text;
  for (int c = 0; pipe != nullptr && (c = std::fgetc(pipe)) != EOF;) {
    text.push_back(static_cast<char>(c));
  }
  const int status = pipe != nullptr ? ::pclose(pipe) : -1;
  return status == 0 ? text : text + "\nstatus " + std::to_string(status);
}

/// Programs that know nothing of us read what was written.
class BounceWitness : public BounceFixture, public testing::WithParamInterface<BounceDepth> {
 protected:
  void SetUp() override {
    Place(0, 172800000, MakeSource("a", {24, 2}, 1001), 0, 1001, {100, 200, -3});
    Place(1, 172800700, MakeSource("b", {16}, 500), 0, 500);
    ASSERT_EQ(Bounce(kBounceKind, out_, GetParam()).trouble, "");
  }
  std::string out_ = folder_.Path("out.wav");
};

/// Floats are no matter for this one, which holds every sample in 32 bits.
class IntegerWitness : public BounceWitness {};

TEST_P(IntegerWitness, soxReadsTheSameSamples) {
  const char* const bits = GetParam() == BounceDepth::Bits16 ? "16 " : "24 ";
  const std::string to = folder_.Path("sox.raw");
  EXPECT_EQ(OutputOf("sox -D " + out_ + " -t raw -e signed -b " + bits + to), "");
  EXPECT_TRUE(test::TemporaryFolder::Read(to) == Expected(GetParam()));
}

TEST_P(BounceWitness, ffmpegReadsTheSameSamplesAndTheTime) {
  const char* const raw = GetParam() == BounceDepth::Bits16   ? "s16le"
                          : GetParam() == BounceDepth::Bits24 ? "s24le"
                                                              : "f32le";
  const std::string to = folder_.Path("ffmpeg.raw");
  EXPECT_EQ(OutputOf("ffmpeg -v error -nostdin -i " + out_ + " -f " + raw + " -c:a pcm_" + raw +
                     " " + to),
            "");
  EXPECT_TRUE(test::TemporaryFolder::Read(to) == Expected(GetParam()));
  const std::string tags =
      OutputOf("ffprobe -v error -of default=nw=1 -show_entries format_tags " + out_);
  for (const char* const tag :
       {"TAG:comment=Storm\n", "TAG:encoded_by=Velmora\n", "TAG:time_reference=172800000\n"}) {
    EXPECT_NE(tags.find(tag), std::string::npos) << tags;
  }
}

TEST_P(BounceWitness, libsndfileReadsTheBroadcastChunk) {
  const std::string facts = OutputOf("sndfile-info --broadcast " + out_);
  EXPECT_NE(facts.find("Description              : Storm"), std::string::npos) << facts;
  EXPECT_NE(facts.find("(3600.000000 seconds)"), std::string::npos) << facts;
  EXPECT_NE(facts.find("BWF version              : 1"), std::string::npos) << facts;
  const std::string all = OutputOf("sndfile-info " + out_);
  EXPECT_NE(all.find("Frames      : 1200"), std::string::npos) << all;
  EXPECT_NE(all.find("Channels    : 3"), std::string::npos) << all;
  EXPECT_EQ(all.find("***"), std::string::npos) << all;
}

std::string NameOf(const testing::TestParamInfo<BounceDepth>& row) {
  static const char* const kNames[] = {"as16", "as24", "as32f"};
  return kNames[static_cast<std::size_t>(row.param)];
}

INSTANTIATE_TEST_SUITE_P(Bounce, IntegerWitness,
                         testing::Values(BounceDepth::Bits16, BounceDepth::Bits24), NameOf);

INSTANTIATE_TEST_SUITE_P(Bounce, BounceWitness,
                         testing::Values(BounceDepth::Bits16, BounceDepth::Bits24,
                                         BounceDepth::Float32),
                         NameOf);

}  // namespace
}  // namespace velmora::bounce
