#include "Media/LateLibrary.h"

#if VELMORA_LATE_LIBRARIES
#include <dlfcn.h>
#endif

namespace velmora::media {

#if VELMORA_LATE_LIBRARIES

namespace {

/// What the loader says of its last failure in this thread.
std::string LoaderTrouble() {
  const char* const text = ::dlerror();
  return text != nullptr ? text : "for a reason that the system does not tell";
}

}  // namespace

LateLibrary::LateLibrary(const char* file)
    : file_(file), handle_(::dlopen(file, RTLD_LAZY | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    trouble_ = std::string(file) + " cannot be loaded: " + LoaderTrouble();
  }
}

void* LateLibrary::Address(const char* name) {
  void* const address = handle_ != nullptr ? ::dlsym(handle_, name) : nullptr;
  if (address == nullptr && trouble_.empty()) {
    trouble_ = std::string(file_) + " has no function " + name + ": " + LoaderTrouble();
  }
  return address;
}

#else

LateLibrary::LateLibrary(const char* file) : file_(file) {}

void* LateLibrary::Address(const char* name) {
  trouble_ = std::string(file_) + " was linked without " + name;
  return handle_;
}

#endif

}  // namespace velmora::media
