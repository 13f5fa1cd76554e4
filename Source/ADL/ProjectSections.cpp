// The walk over the sections of a project, with its constants.

#include <algorithm>
#include <string>

#include "ADL/AES31Project.h"
#include "Base/Text.h"

namespace velmora {

bool AES31Project::CheckSections() {
  return WalkSections(Checks::On);
}

void AES31Project::ReadSections() {
  WalkSections(Checks::Off);
}

bool AES31Project::WalkSections(Checks checks) {
  constants.fill(nullptr);
  for (const AES31Section& section : sections) {
    if (ReadConstants(section)) continue;
    if (EqualsIgnoringCase(section.name, "SOURCE_INDEX")) {
      if (checks == Checks::Off) {
        ReadSourceIndex(section);
      } else if (!CheckSourceIndex(section)) {
        return false;
      }
    } else if (EqualsIgnoringCase(section.name, "EVENT_LIST")) {
      if (checks == Checks::Off) {
        ReadEventList(section);
      } else if (!CheckEventList(section)) {
        return false;
      }
    }
  }
  return true;
}

/// Takes the constants of a section that has some; false for any other section.
bool AES31Project::ReadConstants(const AES31Section& section) {
  const auto isOfSection = [&section](const ProjectConstant& constant) {
    return EqualsIgnoringCase(section.name, constant.section);
  };
  const auto first = std::find_if(kProjectConstants.begin(), kProjectConstants.end(), isOfSection);
  if (first == kProjectConstants.end()) return false;
  const auto last = std::find_if_not(first, kProjectConstants.end(), isOfSection);

  EntryLines lines(section.entries);
  for (EntryLine line; lines.Next(line);) {
    const auto constant = std::find_if(first, last, [&line](const ProjectConstant& candidate) {
      return EqualsIgnoringCase(line.label, candidate.keyword);
    });
    if (constant == last || line.valueCount == 0) {
      Tolerate(LoadDiagnosticCode::UnknownIdentifier, line.label,
               std::string("Found unknown identifier: ") + TextOrNull(line.label) + " in section " +
                   section.name);
      continue;
    }
    constants[static_cast<std::size_t>(constant - kProjectConstants.begin())] = line.texts[0];
  }
  return true;
}

}  // namespace velmora
