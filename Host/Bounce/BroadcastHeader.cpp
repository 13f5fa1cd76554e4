#include "Bounce/BroadcastHeader.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string_view>
#include <utility>

#include "Base/Utf8.h"

namespace velmora::bounce {
namespace {

using host::BounceDepth;

constexpr std::uint32_t kInDs64 = 0xFFFFFFFF;  // stands where a size needs 64 bits
constexpr std::size_t kDescriptionBytes = 256;
constexpr std::size_t kBextBytes = 602;     // without a coding history
constexpr std::int64_t kMostHeader = 4096;  // more than any header made here takes

class Bytes {
 public:
  /// The low `count` bytes of a number, low byte first.
  Bytes& Number(std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, value >>= 8) {
      text.push_back(static_cast<char>(static_cast<unsigned char>(value & 0xFF)));
    }
    return *this;
  }
  Bytes& U16(std::uint64_t value) { return Number(value, 2); }
  Bytes& U32(std::uint64_t value) { return Number(value, 4); }
  Bytes& U64(std::uint64_t value) { return Number(value, 8); }
  Bytes& Zeros(std::size_t count) {
    text.append(count, '\0');
    return *this;
  }
  /// A text of at most `width` bytes, filled up with NUL.
  Bytes& Padded(std::string_view part, std::size_t width) {
    text += part;
    return Zeros(width - part.size());
  }
  Bytes& Chunk(std::string_view identifier, const std::string& body) {
    text += identifier;
    U32(body.size());
    text += body;
    return *this;
  }

  std::string text;
};

/// As many whole characters as fit into `bytes`.
std::string WholeCharacters(std::string_view utf8, std::size_t bytes) {
  std::string fitting;
  for (std::size_t at = 0; at < utf8.size();) {
    std::string longer = fitting;
    AppendUtf8(longer, NextCharacter(utf8, at));
    if (longer.size() > bytes) break;
    fitting = std::move(longer);
  }
  return fitting;
}

std::tm Now() {
  std::tm parts{};
  // Who builds reproducibly gives the moment, and has no time zone.
  if (const char* const fixed = std::getenv("SOURCE_DATE_EPOCH")) {
    char* end = nullptr;
    const std::time_t seconds = std::strtoll(fixed, &end, 10);
    if (end != fixed && *end == '\0' && gmtime_r(&seconds, &parts) != nullptr) return parts;
  }
  const std::time_t seconds = std::time(nullptr);
  localtime_r(&seconds, &parts);
  return parts;
}

std::string Formatted(const std::tm& moment, const char* format, std::size_t width) {
  char text[64] = {};
  return {text, std::min(std::strftime(text, sizeof text, format, &moment), width)};
}

/// The texts are ASCII by the rule; the description goes as UTF-8, which is what programs show, for
/// a title in another script would have no character left.
std::string Bext(const BroadcastFacts& facts) {
  const std::tm now = Now();
  Bytes bext;
  bext.Padded(WholeCharacters(facts.description, kDescriptionBytes), kDescriptionBytes)
      .Padded("Velmora", 32)  // originator
      .Zeros(32)              // originator's reference
      .Padded(Formatted(now, "%Y-%m-%d", 10), 10)
      .Padded(Formatted(now, "%H:%M:%S", 8), 8)
      .U64(static_cast<std::uint64_t>(facts.timeReference))
      .U16(1);                                // version
  bext.Zeros(kBextBytes - bext.text.size());  // no UMID
  return bext.text;
}

std::string Fmt(const BroadcastFacts& facts) {
  const std::uint64_t sampleBytes = SampleBytes(facts.depth);
  const std::uint64_t frameBytes = sampleBytes * facts.channels;
  const bool isFloat = facts.depth == BounceDepth::Float32;
  Bytes fmt;
  fmt.U16(isFloat ? 3 : 1)
      .U16(facts.channels)
      .U32(facts.sampleRate)
      .U32(facts.sampleRate * frameBytes)
      .U16(frameBytes)
      .U16(8 * sampleBytes);
  if (isFloat) fmt.U16(0);  // what is not PCM tells the size of its extension
  return fmt.text;
}

}  // namespace

BroadcastSize SizeOf(const BroadcastFacts& facts) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() - kMostHeader;
  BroadcastSize size;
  const auto frameBytes = static_cast<std::int64_t>(SampleBytes(facts.depth) * facts.channels);
  if (frameBytes > std::numeric_limits<std::uint16_t>::max() ||
      frameBytes * std::int64_t{facts.sampleRate} > std::numeric_limits<std::uint32_t>::max()) {
    size.complaint = "a wave file cannot hold " + std::to_string(facts.channels) + " channels of " +
                     std::to_string(facts.sampleRate) + " Hz";
  } else if (facts.frames > kMost / frameBytes) {
    size.complaint =
        "a wave file cannot hold " + std::to_string(facts.frames) + " samples of every channel";
  } else {
    size.dataBytes = facts.frames * frameBytes;
    size.padBytes = size.dataBytes % 2;
  }
  return size;
}

std::string BroadcastHeader(const BroadcastFacts& facts, const BroadcastSize& size) {
  const bool isFloat = facts.depth == BounceDepth::Float32;
  const auto frames = static_cast<std::uint64_t>(facts.frames);
  const auto dataBytes = static_cast<std::uint64_t>(size.dataBytes);
  const auto make = [&](std::uint64_t riffBytes, bool isLong) {
    Bytes header;
    header.text = isLong ? "RF64" : "RIFF";
    header.U32(isLong ? kInDs64 : riffBytes).text += "WAVE";
    if (isLong) {
      header.Chunk("ds64", Bytes().U64(riffBytes).U64(dataBytes).U64(frames).U32(0).text);
    }
    header.Chunk("bext", Bext(facts)).Chunk("fmt ", Fmt(facts));
    if (isFloat) header.Chunk("fact", Bytes().U32(isLong ? kInDs64 : frames).text);
    header.text += "data";
    header.U32(isLong ? kInDs64 : dataBytes);
    return header.text;
  };
  const auto riffBytes = [&](const std::string& header) {
    return header.size() - 8 + dataBytes + static_cast<std::uint64_t>(size.padBytes);
  };
  const std::uint64_t shortBytes = riffBytes(make(0, false));
  if (shortBytes < kInDs64) return make(shortBytes, false);
  return make(riffBytes(make(0, true)), true);
}

}  // namespace velmora::bounce
