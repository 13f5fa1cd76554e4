#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <string_view>

#include "Base/RoomInFile.h"
#include "Program/CharBuffer.h"

namespace velmora::program {

/// Writes texts of any size to a descriptor in large pieces, in the order in which they are told.
/// Memory does not grow with what is written.
class BlockOutput {
 public:
  explicit BlockOutput(int descriptor) : descriptor_(descriptor), room_(descriptor) {}
  BlockOutput(const BlockOutput&) = delete;
  BlockOutput& operator=(const BlockOutput&) = delete;

  /// Where small texts are put. They are written when there are enough of them, or by Finish.
  [[nodiscard]] CharBuffer& Text() { return text_; }
  BlockOutput& operator<<(std::string_view text) {
    text_.Append(text);
    return *this;
  }
  BlockOutput& operator<<(char c) {
    text_.Append(c);
    return *this;
  }

  /// Has `format` append the texts of `count` things, in blocks of `perBlock`. Many blocks are
  /// formatted on all processors at once, so that `format` may be called from several threads; they
  /// are written in their order. Once a write has failed no further block is formatted.
  void InBlocks(
      std::size_t count, std::size_t perBlock,
      const std::function<void(CharBuffer& text, std::size_t begin, std::size_t end)>& format);

  /// Writes what is left. False if the descriptor took less than everything.
  [[nodiscard]] bool Finish();

 private:
  void Write(std::string_view text);
  void WriteAll(std::array<std::string_view, 3> texts);
  void WriteText();
  void KeepRest();

  int descriptor_;
  RoomInFile room_;
  bool failed_ = false;
  CharBuffer text_;
  // What was told of a stretch that is not full yet.
  CharBuffer begun_;
  std::string_view rest_;  ///< what comes after it, where it was formatted
  /// Of the blocks that are formatted at the same time. They stay, for memory that was touched
  /// before costs the next table nothing.
  std::deque<CharBuffer> blockTexts_;
};

}  // namespace velmora::program
