// Lines with fewer values than the system's readers ask for, and (Index) or (Entry) without any.

#include "Check/Requirements.h"

#include <string>

#include "Check/Judges.h"

namespace velmora::check {
namespace {

std::string TextOf(const Case& c, const FaultyLine& line) {
  return line.place ? c.Show(*line.place) : "(" + c.Show(line.label) + ")";
}

void TellIndex(const Case& c, Findings& findings, const FaultyLine& line) {
  const bool isEntry = field::IsKeyword(line.label, "Entry");
  findings.Add(Code::IndexMissing, Severity::Fails, {.offset = line.offset},
               {TextOf(c, line), "The project does not load: File NG.",
                isEntry ? "Number the entry; velmora prepare does it."
                        : "Number the source; velmora prepare does it."});
}

void TellValues(const Case& c, Findings& findings, const FaultyLine& line) {
  findings.Add(Code::ValuesMissing, Severity::Fails, {.offset = line.offset},
               {TextOf(c, line),
                "The project does not load: (" + std::string(line.label) + ") needs at least " +
                    std::to_string(ValuesNeeded(line.label)) + " values.",
                "Fill the line up with _ for what is not given; velmora prepare does it."});
}

}  // namespace

void JudgeRequirements(const Case& c, Findings& findings) {
  for (const FaultyLine& line : c.FaultyLines()) {
    if (line.fault == Fault::IndexMissing) TellIndex(c, findings, line);
    // The cut in which the file ends is told by the judge of text-cut-off.
    if (line.fault != Fault::ValuesMissing || c.IsCutOffCut(line.place)) continue;
    TellValues(c, findings, line);
  }
}

}  // namespace velmora::check
