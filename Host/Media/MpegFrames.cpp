#include "Media/MpegFrames.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "Base/FileAccess.h"

namespace velmora::media {
namespace {

using Head = std::array<std::uint8_t, 4>;

std::optional<Head> HeadAt(std::FILE* stream, std::int64_t place) {
  Head head{};
  if (ReadAt(stream, place, head.data(), head.size()) != head.size()) return std::nullopt;
  return head;
}

bool HasSync(const Head& head) {
  return head[0] == 0xFF && (head[1] & 0xE0) == 0xE0;
}

/// Bytes of a frame (ISO/IEC 11172-3 and 13818-3), 0 if the head is not one of a frame.
std::int64_t FrameBytes(const Head& head) {
  constexpr std::array<std::array<int, 14>, 5> kKilobits = {{
      {32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},  // version 1, layer I
      {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},     // layer II
      {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},      // layer III
      {32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},     // version 2, layer I
      {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},          // layers II and III
  }};
  constexpr std::array kRates = {44100, 48000, 32000};
  const int version = (head[1] >> 3) & 3;  // 3: 1, 2: 2, 0: 2.5
  const int layer = 4 - ((head[1] >> 1) & 3);
  const int bitRate = head[2] >> 4;
  const int rate = (head[2] >> 2) & 3;
  if (!HasSync(head) || version == 1 || layer == 4 || bitRate == 0 || bitRate == 15 || rate == 3) {
    return 0;
  }
  const bool first = version == 3;
  const std::size_t row = first ? static_cast<std::size_t>(layer - 1) : (layer == 1 ? 3U : 4U);
  const int bits = 1000 * kKilobits[row][static_cast<std::size_t>(bitRate - 1)];
  const int hertz = kRates[static_cast<std::size_t>(rate)] / (first ? 1 : (version == 2 ? 2 : 4));
  const int padding = (head[2] >> 1) & 1;
  if (layer == 1) return (12 * bits / hertz + padding) * 4;
  const int samplesByEight = layer == 3 && !first ? 72 : 144;
  return samplesByEight * bits / hertz + padding;
}

}  // namespace

bool LooksLikeMpegByChance(std::FILE* stream, std::int64_t place) {
  const std::optional<Head> first = HeadAt(stream, place);
  if (!first || !HasSync(*first)) return false;
  const std::int64_t bytes = FrameBytes(*first);
  const std::optional<Head> second = bytes > 0 ? HeadAt(stream, place + bytes) : std::nullopt;
  constexpr std::uint8_t kVersionAndLayer = 0xFE;
  return !second || !HasSync(*second) ||
         ((*first)[1] & kVersionAndLayer) != ((*second)[1] & kVersionAndLayer);
}

}  // namespace velmora::media
