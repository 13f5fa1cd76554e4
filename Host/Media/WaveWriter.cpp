#include "Media/WaveWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

namespace velmora::media {
namespace {

constexpr std::size_t kShortestBext = 602;  // EBU Tech 3285
constexpr std::uint32_t kFormatBytes = 16;  // RIFF WAVE, WAVE_FORMAT_PCM

class Bytes {
 public:
  Bytes& Text(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  Bytes& U32(std::uint32_t value) { return Number(value, 4); }
  Bytes& U16(std::uint32_t value) { return Number(value, 2); }
  Bytes& All(const std::vector<std::uint8_t>& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  [[nodiscard]] std::vector<std::uint8_t> Take() { return std::move(bytes_); }

 private:
  Bytes& Number(std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i, value >>= 8) {
      bytes_.push_back(static_cast<std::uint8_t>(value & 0xFF));
    }
    return *this;
  }
  std::vector<std::uint8_t> bytes_;
};

}  // namespace

NewFile::NewFile(const std::string& path) : path_(path), stream_(CreateNewFile(path.c_str())) {
  created_ = stream_ != nullptr;
  if (!created_) NoteError(errno);
}

NewFile::~NewFile() {
  if (created_) RemoveFile(path_.c_str());
}

int NewFile::Descriptor() const {
  return fileno(stream_.get());
}

void NewFile::NoteError(int error) {
  trouble_ = path_ + ": " + std::strerror(error);
}

bool NewFile::Write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(Descriptor(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      NoteError(written < 0 ? errno : EIO);
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

bool NewFile::Close() {
  if (std::fclose(stream_.release()) == 0) return true;
  NoteError(errno);
  return false;
}

std::vector<std::uint8_t> WaveFileHead(const WaveShape& shape, std::vector<std::uint8_t> bext) {
  constexpr std::uint32_t kChunkHead = 8;
  if (!bext.empty() && bext.size() < kShortestBext) bext.resize(kShortestBext);
  if (bext.size() % 2 != 0) bext.push_back(0);
  const auto bextBytes = static_cast<std::uint32_t>(bext.size());
  const auto audioBytes = static_cast<std::uint32_t>(shape.AudioBytes());
  const auto tailBytes = static_cast<std::uint32_t>(WaveFileTail(shape).size());
  const auto frameBytes = static_cast<std::uint32_t>(shape.FrameBytes());
  const auto rate = static_cast<std::uint32_t>(shape.sampleRate);
  const std::uint32_t formBytes = 4 + kChunkHead + kFormatBytes +
                                  (bext.empty() ? 0 : kChunkHead + bextBytes) + kChunkHead +
                                  audioBytes + tailBytes;
  Bytes head;
  head.Text("RIFF").U32(formBytes).Text("WAVE").Text("fmt ").U32(kFormatBytes);
  head.U16(shape.formatTag)
      .U16(static_cast<std::uint32_t>(shape.channels))
      .U32(rate)
      .U32(rate * frameBytes);
  head.U16(frameBytes).U16(static_cast<std::uint32_t>(shape.bits));
  if (!bext.empty()) head.Text("bext").U32(bextBytes).All(bext);
  return head.Text("data").U32(audioBytes).Take();
}

std::vector<std::uint8_t> WaveFileTail(const WaveShape& shape) {
  if (shape.frames == 0) return Bytes().Text("JUNK").U32(4).U32(0).Take();
  return std::vector<std::uint8_t>(shape.AudioBytes() % 2 != 0 ? 1 : 0);
}

}  // namespace velmora::media
