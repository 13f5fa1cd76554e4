#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "Spot/RegionMessage.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotWorker.h"

namespace velmora {

// The runs that a view's spot button starts, and all that a worker's thread shares with the main
// thread.
//
//   main thread     Request ---- detach a thread ----- DeliverReport ---- Abort ---- Request ...
//                      |                 |                ^       |          |
//   worker             '------------> Execute: [wait][ RunSpot, PostReport, ... ] ended
//   next worker                                              Execute: [ wait          ][ RunSpot
//
// - One thread for each run. The queue starts none: the view detaches a thread of its platform,
//   and hands it its own shared_ptr to the run, whose Execute is all that this thread calls.
// - One run works at a time, in the order of the requests. Execute of a later one waits, on its own
//   thread, until the runs before it have ended. The main thread never waits but in Close.
// - The run shares the project. A load that replaces the project meanwhile leaves the old one alive
//   until Execute ends, and the last owner's thread, which may be the worker's, deletes it.
// - Options, event count and texts are handed over by value when the run is requested, so a worker
//   reads no control and no field of the view. What a view keeps of progress and abort are copies
//   for the main thread alone, taken from Progress and Aborted.
// - The check boxes of the events are not guarded here. The main thread may change them as soon as
//   a run is aborted, while its worker still looks at its last event: both sides access these
//   32-bit numbers atomically.

class SpotQueue;

/// What a run asks of the view. All calls come from the worker's thread, and none may wait for the
/// main thread, which may itself be waiting in SpotQueue::Close.
class SpotDisplay {
 public:
  virtual ~SpotDisplay() = default;
  /// Has the main thread call the run's DeliverReport soon, and returns at once (on AppKit
  /// `performSelectorOnMainThread:withObject:waitUntilDone:` with NO: it is the run that waits, in
  /// a wait that an abort ends). The receiver must be an object that shares the run and is kept
  /// alive by the post, such as the thread's own object, never the view: the view may be gone by
  /// then.
  /// @param progress steps done, or -1 at the end
  virtual void PostReport(std::int32_t progress) = 0;
  /// A line for the system log, without a line feed.
  virtual void Log(const std::string& line) = 0;
};

/// Follows the runs of a view, for a shell that tells of them later. All calls come from the
/// worker's thread, and none may wait for the main thread.
class SpotFollower : public SpotEvents {
 public:
  /// A run begins its work. The project stays until `Ended`.
  virtual void Began(const SpotProject& project, const SpotOptions& options) = 0;
  /// It has ended, and reports no more.
  /// @param options  as they were carried out
  /// @param finished false if an abort or a close ended it
  virtual void Ended(const SpotOptions& options, bool finished) = 0;
};

/// What a run works on: a SpotProject that owns its share of the project. `firstEvent` is a text of
/// the project.
struct SharedSpotProject {
  std::shared_ptr<AES31Project> project;
  std::int32_t numEvents = 0;
  std::int32_t minTrack = 0;
  const char* firstEvent = nullptr;
};

/// One spot, from its request to the end of its worker. Made by SpotQueue::Request.
class SpotTask {
 public:
  /// A run that was never executed ends here: drop one whose thread could not be started, or the
  /// runs after it wait for it.
  ~SpotTask();
  SpotTask(const SpotTask&) = delete;
  SpotTask& operator=(const SpotTask&) = delete;

  /// The body of the worker's thread, once for each run: waits for the runs before it, runs the
  /// spot, gives up its share of the project, and ends. Touches neither `host` nor `display` before
  /// the wait is over, nor once the run counts as ended.
  ///
  /// Each report counts as made when the main thread has delivered it, or when the run is aborted.
  /// If the queue was closed before, it touches nothing and returns.
  /// @param host must not wait for the main thread either
  /// @return false if an abort or a close ended it, be it before its work began. A run that is
  ///         aborted after its last look at the abort has done all its work, and ends like any
  ///         other.
  /// @param follower may be null; is told of every run that begins its work, and of its end
  bool Execute(RegionHost& host, SpotDisplay& display, SpotFollower* follower = nullptr);

  // The rest is for the main thread.

  /// Delivers the report that waits, if one does: calls `show` with the steps done, or with -1 at
  /// the end, which is the time to bring the controls and the button back. Then lets the worker go
  /// on.
  ///
  /// An aborted run shows no steps any more. It still shows its end if it came there, since the
  /// abort was too late: whoever aborts without bringing the button back relies on it. It shows
  /// nothing at all once a later run has been requested, whose state is on display then.
  void DeliverReport(const std::function<void(std::int32_t progress)>& show);

  /// Asks this run, and no other, to stop, and does not wait: the worker stops at its next event,
  /// a run that waits for its turn ends without work, and a worker that waits for a report to be
  /// delivered goes on. Does nothing to a run that is aborted already.
  void Abort();

  /// May be read from any thread.
  [[nodiscard]] bool Aborted() const { return aborted_; }

  /// Steps reported so far, and -1 once the run has reported its end or is aborted: -1 means that
  /// no worker is counting. May be read from any thread.
  [[nodiscard]] std::int32_t Progress() const { return progress_; }

 private:
  friend class SpotQueue;
  class Observer;
  class Host;

  /// The runs that have not ended, in the order of their requests. Shared with each run, since the
  /// queue may go while a worker is still on its way out of Execute.
  struct Shared {
    std::mutex mutex;
    std::condition_variable changed;  ///< a run ended, was aborted, or had its report delivered
    std::vector<SpotTask*> runs;
    std::uint64_t newest = 0;  ///< number of the latest request; a close counts as one
  };

  SpotTask(std::shared_ptr<Shared> shared, SharedSpotProject work, SpotOptions options);

  bool Start();
  bool WaitForTurn();
  bool MayShowLocked() const;
  void Report(std::int32_t progress, SpotDisplay& display);
  void AbortLocked();
  void End();
  SharedSpotProject TakeWork();

  const std::shared_ptr<Shared> shared_;
  SharedSpotProject work_;  ///< the worker's, once it has started
  SpotOptions options_;     ///< the worker's, from Execute on
  std::atomic<bool> aborted_ = false;
  std::atomic<bool> closing_ = false;  ///< no message goes out any more
  std::atomic<std::int32_t> progress_ = 0;
  // Guarded by the shared mutex:
  std::uint64_t number_ = 0;
  bool started_ = false;
  bool reportWaits_ = false;
  bool lastReport_ = false;  ///< the run has come to its end and tells it
  bool ended_ = false;
};

/// The runs of one view. For the main thread.
class SpotQueue {
 public:
  SpotQueue();
  /// Closes.
  ~SpotQueue();
  SpotQueue(const SpotQueue&) = delete;
  SpotQueue& operator=(const SpotQueue&) = delete;

  /// A new run, after all that have not ended; none of these is aborted by it. The caller starts
  /// its thread. With no project the run ends without any call.
  [[nodiscard]] std::shared_ptr<SpotTask> Request(SharedSpotProject work, SpotOptions options);

  /// True when every run has ended.
  [[nodiscard]] bool Idle() const;

  /// Aborts all runs and returns when all have ended and hold nothing any more: to be called before
  /// the view goes. Beyond what an abort does, a message not yet sent is given up, or a host that
  /// does not answer would hold the window for minutes; what is left to wait for is one message's
  /// time-out and the file that is just being made. Reports that were posted before may still
  /// arrive, and show nothing. A run whose thread has not come to Execute ends at once: that
  /// thread may never come.
  void Close();

 private:
  SpotTask* FirstNotStartedLocked() const;

  std::shared_ptr<SpotTask::Shared> shared_;
};

}  // namespace velmora
