#include "Recording/RecordedFindings.h"

namespace velmora::recording {

std::vector<host::RecordedFinding> FindingsOf(const std::string& path,
                                              const check::CheckOptions& options,
                                              const std::function<bool()>& stopped) {
  media::FolderListings listings;
  std::vector<host::RecordedFinding> findings;
  for (const check::Finding& finding : CheckProject(path, options, listings, stopped).findings) {
    findings.push_back({check::NameOf(finding.severity), check::RowOf(finding.code).name,
                        finding.line, finding.entry, finding.source, finding.text, finding.effect,
                        finding.remedy});
  }
  return findings;
}

}  // namespace velmora::recording
