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
#include <utility>
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
constexpr unsigned kMostFileBytes = 1U << 17;
// A header may claim 65,535 channels, 8,191 bytes for a sample and thousands of millions of
// samples; more of them would only make the same steps slower. So there is a limit to what all
// steps of an input ask for together. The step that passes it is made, those after it ask for
// nothing.
constexpr std::int64_t kMostPieceBytes = 1 << 14;     // of the frames of pieces and runs
constexpr std::int64_t kMostBytesOfAPiece = 9000;     // or of one frame
constexpr std::int64_t kMostBytesOfAFrame = 1 << 17;  // frames beyond it are left out
constexpr std::int64_t kMostConverted = 1 << 18;      // samples
constexpr std::uint16_t kMostDeclared = 9000;         // frames of a file that is written

struct Step {
  std::uint8_t action;
  std::uint8_t small;
  std::uint16_t length;
  std::int32_t place;
};

/// What the steps of an input may still ask for.
class Allowance {
 public:
  /// Frames of a piece or a run of so many channels of that file: as many as the step says, or
  /// fewer. A sample has the bytes of its frame's share or of its depth; headers may contradict
  /// themselves.
  std::int64_t Frames(AES31BWF& file, std::uint32_t channels, const Step& step) {
    const auto depthBytes = static_cast<std::int32_t>((file.GetBitsPerSample() + 7) / 8);
    const std::int64_t frameBytes =
        1 + std::int64_t{channels} * std::max({file.bytesPerSample, depthBytes, 1});
    if (pieceBytes_ <= 0 || frameBytes > kMostBytesOfAFrame) return 0;
    const std::int64_t frames = step.length % (2 + kMostBytesOfAPiece / frameBytes);
    pieceBytes_ -= frames * frameBytes;
    return frames;
  }
  /// Whether all of that file may be converted.
  bool Conversion(const AES31BWF& file) {
    if (converted_ <= 0) return false;
    const std::uint64_t claimed = std::min(file.frames, std::uint64_t{kMostConverted});
    converted_ -= static_cast<std::int64_t>(claimed) * file.format.channels;
    return true;
  }

 private:
  std::int64_t pieceBytes_ = kMostPieceBytes;
  std::int64_t converted_ = kMostConverted;
};

/// Equal, or both not a number.
bool SameValue(float a, float b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

/// A run gives what one sample after the other gives, also where it reads blocks.
void HoldRun(const std::string& path, const Step& step, Allowance& allowance) {
  AES31BWF byRun(path.c_str());
  AES31BWF bySample(path.c_str());
  const std::uint32_t channels = 1 + step.small % 4;
  const std::int64_t frames = allowance.Frames(byRun, channels, step);
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
        return HoldRun(path_, step, allowance_);
      case 7:
      case 8:
        return CopyAll(target, kDepths[step.small % 8]);
      case 9:
        if (!allowance_.Conversion(file_)) return;
        return HoldMade(
            RenderScaledFile(target.c_str(), &file_, static_cast<double>(step.place) / 65536));
      case 10:
      case 11:
        return HoldMade(RenderFadeFile(target.c_str(), &file_, PieceFrames(step),
                                       (step.small & 1) != 0, step.place));
      case 12:
      case 13:
        return HoldMade(RenderCrossfadeFile(
            target.c_str(), &file_, (step.small & 1) != 0 ? &file_ : &other_, step.place,
            std::int64_t{step.place} + step.small - 128, PieceFrames(step)));
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
  std::int64_t PieceFrames(const Step& step) {
    return allowance_.Frames(file_, file_.GetChannels(), step);
  }
  void CopyAll(const std::string& target, std::int32_t depth) {
    // A copy of the same depth is as long as the input.
    const bool converts = depth != -1 && !std::cmp_equal(depth, file_.GetBitsPerSample());
    if (!converts || allowance_.Conversion(file_)) Copy(file_, target, depth);
  }
  void Convert(const std::string& target, const Step& step) {
    AES31BWF made(target.c_str(), 48000, step.small % 3, kDepths[1 + step.small % 4],
                  step.length % kMostDeclared);
    if ((step.small & 4) != 0) {
      (void)made.CopyFrames(&file_, step.place);
    } else if (allowance_.Conversion(file_)) {
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
  Allowance allowance_;
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
