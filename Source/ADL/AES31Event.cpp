#include "ADL/AES31Event.h"

#include <atomic>

#include "Base/Text.h"

namespace velmora {

EditKind KindOf(const AES31Event& event) {
  if (IsCut(event)) return EditKind::Cut;
  if (EqualsIgnoringCase(event.label, "Silence") || EqualsIgnoringCase(event.label, "Aux")) {
    return EditKind::Silence;
  }
  if (EqualsIgnoringCase(event.label, "Vid")) return EditKind::Vid;
  // An alternative never becomes a label; its mark tells it from an entry without any edit.
  if (event.label == nullptr && event.alt.altMark != 0) return EditKind::Alt;
  return EditKind::None;
}

bool IsCut(const AES31Event& event) {
  return EqualsIgnoringCase(event.label, "Cut");
}

bool IsOn(const std::int32_t& box) {
  // C++20 has no atomic view of a constant.
  return std::atomic_ref(const_cast<std::int32_t&>(box)).load(std::memory_order_relaxed) != 0;
}

void SetBox(std::int32_t& box, bool on) {
  std::atomic_ref(box).store(on ? 1 : 0, std::memory_order_relaxed);
}

}  // namespace velmora
