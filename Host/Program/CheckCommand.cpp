#include "Program/CheckCommand.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

#include "Check/CheckProject.h"
#include "Program/CheckJson.h"
#include "Program/CheckText.h"
#include "Program/ExitStatus.h"
#include "Program/ProjectList.h"
#include "Program/StandardOutput.h"
#include "Program/StopRequests.h"
#include "Program/TextTable.h"
#include "Program/Usage.h"

namespace velmora::program {
namespace {

using check::CheckedProject;
using check::Verdict;

/// A project that is ready to be told: as text, or, if that would be large, as it is.
struct Ready {
  Verdict verdict = Verdict::Unreadable;
  std::string text;
  std::optional<CheckedProject> large;
};

/// Projects with more to tell than this are written straight to standard output: a million bare
/// labels make three million findings, whose text is a thousand times the file.
constexpr std::size_t kLargeProject = 2000;

bool IsLarge(const CheckedProject& checked) {
  if (checked.project == nullptr) return false;
  return checked.project->events.size() + checked.project->sources.size() +
             checked.findings.size() >
         kLargeProject;
}

/// Checks the projects of a list on several threads, and hands them out in the order of the list.
/// No thread runs further ahead of what was told than a few projects for each thread, so an archive
/// takes no more memory than a handful of its projects.
class CheckPool {
 public:
  CheckPool(const std::vector<std::string>& paths, const CheckArguments& arguments, bool colours)
      : paths_(paths), arguments_(arguments), colours_(colours) {
    const std::size_t most = std::max<std::size_t>(paths.size(), 1);
    const std::size_t jobs = std::clamp<std::size_t>(Jobs(arguments), 1, most);
    window_ = jobs * kAheadForEachJob;
    threads_.reserve(jobs);
    try {
      while (threads_.size() < jobs) threads_.emplace_back([this] { Work(); });
    } catch (const std::exception&) {
      // No memory or no further thread: those there are do the work, and without any Next does it.
    }
  }
  ~CheckPool() {
    Stop();
    for (std::thread& thread : threads_) thread.join();
  }
  CheckPool(const CheckPool&) = delete;
  CheckPool& operator=(const CheckPool&) = delete;

  /// Waits for the next project of the list. None after the last one, and once interrupted. Throws
  /// std::bad_alloc if a thread met it.
  std::optional<Ready> Next() {
    std::unique_lock lock(mutex_);
    if (told_ == paths_.size()) return std::nullopt;
    if (threads_.empty()) ready_.emplace(told_, Check(paths_[told_]));
    while (ready_.find(told_) == ready_.end()) {
      if (trouble_ != nullptr) std::rethrow_exception(trouble_);
      if (Interrupted()) return std::nullopt;
      // Ctrl-C only sets a flag, so this looks up from time to time.
      changed_.wait_for(lock, std::chrono::milliseconds(100));
    }
    if (Interrupted()) return std::nullopt;
    Ready ready = std::move(ready_.extract(told_).mapped());
    ++told_;
    changed_.notify_all();
    return ready;
  }

 private:
  static constexpr std::size_t kAheadForEachJob = 4;

  static std::size_t Jobs(const CheckArguments& arguments) {
    return arguments.jobs > 0 ? arguments.jobs : std::thread::hardware_concurrency();
  }

  void Stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
  }

