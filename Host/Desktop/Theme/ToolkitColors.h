#pragma once

#import <AppKit/AppKit.h>

// The palette under the names by which the toolkit asks for colours.
namespace velmora::desktop {

// The toolkit's system colours. Owned by the caller.
[[nodiscard]] NSColorList* MakeSystemColors();

// A colour that the toolkit's drawing asks its theme for; nil for a name that this theme leaves to
// the toolkit.
[[nodiscard]] NSColor* ThemeColorNamed(NSString* name);

}  // namespace velmora::desktop
