#pragma once

#import <AppKit/AppKit.h>

#include <string>

#include "Desktop/Logic/ProjectReport.h"
#include "Desktop/Logic/SessionSettings.h"
#include "Spot/RegionMessage.h"
#include "Spot/SpotQueue.h"

@class Velmora_ViewController;

// The view from its bundle, as this shell knows it: what any plug-in's shell would call, and the
// few fields that it reads and fills to open a project without a hand on the button.
@interface ViewConnection : NSObject {
  Velmora_ViewController* controller;
}

// The name of the notification that ends each load, good or failed, on the main thread.
+ (NSString*)didLoadNotification;

// Loads the bundle and makes the view; regions go to `host`, `follower` is told of the spots, and
// the session's rates come from `settings`. Neither is owned, and both must outlive the object. Nil
// when the bundle cannot be used, with the reason in `error`.
- (id)initWithBundleAtPath:(NSString*)path
                  settings:(velmora::desktop::SessionSettings*)settings
                      host:(velmora::RegionHost*)host
                  follower:(velmora::SpotFollower*)follower
                     error:(std::string*)error;

- (NSView*)view;

// Loads a project as if it had been picked.
- (void)loadFile:(NSString*)path;
// What it read; null if it failed.
- (const velmora::AES31Project*)project;
// The facts of the last load.
- (velmora::desktop::ProjectFacts)facts;

// Presses the spot button.
- (void)spot;
- (BOOL)isSpotRunning;

// Lets the view go. A spot that runs is aborted and waited for, which takes as long as the file
// that it is making.
- (void)close;

@end
