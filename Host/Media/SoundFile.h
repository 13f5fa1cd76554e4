#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Base/FileAccess.h"

namespace velmora::media {

/// A sound file open for reading by libsndfile. Only regular files are opened, and never by what
/// their names end in: headerless audio is none. Opening reads a bounded part of the file, so that
/// noise of gigabytes takes no time.
///
/// Two kinds of wave files are shown to libsndfile in another form, as it refuses them though their
/// audio is plain: BW64, which differs from RF64 in its name alone, and files whose chunks stand in
/// an unusual order or without pad bytes.
class SoundFile {
 public:
  /// Null if it cannot be opened; then `trouble` says why, in plain words.
  [[nodiscard]] static std::unique_ptr<SoundFile> Open(const std::string& path,
                                                       std::string& trouble);
  /// The same with a stream that is open already, which must be one of a regular file.
  [[nodiscard]] static std::unique_ptr<SoundFile> Open(FileStream stream, std::string& trouble);
  ~SoundFile();
  SoundFile(const SoundFile&) = delete;
  SoundFile& operator=(const SoundFile&) = delete;

  [[nodiscard]] const SF_INFO& Info() const { return info_; }
  [[nodiscard]] int Container() const { return info_.format & SF_FORMAT_TYPEMASK; }
  [[nodiscard]] int Encoding() const { return info_.format & SF_FORMAT_SUBMASK; }
  [[nodiscard]] SNDFILE* Handle() const { return file_; }
  [[nodiscard]] std::FILE* Stream() const { return stream_.get(); }
  /// The errno of the last read that failed since the file was opened, 0 if none did. libsndfile
  /// itself does not tell a failed read from the end of a file.
  [[nodiscard]] int ReadError() const { return readError_; }
  /// True if libsndfile refuses the file as it is.
  [[nodiscard]] bool IsMended() const { return mended_; }

 private:
  explicit SoundFile(FileStream stream);

  bool OpenAsShown();
  bool Mend();
  void CountFrames();
  std::int64_t ReadShown(std::uint8_t* bytes, std::int64_t count) const;
  static sf_count_t Length(void* self);
  static sf_count_t Seek(sf_count_t offset, int whence, void* self);
  static sf_count_t Read(void* bytes, sf_count_t count, void* self);
  static sf_count_t Write(const void* bytes, sf_count_t count, void* self);
  static sf_count_t Tell(void* self);

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
  SF_INFO info_{};
  SNDFILE* file_ = nullptr;  ///< closed by the destructor
};

}  // namespace velmora::media
