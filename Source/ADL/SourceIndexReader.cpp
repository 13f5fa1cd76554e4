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
void StoreValues(const EntryLine& line, std::size_t count, std::array<const char*, Size>& texts) {
  static_assert(Size <= EntryLine::kTexts);
  std::copy_n(line.texts.begin(), count, texts.begin());
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

  EntryLines lines(section.entries);
  for (EntryLine line; lines.Next(line);) {
    const std::size_t count = line.valueCount;
    if (EqualsIgnoringCase(line.label, "Index")) {
      store();
      if (checked && count == 0) {
        return FailAt(LoadFailureCode::IndexMissing, section, line.label, "Index has no number");
      }
      number = ToInt32(line.texts[0]);
      record = {};
      indexSeen = true;
    } else if (!indexSeen) {
      Tolerate(LoadDiagnosticCode::UnexpectedEntry, line.label,
               std::string("Found unexpected entry: ") + TextOrNull(line.label));
    } else if (EqualsIgnoringCase(line.label, "F")) {
      if (checked && count < 4) {
        return FailAt(LoadFailureCode::ValuesMissing, section, line.label,
                      "F needs at least 4 values");
      }
      // A fifth value without a sixth is passed over.
      StoreValues(line, !checked || count >= record.fValues.size() ? record.fValues.size() : 4,
                  record.fValues);
    } else if (EqualsIgnoringCase(line.label, "T")) {
      if (checked && count < record.tValues.size()) {
        return FailAt(LoadFailureCode::ValuesMissing, section, line.label,
                      "T needs at least 5 values");
      }
      StoreValues(line, record.tValues.size(), record.tValues);
    }
  }
  store();
  return true;
}

}  // namespace velmora
