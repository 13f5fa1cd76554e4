#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "Desktop/Shell/CommandLine.h"
#include "Desktop/Shell/ProjectReport.h"
#include "Desktop/ViewHost/SessionReceiver.h"
#include "Desktop/ViewHost/SessionSettings.h"

@class SessionBar;
@class StatusLine;
@class TimelinePane;
@class ViewConnection;

// The program's one window: session bar, the view from the bundle, timeline and status line; and
// what goes on between them. Main thread only.
@interface ShellController : NSObject {
  velmora::desktop::ShellOptions options;
  velmora::desktop::SessionSettings settings;
  std::unique_ptr<velmora::desktop::SessionReceiver> receiver;
  velmora::desktop::ProjectFacts facts;
  NSWindow* window;
  NSSplitView* split;
  SessionBar* bar;
  ViewConnection* view;
  TimelinePane* pane;
  StatusLine* status;
  NSTimer* arrivalTimer;
  NSTimer* summaryTimer;
  BOOL closing;
}

- (id)initWithShellOptions:(const velmora::desktop::ShellOptions&)someOptions;

// Makes the window and shows it. NO, with a line on standard error, when the view cannot be had.
- (BOOL)openWindow;

@end
