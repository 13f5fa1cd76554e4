#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "Desktop/Logic/CommandLine.h"
#include "Desktop/Logic/ProjectReport.h"
#include "Desktop/Logic/SessionReceiver.h"
#include "Desktop/Logic/SessionSettings.h"
#import "Desktop/Shell/FindingsDesk.h"
#import "Desktop/Shell/SaveDesk.h"

@class SessionBar;
@class ShellSplit;
@class StatusLine;
@class TimelinePane;
@class ViewConnection;

// The program's one window: session bar, the view from the bundle, timeline and status line; and
// what goes on between them. Main thread only.
//
// Names of classes: the shell is a process of its own, but it shares the run time's one space of
// names with the bundle that it loads, whose classes begin with Velmora or have the names of its
// interface, and with the toolkit, whose begin with NS and GS. The shell's say what they are
// without a prefix, and a test compares them with all of the others.
@interface ShellController : NSObject <FindingsDeskShell, SaveDeskShell> {
  velmora::desktop::ShellOptions options;
  velmora::desktop::SessionSettings settings;
  std::unique_ptr<velmora::desktop::SessionReceiver> receiver;
  velmora::desktop::ProjectFacts facts;
  NSWindow* window;
  ShellSplit* split;
  SessionBar* bar;
  ViewConnection* view;
  TimelinePane* pane;
  StatusLine* status;
  FindingsDesk* desk;
  SaveDesk* saveDesk;
  NSTimer* arrivalTimer;
  NSTimer* summaryTimer;
  BOOL native;  // spots make fades and gain facts of the regions
  BOOL closing;
}

- (id)initWithShellOptions:(const velmora::desktop::ShellOptions&)someOptions;

// Makes the window and shows it. NO, with a line on standard error, when the view cannot be had.
- (BOOL)openWindow;

@end
