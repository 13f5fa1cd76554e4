#include "Desktop/Logic/SaveReport.h"

#include <cstdlib>

#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Desktop/Logic/FreeName.h"
#include "Desktop/Logic/TextGroup.h"
#include "Session/Printable.h"
#include "Session/StagedFile.h"

namespace velmora::desktop {
namespace {

using host::Printable;

std::string HomeFolder() {
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? home : "";
}

/// "2 left out, 1 note"; empty for none.
std::string CountsText(const host::TargetOutcome& made) {
  std::string text;
  if (!made.leftOut.empty()) text = std::to_string(made.leftOut.size()) + " left out";
  if (!made.notes.empty()) {
    text += (text.empty() ? "" : ", ") + Counted(made.notes.size(), "note");
  }
  return text;
}

}  // namespace

std::string FreeTargetFor(const host::TargetKind& kind, const std::string& projectPath) {
  const std::string folder = projectPath.empty() ? HomeFolder() : FolderOf(projectPath);
  return FreeName(folder + "/" + StemOf(projectPath, "Session"), kind.extension);
}

std::string WithExtension(const host::TargetKind& kind, const std::string& path) {
  const std::string extension = kind.extension;
  if (extension.empty() || FileNameOf(path).empty()) return path;
  const std::string there = ExtensionOf(FileNameOf(path));
  return EqualsIgnoringCase(there.c_str(), extension.c_str()) ? path : path + extension;
}

std::string ComplaintAbout(const SaveRequest& request) {
  if (FileNameOf(request.path).empty()) return "Name what is to be made.";
  const std::string complaint = request.kind->claim(request.path, request.choices).complaint;
  // The one kind that writes over its like does so for scripts, which name it on purpose.
  return complaint.empty() ? host::StagedFile::WhyNot(request.path) : complaint;
}

bool HasDetails(const SaveOutcome& outcome) {
  const host::TargetOutcome& made = outcome.made;
  return !outcome.cancelled &&
         (!made.trouble.empty() || !made.leftOut.empty() || !made.notes.empty());
}

StatusItem DescribeSave(const SaveOutcome& outcome) {
  const std::string name = Printable(FileNameOf(outcome.request.path));
  if (outcome.cancelled) return {Severity::Quiet, name + ": cancelled, nothing was made"};
  if (!outcome.made.trouble.empty()) return {Severity::Problem, name + " was not made"};
  const std::string counts = CountsText(outcome.made);
  return {outcome.made.leftOut.empty() ? Severity::Quiet : Severity::Notice,
          "Made " + Printable(outcome.request.path) + (counts.empty() ? "" : " (" + counts + ")")};
}

std::string SaveHeadline(const SaveOutcome& outcome) {
  const std::string name = Printable(FileNameOf(outcome.request.path));
  if (outcome.cancelled) return "Cancelled. Nothing was left on the disk.";
  if (!outcome.made.trouble.empty()) {
    return name + " was not made, and nothing was left on the disk.";
  }
  if (!outcome.made.leftOut.empty()) return name + " is made, but it lacks something.";
  return name + (outcome.made.notes.empty() ? " is made." : " is made, with something to know.");
}

std::string SaveDetails(const SaveOutcome& outcome, std::size_t mostOfAList) {
  const host::TargetOutcome& made = outcome.made;
  std::string text;
  const auto add = [&](const std::string& heading, const std::vector<std::string>& lines) {
    AddGroup(text, heading, lines.size(), mostOfAList,
             [&](std::size_t i) { return Printable(lines[i]); });
  };
  if (!made.trouble.empty()) {
    add("What went wrong", {made.trouble});
  } else if (!outcome.cancelled) {
    add("Made", {outcome.request.path});
  }
  add("Left out (" + std::to_string(made.leftOut.size()) + ")", made.leftOut);
  add("Worth knowing (" + std::to_string(made.notes.size()) + ")", made.notes);
  return text;
}

}  // namespace velmora::desktop
