#include "Bounce/BounceTarget.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

#include "Bounce/AudioSink.h"
#include "Bounce/BounceFile.h"
#include "Session/StagedFile.h"
#include "Session/StagedFolder.h"

namespace velmora::bounce {
namespace {

using host::BounceDepth;
using host::ClaimedTarget;
using host::StagedFile;
using host::StagedFolder;
using host::TargetInput;
using host::TargetOutcome;
using host::TargetProgress;

constexpr std::string_view kStandardOutput = "-";

TargetOutcome OutcomeOf(const BouncePlan& plan) {
  return {{}, plan.LeftOut(), plan.Notes()};
}

/// Path and cause.
std::string TroubleOf(const BounceStop& stop, const std::string& path) {
  if (stop.isCancelled || stop.error == ECANCELED) return path + " is not made: it was cancelled";
  if (stop.error != 0) return StagedFile(path).Trouble(stop.error);
  return path + " is not made: " + stop.trouble;
}

std::string NotMade(const std::string& path, const std::string& cause) {
  return TroubleOf({cause, 0, false}, path);
}

BounceStop WriteStaged(BouncePlan& plan, const BounceFile& file, StagedFile& staged,
                       const TargetProgress& progress) {
  if (!staged.Create()) return {{}, errno, false};
  FileSink sink(::fileno(staged.Stream()));
  BounceStop stop = WriteBounceFile(plan, file, sink, progress);
  const int closing = staged.Close();
  if (!stop.Happened()) stop.error = closing;
  if (!stop.Happened()) stop.error = staged.Publish();
  return stop;
}

std::string WriteToFile(BouncePlan& plan, const BounceFile& file, const std::string& path,
                        const TargetProgress& progress) {
  StagedFile staged(path);
  const BounceStop stop = WriteStaged(plan, file, staged, progress);
  return stop.Happened() ? TroubleOf(stop, path) : "";
}

std::string WriteToStandardOutput(BouncePlan& plan, const BounceFile& file,
                                  const TargetProgress& progress) {
  constexpr const char* kName = "standard output";
  // What was printed before goes first.
  if (std::fflush(stdout) != 0) return TroubleOf({{}, errno, false}, kName);
  double share = 0;
  const TargetProgress remembering = [&](double now) {
    share = now;
    return !progress || progress(now);
  };
  StreamSink sink(STDOUT_FILENO, [&] { return remembering(share); });
  const BounceStop stop = WriteBounceFile(plan, file, sink, remembering);
  return stop.Happened() ? TroubleOf(stop, kName) : "";
}

}  // namespace

ClaimedTarget BounceTarget::Claim(const std::string& path, BounceDepth depth) {
  std::string complaint;
  if (path != kStandardOutput) {
    complaint = StagedFile::WhyNot(path);
  } else if (::isatty(STDOUT_FILENO) == 1) {
    complaint = "standard output is a terminal; audio goes into a pipe or a file";
  }
  if (!complaint.empty()) return {nullptr, std::move(complaint)};
  return {std::unique_ptr<BounceTarget>(new BounceTarget(path, depth)), {}};
}

TargetOutcome BounceTarget::Write(const TargetInput& input, const TargetProgress& progress) {
  BouncePlan plan(input);
  TargetOutcome outcome = OutcomeOf(plan);
  const BounceFile file = {depth_, plan.Tracks(), input.record.title};
  if (!plan.Trouble().empty()) {
    outcome.trouble = NotMade(path_ == kStandardOutput ? "the bounce" : path_, plan.Trouble());
  } else if (path_ == kStandardOutput) {
    outcome.trouble = WriteToStandardOutput(plan, file, progress);
  } else {
    outcome.trouble = WriteToFile(plan, file, path_, progress);
  }
  return outcome;
}

ClaimedTarget BounceTracksTarget::Claim(const std::string& path, BounceDepth depth) {
  std::string complaint = StagedFolder::WhyNot(path);
  if (!complaint.empty()) return {nullptr, std::move(complaint)};
  return {std::unique_ptr<BounceTracksTarget>(new BounceTracksTarget(path, depth)), {}};
}

TargetOutcome BounceTracksTarget::Write(const TargetInput& input, const TargetProgress& progress) {
  BouncePlan plan(input);
  TargetOutcome outcome = OutcomeOf(plan);
  outcome.trouble = plan.Trouble().empty() ? WriteFolder(plan, input.record, progress)
                                           : NotMade(path_, plan.Trouble());
  return outcome;
}

std::string BounceTracksTarget::WriteFolder(BouncePlan& plan, const host::SpotRecord& record,
                                            const TargetProgress& progress) const {
  StagedFolder folder(path_);
  if (!folder.Create()) return folder.Trouble(errno);
  const auto tracks = static_cast<double>(plan.Tracks().size());
  double done = 0;
  const TargetProgress ofAll = [&](double share) {
    return !progress || progress((done + share) / tracks);
  };
  for (const BounceTrack& track : plan.Tracks()) {
    const std::string number = std::to_string(record.TrackNumber(track.track));
    const BounceFile file = {
        depth_, {&track, 1}, record.title + (record.title.empty() ? "" : ", ") + "track " + number};
    StagedFile staged(folder.WrittenPath() + "/Track " + number + ".wav");
    const BounceStop stop = WriteStaged(plan, file, staged, ofAll);
    if (stop.Happened()) return TroubleOf(stop, path_);
    done += 1;
  }
  const int error = folder.Publish();
  return error == 0 ? "" : TroubleOf({{}, error, false}, path_);
}

}  // namespace velmora::bounce
