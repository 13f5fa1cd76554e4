#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/SlotOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

class BwfReader : public testing::Test {
 protected:
  std::string Write(const WaveBytes& wave) { return folder.Write("file.wav", wave.Bytes()); }

  TemporaryFolder folder;
};

const std::string kTwoFrames = PcmBytes(16, {1, 2});

template <std::size_t N>
std::string TextOf(const std::array<char, N>& field) {
  return {field.data(), field.size()};
}

TEST_F(BwfReader, keepsEveryFormatField) {
  const std::string path = Write(
      WaveBytes()
          .Format({.sampleRate = 96001, .channels = 3, .bits = 24, .bytesPerSecond = 0x01020304})
          .Data(std::string(9 * 5 + 8, 'x')));
  AES31BWF file(path.c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetFormat(), &file.format);
  EXPECT_EQ(file.format.formatTag, 1);
  EXPECT_EQ(file.format.channels, 3);
  EXPECT_EQ(file.format.samplesPerSec, 96001U);
  EXPECT_EQ(file.format.avgBytesPerSec, 0x01020304U);
  EXPECT_EQ(file.format.blockAlign, 9);
  EXPECT_EQ(file.format.bitsPerSample, 24);
  EXPECT_EQ(file.GetChannels(), 3U);
  EXPECT_EQ(file.GetSampleRate(), 96001U);
  EXPECT_EQ(file.GetBitsPerSample(), 24U);
  EXPECT_EQ(file.bytesPerSample, 3);
  EXPECT_EQ(file.frames, 5U) << "a last frame that is not whole does not count";
  EXPECT_EQ(file.GetFrames(), 5);
}

