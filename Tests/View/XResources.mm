#import "View/XResources.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <dlfcn.h>

#import "View/Stage.h"

namespace velmora::view {

namespace {

template <class Function>
bool Find(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
  return function != nullptr;
}

void* Display() {
  return [GSServerForWindow(Window()) serverDevice];
}

/// Any of a client's numbers stands for the client.
unsigned long Client() {
  return reinterpret_cast<unsigned long>(
      [GSServerForWindow(Window()) windowDevice:static_cast<int>([Window() windowNumber])]);
}

}  // namespace

XResources::XResources() {
  // What is found in a library is also looked for in those that it needs itself, as Xlib is here.
  void* const library = dlopen("libXRes.so.1", RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr || !Find(library, "XGetAtomName", atomName_) ||
      !Find(library, "XFree", free_) || !Find(library, "XResQueryClientPixmapBytes", pixmaps_)) {
    return;
  }
  Find(library, "XResQueryClientResources", resources_);
}

std::map<std::string, long> XResources::Counts() const {
  std::map<std::string, long> counts;
  int kinds = 0;
  Kind* list = nullptr;
  if (!AreKnown() || resources_(Display(), Client(), &kinds, &list) == 0) return counts;
  for (int i = 0; i < kinds; ++i) {
    char* const name = atomName_(Display(), list[i].name);
    if (name == nullptr) continue;
    counts[name] = list[i].count;
    free_(name);
  }
  free_(list);
  return counts;
}

long XResources::PixmapKilobytes() const {
  unsigned long bytes = 0;
  if (!AreKnown() || pixmaps_(Display(), Client(), &bytes) == 0) return 0;
  return static_cast<long>(bytes / 1024);
}

}  // namespace velmora::view
