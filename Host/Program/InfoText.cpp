#include <algorithm>
#include <ostream>
#include <string>

#include "ADL/ShiftJis.h"
#include "Model/Tables.h"
#include "Program/InfoCommand.h"
#include "Program/TextTable.h"

namespace velmora::program {
namespace {

std::string Cell(const ViewModel& model, const char* table, const char* column, std::int32_t row) {
  const CellValue value = ObjectValue(model, table, column, row);
  if (value.kind == CellValue::Integer) return value.integer != 0 ? "x" : "-";
  return value.text;
}

/// One of the view's tables, headings and columns as the view has them.
void PrintTable(const ViewModel& model, const char* identifier,
                const std::vector<const char*>& identifiers, std::vector<TextTable::Column> columns,
                std::ostream& out, bool colours) {
  TextTable table(std::move(columns));
  const std::int32_t rows = NumberOfRows(model, identifier);
  for (std::int32_t row = 0; row < std::min(rows, kMostTableRows); ++row) {
    std::vector<std::string> cells;
    for (const char* const column : identifiers) {
      cells.push_back(Cell(model, identifier, column, row));
    }
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

}  // namespace

void PrintInfoText(const InfoArguments& arguments, const ViewModel& model, std::ostream& out) {
  const bool colours = ShowsColours(1);
  out << Printable(arguments.project) << "\n\nProject\n";
  PrintTable(model, "ProjectInfomationTable", {"Title", "Data"},
             {{"Title", Align::Right}, {"Data"}}, out, colours);
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
  PrintTable(model, "TrackTable", {"Space", "Track", "Type", "Start", "End"},
             {{"On"}, {"Track", Align::Right}, {"Type"}, {"Start"}, {"End"}}, out, colours);
  out << "\nWidths\n";
  PrintTable(model, "numberOfTracksTable", {"ItemName", "Number"},
             {{"Width"}, {"Tracks", Align::Right}}, out, colours);
  out << "\nEvents\n";
  PrintTable(
      model, "EventListTable", {"Space", "Event", "Type", "Track", "Ch", "In", "Out", "Name"},
      {{"On"}, {"Event"}, {"Type"}, {"Track", Align::Right}, {"Ch"}, {"In"}, {"Out"}, {"Name"}},
      out, colours);
  if (!model.HasCuts())
    out << "\nThere is no cut in this project, so no track and no event row is filled.\n";
  if (!model.errorMessage.empty()) out << '\n' << model.errorMessage << '\n';
}

}  // namespace velmora::program
