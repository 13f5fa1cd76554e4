#include "Program/PrepareReport.h"

#include <cstdint>
#include <map>
#include <ostream>
#include <vector>

#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Program/CheckJson.h"
#include "Program/JsonStream.h"
#include "Program/TextTable.h"

namespace velmora::program {
namespace {

/// Lines of one group; a project may have a hundred thousand of them.
constexpr std::size_t kListedLines = 50;

constexpr const char* kBold = "\x1b[1m";
constexpr const char* kPlain = "\x1b[0m";

std::string PlaceText(std::int64_t line, const std::optional<std::int32_t>& entry,
                      const std::optional<std::int32_t>& source) {
  std::string text = line > 0 ? "line " + std::to_string(line) : "the whole file";
  if (entry) text += ", event " + std::to_string(*entry);
  if (source && !entry) text += ", source " + std::to_string(*source);
  return text;
}

void PrintHeading(const std::string& text, bool colours, std::ostream& out) {
  out << (colours ? kBold : "") << text << (colours ? kPlain : "") << '\n';
}

/// Items in groups of one code, the groups in the order of the codes.
template <class Item, class PrintItem>
void PrintGroups(const std::vector<Item>& items, bool colours, std::ostream& out,
                 const PrintItem& printItem) {
  std::map<check::Code, std::vector<const Item*>> groups;
  for (const Item& item : items) groups[item.code].push_back(&item);
  for (const auto& [code, group] : groups) {
    const check::CodeRow& row = check::RowOf(code);
    PrintHeading(
        "  " + std::string(row.title) + " (" + row.name + "): " + std::to_string(group.size()),
        colours, out);
    for (std::size_t i = 0; i < group.size() && i < kListedLines; ++i) printItem(*group[i]);
    if (group.size() > kListedLines) {
      out << "    ... and " << group.size() - kListedLines << " more; --json tells all\n";
    }
  }
}

void PrintChanges(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  if (prepared.changes.empty()) return;
  out << "Put right\n";
  PrintGroups(prepared.changes, colours, out, [&](const prepare::Change& change) {
    out << "    " << PlaceText(change.line, change.entry, change.source) << ": "
        << Printable(change.text) << '\n';
  });
  out << '\n';
}

void PrintFiles(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  if (prepared.files.empty()) return;
  TextTable table({{"How"}, {"File"}, {"From"}});
  for (std::size_t i = 0; i < prepared.files.size() && i < kListedLines; ++i) {
    const prepare::MadeFile& file = prepared.files[i];
    table.Add({NameOf(file.how), Printable(FileNameOf(file.to)), Printable(file.from)});
  }
  out << "Audio\n";
  table.Print(out, colours);
  if (prepared.files.size() > kListedLines) {
    out << "  ... and " << prepared.files.size() - kListedLines << " more; --json tells all\n";
  }
  out << '\n';
}

void PrintRest(const prepare::Prepared& prepared, bool colours, std::ostream& out) {
  if (prepared.left.empty()) return;
  out << "Left as it is\n";
  PrintGroups(prepared.left, colours, out, [&](const check::Finding& finding) {
    out << "    " << PlaceText(finding.line, finding.entry, finding.source) << ": "
        << Printable(finding.text) << '\n'
        << "      " << Printable(finding.effect) << ' ' << Printable(finding.remedy) << '\n';
  });
  out << '\n';
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
  for (const check::Finding& finding : prepared.left) {
    if (finding.severity == check::Severity::Note || finding.code == check::Code::RateCompensated) {
      continue;
    }
    out << "velmora: left: " << check::RowOf(finding.code).name << ", "
        << PlaceText(finding.line, finding.entry, finding.source) << ": "
        << Printable(finding.effect) << '\n';
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
