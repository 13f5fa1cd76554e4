#pragma once

#include <memory>
#include <string>

#include "Base/FileAccess.h"
#include "Session/InTheMaking.h"

namespace velmora::host {

/// A file that appears under its name whole or not at all: it is written beside that name, under a
/// hidden one, and takes it when it is done. Nothing that holds the name is ever replaced. A
/// process that is killed leaves the hidden one; the next that makes something in that folder
/// removes it.
class StagedFile {
 public:
  /// Why `path` (absolute) cannot be claimed for a new file: something holds the name, even a link,
  /// or its folder is not there or takes no files. Empty if nothing stands against it. Makes
  /// nothing.
  [[nodiscard]] static std::string WhyNot(const std::string& path);

  explicit StagedFile(std::string path) : path_(std::move(path)) {}
  /// Removes what was not published.
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  /// Creates the hidden file, open for writing. False if that fails: errno tells why.
  [[nodiscard]] bool Create();
  /// Null before Create and after Close.
  [[nodiscard]] std::FILE* Stream() const { return stream_.get(); }
  /// The hidden file, for libraries that open it themselves.
  [[nodiscard]] const std::string& WrittenPath() const { return written_; }
  /// Closes the stream. 0, or the errno of a write that failed only now.
  [[nodiscard]] int Close();
  /// Gives the closed file its name. 0, EEXIST if the name has been taken meanwhile, or another
  /// errno.
  [[nodiscard]] int Publish();
  /// Leaves the hidden file to its maker, who has moved it.
  void Forget() { written_.clear(); }

  /// "PATH cannot be written: No space left on device"; of EEXIST that PATH has appeared meanwhile.
  [[nodiscard]] std::string Trouble(int error) const;

 private:
  std::string path_;
  std::string written_;
  FileStream stream_;
  InTheMaking making_;
};

}  // namespace velmora::host
