#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ADL/ShiftJis.h"
#include "Model/Tables.h"
#include "Program/InfoCommand.h"
#include "Program/TextTable.h"

namespace velmora::program {
namespace {

/// Where a printed table differs from the column's identifier and from the left.
struct HeadingForm {
  std::string_view identifier;
  const char* heading;
  Align align;
};

constexpr auto kHeadings = std::to_array<HeadingForm>({
    {"Space", "On", Align::Left},
    {"Title", "Title", Align::Right},
    {"Track", "Track", Align::Right},
    {"ItemName", "Width", Align::Left},
    {"Number", "Tracks", Align::Right},
});

TextTable::Column HeadingOf(const TableColumn& column) {
  for (const HeadingForm& form : kHeadings) {
    if (form.identifier == column.identifier) return {form.heading, form.align};
  }
  return {std::string(column.identifier)};
}

std::string CellText(const CellValue& value) {
  if (value.kind == CellValue::Integer) return value.integer != 0 ? "x" : "-";
  return value.text;
}

/// One of the view's tables, its columns in the view's order.
void PrintTable(const ViewModel& model, std::string_view identifier, std::ostream& out,
                bool colours) {
  const auto known = Columns(identifier);
  std::vector<TableColumn> columns(known.begin(), known.end());
  std::sort(columns.begin(), columns.end(), [](const TableColumn& a, const TableColumn& b) {
    return a.viewPosition < b.viewPosition;
  });
  std::vector<TextTable::Column> headings;
  headings.reserve(columns.size());
  for (const TableColumn& column : columns) headings.push_back(HeadingOf(column));
  TextTable table(std::move(headings));
  const std::int32_t rows = NumberOfRows(model, identifier);
  for (std::int32_t row = 0; row < std::min(rows, kMostTableRows); ++row) {
    std::vector<std::string> cells;
    cells.reserve(columns.size());
    for (const TableColumn& column : columns) cells.push_back(CellText(column.value(model, row)));
    const bool isMissing = Style(model, identifier, "", row).background == Background::Red;
    table.Add(std::move(cells), isMissing);
  }
  table.Print(out, colours);
  if (rows > kMostTableRows) out << "  ... and " << rows - kMostTableRows << " more rows\n";
}

void PrintConstants(const AES31Project& project, std::ostream& out, bool colours) {
  TextTable table({{"Section"}, {"Constant"}, {"Value"}});
  for (std::size_t id = 0; id < kProjectConstants.size(); ++id) {
    const char* const text = project.constants[id];
    table.Add({kProjectConstants[id].section, kProjectConstants[id].keyword,
               text != nullptr ? ShiftJisToUtf8(text) : "-"});
  }
  table.Print(out, colours);
}

void AddSource(TextTable& table, std::int32_t index, const AES31SourceFile& source) {
  const std::string location = ShiftJisToUtf8(source.fValues[0]);
  AES31BWF* const file = source.file;
  if (file == nullptr) {
    table.Add({std::to_string(index), "MISSING", "", "", "", "", location}, true);
  } else if (!file->IsValid()) {
    table.Add({std::to_string(index), "no wave file", "", "", "", "", file->GetPath()}, true);
  } else {
    const bool pcm = file->GetFormat()->formatTag == kIntegerPcm;
    table.Add(
        {std::to_string(index), pcm ? "found" : "not PCM", std::to_string(file->GetSampleRate()),
         std::to_string(file->GetChannels()), std::to_string(file->GetBitsPerSample()),
         std::to_string(file->frames), file->GetPath()},
        !pcm);
  }
}

void PrintSources(const AES31Project& project, std::ostream& out, bool colours) {
  TextTable table({{"Index", Align::Right},
                   {"File"},
                   {"Hz", Align::Right},
                   {"Ch", Align::Right},
                   {"Bits", Align::Right},
                   {"Frames", Align::Right},
                   {"Path"}});
  for (const auto& [index, source] : project.sourceFiles) AddSource(table, index, source);
  table.Print(out, colours);
}

/// True for a file that an import reads nothing of, so that its tables hold no facts.
bool HasNoAdl(const ViewModel& model) {
  return std::any_of(model.loadDiagnostics.begin(), model.loadDiagnostics.end(),
                     [](const LoadDiagnostic& diagnostic) {
                       return diagnostic.code == LoadDiagnosticCode::NoAdl;
                     });
}

}  // namespace

void PrintInfoText(const InfoArguments& arguments, const ViewModel& model, std::ostream& out) {
  const bool colours = ShowsColours(1);
  out << Printable(arguments.project) << "\n\n";
  if (HasNoAdl(model)) {
    out << "There is no ADL in this file: it does not begin with <ADL>.\n";
    return;
  }
  out << "Project\n";
  PrintTable(model, "ProjectInfomationTable", out, colours);
  out << "\nConstants\n";
  PrintConstants(*model.project, out, colours);
  out << "\nSources\n";
  PrintSources(*model.project, out, colours);
  out << "\nTracks";
  if (!model.totalStartTime.empty()) {
    out << "  (" << Printable(model.totalStartTime) << " to " << Printable(model.totalEndTime)
        << ')';
  }
  out << '\n';
  PrintTable(model, "TrackTable", out, colours);
  out << "\nWidths\n";
  PrintTable(model, "numberOfTracksTable", out, colours);
  out << "\nEvents\n";
  PrintTable(model, "EventListTable", out, colours);
  if (!model.HasCuts()) {
    out << "\nThere is no cut in this project, so no track and no event row is filled.\n";
  }
  if (!model.errorMessage.empty()) out << '\n' << model.errorMessage << '\n';
}

}  // namespace velmora::program
