#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

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

  double done = 0;
  bool goesOn = true;
  for (FileRow& row : rows) {
    if (row.state == "made" && !row.isFolder && row.path != "-") {
      row.sum = ChecksumOf(row.path, [&] {
        goesOn = !progress || progress(done / static_cast<double>(rows.size()));
        return goesOn;
      });
    }
    if (!goesOn) return std::nullopt;
    ++done;
  }
  return rows;
}

}  // namespace velmora::report
