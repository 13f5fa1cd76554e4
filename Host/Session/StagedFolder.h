#pragma once

#include <string>

#include "Session/InTheMaking.h"

namespace velmora::host {

/// A folder that appears under its name whole or not at all: it is filled beside that name, under a
/// hidden one, and takes it when it is done. Nothing that holds the name is ever replaced. A
/// process that is killed leaves the hidden one; the next that makes something beside it removes
/// it.
class StagedFolder {
 public:
  /// Why `path` (absolute) cannot be claimed for a new folder: see StagedFile::WhyNot. Empty if
  /// nothing stands against it. Makes nothing.
  [[nodiscard]] static std::string WhyNot(const std::string& path);

  explicit StagedFolder(std::string path);
  /// Removes what was not published, with all that is in it.
  ~StagedFolder();
  StagedFolder(const StagedFolder&) = delete;
  StagedFolder& operator=(const StagedFolder&) = delete;

  /// Makes the hidden folder, with the rights that new folders get. False if that fails: errno
  /// tells why.
  [[nodiscard]] bool Create();
  /// The hidden folder, absolute. Empty before Create and after Publish.
  [[nodiscard]] const std::string& WrittenPath() const { return written_; }
  /// Gives the folder its name. 0, EEXIST if the name has been taken meanwhile, or another errno.
  [[nodiscard]] int Publish();

  /// As StagedFile::Trouble.
  [[nodiscard]] std::string Trouble(int error) const;

 private:
  std::string path_;
  std::string written_;
  InTheMaking making_;
};

}  // namespace velmora::host
