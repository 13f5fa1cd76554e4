#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>
#include <memory>

namespace velmora {
class RegionHost;
class SpotFollower;
class SpotTask;
}  // namespace velmora

@class Velmora_ViewController;

// The worker of one spot: the target of its thread, and the messenger between this thread and the
// view. It may outlive the view controller. That is safe because a controller that goes closes its
// queue of runs, which waits for them, and a run of a closed queue delivers nothing.
@interface spotThreadClass : NSObject {
  std::int32_t count;    // not used
  std::int32_t max;      // not used
  std::int32_t cancel;   // kept for its accessors; a spot is cancelled by its run's abort
  void* ViewController;  // the Velmora_ViewController, not retained
  std::shared_ptr<velmora::SpotTask> run;
  velmora::RegionHost* host;        // not owned
  velmora::SpotFollower* follower;  // not owned, null for none
}

// A new worker for a view controller; the caller owns it.
+ (spotThreadClass*)spotThreadClassCreate:(Velmora_ViewController*)controller;

// The worker whose thread this is, nil on any other thread.
+ (spotThreadClass*)current;

- (void)setViewController:(void*)controller;
- (void)setCancel:(std::int32_t)flag;
- (std::int32_t)getCancel;

// Hands over the work, before the thread starts.
- (void)setRun:(std::shared_ptr<velmora::SpotTask>)newRun
          host:(velmora::RegionHost*)newHost
      follower:(velmora::SpotFollower*)newFollower;

// Gives up the work, for a thread that could not be started.
- (void)dropRun;

// The body of the thread. The object means nothing.
- (void)spotProc:(id)object;

// Does the work, on the worker's thread.
- (void)execute;

// Asks this worker, and no other, to stop at its next event. Main thread.
- (void)abort;

// A report of the worker that has come to the main thread. The number is for the eye only: the run
// knows how far it is.
- (void)report:(NSNumber*)progress;

@end