  /// The next project to work on, as soon as it is not too far ahead.
  std::optional<std::size_t> Claim() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] {
      return stopped_ || claimed_ == paths_.size() || claimed_ < told_ + window_;
    });
    if (stopped_ || Interrupted() || claimed_ == paths_.size()) return std::nullopt;
    return claimed_++;
  }

  void Work() {
    try {
      while (const std::optional<std::size_t> i = Claim()) {
        Ready ready = Check(paths_[*i]);
        const std::lock_guard lock(mutex_);
        ready_.emplace(*i, std::move(ready));
        changed_.notify_all();
      }
    } catch (...) {  // for Next to throw: an exception that leaves a thread ends the program
      const std::lock_guard lock(mutex_);
      trouble_ = std::current_exception();
      stopped_ = true;
      changed_.notify_all();
    }
  }

  Ready Check(const std::string& path) {
    Ready ready;
    CheckedProject checked = CheckOrGiveUp(path);
    ready.verdict = checked.verdict;
    if (IsLarge(checked)) {
      ready.large = std::move(checked);
      return ready;
    }
    std::ostringstream text;
    Write(checked, text);
    ready.text = std::move(text).str();
    return ready;
  }

  /// One project that needs more memory than there is must not end the check of all others.
  CheckedProject CheckOrGiveUp(const std::string& path) {
    try {
      return CheckProject(path, arguments_.options, listings_, Interrupted);
    } catch (const std::bad_alloc&) {
      return check::OutOfMemory(path);
    }
  }

 public:
  void Write(const CheckedProject& checked, std::ostream& out) const {
    if (arguments_.json) {
      WriteCheckJson(checked, out);
    } else {
      WriteCheckText(checked, colours_, out);
    }
  }

 private:
  const std::vector<std::string>& paths_;
  const CheckArguments& arguments_;
  const bool colours_;
  std::size_t window_ = 0;
  media::FolderListings listings_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::size_t, Ready> ready_;
  std::size_t claimed_ = 0;
  std::size_t told_ = 0;
  bool stopped_ = false;
  std::exception_ptr trouble_;  ///< what ended a thread
  std::vector<std::thread> threads_;
};

/// A line on standard error that shows how far a check of many projects is.
class CheckBar {
 public:
  CheckBar(std::size_t all, bool shows) : all_(all), shows_(shows) {}

  void Draw(std::size_t done) {
    if (!shows_) return;
    constexpr std::size_t kCells = 40;
    const std::size_t percent = done * 100 / std::max<std::size_t>(all_, 1);
    const std::size_t filled = percent * kCells / 100;
    const std::string bar = std::string(filled, '#') + std::string(kCells - filled, '.');
    std::fprintf(stderr, "\r[%s] %3zu %%  project %zu of %zu", bar.c_str(), percent, done, all_);
    std::fflush(stderr);
    drawn_ = true;
  }
  void Clear() {
    if (drawn_) std::fputs("\r\x1b[K", stderr);
    drawn_ = false;
  }

 private:
  std::size_t all_;
  bool shows_;
  bool drawn_ = false;
};

/// Tells all projects. Between them the bar stands on the terminal's last line.
CheckTotals TellAll(const std::vector<std::string>& paths, const CheckArguments& arguments) {
  CheckTotals totals;
  const bool toTerminal = IsTerminal(STDOUT_FILENO);
  CheckBar bar(paths.size(), IsTerminal(STDERR_FILENO) && paths.size() > 1);
  CheckPool pool(paths, arguments, ShowsColours(STDOUT_FILENO));
  bar.Draw(0);
  while (std::optional<Ready> ready = pool.Next()) {
    if (toTerminal) bar.Clear();
    if (ready->large) {
      pool.Write(*ready->large, std::cout);
    } else {
      std::cout << ready->text;
    }
    if (toTerminal) std::cout.flush();
    totals.Count(ready->verdict);
    bar.Draw(totals.All());
    if (!std::cout) break;
  }
  bar.Clear();
  return totals;
}

int StatusOf(const CheckTotals& totals, const ProjectList& list) {
  if (totals.unreadable > 0 || !list.complaints.empty()) return kDoesNotLoad;
  return totals.loses > 0 ? kLeftOut : kAllDone;
}

}  // namespace

int RunCheck(const CheckArguments& arguments) {
  const std::string complaint = ComplaintAboutMediaFolders(arguments.options);
  if (!complaint.empty()) return BadUsage(complaint, "check");
  StopOnInterrupt();
  const ProjectList list = FindProjects(arguments.projects, Interrupted);
  if (Interrupted()) return kInterrupted;
  const CheckTotals totals = TellAll(list.paths, arguments);
  if (Interrupted()) return kInterrupted;
  if (!arguments.json && totals.All() > 1) WriteCheckTotals(totals, std::cout);
  for (const std::string& line : list.complaints)
    std::cerr << "velmora: " << Printable(line) << '\n';
  return StatusOfOutput(StatusOf(totals, list));
}

}  // namespace velmora::program
