#include "Media/SoundFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace velmora::media {
namespace {

// What opening may read. Headers take some kilobytes; a picture or a text inside one, megabytes.
constexpr std::int64_t kMostHeaderBytes = std::int64_t{64} << 20;
constexpr std::int64_t kMostHeaderReads = 100000;
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

}  // namespace

SoundFile::SoundFile(FileStream stream)
    : stream_(std::move(stream)),
      size_(std::max<std::int64_t>(FileSize(stream_.get()), 0)),
      bytesLeft_(kMostHeaderBytes),
      readsLeft_(kMostHeaderReads) {}

SoundFile::~SoundFile() {
  if (file_ != nullptr) sf_close(file_);
}

std::unique_ptr<SoundFile> SoundFile::Open(const std::string& path, std::string& trouble) {
  FileStream stream = OpenRegularFile(path.c_str());
  if (stream == nullptr) {
    trouble = WhyNotOpened(errno);
    return nullptr;
  }
  return Open(std::move(stream), trouble);
}

std::unique_ptr<SoundFile> SoundFile::Open(FileStream stream, std::string& trouble) {
  std::unique_ptr<SoundFile> sound(new SoundFile(std::move(stream)));
  if (sound->size_ == 0) {
    trouble = "the file is empty";
    return nullptr;
  }
  SF_VIRTUAL_IO access{&SoundFile::Length, &SoundFile::Seek, &SoundFile::Read, &SoundFile::Write,
                       &SoundFile::Tell};
  sound->file_ = sf_open_virtual(&access, SFM_READ, &sound->info_, sound.get());
  const bool opened = sound->file_ != nullptr;
  if (!opened || sound->info_.channels <= 0 || sound->info_.samplerate <= 0) {
    trouble = "this is no sound file, or a damaged one";
    return nullptr;
  }
  sound->bytesLeft_ = kNoLimit;
  sound->readsLeft_ = kNoLimit;
  return sound;
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
  const std::int64_t wanted = std::min<std::int64_t>(count, sound.bytesLeft_);
  if (wanted <= 0 || sound.readsLeft_ <= 0) return 0;
  errno = 0;
  const auto got = static_cast<std::int64_t>(
      ReadAt(sound.stream_.get(), sound.place_, bytes, static_cast<std::size_t>(wanted)));
  if (got < wanted && errno != 0) sound.readError_ = errno;
  sound.place_ += got;
  if (sound.bytesLeft_ != kNoLimit) {
    sound.bytesLeft_ -= got;
    --sound.readsLeft_;
  }
  return got;
}

sf_count_t SoundFile::Write(const void* /*bytes*/, sf_count_t /*count*/, void* /*self*/) {
  return 0;
}

sf_count_t SoundFile::Tell(void* self) {
  return static_cast<SoundFile*>(self)->place_;
}

}  // namespace velmora::media
