// Sources that do not say at which time their file starts.

#include <string>

#include "Check/Judges.h"

namespace velmora::check {

void JudgeFileStarts(const Case& c, Findings& findings) {
  constexpr std::size_t kStartValue = 2;
  for (std::size_t i = 0; i < c.project.sources.size(); ++i) {
    const field::Source& source = c.project.sources[i];
    if (!source.startDecided) continue;
    const field::EntryPlace line = source.fPlace.value_or(source.place);
    const std::string cause =
        source.givenStart ? "With this start no cut lies inside the file; " : "This is no time; ";
    const std::string start =
        source.fileStart == 0 ? "time 0"
                              : "sample " + std::to_string(source.fileStart) + " since midnight";
    findings.Add(Code::FileStartMissing, c.OfSource(i, Severity::Misplaced),
                 {.offset = c.ValueOffset(line, kStartValue), .source = i},
                 {c.Show(line, kStartValue < c.Line(line).valueCount ? kStartValue : 0) +
                      ", decided as " + start,
                  cause + "the system would play its cuts from another place of the file.",
                  "Write the time of the file's first sample; velmora prepare writes what its time "
                  "reference and its cuts tell."});
  }
}

}  // namespace velmora::check
