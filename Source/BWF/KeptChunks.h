#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "BWF/BwfRecords.h"

namespace velmora {

/// The chunks of a wave file that are not understood, in file order. It reads like a vector, but
/// holds only what was asked for: a file can have millions of them, and a size field can claim
/// gigabytes. What was read once stays, at its address, until this object goes; what was not is
/// read from the file as it is then.
///
/// Asking in order costs one walk over the file. Asking in any other order costs little more, as
/// places on the way are remembered.
class KeptChunks {
 public:
  KeptChunks();
  ~KeptChunks();

  /// Makes this the chunks of a file, `count` of them, and forgets all others.
  /// @param riffEnd where the form ends; a negative end counts as far away
  void Reset(std::string path, std::int64_t riffEnd, std::size_t count);

  /// The chunk at an index; null out of range, if the file no longer holds it, or if memory does
  /// not suffice.
  [[nodiscard]] BwfChunk* At(std::int64_t index);

  // As of a vector; names and rules are the standard library's.

  [[nodiscard]] std::size_t size() const { return count_; }
  [[nodiscard]] bool empty() const { return count_ == 0; }
  /// A chunk that cannot be read is an empty one.
  [[nodiscard]] BwfChunk& operator[](std::size_t index);

  class Iterator {
   public:
    Iterator(KeptChunks& chunks, std::size_t index) : chunks_(chunks), index_(index) {}
    BwfChunk& operator*() const { return chunks_[index_]; }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator& other) const { return index_ == other.index_; }

   private:
    KeptChunks& chunks_;
    std::size_t index_;
  };
  [[nodiscard]] Iterator begin() { return {*this, 0}; }
  [[nodiscard]] Iterator end() { return {*this, count_}; }

  /// How many chunks are in memory.
  [[nodiscard]] std::size_t Held() const { return held_.size(); }

 private:
  class Finder;

  BwfChunk* Read(std::int64_t index);

  std::string path_;
  std::int64_t riffEnd_ = 0;
  std::size_t count_ = 0;
  std::map<std::int64_t, BwfChunk> held_;  ///< by index
  std::unique_ptr<Finder> finder_;         ///< null until a chunk is asked for
  BwfChunk none_;
};

}  // namespace velmora
