#include "Report/ReportKind.h"

#include "Report/ReportTarget.h"
#include "Session/ClaimNewFile.h"

namespace velmora::report {

const host::TargetKind kReportKind = {
    .name = "report",
    .option = "--report",
    .form = "FILE.html",
    .extension = ".html",
    .title = "Report",
    .help = "A page of what was read, made, placed and left\nout, for any browser",
    .use = host::TargetKind::Use::Record,
    .claim =
        [](const std::string& path, const host::TargetChoices& /*choices*/) {
          return host::ClaimNewFile<ReportTarget>(path);
        },
};

}  // namespace velmora::report
