#include "Program/JsonStream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "ADL/ShiftJis.h"
#include "Program/JsonPlain.h"
#include "Session/JsonText.h"

namespace velmora::program {
namespace {

/// Room for a double in any form.
constexpr std::size_t kMostDigits = 32;
/// "\u001f", the longest form of one byte.
constexpr std::size_t kMostEscaped = 6;
/// Longer texts, of which there are few, do not get room for the worst case.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 16;

/// Writes an ASCII character that JSON escapes; returns where it ends.
char* WriteEscaped(char* out, char c) {
  constexpr std::string_view kShort = "\"\"\\\\\bb\tt\nn\ff\rr";  // each with its letter
  constexpr const char* kHex = "0123456789abcdef";
  for (std::size_t i = 0; i < kShort.size(); i += 2) {
    if (kShort[i] != c) continue;
    *out++ = '\\';
    *out++ = kShort[i + 1];
    return out;
  }
  constexpr std::array<char, 4> kByNumber = {'\\', 'u', '0', '0'};
  std::copy(kByNumber.begin(), kByNumber.end(), out);
  out[4] = kHex[c >> 4];
  out[5] = kHex[c & 0xF];
  return out + kMostEscaped;
}

}  // namespace

bool JsonStream::AsciiText(std::string_view text) {
  if (text.size() > kMostAtOnce) return false;
  const char* at = text.data();
  const char* const end = at + text.size();
  const bool hadComma = needsComma_;
  char* out = Separated(kMostEscaped * text.size() + 2);
  *out++ = '"';
  while (at < end) {
    if (static_cast<std::size_t>(end - at) >= host::kWordBytes) {
      std::uint64_t bytes = 0;
      std::memcpy(&bytes, at, host::kWordBytes);
      if (ArePlainInJson(bytes)) {
        std::memcpy(out, &bytes, host::kWordBytes);
        at += host::kWordBytes;
        out += host::kWordBytes;
        continue;
      }
    }
    if (static_cast<unsigned char>(*at) >= 0x80) {
      needsComma_ = hadComma;
      return false;
    }
    if (IsPlainInJson(*at)) {
      *out++ = *at;
    } else {
      out = WriteEscaped(out, *at);
    }
    ++at;
  }
  *out++ = '"';
  text_.Take(out);
  return true;
}

JsonStream& JsonStream::Text(std::string_view text) {
  if (AsciiText(text)) return *this;
  return Word(host::JsonText(std::string(text)));
}

JsonStream& JsonStream::ProjectText(const char* text) {
  if (text == nullptr) return Null();
  if (AsciiText(text)) return *this;
  return Text(ShiftJisToUtf8(text));
}

JsonStream& JsonStream::Real(double number) {
  if (!std::isfinite(number)) return Null();
  char* const room = Separated(kMostDigits);
  text_.Take(std::to_chars(room, room + kMostDigits, number).ptr);
  return *this;
}

JsonStream& JsonStream::Decimal(double number) {
  if (!std::isfinite(number)) return Null();
  char* const room = Separated(kMostDigits);
  // The library's own writing of numbers, which now and then takes a digit more than is needed.
  text_.Take(nlohmann::detail::to_chars(room, room + kMostDigits, number));
  return *this;
}

void JsonStream::EndLine() {
  text_.Append('\n');
  needsComma_ = false;
  Flush();
}

void JsonStream::Flush() {
  if (out_ == nullptr) return;
  const std::string_view text = text_.Text();
  out_->write(text.data(), static_cast<std::streamsize>(text.size()));
  text_.Clear();
}

}  // namespace velmora::program
