#include "Desktop/Logic/SpotChronicle.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "Base/Text.h"
#include "Recording/SpotNotes.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotRequest.h"

namespace velmora::desktop {
namespace {

using host::RecordedEvent;
using host::RecordedMessage;
using recording::SpotRecording;

/// Boxes and positions apart, which every spot may have anew.
bool IsSameEvent(const RecordedEvent& a, const RecordedEvent& b) {
  return a.entry == b.entry && a.kind == b.kind && a.source == b.source && a.path == b.path &&
         a.track == b.track && a.position == b.position && a.end == b.end && a.fadeIn == b.fadeIn &&
         a.fadeOut == b.fadeOut && a.gainDb == b.gainDb;
}

bool IsSameProject(const host::SpotRecord& a, const host::SpotRecord& b) {
  return a.projectPath == b.projectPath && a.firstTrackNumber == b.firstTrackNumber &&
         a.constants == b.constants &&
         std::equal(a.events.begin(), a.events.end(), b.events.begin(), b.events.end(),
                    IsSameEvent);
}

/// Rates that the project itself names are read from it.
check::CheckOptions ReadingFor(const char* firstEvent, const host::SessionRates& rates) {
  const host::SessionRates preset = host::PresetFor(firstEvent);
  check::CheckOptions reading;
  if (rates.sampleRate != preset.sampleRate) {
    reading.sessionRate = static_cast<double>(rates.sampleRate);
  }
  if (rates.frameRate != preset.frameRate) reading.sessionFrameRate = rates.frameRate;
  return reading;
}

/// What is to be said of a spot before it begins.
void RecordStart(const SpotProject& project, SpotOptions options, const host::SessionRates& rates,
                 SpotRecording& recording) {
  for (const std::string& alert :
       SpotWarnings(project.firstEvent, rates.sampleRate, rates.frameRate)) {
    recording.Message(RecordedMessage::Kind::Warning, alert,
                      "Choose the project's rates for the session at the top of the window.");
  }
  ComputePosition(options, project.firstEvent);
  for (const std::string& note : recording::SpotNotes(project, rates, options, false)) {
    recording.Message(RecordedMessage::Kind::Note, note);
  }
}

}  // namespace

struct SpotChronicle::Run {
  Run(const SpotProject& project, std::string path, host::Session& session,
      SpotRecording::NativeParts native)
      : projectPath(std::move(path)),
        recording(project, session, native),
        leftOut(*project.project) {}

  std::string projectPath;
  SpotRecording recording;
  recording::LeftOut leftOut;
  std::size_t firstRegion = 0;  ///< of the session's, that came with this run
  std::size_t firstRemark = 0;  ///< the same of the host's
};

void SpotChronicle::Begin(const SpotProject& project, const std::string& projectPath,
                          const SpotOptions& options, const host::SessionRates& rates,
                          SpotRecording::NativeParts native) {
  if (project.project == nullptr) return;
  // What a spot renders is in its files already.
  native.fades = native.fades && options.doFades == 0;
  native.gain = native.gain && options.doGain == 0;
  run_ = std::make_shared<Run>(project, projectPath, session_, native);
  run_->firstRegion = session_.Regions().size();
  run_->firstRemark = host_.Remarks().size();
  rates_ = rates;
  reading_ = ReadingFor(project.firstEvent, rates);
  record_.targets.clear();  // they tell of the session as it was
  recording::FindSilentCuts(project, run_->leftOut);
  RecordStart(project, options, rates, run_->recording);
}

void SpotChronicle::End(const SpotOptions& options, bool finished) {
  if (run_ == nullptr) return;
  const std::shared_ptr<Run> run = std::exchange(run_, nullptr);
  const std::vector<host::Remark>& remarks = host_.Remarks();
  for (std::size_t i = run->firstRemark; i < remarks.size(); ++i) run->recording.Remark(remarks[i]);
  host::SpotRecord fresh = run->recording.RecordOf(run->projectPath, options, run->leftOut);
  run->recording.AddDetails(options, options.positionMode, fresh);
  fresh.wasStopped = !finished;
  if (hasRecord_ && IsSameProject(record_, fresh)) {
    Join(std::move(fresh));
  } else {
    StartAnew(std::move(fresh), run->firstRegion);
  }
  hasRecord_ = true;
}

recording::SpotRecording* SpotChronicle::Recording() const {
  return run_ != nullptr ? &run_->recording : nullptr;
}

recording::LeftOut* SpotChronicle::LeftOut() const {
  return run_ != nullptr ? &run_->leftOut : nullptr;
}

/// What this spot has placed, or failed to place, says more than what an earlier one said of the
/// same events.
void SpotChronicle::Join(host::SpotRecord fresh) {
  const auto isTriedAgain = [&](const host::LeftOutPart& part) {
    const auto event = static_cast<std::size_t>(part.event);
    return event < fresh.events.size() && fresh.events[event].isOn;
  };
  std::vector<host::LeftOutPart> leftOut = std::move(record_.leftOut);
  std::erase_if(leftOut, isTriedAgain);
  std::move(fresh.leftOut.begin(), fresh.leftOut.end(), std::back_inserter(leftOut));
  fresh.leftOut = std::move(leftOut);

  for (std::size_t i = 0; i < fresh.events.size(); ++i) {
    fresh.events[i].isOn = fresh.events[i].isOn || record_.events[i].isOn;
  }
  std::vector<host::RecordedFile> files = std::move(record_.files);
  std::move(fresh.files.begin(), fresh.files.end(), std::back_inserter(files));
  fresh.files = std::move(files);

  std::vector<RecordedMessage> messages = std::move(record_.messages);
  std::set<std::pair<RecordedMessage::Kind, std::string>> known;
  for (const RecordedMessage& message : messages) known.emplace(message.kind, message.text);
  for (RecordedMessage& message : fresh.messages) {
    if (!known.contains({message.kind, message.text})) messages.push_back(std::move(message));
  }
  fresh.messages = std::move(messages);
  record_ = std::move(fresh);
}

void SpotChronicle::StartAnew(host::SpotRecord fresh, std::size_t earlierRegions) {
  for (std::size_t i = 0; i < earlierRegions; ++i) session_.ForgetOrigin(i);
  if (earlierRegions > 0) {
    fresh.messages.push_back({RecordedMessage::Kind::Note,
                              "The session also holds " + Counted(earlierRegions, "region") +
                                  " of earlier spots, which this record does not explain."});
  }
  record_ = std::move(fresh);
}

std::shared_ptr<const SpottedSession> SpotChronicle::Copy() const {
  return std::make_shared<const SpottedSession>(
      SpottedSession{session_, rates_, record_, reading_});
}

void SpotChronicle::TargetWritten(host::RecordedTarget target) {
  record_.targets.push_back(std::move(target));
}

void SpotChronicle::Clear() {
  record_ = {};
  hasRecord_ = false;
  if (run_ != nullptr) run_->firstRegion = run_->firstRemark = 0;
}

}  // namespace velmora::desktop
