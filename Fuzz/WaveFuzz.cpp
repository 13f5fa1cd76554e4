// The reader of wave files: what a header says, single samples at any place, runs of frames, kept
// chunks, copies, conversions and pieces.
//
//     1 byte   how many steps follow
//     steps    8 bytes each: what to do 1, a depth or channel 1, a length 2, a place 4
//     the rest the file

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/FrameRun.h"
#include "BWF/OutputPaths.h"
#include "BWF/Renderers.h"
#include "Base/SystemLog.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

constexpr std::int32_t kDepths[] = {-1, 16, 24, 8, 32, 0, 12, 64};
// Bytes of a piece or a run, whatever number of channels and bits a file claims: more would only
// make the same steps slower.
constexpr std::int64_t kMostBytes = 9000;
constexpr unsigned kMostFileBytes = 1U << 17;

struct Step {
  std::uint8_t action;
  std::uint8_t small;
  std::uint16_t length;
  std::int32_t place;
};

/// Frames of a piece of that file.
std::int64_t LengthIn(AES31BWF& file, const Step& step) {
  return step.length % (1 + kMostBytes / (1 + std::int64_t{file.GetChannels()} *
                                                  std::max(file.bytesPerSample, 1)));
}

/// Equal, or both not a number.
bool SameValue(float a, float b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

/// A run gives what one sample after the other gives, also where it reads blocks.
void HoldRun(const std::string& path, const Step& step) {
  AES31BWF byRun(path.c_str());
  AES31BWF bySample(path.c_str());
  const std::uint32_t channels = 1 + step.small % 4;
  const std::int64_t frames = LengthIn(byRun, step);
  byRun.OpenAtData();
  bySample.OpenAtData();
  if (byRun.stream == nullptr) return;
  std::vector<float> values(static_cast<std::size_t>(frames) * channels);
  FrameRun run(byRun, step.place, channels);
  run.Read(0, frames, values.data());
  std::size_t at = 0;
  for (std::int64_t frame = 0; frame < frames; ++frame) {
    const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(step.place) +
                                                  static_cast<std::uint32_t>(frame));
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
      const float expected = bySample.GetSampleAt(number, channel);
      Hold(SameValue(values[at++], expected), "a run of frames is its samples");
    }
  }
}

void Ask(AES31BWF& file) {
  (void)file.GetChannels();
  (void)file.GetFrames();
  (void)file.GetSampleRate();
  (void)file.GetBitsPerSample();
  (void)file.GetFormat();
  const BwfBext* const bext = file.GetBext();
  if (bext != nullptr && bext->codingHistory != nullptr) (void)std::strlen(bext->codingHistory);
  Hold(file.IsValid() == (file.hasData && file.hasFormat), "what makes a file valid");
  Hold(!file.IsValid() || file.GetChannels() > 0, "a valid file has channels");
}

/// A chunk is no longer than its file.
void AskChunk(AES31BWF& file, std::int32_t index, std::size_t fileBytes) {
  const BwfChunk* const chunk = file.GetChunk(index);
  if (chunk == nullptr) return;
  Hold(chunk->data.size() <= fileBytes, "a chunk is no longer than its file");
  Hold(chunk->data.size() == chunk->size, "a chunk's size tells its bytes");
}

/// What came of a source is a file that its own reader takes, unless it has no samples.
void HoldMade(const std::unique_ptr<AES31BWF>& made) {
  if (made == nullptr || made->GetBitsPerSample() < 8) return;
  AES31BWF again(made->GetPath());
  Hold(again.IsValid() || made->GetFrames() == 0, "a piece that was made can be read");
}

void Copy(AES31BWF& file, const std::string& target, std::int32_t depth) {
  const std::int32_t status = file.CopyTo(target.c_str(), depth);
  Hold(status >= 0 && status <= CopyNotValid, "a copy has one of its statuses");
  Hold(file.IsValid() || status != CopyDone, "what is not valid is not copied");
}

class Steps {
 public:
  Steps(const WorkFolder& folder, const std::string& path, std::string_view bytes)
      : folder_(folder), path_(path), bytes_(bytes), file_(path.c_str()), other_(path.c_str()) {}

  void Take(const Step& step) {
    const std::string target = folder_.Path("out/made.wav");
    switch (step.action % 16) {
      case 0:
        return Sample(file_, step);
      case 1:
        return Sample(other_, step);
      case 2:
        return file_.OpenAtData();
      case 3:
        if (file_.stream != nullptr) (void)file_.ReadSample();
        return;
      case 4:
        return file_.CloseFile();
      case 5:
        return AskChunk(file_, step.place % 8, bytes_.size());
      case 6:
        return HoldRun(path_, step);
      case 7:
      case 8:
        return Copy(file_, target, kDepths[step.small % 8]);
      case 9:
        return HoldMade(
            RenderScaledFile(target.c_str(), &file_, static_cast<double>(step.place) / 65536));
      case 10:
      case 11:
        return HoldMade(RenderFadeFile(target.c_str(), &file_, LengthIn(file_, step),
                                       (step.small & 1) != 0, step.place));
      case 12:
      case 13:
        return HoldMade(RenderCrossfadeFile(
            target.c_str(), &file_, (step.small & 1) != 0 ? &file_ : &other_, step.place,
            std::int64_t{step.place} + step.small - 128, LengthIn(file_, step)));
      case 14:
        return Convert(target, step);
      default:
        file_.DisableCache();
        (void)CopyBaseName(path_.c_str());
        return;
    }
  }
  AES31BWF& File() { return file_; }

 private:
  static void Sample(AES31BWF& file, const Step& step) {
    const float value = file.GetSampleAt(step.place, step.small);
    Hold(value >= -1.0F && value <= 1.0F, "a sample is within full scale");
  }
  void Convert(const std::string& target, const Step& step) {
    AES31BWF made(target.c_str(), 48000, step.small % 3, kDepths[1 + step.small % 4],
                  static_cast<std::int32_t>(step.length % kMostBytes));
    if ((step.small & 4) != 0) {
      (void)made.CopyFrames(&file_, step.place);
    } else {
      file_.OpenAtData();
      (void)file_.ConvertInto(&made, (step.small & 8) != 0, step.place);
    }
    made.WriteSample(static_cast<float>(step.place));
    made.CloseFile();
  }

  const WorkFolder& folder_;
  std::string path_;
  std::string_view bytes_;
  AES31BWF file_;
  AES31BWF other_;
};

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora;
  using namespace velmora::fuzz;
  static const WorkFolder folder;
  [[maybe_unused]] static const bool isReady = [] {
    folder.Write("out/x", "");
    LimitFiles(kMostFileBytes);
    SetSystemLog([](const std::string&) {});
    return true;
  }();
  Input input(bytes, size);
  std::vector<Step> steps;
  for (int left = input.Byte() % 24; left > 0; --left) {
    steps.push_back(
        {input.Byte(), input.Byte(), input.Number<std::uint16_t>(), input.Number<std::int32_t>()});
  }
  const std::string_view wave = input.Rest();
  const std::string path = folder.Write("source.wav", wave);
  {
    Steps run(folder, path, wave);
    Ask(run.File());
    for (const Step& step : steps) run.Take(step);
    Ask(run.File());
  }
  Hold(folder.Read("source.wav") == wave, "a source is never written to");
  return 0;
}
