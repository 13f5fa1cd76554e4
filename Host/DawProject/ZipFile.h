#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace velmora::dawproject {

/// Writes a ZIP file to an open stream, entry by entry. Sizes beyond 4 GiB are told as ZIP64.
/// After a failure all further calls fail, and Error() tells the first cause.
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
  bool Check(int status);

  /// What the library writes to. It does not look whether it moves.
  struct Target {
    std::FILE* stream;
    int error = 0;
  };
  struct Calls;

  Target target_;
  void* zip_ = nullptr;
  int error_ = 0;
};

}  // namespace velmora::dawproject
