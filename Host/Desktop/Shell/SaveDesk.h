#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Desktop/Logic/ProjectReport.h"
#include "Desktop/Logic/SaveRun.h"
#include "Desktop/Logic/SessionReceiver.h"

@class SavePanel;

@protocol SaveDeskShell
// The desk's status item has changed.
- (void)saveChanged;
// A spot runs, or is about to.
- (BOOL)isSpotRunning;
// The project that is loaded, absolute; empty for none.
- (std::string)projectPath;
@end

// Saves the session as any target of the table, beside the window's work. What is written is the
// session as it stood when the name was given: whatever the window does meanwhile, another spot
// and the end of the session included, changes nothing in it. One save at a time. Main thread only.
@interface SaveDesk : NSObject {
  std::unique_ptr<velmora::desktop::SaveRun> run;
  std::unique_ptr<velmora::desktop::SaveOutcome> last;     // null before the first
  std::unique_ptr<velmora::desktop::SaveRequest> running;  // the last that was begun
  velmora::host::TargetChoices choices;                    // of the last question
  velmora::desktop::SessionReceiver* receiver;
  SavePanel* panel;
  NSTimer* stepTimer;
  int steps;                // shown or waited for, since the save began
  id<SaveDeskShell> shell;  // not retained
  BOOL closed;
}

// The receiver is not owned and must outlive the desk.
- (id)initWithShell:(id<SaveDeskShell>)aShell
           receiver:(velmora::desktop::SessionReceiver*)aReceiver;

// The menu's actions. The first one's sender has the row of the table of destinations as its tag.
- (void)saveAs:(id)sender;
- (void)bounce:(id)sender;
- (void)report:(id)sender;
- (void)showSaveResult:(id)sender;
- (BOOL)validateMenuItem:(NSMenuItem*)item;

// Writes without a question. NO if one is being written, or there is no thread.
- (BOOL)save:(const velmora::desktop::SaveRequest&)request;
- (BOOL)isSaving;

// What became of the last save, or what is being written; none before the first.
- (std::optional<velmora::desktop::StatusItem>)statusItem;
// What was said of the last save is of no interest any more.
- (void)forget;

// Cancels what runs, and waits until nothing of it is left.
- (void)close;

@end
