#include "Otio/OtioKind.h"

#include "Otio/OtioTarget.h"
#include "Session/ClaimNewFile.h"

namespace velmora::host {

const TargetKind kOtioKind = {
    .name = "otio",
    .option = "--otio",
    .form = "FILE",
    .extension = ".otio",
    .title = "OpenTimelineIO",
    .help = "An OpenTimelineIO file for editing programs;\nit refers to the audio",
    .use = TargetKind::Use::Regions,
    .claim = [](const std::string& path,
                const TargetChoices& /*choices*/) { return ClaimNewFile<otio::OtioTarget>(path); },
};

}  // namespace velmora::host
