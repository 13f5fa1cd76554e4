#include "Desktop/Logic/SaveRun.h"

#include <new>
#include <utility>

#include "Recording/RecordedFindings.h"
#include "Session/HeardSession.h"

namespace velmora::desktop {
namespace {

using Use = host::TargetKind::Use;
using Stopped = BackgroundRun<SaveOutcome>::Stopped;

/// The record as the target wants it: what tells of the spot tells what a check finds, too.
host::SpotRecord RecordFor(const host::TargetKind& kind, const SpottedSession& session,
                           const Stopped& stopped) {
  host::SpotRecord record = session.record;
  if (kind.use == Use::Record && !record.projectPath.empty()) {
    record.findings = recording::FindingsOf(record.projectPath, session.reading, stopped);
  }
  return record;
}

host::TargetOutcome Write(const SaveRequest& request, const SpottedSession& session,
                          const host::TargetProgress& progress, const Stopped& stopped) {
  if (session.session.Regions().empty() && request.kind->use == Use::Regions) {
    return {"No region was placed, so " + request.path + " was not made.", {}, {}};
  }
  host::ClaimedTarget claimed = request.kind->claim(request.path, request.choices);
  if (claimed.target == nullptr) return {claimed.complaint, {}, {}};
  const host::SpotRecord record = RecordFor(*request.kind, session, stopped);
  if (stopped()) return {request.path + " is not made: it was cancelled", {}, {}};
  const host::HeardSession heard(session.session);
  return claimed.target->Write({session.session, heard, session.rates, record}, progress);
}

}  // namespace

bool SaveRun::Start(const SaveRequest& request, std::shared_ptr<const SpottedSession> session) {
  share_ = std::make_shared<std::atomic<double>>(0);
  return run_.Start([request, session = std::move(session), share = share_](const auto& stopped) {
    SaveOutcome outcome{request, {}, false};
    const host::TargetProgress progress = [&](double done) {
      *share = done;
      return !stopped();
    };
    try {
      outcome.made = Write(request, *session, progress, stopped);
    } catch (const std::bad_alloc&) {
      outcome.made = {request.path + " is not made: there is not enough memory", {}, {}};
    }
    outcome.cancelled = stopped() && !outcome.made.trouble.empty();
    return outcome;
  });
}

}  // namespace velmora::desktop
