#include "Report/ReportTarget.h"

#include <cerrno>
#include <optional>
#include <ostream>

#include "Report/Page.h"
#include "Session/FileBuffer.h"
#include "Session/StagedFile.h"

namespace velmora::report {
namespace {

/// Bars of all waveforms together: more would make the page of a long session large and slow.
constexpr std::size_t kPeaks = 20'000;
constexpr double kShareOfFiles = 0.8;  ///< of the work: they are read whole, media are not

host::TargetOutcome Failure(std::string trouble) {
  return {std::move(trouble), {}, {}};
}

}  // namespace

host::TargetOutcome ReportTarget::Write(const host::TargetInput& input,
                                        const host::TargetProgress& progress) {
  const auto goesOn = [&](double share) { return !progress || progress(share); };
  const std::string cancelled = path_ + " is not written: it was cancelled";
  ReportData data;
  std::optional<std::vector<FileRow>> files =
      FilesOf(input, [&](double share) { return goesOn(share * kShareOfFiles); });
  if (!files) return Failure(cancelled);
  data.files = std::move(*files);
  data.messages = MessagesOf(input);
  const AllPeaks peaks =
      PeaksOf(input.session.Regions(), kPeaks, [&] { return goesOn(kShareOfFiles); });
  if (!goesOn(kShareOfFiles)) return Failure(cancelled);

  host::StagedFile file(path_);
  if (!file.Create()) return Failure(file.Trouble(errno));
  int error = 0;
  {
    host::FileBuffer buffer(file.Stream());
    std::ostream out(&buffer);
    errno = 0;
    WritePage(input, data, peaks.byRegion, out);
    if (!out.flush()) error = errno != 0 ? errno : EIO;
  }
  const int closing = file.Close();
  if (error == 0) error = closing;
  if (error == 0) error = file.Publish();
  if (error != 0) return Failure(file.Trouble(error));
  host::TargetOutcome outcome;
  for (const std::string& path : peaks.unread) {
    outcome.leftOut.push_back("the waveforms of " + path + ", which can no longer be read");
  }
  return outcome;
}

}  // namespace velmora::report
