#include "Peaks/PeakDesk.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace velmora::peaks {

void PeakDesk::Want(const std::vector<WaveformNeed>& needs) {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  std::set<PartName> wanted;
  for (const WaveformNeed& need : needs) {
    parts_.AddNames(need.path, need.grid, need.first, need.count, wanted);
  }
  parts_.NewView();
  Queue(wanted);
  runningWanted_ = running_ && wanted.contains(*running_);
  stop_ = running_ && !runningWanted_ && !waiting_.empty();
  if (!waiting_.empty() && HaveThread()) wake_.notify_one();
}

/// Puts what is to be read in order: what is wanted newly, what waits already, and at the end what
/// is there and to be looked at again.
void PeakDesk::Queue(const std::set<PartName>& wanted) {
  const Clock::time_point oldest = Clock::now() - limits_.age;
  std::deque<PartName> missing;
  std::vector<PartName> old;
  for (const PartName& name : wanted) {
    const PeakParts::State state = parts_.Mark(name, oldest);
    if (name == running_) continue;
    if (state == PeakParts::State::Missing) missing.push_back(name);
    if (state == PeakParts::State::Old) old.push_back(name);
  }
  for (const PartName& name : wanted) {
    if (name != running_ && parts_.WouldFit(name)) missing.push_back(name);
  }
  const std::set<PartName> before(waiting_.begin(), waiting_.end());
  waiting_ = std::move(missing);
  std::stable_partition(waiting_.begin(), waiting_.end(),
                        [&](const PartName& name) { return !before.contains(name); });
  waiting_.insert(waiting_.end(), old.begin(), old.end());
}

void PeakDesk::AddColumns(const std::string& path, const ColumnGrid& grid, std::int64_t first,
                          std::span<Peak> columns) const {
  const std::lock_guard lock(mutex_);
  parts_.AddColumns(path, grid, first, columns);
}

std::set<std::string> PeakDesk::TakeArrived() {
  const std::lock_guard lock(mutex_);
  return std::exchange(arrivedPaths_, {});
}

bool PeakDesk::IsReading() const {
  const std::lock_guard lock(mutex_);
  return !waiting_.empty() || (running_ && runningWanted_);
}

std::size_t PeakDesk::Bytes() const {
  const std::lock_guard lock(mutex_);
  return parts_.Bytes();
}

void PeakDesk::Close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    stop_ = true;
    waiting_.clear();
    arrivedPaths_.clear();
    wake_.notify_one();
  }
  if (thread_.joinable()) thread_.join();
}

bool PeakDesk::HaveThread() {
  if (thread_.joinable()) return true;
  try {
    thread_ = std::thread([this] { WorkOff(); });
  } catch (const std::system_error&) {
    waiting_.clear();  // the window goes on without waveforms
    return false;
  }
  return true;
}

void PeakDesk::WorkOff() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return closed_ || !waiting_.empty(); });
    if (closed_) return;
    const PartName name = waiting_.front();
    waiting_.pop_front();
    running_ = name;
    runningWanted_ = true;
    stop_ = false;
    const FileStamp* const there = parts_.StampOf(name);
    const std::optional<FileStamp> known = there ? std::optional(*there) : std::nullopt;
    lock.unlock();

    std::atomic<bool> given = false;  // once given up, the part is not whole
    ReadPart part = ReadPartOf(name, known ? &*known : nullptr, [&] {
      if (stop_) given = true;
      return given.load();
    });

    lock.lock();
    running_.reset();
    if (closed_) return;
    if (given) {
      if (runningWanted_) waiting_.push_front(name);  // it came back into view meanwhile
      continue;
    }
    if (part.isUnchanged) {
      parts_.Confirm(name, Clock::now());
      continue;
    }
    parts_.Put(name, std::move(part), Clock::now());
    const bool isFirst = arrivedPaths_.empty();
    arrivedPaths_.insert(name.path);
    if (!isFirst) continue;
    lock.unlock();
    arrived_();
    lock.lock();
  }
}

}  // namespace velmora::peaks
