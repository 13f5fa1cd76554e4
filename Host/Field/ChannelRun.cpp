#include "Field/ChannelRun.h"

#include <algorithm>
#include <optional>

#include "Field/NumberText.h"

namespace velmora::field {

ChannelRun ReadChannelRun(std::string_view text) {
  constexpr std::int32_t kHighest = 0x7FFFFFFE;  // so that every run can be counted
  const std::optional<LeadingNumber> first = ReadLeadingNumber(text);
  if (!first) return {};
  ChannelRun run{first->number, first->number};
  const bool goesOn = !first->rest.empty() && (first->rest[0] == '~' || first->rest[0] == '-');
  const std::optional<LeadingNumber> last =
      goesOn ? ReadLeadingNumber(first->rest.substr(1)) : std::nullopt;
  if (!last || first->number < 0 || last->number < 0) return run;
  run.first = std::min({first->number, last->number, kHighest});
  run.last = std::min(std::max(first->number, last->number), kHighest);
  return run;
}

}  // namespace velmora::field
