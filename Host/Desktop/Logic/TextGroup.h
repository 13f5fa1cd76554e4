#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace velmora::desktop {

/// Adds a group to a text for people: a heading and `lines` of `count`, of which the first `most`
/// are told. Nothing for a group of none.
template <class LineAt>
void AddGroup(std::string& text, const std::string& heading, std::size_t count, std::size_t most,
              const LineAt& lineAt) {
  if (count == 0) return;
  if (!text.empty()) text += "\n";
  text += heading + "\n";
  for (std::size_t i = 0; i < std::min(count, most); ++i) text += "  " + lineAt(i) + "\n";
  if (count > most) text += "  and " + std::to_string(count - most) + " more\n";
}

}  // namespace velmora::desktop
