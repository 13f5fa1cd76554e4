#include "Program/JsonStream.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "Session/JsonText.h"

namespace velmora::program {
namespace {

constexpr std::size_t kFlushAt = std::size_t{1} << 16;

/// Printable ASCII without the two characters that JSON escapes.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c >= ' ' && c < 0x7F && c != '"' && c != '\\'; });
}

}  // namespace

void JsonStream::Separate() {
  if (needsComma_) buffer_ += ',';
  needsComma_ = true;
  if (buffer_.size() > kFlushAt) Flush();
}

JsonStream& JsonStream::Open(char bracket) {
  Separate();
  buffer_ += bracket;
  needsComma_ = false;
  return *this;
}

JsonStream& JsonStream::Close(char bracket) {
  buffer_ += bracket;
  needsComma_ = true;
  return *this;
}

JsonStream& JsonStream::Key(std::string_view key) {
  Separate();
  buffer_ += '"';
  buffer_ += key;
  buffer_ += "\":";
  needsComma_ = false;
  return *this;
}

JsonStream& JsonStream::Word(std::string_view word) {
  Separate();
  buffer_ += word;
  return *this;
}

JsonStream& JsonStream::Text(std::string_view text) {
  Separate();
  if (IsPlain(text)) {
    buffer_ += '"';
    buffer_ += text;
    buffer_ += '"';
  } else {
    buffer_ += host::JsonText(std::string(text));
  }
  return *this;
}

JsonStream& JsonStream::Integer(std::int64_t number) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return Word({digits.data(), end});
}

JsonStream& JsonStream::Real(double number) {
  if (!std::isfinite(number)) return Null();
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return Word({digits.data(), end});
}

void JsonStream::EndLine() {
  buffer_ += '\n';
  needsComma_ = false;
  Flush();
}

void JsonStream::Flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

}  // namespace velmora::program
