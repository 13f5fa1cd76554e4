#include "Prepare/Remarks.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "Field/FieldHeader.h"
#include "Field/Keyword.h"

namespace velmora::prepare {

bool IsConstants(const field::Section& section) {
  return field::IsProjectHeader(section.name) || field::IsKeyword(section.name, "VERSION") ||
         field::IsKeyword(section.name, "PROJECT");
}

Remarks::Remarks(const field::Tree& tree) : tree_(tree) {
  std::set<const char*> amongValues;
  for (const field::Stray& stray : tree.strays) {
    if (stray.kind == field::StrayKind::Comment) {
      amongValues.insert(stray.text.data());
      amongValues.insert(stray.text.data() + 2);  // past its mark
    }
    if (stray.kind == field::StrayKind::Word && IsInForeignSection(stray.text)) {
      texts_.push_back(stray.text);
    }
  }
  for (const std::string_view comment : tree.comments) {
    if (!amongValues.contains(comment.data())) texts_.push_back(comment);
  }
  std::stable_sort(texts_.begin(), texts_.end(),
                   [](std::string_view a, std::string_view b) { return a.data() < b.data(); });
}

/// A section that goes on after another inside it has its tag before that one.
std::size_t Remarks::StartOf(std::size_t section) const {
  if (section >= tree_.sections.size()) return tree_.file.size();
  const field::Section& start = tree_.sections[section];
  return tree_.OffsetOf(start.resumed ? tree_.entries[start.firstEntry].label : start.name);
}

bool Remarks::IsInForeignSection(std::string_view text) const {
  std::size_t first = 0;
  std::size_t end = tree_.sections.size();
  while (first < end) {
    const std::size_t middle = first + (end - first) / 2;
    if (StartOf(middle) <= tree_.OffsetOf(text)) {
      first = middle + 1;
    } else {
      end = middle;
    }
  }
  if (first == 0) return false;
  const field::Section& section = tree_.sections[first - 1];
  return !section.name.empty() && !IsConstants(section) && !field::IsSourceIndex(section.name) &&
         !field::IsEventList(section.name);
}

std::span<const std::string_view> Remarks::In(std::size_t from, std::size_t to) const {
  const auto isBefore = [this](std::string_view text, std::size_t offset) {
    return tree_.OffsetOf(text) < offset;
  };
  const auto first = std::lower_bound(texts_.begin(), texts_.end(), from, isBefore);
  const auto end = std::lower_bound(first, texts_.end(), to, isBefore);
  return {first, end};
}

std::span<const std::string_view> Remarks::Between(std::size_t section, std::size_t next) const {
  return In(StartOf(section), StartOf(next));
}

std::span<const std::string_view> Remarks::Before(std::size_t section) const {
  return In(0, StartOf(section));
}

}  // namespace velmora::prepare
