#include "Spot/SpotPasses.h"

#include <bit>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "Base/Wrapping.h"
#include "Spot/EventFiles.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

void SetRenderedFile(AES31Event& event, std::unique_ptr<AES31BWF> file) {
  delete event.renderedFile;  // an aborted run may have left one; its file on disk stays
  event.renderedFile = file.release();
}

std::uint64_t GainBits(const AES31Event& event) {
  return std::bit_cast<std::uint64_t>(event.gain.gainDb);
}

}  // namespace

bool SpotPasses::Run() {
  if (!DepthPass()) return false;
  if (options_.doGain != 0 && !GainPass()) return false;
  if (!RegionPass()) return false;
  ReleasePass();
  return options_.doFades == 0 || FadePass();
}

bool SpotPasses::Step() {
  ++progress_;
  if (observer_.Aborted()) return false;
  observer_.Report(progress_);
  return true;
}

AES31Event* SpotPasses::LiveEvent(std::int32_t index) {
  AES31Event* const event = project_.project->GetEvent(index);
  return event != nullptr && IsLive(*event) ? event : nullptr;
}

bool SpotPasses::DepthPass() {
  for (std::int32_t i = 0; i < project_.numEvents; ++i) {
    if (!Step()) return false;
    AES31Event* const event = LiveEvent(i);
    if (event != nullptr && event->sourceFile != nullptr) PrepareDepth(i, *event);
  }
  return true;
}

void SpotPasses::PrepareDepth(std::int32_t index, AES31Event& event) {
  AES31BWF& source = *event.sourceFile;
  const bool copy = options_.copySource != 0;
  if (!copy && std::cmp_equal(source.GetBitsPerSample(), options_.bitDepth)) return;
  const char* const folder = copy ? options_.copyFolder.c_str() : nullptr;
  const char* const suffix = copy ? "" : options_.depthSuffix.c_str();
  NewFile target = names_.New(SourcePath(event), folder, suffix);
  const MadeFiles::Recipe recipe = {&source, options_.bitDepth, std::nullopt};
  const std::int32_t status =
      MakeOnce(index, recipe, target, [&] { return source.CopyInto(target, options_.bitDepth); });
  observer_.FileMade(FilePass::Depth, index, target.Path(), status);
  if (status == CopyDone) SetRenderedFile(event, std::make_unique<AES31BWF>(target.Path().c_str()));
}

bool SpotPasses::GainPass() {
  for (std::int32_t i = 0; i < project_.numEvents; ++i) {
    if (!Step()) return false;
    AES31Event* const event = LiveEvent(i);
    if (event != nullptr && event->gain.present && event->sourceFile != nullptr) {
      PrepareGain(i, *event);
    }
  }
  return true;
}

/// The gain file comes from the source, so it keeps the source's depth and takes the place of what
/// the depth pass made.
void SpotPasses::PrepareGain(std::int32_t index, AES31Event& event) {
  NewFile target = DerivedFile(event, "_Gain");
  const std::int32_t depth = static_cast<std::int32_t>(event.sourceFile->GetBitsPerSample());
  const MadeFiles::Recipe recipe = {event.sourceFile, depth, GainBits(event)};
  std::unique_ptr<AES31BWF> file;
  const std::int32_t status = MakeOnce(index, recipe, target, [&] {
    file = RenderGainInto(target, event);
    return file != nullptr ? CopyDone : CopyFailed;
  });
  const bool made = status == CopyDone;
  observer_.FileMade(FilePass::Gain, index, target.Path(), made ? CopyDone : CopyFailed);
  if (made && file == nullptr) file = std::make_unique<AES31BWF>(target.Path().c_str());
  if (made) SetRenderedFile(event, std::move(file));
}

