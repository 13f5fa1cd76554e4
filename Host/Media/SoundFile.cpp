#include "Media/SoundFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "Media/AskForMemory.h"
#include "Media/LateLibrary.h"
#include "Media/MpegFrames.h"
#include "Media/WaveHeader.h"
#include "Media/WaveWriter.h"

namespace velmora::media {

/// What we use of libsndfile.
struct SndfileFunctions {
  decltype(&sf_open_virtual) openVirtual;
  decltype(&sf_close) close;
  decltype(&sf_command) command;
  decltype(&sf_seek) seek;
  decltype(&sf_readf_int) readfInt;
  decltype(&sf_readf_double) readfDouble;
  decltype(&sf_read_raw) readRaw;
  decltype(&sf_error) error;
  decltype(&sf_strerror) strerror;
};

namespace {

void FindSndfile(LateLibrary& library, SndfileFunctions& functions) {
  library.Find(VELMORA_FUNCTION(sf_open_virtual), functions.openVirtual);
  library.Find(VELMORA_FUNCTION(sf_close), functions.close);
  library.Find(VELMORA_FUNCTION(sf_command), functions.command);
  library.Find(VELMORA_FUNCTION(sf_seek), functions.seek);
  library.Find(VELMORA_FUNCTION(sf_readf_int), functions.readfInt);
  library.Find(VELMORA_FUNCTION(sf_readf_double), functions.readfDouble);
  library.Find(VELMORA_FUNCTION(sf_read_raw), functions.readRaw);
  library.Find(VELMORA_FUNCTION(sf_error), functions.error);
  library.Find(VELMORA_FUNCTION(sf_strerror), functions.strerror);
}

LateFunctions<SndfileFunctions> sndfile(VELMORA_SNDFILE, FindSndfile);

// What opening may read. Headers take some kilobytes; a picture or a text inside one, megabytes.
constexpr std::int64_t kMostHeaderBytes = std::int64_t{64} << 20;
constexpr std::int64_t kMostHeaderReads = 100000;
constexpr std::size_t kOpeningBytes = std::size_t{64} << 10;  // of memory, by libsndfile
constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

std::string WhyNotOpened(int error) {
  switch (error) {
    case EISDIR:
      return "this is a folder";
    case ENODEV:
    case ENXIO:
      return "this is no ordinary file";
    default:
      return std::strerror(error);
  }
}

/// Bytes of an ID3 tag at a file's beginning (ID3v2, section 3.1), 0 if there is none. libsndfile
/// passes over tags only in files that it opens itself.
std::int64_t BytesOfTag(std::FILE* stream) {
  constexpr std::int64_t kHeadBytes = 10;
  constexpr std::uint8_t kHasFooter = 0x10;
  std::array<std::uint8_t, kHeadBytes> head{};
  if (ReadAt(stream, 0, head.data(), head.size()) != head.size()) return 0;
  if (head[0] != 'I' || head[1] != 'D' || head[2] != '3') return 0;
  std::int64_t size = 0;
  for (std::size_t i = 6; i < 10; ++i) size = size * 128 + (head[i] & 0x7F);
  return kHeadBytes + size + ((head[5] & kHasFooter) != 0 ? kHeadBytes : 0);
}

}  // namespace

SoundFile::SoundFile(FileStream stream, const SndfileFunctions& library)
    : library_(&library),
      stream_(std::move(stream)),
      size_(std::max<std::int64_t>(FileSize(stream_.get()), 0)),
      bytesLeft_(kMostHeaderBytes),
      readsLeft_(kMostHeaderReads) {}

SoundFile::~SoundFile() {
  if (file_ != nullptr) library_->close(file_);
}

std::unique_ptr<SoundFile> SoundFile::Open(const std::string& path, std::string& trouble) {
  FileStream stream = OpenRegularFile(path.c_str());
  if (stream == nullptr) {
    trouble = WhyNotOpened(errno);
    return nullptr;
  }
  return Open(std::move(stream), trouble);
}

std::unique_ptr<SoundFile> SoundFile::OpenPatiently(const std::string& path, std::string& trouble) {
  std::unique_ptr<SoundFile> sound = Open(path, trouble);
  return sound != nullptr ? std::move(sound) : Open(path, trouble);
}

std::unique_ptr<SoundFile> SoundFile::Open(FileStream stream, std::string& trouble) {
  const SndfileFunctions* const library = sndfile.Get(trouble);
  if (library == nullptr) return nullptr;
  std::unique_ptr<SoundFile> sound(new SoundFile(std::move(stream), *library));
  if (sound->size_ == 0) {
    trouble = "the file is empty";
    return nullptr;
  }
  sound->bodyPlace_ = std::min(BytesOfTag(sound->stream_.get()), sound->size_);
  sound->size_ -= sound->bodyPlace_;
  const bool isOpen = !LooksLikeMpegByChance(sound->stream_.get(), sound->bodyPlace_) &&
                      (sound->OpenAsShown() || (sound->Mend() && sound->OpenAsShown()));
  // libsndfile takes a failed read for the end of the file, and may open what is left of it.
  if (sound->readError_ != 0) {
    trouble = WhyNotOpened(sound->readError_);
    return nullptr;
  }
  if (!isOpen) {
    trouble = "this is no sound file, or a damaged one";
    return nullptr;
  }
  sound->bytesLeft_ = kNoLimit;
  sound->readsLeft_ = kNoLimit;
  if (sound->info_.frames == kNoLimit) sound->CountFrames();
  return sound;
}

bool SoundFile::OpenAsShown() {
  SF_VIRTUAL_IO access{&SoundFile::Length, &SoundFile::Seek, &SoundFile::Read, &SoundFile::Write,
                       &SoundFile::Tell};
  if (file_ != nullptr) library_->close(file_);
  AskForMemory(kOpeningBytes);
  info_ = {};
  place_ = 0;
  file_ = library_->openVirtual(&access, SFM_READ, &info_, this);
  return file_ != nullptr && info_.channels > 0 && info_.samplerate > 0;
}

/// Prepares another form of a file that libsndfile refused. False if there is none.
bool SoundFile::Mend() {
  const std::optional<WaveHeader> wave = ReadWaveHeader(stream_.get());
  if (!wave) return false;
  mended_ = true;
  if (wave->longForm) {
    constexpr const char* kName = "RF64";
    head_.assign(kName, kName + 4);
    bodyPlace_ = 4;
    return true;
  }
  const bool isPlain = wave->formatTag == kTagPcm || wave->formatTag == kTagFloat;
  const bool fits = wave->dataBytes < std::numeric_limits<std::uint32_t>::max() / 2;
  if (!isPlain || !fits || !wave->hasFormat || !wave->hasData || wave->ContainerBytes() == 0 ||
      wave->sampleRate > std::uint32_t{std::numeric_limits<std::int32_t>::max()}) {
    return false;
  }
  const WaveShape shape{static_cast<std::int32_t>(wave->sampleRate), wave->channels,
                        wave->ContainerBytes() * 8, wave->Frames(), wave->formatTag};
  head_ = WaveFileHead(shape, {});
  bodyPlace_ = wave->dataPlace;
  size_ = static_cast<std::int64_t>(head_.size()) + shape.AudioBytes();
  return true;
}

/// Headers of streams do not tell a length: then the audio itself is counted.
void SoundFile::CountFrames() {
  constexpr std::int64_t kMostFrames = std::int64_t{1} << 31;  // more than any new file may have
  std::vector<int> block(static_cast<std::size_t>(info_.channels) * 4096);
  std::int64_t frames = 0;
  for (std::int64_t got = 1; got > 0 && frames < kMostFrames; frames += got) {
    got = library_->readfInt(file_, block.data(), 4096);
  }
  OpenAsShown();
  info_.frames = frames;
}

bool SoundFile::HasForeignByteOrder() const {
  return library_->command(file_, SFC_RAW_DATA_NEEDS_ENDSWAP, nullptr, 0) != SF_FALSE;
}

std::string SoundFile::EncodingName() const {
  SF_FORMAT_INFO info{};
  info.format = Encoding();
  const int status = library_->command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info);
  return status == 0 && info.name != nullptr ? info.name : "unknown encoding";
}

