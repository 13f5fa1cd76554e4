#pragma once

#include <cstddef>
#include <functional>

namespace velmora::program {

/// Calls `work` for all of `count` things, in blocks of `perBlock`, on all processors; returns when
/// all is done. Blocks are begun in their order, each once. What `work` throws goes to the caller,
/// and no further block is begun. One block alone is done by the caller itself.
void WorkInBlocks(std::size_t count, std::size_t perBlock,
                  const std::function<void(std::size_t begin, std::size_t end)>& work);

/// Threads that WorkInBlocks has at work for so many blocks, the caller's own among them.
[[nodiscard]] std::size_t WorkersFor(std::size_t blocks);

}  // namespace velmora::program
