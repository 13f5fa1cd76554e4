#include "DawProject/DawProjectKind.h"

#include <memory>

#include "DawProject/DawProjectTarget.h"
#include "Session/StagedFile.h"

namespace velmora::host {

const TargetKind kDawProjectKind = {
    .name = "dawproject",
    .option = "--dawproject",
    .form = "FILE",
    .extension = ".dawproject",
    .title = "DAWproject",
    .help =
        "A DAWproject 1.0 file for other workstations;\nit refers to the audio, or holds it with\n"
        "--embed-media",
    .use = TargetKind::Use::Regions,
    .claim = [](const std::string& path, const TargetChoices& choices) -> ClaimedTarget {
      std::string complaint = StagedFile::WhyNot(path);
      if (!complaint.empty()) return {nullptr, std::move(complaint)};
      return {std::make_unique<dawproject::DawProjectTarget>(path, choices.embedMedia), {}};
    },
};

}  // namespace velmora::host
