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

// The builtins of GCC and clang rather than std::atomic_ref, which the C++ library of the oldest
// macOS that the view runs on does not have.
bool IsOn(const std::int32_t& box) {
  return __atomic_load_n(&box, __ATOMIC_RELAXED) != 0;
}

void SetBox(std::int32_t& box, bool on) {
  __atomic_store_n(&box, on ? 1 : 0, __ATOMIC_RELAXED);
}

}  // namespace velmora
