#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ADL/ShiftJis.h"
#include "Model/Tables.h"
#include "Program/BlockOutput.h"
#include "Program/InfoCommand.h"
#include "Program/RowPrinter.h"
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

PrintedColumn HeadingOf(const TableColumn& column) {
  for (const HeadingForm& form : kHeadings) {
    if (form.identifier == column.identifier) return {form.heading, form.align};
  }
  return {std::string(column.identifier)};
}

/// One of the view's tables, its columns in the view's order.
class ViewRows : public TableRows {
 public:
  ViewRows(const ViewModel& model, std::string_view identifier, std::size_t count)
      : model_(model), identifier_(identifier), count_(count) {
    const auto known = Columns(identifier);
    columns_.assign(known.begin(), known.end());
    std::sort(columns_.begin(), columns_.end(), [](const TableColumn& a, const TableColumn& b) {
      return a.viewPosition < b.viewPosition;
    });
  }
  [[nodiscard]] std::vector<PrintedColumn> Headings() const {
    std::vector<PrintedColumn> headings;
    for (const TableColumn& column : columns_) headings.push_back(HeadingOf(column));
    return headings;
  }

  [[nodiscard]] std::size_t Count() const override { return count_; }
  void FillCells(std::size_t column, std::size_t first, std::size_t count,
                 PrintedCells& cells) const override {
    const std::span<CellView> views = std::span(cells.views).first(count);
    columns_[column].fill(model_, static_cast<std::int32_t>(first), views);
    for (CellView& view : views) {
      if (view.kind == CellValue::Integer) view.text = view.text != "0" ? "x" : "-";
    }
  }
  [[nodiscard]] bool IsAlarming(std::size_t row) const override {
    const auto number = static_cast<std::int32_t>(row);
    return Style(model_, identifier_, "", number).background == Background::Red;
  }

 private:
  const ViewModel& model_;
  std::string_view identifier_;
  std::size_t count_;
  std::vector<TableColumn> columns_;
};

/// Rows of a table that are printed: all of its events, but of tracks, whose numbers may claim as
/// many rows as they like, no more than a project of that size is likely to use.
std::size_t PrintedRows(const ViewModel& model, std::int32_t rows) {
  return static_cast<std::size_t>(std::min(rows, std::max(model.numEvents, kMostTableRows)));
}

void PrintTable(const ViewModel& model, std::string_view identifier, BlockOutput& out,
                bool colours) {
  const std::int32_t count = NumberOfRows(model, identifier);
  const ViewRows rows(model, identifier, PrintedRows(model, count));
  const std::vector<PrintedColumn> headings = rows.Headings();
  RowPrinter(headings, rows, colours).Print(out);
  const std::size_t left = static_cast<std::size_t>(count) - rows.Count();
  if (left > 0) out << "  ... and " << std::to_string(left) << " more rows\n";
}

void PrintConstants(const AES31Project& project, BlockOutput& out, bool colours) {
  TextTable table({{"Section"}, {"Constant"}, {"Value"}});
  for (std::size_t id = 0; id < kProjectConstants.size(); ++id) {
    const char* const text = project.constants[id];
    table.Add({kProjectConstants[id].section, kProjectConstants[id].keyword,
               text != nullptr ? ShiftJisToUtf8(text) : "-"});
  }
  table.Append(out.Text(), colours);
}

/// What was found of a source.
enum class Finding { Missing, NoWaveFile, NotPcm, Found };

Finding FindingOf(const AES31SourceFile& source) {
  if (source.file == nullptr) return Finding::Missing;
  if (!source.file->IsValid()) return Finding::NoWaveFile;
  const bool pcm = source.file->GetFormat()->formatTag == kIntegerPcm;
  return pcm ? Finding::Found : Finding::NotPcm;
}

/// The words for each finding, in the order of the enumeration.
constexpr auto kFindings =
    std::to_array<const char*>({"MISSING", "no wave file", "not PCM", "found"});

class SourceRows : public TableRows {
 public:
  explicit SourceRows(const AES31Project& project) {
    sources_.reserve(project.sourceFiles.size());
    for (const auto& source : project.sourceFiles) sources_.push_back(&source);
  }
  static std::vector<PrintedColumn> Headings() {
    return {{"Index", Align::Right},
            {"File"},
            {"Hz", Align::Right},
            {"Ch", Align::Right},
            {"Bits", Align::Right},
            {"Frames", Align::Right},
            {"Path"}};
  }

  [[nodiscard]] std::size_t Count() const override { return sources_.size(); }
  void FillCells(std::size_t column, std::size_t first, std::size_t count,
                 PrintedCells& cells) const override {
    for (std::size_t i = 0; i < count; ++i) cells.Set(i, Cell(*sources_[first + i], column));
  }
  [[nodiscard]] bool IsAlarming(std::size_t row) const override {
    return FindingOf(sources_[row]->second) != Finding::Found;
  }

 private:
  using Source = std::map<std::int32_t, AES31SourceFile>::value_type;

