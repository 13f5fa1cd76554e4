#import "View/spotThreadClass.h"

#include <string>
#include <utility>

#include "Spot/SpotQueue.h"
#import "View/TextConversion.h"
#import "View/Velmora_ViewController.h"

static NSString* const kCurrentWorker = @"spotThreadClass";

namespace {

// What the run asks of the platform, from the worker's thread. Each call has a pool of its own,
// since a run may take as long as the project is large.
class WorkerDisplay : public velmora::SpotDisplay {
 public:
  explicit WorkerDisplay(spotThreadClass* worker) : worker_(worker) {}

  // Does not wait here: the run waits by itself until its report was delivered, in a wait that an
  // abort ends.
  void PostReport(std::int32_t progress) override {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [worker_ performSelectorOnMainThread:@selector(report:)
                              withObject:[NSNumber numberWithInt:progress]
                           waitUntilDone:NO];
    [pool release];
  }

  void Log(const std::string& line) override {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSLog(@"%@", StringFromText(line));
    [pool release];
  }

 private:
  spotThreadClass* worker_;
};

// Hands a report that is not out of date to the view.
struct ShowProgress {
  Velmora_ViewController* controller;
  NSNumber* number;
  void operator()(std::int32_t steps) const { [controller showProgress:steps of:number]; }
};

}  // namespace

@implementation spotThreadClass

+ (spotThreadClass*)spotThreadClassCreate:(Velmora_ViewController*)controller {
  spotThreadClass* worker = [[spotThreadClass alloc] init];
  [worker setViewController:controller];
  return worker;
}

+ (spotThreadClass*)current {
  return [[[NSThread currentThread] threadDictionary] objectForKey:kCurrentWorker];
}

- (void)setViewController:(void*)controller {
  ViewController = controller;
}

- (void)setCancel:(std::int32_t)flag {
  cancel = flag;
}

- (std::int32_t)getCancel {
  return cancel;
}

- (void)setRun:(std::shared_ptr<velmora::SpotTask>)newRun
          host:(velmora::RegionHost*)newHost
      follower:(velmora::SpotFollower*)newFollower {
  run = std::move(newRun);
  host = newHost;
  follower = newFollower;
}

- (void)dropRun {
  run.reset();
}

// No C++ object may live in this function: the thread ends inside it.
- (void)spotProc:(id)object {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  [[[NSThread currentThread] threadDictionary] setObject:self forKey:kCurrentWorker];
  [(Velmora_ViewController*)ViewController Thread];
  [[[NSThread currentThread] threadDictionary] removeObjectForKey:kCurrentWorker];
  [pool release];
  [NSThread exit];
}

- (void)execute {
  WorkerDisplay display(self);
  run->Execute(*host, display, follower);
}

- (void)abort {
  if (run != nullptr) run->Abort();
}

- (void)report:(NSNumber*)progress {
  if (run == nullptr) return;
  const ShowProgress show{(Velmora_ViewController*)ViewController, progress};
  run->DeliverReport(show);
}

@end
