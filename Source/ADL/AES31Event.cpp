#include "ADL/AES31Event.h"

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
  // The compilers' own function: not every standard library of C++20 has std::atomic_ref yet.
  return __atomic_load_n(&box, __ATOMIC_RELAXED) != 0;
}

void SetBox(std::int32_t& box, bool on) {
  __atomic_store_n(&box, on ? 1 : 0, __ATOMIC_RELAXED);
}

}  // namespace velmora
