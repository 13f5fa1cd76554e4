#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "ADL/LineMap.h"
#include "Check/CheckProject.h"

namespace velmora::prepare {

/// Findings for what of a project does not come into the prepared one.
class LostWords {
 public:
  /// @param checked must outlive this
  explicit LostWords(const check::CheckedProject& checked);

  /// What is lost of an event: the check's own finding if there is one, else a new one at the
  /// event's place.
  /// @param event position in Project::events
  [[nodiscard]] check::Finding Of(std::size_t event, check::Code code, const std::string& effect);

 private:
  [[nodiscard]] std::int64_t LineOf(std::size_t event);

  const check::CheckedProject& checked_;
  check::SharedText effect_;  ///< the last one: mostly the same is lost for the same reason again
  check::SharedText remedy_;
  std::map<std::pair<check::Code, std::int32_t>, std::size_t> byCodeAndEntry_;
  std::optional<LineMap> lines_;  ///< made when it is needed: it takes a walk through the text
};

}  // namespace velmora::prepare
