#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// A second scanner, written for comparison: the same rules by positions instead of pointers,
/// without a thought for speed. Texts are offsets; `Text` reads one when the scan has ended.
class ReferenceScanner {
 public:
  explicit ReferenceScanner(std::string_view adl) : bytes_(adl), end_(adl.size()) {
    bytes_ += '\0';
    ScanSection(sections_, 0, "ADL");
  }

  std::string Sections() const { return Shown(sections_); }
  std::string RefLists() const {
    std::string shown;
    for (const Tree& list : refLists_) shown += "[" + Shown(list) + "]";
    return shown;
  }
  std::string Comments() const {
    std::string shown;
    for (const std::size_t comment : comments_) {
      shown += (shown.empty() ? "" : "|") + Text(comment);
    }
    return shown;
  }
  /// True if the file's end came inside a reference list, where it is open whether the block that
  /// it cuts is kept.
  bool CutInsideAReferenceList() const { return cutInsideList_; }

 private:
  static constexpr std::size_t kEmptyText = static_cast<std::size_t>(-1);
  struct Entry {
    std::size_t label;
    std::vector<std::size_t> values;
  };
  struct Section {
    std::size_t name;
    std::vector<Entry> entries;
  };
  using Tree = std::vector<Section>;
  using Position = std::optional<std::size_t>;

  std::string Text(std::size_t offset) const {
    if (offset == kEmptyText || offset > end_) return {};
    return bytes_.substr(offset, bytes_.find('\0', offset) - offset);
  }
  std::string Shown(const Tree& tree) const {
    std::string shown;
    for (const Section& section : tree) {
      std::string entries;
      for (const Entry& entry : section.entries) {
        std::string values;
        for (const std::size_t value : entry.values) {
          values += (values.empty() ? "" : "|") + Text(value);
        }
        entries += (entries.empty() ? "" : "; ") + Text(entry.label) + ":" + values;
      }
      shown += (shown.empty() ? "" : " ") + Text(section.name) + "{" + entries + "}";
    }
    return shown;
  }

  bool IsBlank(std::size_t at) const {
    return at >= end_ || static_cast<signed char>(bytes_[at]) < 33;
  }
  std::size_t SkipBlanks(std::size_t at) const {
    while (at < end_ && IsBlank(at)) ++at;
    return at;
  }
  std::size_t TokenEnd(std::size_t at) const {
    if (at >= end_) return end_;
    do ++at;
    while (!IsBlank(at));
    return at;
  }
  static char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
  bool Begins(std::size_t at, std::string_view text) const {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (at + i >= end_ || Upper(bytes_[at + i]) != Upper(text[i])) return false;
    }
    return true;
  }
  bool BeginsExactly(std::size_t at, std::string_view text) const {
    return at < end_ && std::string_view(bytes_).substr(at, text.size()) == text;
  }
  std::size_t NoteEnd(std::size_t at) {
    if (depth_ > 0) cutInsideList_ = true;
    return at;
  }

  Position ScanSection(Tree& target, std::size_t at, const std::string& tag) {
    if (!Begins(at, "<" + tag + ">")) return std::nullopt;
    at = TokenEnd(at);
    if (at >= end_) return NoteEnd(at);
    while (true) {
      const std::size_t start = SkipBlanks(at);
      if (start >= end_) return NoteEnd(end_);
      at = TokenEnd(start);
      if (Begins(start, "</" + tag + ">")) return at;
      if (Begins(start, "<REF_LIST>")) {
        const Position next = ScanReferenceList(at);
        if (!next) return std::nullopt;
        at = *next;
      } else if (bytes_[start] == '<') {
        bytes_[at - 1] = '\0';
        Section section{at - 1 == start ? kEmptyText : start + 1, {}};
        at = ScanEntries(section, at);
        target.push_back(section);
        if (at >= end_) NoteEnd(at);
        if (at == end_) return std::nullopt;
      } else if (BeginsExactly(start, "/*")) {
        at = TakeComment(start);
      } else {
        return std::nullopt;
      }
      if (at >= end_) return NoteEnd(at);
    }
  }

  Position ScanReferenceList(std::size_t at) {
    ++depth_;
    while (at < end_) {
      const std::size_t start = SkipBlanks(at);
      at = TokenEnd(start);
      if (Begins(start, "</REF_LIST>")) break;
      if (!Begins(start, "<REF>")) continue;
      Tree list;
      const Position next = ScanSection(list, start, "REF");
      if (!next) {
        --depth_;
        return std::nullopt;
      }
      refLists_.push_back(list);
      at = *next;
    }
    --depth_;
    return at;
  }

  std::size_t TakeComment(std::size_t start) {
    comments_.push_back(start + 2);
    std::size_t at = start;
    while (at < end_ && !BeginsExactly(at, "*/")) ++at;
    bytes_[at] = '\0';
    return at + 2;
  }

  std::size_t ScanEntries(Section& section, std::size_t at) {
    while (at < end_) {
      const std::size_t start = SkipBlanks(at);
      if (start >= end_) return end_;
      at = TokenEnd(start);
      if (bytes_[start] == '(') {
        Entry entry{start + 1, {}};
        const Position next =
            bytes_[at - 1] == ')' ? ReadValues(entry, at) : ReadCounted(entry, at);
        if (!next) return end_;
        section.entries.push_back(entry);
        at = *next;
      } else if (BeginsExactly(start, "</") && Begins(start + 2, Text(section.name))) {
        return at;
      } else if (BeginsExactly(start, "/*")) {
        at = TakeComment(start);
      } else {
        return end_;
      }
    }
    return at;
  }

  Position ReadValues(Entry& entry, std::size_t at) {
    bytes_[at - 1] = '\0';
    while (at < end_) {
      const std::size_t start = SkipBlanks(at);
      if (start >= end_) return end_;
      if (bytes_[start] == '(' || bytes_[start] == '<') return start;
      if (bytes_[start] == '"') {
        at = start + 1;
        while (at < end_ && (bytes_[at] != '"' || bytes_[at - 1] == 0x1B)) ++at;
        if (at < end_) ++at;
      } else {
        at = TokenEnd(start);
      }
      bytes_[at] = '\0';
      entry.values.push_back(start);
    }
    return at;
  }

  Position ReadCounted(Entry& entry, std::size_t tokenEnd) {
    std::size_t parenthesis = tokenEnd - 1;
    do {
      if (parenthesis == 0) return std::nullopt;
      --parenthesis;
    } while (bytes_[parenthesis] != ')');
    bytes_[parenthesis] = '\0';

    const long long number = std::strtoll(bytes_.c_str() + parenthesis + 1, nullptr, 10);
    const auto left = static_cast<long long>(end_ - tokenEnd);
    const auto count = static_cast<std::size_t>(number < 0 ? 0 : number > left ? left : number);
    bytes_[tokenEnd + count] = '\0';
    entry.values.push_back(tokenEnd + 1 > end_ ? kEmptyText : tokenEnd + 1);
    return tokenEnd + count + 1;
  }

  std::string bytes_;
  std::size_t end_;
  Tree sections_;
  std::vector<Tree> refLists_;
  std::vector<std::size_t> comments_;
  int depth_ = 0;
  bool cutInsideList_ = false;
};

}  // namespace velmora::test
