// A library to preload: it counts a program's calls to the system, its requests for memory and the
// threads and processes that it starts, and lets one of them fail. Environment variables steer it:
//
//     FAILING_KIND    the kinds to count, with commas: see kKindNames; "every" is all of them
//     FAILING_CALL    number of the call that fails, from 1; 0 lets all pass
//     FAILING_SPAN    how many calls fail from there on (1 unless told); 0 is all
//     FAILING_HOW     what happens: a number is the errno, "short" reads or writes half of what was
//                     asked for. With these the call itself goes well: "signal N" sends the process
//                     a signal before it, "file" and "link" take a name that is about to be
//                     created, "shrink PATH" and "remove PATH" change a file behind the program's
//                     back
//     FAILING_BELOW   calls count only for paths that begin like this
//     FAILING_COUNT   file that holds the counts and the call that failed, also after a crash
//
// Counted is from the beginning of main. The system stops the program at each call that the C
// library makes (seccomp) and asks here, so what happens inside fwrite or a stream counts too.
// Calls of the dynamic loader and of a sanitizer pass unseen, and so do those of other programs
// that this one starts: only calls out of this process's C library are stopped.

#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#if !defined(__x86_64__)
#error "The registers and calls of this library are those of x86-64."
#endif

namespace {

enum Kind {
  Open,
  Create,
  Look,
  List,
  Read,
  Write,
  Seek,
  Close,
  Rename,
  Link,
  Remove,
  Folder,
  Change,
  Sync,
  Map,
  Copy,
  Memory,
  Start,
  Pipe,
  kKinds
};
constexpr const char* kKindNames[kKinds] = {
    "open",   "create", "look",   "list", "read", "write", "seek",   "close", "rename", "link",
    "remove", "folder", "change", "sync", "map",  "copy",  "memory", "start", "pipe"};

/// How a call names what it is about.
enum Subject { Nothing, Path, PathAt, Descriptor };

struct Call {
  long number;
  Kind kind;
  Subject subject;
  const char* name;
};

constexpr Call kCalls[] = {
    {SYS_open, Open, Path, "open"},
    {SYS_openat, Open, PathAt, "openat"},
    {SYS_openat2, Open, PathAt, "openat2"},
    {SYS_creat, Create, Path, "creat"},
    {SYS_stat, Look, Path, "stat"},
    {SYS_lstat, Look, Path, "lstat"},
    {SYS_fstat, Look, Descriptor, "fstat"},
    {SYS_newfstatat, Look, PathAt, "fstatat"},
    {SYS_statx, Look, PathAt, "statx"},
    {SYS_access, Look, Path, "access"},
    {SYS_faccessat, Look, PathAt, "faccessat"},
    {SYS_faccessat2, Look, PathAt, "faccessat2"},
    {SYS_readlink, Look, Path, "readlink"},
    {SYS_readlinkat, Look, PathAt, "readlinkat"},
    {SYS_statfs, Look, Path, "statfs"},
    {SYS_fstatfs, Look, Descriptor, "fstatfs"},
    {SYS_getcwd, Look, Nothing, "getcwd"},
    {SYS_getdents64, List, Descriptor, "getdents64"},
    {SYS_read, Read, Descriptor, "read"},
    {SYS_pread64, Read, Descriptor, "pread"},
    {SYS_readv, Read, Descriptor, "readv"},
    {SYS_preadv, Read, Descriptor, "preadv"},
    {SYS_write, Write, Descriptor, "write"},
    {SYS_pwrite64, Write, Descriptor, "pwrite"},
    {SYS_writev, Write, Descriptor, "writev"},
    {SYS_pwritev, Write, Descriptor, "pwritev"},
    {SYS_lseek, Seek, Descriptor, "lseek"},
    {SYS_close, Close, Descriptor, "close"},
    {SYS_rename, Rename, Path, "rename"},
    {SYS_renameat, Rename, PathAt, "renameat"},
    {SYS_renameat2, Rename, PathAt, "renameat2"},
    {SYS_link, Link, Path, "link"},
    {SYS_linkat, Link, PathAt, "linkat"},
    {SYS_symlink, Link, Path, "symlink"},
    {SYS_unlink, Remove, Path, "unlink"},
    {SYS_unlinkat, Remove, PathAt, "unlinkat"},
    {SYS_rmdir, Remove, Path, "rmdir"},
    {SYS_mkdir, Folder, Path, "mkdir"},
    {SYS_mkdirat, Folder, PathAt, "mkdirat"},
    {SYS_chmod, Change, Path, "chmod"},
    {SYS_fchmod, Change, Descriptor, "fchmod"},
    {SYS_fchmodat, Change, PathAt, "fchmodat"},
    {SYS_utimensat, Change, PathAt, "utimensat"},
    {SYS_ftruncate, Change, Descriptor, "ftruncate"},
    {SYS_truncate, Change, Path, "truncate"},
    {SYS_fallocate, Change, Descriptor, "fallocate"},
    {SYS_fadvise64, Change, Descriptor, "fadvise"},
    {SYS_fsync, Sync, Descriptor, "fsync"},
    {SYS_fdatasync, Sync, Descriptor, "fdatasync"},
    {SYS_mmap, Map, Nothing, "mmap"},
    {SYS_mremap, Map, Nothing, "mremap"},
    {SYS_brk, Map, Nothing, "brk"},
    {SYS_copy_file_range, Copy, Descriptor, "copy_file_range"},
    {SYS_sendfile, Copy, Descriptor, "sendfile"},
    {SYS_ioctl, Copy, Descriptor, "ioctl(FICLONE)"},
    {SYS_pipe, Pipe, Nothing, "pipe"},
    {SYS_pipe2, Pipe, Nothing, "pipe2"},
    {SYS_poll, Pipe, Nothing, "poll"},
    {SYS_waitid, Pipe, Nothing, "waitid"},
    {SYS_wait4, Pipe, Nothing, "wait4"},
};
constexpr std::size_t kNumCalls = sizeof kCalls / sizeof kCalls[0];

/// What the file of the counts holds. It is mapped, so that it is there whatever becomes of the
/// program.
struct Counts {
  struct {
    char name[16];
    std::atomic<std::int64_t> count;
  } kinds[kKinds];
  char failed[1024];  ///< the first call that failed, and what it was about
};

enum class How { Error, Short, Signal, TakenByFile, TakenByLink, Shrink, Remove };

struct Settings {
  bool isCounted[kKinds] = {};
  std::int64_t first = 0;
  std::int64_t span = 1;
  How how = How::Error;
  int number = EIO;
  const char* victim = "";
  const char* below = "";
};

Settings settings;
Counts ownCounts;
Counts* counts = &ownCounts;
std::atomic<std::int64_t> calls{0};
std::atomic<bool> hasBegun{false};
pid_t process = 0;

// Calls that nobody stops: they do not come out of the C library.

long Raw(long number, long a = 0, long b = 0, long c = 0, long d = 0, long e = 0, long f = 0) {
  register long fourth asm("r10") = d;
  register long fifth asm("r8") = e;
  register long sixth asm("r9") = f;
  long result = 0;
  asm volatile("syscall"
               : "=a"(result)
               : "0"(number), "D"(a), "S"(b), "d"(c), "r"(fourth), "r"(fifth), "r"(sixth)
               : "rcx", "r11", "memory");
  return result;
}

long Address(const void* pointer) {
  return static_cast<long>(reinterpret_cast<std::uintptr_t>(pointer));
}

[[noreturn]] void Die(const char* why) {
  Raw(SYS_write, STDERR_FILENO, Address(why), static_cast<long>(std::strlen(why)));
  Raw(SYS_exit_group, 99);
  __builtin_unreachable();
}

/// A text of bounded length, made without the C library's memory.
class Text {
 public:
  void Add(const char* text) {
    while (*text != '\0' && size_ + 1 < sizeof bytes_) bytes_[size_++] = *text++;
    bytes_[size_] = '\0';
  }
  void AddNumber(long number) {
    char digits[24];
    char* at = digits + sizeof digits;
    *--at = '\0';
    do {
      *--at = static_cast<char>('0' + number % 10);
      number /= 10;
    } while (number > 0);
    Add(at);
  }
  void AddPathOf(long descriptor) {
    if (descriptor < 0) return;
    Text link;
    link.Add("/proc/self/fd/");
    link.AddNumber(descriptor);
    const long size = Raw(SYS_readlink, Address(link.Bytes()), Address(bytes_ + size_),
                          static_cast<long>(sizeof bytes_ - size_ - 1));
    if (size > 0) size_ += static_cast<std::size_t>(size);
    bytes_[size_] = '\0';
  }
  [[nodiscard]] const char* Bytes() const { return bytes_; }
  [[nodiscard]] std::size_t Size() const { return size_; }

