#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string>

#include "Desktop/Logic/CheckRun.h"
#include "Desktop/Logic/ProjectReport.h"
#import "Desktop/Shell/PreparePanel.h"

@class FindingsPanel;

@protocol FindingsDeskShell
// The desk's items have changed.
- (void)findingsChanged;
// Loads a project; NO, and nothing is loaded, while a spot runs or a panel waits for an answer.
- (BOOL)loadProject:(const std::string&)path;
@end

// Projects as they come: checks each project that is loaded, beside the window's work, shows what
// was found, and has it prepared. Main thread only.
@interface FindingsDesk : NSObject <PreparePanelOwner> {
  std::unique_ptr<velmora::desktop::CheckRun> check;
  velmora::desktop::CheckedPtr checked;  // of the project that is loaded; null until it is there
  std::string project;                   // that is loaded, absolute; empty for none
  std::string waiting;  // a prepared project that is to be loaded when the window is free
  FindingsPanel* findingsPanel;
  PreparePanel* preparePanel;
  NSTimer* slowTimer;           // until a check has taken long enough to speak of
  NSTimer* waitingTimer;        // while `waiting` is not empty
  id<FindingsDeskShell> shell;  // not retained
  BOOL slow;                    // the check takes its time
  BOOL unchecked;               // there was no thread or no memory for it
  BOOL closed;
}

- (id)initWithShell:(id<FindingsDeskShell>)aShell;

// A load has ended, good or failed. What is known of the project before goes.
- (void)didLoad:(const std::string&)path;

- (BOOL)isChecking;
// What the check has to say, that it takes its time, or that there is none; nothing otherwise.
- (std::optional<velmora::desktop::StatusItem>)statusItem;
// Whether there is something to see, grave or not; whether it is grave; whether a preparation
// helps.
- (BOOL)hasFindings;
- (BOOL)hasGraveFindings;
- (BOOL)canPrepare;

- (void)showFindings:(id)sender;
- (void)prepare:(id)sender;

// Cancels all that runs, waits until nothing of it is left, and hides the panels for good.
- (void)close;

@end
