// A file that ends too early.

#include "Check/Judges.h"

namespace velmora::check {

void JudgeCutOff(const Case& c, Findings& findings) {
  const field::Tree& tree = c.project.tree;
  if (!tree.cutOff) return;
  if (c.IsCutOffCut(tree.cutEntry)) {
    const field::EntryPlace place = *tree.cutEntry;
    findings.Add(Code::TextCutOff, Severity::Fails, c.AtLine(place),
                 {c.Show(place), "The project does not load: the file ends within this cut.",
                  "Export the project again; velmora prepare leaves this cut out."});
    return;
  }
  findings.Add(Code::TextCutOff, Severity::Note, {.offset = tree.file.size()},
               {"the file ends before </ADL>",
                "What is there is read; whether more was to come cannot be told.",
                "Export the project again if anything is missing."});
}

}  // namespace velmora::check