 private:
  char bytes_[1024] = "";
  std::size_t size_ = 0;
};

void AddSubject(Text& text, Subject subject, const long* arguments) {
  const auto path = [](long pointer) {
    return reinterpret_cast<const char*>(static_cast<std::uintptr_t>(pointer));
  };
  if (subject == Path) text.Add(path(arguments[0]));
  if (subject == Descriptor) text.AddPathOf(arguments[0]);
  if (subject != PathAt) return;
  const char* const name = arguments[1] != 0 ? path(arguments[1]) : "";
  if (*name != '/' && static_cast<int>(arguments[0]) != AT_FDCWD) {
    text.AddPathOf(arguments[0]);
    if (*name != '\0') text.Add("/");
  }
  text.Add(name);
}

/// Counts a call of a kind that was asked for; true if something is to happen at it.
bool IsTheOne(Kind kind) {
  if (!hasBegun || !settings.isCounted[kind] || Raw(SYS_getpid) != process) return false;
  ++counts->kinds[kind].count;
  const std::int64_t call = ++calls;
  return settings.first > 0 && call >= settings.first &&
         (settings.span == 0 || call < settings.first + settings.span);
}

/// Of calls that fail one after the other, those that are not the first are told by their subject
/// where that is new: it is the library that asked for memory.
void Remember(const char* name, const char* subject) {
  const std::size_t told = std::strlen(counts->failed);
  const std::size_t size = std::strlen(subject);
  if (told > 0) {
    if (size == 0 || told + size + 2 > sizeof counts->failed) return;
    if (std::strstr(counts->failed, subject) != nullptr) return;
    counts->failed[told] = ' ';
    std::memcpy(counts->failed + told + 1, subject, size + 1);
    return;
  }
  Text text;
  text.Add(name);
  text.Add(" ");
  text.Add(subject);
  std::memcpy(counts->failed, text.Bytes(), text.Size() + 1);
}

void TakeName(const char* path) {
  if (settings.how == How::TakenByLink) {
    if (Raw(SYS_symlink, Address("nowhere"), Address(path)) != 0) Die("cannot take a name\n");
    return;
  }
  const long file = Raw(SYS_open, Address(path), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0) Die("cannot take a name\n");
  Raw(SYS_write, file, Address("foreign"), 7);
  Raw(SYS_close, file);
}

/// What comes of the call, where it is `settings.how` that decides.
long Disturbed(const Call& call, const long* a, const char* subject) {
  const auto real = [&] { return Raw(call.number, a[0], a[1], a[2], a[3], a[4], a[5]); };
  switch (settings.how) {
    case How::Error:
      // The descriptor is gone even where closing it fails.
      if (call.kind == Close) real();
      // This one tells a failure by leaving the end of the memory where it is.
      if (call.number == SYS_brk) return Raw(SYS_brk);
      return -settings.number;
    case How::Short:
      if (call.number == SYS_readv || call.number == SYS_writev) {
        const auto* const parts = reinterpret_cast<const iovec*>(static_cast<std::uintptr_t>(a[1]));
        const long single = call.number == SYS_readv ? SYS_read : SYS_write;
        for (long i = 0; i < a[2]; ++i) {
          const long size = static_cast<long>(parts[i].iov_len);
          if (size > 0) return Raw(single, a[0], Address(parts[i].iov_base), (size + 1) / 2);
        }
        return real();
      }
      return Raw(call.number, a[0], a[1], (a[2] + 1) / 2, a[3], a[4], a[5]);
    case How::Signal:
      Raw(SYS_kill, process, settings.number);
      return real();
    case How::TakenByFile:
    case How::TakenByLink:
      TakeName(subject);
      return real();
    case How::Shrink:
      Raw(SYS_truncate, Address(settings.victim), 60);
      return real();
    case How::Remove:
      Raw(SYS_unlink, Address(settings.victim));
      return real();
  }
  return real();
}

Kind KindOf(const Call& call, const long* arguments) {
  const long flags = call.number == SYS_open ? arguments[1] : arguments[2];
  const bool creates = (call.number == SYS_open || call.number == SYS_openat) &&
                       (flags & (O_CREAT | (O_TMPFILE & ~O_DIRECTORY))) != 0;
  return creates ? Create : call.kind;
}

/// Of ioctl only the sharing of blocks counts. What the program says of a failure arrives: a test
/// reads it.
bool IsOfItsKind(const Call& call, const long* arguments) {
  if (call.number == SYS_ioctl) return arguments[1] == static_cast<long>(FICLONE);
  return call.kind != Write || arguments[0] != STDERR_FILENO;
}

/// The system has stopped a call.
void OnCall(int /*signal*/, siginfo_t* /*info*/, void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  const long arguments[] = {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                            registers[REG_R10], registers[REG_R8],  registers[REG_R9]};
  const long number = registers[REG_RAX];
  const Call* call = kCalls;
  while (call->number != number) ++call;
  bool isTheOne = IsOfItsKind(*call, arguments);
  Text subject;
  if (isTheOne && *settings.below != '\0') {
    AddSubject(subject, call->subject, arguments);
    isTheOne = std::string_view(subject.Bytes()).starts_with(settings.below);
  }
  isTheOne = isTheOne && IsTheOne(KindOf(*call, arguments));
  if (!isTheOne) {
    registers[REG_RAX] = Raw(number, arguments[0], arguments[1], arguments[2], arguments[3],
                             arguments[4], arguments[5]);
    return;
  }
  if (subject.Size() == 0) AddSubject(subject, call->subject, arguments);
  Remember(call->name, subject.Bytes());
  registers[REG_RAX] = Disturbed(*call, arguments, subject.Bytes());
}

/// Where the C library's code stands.
struct CodeRange {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

CodeRange CLibrary() {
  CodeRange range;
  dl_iterate_phdr(
      [](dl_phdr_info* object, std::size_t, void* result) {
        // It has this function; the address is looked up, since a name may have a stand-in.
        const auto inside = reinterpret_cast<std::uint64_t>(dlsym(RTLD_NEXT, "getppid"));
        for (int i = 0; i < object->dlpi_phnum; ++i) {
          const auto& part = object->dlpi_phdr[i];
          const std::uint64_t begin = object->dlpi_addr + part.p_vaddr;
          if (part.p_type != PT_LOAD || (part.p_flags & PF_X) == 0) continue;
          if (inside < begin || inside >= begin + part.p_memsz) continue;
          *static_cast<CodeRange*>(result) = {begin, begin + part.p_memsz};
        }
        return 0;
      },
      &range);
  return range;
}

/// The program for the system that says which calls are stopped.
class Filter {
 public:
  void Add(std::uint16_t code, std::uint32_t value, std::uint8_t yes = 0, std::uint8_t no = 0) {
    lines_[size_++] = {code, yes, no, value};
  }
  void Load(std::size_t place) { Add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(place)); }
  void Answer(std::uint32_t answer) { Add(BPF_RET | BPF_K, answer); }
  /// Goes on if the value that was loaded is in the range, else lets the call pass.
  void PassUnless(std::uint16_t comparison, std::uint32_t value) {
    Add(static_cast<std::uint16_t>(BPF_JMP | BPF_K | comparison), value, 1, 0);
    Answer(SECCOMP_RET_ALLOW);
  }
  void PassIf(std::uint16_t comparison, std::uint32_t value) {
    Add(static_cast<std::uint16_t>(BPF_JMP | BPF_K | comparison), value, 0, 1);
    Answer(SECCOMP_RET_ALLOW);
  }
  [[nodiscard]] bool Install() {
    const sock_fprog program = {static_cast<unsigned short>(size_), lines_};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
  }

