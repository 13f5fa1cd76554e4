#pragma once

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

#include "Prepare/PrepareProject.h"

// What a preparation is asked for: folders with media, the folder that it makes, and four choices.
@interface PrepareForm : NSView {
  NSScrollView* mediaScroll;
  NSButton* addButton;
  NSButton* removeButton;
  NSTextField* targetField;
  NSButton* chooseButton;
  NSButton* copyBox;
  NSButton* stereoBox;
  NSButton* offBox;
  NSButton* resampleBox;
  std::string project;
  std::vector<std::string> mediaFolders;  // kept from project to project: they rarely change
}

// The least height that shows all of it.
+ (CGFloat)leastHeight;

- (id)initWithFrame:(NSRect)frame;

// Names a free target beside the project. Media folders and choices stay as they are.
- (void)setProject:(const std::string&)path;

// What was asked for, an edit in progress included.
- (velmora::prepare::PrepareOptions)options;

- (void)setEnabled:(BOOL)enabled;

// The control that takes the keys first, and the circle of all that do: from `before`, which comes
// ahead of the first one, back to `after`.
- (NSView*)firstControl;
- (void)linkKeysFrom:(NSView*)before to:(NSView*)after;

@end
