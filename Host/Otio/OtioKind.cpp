#include "Otio/OtioKind.h"

#include <memory>

#include "Otio/OtioTarget.h"
#include "Session/StagedFile.h"

namespace velmora::host {

const TargetKind kOtioKind = {
    .name = "otio",
    .option = "--otio",
    .form = "FILE",
    .extension = ".otio",
    .title = "OpenTimelineIO",
    .help = "An OpenTimelineIO file for editing programs;\nit refers to the audio",
    .use = TargetKind::Use::Regions,
    .claim = [](const std::string& path, const TargetChoices& /*choices*/) -> ClaimedTarget {
      std::string complaint = StagedFile::WhyNot(path);
      if (!complaint.empty()) return {nullptr, std::move(complaint)};
      return {std::make_unique<otio::OtioTarget>(path), {}};
    },
};

}  // namespace velmora::host
