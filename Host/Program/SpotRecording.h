#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Model/ViewModel.h"
#include "Program/LeftOut.h"
#include "Session/Session.h"
#include "Session/SpotRecord.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotWorker.h"

namespace velmora::program {

/// The pass as JSON has it: "depth", "gain", "fade".
[[nodiscard]] const char* NameOf(FilePass pass);

/// Keeps what a run knows of its regions and their messages do not tell, for the targets of the
/// spot.
class SpotRecording {
 public:
  /// @param native fades and gain become facts of the regions
  SpotRecording(const ViewModel& model, host::Session& session, bool native)
      : model_(model), session_(session), native_(native) {}

  /// The session's newest region is this piece of this event.
  void RegionLanded(std::int32_t event, RegionPiece piece);

  void FileMade(FilePass pass, std::int32_t event, const std::string& path, bool isMade);
  void FilePlanned(FilePass pass, std::int32_t event);
  void Message(host::RecordedMessage::Kind kind, const std::string& text,
               const std::string& remedy = {});

  [[nodiscard]] host::SpotRecord RecordOf(const std::string& projectPath,
                                          const SpotOptions& options, const LeftOut& leftOut) const;
  /// Adds what only those read who tell of the spot: events, files and messages.
  /// @param positionMode as it was asked for
  void AddDetails(const SpotOptions& options, std::int32_t positionMode,
                  host::SpotRecord& record) const;

 private:
  const ViewModel& model_;
  host::Session& session_;
  const bool native_;
  std::vector<host::RecordedFile> files_;
  std::vector<host::RecordedMessage> messages_;
};

}  // namespace velmora::program
