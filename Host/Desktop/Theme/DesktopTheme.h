#pragma once

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

// A light, flat look. It replaces the toolkit's bevels by thin lines, its greys by a list of
// colours, and its pictures by those of the theme's bundle.
@interface DesktopTheme : GSTheme {
  NSColorList* colorList;
}

// Makes the theme the current one; to be called before the first view is made. `bundlePath` is the
// folder with its pictures; without it the toolkit's own stay.
+ (void)installWithBundleAtPath:(NSString*)bundlePath;

// Makes the theme's icon the application's, in panels and in the frames of windows; to be called
// before the first window is made, and again when the application has finished launching, which
// chooses an icon of its own.
+ (void)installIcon;

@end
