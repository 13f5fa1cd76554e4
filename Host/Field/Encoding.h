#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::field {

/// Turns a text's bytes into UTF-8. Bytes that the encoding does not have become U+FFFD.
class TextDecoder {
 public:
  /// @param encoding "ASCII", "UTF-8", "Shift-JIS" (as the system reads it, with backslash and
  /// tilde as they are), or any name that iconv knows
  explicit TextDecoder(const std::string& encoding);
  ~TextDecoder();
  TextDecoder(TextDecoder&&) noexcept;
  TextDecoder& operator=(TextDecoder&&) noexcept;

  [[nodiscard]] std::string ToUtf8(std::string_view bytes);
  /// Every byte has a meaning in the encoding.
  [[nodiscard]] bool DecodesWhole(std::string_view bytes);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// iconv, or this reader itself, knows an encoding of that name.
[[nodiscard]] bool IsKnownEncoding(const std::string& name);

/// ASCII letters stand for themselves, byte by byte, as the reading of tags and labels needs it:
/// true for all but encodings such as UTF-16.
[[nodiscard]] bool KeepsAscii(const std::string& encoding);

[[nodiscard]] bool IsAscii(std::string_view bytes);
[[nodiscard]] bool IsUtf8(std::string_view bytes);

/// Tells how a text is encoded, and answers "ASCII", "UTF-8", "Shift-JIS", "Windows-1252" or
/// "GBK". UTF-8 if the whole text is; else of the last three, in this order, the first that decodes
/// the whole text and in which a location names a file that is there; else the first that decodes
/// the whole text; else Shift-JIS, which is what the system shows.
/// @param locations the bytes of the texts that name files
/// @param adlPath   absolute. A location names a file in the ADL's folder by its name alone, below
///                  it by its ends, as the system looks for it, or anywhere by its decoded path.
[[nodiscard]] std::string DetectEncoding(std::string_view text,
                                         const std::vector<std::string_view>& locations,
                                         const std::string& adlPath);

}  // namespace velmora::field
