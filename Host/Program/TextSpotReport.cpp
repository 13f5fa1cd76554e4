#include "Program/TextSpotReport.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <map>
#include <ostream>

#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Destinations/Destinations.h"
#include "Program/TextTable.h"
#include "Recording/SpotNotes.h"

namespace velmora::program {
namespace {

constexpr std::size_t kListedRegions = 200;

std::string AudioText(const SpotOptions& options) {
  std::string text = std::to_string(options.bitDepth) + " bit";
  if (options.doFades != 0) text += ", fades";
  if (options.doGain != 0) text += ", gain";
  if (options.copySource != 0) return text + ", copied to " + Printable(options.copyFolder);
  return text + ", made files beside their sources";
}

}  // namespace

void TextSpotReport::Warning(const std::string& text) {
  std::fprintf(stderr, "velmora: %s\n", Printable(text).c_str());
}

void TextSpotReport::FileTrouble(const std::string& line) {
  ClearBar();
  Warning(line);
}

void TextSpotReport::Start(const SpotOptions& options, std::int32_t steps) {
  SpotReport::Start(options, steps);
  out_ << "Project   " << Counted(model_.project->events.size(), "event") << ", "
       << Printable(model_.totalStartTime) << " to " << Printable(model_.totalEndTime) << '\n'
       << "Session   " << clock_.SampleRate() << " Hz, " << clock_.Rate().name << " frames\n"
       << "Position  " << recording::PositionText(arguments_.positionMode) << ", moved by "
       << options.timelineOffset << " samples\n"
       << "Audio     " << AudioText(options) << "\n\n"
       << std::flush;
}

void TextSpotReport::Report(std::int32_t progress) {
  SpotReport::Report(progress);
  if (showsBar_ && progress >= 0) DrawBar(progress);
}

void TextSpotReport::DrawBar(std::int32_t progress) {
  constexpr int kCells = 40;
  const std::int32_t steps = std::max(Totals().steps, 1);
  const int percent = static_cast<int>(std::int64_t{std::min(progress, steps)} * 100 / steps);
  if (percent == drawnPercent_) return;
  drawnPercent_ = percent;
  const auto filled = static_cast<std::size_t>(percent * kCells / 100);
  const std::string bar = std::string(filled, '#') + std::string(kCells - filled, '.');
  std::fprintf(stderr, "\r[%s] %3d %%  step %" PRId32 " of %" PRId32, bar.c_str(), percent,
               progress, Totals().steps);
  std::fflush(stderr);
}

void TextSpotReport::ClearBar() {
  if (drawnPercent_ >= 0) std::fputs("\r\x1b[K", stderr);
  drawnPercent_ = -1;
}

void TextSpotReport::End(bool aborted) {
  SpotReport::End(aborted);
  ClearBar();
  if (!session_.Regions().empty()) {
    PrintRegions();
    PrintTracks();
  }
  const host::SessionSummary summary = session_.Summary();
  const SpotTotals& totals = Totals();
  out_ << (aborted ? "Stopped. " : "") << Counted(totals.regions, "region") << " placed on "
       << Counted(summary.tracks, "track") << ", " << Counted(totals.files, "file") << " made";
  if (!session_.Regions().empty()) {
    out_ << ".\nThe session spans " << clock_.Timecode(summary.first) << " to "
         << clock_.Timecode(summary.end);
  }
  out_ << ".\n" << std::flush;
}

void TextSpotReport::PrintRegions() const {
  TextTable table({{"Track", Align::Right},
                   {"Timecode"},
                   {"Sample", Align::Right},
                   {"Length", Align::Right},
                   {"From", Align::Right},
                   {"File"}});
  const std::vector<host::SessionRegion>& regions = session_.Regions();
  for (std::size_t i = 0; i < std::min(regions.size(), kListedRegions); ++i) {
    const host::SessionRegion& region = regions[i];
    table.Add({std::to_string(region.track + 1), clock_.Timecode(region.position),
               std::to_string(region.position), std::to_string(region.Length()),
               std::to_string(region.start), FileNameOf(region.path)});
  }
  out_ << "Regions\n";
  table.Print(out_, ShowsColours(1));
  if (regions.size() > kListedRegions) {
    const host::HostKind* const teller = host::Hosts().front();
    out_ << "  ... and " << regions.size() - kListedRegions << " more; --json or --host "
         << teller->name << ':' << teller->target->form << " tells all\n";
  }
  out_ << '\n';
}

void TextSpotReport::PrintTracks() const {
  struct TrackSum {
    std::size_t regions = 0;
    std::int64_t first = 0;
    std::int64_t end = 0;
  };
  std::map<std::int64_t, TrackSum> tracks;
  for (const host::SessionRegion& region : session_.Regions()) {
    TrackSum& sum = tracks[region.track];
    sum.first = sum.regions == 0 ? region.position : std::min(sum.first, region.position);
    sum.end = sum.regions == 0 ? region.End() : std::max(sum.end, region.End());
    ++sum.regions;
  }
  TextTable table({{"Track", Align::Right}, {"Regions", Align::Right}, {"From"}, {"To"}});
  for (const auto& [track, sum] : tracks) {
    table.Add({std::to_string(track + 1), std::to_string(sum.regions), clock_.Timecode(sum.first),
               clock_.Timecode(sum.end)});
  }
  out_ << "Tracks of the session\n";
  table.Print(out_, ShowsColours(1));
  out_ << '\n';
}

}  // namespace velmora::program
