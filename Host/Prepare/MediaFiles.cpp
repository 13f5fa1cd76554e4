#include "Prepare/MediaFiles.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include "Media/Conversion.h"

namespace velmora::prepare {
namespace {

std::string RealPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  return error ? path : real.string();
}

std::string VerbOf(HowMade how) {
  constexpr std::array kVerbs = {"Linking", "Copying", "Converting", "Splitting", "Resampling"};
  return kVerbs[static_cast<std::size_t>(how)];
}

/// Work on a file besides its bytes: making its name.
constexpr std::int64_t kBytesOfAName = 4096;

std::int64_t WorkOf(const PlannedFile& file) {
  if (file.how == HowMade::Linked) return kBytesOfAName;
  if (file.how != HowMade::Copied) return kBytesOfAName + file.bytes;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file.from, error);
  return kBytesOfAName + (error ? 0 : static_cast<std::int64_t>(size));
}

/// The link's target is absolute and itself no link: the prepared folder can be moved, and a
/// project prepared from it does not lean on it.
MediaOutcome Link(const PlannedFile& file, const std::string& to) {
  MediaOutcome outcome;
  outcome.done = symlink(RealPath(file.from).c_str(), to.c_str()) == 0;
  if (!outcome.done) outcome.trouble = to + ": " + std::strerror(errno);
  return outcome;
}

MediaOutcome OutcomeOf(const media::ConversionResult& result) {
  return {result.done, result.cancelled, result.trouble, result.peak, result.clipped};
}

/// True if both are made from the same part of one file in the same way.
bool ArePartners(const PlannedFile& a, const PlannedFile& b) {
  return a.channel && b.channel && a.from == b.from && a.firstFrame == b.firstFrame &&
         a.frameCount == b.frameCount && a.sampleRate == b.sampleRate;
}

/// Makes files one after the other, and tells how far the work as a whole is.
class FileMaker {
 public:
  FileMaker(const std::vector<PlannedFile>& files, const std::string& folder,
            const PrepareProgress& progress)
      : files_(files), folder_(folder), progress_(progress), outcomes_(files.size()) {
    for (const PlannedFile& file : files) allWork_ += WorkOf(file);
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (files[i].channel) splits_[files[i].from].push_back(i);
    }
  }

  std::vector<MediaOutcome> Run() {
    for (std::size_t i = 0; i < files_.size(); ++i) {
      if (outcomes_[i].done) continue;  // with a partner
      const std::vector<std::size_t> group = GroupOf(i);
      std::int64_t work = 0;
      for (const std::size_t file : group) work += WorkOf(files_[file]);
      outcomes_[i] = Make(group, work);
      if (!outcomes_[i].done) break;
      // What was counted in them together is told once.
      for (const std::size_t file : group) outcomes_[file].done = true;
      workDone_ += work;
    }
    return std::move(outcomes_);
  }

 private:
  /// The file and those that are made with it.
  std::vector<std::size_t> GroupOf(std::size_t file) const {
    std::vector<std::size_t> group = {file};
    if (!files_[file].channel) return group;
    for (const std::size_t other : splits_.at(files_[file].from)) {
      if (other > file && ArePartners(files_[file], files_[other])) group.push_back(other);
    }
    return group;
  }

  MediaOutcome Make(const std::vector<std::size_t>& group, std::int64_t work) {
    const PlannedFile& file = files_[group.front()];
    const auto tell = [&](std::int64_t bytesDone) {
      if (!progress_) return true;
      const std::int64_t done = workDone_ + std::clamp<std::int64_t>(bytesDone, 0, work);
      return progress_(static_cast<double>(done) / static_cast<double>(allWork_),
                       VerbOf(file.how) + (' ' + file.name));
    };
    if (!tell(0)) {
      MediaOutcome cancelled;
      cancelled.cancelled = true;
      return cancelled;
    }
    if (file.how == HowMade::Linked) return Link(file, PathOf(file));
    if (file.how == HowMade::Copied) {
      return OutcomeOf(media::CopyWhole(file.from, PathOf(file), tell));
    }
    media::ConversionJob job;
    job.from = file.from;
    job.firstFrame = file.firstFrame;
    job.frameCount = file.frameCount;
    job.sampleRate = file.sampleRate;
    std::vector<media::ConversionTarget> targets;
    for (const std::size_t member : group) {
      targets.push_back({PathOf(files_[member]), files_[member].channel});
    }
    return OutcomeOf(media::ConvertInto(targets, job, tell));
  }

  std::string PathOf(const PlannedFile& file) const { return folder_ + '/' + file.name; }

  const std::vector<PlannedFile>& files_;
  const std::string& folder_;
  const PrepareProgress& progress_;
  std::vector<MediaOutcome> outcomes_;
  std::map<std::string, std::vector<std::size_t>> splits_;  ///< by original: its channels' files
  std::int64_t allWork_ = 0;
  std::int64_t workDone_ = 0;
};

}  // namespace

std::vector<MediaOutcome> MakeMediaFiles(const std::vector<PlannedFile>& files,
                                         const std::string& folder,
                                         const PrepareProgress& progress) {
  return FileMaker(files, folder, progress).Run();
}

}  // namespace velmora::prepare
