// Where the audio files are, and whether the system finds them there.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Base/Text.h"
#include "Check/Judges.h"

namespace velmora::check {
namespace {

std::string Files(const std::vector<std::string>& paths) {
  constexpr std::size_t kMost = 4;
  std::string text;
  for (std::size_t i = 0; i < std::min(paths.size(), kMost); ++i) {
    text += (i > 0 ? ", " : "") + paths[i];
  }
  return paths.size() > kMost ? text + ", ..." : text;
}

void TellAmbiguous(Findings& findings, Severity severity, const Place& place, std::string text,
                   const media::Located& located) {
  findings.Add(Code::MediaAmbiguous, severity, place,
               {std::move(text),
                "The cuts have no audio: " + Counted(located.candidates.size(), "file") +
                    " could be meant: " + Files(located.candidates) + ".",
                "Leave one of them in the folders that are searched, or put it beside the ADL "
                "under this name."});
}

void TellFound(const Case& c, Findings& findings, Severity severity, const Place& place,
               std::string text, const media::Located& located) {
  if (located.hiddenByEncoding) {
    findings.Add(Code::TextEncoding, severity, place,
                 {std::move(text),
                  "The cuts have no audio: the system reads Shift-JIS, so it does not see that " +
                      located.path + " is meant.",
                  "velmora prepare writes Shift-JIS, and safe names where that cannot hold them."});
    return;
  }
  if (located.hiddenByForm) {
    findings.Add(Code::LocationForm, severity, place,
                 {std::move(text),
                  "The cuts have no audio: the system does not decode locations, so it does not "
                  "see that " +
                      located.path + " is meant.",
                  "velmora prepare writes the name plainly."});
    return;
  }
  findings.Add(Code::MediaElsewhere, severity, place,
               {std::move(text),
                "The cuts have no audio: the system looks for it below " + c.folder +
                    " under this very name, and it is " + located.path + ".",
                "Put the file beside the ADL under this name; velmora prepare links it."});
}

}  // namespace

void JudgeLocations(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.sources.size(); ++i) {
    const media::Located& located = c.media[i].located;
    const bool isFound = located.result == media::SearchResult::Found;
    if (isFound && located.found == media::Found::Location) continue;
    const field::Source& source = c.project.sources[i];
    const field::EntryPlace line = source.fPlace.value_or(source.place);
    const Place place = {.offset = c.ValueOffset(line, 0), .source = i};
    const Severity severity = c.OfSource(i, Severity::Lost);
    std::string text = c.Show(line, 0);
    if (isFound) {
      TellFound(c, findings, severity, place, std::move(text), located);
    } else if (located.result == media::SearchResult::Ambiguous) {
      TellAmbiguous(findings, severity, place, std::move(text), located);
    } else {
      findings.Add(Code::MediaMissing, severity, place,
                   {std::move(text), "The cuts have no audio: there is no such file.",
                    "Name the folder that has it with --media, or copy the file beside the ADL."});
    }
  }
}

}  // namespace velmora::check
