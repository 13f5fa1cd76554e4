#include "Peaks/PeakParts.h"

#include <algorithm>
#include <utility>

namespace velmora::peaks {
namespace {

constexpr std::size_t kPartBytes = 256;  ///< of a part that holds nothing
constexpr std::int64_t kCoarsePage = 16;
constexpr std::int64_t kFinePage = 1;

/// Columns of few frames show them one by one.
std::int64_t PageStretch(double framesPerColumn) {
  return framesPerColumn >= 4 * kCoarsePage ? kCoarsePage : kFinePage;
}

}  // namespace

const PeakParts::Part* PeakParts::Find(const PartName& name) const {
  const auto file = files_.find(name.path);
  if (file == files_.end()) return nullptr;
  const auto part = file->second.find({name.stretch, name.page});
  return part == file->second.end() ? nullptr : &part->second;
}

void PeakParts::AddNames(const std::string& path, const ColumnGrid& grid, std::int64_t first,
                         std::int64_t count, std::set<PartName>& names) const {
  if (count <= 0) return;
  const Part* const whole = Find({path, 0, 0});
  const bool known = whole != nullptr && whole->read.pyramid != nullptr;
  const std::int64_t finest = known ? whole->read.pyramid->Finest() : Pyramid::kFinest;
  if (grid.framesPerColumn >= static_cast<double>(finest)) {
    names.insert({path, 0, 0});
    return;
  }
  const std::int64_t stretch = PageStretch(grid.framesPerColumn);
  const std::int64_t frames = stretch * kPagePeaks;
  const std::int64_t from = std::max<std::int64_t>(grid.Edge(first), 0);
  const std::int64_t last = std::max(grid.Edge(first + count) - 1, grid.Edge(first));
  for (std::int64_t page = from / frames; page * frames <= last; ++page) {
    names.insert({path, stretch, page});
  }
}

PeakParts::State PeakParts::Mark(const PartName& name,
                                 std::chrono::steady_clock::time_point oldest) {
  const auto file = files_.find(name.path);
  if (file == files_.end()) return State::Missing;
  const auto part = file->second.find({name.stretch, name.page});
  if (part == file->second.end()) return State::Missing;
  part->second.view = view_;
  if (part->second.turnedAway != 0) return State::Fresh;  // WouldFit tells when to try again
  return part->second.known < oldest ? State::Old : State::Fresh;
}

std::size_t PeakParts::BytesOnView() const {
  std::size_t bytes = 0;
  for (const auto& [path, parts] : files_) {
    for (const auto& [name, part] : parts) bytes += part.view == view_ ? part.bytes : 0;
  }
  return bytes;
}

bool PeakParts::WouldFit(const PartName& name) const {
  const Part* const part = Find(name);
  if (part == nullptr || part->turnedAway == 0) return false;
  return BytesOnView() + part->turnedAway <= mostBytes_;
}

const FileStamp* PeakParts::StampOf(const PartName& name) const {
  const Part* const part = Find(name);
  return part == nullptr || part->turnedAway != 0 ? nullptr : &part->read.stamp;
}

void PeakParts::MakeRoomFor(std::size_t bytes) {
  struct Old {
    std::uint64_t view;
    PartName name;
  };
  std::vector<Old> old;
  for (const auto& [path, parts] : files_) {
    for (const auto& [name, part] : parts) {
      if (part.view != view_) old.push_back({part.view, {path, name.first, name.second}});
    }
  }
  std::sort(old.begin(), old.end(), [](const Old& a, const Old& b) { return a.view < b.view; });
  // A little more room than is needed, so that not every part that comes asks for it again.
  const std::size_t fitting = mostBytes_ - mostBytes_ / 8;
  for (const Old& each : old) {
    if (bytes_ + bytes <= fitting) return;
    const auto file = files_.find(each.name.path);
    const auto part = file->second.find({each.name.stretch, each.name.page});
    bytes_ -= part->second.bytes;
    file->second.erase(part);
    if (file->second.empty()) files_.erase(file);
  }
}

void PeakParts::Put(const PartName& name, ReadPart read,
                    std::chrono::steady_clock::time_point now) {
  const std::size_t bytes = kPartBytes + name.path.size() + read.page.capacity() * sizeof(Peak) +
                            (read.pyramid ? read.pyramid->Bytes() : 0);
  Part& part = files_[name.path][{name.stretch, name.page}];
  bytes_ -= std::exchange(part.bytes, 0);
  part.view = view_;  // so that it does not make room for itself
  part.read = {};
  if (bytes_ + bytes > mostBytes_) MakeRoomFor(bytes);
  part.known = now;
  part.turnedAway = bytes_ + bytes > mostBytes_ ? bytes : 0;
  part.bytes = part.turnedAway != 0 ? 0 : bytes;
  if (part.turnedAway == 0) part.read = std::move(read);
  bytes_ += part.bytes;
}

void PeakParts::Confirm(const PartName& name, std::chrono::steady_clock::time_point now) {
  const auto file = files_.find(name.path);
  if (file == files_.end()) return;
  const auto part = file->second.find({name.stretch, name.page});
  if (part != file->second.end()) part->second.known = now;
}

/// A column out of pages. `isWhole` says whether they are all there.
void PeakParts::AddColumn(const FileParts& parts, std::int64_t stretch, std::int64_t from,
                          std::int64_t to, Peak& column, bool& isWhole) {
  const std::int64_t end = std::max(from / stretch + 1, to / stretch);
  isWhole = true;
  for (std::int64_t peak = from / stretch; peak < end;) {
    const std::int64_t page = peak / kPagePeaks;
    const std::int64_t stop = std::min(end, (page + 1) * kPagePeaks);
    const auto found = parts.find({stretch, page});
    if (found == parts.end() || found->second.turnedAway != 0) {
      isWhole = false;
      return;
    }
    const std::vector<Peak>& peaks = found->second.read.page;
    const auto size = static_cast<std::int64_t>(peaks.size());
    for (std::int64_t i = peak % kPagePeaks; i < std::min(size, stop - page * kPagePeaks); ++i) {
      column.Add(peaks[static_cast<std::size_t>(i)]);
    }
    peak = stop;
  }
}

void PeakParts::AddColumns(const std::string& path, const ColumnGrid& grid, std::int64_t first,
                           std::span<Peak> columns) const {
  const auto file = files_.find(path);
  if (file == files_.end()) return;
  const auto whole = file->second.find({0, 0});
  const Pyramid* const pyramid =
      whole == file->second.end() ? nullptr : whole->second.read.pyramid.get();
  const std::int64_t finest = pyramid != nullptr ? pyramid->Finest() : Pyramid::kFinest;
  if (grid.framesPerColumn >= static_cast<double>(finest)) {
    if (pyramid != nullptr) pyramid->AddColumns(grid, first, columns);
    return;
  }
  const std::int64_t stretch = PageStretch(grid.framesPerColumn);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::int64_t column = first + static_cast<std::int64_t>(i);
    const std::int64_t from = std::max<std::int64_t>(grid.Edge(column), 0);
    const std::int64_t to = std::max(grid.Edge(column + 1), grid.Edge(column) + 1);
    if (from >= to) continue;
    bool isWhole = false;
    Peak fine;
    AddColumn(file->second, stretch, from, to, fine, isWhole);
    if (isWhole) {
      columns[i].Add(fine);
    } else if (pyramid != nullptr) {
      pyramid->AddColumns(grid, column, columns.subspan(i, 1));  // until the page has come
    }
  }
}

}  // namespace velmora::peaks