bool SoundFile::Seek(std::int64_t frame) const {
  return library_->seek(file_, frame, SEEK_SET) == frame;
}

std::int64_t SoundFile::ReadIntegers(std::int32_t* samples, std::int64_t frames) const {
  return library_->readfInt(file_, samples, frames);
}

std::int64_t SoundFile::ReadFractions(double* samples, std::int64_t frames) const {
  return library_->readfDouble(file_, samples, frames);
}

std::int64_t SoundFile::ReadBytes(std::uint8_t* bytes, std::int64_t count) const {
  return library_->readRaw(file_, bytes, count);
}

SoundFile::LastCall SoundFile::Last() const {
  return {library_->error(file_) != SF_ERR_NO_ERROR, library_->strerror(file_)};
}

sf_count_t SoundFile::Length(void* self) {
  return static_cast<SoundFile*>(self)->size_;
}

sf_count_t SoundFile::Seek(sf_count_t offset, int whence, void* self) {
  auto& sound = *static_cast<SoundFile*>(self);
  std::int64_t base = 0;
  if (whence == SEEK_CUR) base = sound.place_;
  if (whence == SEEK_END) base = sound.size_;
  if (offset < -base || offset > kNoLimit - base) return -1;
  sound.place_ = base + offset;
  return sound.place_;
}

