// Where in time the file of a source begins, if the ADL leaves it out or gives it wrongly.

#include <algorithm>

#include "Field/FieldProject.h"

namespace velmora::field {
namespace {

/// Cuts of one source, and how many of them lie inside the file under each start.
struct Tally {
  std::size_t cuts = 0;
  std::size_t underGiven = 0;
  std::size_t underReference = 0;
  std::size_t underZero = 0;
};

/// One source's file, in samples at the project's rate.
struct FileSpan {
  std::int64_t frames = 0;
  std::optional<std::int64_t> timeReference;
};

std::optional<FileSpan> SpanOf(const std::optional<SourceAudio>& audio, double projectRate) {
  if (!audio) return std::nullopt;
  FileSpan span{AtRate(audio->frames, audio->sampleRate, projectRate), {}};
  if (audio->timeReference) {
    span.timeReference = AtRate(*audio->timeReference, audio->sampleRate, projectRate);
  }
  return span;
}

/// No sum of three times of a project comes near the limit, but those of a wave header may.
constexpr std::int64_t kBeyondAnyTime = std::int64_t{1} << 60;

bool LiesInside(const Event& cut, std::int64_t fileStart, const FileSpan& file) {
  if (fileStart > kBeyondAnyTime || fileStart < -kBeyondAnyTime) return false;
  const std::int64_t offset = cut.sourceIn - fileStart;
  return offset >= 0 && offset + (cut.end - cut.position) <= file.frames;
}

void Count(Tally& tally, const Event& cut, const Source& source, const FileSpan& file) {
  ++tally.cuts;
  if (source.givenStart && LiesInside(cut, *source.givenStart, file)) ++tally.underGiven;
  if (file.timeReference && LiesInside(cut, *file.timeReference, file)) ++tally.underReference;
  if (LiesInside(cut, 0, file)) ++tally.underZero;
}

/// A given start stands unless no cut fits under it and all do under another one.
bool GivenStands(const Source& source, const Tally& tally) {
  if (!source.givenStart) return false;
  const bool allFitElsewhere =
      tally.cuts > 0 && (tally.underReference == tally.cuts || tally.underZero == tally.cuts);
  return tally.underGiven > 0 || !allFitElsewhere;
}

void Decide(Source& source, const Tally& tally, const std::optional<FileSpan>& file) {
  source.startDecided = !GivenStands(source, tally);
  if (!source.startDecided) {
    source.fileStart = *source.givenStart;
    return;
  }
  const bool byReference = file && file->timeReference && tally.underReference > 0 &&
                           tally.underReference >= tally.underZero;
  source.fileStart = byReference ? *file->timeReference : 0;
}

}  // namespace

std::optional<std::int64_t> Project::FileOffset(const Event& event) const {
  if (!event.source) return std::nullopt;
  return event.sourceIn - sources[*event.source].fileStart;
}

void DecideFileStarts(Project& project, const std::vector<std::optional<SourceAudio>>& audio) {
  std::vector<std::optional<FileSpan>> files;
  files.reserve(project.sources.size());
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    files.push_back(i < audio.size() ? SpanOf(audio[i], project.rates.sampleRate) : std::nullopt);
  }
  std::vector<Tally> live(project.sources.size());
  std::vector<Tally> all(project.sources.size());
  for (const Event& event : project.events) {
    if (event.kind != EventKind::Cut || !event.complete || !event.source) continue;
    const std::size_t i = *event.source;
    if (!files[i]) continue;
    Count(all[i], event, project.sources[i], *files[i]);
    if (!event.IsOff()) Count(live[i], event, project.sources[i], *files[i]);
  }
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    Decide(project.sources[i], live[i].cuts > 0 ? live[i] : all[i], files[i]);
  }
}

}  // namespace velmora::field
