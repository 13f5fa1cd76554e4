#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Field/FieldTree.h"
#include "Field/TreeTokens.h"

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
  bool TakeComment(bool amongValues);
  const char* CommentTextEnd(const char* begin);
  void TakeStrayWord();
  [[nodiscard]] bool EndsStrayWords() const;

  [[nodiscard]] bool ClosesLater(const char* at);
  [[nodiscard]] bool StandsLater(std::string_view tag, const char* at, const char*& last) const;
  void SkipBlanks();

  void AddStray(const char* begin, const char* end, StrayKind kind);
  [[nodiscard]] bool Inside(ScopeKind kind) const {
    return !scopes_.empty() && scopes_.back().kind == kind;
  }

  const char* const begin_;
  const char* const end_;
  const TreeTokens tokens_;
  const char* at_;
  Tree tree_;
  std::vector<Scope> scopes_;
  std::uint32_t outside_ = kNoSection;  ///< the piece that takes labels outside of sections
  bool outerClosed_ = false;
  bool cutInside_ = false;  ///< the end cuts a value or a comment
  // Places from which on no such mark stands in the text: a second search would find none either.
  const char* noQuoteFrom_;
  const char* noCommentEndFrom_;
  // Where these tags stand last, the text's start for nowhere; null as long as nobody asked.
  const char* lastClosing_ = nullptr;      ///< </ADL>
  const char* lastListClosing_ = nullptr;  ///< </REF_LIST>
};

}  // namespace velmora::field
