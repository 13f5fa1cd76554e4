#include "DawProject/DawProjectKind.h"

#include "DawProject/DawProjectTarget.h"
#include "Session/ClaimNewFile.h"

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
    .claim =
        [](const std::string& path, const TargetChoices& choices) {
          return ClaimNewFile<dawproject::DawProjectTarget>(path, choices.embedMedia);
        },
    .offers = {.embedMedia = true},
};

}  // namespace velmora::host
