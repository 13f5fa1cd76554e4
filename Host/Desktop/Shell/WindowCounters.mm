#include "Desktop/Shell/WindowCounters.h"

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>
#include <dlfcn.h>

#import "View/ExchangeMethod.h"

namespace velmora::desktop {
namespace {

using Identifier = unsigned long;  // of a window, an atom or a counter, as Xlib has them

// What is used of Xlib and its extensions. The toolkit has loaded both; the build needs neither.
struct DisplayFunctions {
  Identifier (*internAtom)(void* display, const char* name, int onlyIfExists);
  int (*getWindowProperty)(void* display, Identifier window, Identifier property, long offset,
                           long length, int remove, Identifier wantedType, Identifier* type,
                           int* bits, unsigned long* items, unsigned long* bytesLeft,
                           unsigned char** value);
  int (*free)(void* data);
  int (*destroyCounter)(void* display, Identifier counter);
};

DisplayFunctions functions = {};
using EndWindowMethod = void(id, SEL, int);
EndWindowMethod* originalEndWindow = nullptr;

template <class Function>
bool Find(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
  return function != nullptr;
}

bool FindFunctions() {
  // What is found in a library is also looked for in those that it needs itself, as Xlib is here.
  void* const library = dlopen("libXext.so.6", RTLD_LAZY | RTLD_LOCAL);
  return library != nullptr && Find(library, "XInternAtom", functions.internAtom) &&
         Find(library, "XGetWindowProperty", functions.getWindowProperty) &&
         Find(library, "XFree", functions.free) &&
         Find(library, "XSyncDestroyCounter", functions.destroyCounter);
}

// The counter that a window names to its window manager; 0 if it has none.
Identifier CounterOf(void* display, Identifier window) {
  constexpr int kOnlyIfExists = 1;
  constexpr int kKeep = 0;
  constexpr Identifier kAnyType = 0;
  constexpr int kSuccess = 0;
  const Identifier property =
      functions.internAtom(display, "_NET_WM_SYNC_REQUEST_COUNTER", kOnlyIfExists);
  if (property == 0) return 0;

  Identifier type = 0;
  int bits = 0;
  unsigned long items = 0;
  unsigned long bytesLeft = 0;
  unsigned char* value = nullptr;
  if (functions.getWindowProperty(display, window, property, 0, 1, kKeep, kAnyType, &type, &bits,
                                  &items, &bytesLeft, &value) != kSuccess) {
    return 0;
  }
  // Xlib gives numbers of 32 bits as longs.
  const Identifier counter =
      bits == 32 && items == 1 ? *reinterpret_cast<const Identifier*>(value) : 0;
  if (value != nullptr) functions.free(value);
  return counter;
}

void EndWindow(id self, SEL selector, int number) {
  void* const display = [self serverDevice];
  const auto window = reinterpret_cast<Identifier>([self windowDevice:number]);
  const Identifier counter = window != 0 ? CounterOf(display, window) : 0;
  originalEndWindow(self, selector, number);
  if (counter != 0) functions.destroyCounter(display, counter);
}

}  // namespace

void LetCountersGoWithWindows() {
  if (!FindFunctions()) return;
  originalEndWindow =
      view::ExchangeMethod(object_getClass(GSCurrentServer()), @selector(termwindow:), EndWindow);
}

}  // namespace velmora::desktop
