#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "Peaks/Peak.h"
#include "Peaks/PeakParts.h"
#include "Peaks/Pyramid.h"

namespace velmora::peaks {

/// What a view shows of one file.
struct WaveformNeed {
  std::string path;
  ColumnGrid grid;
  std::int64_t first = 0;  ///< column
  std::int64_t count = 0;  ///< columns
};

/// Reads what a view shows of audio files on a thread of its own, and keeps it in bounded memory.
/// The operations belong to one thread, the main thread; none but Close waits for reading.
///
///     main thread      Want({A, B})   AddColumns(A): empty     TakeArrived() = {A}   AddColumns(A)
///     reading thread       A .................. arrived()   B ............. arrived()
///
/// Each Want says all that is on view. What is on view newly is read first; what is on view no
/// longer is not read, and stops being read when there is something else to read.
class PeakDesk {
 public:
  struct Limits {
    /// For all files together. The default holds 37 hours at 48 kHz.
    std::size_t bytes = std::size_t{128} << 20;
    /// How old knowledge of a file may be when it is wanted, before it is looked at again.
    std::chrono::milliseconds age{2000};
  };

  /// `arrived` is called on the reading thread when there is something to take and the last notice
  /// has been answered by TakeArrived. After Close it is called no more.
  explicit PeakDesk(std::function<void()> arrived) : PeakDesk(std::move(arrived), Limits()) {}
  PeakDesk(std::function<void()> arrived, const Limits& limits)
      : arrived_(std::move(arrived)), limits_(limits), parts_(limits.bytes) {}
  ~PeakDesk() { Close(); }
  PeakDesk(const PeakDesk&) = delete;
  PeakDesk& operator=(const PeakDesk&) = delete;

  /// Says what is on view from now on. Files that have changed on disk are read anew. A file that
  /// is missing or no audio has no waveform; so has one for which there is no memory beside what
  /// else is on view.
  void Want(const std::vector<WaveformNeed>& needs);

  /// Adds the peaks of successive columns of a file, as far as they are there.
  void AddColumns(const std::string& path, const ColumnGrid& grid, std::int64_t first,
                  std::span<Peak> columns) const;

  /// The files of which something has come, changed or gone since the last call.
  [[nodiscard]] std::set<std::string> TakeArrived();

  /// True while something that is on view has not come yet.
  [[nodiscard]] bool IsReading() const;
  /// What is kept, in bytes.
  [[nodiscard]] std::size_t Bytes() const;

  /// Stops reading and returns when the thread has ended. Nothing is read after it.
  void Close();

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] bool HaveThread();
  void WorkOff();
  void Queue(const std::set<PartName>& wanted);

  const std::function<void()> arrived_;
  const Limits limits_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  PeakParts parts_;
  std::deque<PartName> waiting_;  ///< to be read from the front
  std::optional<PartName> running_;
  bool runningWanted_ = false;
  std::atomic<bool> stop_ = false;  ///< asks what runs to stop
  std::set<std::string> arrivedPaths_;
  bool closed_ = false;
  std::thread thread_;  ///< started with the first need
};

}  // namespace velmora::peaks
