#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

#include "Session/HeardSession.h"
#include "Session/SessionTarget.h"

namespace velmora::ardour {

/// A straight ramp of factors: `from` at its first sample, `to` at the sample after its last.
struct Ramp {
  std::int64_t length = 0;  ///< samples, 0 for none
  double from = 0;
  double to = 0;
};

/// An audio file as Ardour will open it.
struct PlannedFile {
  std::string path;
  std::int64_t frames = 0;
  std::int32_t channels = 1;
  std::int32_t sampleRate = 0;
  bool isUnsigned8 = false;
  std::string trouble;  ///< why it cannot be used; then there are no facts
};

/// A region as the Ardour session has it: what lies in its file.
struct PlannedRegion {
  std::size_t region = 0;     ///< index into the input's Session::Regions()
  std::size_t file = 0;       ///< index into ArdourPlan::Files()
  std::int64_t position = 0;  ///< on the timeline, in samples, not negative
  std::int64_t start = 0;     ///< first sample inside the file, not negative
  std::int64_t length = 0;    ///< samples, positive, up to the file's end at most
  Ramp fadeIn;                ///< after the start
  Ramp fadeOut;               ///< before the end
  double gain = 1;            ///< linear
  std::string name;           ///< UTF-8, never empty
};

struct PlannedTrack {
  std::string name;                    ///< by the project's number
  std::int32_t channels = 1;           ///< those of its widest region
  std::vector<PlannedRegion> regions;  ///< the lowest layer first
  /// From the earliest position to the latest end of its regions, missing parts of them included.
  std::int64_t first = std::numeric_limits<std::int64_t>::max();
  std::int64_t end = 0;
};

/// What Ardour gets of a session.
///
/// Left out are regions before the timeline's start or beyond its end, and those whose file Ardour
/// could not open, or would play at a wrong speed, or whose path its file cannot tell: it would say
/// nothing, or refuse the whole session. Regions that reach beyond their files are cut to what is
/// there, and left out if that is nothing. Where such a region hides others by what it lacks,
/// regions without volume hide them.
class ArdourPlan {
 public:
  /// Opens every audio file once.
  explicit ArdourPlan(const host::TargetInput& input);

  /// Why there can be no session; empty if there can.
  [[nodiscard]] const std::string& Trouble() const { return trouble_; }
  [[nodiscard]] const std::vector<std::string>& LeftOut() const { return leftOut_; }
  [[nodiscard]] const std::vector<std::string>& Notes() const { return notes_; }

  [[nodiscard]] std::int32_t SampleRate() const { return sampleRate_; }
  /// In rising order, those too of which nothing sounds.
  [[nodiscard]] const std::vector<PlannedTrack>& Tracks() const { return tracks_; }
  [[nodiscard]] const std::vector<PlannedFile>& Files() const { return files_; }
  [[nodiscard]] std::size_t Regions() const;
  [[nodiscard]] std::int64_t First() const { return first_; }  ///< earliest position
  [[nodiscard]] std::int64_t End() const { return end_; }      ///< latest end, exclusive

 private:
  struct Candidate {
    std::size_t region;
    std::size_t file;
  };

  [[nodiscard]] bool TakeRate(float rate);
  [[nodiscard]] std::vector<Candidate> TakeCandidates(const host::TargetInput& input);
  [[nodiscard]] std::string WhyNot(const host::SessionRegion& region, std::size_t& file);
  [[nodiscard]] std::size_t FileOf(const std::string& path);
  void TakeTracks(const host::TargetInput& input, const std::vector<Candidate>& candidates);
  void Place(const host::TargetInput& input, const Candidate& candidate,
             const host::AppliedShape& shape, PlannedTrack& track);
  void NoteWhatIsOdd(const host::TargetInput& input, const PlannedRegion& planned,
                     std::int64_t cutBefore, std::int64_t cutAfter);

  std::vector<PlannedFile> files_;
  std::unordered_map<std::string, std::size_t> fileByPath_;
  std::vector<PlannedTrack> tracks_;
  std::int64_t first_ = 0;
  std::int64_t end_ = 0;
  std::int32_t sampleRate_ = 0;
  std::string trouble_;
  std::vector<std::string> leftOut_;
  std::vector<std::string> notes_;
};

}  // namespace velmora::ardour
