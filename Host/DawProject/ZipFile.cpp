// Made by the description of the format: PKWARE's APPNOTE.TXT, whose sections are named here.

#include "DawProject/ZipFile.h"

// Else zlib takes what it only reads as if it wrote to it.
#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <new>

namespace velmora::dawproject {
namespace {

constexpr std::uint16_t kStored = 0;  // 4.4.5
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kFlags = 1U << 11 | 3U << 1;  // 4.4.4: names are UTF-8; deflated fast
constexpr std::uint16_t kPlainVersion = 20;           // 4.4.3
constexpr std::uint16_t kZip64Version = 45;
constexpr std::uint16_t kMadeByUnix = 3U << 8 | kZip64Version;           // 4.4.2
constexpr std::uint32_t kFileOfItsOwner = std::uint32_t{0100644} << 16;  // 4.4.15: mode of Unix
constexpr std::uint32_t kInZip64 = 0xFFFFFFFF;  // 4.4.8: the true one is there
constexpr std::uint16_t kZip64Id = 1;           // 4.5.3
constexpr std::uint64_t kHeaderBytes = 30;      // 4.3.7, without the name
constexpr std::uint64_t kChecksumInHeader = 14;

/// A record: numbers are little-endian (4.4.1.1).
class Record {
 public:
  explicit Record(std::uint32_t signature) { Add32(signature); }
  Record() = default;

  void Add16(std::uint64_t number) { Add(number, 2); }
  void Add32(std::uint64_t number) { Add(number, 4); }
  void Add64(std::uint64_t number) { Add(number, 8); }
  /// A number that may be too large for its field.
  void AddOrMark(std::uint64_t number) { Add32(std::min<std::uint64_t>(number, kInZip64)); }
  void Add(const std::string& text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

 private:
  void Add(std::uint64_t number, int count) {
    for (; count > 0; --count, number >>= 8) {
      bytes_.push_back(static_cast<std::uint8_t>(number & 0xFF));
    }
  }

  std::vector<std::uint8_t> bytes_;
};

bool IsLong(std::uint64_t number) {
  return number >= kInZip64;
}

/// 4.4.6: two seconds are the unit, and 1980 the first year. 0 if the system cannot tell the time.
std::uint32_t DosTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (::localtime_r(&now, &local) == nullptr || local.tm_year < 80) return 0;
  const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
  const std::uint32_t date =
      number(local.tm_mday) | number(local.tm_mon + 1) << 5 | number(local.tm_year - 80) << 9;
  const std::uint32_t time =
      number(local.tm_sec / 2) | number(local.tm_min) << 5 | number(local.tm_hour) << 11;
  return date << 16 | time;
}

}  // namespace

/// Deflates one entry.
class ZipFile::Deflater {
 public:
  Deflater() {
    constexpr int kMemoryLevel = 8;  // zlib's usual one
    const int status = deflateInit2(&stream_, Z_BEST_SPEED, Z_DEFLATED, -MAX_WBITS, kMemoryLevel,
                                    Z_DEFAULT_STRATEGY);
    if (status != Z_OK) throw std::bad_alloc();
  }
  ~Deflater() { deflateEnd(&stream_); }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;

  /// Hands on what is deflated to `put`. False as soon as that fails.
  template <typename Put>
  bool Take(const void* bytes, std::size_t count, int flush, const Put& put) {
    stream_.next_in = static_cast<const Bytef*>(bytes);
    stream_.avail_in = static_cast<uInt>(count);
    do {
      stream_.next_out = room_.data();
      stream_.avail_out = static_cast<uInt>(room_.size());
      deflate(&stream_, flush);
      if (!put(room_.data(), room_.size() - stream_.avail_out)) return false;
    } while (stream_.avail_out == 0);
    return true;
  }

  [[nodiscard]] bool SawText() const { return stream_.data_type == Z_TEXT; }