TEST_F(BwfReader, holdsNoStreamOnceParsed) {
  const std::string path = Write(WaveBytes().Format({}).Data(kTwoFrames));
  AES31BWF file(path.c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_TRUE(file.hasData);
  EXPECT_TRUE(file.hasFormat);
  EXPECT_EQ(file.dataOffset, 44);
  EXPECT_EQ(file.riffEnd, 48);
  EXPECT_STREQ(file.GetPath(), path.c_str());
}

TEST_F(BwfReader, keepsItsOwnCopyOfThePath) {
  std::string path = Write(WaveBytes().Format({}).Data(kTwoFrames));
  const std::string expected = path;
  AES31BWF file(path.c_str());
  path.assign(path.size(), '?');
  EXPECT_EQ(file.GetPath(), expected);
}

TEST_F(BwfReader, fileWithoutBextIsValidAndHasNone) {
  AES31BWF file(Write(WaveBytes().Format({}).Data(kTwoFrames)).c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_FALSE(file.hasBext);
  EXPECT_EQ(file.GetBext(), nullptr);
}

TEST_F(BwfReader, keepsEveryBextFieldUnchanged) {
  const BextText text{.description = std::string(256, 'D'),
                      .originator = std::string(32, 'O'),
                      .reference = "R\x01\xFF",
                      .date = "2024-05-17",
                      .time = "12:34:56",
                      .timeLow = 0x89ABCDEF,
                      .timeHigh = 0xFEDCBA98,
                      .version = 0x8002,
                      .umidAndReserved = "\xFF\xFEumid",
                      .history = "A=PCM,F=48000\r\n"};
  AES31BWF file(Write(WaveBytes().Bext(text).Format({}).Data(kTwoFrames)).c_str());
  ASSERT_TRUE(file.IsValid());
  const BwfBext* bext = file.GetBext();
  ASSERT_EQ(bext, &file.bext);
  EXPECT_TRUE(file.hasBext);
  EXPECT_EQ(TextOf(bext->description), text.description);
  EXPECT_EQ(TextOf(bext->originator), text.originator);
  EXPECT_EQ(TextOf(bext->originatorReference), LittleEndian().Padded(text.reference, 32).bytes);
  EXPECT_EQ(TextOf(bext->originationDate), text.date);
  EXPECT_EQ(TextOf(bext->originationTime), text.time);
  EXPECT_EQ(bext->timeReferenceLow, 0x89ABCDEFU);
  EXPECT_EQ(bext->timeReferenceHigh, 0xFEDCBA98U);
  EXPECT_EQ(bext->version, 0x8002);
  EXPECT_EQ(std::string(bext->umidAndReserved.begin(), bext->umidAndReserved.end()),
            LittleEndian().Padded(text.umidAndReserved, 254).bytes);
  EXPECT_STREQ(bext->codingHistory, "A=PCM,F=48000\r\n");
}

TEST_F(BwfReader, bextOf602BytesHasNoHistory) {
  ASSERT_EQ(BextBody({}).size(), 602U);
  AES31BWF file(Write(WaveBytes().Bext({}).Format({}).Data(kTwoFrames)).c_str());
  ASSERT_NE(file.GetBext(), nullptr);
  EXPECT_EQ(file.GetBext()->codingHistory, nullptr);
}

TEST_F(BwfReader, bextOf603BytesHasAHistoryOfOne) {
  AES31BWF file(Write(WaveBytes().Bext({.history = "h"}).Format({}).Data(kTwoFrames)).c_str());
  ASSERT_NE(file.GetBext(), nullptr);
  EXPECT_STREQ(file.GetBext()->codingHistory, "h");
}

TEST_F(BwfReader, fourteenZeroBytesOfHistoryReadAsAnEmptyText) {
  AES31BWF file(
      Write(WaveBytes().Bext({.history = std::string(14, '\0')}).Format({}).Data(kTwoFrames))
          .c_str());
  ASSERT_NE(file.GetBext(), nullptr);
  EXPECT_STREQ(file.GetBext()->codingHistory, "");
}

TEST_F(BwfReader, lastOfTwoBextChunksReplacesHistoryToo) {
  const WaveBytes first = WaveBytes().Bext({.originator = "one", .history = "first"});
  AES31BWF named(Write(WaveBytes(first)
                           .Bext({.originator = "two", .history = "second"})
                           .Format({})
                           .Data(kTwoFrames))
                     .c_str());
  ASSERT_NE(named.GetBext(), nullptr);
  EXPECT_STREQ(named.GetBext()->codingHistory, "second");
  EXPECT_EQ(TextOf(named.bext.originator), LittleEndian().Padded("two", 32).bytes);
  AES31BWF bare(Write(WaveBytes(first).Bext({}).Format({}).Data(kTwoFrames)).c_str());
  ASSERT_NE(bare.GetBext(), nullptr);
  EXPECT_EQ(bare.GetBext()->codingHistory, nullptr);
}

TEST_F(BwfReader, shortBextHasNoHistoryAndItsFieldsRunOn) {
  AES31BWF file(Write(WaveBytes().Chunk("bext", "0123456789").Format({}).Data(kTwoFrames)).c_str());
  ASSERT_TRUE(file.IsValid());
  ASSERT_NE(file.GetBext(), nullptr);
  EXPECT_EQ(file.GetBext()->codingHistory, nullptr);
  EXPECT_EQ(TextOf(file.bext.description).substr(0, 14), "0123456789fmt ");
  EXPECT_EQ(file.GetFrames(), 2) << "the walk goes on after the short chunk";
}

TEST_F(BwfReader, orderOfChunksDoesNotMatter) {
  std::vector<std::string> order = {"bext", "data", "fmt "};
  int seen = 0;
  do {
    WaveBytes wave;
    std::int64_t dataOffset = 0;
    for (const std::string& kind : order) {
      if (kind == "bext") wave.Bext({.originator = "o", .history = "h"});
      if (kind == "fmt ") wave.Format({.sampleRate = 44100, .channels = 2});
      if (kind == "data") {
        dataOffset = static_cast<std::int64_t>(wave.Offset()) + 8;
        wave.Data(PcmBytes(16, {1, -2, 16384, -16384}));
      }
    }
    SCOPED_TRACE(order[0] + order[1] + order[2]);
    AES31BWF file(Write(wave).c_str());
    ASSERT_TRUE(file.IsValid());
    EXPECT_EQ(file.dataOffset, dataOffset);
    EXPECT_EQ(file.GetFrames(), 2);
    EXPECT_EQ(file.GetChannels(), 2U);
    EXPECT_EQ(file.GetSampleRate(), 44100U);
    ASSERT_NE(file.GetBext(), nullptr);
    EXPECT_STREQ(file.GetBext()->codingHistory, "h");
    EXPECT_EQ(file.GetSampleAt(1, 0), 0.5F);
    EXPECT_EQ(file.GetSampleAt(1, 1), -0.5F);
    EXPECT_EQ(file.GetChunkCount(), 0U);
    ++seen;
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(seen, 6);
}

TEST_F(BwfReader, keepsUnknownChunksInFileOrder) {
  AES31BWF file(Write(WaveBytes()
                          .Chunk("LIST", "list body")
                          .Format({})
                          .Chunk("iXML", std::string("\0\xFF", 2))
                          .Data(kTwoFrames)
                          .Chunk("last", "z"))
                    .c_str());
  ASSERT_TRUE(file.IsValid());
  ASSERT_EQ(file.GetChunkCount(), 3U);
  const BwfChunk* list = file.GetChunk(0);
  EXPECT_EQ(list->identifier, 0x5453494CU) << "the first byte is the lowest";
  EXPECT_EQ(list->size, 9U);
  EXPECT_EQ(std::string(list->data.begin(), list->data.end()), "list body");
  EXPECT_EQ(file.GetChunk(1)->data, (std::vector<std::uint8_t>{0x00, 0xFF}));
  EXPECT_EQ(file.GetChunk(2)->size, 1U);
  EXPECT_EQ(file.GetChunk(-1), nullptr);
  EXPECT_EQ(file.GetChunk(3), nullptr);
}

TEST_F(BwfReader, keepsAnUnknownChunkOfSizeZeroWithoutData) {
  AES31BWF file(Write(WaveBytes().Chunk("none", "").Format({}).Data(kTwoFrames)).c_str());
  ASSERT_TRUE(file.IsValid());
  ASSERT_EQ(file.GetChunkCount(), 1U);
  EXPECT_EQ(file.GetChunk(0)->size, 0U);
  EXPECT_TRUE(file.GetChunk(0)->data.empty());
}

TEST_F(BwfReader, identifiersAreComparedByteForByte) {
  AES31BWF file(
      Write(WaveBytes().Chunk("FMT ", "1").Chunk("DATA", "2").Format({}).Data(kTwoFrames)).c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetChunkCount(), 2U);
}

TEST_F(BwfReader, lastOfTwoFormatAndDataChunksWins) {
  WaveBytes wave;
  wave.Format({.sampleRate = 1, .channels = 1, .bits = 8}).Data(std::string(100, 'x'));
  wave.Format({.sampleRate = 2, .channels = 2, .bits = 16});
  const auto dataOffset = static_cast<std::int64_t>(wave.Offset()) + 8;
  wave.Data(PcmBytes(16, {1, 2, 3, 4}));
  AES31BWF file(Write(wave).c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetSampleRate(), 2U);
  EXPECT_EQ(file.GetBitsPerSample(), 16U);
  EXPECT_EQ(file.bytesPerSample, 2);
  EXPECT_EQ(file.dataOffset, dataOffset);
  EXPECT_EQ(file.GetFrames(), 2);
}

TEST_F(BwfReader, framesFollowTheFormatChunkThatStandsAfterTheData) {
  AES31BWF file(
      Write(WaveBytes().Format({.channels = 1}).Data(std::string(12, 'x')).Format({.channels = 3}))
          .c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetFrames(), 2);
}

TEST_F(BwfReader, restOfALongFormatChunkIsSkippedAndNotKept) {
  AES31BWF file(
      Write(WaveBytes()
                .Chunk("fmt ", FormatBody({.channels = 2, .bits = 24}) + std::string(24, '\x7F'))
                .Data(std::string(12, 'x')))
          .c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetBitsPerSample(), 24U);
  EXPECT_EQ(file.GetFrames(), 2);
  EXPECT_EQ(file.GetChunkCount(), 0U);
}

TEST_F(BwfReader, formatChunkIsReadToItsLastFieldWhateverItsSize) {
  const std::string fourteen = FormatBody({}).substr(0, 14);
  AES31BWF file(Write(WaveBytes().Chunk("fmt ", fourteen).Data(kTwoFrames)).c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetBitsPerSample(), 0x6164U) << "the first letters of the next chunk";
  EXPECT_EQ(file.GetFrames(), 2);
}

TEST_F(BwfReader, bitsOfOtherFormatTagsAreNotRead) {
  for (const std::uint16_t tag : {std::uint16_t{0}, std::uint16_t{2}, std::uint16_t{3},
                                  std::uint16_t{0x101}, std::uint16_t{0xFFFE}}) {
    SCOPED_TRACE(tag);
    AES31BWF file(
        Write(WaveBytes().Format({.bits = 32, .formatTag = tag}).Data(std::string(8, 'x')))
            .c_str());
    EXPECT_TRUE(file.IsValid());
    EXPECT_EQ(file.format.formatTag, tag);
    EXPECT_EQ(file.GetBitsPerSample(), 0U);
    EXPECT_EQ(file.bytesPerSample, 4);
    EXPECT_EQ(file.GetFrames(), 2);
  }
}

TEST_F(BwfReader, bitsStayAsTheyAreWhereALaterFormatTagIsNotPcm) {
  AES31BWF file(Write(WaveBytes()
                          .Format({.bits = 24})
                          .Format({.bits = 32, .formatTag = 3})
                          .Data(std::string(8, 'x')))
                    .c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetBitsPerSample(), 24U);
  EXPECT_EQ(file.bytesPerSample, 4);
}

TEST_F(BwfReader, bytesPerSampleTruncates) {
  AES31BWF file(
      Write(WaveBytes().Format({.channels = 3, .blockAlign = 8}).Data(std::string(16, 'x')))
          .c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.bytesPerSample, 2);
}

TEST_F(BwfReader, dataChunkIsFoundUpToTheEndOfTheForm) {
  WaveBytes wave = WaveBytes().Format({}).Data(kTwoFrames);
  AES31BWF outside(Write(WaveBytes(wave).RiffSize(36)).c_str());
  EXPECT_FALSE(outside.IsValid()) << "its body would begin exactly at the end";
  AES31BWF inside(Write(WaveBytes(wave).RiffSize(37)).c_str());
  EXPECT_TRUE(inside.IsValid());
  EXPECT_EQ(inside.GetFrames(), 2) << "the size is not checked against the form's end";
  EXPECT_EQ(inside.riffEnd, 45);
}

TEST_F(BwfReader, chunkAfterTheFormsEndIsNotKept) {
  const WaveBytes form = WaveBytes().Format({}).Data(kTwoFrames);
  const auto formSize = static_cast<std::uint32_t>(form.Offset() - 8);
  AES31BWF file(Write(WaveBytes(form).Chunk("tail", "tail").RiffSize(formSize)).c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetChunkCount(), 0U);
}

TEST_F(BwfReader, riffSizeIsReadAsSignedAndComparedAsUnsigned) {
  struct Row {
    std::uint32_t size;
    std::int64_t end;
    bool valid;
  };
  for (const Row& row : {Row{0x7FFFFFFF, 2147483655, true}, Row{0x80000000, -2147483640, true},
                         Row{0xFFFFFF00, -248, true}, Row{0xFFFFFFF7, -1, true},
                         Row{0xFFFFFFF8, 0, false}, Row{0xFFFFFFFF, 7, false}}) {
    SCOPED_TRACE(row.size);
    AES31BWF file(Write(WaveBytes().Format({}).Data(kTwoFrames).RiffSize(row.size)).c_str());
    EXPECT_EQ(file.IsValid(), row.valid);
    EXPECT_EQ(file.riffEnd, row.end);
  }
}

TEST_F(BwfReader, emptyDataChunkIsFoundOnlyWithSomethingAfterIt) {
  AES31BWF last(Write(WaveBytes().Format({}).Data("")).c_str());
  EXPECT_FALSE(last.IsValid());
  AES31BWF inner(Write(WaveBytes().Format({}).Data("").Chunk("tail", "")).c_str());
  EXPECT_TRUE(inner.IsValid());
  EXPECT_EQ(inner.GetFrames(), 0);
  EXPECT_EQ(inner.GetSampleAt(0, 0), 0.0F);
}

TEST_F(BwfReader, sizeWithTheTopBitSetEndsTheWalk) {
  AES31BWF after(
      Write(WaveBytes().Format({}).Data(kTwoFrames).Claim("huge", 0x80000000).Chunk("tail", "tail"))
          .c_str());
  EXPECT_TRUE(after.IsValid());
  EXPECT_EQ(after.GetChunkCount(), 0U);
  AES31BWF before(Write(WaveBytes().Claim("huge", 0xFFFFFFFF).Format({}).Data(kTwoFrames)).c_str());
  EXPECT_FALSE(before.IsValid());
}

TEST_F(BwfReader, dataChunkOfTwoGibibytesIsNotFound) {
  AES31BWF below(Write(WaveBytes().Format({}).Claim("data", 0x7FFFFFFF, kTwoFrames)).c_str());
  EXPECT_TRUE(below.IsValid());
  EXPECT_EQ(below.frames, 0x3FFFFFFFU);
  AES31BWF above(Write(WaveBytes().Format({}).Claim("data", 0x80000000, kTwoFrames)).c_str());
  EXPECT_FALSE(above.IsValid());
}

TEST_F(BwfReader, oddSizedChunkTakesNoPadByte) {
  AES31BWF tight(Write(WaveBytes().Chunk("odd ", "123").Format({}).Data(kTwoFrames)).c_str());
  EXPECT_TRUE(tight.IsValid());
  // With a pad byte, the next chunk is read one byte early: its name is NUL f m t and its size
  // begins with the blank.
  const std::string after = FormatBody({}) + LittleEndian().Text("data").U32(4).bytes + kTwoFrames;
  AES31BWF padded(
      Write(WaveBytes().Chunk("odd ", "123").Raw(std::string(1, '\0')).Format({}).Data(kTwoFrames))
          .c_str());
  EXPECT_FALSE(padded.IsValid());
  ASSERT_EQ(padded.GetChunkCount(), 2U) << "what was kept stays with an invalid instance";
  const BwfChunk* shifted = padded.GetChunk(1);
  EXPECT_EQ(shifted->identifier, 0x746D6600U);
  // The size would be 0x1020; the file ends earlier. The body begins with the size's last byte.
  EXPECT_EQ(shifted->size, after.size() + 1);
  EXPECT_EQ(std::string(shifted->data.begin(), shifted->data.end()), std::string(1, '\0') + after);
}

TEST_F(BwfReader, keptChunkThatPassesTheFileEndHoldsWhatThereIs) {
  AES31BWF file(
      Write(WaveBytes().Format({}).Data(kTwoFrames).Claim("cut ", 0x7FFFFFFF, "abc")).c_str());
  EXPECT_TRUE(file.IsValid());
  ASSERT_EQ(file.GetChunkCount(), 1U);
  EXPECT_EQ(file.GetChunk(0)->size, 3U);
  EXPECT_EQ(file.GetChunk(0)->data, (std::vector<std::uint8_t>{'a', 'b', 'c'}));
}

TEST_F(BwfReader, keptChunkThatPassesTheFormsEndIsWholeIfTheFileHasIt) {
  const WaveBytes form = WaveBytes().Format({}).Data(kTwoFrames);
  const auto formSize = static_cast<std::uint32_t>(form.Offset() - 8 + 9);
  AES31BWF file(Write(WaveBytes(form).Chunk("tail", "tail").RiffSize(formSize)).c_str());
  EXPECT_TRUE(file.IsValid());
  ASSERT_EQ(file.GetChunkCount(), 1U);
  EXPECT_EQ(file.GetChunk(0)->size, 4U);
}

TEST_F(BwfReader, historyThatPassesTheFileEndHoldsWhatThereIs) {
  AES31BWF file(Write(WaveBytes()
                          .Format({})
                          .Data(kTwoFrames)
                          .Claim("bext", 0x7FFFFFFF, BextBody({.history = "abc"})))
                    .c_str());
  EXPECT_TRUE(file.IsValid());
  ASSERT_NE(file.GetBext(), nullptr);
  EXPECT_STREQ(file.GetBext()->codingHistory, "abc");
}

TEST_F(BwfReader, getFramesIsTheLowHalf) {
  AES31BWF file(Write(WaveBytes().Format({}).Data(kTwoFrames)).c_str());
  file.frames = 0x100000005;
  EXPECT_EQ(file.GetFrames(), 5);
  file.frames = 0xFFFFFFFF;
  EXPECT_EQ(file.GetFrames(), -1);
}

TEST_F(BwfReader, instanceIsNotParsedAgainWhenTheFileChanges) {
  const std::string path = Write(WaveBytes().Format({}).Data(kTwoFrames));
  AES31BWF file(path.c_str());
  Write(WaveBytes().Format({.channels = 2}).Data(std::string(40, 'x')));
  EXPECT_EQ(file.GetFrames(), 2);
  EXPECT_EQ(file.GetChannels(), 1U);
  EXPECT_TRUE(file.IsValid());
}

TEST(BwfClass, virtualOperationsStandInTheirOrder) {
  EXPECT_EQ(SlotOf(&AES31BWF::CloseFile), 2) << "after the two destructors";
  EXPECT_EQ(SlotOf(&AES31BWF::OpenAtData), 3);
  EXPECT_EQ(SlotOf(&AES31BWF::WriteSample), 4);
  EXPECT_EQ(SlotOf(&AES31BWF::DisableCache), 5);
  EXPECT_EQ(SlotOf(&AES31BWF::GetSampleAt), 6);
  EXPECT_EQ(SlotOf(&AES31BWF::ReadSample), 7);
  EXPECT_EQ(SlotOf(&AES31BWF::GetChannels), 8);
  EXPECT_EQ(SlotOf(&AES31BWF::GetFrames), 9);
  EXPECT_EQ(SlotOf(&AES31BWF::GetSampleRate), 10);
  EXPECT_EQ(SlotOf(&AES31BWF::GetBitsPerSample), 11);
  EXPECT_EQ(SlotOf(&AES31BWF::GetPath), 12);
  EXPECT_EQ(SlotOf(&AES31BWF::GetChunk), 13);
  EXPECT_EQ(SlotOf(&AES31BWF::GetChunkCount), 14);
  EXPECT_EQ(SlotOf(&AES31BWF::GetFormat), 15);
  EXPECT_EQ(SlotOf(&AES31BWF::GetBext), 16);
  EXPECT_EQ(SlotOf(&AES31BWF::IsValid), 17);
  EXPECT_EQ(SlotOf(&AES31BWF::CopyTo), 18);
  EXPECT_EQ(SlotOf(&AES31BWF::CopyFrames), 19);
  EXPECT_EQ(SlotOf(&AES31BWF::ConvertInto), 20);
}

}  // namespace
}  // namespace velmora::test
