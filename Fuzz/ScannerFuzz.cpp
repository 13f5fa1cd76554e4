// The fast scanner and readers against slow ones that are written straight from the rules: tree,
// constants, sources, events, oddities, failure, and the words on standard error.

#include <cstddef>
#include <cstdint>
#include <string>

#include "Differential/ProjectComparison.h"
#include "Support/Holds.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using velmora::fuzz::HoldAlike;
  static velmora::test::differential::ProjectComparison comparison;
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  HoldAlike(comparison.OfLoad(text), "a project is read as the slow readers read it");
  HoldAlike(comparison.OfUncheckedReaders(text), "so are sections without checks");
  HoldAlike(comparison.OfCheckedReaders(text), "so are sections with checks");
  return 0;
}
