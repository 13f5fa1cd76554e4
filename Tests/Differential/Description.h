#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "ADL/AES31Event.h"
#include "ADL/AES31SourceFile.h"

namespace velmora::test::differential {

// Projects in lines of text, so that two of them can be compared, and a difference shown.

/// A text with all that is no plain ASCII escaped, in quotes, as C++ takes it.
[[nodiscard]] std::string Quoted(std::string_view bytes);

/// The first line in which two descriptions differ, of both; empty if they are equal.
[[nodiscard]] std::string FirstDifference(const std::string& expected, const std::string& got);

/// Describes what points into a block of text: each text with its place, so that equal words at
/// different places are different.
class Description {
 public:
  Description(const char* begin, std::size_t size) : begin_(begin), size_(size) {}

  template <class Sections>
  void AddSections(const std::string& title, const Sections& sections) {
    for (const auto& section : sections) {
      AddLine(title + " " + Text(section.name));
      for (const auto& entry : section.entries) {
        std::string line = "  (" + Text(entry.label) + ")";
        for (const char* const value : entry.values) line += " " + Text(value);
        AddLine(line);
      }
    }
  }
  /// Sections, reference lists and comments.
  template <class Project>
  void AddTree(const Project& project) {
    AddSections("section", project.sections);
    for (const auto& list : project.refLists) {
      AddLine("reference list");
      AddSections("  section", list);
    }
    for (const char* const comment : project.comments) AddLine("comment " + Text(comment));
  }
  template <class Constants>
  void AddConstants(const Constants& constants) {
    for (const char* const constant : constants) AddLine("constant " + Text(constant));
  }
  void AddSources(const std::map<std::int32_t, AES31SourceFile>& sources);
  /// All fields but the files, the check boxes among them.
  void AddEvent(const AES31Event& event);
  void AddLine(const std::string& line) { lines_ += line + "\n"; }

  [[nodiscard]] std::string Text(const char* text) const;
  [[nodiscard]] const std::string& Lines() const { return lines_; }

 private:
  [[nodiscard]] std::string Edit(const AES31Event& event) const;
  [[nodiscard]] std::string Fade(const AES31Fade& fade) const;

  const char* begin_;
  std::size_t size_;
  std::string lines_;
};

}  // namespace velmora::test::differential
