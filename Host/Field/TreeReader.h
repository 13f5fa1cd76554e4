#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Field/FieldTree.h"

namespace velmora::field {

/// Cuts a text into a tree; see Tree for how it reads. One walk over the text.
class TreeReader {
 public:
  explicit TreeReader(std::string_view file);
  [[nodiscard]] Tree Read() &&;

 private:
  static constexpr std::uint32_t kNoSection = 0xFFFFFFFF;

  enum class ScopeKind { Section, ReferenceList, Reference };
  /// What is open at a place of the text, the outer tag apart.
  struct Scope {
    ScopeKind kind = ScopeKind::Section;
    std::string_view name;
    bool inReferenceList = false;
    std::uint32_t first = kNoSection;    ///< its first piece in Tree::sections
    std::uint32_t current = kNoSection;  ///< the piece that takes entries; none after a section
                                         ///< inside it has begun
  };
  struct Tag {
    std::string_view name;
    const char* end = nullptr;  ///< past the ">", or past the word that has none
    bool closes = false;
    bool plain = false;  ///< written as the system reads it: no blanks inside, one after it
  };
  struct Label {
    std::string_view name;
    const char* end = nullptr;  ///< past the ")" and the digits of the counted form
    bool counted = false;
    std::size_t count = 0;  ///< N of the counted form
    bool plain = false;     ///< written as the system reads it
  };

  // The start of the text.
  void SkipByteOrderMark();
  bool FindStart();
  const char* FindOpeningTag() const;

  // Sections.
  void ReadOuter();
  bool TakeTag(const Tag& tag);
  void Open(const Tag& tag);
  void Close(const Tag& tag);
  void EndPiece();
  void PopTo(std::size_t depth);
  void OpenPiece(std::string_view name, bool resumed);

  // Entries.
  void TakeEntry(const Label& label);
  void TakeCountedValue(const Label& label);
  void TakeValues();
  bool TakeValue(const char* lineOf);
  void TakeQuotedValue();
  void TakeComment(bool amongValues);
  void TakeStrayWord();
  [[nodiscard]] const char* StrayTokenEnd(const char* at) const;
  [[nodiscard]] bool EndsStrayWords() const;

  [[nodiscard]] bool ReadsAsTag(const char* at, bool amongValues, Tag& tag) const;
  [[nodiscard]] bool ReadsAsLabel(const char* at, bool amongValues, Label& label) const;
  [[nodiscard]] bool ReadsAsCounted(Label& label) const;
  [[nodiscard]] bool ReadsAsGlued(const Label& label) const;
  [[nodiscard]] const char* StrayEnd(const char* at) const;
  [[nodiscard]] const char* TokenEnd(const char* at) const;
  [[nodiscard]] const char* ValueEnd(const char* at) const;
  [[nodiscard]] const char* LineEnd(const char* at) const;
  [[nodiscard]] bool At(const char* at, std::string_view text) const;
  [[nodiscard]] bool ClosesLater(const char* at);
  void SkipBlanks();

  void AddStray(const char* begin, const char* end, StrayKind kind);
  [[nodiscard]] bool Inside(ScopeKind kind) const {
    return !scopes_.empty() && scopes_.back().kind == kind;
  }

  const char* const begin_;
  const char* const end_;
  const char* at_;
  Tree tree_;
  std::vector<Scope> scopes_;
  std::uint32_t outside_ = kNoSection;  ///< the piece that takes labels outside of sections
  bool outerClosed_ = false;
  bool cutInside_ = false;  ///< the end cuts a value or a comment
  // Places from which on no such mark stands in the text: a second search would find none either.
  const char* noQuoteFrom_;
  const char* noCommentEndFrom_;
  const char* lastClosing_ = nullptr;  ///< of the last </ADL>, once it was looked for
  bool closingLookedFor_ = false;
};

}  // namespace velmora::field
