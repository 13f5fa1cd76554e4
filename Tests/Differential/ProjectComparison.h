#pragma once

#include <string>

#include "Support/TemporaryFolder.h"

namespace velmora::test::differential {

/// Holds the project that people load against the slow one.
class ProjectComparison {
 public:
  ProjectComparison();

  /// Loads a text by both: tree, constants, sources, events, oddities, failure and the words on
  /// standard error. Returns the first difference, empty if there is none.
  std::string OfLoad(const std::string& text);

  /// Reads a text's sections by both, without checks. The project's sections are put together by
  /// hand from the slow tree.
  std::string OfUncheckedReaders(const std::string& text);

  /// The same with checks; each ends at the first section that fails.
  std::string OfCheckedReaders(const std::string& text);

 private:
  std::string Write(const std::string& text);

  TemporaryFolder folder_;
  std::string path_;
  std::string emptyPath_;
};

}  // namespace velmora::test::differential
