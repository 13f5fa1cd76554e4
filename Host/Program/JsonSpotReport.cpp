#include "Program/JsonSpotReport.h"

#include <ostream>

#include "Program/MessageJson.h"

namespace velmora::program {
namespace {

using host::Json;

Json OptionsJson(const SpotOptions& options) {
  return {{"sessionRate", options.sessionRate},
          {"positionMode", options.positionMode},
          {"frameRate", options.frameRate},
          {"doFades", options.doFades},
          {"doGain", options.doGain},
          {"offsetSamples", options.offsetSamples},
          {"startSamples", options.startSamples},
          {"bitDepth", options.bitDepth},
          {"depthSuffix", options.depthSuffix},
          {"copyFolder", options.copyFolder},
          {"copySource", options.copySource},
          {"timelineOffset", options.timelineOffset},
          {"relativeTrack", options.relativeTrack}};
}

}  // namespace

/// A script may follow a long run, so no line waits for the next.
void JsonSpotReport::Write(const Json& line) {
  out_ << host::JsonText(line) << '\n' << std::flush;
}

void JsonSpotReport::Warning(const std::string& text) {
  Write({{"kind", "warning"}, {"text", text}});
}

void JsonSpotReport::Start(const SpotOptions& options, std::int32_t steps) {
  SpotReport::Start(options, steps);
  Write({{"kind", "start"}, {"options", OptionsJson(options)}, {"steps", steps}});
}

void JsonSpotReport::End(bool aborted) {
  SpotReport::End(aborted);
  const SpotTotals& totals = Totals();
  Write({{"kind", "end"},
         {"aborted", totals.aborted},
         {"steps", totals.steps},
         {"counted", totals.counted},
         {"regions", totals.regions},
         {"files", totals.files}});
}

void JsonSpotReport::Log(const std::string& line) {
  Write({{"kind", "log"}, {"text", line}});
}

void JsonSpotReport::FileMade(FilePass pass, std::int32_t event, const std::string& path,
                              std::int32_t status) {
  SpotReport::FileMade(pass, event, path, status);
  Write({{"kind", "file"},
         {"pass", recording::NameOf(pass)},
         {"event", event},
         {"path", path},
         {"status", status}});
}

void JsonSpotReport::RegionTried(std::int32_t event, RegionPiece piece, std::int32_t attempt,
                                 std::int32_t status) {
  SpotReport::RegionTried(event, piece, attempt, status);
  Write({{"kind", "region"},
         {"event", event},
         {"piece", NameOf(piece)},
         {"attempt", attempt},
         {"status", status},
         {"message", tap_.Last() ? MessageJson(*tap_.Last()) : Json()}});
}

}  // namespace velmora::program