 private:
  z_stream stream_{};
  std::array<Bytef, std::size_t{1} << 16> room_{};
};

ZipFile::ZipFile(std::FILE* stream) : stream_(stream) {}
ZipFile::~ZipFile() = default;

bool ZipFile::Fail() {
  if (error_ == 0) error_ = errno != 0 ? errno : EIO;
  return false;
}

bool ZipFile::Put(const void* bytes, std::size_t count) {
  errno = 0;
  if (count > 0 && std::fwrite(bytes, 1, count, stream_) != count) return Fail();
  place_ += count;
  return true;
}

/// In the place of what is written there, and back to the end.
bool ZipFile::PutAt(std::uint64_t place, const std::vector<std::uint8_t>& bytes) {
  errno = 0;
  const bool done = ::fseeko(stream_, static_cast<off_t>(place), SEEK_SET) == 0 &&
                    std::fwrite(bytes.data(), 1, bytes.size(), stream_) == bytes.size() &&
                    ::fseeko(stream_, static_cast<off_t>(place_), SEEK_SET) == 0;
  return done || Fail();
}

/// A part of an entry's bytes as they stand in the file.
bool ZipFile::PutPart(const void* bytes, std::size_t count) {
  entries_.back().packed += count;
  return Put(bytes, count);
}

bool ZipFile::Begin(const std::string& name, Packing packing, std::int64_t mostBytes) {
  if (error_ != 0) return false;
  Entry& entry = entries_.emplace_back();
  entry.name = name;
  entry.time = DosTimeNow();
  entry.method = packing == Packing::Deflated ? kDeflated : kStored;
  entry.hasLongSizes = IsLong(static_cast<std::uint64_t>(mostBytes));
  entry.place = place_;
  if (packing == Packing::Deflated) deflater_ = std::make_unique<Deflater>();
  Record header(0x04034B50);  // 4.3.7
  header.Add16(entry.hasLongSizes ? kZip64Version : kPlainVersion);
  header.Add16(kFlags);
  header.Add16(entry.method);
  header.Add32(entry.time);
  header.Add32(0);  // checksum and sizes are put in by End
  header.Add32(entry.hasLongSizes ? kInZip64 : 0);
  header.Add32(entry.hasLongSizes ? kInZip64 : 0);
  header.Add16(name.size());
  header.Add16(entry.hasLongSizes ? 20 : 0);
  header.Add(name);
  if (entry.hasLongSizes) {
    header.Add16(kZip64Id);
    header.Add16(16);
    header.Add64(0);
    header.Add64(0);
  }
  return Put(header.Bytes());
}

bool ZipFile::Write(const void* bytes, std::size_t count) {
  constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;  // zlib counts in 32 bits
  const auto put = [this](const void* part, std::size_t size) { return PutPart(part, size); };
  const auto* place = static_cast<const std::uint8_t*>(bytes);
  while (count > 0 && error_ == 0) {
    const std::size_t part = std::min(count, kMostAtOnce);
    Entry& entry = entries_.back();
    entry.size += part;
    entry.checksum =
        static_cast<std::uint32_t>(crc32(entry.checksum, place, static_cast<uInt>(part)));
    // A failure is noted.
    static_cast<void>(deflater_ != nullptr ? deflater_->Take(place, part, Z_NO_FLUSH, put)
                                           : put(place, part));
    place += part;
    count -= part;
  }
  return error_ == 0;
}

bool ZipFile::End() {
  if (error_ != 0) return false;
  Entry& entry = entries_.back();
  if (deflater_ != nullptr) {
    const auto put = [this](const void* part, std::size_t size) { return PutPart(part, size); };
    if (!deflater_->Take(nullptr, 0, Z_FINISH, put)) return false;
    entry.isText = deflater_->SawText();
    deflater_.reset();
  }
  Record known;
  known.Add32(entry.checksum);
  if (!IsLong(entry.size) && !IsLong(entry.packed)) {
    known.Add32(entry.packed);
    known.Add32(entry.size);
    return PutAt(entry.place + kChecksumInHeader, known.Bytes());
  }
  if (!entry.hasLongSizes) {
    errno = EFBIG;  // more than was told
    return Fail();
  }
  Record sizes;  // 4.5.3: the other way round
  sizes.Add64(entry.size);
  sizes.Add64(entry.packed);
  constexpr std::uint64_t kFieldHead = 4;
  return PutAt(entry.place + kChecksumInHeader, known.Bytes()) &&
         PutAt(entry.place + kHeaderBytes + entry.name.size() + kFieldHead, sizes.Bytes());
}

bool ZipFile::Finish() {
  if (error_ != 0) return false;
  const std::uint64_t directory = place_;
  for (const Entry& entry : entries_) {
    Record longNumbers;  // 4.5.3: those alone that their fields cannot hold
    for (const std::uint64_t number : {entry.size, entry.packed, entry.place}) {
      if (IsLong(number)) longNumbers.Add64(number);
    }
    const std::size_t longBytes = longNumbers.Bytes().size();
    Record record(0x02014B50);  // 4.3.12
    record.Add16(longBytes > 0 ? kZip64Version : kMadeByUnix);
    record.Add16(longBytes > 0 ? kZip64Version : kPlainVersion);
    record.Add16(kFlags);
    record.Add16(entry.method);
    record.Add32(entry.time);
    record.Add32(entry.checksum);
    record.AddOrMark(entry.packed);
    record.AddOrMark(entry.size);
    record.Add16(entry.name.size());
    record.Add16(longBytes > 0 ? longBytes + 4 : 0);
    record.Add16(0);                     // no comment
    record.Add16(0);                     // of the first disk
    record.Add16(entry.isText ? 1 : 0);  // 4.4.14
    record.Add32(kFileOfItsOwner);
    record.AddOrMark(entry.place);
    record.Add(entry.name);
    if (longBytes > 0) {
      record.Add16(kZip64Id);
      record.Add16(longBytes);
    }
    if (!Put(record.Bytes()) || !Put(longNumbers.Bytes())) return false;
  }
  const std::uint64_t directoryBytes = place_ - directory;
  constexpr std::uint64_t kMostEntries = 0xFFFF;
  Record end;
  if (IsLong(directory) || entries_.size() > kMostEntries) {
    Record zip64(0x06064B50);  // 4.3.14
    zip64.Add64(44);           // bytes of it that follow
    zip64.Add16(kZip64Version);
    zip64.Add16(kZip64Version);
    zip64.Add32(0);  // number of this disk, and of that of the directory
    zip64.Add32(0);
    zip64.Add64(entries_.size());
    zip64.Add64(entries_.size());
    zip64.Add64(directoryBytes);
    zip64.Add64(directory);
    zip64.Add32(0x07064B50);  // 4.3.15
    zip64.Add32(0);
    zip64.Add64(place_);
    zip64.Add32(1);  // one disk
    if (!Put(zip64.Bytes())) return false;
  }
  end.Add32(0x06054B50);  // 4.3.16
  end.Add16(0);
  end.Add16(0);
  end.Add16(std::min<std::uint64_t>(entries_.size(), kMostEntries));
  end.Add16(std::min<std::uint64_t>(entries_.size(), kMostEntries));
  end.AddOrMark(directoryBytes);
  end.AddOrMark(directory);
  end.Add16(0);  // no comment
  return Put(end.Bytes());
}

}  // namespace velmora::dawproject
