#pragma once

#include <string>
#include <utility>

#include "Base/FileAccess.h"

namespace velmora {

/// A file that is about to be written. Its maker creates it once, and keeps it when there is
/// something to write into it.
class OutputFile {
 public:
  virtual ~OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Final once Create has returned.
  [[nodiscard]] virtual const std::string& Path() { return path_; }

  /// The new file, open for writing; null if it cannot be created.
  [[nodiscard]] virtual FileStream Create() = 0;

  /// Says that the created file stays, even one that comes out short.
  virtual void Keep() {}
  /// Takes that back: nobody wants the file any more.
  virtual void Discard() {}

 protected:
  explicit OutputFile(std::string path) : path_(std::move(path)) {}

  std::string path_;
};

/// A file at the path that the caller names: created, or emptied if it is there. It always stays.
class NamedFile : public OutputFile {
 public:
  explicit NamedFile(const char* path) : OutputFile(path) {}
  [[nodiscard]] FileStream Create() override { return CreateFile(path_.c_str()); }
};

}  // namespace velmora
