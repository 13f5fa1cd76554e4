#pragma once

#include <mutex>
#include <string>

namespace velmora::media {

/// A shared library that is loaded when its first function is needed, and stays. Codecs and
/// resampling come with 16 libraries, which together take longer to load than a small project takes
/// to be shown: 2 ms of a start of 4 ms.
///
/// Where the build links a library as usual (VELMORA_LATE_LIBRARIES is 0), nothing is loaded here.
class LateLibrary {
 public:
  /// @param file as the system's loader looks for it: "libsndfile.so.1"
  explicit LateLibrary(const char* file);

  /// Finds a function. Write it as `library.Find(VELMORA_FUNCTION(sf_close), functions.close)`: the
  /// compiler then holds the pointer's type against the library's own header.
  template <typename Function>
  void Find(const char* name, Function* linked, Function*& function) {
    function = linked != nullptr ? linked : reinterpret_cast<Function*>(Address(name));
  }

  /// Empty, or why the library cannot be used: it or a function of it is missing.
  [[nodiscard]] const std::string& Trouble() const { return trouble_; }

 private:
  void* Address(const char* name);

  const char* file_;
  void* handle_ = nullptr;
  std::string trouble_;
};

/// The functions that we use of a library, as a struct of pointers to them. Several threads may
/// ask.
template <typename Functions>
class LateFunctions {
 public:
  /// @param find fills the struct in, by LateLibrary::Find
  constexpr LateFunctions(const char* file, void (*find)(LateLibrary&, Functions&))
      : file_(file), find_(find) {}

  /// Null if the library cannot be used; then `trouble` says why. What failed is tried again when
  /// it is asked for again: the reason may be as fleeting as too many open files.
  [[nodiscard]] const Functions* Get(std::string& trouble) {
    const std::lock_guard lock(mutex_);
    if (!found_) {
      LateLibrary library(file_);
      find_(library, functions_);
      found_ = library.Trouble().empty();
      if (!found_) trouble = library.Trouble();
    }
    return found_ ? &functions_ : nullptr;
  }

 private:
  const char* file_;
  void (*find_)(LateLibrary&, Functions&);
  std::mutex mutex_;
  bool found_ = false;
  Functions functions_{};
};

}  // namespace velmora::media

// The name is spelled out after macros have replaced it: some libraries number their functions so.
#define VELMORA_TEXT_OF(name) #name
#define VELMORA_NAME_OF(name) VELMORA_TEXT_OF(name)
#if VELMORA_LATE_LIBRARIES
#define VELMORA_FUNCTION(function) \
  VELMORA_NAME_OF(function), static_cast<decltype(&(function))>(nullptr)
#else
#define VELMORA_FUNCTION(function) VELMORA_NAME_OF(function), &(function)
#endif
