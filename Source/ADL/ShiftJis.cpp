#include "ADL/ShiftJis.h"

#include <iconv.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velmora {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD

/// The C library's converter, which a machine may lack.
class Converter {
 public:
  Converter() : descriptor_(iconv_open("UTF-8", "SHIFT_JISX0213")) {}
  ~Converter() {
    if (IsOpen()) iconv_close(descriptor_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  /// Appends the character that stands in just these bytes; false if they are no character.
  bool Append(const char* bytes, std::size_t count, std::string& output) {
    if (!IsOpen()) return false;
    std::array<char, 32> room{};
    char* in = const_cast<char*>(bytes);  // iconv's interface is older than const
    char* out = room.data();
    std::size_t inLeft = count;
    std::size_t outLeft = room.size();
    iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
    const bool converted = iconv(descriptor_, &in, &inLeft, &out, &outLeft) != kError &&
                           inLeft == 0 &&
                           iconv(descriptor_, nullptr, nullptr, &out, &outLeft) != kError;
    if (converted) output.append(room.data(), room.size() - outLeft);
    return converted;
  }

 private:
  static constexpr auto kError = static_cast<std::size_t>(-1);
  bool IsOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }
  iconv_t descriptor_;
};

bool IsAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

/// How many bytes of the text stand before the first that is not ASCII.
std::size_t AsciiLength(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t length = 0;
  for (std::uint64_t word = 0; length + sizeof word <= text.size(); length += sizeof word) {
    std::memcpy(&word, text.data() + length, sizeof word);
    if ((word & kHighBits) != 0) break;
  }
  while (length < text.size() && IsAscii(text[length])) ++length;
  return length;
}

/// `text` begins with a byte that is not ASCII.
void AppendConverted(std::string_view text, std::string& utf8) {
  Converter converter;
  std::size_t at = 0;
  while (at < text.size()) {
    const char* const bytes = text.data() + at;
    if (IsAscii(*bytes)) {  // the converter would turn backslash and tilde into yen and overline
      utf8 += *bytes;
      ++at;
    } else if (converter.Append(bytes, 1, utf8)) {
      ++at;
    } else if (at + 1 < text.size() && converter.Append(bytes, 2, utf8)) {
      at += 2;
    } else {
      utf8 += kReplacement;
      ++at;
    }
  }
}

}  // namespace

std::string ShiftJisToUtf8(const char* text) {
  std::string utf8;
  if (text != nullptr) AppendShiftJisAsUtf8(text, utf8);
  return utf8;
}

void AppendShiftJisAsUtf8(std::string_view text, std::string& utf8) {
  const std::size_t ascii = AsciiLength(text);
  utf8.append(text.data(), ascii);
  if (ascii < text.size()) AppendConverted(text.substr(ascii), utf8);
}

}  // namespace velmora