 private:
  sock_filter lines_[kNumCalls * 2 + 32] = {};
  std::size_t size_ = 0;
};

void StopCalls(const CodeRange& code) {
  constexpr std::size_t kPlace = offsetof(seccomp_data, instruction_pointer);
  const auto high = [](std::uint64_t place) { return static_cast<std::uint32_t>(place >> 32); };
  const auto low = [](std::uint64_t place) { return static_cast<std::uint32_t>(place); };
  Filter filter;
  filter.Load(offsetof(seccomp_data, arch));
  filter.PassUnless(BPF_JEQ, AUDIT_ARCH_X86_64);
  filter.Load(kPlace + 4);
  filter.PassUnless(BPF_JEQ, high(code.begin));
  filter.Load(kPlace);
  filter.PassUnless(BPF_JGE, low(code.begin));
  filter.PassIf(BPF_JGT, low(code.end));
  filter.Load(offsetof(seccomp_data, nr));
  for (const Call& call : kCalls) {
    const bool isAsked =
        settings.isCounted[call.kind] || (call.kind == Open && settings.isCounted[Create]);
    if (!isAsked) continue;
    filter.Add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call.number), 0, 1);
    filter.Answer(SECCOMP_RET_TRAP);
  }
  filter.Answer(SECCOMP_RET_ALLOW);
  struct sigaction action {};
  action.sa_sigaction = OnCall;
  action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_RESTART;
  sigaction(SIGSYS, &action, nullptr);
  if (!filter.Install()) Die("calls to the system cannot be stopped here\n");
}

