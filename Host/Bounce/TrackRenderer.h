#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "Bounce/BouncePlan.h"
#include "Bounce/SamplePlacing.h"
#include "Session/HeardSession.h"

namespace velmora::bounce {

/// A block of interleaved frames that is being filled, of all tracks of a file.
struct BounceBlock {
  std::int64_t position = 0;  ///< of its first frame on the timeline
  std::int64_t end = 0;       ///< exclusive
  std::uint8_t* bytes = nullptr;
  std::size_t frameBytes = 0;
};

/// Puts one track into the blocks of a file, from the first block to the last.
///
/// Where one region lies alone, without a fade or gain there, its samples go straight to the
/// target's depth (see SamplePlacing.h). Elsewhere, with `under` 0 below the lowest layer and each
/// layer's value x, gain g and fade factor i/n there, one layer after the other, in double:
///
///     under = (x * g * i + under * (n - i)) / n
///
/// and the last is brought to the target's depth.
class TrackRenderer {
 public:
  /// @param offset bytes of a frame before this track's first channel
  TrackRenderer(BouncePlan& plan, const BounceTrack& track, host::BounceDepth depth,
                std::size_t offset);

  /// Where this track sounds next, if it does: a position that no block has reached yet.
  [[nodiscard]] std::optional<std::int64_t> NextSound() const;

  /// Draws what sounds in a block, whose bytes are 0 where nothing was drawn yet. Blocks come in
  /// rising order and without overlaps.
  /// @return false if a wave file cannot be read: the plan's sources tell why
  [[nodiscard]] bool Draw(const BounceBlock& block);
  /// The end, exclusive, of what was drawn last; nothing sounded after it. 0 before that.
  [[nodiscard]] std::int64_t DrawnUpTo() const { return drawnUpTo_; }

 private:
  /// Frames of a region that its file has, as a part of what was asked for.
  struct InFile {
    std::int64_t skipped = 0;  ///< frames asked for that lie before them
    std::int64_t frame = 0;    ///< the first of them in the file
    std::int64_t count = 0;
  };

  void Advance();
  [[nodiscard]] bool DrawPart(const BounceBlock& block, std::int64_t position, std::int64_t count);
  [[nodiscard]] bool DrawPlain(const BounceBlock& block, std::int64_t position, std::int64_t count);
  [[nodiscard]] bool DrawMixed(const BounceBlock& block, std::int64_t position, std::int64_t count);
  [[nodiscard]] bool AddLayer(std::size_t region, std::int64_t position, std::int64_t count);
  [[nodiscard]] bool IsPlain(std::size_t region, std::int64_t position) const;
  [[nodiscard]] InFile PartInFile(std::size_t region, std::int64_t position,
                                  std::int64_t count) const;
  [[nodiscard]] Placing PlacingAt(const BounceBlock& block, std::int64_t position,
                                  std::size_t sourceChannels, std::int64_t count) const;

  BouncePlan& plan_;
  BounceTrack track_;
  host::BounceDepth depth_;
  std::size_t offset_;
  host::HeardTrack stretches_;
  std::optional<host::HeardStretch> stretch_;  ///< the one that blocks have reached
  std::int64_t reached_ = 0;                   ///< the first position not drawn yet
  std::int64_t drawnUpTo_ = 0;

  std::vector<std::uint8_t> bytes_;
  std::vector<std::int32_t> integers_;
  std::vector<double> fractions_;
  std::vector<double> mix_;  ///< `width` channels interleaved
};

}  // namespace velmora::bounce
