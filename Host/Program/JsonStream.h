#pragma once

#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <ostream>
#include <string_view>

#include "Program/CharBuffer.h"

namespace velmora::program {

/// Writes JSON in the order in which it is told, without building values first: a project of a
/// hundred thousand events has millions of them. Commas come by themselves; the caller closes what
/// it opens. Texts may be any bytes and come out as UTF-8.
///
/// Keys and numbers are stored in place, and texts copied eight bytes at a time: all of an event
/// takes some 1 µs, where building its values first took 20.
class JsonStream {
 public:
  /// Writes to a stream, now and then and when it goes.
  explicit JsonStream(std::ostream& out) : out_(&out), text_(own_) {}
  /// Appends to a text, which has to outlive it.
  explicit JsonStream(CharBuffer& text) : text_(text) {}
  ~JsonStream() { Flush(); }
  JsonStream(const JsonStream&) = delete;
  JsonStream& operator=(const JsonStream&) = delete;

  JsonStream& BeginObject() { return Open('{'); }
  JsonStream& EndObject() { return Close('}'); }
  JsonStream& BeginArray() { return Open('['); }
  JsonStream& EndArray() { return Close(']'); }
  /// What is written next is not the first element of the array that it goes into.
  JsonStream& ContinueArray() {
    needsComma_ = true;
    return *this;
  }

  /// The key of the value that is written next. `key` is one of our own words: nothing in it is
  /// escaped.
  template <std::size_t kSize>
  JsonStream& Key(const char (&key)[kSize]) {
    return Key(key, kSize - 1);
  }
  JsonStream& Key(std::string_view key) { return Key(key.data(), key.size()); }

  JsonStream& Text(std::string_view text);
  /// A text of the project, read as Shift-JIS; null for none.
  JsonStream& ProjectText(const char* text);
  JsonStream& Integer(std::int64_t number) {
    constexpr std::size_t kMostDigits = 24;
    char* const room = Separated(kMostDigits);
    text_.Take(std::to_chars(room, room + kMostDigits, number).ptr);
    return *this;
  }
  /// As few digits as tell the number from all others, and none after the point for a whole one;
  /// null for what is not finite.
  JsonStream& Real(double number);
  /// The same in the form that JsonText has: a whole number ends in ".0".
  JsonStream& Decimal(double number);
  /// A value in the form that it has in JSON.
  JsonStream& Word(std::string_view word) { return Word(word.data(), word.size()); }
  JsonStream& Boolean(bool value) { return value ? Word("true", 4) : Word("false", 5); }
  JsonStream& Null() { return Word("null", 4); }
  template <class Number>
  JsonStream& IntegerOrNull(const std::optional<Number>& number) {
    return number ? Integer(*number) : Null();
  }
  JsonStream& RealOrNull(const std::optional<double>& number) {
    return number ? Real(*number) : Null();
  }
  /// Null for the empty text.
  JsonStream& TextOrNull(std::string_view text) { return text.empty() ? Null() : Text(text); }

  void EndLine();

 private:
  /// Room for so many bytes of a value, after the comma that belongs before it.
  char* Separated(std::size_t bytes) {
    char* const room = text_.Room(bytes + 1);
    *room = ',';
    char* const value = room + (needsComma_ ? 1 : 0);
    needsComma_ = true;
    return value;
  }
  JsonStream& Key(const char* key, std::size_t size) {
    char* room = Separated(size + 3);
    *room++ = '"';
    std::memcpy(room, key, size);
    room += size;
    *room++ = '"';
    *room++ = ':';
    text_.Take(room);
    needsComma_ = false;
    return *this;
  }
  JsonStream& Word(const char* word, std::size_t size) {
    char* const room = Separated(size);
    std::memcpy(room, word, size);
    text_.Take(room + size);
    return *this;
  }
  JsonStream& Open(char bracket) {
    char* const room = Separated(1);
    *room = bracket;
    text_.Take(room + 1);
    needsComma_ = false;
    if (out_ != nullptr && text_.Size() > kFlushAt) Flush();
    return *this;
  }
  JsonStream& Close(char bracket) {
    text_.Append(bracket);
    needsComma_ = true;
    return *this;
  }
  /// Writes the text if all of it is ASCII and it is not overlong; otherwise writes nothing.
  bool AsciiText(std::string_view text);
  void Flush();

  static constexpr std::size_t kFlushAt = std::size_t{1} << 16;

  std::ostream* out_ = nullptr;
  CharBuffer own_;
  CharBuffer& text_;
  bool needsComma_ = false;
};

}  // namespace velmora::program
