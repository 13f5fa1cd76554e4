#pragma once

#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "Program/CharBuffer.h"
#include "Program/JsonPlain.h"

namespace velmora::program {

/// A piece of JSON that is known only when the program runs and is written over and over: the key
/// of a column. It is copied in whole steps, without a call.
class JsonPiece {
 public:
  explicit JsonPiece(std::string_view piece) : bytes_(piece), size_(piece.size()) {
    bytes_.resize((size_ + kStepBytes - 1) / kStepBytes * kStepBytes);
  }
  [[nodiscard]] std::size_t Room() const { return bytes_.size(); }
  /// Writes up to Room() bytes; returns where the piece ends.
  char* CopyTo(char* out) const {
    for (std::size_t at = 0; at < bytes_.size(); at += kStepBytes) {
      std::memcpy(out + at, bytes_.data() + at, kStepBytes);
    }
    return out + size_;
  }

 private:
  std::string bytes_;
  std::size_t size_;
};

/// Writes JSON of a form that is fixed, for the arrays that a project of a hundred thousand events
/// fills with millions of values. Unlike JsonStream it puts no commas and checks nothing: the
/// caller writes all that is fixed, commas, keys and brackets, as whole pieces of JSON. What goes
/// through it takes half the time. In return it has to be a variable of the function that uses it,
/// whose calls are all made in place, so that where it writes stays in a register.
///
/// What was written stands in the text when the pen has gone.
class JsonPen {
 public:
  /// @param text  what is appended to; nobody else touches it while the pen is there
  /// @param block bytes of the project in which most of its texts stand, to its very end; it may be
  ///              empty
  JsonPen(CharBuffer& text, std::string_view block)
      : text_(text),
        at_(text.Room(0)),
        end_(at_),
        block_(reinterpret_cast<std::uintptr_t>(block.data())),
        starts_(block.size() < kLooked ? 0 : block.size() - kLooked + 1) {}
  ~JsonPen() { text_.Take(at_); }
  JsonPen(const JsonPen&) = delete;
  JsonPen& operator=(const JsonPen&) = delete;

  /// JSON as it stands.
  template <std::size_t kSize>
  [[gnu::always_inline]] JsonPen& Part(const char (&json)[kSize]) {
    Ensure(kSize);
    std::memcpy(at_, json, kSize - 1);
    at_ += kSize - 1;
    return *this;
  }
  [[gnu::always_inline]] JsonPen& Part(const JsonPiece& piece) {
    Ensure(piece.Room());
    at_ = piece.CopyTo(at_);
    return *this;
  }
  /// An integer's digits.
  [[gnu::always_inline]] JsonPen& Digits(std::string_view digits) {
    Ensure(digits.size());
    for (const char digit : digits) *at_++ = digit;
    return *this;
  }

  [[gnu::always_inline]] JsonPen& Integer(std::int64_t number) {
    constexpr std::size_t kMostDigits = 24;
    Ensure(kMostDigits);
    if (number >= 0 && number < 10) {
      *at_++ = static_cast<char>('0' + number);
    } else {
      at_ = std::to_chars(at_, at_ + kMostDigits, number).ptr;
    }
    return *this;
  }
  /// As JsonStream::Decimal.
  [[gnu::always_inline]] JsonPen& Decimal(double number) {
    if (std::bit_cast<std::uint64_t>(number) == 0) return Part("0.0");
    Renew(DecimalAt(text_, at_, number));
    return *this;
  }

  /// A text of the project, read as Shift-JIS; null for none. Most have fewer than 32 bytes, all
  /// plain: they are looked at and copied in one go, with their end, where that lies in the block.
  [[gnu::always_inline]] JsonPen& ProjectText(const char* text) {
    Ensure(kLooked + 2);
    if (reinterpret_cast<std::uintptr_t>(text) - block_ < starts_) {
      const std::uint32_t odd = MarkEscaped(text) | MarkEscaped(text + kStepBytes) << kStepBytes;
      std::memcpy(at_ + 1, text, kLooked);
      const auto size = static_cast<std::size_t>(std::countr_zero(odd));
      if (odd != 0 && text[size] == '\0') {
        Quote(size);
        return *this;
      }
    }
    Renew(ProjectTextAt(text_, at_, text));
    return *this;
  }
  /// The same of a text whose size is known, without NULs.
  [[gnu::always_inline]] JsonPen& ProjectText(std::string_view text) {
    if (!PutPlain(text)) Renew(ProjectTextAt(text_, at_, std::string(text).c_str()));
    return *this;
  }
  /// Any text, read as UTF-8. One that ends its line, as an event's number does, is plain up to
  /// there.
  [[gnu::always_inline]] JsonPen& Text(std::string_view text) {
    const bool endsLine = !text.empty() && text.back() == '\n';
    if (!PutPlain(endsLine ? text.substr(0, text.size() - 1) : text)) {
      Renew(TextAt(text_, at_, text));
    } else if (endsLine) {
      --at_;
      Part(R"(\n")");
    }
    return *this;
  }

 private:
  static constexpr std::size_t kLooked = 2 * kStepBytes;

  [[gnu::always_inline]] void Ensure(std::size_t bytes) {
    if (static_cast<std::size_t>(end_ - at_) < bytes) Renew(RoomAt(text_, at_, bytes));
  }
  /// Goes on at `at`, after somebody else has written to the text.
  [[gnu::always_inline]] void Renew(char* at) {
    at_ = at;
    end_ = text_.RoomEnd();
  }
  /// Puts the quotation marks around so many bytes that stand there.
  [[gnu::always_inline]] void Quote(std::size_t size) {
    *at_ = '"';
    at_[size + 1] = '"';
    at_ += size + 2;
  }
  [[gnu::always_inline]] bool PutPlain(std::string_view text) {
    Ensure(text.size() + 2);
    if (!CopyPlainText(text, at_ + 1)) return false;
    Quote(text.size());
    return true;
  }

  // What is rare or long is a call that gets no address of the pen. Each is told how far the text
  // goes, and returns how far it goes then.
  static char* RoomAt(CharBuffer& text, char* at, std::size_t bytes);
  static char* DecimalAt(CharBuffer& text, char* at, double number);
  static char* ProjectTextAt(CharBuffer& text, char* at, const char* added);
  static char* TextAt(CharBuffer& text, char* at, std::string_view added);

  CharBuffer& text_;
  char* at_;
  char* end_;
  std::uintptr_t block_;
  std::size_t starts_;  ///< so many of the block's bytes may be the first of those looked at
};

}  // namespace velmora::program
