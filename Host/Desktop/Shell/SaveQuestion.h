#pragma once

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

#include "Desktop/Logic/SaveRun.h"

// Asks where a session is to be saved: the system's panel, with the choices that the targets offer.
// A name that is taken is told at once, and the panel stays: nothing is ever written over.
@interface SaveQuestion : NSObject {
  std::vector<const velmora::host::TargetKind*> kinds;
  velmora::desktop::SaveRequest request;
  std::string project;
  NSSavePanel* panel;
  NSView* accessory;         // nil where there is nothing to choose
  NSPopUpButton* kindMenu;   // nil if there is one kind
  NSPopUpButton* depthMenu;  // nil where no kind offers it
  NSButton* embedBox;        // the same
}

// `someKinds`: at least one, all of which offer the same choices. `choices` are shown at first.
- (id)initWithKinds:(const std::vector<const velmora::host::TargetKind*>&)someKinds
            choices:(const velmora::host::TargetChoices&)choices
            project:(const std::string&)path;

// Runs the panel. NO if it was cancelled.
- (BOOL)ask;

// What was answered.
- (const velmora::desktop::SaveRequest&)request;

@end
