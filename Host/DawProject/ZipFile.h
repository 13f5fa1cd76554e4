#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace velmora::dawproject {

/// Writes a ZIP file to an open stream, entry by entry. Sizes beyond 4 GiB are told as ZIP64.
/// After a failure all further calls fail, and Error() tells the first cause. All of them may throw
/// std::bad_alloc.
class ZipFile {
 public:
  enum class Packing { Deflated, Stored };

  /// Does not own the stream, which must be empty, be seekable and outlive this.
  explicit ZipFile(std::FILE* stream);
  /// Leaves an unfinished file unfinished.
  ~ZipFile();
  ZipFile(const ZipFile&) = delete;
  ZipFile& operator=(const ZipFile&) = delete;

  /// Begins an entry, after the end of the one before it.
  /// @param name UTF-8, with slashes between folders
  /// @param mostBytes that the entry may have
  [[nodiscard]] bool Begin(const std::string& name, Packing packing, std::int64_t mostBytes);
  [[nodiscard]] bool Write(const void* bytes, std::size_t count);
  [[nodiscard]] bool End();
  /// Writes what follows the last entry. The stream stays open.
  [[nodiscard]] bool Finish();

  /// The errno of the first failure, 0 without one.
  [[nodiscard]] int Error() const { return error_; }

 private:
  class Deflater;

  struct Entry {
    std::string name;
    std::uint32_t time = 0;  ///< as MS-DOS writes date and time
    std::uint16_t method = 0;
    bool isText = false;
    bool hasLongSizes = false;   ///< in front of it there is room for 64-bit sizes
    std::uint32_t checksum = 0;  ///< CRC-32
    std::uint64_t packed = 0;    ///< bytes
    std::uint64_t size = 0;      ///< bytes
    std::uint64_t place = 0;     ///< of its header, from the beginning of the file
  };

  bool Fail();
  bool Put(const void* bytes, std::size_t count);
  bool Put(const std::vector<std::uint8_t>& bytes) { return Put(bytes.data(), bytes.size()); }
  bool PutAt(std::uint64_t place, const std::vector<std::uint8_t>& bytes);
  bool PutPart(const void* bytes, std::size_t count);

  std::FILE* stream_;
  std::uint64_t place_ = 0;  ///< bytes written
  std::vector<Entry> entries_;
  std::unique_ptr<Deflater> deflater_;  ///< of an entry that is being deflated
  int error_ = 0;
};

}  // namespace velmora::dawproject
