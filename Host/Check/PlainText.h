#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string_view>

#include "Field/FieldTree.h"

namespace velmora::check {

/// A label with its values, as they stand in the file.
struct PlainLine {
  static constexpr std::size_t kKept = 8;
  std::string_view label;
  std::size_t valueCount = 0;
  std::array<field::Value, kKept> values;  ///< the first of them
};

/// Reads an ADL whose text leaves no choice of how it is to be read: the system's scanner and the
/// field reader find the same sections, labels and values in it, byte for byte. That is so for
/// - a text that begins with <ADL>, and sections of plain names that close by their own tag,
/// - labels of letters, digits and underscores, with a blank after the parenthesis,
/// - values of ASCII that do not begin like a label, tag or comment and hold no "<",
/// - values in quotation marks with any bytes but NUL and ESC, and a blank after them,
/// - nothing else: no comments, no stray words, no lists of references, no text that ends early.
/// Where any other text comes up the reading stops.
///
/// Takes some tenths of a nanosecond a byte, and the memory of one block of the file.
class PlainText {
 public:
  enum class Piece : std::uint8_t {
    Label,    ///< Line() has it
    Opening,  ///< <NAME>, of which Name() tells the name
    Closing,  ///< </NAME>
    Odd,      ///< something else, or the end of the file: the reading is over
  };

  /// @param stream    outlives this; its position stays as it is
  /// @param cancelled asked once for each block; the text is odd from there on if it says so
  PlainText(std::FILE* stream, std::function<bool()> cancelled);

  /// The next piece, which is valid until the next question.
  [[nodiscard]] Piece Next();
  [[nodiscard]] const PlainLine& Line() const { return line_; }
  [[nodiscard]] std::string_view Name() const { return name_; }

 private:
  enum class Step : std::uint8_t { Taken, More, Odd };
  [[nodiscard]] Step Take();
  [[nodiscard]] Step TakeLabel(const char* at);
  [[nodiscard]] Step TakeValues(const char* at);
  [[nodiscard]] Step TakeTag(const char* at);
  [[nodiscard]] bool Fill();

  std::FILE* const stream_;
  const std::function<bool()> cancelled_;
  const std::unique_ptr<char[]> block_;
  const char* at_;          ///< in the block: what has not been told yet
  const char* end_;         ///< in the block, where a NUL stands
  std::int64_t place_ = 0;  ///< in the file, of `end_`
  bool atEnd_ = false;      ///< the block holds the file's last byte
  bool begun_ = false;
  Piece piece_ = Piece::Odd;
  PlainLine line_;
  std::string_view name_;
};

}  // namespace velmora::check
