#include "Program/MemoryTrouble.h"

#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

#include "Session/InTheMaking.h"

namespace velmora::program {
namespace {

/// Several times what the messages at the end of a run take. Nobody writes to it, so it costs room
/// to put addresses in, and no memory.
constexpr std::size_t kReserveBytes = std::size_t{256} << 10;

std::atomic<void*> reserve{nullptr};
std::atomic<int> exitStatus{0};

/// The new-handler: either makes room and lets the allocation be tried again, or gives up.
void UseReserve() {
  void* const held = reserve.exchange(nullptr);
  if (held == nullptr) throw std::bad_alloc();
  std::free(held);
}

bool IsLackOfMemory(const std::exception_ptr& trouble) {
  if (trouble == nullptr) return false;
  try {
    std::rethrow_exception(trouble);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
}

/// The terminate-handler. Where the reserve has gone, that is what everything else comes from: a
/// thread that nobody could join, say.
[[noreturn]] void TellAndEnd() {
  if (reserve != nullptr && !IsLackOfMemory(std::current_exception())) std::abort();
  host::InTheMaking::RemoveAll();
  TellLackOfMemory();
  _exit(exitStatus);
}

}  // namespace

void PrepareForLackOfMemory(int status) {
  exitStatus = status;
  reserve = std::malloc(kReserveBytes);
  std::set_new_handler(UseReserve);
  std::set_terminate(TellAndEnd);
}

void TellLackOfMemory() {
  constexpr std::string_view kLine = "velmora: there is not enough memory\n";
  // Nothing is left to be done about a line that does not go out.
  static_cast<void>(!write(STDERR_FILENO, kLine.data(), kLine.size()));
}

}  // namespace velmora::program