  static std::string Cell(const Source& indexed, std::size_t column) {
    const auto& [index, source] = indexed;
    if (column == 0) return std::to_string(index);
    if (column == 1) return kFindings[static_cast<std::size_t>(FindingOf(source))];
    if (column == 6) {
      return source.file != nullptr ? source.file->GetPath() : ShiftJisToUtf8(source.fValues[0]);
    }
    if (source.file == nullptr || !source.file->IsValid()) return {};
    return Fact(*source.file, column);
  }
  static std::string Fact(AES31BWF& file, std::size_t column) {
    switch (column) {
      case 2:
        return std::to_string(file.GetSampleRate());
      case 3:
        return std::to_string(file.GetChannels());
      case 4:
        return std::to_string(file.GetBitsPerSample());
      default:
        return std::to_string(file.frames);
    }
  }

  std::vector<const Source*> sources_;
};

void PrintSources(const AES31Project& project, BlockOutput& out, bool colours) {
  const std::vector<PrintedColumn> headings = SourceRows::Headings();
  const SourceRows rows(project);
  RowPrinter(headings, rows, colours).Print(out);
}

/// True for a file that an import reads nothing of, so that its tables hold no facts.
bool HasNoAdl(const ViewModel& model) {
  return std::any_of(model.loadDiagnostics.begin(), model.loadDiagnostics.end(),
                     [](const LoadDiagnostic& diagnostic) {
                       return diagnostic.code == LoadDiagnosticCode::NoAdl;
                     });
}

/// " (01|00:00:00 to 01|00:14:00)", or nothing without a cut.
std::string SpanText(const ViewModel& model) {
  if (model.totalStartTime.empty()) return {};
  return " (" + Printable(model.totalStartTime) + " to " + Printable(model.totalEndTime) + ')';
}

/// " (5 found, 1 missing)": how many there are of each kind, without those that there are none of.
std::string Shares(const std::vector<std::pair<std::size_t, const char*>>& kinds) {
  std::string list;
  for (const auto& [count, word] : kinds) {
    if (count == 0) continue;
    list += (list.empty() ? " (" : ", ") + std::to_string(count) + ' ' + word;
  }
  return list.empty() ? list : list + ')';
}

std::string SourceShares(const AES31Project& project) {
  std::array<std::size_t, kFindings.size()> counts{};
  for (const auto& [index, source] : project.sourceFiles) {
    ++counts[static_cast<std::size_t>(FindingOf(source))];
  }
  const auto count = [&counts](Finding finding) {
    return counts[static_cast<std::size_t>(finding)];
  };
  return Shares({{count(Finding::Found), "found"},
                 {count(Finding::NotPcm), "not PCM"},
                 {count(Finding::NoWaveFile), "no wave file"},
                 {count(Finding::Missing), "missing"}});
}

/// Every cut of a project that was just loaded is listed, and the model knows how many those are: a
/// walk over a million events would take 10 ms.
std::string EventShares(const ViewModel& model) {
  const std::size_t cuts = model.eventTrack.size();
  const std::size_t others = model.project->events.size() - cuts;
  return Shares({{cuts, cuts == 1 ? "cut" : "cuts"}, {others, "other"}});
}

/// What stands in place of the rows of sources, tracks and events. Without a cut no track is used,
/// whatever the table of tracks then has for rows.
void PrintCounts(const ViewModel& model, BlockOutput& out) {
  const std::int32_t tracks = model.HasCuts() ? NumberOfRows(model, "TrackTable") : 0;
  out << "\nSources  " << std::to_string(model.project->sourceFiles.size())
      << SourceShares(*model.project) << "\nTracks   " << std::to_string(tracks) << SpanText(model)
      << "\nEvents   " << std::to_string(model.project->events.size()) << EventShares(model)
      << "\n\n";
}

void PrintWidths(const ViewModel& model, BlockOutput& out, bool colours) {
  out << "Widths\n";
  PrintTable(model, "numberOfTracksTable", out, colours);
}

void PrintRows(const ViewModel& model, BlockOutput& out, bool colours) {
  out << "\nSources\n";
  PrintSources(*model.project, out, colours);
  const std::string span = SpanText(model);
  out << "\nTracks" << (span.empty() ? "" : " ") << span << '\n';
  PrintTable(model, "TrackTable", out, colours);
  out << '\n';
  PrintWidths(model, out, colours);
  out << "\nEvents\n";
  PrintTable(model, "EventListTable", out, colours);
}

}  // namespace

void PrintInfoText(const InfoArguments& arguments, const ViewModel& model, BlockOutput& out) {
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
  if (arguments.summary) {
    PrintCounts(model, out);
    PrintWidths(model, out, colours);
  } else {
    PrintRows(model, out, colours);
  }
  if (!model.HasCuts()) {
    out << "\nThere is no cut in this project, so no track and no event row is filled.\n";
  }
  if (!model.errorMessage.empty()) out << '\n' << Printable(model.errorMessage) << '\n';
}

}  // namespace velmora::program
