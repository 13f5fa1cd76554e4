#include "Base/LargePages.h"

#include <sys/mman.h>

#include <cstdint>

namespace velmora {

void AdviseLargePages([[maybe_unused]] void* begin, [[maybe_unused]] std::size_t size) {
#if defined(MADV_HUGEPAGE)
  // The call takes whole pages. Below some large pages there is nothing to gain; the kernel finds
  // by itself the large pages that lie inside.
  constexpr std::uintptr_t kPage = 4096;
  constexpr std::size_t kLeast = std::size_t{4} * 1024 * 1024;
  if (size < kLeast) return;
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  const std::uintptr_t skipped = (kPage - address % kPage) % kPage;
  madvise(static_cast<char*>(begin) + skipped, (size - skipped) / kPage * kPage, MADV_HUGEPAGE);
#endif
}

}  // namespace velmora
