#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Recording/LeftOut.h"
#include "Session/Session.h"
#include "Session/SessionHost.h"
#include "Session/SpotRecord.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotWorker.h"

namespace velmora::recording {

/// The pass as JSON has it: "depth", "gain", "fade".
[[nodiscard]] const char* NameOf(FilePass pass);

/// Keeps what a run knows of its regions and their messages do not tell, for the targets of the
/// spot.
class SpotRecording {
 public:
  /// What the project has of these becomes a fact of its regions, where the spot does not render
  /// it.
  struct NativeParts {
    bool fades = false;  ///< crossfades too
    bool gain = false;
  };
  /// Project and session must outlive this.
  SpotRecording(const SpotProject& project, host::Session& session, NativeParts native)
      : project_(project), session_(session), native_(native) {}

  /// The session's newest region is this piece of this event.
  void RegionLanded(std::int32_t event, RegionPiece piece);

  void FileMade(FilePass pass, std::int32_t event, const std::string& path, bool isMade);
  void FilePlanned(FilePass pass, std::int32_t event);
  void Message(host::RecordedMessage::Kind kind, const std::string& text,
               const std::string& remedy = {});
  /// What the host says of a region of the session.
  void Remark(const host::Remark& remark);

  [[nodiscard]] host::SpotRecord RecordOf(const std::string& projectPath,
                                          const SpotOptions& options, const LeftOut& leftOut) const;
  /// Adds what only those read who tell of the spot: events, files and messages.
  /// @param positionMode as it was asked for
  void AddDetails(const SpotOptions& options, std::int32_t positionMode,
                  host::SpotRecord& record) const;

 private:
  const SpotProject project_;
  host::Session& session_;
  const NativeParts native_;
  std::vector<host::RecordedFile> files_;
  std::vector<host::RecordedMessage> messages_;
};

}  // namespace velmora::recording
