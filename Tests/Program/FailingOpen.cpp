// A library to preload: it lets one call of a program fail that opens or looks up a file below a
// folder, as a full table of descriptors or a tired disk would. It is steered by environment
// variables:
//
//     FAILING_BELOW   the folder; calls for anything else pass uncounted
//     FAILING_KIND    "open" for calls that open, "look" for those that only look a name up. With
//                     "taken by a file" and "taken by a link" nothing fails: the name of a file
//                     that is about to be created is taken by somebody else just before
//     FAILING_CALL    number of the failing call, from 1; 0 lets all pass
//     FAILING_ERRNO   what errno says then
//     FAILING_COUNT   file that receives the number of counted calls when the program ends
//
// The C library's own calls between open and fopen do not pass through here, so each name that a
// program can call has a stand-in of its own.

// Both names of each call are defined below, so neither may stand for the other.
#undef _FILE_OFFSET_BITS

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

std::atomic<long> calls{0};

const char* Setting(const char* name) {
  const char* text = std::getenv(name);
  return text ? text : "";
}

template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Counts the call if it is of the kind that was asked for; true if it is the one.
bool IsTheOne(const char* kind, const char* path) {
  const char* below = Setting("FAILING_BELOW");
  if (!path || !*below || std::strncmp(path, below, std::strlen(below)) != 0) return false;
  return std::strcmp(Setting("FAILING_KIND"), kind) == 0 &&
         ++calls == std::atol(Setting("FAILING_CALL"));
}

bool Fails(const char* kind, const char* path) {
  if (!IsTheOne(kind, path)) return false;
  errno = std::atoi(Setting("FAILING_ERRNO"));
  return true;
}

void Write(const char* path, const std::string& text) {
  const int file =
      Real<int(const char*, int, ...)>("open")(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (write(file, text.data(), text.size()) < 0) std::abort();
  close(file);
}

/// Before a file is created: somebody else is quicker.
void TakeName(const char* path) {
  if (IsTheOne("taken by a file", path)) Write(path, "foreign");
  if (IsTheOne("taken by a link", path) && symlink("nowhere", path) != 0) std::abort();
}

mode_t ModeOf(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

struct Tell {
  ~Tell() {
    const char* path = Setting("FAILING_COUNT");
    if (*path) Write(path, std::to_string(calls.load()));
  }
} tell;

}  // namespace

extern "C" {

#define STAND_IN_FOR_OPEN(name)                                        \
  int name(const char* path, int flags, ...) {                         \
    va_list arguments;                                                 \
    va_start(arguments, flags);                                        \
    const mode_t mode = ModeOf(flags, arguments);                      \
    va_end(arguments);                                                 \
    if (flags & O_CREAT) TakeName(path);                               \
    if (Fails("open", path)) return -1;                                \
    return Real<int(const char*, int, ...)>(#name)(path, flags, mode); \
  }
STAND_IN_FOR_OPEN(open)
STAND_IN_FOR_OPEN(open64)

#define STAND_IN_FOR_OPENAT(name)                                                   \
  int name(int folder, const char* path, int flags, ...) {                          \
    va_list arguments;                                                              \
    va_start(arguments, flags);                                                     \
    const mode_t mode = ModeOf(flags, arguments);                                   \
    va_end(arguments);                                                              \
    if (flags & O_CREAT) TakeName(path);                                            \
    if (Fails("open", path)) return -1;                                             \
    return Real<int(int, const char*, int, ...)>(#name)(folder, path, flags, mode); \
  }
STAND_IN_FOR_OPENAT(openat)
STAND_IN_FOR_OPENAT(openat64)

#define STAND_IN_FOR_FOPEN(name)                                     \
  FILE* name(const char* path, const char* mode) {                   \
    if (*mode == 'w') TakeName(path);                                \
    if (Fails("open", path)) return nullptr;                         \
    return Real<FILE*(const char*, const char*)>(#name)(path, mode); \
  }
STAND_IN_FOR_FOPEN(fopen)
STAND_IN_FOR_FOPEN(fopen64)

#define STAND_IN_FOR_STAT(name, Status)                          \
  int name(const char* path, Status* status) {                   \
    if (Fails("look", path)) return -1;                          \
    return Real<int(const char*, Status*)>(#name)(path, status); \
  }
STAND_IN_FOR_STAT(stat, struct stat)
STAND_IN_FOR_STAT(lstat, struct stat)
STAND_IN_FOR_STAT(stat64, struct stat64)
STAND_IN_FOR_STAT(lstat64, struct stat64)

int access(const char* path, int mode) {
  if (Fails("look", path)) return -1;
  return Real<int(const char*, int)>("access")(path, mode);
}

}  // extern "C"