std::int32_t SpotPasses::MakeOnce(std::int32_t index, const MadeFiles::Recipe& recipe,
                                  OutputFile& target,
                                  const std::function<std::int32_t()>& makeAnew) {
  const std::optional<std::int32_t> copied = made_.CopyOf(recipe, target);
  if (copied) return *copied;
  std::optional<FileStamp> source;
  if (IsNeededAgain(index, recipe)) source = MadeFiles::Begin(recipe);
  const std::int32_t status = makeAnew();
  if (status == CopyDone) made_.Note(recipe, source, target.Path());
  return status;
}

/// Looks at the list itself: fetching an event is a step that is seen from outside.
bool SpotPasses::IsNeededAgain(std::int32_t index, const MadeFiles::Recipe& recipe) const {
  if (!MadeFiles::IsWorthNoting(recipe)) return false;
  const std::vector<AES31Event>& events = project_.project->events;
  for (auto i = static_cast<std::size_t>(index) + 1; i < events.size(); ++i) {
    const AES31Event& event = events[i];
    const bool sameGain =
        !recipe.gainDb || (event.gain.present && GainBits(event) == recipe.gainDb);
    if (event.sourceFile == recipe.source && sameGain && IsLive(event)) return true;
  }
  return false;
}

bool SpotPasses::RegionPass() {
  std::int32_t failures = 0;
  for (std::int32_t i = 0; i < project_.numEvents;) {
    observer_.Report(++progress_);
    if (observer_.Aborted()) return false;
    const AES31Event* const event = LiveEvent(i);
    const std::int32_t attempt = failures + 1;
    const std::int32_t status =
        event != nullptr ? SpotMainRegion(i, *event, attempt).value_or(0) : 0;
    if (status != 0 && attempt < kAttempts) {
      ++failures;
      --progress_;  // the next attempt counts this step again
      continue;
    }
    if (status != 0) observer_.RegionGivenUp(i, RegionPiece::Main, status);
    failures = 0;
    ++i;
  }
  return true;
}

std::optional<std::int32_t> SpotPasses::SpotMainRegion(std::int32_t index, const AES31Event& event,
                                                       std::int32_t attempt) {
  if (event.sourceFile == nullptr) {
    observer_.CutLeftOut(index, "");
    return std::nullopt;
  }
  AES31BWF& file = event.renderedFile != nullptr ? *event.renderedFile : *event.sourceFile;
  if (!file.IsValid()) {
    observer_.CutLeftOut(index, file.GetPath());
    return std::nullopt;
  }
  const std::int64_t start = AdlDifference(event.sourceStart, event.cut.sourceIn);
  const std::int64_t length = AdlDifference(event.cut.destIn, event.cut.destOut);
  RegionSpotter spotter(file.GetPath(), start, WrapAdd(start, length), host_);
  const std::int32_t status =
      Send(spotter, event, AdlToSamples(event.cut.destIn), CopyBaseName(file.GetPath()));
  observer_.RegionTried(index, RegionPiece::Main, attempt, status);
  if (status != 0) observer_.Log("spot 5555555555555555  ttt=" + std::to_string(status));
  file.CloseFile();
  return status;
}

void SpotPasses::ReleasePass() {
  for (std::int32_t i = 0; i < project_.numEvents; ++i) {
    AES31Event* const event = project_.project->GetEvent(i);
    if (event != nullptr) SetRenderedFile(*event, nullptr);
    observer_.Report(++progress_);
  }
}

std::int32_t SpotPasses::Send(RegionSpotter& spotter, const AES31Event& event,
                              std::int64_t position, const std::string& name) {
  constexpr std::int16_t kStream = 1;
  return spotter.SpotRegion(HostTrack(event, project_.minTrack),
                            WrapAdd(position, options_.timelineOffset), kStream, name.c_str(),
                            options_.relativeTrack);
}

NewFile SpotPasses::DerivedFile(const AES31Event& event, const char* suffix) {
  const bool toFolder = options_.copySource != 0;
  return names_.New(SourcePath(event), toFolder ? options_.copyFolder.c_str() : nullptr, suffix);
}

}  // namespace velmora
