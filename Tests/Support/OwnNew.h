#pragma once

// The forms of operator new and delete for a whole program, which may refuse what the test says:
// one source of a program of its own includes this, and defines RefusesMemory. All forms stand
// here, since those of a sanitizer do not lead to each other.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace velmora::test {

/// Asked before each request; true lets it fail.
[[nodiscard]] bool RefusesMemory(std::size_t bytes) noexcept;

}  // namespace velmora::test

// The compiler takes a free of what a new gave for an error where it sees both at once.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return velmora::test::RefusesMemory(bytes) ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}
void* operator new(std::size_t bytes) {
  void* const memory = operator new(bytes, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new[](std::size_t bytes) {
  return operator new(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return operator new(bytes, std::nothrow);
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
