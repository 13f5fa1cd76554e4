#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::report {

/// How much a message matters.
enum class Weight { Failure, Warning, Note };

/// The word in the page and its facts: "failure", "warning", "note".
[[nodiscard]] const char* NameOf(Weight weight);

/// A row of the table of messages.
struct MessageRow {
  Weight weight = Weight::Note;
  std::string kind;  ///< who says it: "spot", "left out", "check", "target"
  std::string code;  ///< of a finding; else empty
  std::optional<std::int64_t> line;
  std::optional<std::int32_t> event;
  std::optional<std::int32_t> entry;
  std::string text;
  std::string effect;
  std::string remedy;
};

/// A row of the table of files.
struct FileRow {
  std::string what;   ///< "depth", "gain", "fade", or the name of a target
  std::string state;  ///< "made", "failed", "planned"
  std::optional<std::int32_t> event;
  std::string path;
  bool isFolder = false;
  std::optional<std::int64_t> bytes;  ///< of a file that was made
  std::string sha256;                 ///< 64 hexadecimal digits, or empty
  std::string noSha256;               ///< why a file that was made has none
};

/// What the page shows beside the session and the record.
struct ReportData {
  std::vector<MessageRow> messages;  ///< the gravest first
  std::vector<FileRow> files;        ///< in order of making
};

inline constexpr std::int64_t kMostSummedBytes = std::int64_t{2} << 30;
inline constexpr std::size_t kMostSummedFiles = 10'000;

/// Every warning, finding and failure of a run.
[[nodiscard]] std::vector<MessageRow> MessagesOf(const host::TargetInput& input);

/// Every file that the run made or would make, with size and checksum. A page must not keep people
/// waiting for its checksums: files that would bring those read to more than kMostSummedBytes are
/// told by their sizes alone, and so are all if there are more than kMostSummedFiles.
/// @return none if `progress`, which may be empty, answered false
[[nodiscard]] std::optional<std::vector<FileRow>> FilesOf(const host::TargetInput& input,
                                                          const host::TargetProgress& progress);

}  // namespace velmora::report