const char* Setting(const char* name) {
  const char* const text = std::getenv(name);
  return text != nullptr ? text : "";
}

std::int64_t Number(const char* text) {
  return std::strtoll(text, nullptr, 10);
}

void ReadHow(std::string_view how) {
  static constexpr struct {
    const char* word;
    How how;
  } kWords[] = {{"short", How::Short},      {"signal ", How::Signal}, {"file", How::TakenByFile},
                {"link", How::TakenByLink}, {"shrink ", How::Shrink}, {"remove ", How::Remove}};
  for (const auto& word : kWords) {
    if (!how.starts_with(word.word)) continue;
    settings.how = word.how;
    settings.victim = how.data() + std::strlen(word.word);
    settings.number = static_cast<int>(Number(settings.victim));
    return;
  }
  settings.number = static_cast<int>(Number(how.data()));
}

void ReadKinds(std::string_view kinds) {
  const bool every = kinds == "every";
  for (int kind = 0; kind < kKinds; ++kind) {
    std::string_view rest = kinds;
    while (!rest.empty()) {
      const std::size_t comma = std::min(rest.find(','), rest.size());
      if (every || rest.substr(0, comma) == kKindNames[kind]) settings.isCounted[kind] = true;
      rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
  }
}

void MapCounts(const char* path) {
  const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0 || ftruncate(file, sizeof(Counts)) != 0) Die("no file for the counts\n");
  void* const mapped = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (mapped == MAP_FAILED) Die("no memory for the counts\n");
  close(file);
  counts = static_cast<Counts*>(mapped);
  for (int kind = 0; kind < kKinds; ++kind) {
    std::strncpy(counts->kinds[kind].name, kKindNames[kind], sizeof counts->kinds[kind].name - 1);
  }
}

