#pragma once

#import <AppKit/AppKit.h>

// Draws what a window shows, without its frame, to a PNG file. NO if the file cannot be written.
BOOL WriteSnapshot(NSWindow* window, NSString* path);
