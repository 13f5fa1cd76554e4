#pragma once

#include <cstddef>
#include <new>

namespace velmora::media {

/// Takes so much memory and gives it back: throws std::bad_alloc if there is none. For what a
/// library is about to take by itself: libsndfile 1.2.0 and libsoxr 0.1.3 write to memory without a
/// look at whether they got it.
inline void AskForMemory(std::size_t bytes) {
  ::operator delete(::operator new(bytes));
}

}  // namespace velmora::media
