#include "Field/SourceNames.h"

#include <algorithm>

#include "Base/Text.h"
#include "Media/Locations.h"

namespace velmora::field {
namespace {

std::string LowerCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), LowerCase);
  return text;
}

std::string WithoutExtension(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

/// A text by each rule, in their order.
std::vector<std::string> Forms(const std::string& name) {
  std::string lower = LowerCased(name);
  std::string stem = WithoutExtension(lower);
  return {name, std::move(lower), std::move(stem)};
}

}  // namespace

void SourceNames::FillTables() {
  enum { kFileName, kLocation, kName, kKinds };
  const std::size_t rules = Forms({}).size();
  tables_.resize(rules * kKinds);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    const auto add = [&](std::size_t kind, const std::string& text) {
      if (text.empty()) return;
      const std::vector<std::string> forms = Forms(text);
      for (std::size_t rule = 0; rule < rules; ++rule) {
        tables_[rule * kKinds + kind].emplace(forms[rule], i);
      }
    };
    const media::Location location = media::DecodeLocation(sources_[i].location);
    for (const std::string& name : location.names) add(kFileName, name);
    for (const std::string& path : location.paths) add(kLocation, path);
    add(kLocation, sources_[i].location);
    add(kName, sources_[i].name);
  }
}

std::optional<std::size_t> SourceNames::Find(const std::string& utf8Name) {
  if (tables_.empty()) FillTables();
  const std::optional<std::size_t> found = FindText(utf8Name);
  if (found) return found;
  // A path may stand where a name belongs.
  for (const std::string& name : media::DecodeLocation(utf8Name).names) {
    if (const std::optional<std::size_t> byName = FindText(name)) return byName;
  }
  return std::nullopt;
}

std::optional<std::size_t> SourceNames::FindText(const std::string& text) const {
  const std::vector<std::string> forms = Forms(text);
  const std::size_t kinds = tables_.size() / forms.size();
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    const auto found = tables_[i].find(forms[i / kinds]);
    if (found != tables_[i].end()) return found->second;
  }
  return std::nullopt;
}

}  // namespace velmora::field
