#include "Bounce/TrackRenderer.h"

#include <algorithm>

#include "Bounce/BroadcastHeader.h"

namespace velmora::bounce {
namespace {

using host::AppliedShape;
using host::FadeFactor;
using host::SessionRegion;

// Samples of one file that are held at a time, so that files of a thousand channels take no more
// memory than others.
constexpr std::int64_t kSamplesAtOnce = 1 << 17;

}  // namespace

TrackRenderer::TrackRenderer(BouncePlan& plan, const BounceTrack& track, host::BounceDepth depth,
                             std::size_t offset)
    : plan_(plan),
      track_(track),
      depth_(depth),
      offset_(offset),
      stretches_(plan.Heard(), track.track) {
  Advance();
}

void TrackRenderer::Advance() {
  host::HeardStretch next;
  stretch_ = stretches_.Next(next) ? std::optional(next) : std::nullopt;
  if (stretch_) reached_ = stretch_->position;
}

std::optional<std::int64_t> TrackRenderer::NextSound() const {
  return stretch_ ? std::optional(reached_) : std::nullopt;
}

bool TrackRenderer::Draw(const BounceBlock& block) {
  while (stretch_ && reached_ < block.end) {
    const std::int64_t end = std::min(stretch_->end, block.end);
    while (reached_ < end) {
      const auto width = static_cast<std::int64_t>(track_.width);
      const std::int64_t count =
          std::min(end - reached_, std::max<std::int64_t>(kSamplesAtOnce / width, 1));
      if (!DrawPart(block, reached_, count)) return false;
      reached_ += count;
    }
    if (reached_ == stretch_->end) Advance();
  }
  return true;
}

bool TrackRenderer::DrawPart(const BounceBlock& block, std::int64_t position, std::int64_t count) {
  const auto& regions = stretch_->regions;
  if (regions.size() == 1 && IsPlain(regions.front(), position)) {
    return DrawPlain(block, position, count);
  }
  return DrawMixed(block, position, count);
}

/// A stretch holds no edge of a fade, so its first sample speaks for all of them.
bool TrackRenderer::IsPlain(std::size_t index, std::int64_t position) const {
  const SessionRegion& region = plan_.Sounding().Regions()[index];
  const AppliedShape& shape = plan_.Heard().Shapes()[index];
  return shape.gain == 1 && position - region.position >= shape.fadeIn &&
         region.End() - position > shape.fadeOut;
}

TrackRenderer::InFile TrackRenderer::PartInFile(std::size_t index, std::int64_t position,
                                                std::int64_t count) const {
  const SessionRegion& region = plan_.Sounding().Regions()[index];
  const std::int64_t frames = plan_.Sources().Facts(plan_.FileOf(index)).frames;
  InFile part;
  part.frame = region.start + (position - region.position);
  part.skipped = std::clamp<std::int64_t>(-part.frame, 0, count);
  part.frame += part.skipped;
  part.count = std::clamp<std::int64_t>(frames - part.frame, 0, count - part.skipped);
  return part;
}

Placing TrackRenderer::PlacingAt(const BounceBlock& block, std::int64_t position,
                                 std::size_t sourceChannels, std::int64_t count) const {
  const auto frame = static_cast<std::size_t>(position - block.position);
  return {block.bytes + frame * block.frameBytes + offset_, block.frameBytes, track_.width,
          sourceChannels, static_cast<std::size_t>(count)};
}

bool TrackRenderer::DrawPlain(const BounceBlock& block, std::int64_t position, std::int64_t count) {
  const std::size_t region = stretch_->regions.front();
  const InFile part = PartInFile(region, position, count);
  if (part.count == 0) return true;
  SourceFiles& sources = plan_.Sources();
  const std::size_t file = plan_.FileOf(region);
  const SourceFacts& facts = sources.Facts(file);
  const std::size_t samples = facts.channels * static_cast<std::size_t>(part.count);
  drawnUpTo_ = position + part.skipped + part.count;
  const Placing placing = PlacingAt(block, position + part.skipped, facts.channels, part.count);

  if (facts.sameBytesAs == depth_) {
    const std::size_t fileFrameBytes = facts.channels * SampleBytes(depth_);
    if (fileFrameBytes == block.frameBytes) {
      return sources.ReadBytes(file, part.frame, part.count, placing.bytes);
    }
    bytes_.resize(samples * SampleBytes(depth_));
    if (!sources.ReadBytes(file, part.frame, part.count, bytes_.data())) return false;
    PlaceBytes(bytes_.data(), depth_, placing);
  } else if (facts.isFloat) {
    fractions_.resize(samples);
    if (!sources.ReadFractions(file, part.frame, part.count, fractions_.data())) return false;
    PlaceFractions(fractions_.data(), depth_, placing);
  } else {
    integers_.resize(samples);
    if (!sources.ReadIntegers(file, part.frame, part.count, integers_.data())) return false;
    PlaceIntegers(integers_.data(), depth_, placing);
  }
  return true;
}

bool TrackRenderer::DrawMixed(const BounceBlock& block, std::int64_t position, std::int64_t count) {
  mix_.assign(static_cast<std::size_t>(count) * track_.width, 0.0);
  for (const std::size_t region : stretch_->regions) {
    if (!AddLayer(region, position, count)) return false;
  }
  drawnUpTo_ = position + count;
  PlaceFractions(mix_.data(), depth_, PlacingAt(block, position, track_.width, count));
  return true;
}

bool TrackRenderer::AddLayer(std::size_t index, std::int64_t position, std::int64_t count) {
  const SessionRegion& region = plan_.Sounding().Regions()[index];
  const AppliedShape& shape = plan_.Heard().Shapes()[index];
  const std::size_t file = plan_.FileOf(index);
  const std::size_t channels = plan_.Sources().Facts(file).channels;
  const InFile part = PartInFile(index, position, count);
  // Where the file has nothing the layer is silent, and hides what is under it as elsewhere.
  fractions_.assign(static_cast<std::size_t>(count) * channels, 0.0);
  double* const inFile = fractions_.data() + static_cast<std::size_t>(part.skipped) * channels;
  if (part.count > 0 && !plan_.Sources().ReadFractions(file, part.frame, part.count, inFile)) {
    return false;
  }
  const std::int64_t length = region.SoundingLength();
  for (std::int64_t i = 0; i < count; ++i) {
    const FadeFactor factor = shape.FactorAt(position + i - region.position, length);
    const auto a = static_cast<double>(factor.numerator);
    const auto b = static_cast<double>(factor.denominator - factor.numerator);
    const auto n = static_cast<double>(factor.denominator);
    const double* const from = fractions_.data() + static_cast<std::size_t>(i) * channels;
    double* const under = mix_.data() + static_cast<std::size_t>(i) * track_.width;
    for (std::size_t channel = 0, source = 0; channel < track_.width; ++channel) {
      under[channel] = (from[source] * shape.gain * a + under[channel] * b) / n;
      if (++source == channels) source = 0;
    }
  }
  return true;
}

}  // namespace velmora::bounce
