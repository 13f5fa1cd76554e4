#pragma once

#include <iosfwd>
#include <string>

#include "Program/CommandLine.h"
#include "Program/SpotReport.h"
#include "Session/Session.h"
#include "Session/SessionClock.h"

namespace velmora::program {

/// Tells a run to a person: what is done, a bar while it works, and what landed where.
class TextSpotReport : public SpotReport {
 public:
  TextSpotReport(const SpotArguments& arguments, LeftOut& leftOut, SpotRecording& recording,
                 const ViewModel& model, const host::Session& session,
                 const host::SessionClock& clock, bool showsBar, std::ostream& out)
      : SpotReport(leftOut, recording),
        arguments_(arguments),
        model_(model),
        session_(session),
        clock_(clock),
        showsBar_(showsBar),
        out_(out) {}

  void Warning(const std::string& text) override;
  void Start(const SpotOptions& options, std::int32_t steps) override;
  void End(bool aborted) override;
  void Report(std::int32_t progress) override;
  void FileTrouble(const std::string& line) override;
  /// The worker's log lines, one for each failed attempt, are for a log; a person gets one line for
  /// each region that is given up.
  void Log(const std::string& /*line*/) override {}

 private:
  void DrawBar(std::int32_t progress);
  void ClearBar();
  void PrintRegions() const;
  void PrintTracks() const;

  const SpotArguments& arguments_;
  const ViewModel& model_;
  const host::Session& session_;
  const host::SessionClock& clock_;
  const bool showsBar_;
  int drawnPercent_ = -1;
  std::ostream& out_;
};

}  // namespace velmora::program
