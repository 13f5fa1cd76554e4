#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ADL/AES31Event.h"
#include "ADL/AES31SourceFile.h"
#include "ADL/LoadDiagnostic.h"
#include "ADL/LoadFailure.h"
#include "ADL/ProjectConstants.h"
#include "SlowScanner.h"

namespace velmora::test::differential {

/// Where a load ended, without the phrase that is meant for people.
struct SlowFailure {
  LoadFailureCode code = LoadFailureCode::IndexMissing;
  std::int64_t line = 0;
  std::string section;
  std::string label;
};

/// A project read by the plainest means from a slow tree: constants, sources and events, and what
/// is said of oddities. No file is ever opened: sources tell the path of theirs instead.
class SlowProject : public SlowTree {
 public:
  enum class Checks { Off, On };

  /// @param folder in which audio is looked for
  SlowProject(const std::string& text, const std::string& folder);

  /// Reads all sections once more, adding to what is there.
  void Read(Checks checks);

  [[nodiscard]] bool IsLoaded() const { return !failure.has_value(); }
  /// Null without a file.
  [[nodiscard]] const std::string* FileOfEvent(std::size_t event) const;

  std::array<const char*, kProjectConstants.size()> constants{};
  std::map<std::int32_t, AES31SourceFile> sourceFiles;  ///< `file` stays null
  std::map<std::int32_t, std::string> sourcePaths;      ///< of the sources that have a file
  std::vector<AES31Event> events;                       ///< `sourceFile` stays null
  std::optional<SlowFailure> failure;
  std::vector<LoadDiagnostic> diagnostics;
  std::string said;  ///< on standard error

 private:
  bool ReadSection(const SlowSection& section, Checks checks);
  void ReadConstants(const SlowSection& section);
  bool ReadSources(const SlowSection& section, Checks checks);
  bool ReadEvents(const SlowSection& section, Checks checks);
  bool ReadEventLine(AES31Event& event, bool& editSeen, const SlowSection& section,
                     const SlowEntry& entry, Checks checks);
  bool Fail(LoadFailureCode code, const SlowSection& section, const SlowEntry& entry);
  void Tolerate(LoadDiagnosticCode code, const SlowEntry& entry, const std::string& line);
  [[nodiscard]] std::int64_t LineOf(const SlowEntry& entry) const;
  void Resolve(const std::string& folder);
  void Link();

  std::string text_;  ///< before it was cut up
};

}  // namespace velmora::test::differential
