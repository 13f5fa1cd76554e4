#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "Report/Checksum.h"
#include "Report/ReportData.h"

namespace velmora::report {
namespace {

using State = host::RecordedFile::State;

const char* NameOf(State state) {
  switch (state) {
    case State::Failed:
      return "failed";
    case State::Planned:
      return "planned";
    case State::Made:
      break;
  }
  return "made";
}

/// In the units that file managers use: "12.9 GB".
std::string SizeText(std::int64_t bytes) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.1f GB", static_cast<double>(bytes) / 1e9);
  return text.data();
}

/// Files of a folder that a target made, by name. Folders in it are passed over.
std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->is_regular_file(error)) paths.push_back(entry->path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

void AddTarget(const host::RecordedTarget& target, std::vector<FileRow>& rows) {
  FileRow row;
  row.what = target.name;
  row.path = target.path;
  row.state = target.isPlanned ? "planned" : target.trouble.empty() ? "made" : "failed";
  struct stat facts {};
  row.isFolder =
      row.state == "made" && ::stat(target.path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
  rows.push_back(row);
  if (!row.isFolder) return;
  row.isFolder = false;
  for (std::string& path : FilesIn(target.path)) {
    row.path = std::move(path);
    rows.push_back(row);
  }
}

bool IsMadeFile(const FileRow& row) {
  return row.state == "made" && !row.isFolder && row.path != "-";
}

/// Tells the sizes, and which files are too large for a checksum. Returns the bytes of the others.
std::int64_t AddSizes(std::vector<FileRow>& rows) {
  std::int64_t chosen = 0;
  for (FileRow& row : rows) {
    struct stat facts {};
    if (!IsMadeFile(row) || ::stat(row.path.c_str(), &facts) != 0) continue;
    row.bytes = std::int64_t{facts.st_size};
    if (facts.st_size > kMostSummedBytes - chosen) {
      row.noSha256 = "not computed: " + SizeText(facts.st_size);
    } else {
      chosen += facts.st_size;
    }
  }
  return chosen;
}

/// @return false if `goOn` ended it
bool AddChecksum(FileRow& row, const std::function<bool(std::int64_t bytes)>& goOn) {
  bool goesOn = true;
  Checksum sum = ChecksumOf(row.path, [&](std::int64_t bytes) { return goesOn = goOn(bytes); });
  if (sum.trouble.empty()) row.bytes = sum.bytes;
  row.sha256 = std::move(sum.sha256);
  row.noSha256 = std::move(sum.trouble);
  return goesOn;
}

}  // namespace

std::optional<std::vector<FileRow>> FilesOf(const host::TargetInput& input,
                                            const host::TargetProgress& progress) {
  std::vector<FileRow> rows;
  for (const host::RecordedFile& file : input.record.files) {
    FileRow row;
    row.what = file.pass;
    row.state = NameOf(file.state);
    row.event = file.event;
    row.path = file.path;
    rows.push_back(std::move(row));
  }
  for (const host::RecordedTarget& target : input.record.targets) AddTarget(target, rows);

  const std::int64_t all = AddSizes(rows);
  if (rows.size() > kMostSummedFiles) return rows;
  std::int64_t done = 0;
  const auto goOn = [&](std::int64_t bytes) {
    const auto share =
        static_cast<double>(done + bytes) / static_cast<double>(std::max(all, done + bytes));
    return !progress || progress(share);
  };
  for (FileRow& row : rows) {
    if (!IsMadeFile(row) || !row.noSha256.empty()) continue;
    if (!AddChecksum(row, goOn)) return std::nullopt;
    done += row.bytes.value_or(0);
  }
  return rows;
}

}  // namespace velmora::report
