#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Base/FileAccess.h"

namespace velmora::media {

struct SndfileFunctions;

/// A sound file open for reading by libsndfile. Only regular files are opened, and never by what
/// their names end in: headerless audio is none. Opening reads a bounded part of the file, so that
/// noise of gigabytes takes no time.
///
/// Two kinds of wave files are shown to libsndfile in another form, as it refuses them though their
/// audio is plain: BW64, which differs from RF64 in its name alone, and files whose chunks stand in
/// an unusual order or without pad bytes.
///
/// The only one that calls libsndfile, which is loaded when the first file is opened.
class SoundFile {
 public:
  /// Null if it cannot be opened, or if reading its header fails; then `trouble` says why, in plain
  /// words.
  [[nodiscard]] static std::unique_ptr<SoundFile> Open(const std::string& path,
                                                       std::string& trouble);
  /// The same, but tries once more: what fails in passing, a read or a request for memory, is no
  /// broken file.
  [[nodiscard]] static std::unique_ptr<SoundFile> OpenPatiently(const std::string& path,
                                                                std::string& trouble);
  /// The same with a stream that is open already, which must be one of a regular file.
  [[nodiscard]] static std::unique_ptr<SoundFile> Open(FileStream stream, std::string& trouble);
  ~SoundFile();
  SoundFile(const SoundFile&) = delete;
  SoundFile& operator=(const SoundFile&) = delete;

  [[nodiscard]] const SF_INFO& Info() const { return info_; }
  [[nodiscard]] int Container() const { return info_.format & SF_FORMAT_TYPEMASK; }
  [[nodiscard]] int Encoding() const { return info_.format & SF_FORMAT_SUBMASK; }
  [[nodiscard]] std::FILE* Stream() const { return stream_.get(); }
  /// The errno of the last read that failed, 0 if none did. libsndfile itself does not tell a
  /// failed read from the end of a file.
  [[nodiscard]] int ReadError() const { return readError_; }
  /// True if libsndfile refuses the file as it is.
  [[nodiscard]] bool IsMended() const { return mended_; }
  /// True if the bytes of its samples stand in another order than the machine's.
  [[nodiscard]] bool HasForeignByteOrder() const;
  /// "Vorbis", say: libsndfile's name for what its samples are encoded in.
  [[nodiscard]] std::string EncodingName() const;

  /// Makes `frame` the next one to be read. False if there is no such place.
  [[nodiscard]] bool Seek(std::int64_t frame) const;

  // Each reads the next frames, all channels interleaved, and says how many there were: fewer than
  // `frames` at the end, or where the file is damaged.

  /// Each sample at the left end of 32 bits.
  [[nodiscard]] std::int64_t ReadIntegers(std::int32_t* samples, std::int64_t frames) const;
  /// As fractions of full scale.
  [[nodiscard]] std::int64_t ReadFractions(double* samples, std::int64_t frames) const;
  /// The bytes as they lie in the file; counts bytes, of whole frames.
  [[nodiscard]] std::int64_t ReadBytes(std::uint8_t* bytes, std::int64_t count) const;

  /// What libsndfile has to say of the last call; `hasFailed` is false if that was all right.
  struct LastCall {
    bool hasFailed = false;
    std::string text;
  };
  [[nodiscard]] LastCall Last() const;

 private:
  SoundFile(FileStream stream, const SndfileFunctions& library);

  bool OpenAsShown();
  bool Mend();
  void CountFrames();
  std::int64_t ReadShown(std::uint8_t* bytes, std::int64_t count);
  std::size_t ReadHeader(std::int64_t place, std::uint8_t* bytes, std::size_t count);
  static sf_count_t Length(void* self);
  static sf_count_t Seek(sf_count_t offset, int whence, void* self);
  static sf_count_t Read(void* bytes, sf_count_t count, void* self);
  static sf_count_t Write(const void* bytes, sf_count_t count, void* self);
  static sf_count_t Tell(void* self);

  const SndfileFunctions* library_;
  FileStream stream_;
  // What libsndfile is shown: `head_`, then the file's bytes from `bodyPlace_` on.
  std::vector<std::uint8_t> head_;
  std::int64_t bodyPlace_ = 0;
  std::int64_t size_ = 0;   ///< of all that, in bytes
  std::int64_t place_ = 0;  ///< where libsndfile stands in it
  bool mended_ = false;
  std::int64_t bytesLeft_;  ///< that may still be read; see kMostHeaderBytes
  std::int64_t readsLeft_;
  int readError_ = 0;
  /// A stretch of the file while it is opened: libsndfile asks for a header in some twenty pieces.
  std::vector<std::uint8_t> block_;
  std::int64_t blockPlace_ = 0;
  SF_INFO info_{};
  SNDFILE* file_ = nullptr;  ///< closed by the destructor
};

}  // namespace velmora::media
