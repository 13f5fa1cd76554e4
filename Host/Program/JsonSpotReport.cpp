#include "Program/JsonSpotReport.h"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <vector>

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

bool Same(const std::vector<RegionParameter>& a, const std::vector<RegionParameter>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const RegionParameter& x, const RegionParameter& y) {
                      return x.key == y.key && x.type == y.type && x.data == y.data;
                    });
}

bool Same(const RegionMessage& a, const RegionMessage& b) {
  return a.eventClass == b.eventClass && a.eventId == b.eventId && a.target == b.target &&
         a.returnId == b.returnId && a.transactionId == b.transactionId &&
         a.sendMode == b.sendMode && a.timeoutTicks == b.timeoutTicks &&
         Same(a.parameters, b.parameters) && Same(a.region, b.region);
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
  Json line = {{"kind", "region"},   {"event", event},   {"piece", NameOf(piece)},
               {"attempt", attempt}, {"status", status}, {"message", nullptr}};
  const std::optional<RegionMessage>& message = tap_.Last();
  if (!message || status == 0) {
    if (message) line["message"] = MessageJson(*message);
    Write(line);
    return;
  }
  if (!refused_ || !Same(*refused_, *message)) {
    refused_ = message;
    refusedText_ = host::JsonText(MessageJson(*message));
  }
  constexpr std::string_view kNull = "null}";
  std::string text = host::JsonText(line);
  text.resize(text.size() - kNull.size());
  out_ << text << refusedText_ << "}\n" << std::flush;
}

}  // namespace velmora::program
