#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora::prepare {

/// Writes an ADL that the system's scanner reads to its end: Shift-JIS, CR LF, one label a line.
/// All texts that come in are UTF-8; names, labels and values are made safe.
///
///     <ADL>
///     <EVENT_LIST>
///     (Entry) 0001
///     (Cut) I 1 1 1 ...
///     </EVENT_LIST>
///     </ADL>
class AdlText {
 public:
  AdlText();

  void OpenSection(std::string_view name);
  /// The name that OpenSection writes.
  [[nodiscard]] static std::string SectionName(std::string_view name);
  void CloseSection();
  /// Opens or closes a tag that is no section of its own: "REF_LIST", "REF".
  void Tag(std::string_view tag);

  /// A comment. It must stand outside all sections or before a section's first label: anywhere else
  /// the system takes its words for values.
  void Comment(std::string_view text);

  /// A label with its values, each as Word, Quoted or Value has made it.
  void Line(std::string_view label, const std::vector<std::string>& values);
  /// A label of the counted form, whose one value may hold anything.
  void CountedLine(std::string_view label, std::string_view value);

  /// The whole text. Nothing more can be written.
  [[nodiscard]] std::string Finish();

  // Values. They are in Shift-JIS already, and made once.

  /// In quotation marks, those inside it escaped.
  [[nodiscard]] static std::string Quoted(std::string_view text);
  /// As it is if it can stand without quotation marks, else in them.
  [[nodiscard]] static std::string Value(std::string_view text, bool quoted = false);

  /// True if quotation marks are needed around a value.
  [[nodiscard]] static bool NeedsQuotes(std::string_view text);

 private:
  void Add(std::string_view line);

  std::string text_;
  std::string section_;  ///< the open one, as written
};

}  // namespace velmora::prepare
