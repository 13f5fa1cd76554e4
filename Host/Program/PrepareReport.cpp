#include "Program/PrepareReport.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <vector>

#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Program/CheckJson.h"
#include "Program/CheckText.h"
#include "Program/JsonStream.h"
#include "Program/TextTable.h"

namespace velmora::program {
namespace {

/// Lines of one group; a project may have a hundred thousand of them.
constexpr std::size_t kListedLines = 50;
constexpr std::size_t kListedPlaces = 8;

constexpr const char* kBold = "\x1b[1m";
constexpr const char* kPlain = "\x1b[0m";

std::string PlaceText(std::int64_t line, const std::optional<std::int32_t>& entry,
                      const std::optional<std::int32_t>& source) {
  std::string text = line > 0 ? "line " + std::to_string(line) : "the whole file";
  if (entry) text += ", entry " + std::to_string(*entry);
  if (source && !entry) text += ", source " + std::to_string(*source);
  return text;
}

/// Changes of one code. What was done alike is said once, with all its places.
void PrintGroup(const std::vector<const prepare::Change*>& group, std::ostream& out) {
  std::vector<std::string> texts;  // in the order in which they come first
  std::map<std::string, std::vector<std::string>> placesOf;
  for (const prepare::Change* const change : group) {
    std::vector<std::string>& places = placesOf[change->text];
    if (places.empty()) texts.push_back(change->text);
    places.push_back(PlaceText(change->line, change->entry, change->source));
  }
  for (std::size_t i = 0; i < texts.size() && i < kListedLines; ++i) {
    const std::vector<std::string>& places = placesOf[texts[i]];
    out << "    " << Printable(texts[i]) << "\n      ";
    for (std::size_t j = 0; j < places.size() && j < kListedPlaces; ++j) {
      out << (j > 0 ? "; " : "") << places[j];
    }
    if (places.size() > kListedPlaces) {
      out << "; and " << places.size() - kListedPlaces << " more, all told by --json";
    }
    out << '\n';
  }
  if (texts.size() > kListedLines) {
    out << "    ... and " << texts.size() - kListedLines << " more; --json tells all\n";
  }
}

void PrintChanges(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  if (prepared.changes.empty()) return;
  out << "Put right, by lines of the original\n";
  std::map<check::Code, std::vector<const prepare::Change*>> groups;
  for (const prepare::Change& change : prepared.changes) groups[change.code].push_back(&change);
  for (const auto& [code, group] : groups) {
    const check::CodeRow& row = check::RowOf(code);
    out << "  " << (colours ? kBold : "") << row.title << (colours ? kPlain : "");
    if (group.size() > 1) out << ", " << group.size() << " times";
    out << "  [" << row.name << "]\n";
    PrintGroup(group, out);
  }
  out << '\n';
}

/// The folder that all the files lie in or below, with a slash at its end; empty for the root.
std::string CommonFolder(const std::vector<prepare::MadeFile>& files) {
  std::string common = FolderOf(files.front().from) + '/';
  for (const prepare::MadeFile& file : files) {
    const auto end =
        std::mismatch(common.begin(), common.end(), file.from.begin(), file.from.end()).first;
    common.erase(end, common.end());
    common.erase(common.rfind('/') + 1);
  }
  return common.size() > 1 ? common : "";
}

void PrintFiles(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  if (prepared.files.empty()) return;
  const std::string common = CommonFolder(prepared.files);
  TextTable table({{"How"}, {"File"}, {"From"}});
  for (std::size_t i = 0; i < prepared.files.size() && i < kListedLines; ++i) {
    const prepare::MadeFile& file = prepared.files[i];
    table.Add({NameOf(file.how), Printable(FileNameOf(file.to)),
               Printable(file.from.substr(common.size()))});
  }
  out << "Audio" << (common.empty() ? "" : " from " + Printable(common)) << '\n';
  table.Print(out, colours);
  if (prepared.files.size() > kListedLines) {
    out << "  ... and " << prepared.files.size() - kListedLines << " more; --json tells all\n";
  }
  out << '\n';
}

void PrintRest(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  const auto kept = prepared.left.begin() + static_cast<std::ptrdiff_t>(prepared.leftOut);
  const std::vector<check::Finding> lost(prepared.left.begin(), kept);
  const std::vector<check::Finding> left(kept, prepared.left.end());
  if (!lost.empty()) {
    out << "Left out, by lines of the original\n";
    WriteFindingGroups(lost, colours, out);
    out << '\n';
  }
  if (!left.empty()) {
    out << "Left as it is, by lines of the prepared project\n";
    WriteFindingGroups(left, colours, out);
    out << '\n';
  }
}

}  // namespace

void PrintPreparedText(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  PrintChanges(prepared, colours, out);
  PrintFiles(prepared, colours, out);
  PrintRest(prepared, colours, out);
  out << "Prepared " << Printable(prepared.projectPath) << ": "
      << Counted(prepared.changes.size(), "change") << ", "
      << Counted(prepared.files.size(), "audio file") << ", "
      << (prepared.outcome == prepare::Outcome::Left ? "something is left" : "ready to spot")
      << ".\n";
}

void PrintLeft(const prepare::Prepared& prepared, std::ostream& out) {
  for (std::size_t i = 0; i < prepared.left.size(); ++i) {
    const check::Finding& finding = prepared.left[i];
    if (finding.severity == check::Severity::Note || finding.code == check::Code::RateCompensated) {
      continue;
    }
    out << "velmora: left: " << check::RowOf(finding.code).name << ", "
        << PlaceText(finding.line, finding.entry, finding.source) << " of the "
        << (i < prepared.leftOut ? "original" : "prepared project") << ": "
        << Printable(finding.text) << ": " << Printable(finding.effect) << '\n';
  }
}

void PrintPreparedJson(const prepare::Prepared& prepared, int exitStatus, std::ostream& out) {
  JsonStream json(out);
  json.BeginObject();
  json.Key("project").TextOrNull(prepared.projectPath);
  json.Key("changes").BeginArray();
  for (const prepare::Change& change : prepared.changes) {
    json.BeginObject();
    json.Key("code").Text(check::RowOf(change.code).name);
    json.Key("line").Integer(change.line);
    json.Key("entry").IntegerOrNull(change.entry);
    json.Key("source").IntegerOrNull(change.source);
    json.Key("text").Text(change.text);
    json.EndObject();
  }
  json.EndArray();
  json.Key("files").BeginArray();
  for (const prepare::MadeFile& file : prepared.files) {
    json.BeginObject();
    json.Key("from").Text(file.from);
    json.Key("to").Text(file.to);
    json.Key("how").Text(NameOf(file.how));
    json.EndObject();
  }
  json.EndArray();
  json.Key("left").BeginArray();
  for (const check::Finding& finding : prepared.left) WriteFindingJson(json, finding);
  json.EndArray();
  json.Key("exit").Integer(exitStatus);
  json.EndObject();
  json.EndLine();
}

}  // namespace velmora::program
