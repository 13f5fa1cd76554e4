#pragma once

#include <cstddef>
#include <string_view>

namespace velmora::field {

/// Control characters, NUL bytes among them, and the blank. Bytes of 0x80 and more belong to words.
[[nodiscard]] constexpr bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

[[nodiscard]] constexpr bool EndsLine(char c) {
  return c == '\n' || c == '\r';
}

/// <NAME> or </NAME>.
struct Tag {
  std::string_view name;
  const char* end = nullptr;  ///< past the ">", or past the word that has none
  bool closes = false;
  bool plain = false;  ///< written as the system reads it: no blanks inside, one after it
};

/// (LABEL), or the counted form (LABEL)N.
struct Label {
  std::string_view name;
  const char* end = nullptr;  ///< past the ")" and the digits of the counted form
  bool counted = false;
  std::size_t count = 0;  ///< N of the counted form
  bool plain = false;     ///< written as the system reads it
};

/// Where a token stands: where labels and tags are expected, or after a value on its line, where a
/// bracket may belong to a name.
enum class Among { Labels, Values };

/// A word of letters, digits and underscores, which only a label is.
[[nodiscard]] bool IsIdentifier(std::string_view text);

/// Tells the pieces of a text from one another. Every answer takes time in proportion to the piece
/// that it is about, or to a name of bounded length.
class TreeTokens {
 public:
  explicit TreeTokens(const char* end) : end_(end) {}

  /// What stands at `at`, which is a "<" or a "(". False, and nothing of use in the answer, if it
  /// is no tag or label.
  [[nodiscard]] bool ReadTag(const char* at, Among among, Tag& tag) const;
  [[nodiscard]] bool ReadLabel(const char* at, Among among, Label& label) const;

  /// The next blank.
  [[nodiscard]] const char* TokenEnd(const char* at) const;
  /// The same for a token that belongs to nothing.
  [[nodiscard]] const char* StrayTokenEnd(const char* at) const;
  [[nodiscard]] const char* ValueEnd(const char* at) const;
  [[nodiscard]] const char* StrayEnd(const char* at) const;
  [[nodiscard]] const char* LineEnd(const char* at) const;
  /// The text stands there, in any case.
  [[nodiscard]] bool StandsAt(const char* at, std::string_view text) const;

 private:
  [[nodiscard]] bool ReadsAsCounted(Label& label) const;
  [[nodiscard]] bool ReadsAsGlued(const Label& label) const;

  const char* const end_;
};

}  // namespace velmora::field
