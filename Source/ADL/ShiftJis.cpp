#include "ADL/ShiftJis.h"

#include <iconv.h>

#include <array>

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

}  // namespace

std::string ShiftJisToUtf8(const char* text) {
  if (text == nullptr) return {};
  const char* at = text;
  while (*at != '\0' && IsAscii(*at)) ++at;
  std::string utf8(text, at);
  if (*at == '\0') return utf8;

  Converter converter;
  while (*at != '\0') {
    if (IsAscii(*at)) {  // the converter would turn backslash and tilde into yen and overline
      utf8 += *at++;
    } else if (converter.Append(at, 1, utf8)) {
      ++at;
    } else if (at[1] != '\0' && converter.Append(at, 2, utf8)) {
      at += 2;
    } else {
      utf8 += kReplacement;
      ++at;
    }
  }
  return utf8;
}

}  // namespace velmora
