#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Bounce/SourceFiles.h"
#include "Session/HeardSession.h"
#include "Session/PartialSession.h"
#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// A track as a bounce has it.
struct BounceTrack {
  std::int64_t track = 0;  ///< of the session
  std::size_t width = 1;   ///< channels: those of its widest region
};

/// What a bounce makes of a session: its span, its tracks, and which of its regions sound.
///
/// A region whose file cannot be read, or has another rate than the session, is left out as though
/// it had never arrived: what lies under it is heard. One that runs past its file is silent there,
/// and hides what lies under it all the same.
class BouncePlan {
 public:
  /// Opens every wave file once. `input` must outlive this.
  explicit BouncePlan(const host::TargetInput& input);
  BouncePlan(const BouncePlan&) = delete;
  BouncePlan& operator=(const BouncePlan&) = delete;

  /// Why there can be no bounce of this session; empty if there can.
  [[nodiscard]] const std::string& Trouble() const { return trouble_; }
  [[nodiscard]] const std::vector<std::string>& LeftOut() const { return leftOut_; }
  [[nodiscard]] const std::vector<std::string>& Notes() const { return notes_; }

  // The rest is to be asked only without a trouble.

  [[nodiscard]] std::int64_t First() const { return first_; }  ///< samples, not negative
  [[nodiscard]] std::int64_t End() const { return end_; }      ///< exclusive
  [[nodiscard]] std::uint32_t SampleRate() const { return sampleRate_; }
  /// In rising order, those too of which no region sounds.
  [[nodiscard]] const std::vector<BounceTrack>& Tracks() const { return tracks_; }

  /// The session without what was left out.
  [[nodiscard]] const host::Session& Sounding() const { return kept_->Regions(); }
  [[nodiscard]] const host::HeardSession& Heard() const { return kept_->Heard(); }
  [[nodiscard]] SourceFiles& Sources() { return sources_; }
  /// The number in Sources() of a region of Sounding() that has a length.
  [[nodiscard]] std::size_t FileOf(std::size_t region) const {
    return fileOf_[kept_->Original(region)];
  }

 private:
  [[nodiscard]] bool TakeRate();
  [[nodiscard]] bool TakeSpan();
  void TakeRegions();
  /// Why a region is left out; empty if it is not.
  [[nodiscard]] std::string WhyNot(const host::SessionRegion& region, std::size_t file) const;
  void TakeTracks();

  const host::TargetInput& input_;
  SourceFiles sources_;
  std::optional<host::PartialSession> kept_;
  std::vector<std::size_t> fileOf_;  ///< by region of the input's session
  std::vector<BounceTrack> tracks_;
  std::int64_t first_ = 0;
  std::int64_t end_ = 0;
  std::uint32_t sampleRate_ = 0;
  std::string trouble_;
  std::vector<std::string> leftOut_;
  std::vector<std::string> notes_;
};

}  // namespace velmora::bounce
