#include "DawProject/ZipFile.h"

#include <zip.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>

namespace velmora::dawproject {
namespace {

constexpr uLong kNamesAreUtf8 = 1U << 11;  // general purpose bit 11 (ZIP file format, 4.4.4)
constexpr uLong kMadeByUnix = 3U << 8 | 45;
constexpr std::int64_t kMostWithoutZip64 = 0xFFFFFFFE;
constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;

zip_fileinfo ToldNow() {
  zip_fileinfo info{};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (::localtime_r(&now, &local) == nullptr) return info;
  info.tmz_date.tm_sec = static_cast<uInt>(local.tm_sec);
  info.tmz_date.tm_min = static_cast<uInt>(local.tm_min);
  info.tmz_date.tm_hour = static_cast<uInt>(local.tm_hour);
  info.tmz_date.tm_mday = static_cast<uInt>(local.tm_mday);
  info.tmz_date.tm_mon = static_cast<uInt>(local.tm_mon);
  info.tmz_date.tm_year = static_cast<uInt>(local.tm_year + 1900);
  info.external_fa = uLong{0100644} << 16;  // a regular file that its owner may write
  return info;
}

}  // namespace

/// What minizip asks of a file, on a stream that is open already.
struct ZipFile::Calls {
  static std::FILE* StreamOf(voidpf target) { return static_cast<Target*>(target)->stream; }
  /// Notes a failure, which minizip passes over.
  static void Note(voidpf target, bool hasFailed) {
    int& error = static_cast<Target*>(target)->error;
    if (hasFailed && error == 0) error = errno != 0 ? errno : EIO;
  }

  static voidpf Open(voidpf target, const void* /*name*/, int /*mode*/) { return target; }
  static uLong Read(voidpf /*opaque*/, voidpf target, void* bytes, uLong count) {
    return std::fread(bytes, 1, count, StreamOf(target));
  }
  static uLong WriteBytes(voidpf /*opaque*/, voidpf target, const void* bytes, uLong count) {
    const uLong written = std::fwrite(bytes, 1, count, StreamOf(target));
    Note(target, written != count);
    return written;
  }
  static ZPOS64_T Tell(voidpf /*opaque*/, voidpf target) {
    const off_t place = ::ftello(StreamOf(target));
    Note(target, place < 0);
    return static_cast<ZPOS64_T>(place);
  }
  static long Seek(voidpf /*opaque*/, voidpf target, ZPOS64_T offset, int origin) {
    const int whence = origin == ZLIB_FILEFUNC_SEEK_CUR   ? SEEK_CUR
                       : origin == ZLIB_FILEFUNC_SEEK_END ? SEEK_END
                                                          : SEEK_SET;
    const int moved = ::fseeko(StreamOf(target), static_cast<off_t>(offset), whence);
    Note(target, moved != 0);
    return moved;
  }
  static int LeaveOpen(voidpf /*opaque*/, voidpf /*target*/) { return 0; }
  static int HasError(voidpf /*opaque*/, voidpf target) { return std::ferror(StreamOf(target)); }
};

ZipFile::ZipFile(std::FILE* stream) : target_{stream} {
  zlib_filefunc64_def file{};
  file.zopen64_file = Calls::Open;
  file.zread_file = Calls::Read;
  file.zwrite_file = Calls::WriteBytes;
  file.ztell64_file = Calls::Tell;
  file.zseek64_file = Calls::Seek;
  file.zclose_file = Calls::LeaveOpen;
  file.zerror_file = Calls::HasError;
  file.opaque = &target_;
  zip_ = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &file);
  if (zip_ == nullptr) error_ = ENOMEM;
}

ZipFile::~ZipFile() {
  // Frees it too. What it still writes goes to a file that nobody publishes.
  if (zip_ != nullptr) zipClose(zip_, nullptr);
}

bool ZipFile::Check(int status) {
  if (error_ == 0) error_ = target_.error;
  if (status != ZIP_OK && error_ == 0) error_ = errno != 0 ? errno : EIO;
  return error_ == 0;
}

bool ZipFile::Begin(const std::string& name, Packing packing, std::int64_t mostBytes) {
  if (error_ != 0) return false;
  errno = 0;
  const zip_fileinfo info = ToldNow();
  const int method = packing == Packing::Deflated ? Z_DEFLATED : 0;
  return Check(zipOpenNewFileInZip4_64(zip_, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                       method, Z_BEST_SPEED, 0, -MAX_WBITS, DEF_MEM_LEVEL,
                                       Z_DEFAULT_STRATEGY, nullptr, 0, kMadeByUnix, kNamesAreUtf8,
                                       mostBytes > kMostWithoutZip64 ? 1 : 0));
}

bool ZipFile::Write(const void* bytes, std::size_t count) {
  const auto* place = static_cast<const char*>(bytes);
  while (count > 0 && error_ == 0) {
    const std::size_t part = std::min(count, kMostAtOnce);
    errno = 0;
    Check(zipWriteInFileInZip(zip_, place, static_cast<unsigned>(part)));
    place += part;
    count -= part;
  }
  return error_ == 0;
}

bool ZipFile::End() {
  if (error_ != 0) return false;
  errno = 0;
  return Check(zipCloseFileInZip(zip_));
}

bool ZipFile::Finish() {
  if (error_ != 0) return false;
  errno = 0;
  void* const zip = zip_;
  zip_ = nullptr;
  return Check(zipClose(zip, nullptr));
}

}  // namespace velmora::dawproject
