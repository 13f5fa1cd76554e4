#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace velmora::program {

/// Text that grows at its end. Unlike a std::string it hands out room that is not filled yet, so
/// that a piece of known length is stored in place: some 2 ns where a call of append takes 8, which
/// counts in a JSON of millions of pieces.
class CharBuffer {
 public:
  CharBuffer() = default;
  /// @param room for so many bytes from the start
  explicit CharBuffer(std::size_t room) { Grow(room); }
  CharBuffer(const CharBuffer&) = delete;
  CharBuffer& operator=(const CharBuffer&) = delete;

  /// Where the next bytes belong: room for at least so many. Take tells how far it was filled.
  char* Room(std::size_t bytes) {
    if (static_cast<std::size_t>(end_ - at_) < bytes) Grow(bytes);
    return at_;
  }
  void Take(char* filledTo) { at_ = filledTo; }
  /// One past the room that there is.
  [[nodiscard]] char* RoomEnd() const { return end_; }

  void Append(std::string_view text) {
    char* const room = Room(text.size());
    if (!text.empty()) std::memcpy(room, text.data(), text.size());
    at_ += text.size();
  }
  void Append(char c) {
    *Room(1) = c;
    ++at_;
  }
  void AppendBlanks(std::size_t count) {
    std::memset(Room(std::max(count, kFewBlanks)), ' ', kFewBlanks);
    if (count > kFewBlanks) std::memset(at_, ' ', count);
    at_ += count;
  }

  [[nodiscard]] std::size_t Size() const { return static_cast<std::size_t>(at_ - data_.get()); }
  [[nodiscard]] std::string_view Text() const { return {data_.get(), Size()}; }
  /// Keeps the memory.
  void Clear() { at_ = data_.get(); }

 private:
  /// Stored without a call, however many are wanted.
  static constexpr std::size_t kFewBlanks = 16;

  void Grow(std::size_t bytes) {
    constexpr std::size_t kLeast = 4096;
    const std::size_t size = Size();
    const std::size_t capacity =
        std::max({kLeast, size + bytes, 2 * static_cast<std::size_t>(end_ - data_.get())});
    std::unique_ptr<char[]> data(new char[capacity]);
    if (size > 0) std::memcpy(data.get(), data_.get(), size);
    data_ = std::move(data);
    at_ = data_.get() + size;
    end_ = data_.get() + capacity;
  }

  std::unique_ptr<char[]> data_;
  char* at_ = nullptr;   ///< one past what is filled
  char* end_ = nullptr;  ///< one past the room
};

}  // namespace velmora::program