using Main = int(int, char**, char**);
Main* programMain = nullptr;

int CountedMain(int argc, char** argv, char** environment) {
  // What this program starts is not counted, and need not find the library either.
  unsetenv("LD_PRELOAD");
  hasBegun = true;
  return programMain(argc, argv, environment);
}

template <class Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// For calls that are told here by a function, not by the system. `caller` is an address in what
/// calls it: a library does not always look whether it got memory.
bool Fails(Kind kind, const char* name, const void* caller) {
  if (!IsTheOne(kind)) return false;
  Dl_info library{};
  const bool isKnown = dladdr(caller, &library) != 0 && library.dli_fname != nullptr;
  const char* const path = isKnown ? library.dli_fname : "";
  const char* const slash = std::strrchr(path, '/');
  Remember(name, slash != nullptr ? slash + 1 : path);
  if (settings.how == How::Signal) Raw(SYS_kill, process, settings.number);
  return settings.how == How::Error;
}

}  // namespace

extern "C" {

int __libc_start_main(Main* main, int argc, char** arguments, int (*init)(), void (*fini)(),
                      void (*loaderFini)(), void* stackEnd) {
  process = getpid();
  ReadKinds(Setting("FAILING_KIND"));
  ReadHow(Setting("FAILING_HOW"));
  settings.first = Number(Setting("FAILING_CALL"));
  if (*Setting("FAILING_SPAN") != '\0') settings.span = Number(Setting("FAILING_SPAN"));
  settings.below = Setting("FAILING_BELOW");
  if (*Setting("FAILING_COUNT") != '\0') MapCounts(Setting("FAILING_COUNT"));
  const CodeRange code = CLibrary();
  // The filter compares one half of an address. Where the loader has put the library across two
  // halves, once in some thousand times, it gets another chance.
  if (code.begin >> 32 != code.end >> 32) execv("/proc/self/exe", arguments);
  StopCalls(code);
  programMain = main;
  return Next<int(Main*, int, char**, int (*)(), void (*)(), void (*)(), void*)>(
      "__libc_start_main")(CountedMain, argc, arguments, init, fini, loaderFini, stackEnd);
}

// The C library keeps these names for libraries such as this one. What operator new takes comes
// from malloc.
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t size) {
  if (!Fails(Memory, "malloc", __builtin_return_address(0))) return __libc_malloc(size);
  errno = ENOMEM;
  return nullptr;
}

