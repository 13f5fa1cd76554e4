// The SOURCE_INDEX section: (Index) opens a source, (F) and (T) describe it.

#include <algorithm>
#include <cstddef>
#include <string>

#include "ADL/AES31Project.h"
#include "Base/Text.h"

namespace velmora {
namespace {

/// Stores the first `count` values; those that the entry lacks are null.
template <std::size_t Size>
void StoreValues(const AES31Entry& entry, std::size_t count, std::array<const char*, Size>& texts) {
  for (std::size_t i = 0; i < count; ++i) {
    texts[i] = i < entry.values.size() ? entry.values[i] : nullptr;
  }
}

}  // namespace

bool AES31Project::CheckSourceIndex(const AES31Section& section) {
  return WalkSourceIndex(section, Checks::On);
}

void AES31Project::ReadSourceIndex(const AES31Section& section) {
  WalkSourceIndex(section, Checks::Off);
}

bool AES31Project::WalkSourceIndex(const AES31Section& section, Checks checks) {
  const bool checked = checks == Checks::On;
  bool indexSeen = false;
  AES31SourceFile record;
  std::int32_t number = 0;
  const auto store = [&] {
    if (!indexSeen) return;
    AES31SourceFile& source = sourceFiles[number];
    Retire(source);
    source = record;
  };

  for (const AES31Entry& entry : section.entries) {
    const std::size_t count = entry.values.size();
    if (EqualsIgnoringCase(entry.label, "Index")) {
      store();
      if (checked && count == 0) {
        return FailAt(LoadFailureCode::IndexMissing, section, entry, "Index has no number");
      }
      number = count > 0 ? ToInt32(entry.values[0]) : 0;
      record = {};
      indexSeen = true;
    } else if (!indexSeen) {
      Tolerate(LoadDiagnosticCode::UnexpectedEntry, entry,
               std::string("Found unexpected entry: ") + TextOrNull(entry.label));
    } else if (EqualsIgnoringCase(entry.label, "F")) {
      if (checked && count < 4) {
        return FailAt(LoadFailureCode::ValuesMissing, section, entry, "F needs at least 4 values");
      }
      // A fifth value without a sixth is passed over.
      StoreValues(entry, !checked || count >= record.fValues.size() ? record.fValues.size() : 4,
                  record.fValues);
    } else if (EqualsIgnoringCase(entry.label, "T")) {
      if (checked && count < record.tValues.size()) {
        return FailAt(LoadFailureCode::ValuesMissing, section, entry, "T needs at least 5 values");
      }
      StoreValues(entry, record.tValues.size(), record.tValues);
    }
  }
  store();
  return true;
}

}  // namespace velmora
