#pragma once

namespace velmora::desktop {

// Sets the toolkit up before its first use: fonts, interface styles and keys that go with the
// theme, as defaults that a user's own override, and the kinds of pictures that it reads.
void SetUpToolkit();

}  // namespace velmora::desktop
