#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ADL/AES31Project.h"
#include "Support/CapturedStandardError.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {

/// Constructs a project and keeps what the construction said.
struct Loading {
  explicit Loading(const std::string& path, const char* searchFolder = nullptr) {
    CapturedStandardError captured;
    project = std::make_unique<AES31Project>(path.c_str(), searchFolder, &ok);
    standardError = captured.Text();
  }
  AES31Project* operator->() const { return project.get(); }

  bool ok = false;
  std::string standardError;
  std::unique_ptr<AES31Project> project;
};

/// One file for many loads in turn. It is removed before it is written anew, which spares the disk
/// that some file systems wait for when a file is overwritten.
class ReusedFile {
 public:
  explicit ReusedFile(const TemporaryFolder& folder) : folder_(folder) {}
  std::string Holding(std::string_view bytes) const {
    std::filesystem::remove(folder_.Path("project.adl"));
    return folder_.Write("project.adl", bytes);
  }

 private:
  const TemporaryFolder& folder_;
};

/// A project loaded from the bytes of an ADL file, which lies in a folder of its own.
struct LoadedProject {
  explicit LoadedProject(std::string_view adl)
      : bytes(adl), path(folder.Write("project.adl", adl)), loading(path) {}
  AES31Project* operator->() const { return loading.project.get(); }
  bool ok() const { return loading.ok; }
  const std::string& standardError() const { return loading.standardError; }

  TemporaryFolder folder;
  std::string bytes;
  std::string path;
  Loading loading;
};

/// The texts of a list as one text: `a|b`, null as `~`.
inline std::string Shown(const char* text) {
  return text == nullptr ? "~" : text;
}

template <class Texts>
std::string ShownTexts(const Texts& texts) {
  std::string shown;
  for (const char* text : texts) shown += (shown.empty() ? "" : "|") + Shown(text);
  return shown;
}

/// A scanned section in one line: `NAME{label:value|value; label:}`.
inline std::string Shown(const AES31Section& section) {
  std::string entries;
  for (const AES31Entry& entry : section.entries) {
    entries += (entries.empty() ? "" : "; ") + Shown(entry.label) + ":" + ShownTexts(entry.values);
  }
  return Shown(section.name) + "{" + entries + "}";
}

/// A scanned tree: the sections one after the other.
inline std::string Shown(const std::vector<AES31Section>& sections) {
  std::string shown;
  for (const AES31Section& section : sections) {
    shown += (shown.empty() ? "" : " ") + Shown(section);
  }
  return shown;
}

inline std::string Shown(const std::vector<std::vector<AES31Section>>& lists) {
  std::string shown;
  for (const auto& list : lists) shown += "[" + Shown(list) + "]";
  return shown;
}

/// An ADL file with one EVENT_LIST section of these lines.
inline std::string WithEvents(const std::string& lines) {
  return "<ADL>\n<EVENT_LIST>\n" + lines + "\n</EVENT_LIST>\n</ADL>\n";
}

/// An ADL file with one SOURCE_INDEX section of these lines.
inline std::string WithSources(const std::string& lines) {
  return "<ADL>\n<SOURCE_INDEX>\n" + lines + "\n</SOURCE_INDEX>\n</ADL>\n";
}

}  // namespace velmora::test
