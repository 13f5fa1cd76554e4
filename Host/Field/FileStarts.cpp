// Where in time the file of a source begins, if the ADL leaves it out or gives it wrongly.

#include "Field/FileStarts.h"

#include <vector>

#include "Field/FieldProject.h"

namespace velmora::field {
namespace {

/// No sum of three times of a project comes near the limit, but those of a wave header may.
constexpr std::int64_t kBeyondAnyTime = std::int64_t{1} << 60;

bool LiesInside(std::int64_t sourceIn, std::int64_t length, std::int64_t fileStart,
                const FileSpan& file) {
  if (fileStart > kBeyondAnyTime || fileStart < -kBeyondAnyTime) return false;
  const std::int64_t offset = sourceIn - fileStart;
  return offset >= 0 && offset + length <= file.frames;
}

/// A given start stands unless no cut fits under it and all do under another one.
bool GivenStands(const StartTally& tally) {
  const bool allFitElsewhere =
      tally.cuts > 0 && (tally.underReference == tally.cuts || tally.underZero == tally.cuts);
  return tally.underGiven > 0 || !allFitElsewhere;
}

void Decide(Source& source, const StartTally& tally, const std::optional<FileSpan>& file) {
  const FileStart start = DecideFileStart(tally, source.givenStart.has_value());
  source.startDecided = start != FileStart::Given;
  if (!source.startDecided) {
    source.fileStart = *source.givenStart;
    return;
  }
  source.fileStart = start == FileStart::Reference ? *file->timeReference : 0;
}

}  // namespace

FileSpan SpanOf(const SourceAudio& audio, double projectRate) {
  FileSpan span{AtRate(audio.frames, audio.sampleRate, projectRate), {}};
  if (audio.timeReference) {
    span.timeReference = AtRate(*audio.timeReference, audio.sampleRate, projectRate);
  }
  return span;
}

void StartTally::Count(std::int64_t sourceIn, std::int64_t length,
                       std::optional<std::int64_t> givenStart, const FileSpan& file) {
  ++cuts;
  if (givenStart && LiesInside(sourceIn, length, *givenStart, file)) ++underGiven;
  if (file.timeReference && LiesInside(sourceIn, length, *file.timeReference, file)) {
    ++underReference;
  }
  if (LiesInside(sourceIn, length, 0, file)) ++underZero;
}

FileStart DecideFileStart(const StartTally& tally, bool isGiven) {
  if (isGiven && GivenStands(tally)) return FileStart::Given;
  const bool byReference = tally.underReference > 0 && tally.underReference >= tally.underZero;
  return byReference ? FileStart::Reference : FileStart::Zero;
}

std::optional<std::int64_t> Project::FileOffset(const Event& event) const {
  if (!event.source) return std::nullopt;
  return event.sourceIn - sources[*event.source].fileStart;
}

void DecideFileStarts(Project& project, const std::vector<std::optional<SourceAudio>>& audio) {
  std::vector<std::optional<FileSpan>> files;
  files.reserve(project.sources.size());
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    files.emplace_back();
    if (i < audio.size() && audio[i]) files[i] = SpanOf(*audio[i], project.rates.sampleRate);
  }
  std::vector<StartTally> live(project.sources.size());
  std::vector<StartTally> all(project.sources.size());
  for (const Event& event : project.events) {
    if (event.kind != EventKind::Cut || !event.complete || !event.source) continue;
    const std::size_t i = *event.source;
    if (!files[i]) continue;
    const auto count = [&](StartTally& tally) {
      tally.Count(event.sourceIn, event.end - event.position, project.sources[i].givenStart,
                  *files[i]);
    };
    count(all[i]);
    if (!event.IsOff()) count(live[i]);
  }
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    Decide(project.sources[i], live[i].cuts > 0 ? live[i] : all[i], files[i]);
  }
}

}  // namespace velmora::field
