#pragma once

#import <AppKit/AppKit.h>

// The view above and the timeline below, with a divider that the user moves. The view never gets
// smaller than its parts need; beyond that the timeline has the height that was last given to it,
// also after the window has been smaller for a while.
@interface ShellSplit : NSSplitView {
  NSView* upper;        // retained, as all subviews are
  NSView* lower;        // the same
  CGFloat lowerHeight;  // as the user wants it, whatever there is room for
}

// The least size of a split that shows both halves in full.
+ (NSSize)leastSize;

// Takes in both halves. The lower one gets what the upper one leaves of the height, but no less
// than four tracks if there is room for them.
- (id)initWithFrame:(NSRect)frame upper:(NSView*)upperView lower:(NSView*)lowerView;

@end
