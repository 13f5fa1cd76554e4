#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "BWF/KeptStreams.h"
#include "BWF/OutputPaths.h"
#include "BWF/Renderers.h"
#include "Spot/MadeFiles.h"
#include "Spot/RegionSpotter.h"
#include "Spot/SpotWorker.h"

namespace velmora {

/// The five passes of one run, strictly one after the other. Internal to RunSpot.
class SpotPasses {
 public:
  SpotPasses(const SpotProject& project, const SpotOptions& options, RegionHost& host,
             SpotObserver& observer)
      : project_(project), options_(options), host_(host), observer_(observer) {}

  /// False if the observer's abort ended it.
  bool Run();
  /// The region pass alone, without any file of the passes before it.
  bool RegionPass();

 private:
  static constexpr std::int32_t kAttempts = 80;  ///< for each region, without a pause

  bool DepthPass();
  bool GainPass();
  void ReleasePass();
  bool FadePass();

  /// Counts a step of a pass, and tells of it unless the run is aborted.
  bool Step();
  /// The event if the run works on it, else null.
  AES31Event* LiveEvent(std::int32_t index);

  void PrepareDepth(std::int32_t index, AES31Event& event);
  void PrepareGain(std::int32_t index, AES31Event& event);
  /// Makes an event's file, or copies an equal one that this run has made already.
  /// @return a CopyStatus
  std::int32_t MakeOnce(std::int32_t index, const MadeFiles::Recipe& recipe, OutputFile& target,
                        const std::function<std::int32_t()>& makeAnew);
  /// Whether a later event needs a file of the same recipe, and copying it would pay.
  bool IsNeededAgain(std::int32_t index, const MadeFiles::Recipe& recipe) const;
  /// The status of one attempt, none if there is nothing to place.
  std::optional<std::int32_t> SpotMainRegion(std::int32_t index, const AES31Event& event,
                                             std::int32_t attempt);

  /// Lets a long piece be left in the middle, which sets `stopped_`.
  RenderAids Aids();
  void MakeFades(std::int32_t index, const AES31Event* previous, const AES31Event& event);
  void MakeFadeIn(std::int32_t index, const AES31Event& event);
  void MakeCrossfade(std::int32_t index, const AES31Event& previous, const AES31Event& event);
  void MakeFadeOut(std::int32_t index, const AES31Event& event);
  /// Sends a rendered piece of `length` samples; `file` is null if it could not be made. One that
  /// was left in the middle is not told: its file is gone.
  void SpotPiece(std::int32_t index, const AES31Event& event, RegionPiece piece,
                 std::unique_ptr<AES31BWF> file, const std::string& path, std::int64_t position,
                 std::int64_t length);

  std::int32_t Send(RegionSpotter& spotter, const AES31Event& event, std::int64_t position,
                    const std::string& name);
  /// A file derived from the event's source, in the copy folder if there is one.
  NewFile DerivedFile(const AES31Event& event, const char* suffix);

  const SpotProject& project_;
  const SpotOptions& options_;
  RegionHost& host_;
  SpotObserver& observer_;
  OutputNames names_;
  MadeFiles made_;
  KeptStreams kept_;  ///< of the sources that fades are made of
  std::int32_t progress_ = 0;
  bool stopped_ = false;  ///< by an abort in the middle of an event
};

}  // namespace velmora