sf_count_t SoundFile::Read(void* bytes, sf_count_t count, void* self) {
  auto& sound = *static_cast<SoundFile*>(self);
  const std::int64_t held = std::max<std::int64_t>(sound.size_ - sound.place_, 0);
  const std::int64_t wanted = std::min({std::int64_t{count}, sound.bytesLeft_, held});
  if (wanted <= 0 || sound.readsLeft_ <= 0) return 0;
  errno = 0;
  const std::int64_t got = sound.ReadShown(static_cast<std::uint8_t*>(bytes), wanted);
  if (got < wanted && errno != 0) sound.readError_ = errno;
  sound.place_ += got;
  if (sound.bytesLeft_ != kNoLimit) {
    sound.bytesLeft_ -= got;
    --sound.readsLeft_;
  }
  return got;
}

std::int64_t SoundFile::ReadShown(std::uint8_t* bytes, std::int64_t count) {
  const auto headBytes = static_cast<std::int64_t>(head_.size());
  std::int64_t done = 0;
  if (place_ < headBytes) {
    done = std::min(count, headBytes - place_);
    std::copy_n(head_.begin() + place_, done, bytes);
  }
  const std::int64_t inFile = place_ + done - headBytes + bodyPlace_;
  return done + static_cast<std::int64_t>(
                    ReadHeader(inFile, bytes + done, static_cast<std::size_t>(count - done)));
}

/// Takes what the block has, which is read anew for each further place, and reads the rest by
/// itself: also whatever a read of the block has failed for or come out short of.
std::size_t SoundFile::ReadHeader(std::int64_t place, std::uint8_t* bytes, std::size_t count) {
  constexpr std::size_t kBlockBytes = 4096;
  const bool isOpening = bytesLeft_ != kNoLimit;
  if (!isOpening || count > kBlockBytes / 2) return ReadAt(stream_.get(), place, bytes, count);
  const auto held = [&] {
    const std::int64_t from = place - blockPlace_;
    return from >= 0 && from < std::ssize(block_) ? block_.size() - static_cast<std::size_t>(from)
                                                  : 0;
  };
  if (held() < count) {
    block_.resize(kBlockBytes);
    blockPlace_ = place;
    block_.resize(ReadSomeAt(stream_.get(), place, block_.data(), block_.size()));
  }
  const std::size_t taken = std::min(held(), count);
  std::copy_n(block_.end() - static_cast<std::ptrdiff_t>(held()), taken, bytes);
  errno = 0;
  if (taken == count) return count;
  return taken + ReadAt(stream_.get(), place + static_cast<std::int64_t>(taken), bytes + taken,
                        count - taken);
}

sf_count_t SoundFile::Write(const void* /*bytes*/, sf_count_t /*count*/, void* /*self*/) {
  return 0;
}

sf_count_t SoundFile::Tell(void* self) {
  return static_cast<SoundFile*>(self)->place_;
}

}  // namespace velmora::media
