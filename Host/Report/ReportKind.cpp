#include "Report/ReportKind.h"

#include <memory>

#include "Report/ReportTarget.h"
#include "Session/StagedFile.h"

namespace velmora::report {

const host::TargetKind kReportKind = {
    .name = "report",
    .option = "--report",
    .form = "FILE.html",
    .extension = ".html",
    .title = "Report",
    .help = "A page of what was read, made, placed and left\nout, for any browser",
    .use = host::TargetKind::Use::Record,
    .claim = [](const std::string& path,
                const host::TargetChoices& /*choices*/) -> host::ClaimedTarget {
      std::string complaint = host::StagedFile::WhyNot(path);
      if (!complaint.empty()) return {nullptr, std::move(complaint)};
      return {std::make_unique<ReportTarget>(path), {}};
    },
};

}  // namespace velmora::report
