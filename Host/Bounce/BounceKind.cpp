#include "Bounce/BounceKind.h"

#include "Bounce/BounceTarget.h"

namespace velmora::bounce {

const host::TargetKind kBounceKind = {
    .name = "bounce",
    .option = "--bounce",
    .form = "FILE.wav",
    .extension = ".wav",
    .title = "Bounce",
    .help =
        "The audio as the session plays it: one Broadcast\nWave file, tracks side by side; - is "
        "standard output",
    .use = host::TargetKind::Use::Regions,
    .canStream = true,
    .claim =
        [](const std::string& path, const host::TargetChoices& choices) {
          return BounceTarget::Claim(path, choices.bounceDepth);
        },
    .offers = {.bounceDepth = true},
};

const host::TargetKind kBounceTracksKind = {
    .name = "bounce-tracks",
    .option = "--bounce-tracks",
    .form = "DIR",
    .extension = "",
    .title = "Bounce of each track",
    .help = "The same as a new folder with a file for each track",
    .use = host::TargetKind::Use::Regions,
    .claim =
        [](const std::string& path, const host::TargetChoices& choices) {
          return BounceTracksTarget::Claim(path, choices.bounceDepth);
        },
    .offers = {.bounceDepth = true},
};

}  // namespace velmora::bounce
