#include "Session/SessionJson.h"

#include <optional>
#include <ostream>
#include <string_view>
#include <unordered_map>

namespace velmora::host {
namespace {

Json NumberOrNull(const std::optional<std::int32_t>& number) {
  return number ? Json(*number) : Json();
}

}  // namespace

Json SummaryJson(const SessionSummary& summary) {
  return {{"tracks", summary.tracks},
          {"regions", summary.regions},
          {"files", summary.files},
          {"first", summary.first},
          {"end", summary.end}};
}

Json RegionJson(std::size_t index, const SessionRegion& region) {
  Json json = {{"index", index},
               {"name", region.name},
               {"path", region.path},
               {"position", region.position},
               {"length", region.Length()},
               {"start", region.start},
               {"stop", region.stop},
               {"stream", region.stream},
               {"fadeIn", region.shape.fadeIn},
               {"fadeOut", region.shape.fadeOut},
               {"gainDb", region.shape.gainDb},
               {"event", nullptr},
               {"entry", nullptr},
               {"source", nullptr},
               {"piece", nullptr}};
  if (region.origin) {
    json["event"] = region.origin->event;
    json["entry"] = region.origin->entry;
    json["source"] = NumberOrNull(region.origin->source);
    json["piece"] = NameOf(region.origin->piece);
  }
  return json;
}

namespace {

Json PieceJson(const VisiblePiece& piece) {
  return {{"region", piece.region}, {"position", piece.position}, {"end", piece.end}};
}

/// An array with one element a line. Only one element at a time is held as JSON, so that a long
/// session costs no second copy of itself.
template <class Elements, class ToJson>
void WriteArray(std::ostream& out, const Elements& elements, ToJson toJson) {
  std::string_view separator = "\n";
  out << '[';
  for (const auto& element : elements) {
    out << separator << "        ";
    out << JsonText(toJson(element));
    separator = ",\n";
  }
  out << (elements.empty() ? "]" : "\n      ]");
}

}  // namespace

bool WriteSessionJson(const Session& session, std::ostream& out) {
  std::unordered_map<std::int64_t, std::vector<std::size_t>> byTrack;
  for (std::size_t i = 0; i < session.Regions().size(); ++i) {
    byTrack[session.Regions()[i].track].push_back(i);
  }

  out << "{\n  \"summary\": ";
  out << JsonText(SummaryJson(session.Summary()));
  out << ",\n  \"tracks\": [";
  std::string_view separator = "\n";
  for (const std::int64_t track : session.Tracks()) {
    out << separator << "    {\n      \"track\": ";
    out << JsonText(track) << ",\n      \"regions\": ";
    WriteArray(out, byTrack[track],
               [&](std::size_t index) { return RegionJson(index, session.Regions()[index]); });
    out << ",\n      \"visible\": ";
    WriteArray(out, session.Visible(track), PieceJson);
    out << "\n    }";
    separator = ",\n";
  }
  out << (session.Tracks().empty() ? "]\n}\n" : "\n  ]\n}\n");
  return static_cast<bool>(out.flush());
}

}  // namespace velmora::host