void* calloc(std::size_t count, std::size_t size) {
  if (!Fails(Memory, "calloc", __builtin_return_address(0))) return __libc_calloc(count, size);
  errno = ENOMEM;
  return nullptr;
}

void* realloc(void* memory, std::size_t size) {
  if (size == 0 || !Fails(Memory, "realloc", __builtin_return_address(0)))
    return __libc_realloc(memory, size);
  errno = ENOMEM;
  return nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  if (!Fails(Memory, "aligned_alloc", __builtin_return_address(0)))
    return __libc_memalign(alignment, size);
  errno = ENOMEM;
  return nullptr;
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = Fails(Memory, "posix_memalign", __builtin_return_address(0))
                ? nullptr
                : __libc_memalign(alignment, size);
  return *memory != nullptr ? 0 : ENOMEM;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) {
  if (Fails(Start, "pthread_create", __builtin_return_address(0))) return EAGAIN;
  return Next<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create")(
      thread, attributes, start, argument);
}

pid_t fork() {
  if (!Fails(Start, "fork", __builtin_return_address(0))) return Next<pid_t()>("fork")();
  errno = EAGAIN;
  return -1;
}

int posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments,
                char* const* environment) {
  if (Fails(Start, "posix_spawn", __builtin_return_address(0))) return EAGAIN;
  return Next<int(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*,
                  char* const*, char* const*)>("posix_spawn")(child, path, actions, attributes,
                                                              arguments, environment);
}

}  // extern "C"
