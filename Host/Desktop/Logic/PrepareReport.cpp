#include "Desktop/Logic/PrepareReport.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Desktop/Logic/FindingsReport.h"
#include "Desktop/Logic/FreeName.h"
#include "Desktop/Logic/TextGroup.h"

namespace velmora::desktop {
namespace {

using prepare::Outcome;
using prepare::Prepared;

/// What heads the things of one kind: its title and their number.
std::string Heading(const std::string& before, check::Code code, std::size_t count) {
  return before + check::RowOf(code).title + " (" + std::to_string(count) + ")";
}

/// Effect and remedy, which most findings of a kind share.
std::string Advice(const check::Finding& finding) {
  return OneLine(finding.effect) + (finding.remedy.empty() ? "" : " " + OneLine(finding.remedy));
}

void AddLeft(const Prepared& prepared, std::size_t most, std::string& text) {
  std::map<check::Code, std::vector<const check::Finding*>> kinds;
  for (const check::Finding& finding : prepared.left) {
    if (finding.severity != check::Severity::Note) kinds[finding.code].push_back(&finding);
  }
  for (const auto& [code, findings] : kinds) {
    AddGroup(text, Heading("Left in the new project: ", code, findings.size()), findings.size(),
             most, [&, &some = findings](std::size_t i) {
               const check::Finding& finding = *some[i];
               std::string line = PlaceText(finding.line, finding.entry, finding.source) + ": " +
                                  OneLine(finding.text);
               const bool isNew = i == 0 || Advice(finding) != Advice(*some[i - 1]);
               return isNew ? line + "\n    " + Advice(finding) : line;
             });
  }
}

/// One line for each kind: they are many, and nothing is lost by them.
void AddNotes(const Prepared& prepared, std::string& text) {
  std::map<check::Code, std::size_t> counts;
  for (const check::Finding& finding : prepared.left) {
    if (finding.severity == check::Severity::Note) ++counts[finding.code];
  }
  std::vector<std::string> lines;
  lines.reserve(counts.size());
  for (const auto& [code, count] : counts) lines.push_back(Heading("", code, count));
  AddGroup(text, "Worth knowing", lines.size(), lines.size(),
           [&](std::size_t i) { return lines[i]; });
}

void AddChanges(const Prepared& prepared, std::size_t most, std::string& text) {
  std::map<check::Code, std::vector<const prepare::Change*>> groups;
  for (const prepare::Change& change : prepared.changes) groups[change.code].push_back(&change);
  for (const auto& [code, changes] : groups) {
    const std::string heading = Heading("Changed: ", code, changes.size());
    AddGroup(text, heading, changes.size(), most, [&, &some = changes](std::size_t i) {
      const prepare::Change& change = *some[i];
      return PlaceText(change.line, change.entry, change.source) + ": " + OneLine(change.text);
    });
  }
}

void AddFiles(const Prepared& prepared, std::size_t most, std::string& text) {
  const auto& files = prepared.files;
  AddGroup(text, "Audio files (" + std::to_string(files.size()) + ")", files.size(), most,
           [&](std::size_t i) {
             return OneLine(FileNameOf(files[i].to)) + ": " + prepare::NameOf(files[i].how) +
                    " from " + OneLine(files[i].from);
           });
}

std::string FreeNameIn(const std::string& folder, const std::string& projectPath) {
  return FreeName(folder + "/" + StemOf(projectPath, "Project") + " prepared");
}

}  // namespace

std::string FreeTarget(const std::string& projectPath) {
  return FreeNameIn(FolderOf(projectPath), projectPath);
}

std::string TargetIn(const std::string& folder, const std::string& projectPath) {
  std::error_code error;
  if (std::filesystem::is_empty(folder, error) && !error) return folder;
  return FreeNameIn(folder, projectPath);
}

bool IsPrepared(const Prepared& prepared) {
  return prepared.outcome == Outcome::Done || prepared.outcome == Outcome::Left;
}

std::string OutcomeText(const Prepared& prepared) {
  switch (prepared.outcome) {
    case Outcome::Done:
    case Outcome::Left: {
      std::string text = "Prepared: " + Counted(prepared.changes.size(), "change") + ", " +
                         Counted(prepared.files.size(), "audio file") + ".";
      const auto grave = std::count_if(
          prepared.left.begin(), prepared.left.end(),
          [](const check::Finding& finding) { return finding.severity != check::Severity::Note; });
      if (grave == 0) return text + " Nothing is left to mend.";
      return text + " " + Counted(static_cast<std::size_t>(grave), "finding") +
             (grave == 1 ? " is left." : " are left.");
    }
    case Outcome::FolderTaken:
      return "Nothing was made: " + prepared.trouble;
    case Outcome::NotAnAdl:
      return "This cannot be prepared: " + prepared.trouble;
    case Outcome::Failed:
      return "Could not be prepared, and nothing was left on the disk: " + prepared.trouble;
    case Outcome::Cancelled:
      return "Cancelled. Nothing was left on the disk.";
  }
  return {};
}

std::string DescribePrepared(const Prepared& prepared, std::size_t mostOfAGroup) {
  std::string text;
  AddLeft(prepared, mostOfAGroup, text);
  AddChanges(prepared, mostOfAGroup, text);
  AddFiles(prepared, mostOfAGroup, text);
  AddNotes(prepared, text);
  return text;
}

}  // namespace velmora::desktop
