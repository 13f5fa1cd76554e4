#include "Ardour/LocalOnly.h"

#if defined(__linux__)

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace velmora::ardour {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t kMachine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t kMachine = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t kMachine = 0;
#endif

// On x86-64 calls with this bit are those of a third form of the same machine.
constexpr std::uint32_t kOtherForm = 0x40000000;

constexpr sock_filter Load(std::size_t offset) {
  return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}
/// Goes on `yes` instructions after the next one if they are equal, else `no` after it.
constexpr sock_filter IfEqual(std::uint32_t value, std::uint8_t yes, std::uint8_t no) {
  return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, yes, no);
}
constexpr sock_filter IfAtLeast(std::uint32_t value, std::uint8_t yes, std::uint8_t no) {
  return BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, value, yes, no);
}
constexpr sock_filter Answer(std::uint32_t action) {
  return BPF_STMT(BPF_RET | BPF_K, action);
}
constexpr std::uint32_t kRefuse = SECCOMP_RET_ERRNO | EACCES;

}  // namespace

bool StayLocal() {
  if (kMachine == 0) return false;
  // The address family is a socket's first argument; its low half comes first on these machines.
  sock_filter steps[] = {
      Load(offsetof(seccomp_data, arch)),
      IfEqual(kMachine, 0, 7),  // a program for another machine could ask under other numbers
      Load(offsetof(seccomp_data, nr)),
      IfAtLeast(kOtherForm, 5, 0),
      IfEqual(__NR_io_uring_setup, 4, 0),  // makes sockets too
      IfEqual(__NR_socket, 0, 4),
      Load(offsetof(seccomp_data, args)),
      IfEqual(AF_UNIX, 2, 0),
      IfEqual(AF_NETLINK, 1, 0),  // the kernel's own news, say of devices
      Answer(kRefuse),
      Answer(SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {sizeof steps / sizeof steps[0], steps};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace velmora::ardour

#else

namespace velmora::ardour {

bool StayLocal() {
  return false;
}

}  // namespace velmora::ardour

#endif
