#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

#include "LoadedProject.h"

namespace {

// No allocation of this program gets more than this.
constexpr std::size_t kLargestAllocation = std::size_t{256} * 1024 * 1024;
std::atomic<int> refusals = 0;

void* Allocate(std::size_t size) {
  if (size <= kLargestAllocation) {
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  }
  ++refusals;
  return nullptr;
}

void* AllocateOrThrow(std::size_t size) {
  if (void* const memory = Allocate(size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
  return AllocateOrThrow(size);
}
void* operator new[](std::size_t size) {
  return AllocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}

namespace velmora::test {
namespace {

// A sparse file: it claims a gigabyte and takes a few bytes of disk.
TEST(ProjectMemory, fileThatCannotBeHeldFails) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("huge.adl", "<ADL> ");
  ASSERT_EQ(truncate(path.c_str(), off_t{1024} * 1024 * 1024), 0);
  refusals = 0;
  const Loading loading(path);
  EXPECT_FALSE(loading.ok);
  EXPECT_GT(refusals, 0) << "the file's size was not asked of this program's allocator";
  ASSERT_TRUE(loading->failure.has_value());
  EXPECT_EQ(loading->failure->line, 0);
  EXPECT_EQ(loading->failure->section, "");
  EXPECT_EQ(loading->failure->label, "");
  EXPECT_NE(loading->failure->reason, "");
  EXPECT_TRUE(loading->sections.empty());
}

// Neither a count nor an index of the file makes memory be asked for in its proportion.
TEST(ProjectMemory, claimsOfAFileAllocateNothing) {
  refusals = 0;
  const LoadedProject project("<ADL> <A> (x)2147483647 y </A> </ADL>");
  EXPECT_TRUE(project.ok());
  const LoadedProject events(WithEvents("(Entry) -2147483648 (Rem) (Entry) 2147483647 (Rem)"));
  EXPECT_EQ(events->GetEventCount(), 2);
  const LoadedProject sources(WithSources("(Index) -2147483648 (Index) 2147483647"));
  EXPECT_EQ(sources->sourceFiles.size(), 2U);
  EXPECT_EQ(refusals, 0);
}

}  // namespace
}  // namespace velmora::test
