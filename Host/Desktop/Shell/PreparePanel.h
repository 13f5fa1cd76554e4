#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <string>

#include "Desktop/Logic/PrepareRun.h"

@class PrepareForm;

@protocol PreparePanelOwner
// Takes over a project that was prepared from `original`. Answers what became of it, in a sentence.
- (NSString*)takePrepared:(const std::string&)path of:(const std::string&)original;
@end

// Asks what is to be prepared and how, makes it in the background, and says what came of it. One
// preparation at a time. Main thread only.
@interface PreparePanel : NSObject {
  NSPanel* panel;
  NSTextField* message;  // what is being made, or why nothing was
  NSProgressIndicator* bar;
  NSButton* prepareButton;
  NSButton* cancelButton;  // or "Close"
  NSButton* copyButton;
  PrepareForm* form;
  NSScrollView* resultScroll;  // in the form's place once something was prepared
  NSTimer* stepTimer;          // while a preparation runs
  std::unique_ptr<velmora::desktop::PrepareRun> run;
  std::string project;
  velmora::prepare::Prepared prepared;
  id<PreparePanelOwner> owner;  // not retained
}

- (id)initWithOwner:(id<PreparePanelOwner>)anOwner;

// Shows the form for a project; while another one is being prepared, that.
- (void)showForProject:(const std::string&)path;
// Another project is on view: a form of the one before goes.
- (void)didLoad:(const std::string&)path;

- (BOOL)isRunning;
- (BOOL)isShown;

// Cancels what runs, waits until nothing of it is left, and hides the panel for good.
- (void)close;

@end
