#include "Media/Resampling.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Media/AskForMemory.h"
#include "Media/LateLibrary.h"

namespace velmora::media {
namespace {

/// What we use of libsoxr.
struct SoxrFunctions {
  decltype(&soxr_io_spec) ioSpec;
  decltype(&soxr_quality_spec) qualitySpec;
  decltype(&soxr_create) create;
  decltype(&soxr_process) process;
  decltype(&soxr_delete) free;
};

void FindSoxr(LateLibrary& library, SoxrFunctions& functions) {
  library.Find(VELMORA_FUNCTION(soxr_io_spec), functions.ioSpec);
  library.Find(VELMORA_FUNCTION(soxr_quality_spec), functions.qualitySpec);
  library.Find(VELMORA_FUNCTION(soxr_create), functions.create);
  library.Find(VELMORA_FUNCTION(soxr_process), functions.process);
  library.Find(VELMORA_FUNCTION(soxr_delete), functions.free);
}

LateFunctions<SoxrFunctions> soxr(VELMORA_SOXR, FindSoxr);

}  // namespace

std::int64_t FramesAtRate(std::int64_t frames, std::int32_t rate, std::int32_t otherRate) {
  if (rate == otherRate || rate <= 0) return frames;
  // The whole part and the rest apart: products of large counts would not fit.
  std::int64_t whole = frames / rate;
  std::int64_t rest = frames % rate;
  if (rest < 0) {
    --whole;
    rest += rate;
  }
  if (whole > std::numeric_limits<std::int64_t>::max() / otherRate - 1) {
    return std::numeric_limits<std::int64_t>::max();
  }
  return whole * otherRate + (2 * rest * otherRate + rate) / (std::int64_t{2} * rate);
}

struct Resampler::Engine {
  explicit Engine(const SoxrFunctions& functions) : library(&functions) {}
  ~Engine() {
    if (soxr != nullptr) library->free(soxr);
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  const SoxrFunctions* library;
  soxr_t soxr = nullptr;  ///< freed by the destructor
  std::size_t channels = 0;
  double factor = 1;  ///< frames out for each frame in
};

Resampler::Resampler(std::unique_ptr<Engine> engine) : engine_(std::move(engine)) {}
Resampler::~Resampler() = default;

std::unique_ptr<Resampler> Resampler::Create(std::int32_t rate, std::int32_t otherRate,
                                             std::int32_t channels, std::string& trouble) {
  const SoxrFunctions* const library = soxr.Get(trouble);
  if (library == nullptr) return nullptr;
  soxr_error_t error = nullptr;
  const soxr_io_spec_t samples = library->ioSpec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
  const soxr_quality_spec_t quality = library->qualitySpec(SOXR_VHQ, 0);
  auto engine = std::make_unique<Engine>(*library);
  // What it takes by and by for one channel, as far as was seen.
  constexpr std::size_t kChannelBytes = std::size_t{600} << 10;
  AskForMemory(static_cast<std::size_t>(channels) * kChannelBytes);
  engine->soxr = library->create(rate, otherRate, static_cast<unsigned>(channels), &error, &samples,
                                 &quality, nullptr);
  if (error != nullptr || engine->soxr == nullptr) {
    trouble = "resampling cannot be set up";
    if (error != nullptr) (trouble += ": ") += error;
    return nullptr;
  }
  engine->channels = static_cast<std::size_t>(channels);
  engine->factor = static_cast<double>(otherRate) / rate;
  return std::unique_ptr<Resampler>(new Resampler(std::move(engine)));
}

bool Resampler::Process(std::span<const double> in, std::vector<double>& out) {
  constexpr std::size_t kRoomAtTheEnd = 16384;  // frames
  const std::size_t channels = engine_->channels;
  const std::size_t frames = in.size() / channels;
  // All that a block gives comes at once, what earlier blocks left inside included.
  const auto room =
      static_cast<std::size_t>(std::ceil(static_cast<double>(frames) * engine_->factor)) +
      kRoomAtTheEnd;
  out.resize(room * channels);
  std::size_t made = 0;
  std::size_t taken = 0;
  do {
    std::size_t takenNow = 0;
    std::size_t madeNow = 0;
    const double* const from = frames == 0 ? nullptr : in.data() + taken * channels;
    const soxr_error_t error = engine_->library->process(engine_->soxr, from, frames - taken,
                                                         &takenNow, out.data() + made * channels,
                                                         out.size() / channels - made, &madeNow);
    if (error != nullptr) return false;
    taken += takenNow;
    made += madeNow;
    if (made == out.size() / channels) out.resize(out.size() + kRoomAtTheEnd * channels);
    if (takenNow == 0 && madeNow == 0) break;
  } while (taken < frames);
  out.resize(made * channels);
  return taken == frames;
}

}  // namespace velmora::media
