#pragma once

#import <AppKit/AppKit.h>

// The view's background, which keeps the arrow cursor over itself.
@interface myImageView : NSImageView
@end
