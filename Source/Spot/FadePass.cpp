// Fades and crossfades as short files of their own, laid over the regions that they belong to.

#include <memory>
#include <utility>

#include "BWF/Renderers.h"
#include "Base/Wrapping.h"
#include "Spot/FadePlaces.h"
#include "Spot/SpotPasses.h"
#include "Timecode/AdlTime.h"

namespace velmora {

bool SpotPasses::FadePass() {
  // The live event handled last. Nothing looks further back, and nothing ahead.
  const AES31Event* previous = nullptr;
  for (std::int32_t i = 0; i < project_.numEvents; ++i) {
    if (!Step()) return false;
    const AES31Event* const event = LiveEvent(i);
    if (event == nullptr) continue;
    MakeFades(i, previous, *event);
    if (stopped_) return false;
    previous = event;
  }
  return true;
}

/// An event does not know its successor, so one that ends in a crossfade still gets its out-fade;
/// the successor's crossfade piece then lands on just that place.
void SpotPasses::MakeFades(std::int32_t index, const AES31Event* previous,
                           const AES31Event& event) {
  if (previous != nullptr && ContinuesCrossfade(*previous, event)) {
    MakeCrossfade(index, *previous, event);
  } else if (event.infade.present) {
    MakeFadeIn(index, event);
  }
  if (event.outfade.present && !stopped_) MakeFadeOut(index, event);
}

RenderAids SpotPasses::Aids() {
  return {&kept_, [this] { return stopped_ = observer_.Aborted(); }};
}

void SpotPasses::MakeFadeIn(std::int32_t index, const AES31Event& event) {
  if (event.sourceFile == nullptr) return;
  NewFile target = DerivedFile(event, "_FadeIn");
  const std::int64_t length = AdlToSamples(event.infade.length);
  std::unique_ptr<AES31BWF> file =
      RenderFadeInto(target, event.sourceFile, length, true, FirstSample(event), Aids());
  SpotPiece(index, event, RegionPiece::FadeIn, std::move(file), target.Path(),
            AdlToSamples(event.cut.destIn), length);
}

void SpotPasses::MakeCrossfade(std::int32_t index, const AES31Event& previous,
                               const AES31Event& event) {
  if (previous.sourceFile == nullptr || event.sourceFile == nullptr) return;
  NewFile target = DerivedFile(event, "_XFade");
  const std::int64_t length = AdlToSamples(event.infade.length);
  std::unique_ptr<AES31BWF> file =
      RenderCrossfadeInto(target, previous.sourceFile, event.sourceFile,
                          FirstSampleOfTail(previous, length), FirstSample(event), length, Aids());
  SpotPiece(index, event, RegionPiece::Crossfade, std::move(file), target.Path(),
            AdlToSamples(event.cut.destIn), length);
}

void SpotPasses::MakeFadeOut(std::int32_t index, const AES31Event& event) {
  if (event.sourceFile == nullptr) return;
  NewFile target = DerivedFile(event, "_FadeOut");
  const std::int64_t length = AdlToSamples(event.outfade.length);
  std::unique_ptr<AES31BWF> file = RenderFadeInto(target, event.sourceFile, length, false,
                                                  FirstSampleOfTail(event, length), Aids());
  SpotPiece(index, event, RegionPiece::FadeOut, std::move(file), target.Path(),
            WrapSubtract(AdlToSamples(event.cut.destOut), length), length);
}

void SpotPasses::SpotPiece(std::int32_t index, const AES31Event& event, RegionPiece piece,
                           std::unique_ptr<AES31BWF> file, const std::string& path,
                           std::int64_t position, std::int64_t length) {
  if (stopped_) return;
  observer_.FileMade(FilePass::Fade, index, path, file != nullptr ? CopyDone : CopyFailed);
  if (file == nullptr) return;
  file.reset();
  RegionSpotter spotter(path.c_str(), 0, length, host_);
  const std::string name = CopyBaseName(path.c_str());
  std::int32_t status = 0;
  for (std::int32_t attempt = 1; attempt <= kAttempts; ++attempt) {
    status = Send(spotter, event, position, name);
    observer_.RegionTried(index, piece, attempt, status);
    if (status == 0) return;
  }
  observer_.RegionGivenUp(index, piece, status);
  if (piece == RegionPiece::FadeOut) observer_.Log("SPOT Error outfade!!!!!!!!!!!!!!!!!!!!!!!");
}

}  // namespace velmora
