#include "Ardour/ArdourKind.h"

#include <memory>
#include <utility>

#include "Ardour/ArdourProgram.h"
#include "Ardour/ArdourTarget.h"
#include "Embedded/EmbeddedHost.h"
#include "Session/StagedFolder.h"

namespace velmora::ardour {

const host::TargetKind kArdourSessionKind = {
    .name = "ardour",
    .option = nullptr,
    .form = "DIR",
    .extension = "",
    .title = "Ardour session",
    .help = "A new Ardour session",
    .use = host::TargetKind::Use::Regions,
    .claim = [](const std::string& path,
                const host::TargetChoices& /*choices*/) -> host::ClaimedTarget {
      std::string complaint = host::StagedFolder::WhyNot(path);
      if (!complaint.empty()) return {nullptr, std::move(complaint)};
      FoundArdour ardour = FindArdour();
      if (ardour.program.empty()) return {nullptr, std::move(ardour.trouble)};
      return {std::make_unique<ArdourTarget>(path, std::move(ardour.program)), {}};
    },
};

const host::HostKind kArdourKind = {
    .name = "ardour",
    .target = &kArdourSessionKind,
    .targetUse = host::TargetUse::Required,
    .help =
        "Ardour 7 or later: a new session in the folder\nDIR. ARDOUR_LUA names its ardour<N>-lua\n"
        "if that is not in PATH",
    .connect = [](host::Session& session) -> std::unique_ptr<host::SessionHost> {
      return std::make_unique<host::EmbeddedHost>(session);
    },
};

}  // namespace velmora::ardour
