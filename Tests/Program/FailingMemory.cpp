// A library to preload: it lets allocations of a program fail. It is steered by environment
// variables:
//
//     FAILING_ALLOCATION  number of the first one that fails, from 1; 0 lets all pass
//     FAILING_FOR_GOOD    set: all that follow fail too; otherwise it is that one alone
//     FAILING_COUNT       file that receives the number of allocations when main returns
//
// What is allocated before the program's main begins, by the loader and by libraries that set
// themselves up, does not count. Nor does what libsndfile allocates for itself: it writes to some
// of that without a look.

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The C library's own, under names that are not replaced here.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<long> calls{0};
std::atomic<bool> counts{false};
long first = 0;
bool forGood = false;

bool IsOfLibsndfile(void* caller) {
  Dl_info place{};
  return dladdr(caller, &place) != 0 && place.dli_fname != nullptr &&
         std::strstr(place.dli_fname, "libsndfile") != nullptr;
}

/// @param caller the place that the allocation returns to
bool Fails(void* caller) {
  if (!counts || IsOfLibsndfile(caller)) return false;
  const long call = ++calls;
  if (first == 0 || call < first || (call > first && !forGood)) return false;
  errno = ENOMEM;
  return true;
}

void Tell() {
  counts = false;
  const char* const path = std::getenv("FAILING_COUNT");
  if (path == nullptr) return;
  std::array<char, 32> text{};
  const int size = std::snprintf(text.data(), text.size(), "%ld", calls.load());
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (write(file, text.data(), static_cast<std::size_t>(size)) != size) std::abort();
  close(file);
}

using Main = int (*)(int, char**, char**);
Main programMain = nullptr;

int CountingMain(int argc, char** argv, char** environment) {
  const char* const number = std::getenv("FAILING_ALLOCATION");
  first = number != nullptr ? std::atol(number) : 0;
  forGood = std::getenv("FAILING_FOR_GOOD") != nullptr;
  counts = number != nullptr;
  const int status = programMain(argc, argv, environment);
  Tell();
  return status;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  return Fails(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  return Fails(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* old, std::size_t size) {
  return Fails(__builtin_return_address(0)) ? nullptr : __libc_realloc(old, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return Fails(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = memalign(alignment, size);
  return *memory != nullptr ? 0 : ENOMEM;
}

/// The C library's own way into main.
int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(),
                      void (*atLoad)(), void* stackEnd) {
  programMain = main;
  using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  const auto original = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return original(CountingMain, argc, argv, init, fini, atLoad, stackEnd);
}

}  // extern "C"
