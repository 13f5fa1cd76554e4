#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "Model/ViewModel.h"
#include "Recording/LeftOut.h"
#include "Recording/SpotRecording.h"
#include "Spot/RegionMessage.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotWorker.h"

namespace velmora::program {

using recording::LeftOut;
using recording::SpotRecording;

/// Keeps the message that goes to a host last, for a report.
class MessageTap : public RegionHost {
 public:
  explicit MessageTap(RegionHost& host) : host_(host) {}
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;
  std::int32_t Send(const RegionMessage& message) override;

  /// None if the last attempt did not come to a message.
  [[nodiscard]] const std::optional<RegionMessage>& Last() const { return last_; }

 private:
  RegionHost& host_;
  std::optional<RegionMessage> last_;
};

/// What a run amounted to.
struct SpotTotals {
  std::int32_t steps = 0;    ///< that the run has in all
  std::int32_t counted = 0;  ///< the last count
  std::size_t regions = 0;   ///< placed
  std::size_t files = 0;     ///< made
  bool aborted = false;
};

/// Follows a run for the program: counts it, collects what is left out, and passes Ctrl-C on.
class SpotReport : public SpotObserver {
 public:
  SpotReport(LeftOut& leftOut, SpotRecording& recording)
      : leftOut_(leftOut), recording_(recording) {}

  virtual void Warning(const std::string& text) = 0;
  virtual void Start(const SpotOptions& options, std::int32_t steps);
  virtual void End(bool aborted);
  /// A line of the file layer: what could not be written, and why.
  virtual void FileTrouble(const std::string& line) = 0;

  bool Aborted() override;
  void Report(std::int32_t progress) override;
  void FileMade(FilePass pass, std::int32_t event, const std::string& path,
                std::int32_t status) override;
  void RegionTried(std::int32_t event, RegionPiece piece, std::int32_t attempt,
                   std::int32_t status) override;
  void RegionGivenUp(std::int32_t event, RegionPiece piece, std::int32_t status) override;
  void CutLeftOut(std::int32_t event, const std::string& path) override;

  [[nodiscard]] const SpotTotals& Totals() const { return totals_; }

 private:
  LeftOut& leftOut_;
  SpotRecording& recording_;
  SpotTotals totals_;
};

}  // namespace velmora::program
