#pragma once

#include <cstdint>
#include <string>

#include "Model/ViewModel.h"
#include "Program/LeftOut.h"
#include "Session/Session.h"
#include "Session/SpotRecord.h"
#include "Spot/SpotOptions.h"

namespace velmora::program {

/// Keeps what a run knows of its regions and their messages do not tell, for the targets of the
/// spot.
class SpotRecording {
 public:
  /// @param native fades and gain become facts of the regions
  SpotRecording(const ViewModel& model, host::Session& session, bool native)
      : model_(model), session_(session), native_(native) {}

  /// The session's newest region is this piece of this event.
  void RegionLanded(std::int32_t event, RegionPiece piece);

  [[nodiscard]] host::SpotRecord RecordOf(const std::string& projectPath,
                                          const SpotOptions& options, const LeftOut& leftOut) const;

 private:
  const ViewModel& model_;
  host::Session& session_;
  const bool native_;
};

}  // namespace velmora::program
