#include "Embedded/EmbeddedKind.h"

#include "Embedded/EmbeddedHost.h"
#include "Session/SessionFile.h"

namespace velmora::host {

const HostKind kEmbeddedKind = {
    .name = "embedded",
    .targetForm = "FILE.json",
    .targetUse = TargetUse::Optional,
    .help = "Inside this program; with a FILE.json the\nsession is also written there",
    .connect = [](Session& session) -> std::unique_ptr<SessionHost> {
      return std::make_unique<EmbeddedHost>(session);
    },
    .claim = SessionFile::Claim,
};

}  // namespace velmora::host
