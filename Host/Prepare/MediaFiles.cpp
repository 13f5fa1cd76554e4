#include "Prepare/MediaFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "Media/Conversion.h"

namespace velmora::prepare {
namespace {

std::string RealPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  return error ? path : real.string();
}

/// Work on a file besides its bytes: making its name.
constexpr std::int64_t kBytesOfAName = 4096;

std::int64_t WorkOf(const PlannedFile& file) {
  if (file.how == HowMade::Linked) return kBytesOfAName;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file.from, error);
  const std::int64_t copied = error ? 0 : static_cast<std::int64_t>(size);
  return kBytesOfAName + (file.how == HowMade::Copied ? copied : std::max(copied, file.bytes));
}

/// The link's target is absolute and itself no link: the prepared folder can be moved, and a
/// project prepared from it does not lean on it.
MediaOutcome Link(const PlannedFile& file, const std::string& to) {
  MediaOutcome outcome;
  outcome.done = symlink(RealPath(file.from).c_str(), to.c_str()) == 0;
  if (!outcome.done) outcome.trouble = to + ": " + std::strerror(errno);
  return outcome;
}

MediaOutcome Make(const PlannedFile& file, const std::string& to,
                  const media::ConversionProgress& progress) {
  if (file.how == HowMade::Linked) return Link(file, to);
  media::ConversionResult result;
  if (file.how == HowMade::Copied) {
    result = media::CopyWhole(file.from, to, progress);
  } else {
    media::ConversionJob job;
    job.from = file.from;
    job.to = to;
    job.channel = file.channel;
    job.firstFrame = file.firstFrame;
    job.frameCount = file.frameCount;
    job.sampleRate = file.sampleRate;
    result = media::Convert(job, progress);
  }
  return {result.done, result.cancelled, result.trouble, result.peak, result.clipped};
}

}  // namespace

std::vector<MediaOutcome> MakeMediaFiles(const std::vector<PlannedFile>& files,
                                         const std::string& folder,
                                         const PrepareProgress& progress) {
  std::int64_t allWork = 0;
  for (const PlannedFile& file : files) allWork += WorkOf(file);
  std::int64_t workDone = 0;
  std::vector<MediaOutcome> outcomes;
  for (const PlannedFile& file : files) {
    const std::int64_t work = WorkOf(file);
    const auto tell = [&](std::int64_t bytesDone) {
      if (!progress) return true;
      const std::int64_t done = workDone + std::clamp<std::int64_t>(bytesDone, 0, work);
      return progress(static_cast<double>(done) / static_cast<double>(allWork), file.name);
    };
    if (!tell(0)) {
      outcomes.push_back({});
      outcomes.back().cancelled = true;
      return outcomes;
    }
    outcomes.push_back(Make(file, folder + '/' + file.name, tell));
    if (!outcomes.back().done) return outcomes;
    workDone += work;
  }
  return outcomes;
}

}  // namespace velmora::prepare
