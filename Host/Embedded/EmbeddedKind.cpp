#include "Embedded/EmbeddedKind.h"

#include "Embedded/EmbeddedHost.h"
#include "Session/SessionFile.h"

namespace velmora::host {

const TargetKind kSessionFileKind = {
    .name = "session",
    .option = nullptr,
    .form = "FILE.json",
    .extension = ".json",
    .title = "Session as JSON",
    .help = "The session as it stands",
    .use = TargetKind::Use::SessionRecord,
    .claim = [](const std::string& path,
                const TargetChoices& /*choices*/) { return SessionFile::Claim(path); },
};

const HostKind kEmbeddedKind = {
    .name = "embedded",
    .target = &kSessionFileKind,
    .targetUse = TargetUse::Optional,
    .help = "Inside this program; with a FILE.json the\nsession is also written there",
    .connect = [](Session& session) -> std::unique_ptr<SessionHost> {
      return std::make_unique<EmbeddedHost>(session);
    },
};

}  // namespace velmora::host
