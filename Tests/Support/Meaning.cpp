#include "Support/Meaning.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "Embedded/EmbeddedKind.h"
#include "Session/Session.h"

namespace velmora::test {
namespace {

class QuietObserver : public SpotObserver {
 public:
  bool Aborted() override { return false; }
  void Report(std::int32_t /*progress*/) override {}
  void Log(const std::string& /*line*/) override {}
};

/// "track 0 at 172800000: 0 to 48000 of /tmp/x/one.wav".
std::string Line(std::int64_t track, std::int64_t position, std::int64_t start, std::int64_t stop,
                 const std::string& path) {
  return "track " + std::to_string(track) + " at " + std::to_string(position) + ": " +
         std::to_string(start) + " to " + std::to_string(stop) + " of " + path + "\n";
}

std::string InOrder(std::vector<std::string> lines) {
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string& line : lines) text += line;
  return text;
}

}  // namespace

std::string Meant(const check::CheckedProject& checked) {
  const field::Project& project = *checked.project;
  std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
  for (const field::Event& event : project.events) {
    if (event.kind == field::EventKind::Cut) lowest = std::min(lowest, event.tracks.first);
  }
  std::vector<std::string> lines;
  for (const field::Event& event : project.events) {
    if (event.kind != field::EventKind::Cut || event.IsOff()) continue;
    if (!event.source) {
      lines.emplace_back("a cut without a source\n");
      continue;
    }
    const std::int64_t start = event.sourceIn - project.sources.at(*event.source).fileStart;
    lines.push_back(Line(std::int64_t{event.tracks.first} - lowest, event.position, start,
                         start + event.end - event.position,
                         checked.media.at(*event.source).located.path));
  }
  return InOrder(std::move(lines));
}

std::string Spotted(const ViewModel& model, Spot spot) {
  SpotOptions options;
  options.sessionRate = 48000;
  options.frameRate = 2;  // 25
  host::Session session;
  const auto receiver = host::kEmbeddedKind.connect(session);
  QuietObserver observer;
  spot({model.project.get(), model.numEvents, model.minTrack, model.firstEvent}, options, *receiver,
       observer);
  std::vector<std::string> lines;
  for (const host::SessionRegion& region : session.Regions()) {
    lines.push_back(Line(region.track, region.position, region.start, region.stop, region.path));
  }
  return InOrder(std::move(lines));
}

}  // namespace velmora::test
