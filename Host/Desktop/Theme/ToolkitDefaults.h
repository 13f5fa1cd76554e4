#pragma once

#import <Foundation/Foundation.h>

namespace velmora::desktop {

// Fonts, interface styles and keys that go with the theme. To be registered before the first use of
// the toolkit, as defaults that a user's own override. Autoreleased.
[[nodiscard]] NSDictionary* ToolkitDefaults();

}  // namespace velmora::desktop
