#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "Program/SpotReport.h"
#include "Session/JsonText.h"

namespace velmora::program {

/// Tells a run as JSON Lines.
class JsonSpotReport : public SpotReport {
 public:
  JsonSpotReport(LeftOut& leftOut, SpotRecording& recording, const MessageTap& tap,
                 std::ostream& out)
      : SpotReport(leftOut, recording), tap_(tap), out_(out) {}

  void Warning(const std::string& text) override;
  void Start(const SpotOptions& options, std::int32_t steps) override;
  void End(bool aborted) override;
  void Log(const std::string& line) override;
  void FileTrouble(const std::string& line) override { Log(line); }
  void FileMade(FilePass pass, std::int32_t event, const std::string& path,
                std::int32_t status) override;
  void RegionTried(std::int32_t event, RegionPiece piece, std::int32_t attempt,
                   std::int32_t status) override;

 private:
  void Write(const host::Json& line);

  const MessageTap& tap_;
  // The last message that was refused, and its JSON: it comes 80 times in a row.
  std::optional<RegionMessage> refused_;
  std::string refusedText_;
  std::ostream& out_;
};

}  // namespace velmora::program
