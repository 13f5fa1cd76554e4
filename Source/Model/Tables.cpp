#include "Model/Tables.h"

#include <algorithm>
#include <array>
#include <optional>
#include <type_traits>
#include <utility>

#include "Base/Wrapping.h"

namespace velmora {
namespace {

constexpr std::string_view kProjectTable = "ProjectInfomationTable";
constexpr std::string_view kTrackTable = "TrackTable";
constexpr std::string_view kEventTable = "EventListTable";
constexpr std::string_view kWidthTable = "numberOfTracksTable";
constexpr std::string_view kBoxColumn = "Space";

constexpr auto kProjectTitles = std::to_array<const char*>(
    {"Project Title", "Proj Orijinator", "Proj Create Data", "Proj Note", "Proj Client Data", "",
     "Sequence Title", "Seq Sample Rate", "Seq Frame Rate", "Seq ADL Level", "Seq Clean",
     "Seq Multichan", "Seq Dest Start"});

constexpr auto kWidthNames = std::to_array<const char*>(
    {"Mono", "Stereo", "3 Ch.", "4 Ch.", "5 Ch.", "6 Ch.", "7 Ch.", "8 Ch."});

// A column is one function that answers a cell without a string of its own: a text, or a bool for a
// check box, and nothing for a row that is not there. Value and Fill make of it what others ask.

template <auto Cell>
CellValue Value(const ViewModel& model, std::int32_t row) {
  const auto cell = Cell(model, row);
  if (!cell) return {};
  if constexpr (std::is_same_v<decltype(*cell), const bool&>) {
    return {CellValue::Integer, {}, *cell ? 1 : 0};
  } else {
    return {CellValue::Text, std::string(std::string_view(*cell)), 0};
  }
}

void Put(CellView& view, bool cell) {
  view.kind = CellValue::Integer;
  view.text = cell ? "1" : "0";
}
void Put(CellView& view, std::string_view cell) {
  view.kind = CellValue::Text;
  view.text = cell;
}
void Put(CellView& view, const NumberText& cell) {
  view.digits = cell;
  Put(view, std::string_view(view.digits));
}

template <auto Cell>
void Fill(const ViewModel& model, std::int32_t first, std::span<CellView> cells) {
  std::int32_t row = first;
  for (CellView& view : cells) {
    if (const auto cell = Cell(model, row++)) {
      Put(view, *cell);
    } else {
      view.kind = CellValue::None;
      view.text = {};
    }
  }
}

template <auto Cell>
constexpr TableColumn ColumnOf(std::string_view identifier, ColumnText text, int viewPosition) {
  return {identifier, text, viewPosition, Value<Cell>, Fill<Cell>};
}

using Text = std::optional<std::string_view>;
using Number = std::optional<NumberText>;
using Box = std::optional<bool>;

template <class Array>
bool Has(const Array& column, std::int32_t row) {
  return row >= 0 && std::cmp_less(row, column.size());
}

/// A row's text, or no value for a row that the column does not have.
template <class Array>
Text TextAt(const Array& column, std::int32_t row) {
  return Has(column, row) ? Text(column[static_cast<std::size_t>(row)]) : Text();
}

Text ProjectTitle(const ViewModel&, std::int32_t row) {
  return TextAt(kProjectTitles, row);
}
Text ProjectData(const ViewModel& model, std::int32_t row) {
  return TextAt(model.ProjectInfomation, row);
}

constexpr auto kProjectColumns = std::to_array<TableColumn>({
    ColumnOf<ProjectTitle>("Title", ColumnText::Utf8, 0),
    ColumnOf<ProjectData>("Data", ColumnText::Utf8, 1),
});

bool HasTrack(const ViewModel& model, std::int32_t row) {
  return row >= 0 && row < model.trackCount;
}

Box TrackBox(const ViewModel& model, std::int32_t row) {
  const bool* const on = HasTrack(model, row) ? model.trackEnable.At(row) : nullptr;
  return on != nullptr ? Box(*on) : Box();
}
Number TrackNumber(const ViewModel& model, std::int32_t row) {
  return HasTrack(model, row) ? Number(WrapAdd(model.minTrack, row)) : Number();
}
Text TrackType(const ViewModel& model, std::int32_t row) {
  return HasTrack(model, row) ? Text("Mono") : Text();
}
template <SparseColumn<std::string> ViewModel::*Texts>
Text TrackTime(const ViewModel& model, std::int32_t row) {
  const std::string* const text = HasTrack(model, row) ? (model.*Texts).At(row) : nullptr;
  return text != nullptr ? Text(*text) : Text();
}

constexpr auto kTrackColumns = std::to_array<TableColumn>({
    ColumnOf<TrackBox>(kBoxColumn, ColumnText::Utf8, 0),
    ColumnOf<TrackNumber>("Track", ColumnText::Utf8, 1),
    ColumnOf<TrackType>("Type", ColumnText::Utf8, 2),
    ColumnOf<TrackTime<&ViewModel::trackStart>>("Start", ColumnText::Project, 3),
    ColumnOf<TrackTime<&ViewModel::trackEnd>>("End", ColumnText::Project, 4),
});

Box EventBoxAt(const ViewModel& model, std::int32_t row) {
  if (!Has(model.eventIndices, row)) return {};
  const std::int32_t index = model.eventIndices[static_cast<std::size_t>(row)];
  if (!Has(model.eventEnable, index)) return {};
  return model.eventEnable[static_cast<std::size_t>(index)] != EventBox::Off;
}

/// The cells of one of the model's columns.
template <auto Column>
auto EventCell(const ViewModel& model, std::int32_t row) {
  const auto& column = model.*Column;
  using Cell = std::optional<decltype(column.View(0))>;
  return Has(column, row) ? Cell(column.View(static_cast<std::size_t>(row))) : Cell();
}

constexpr auto kEventColumns = std::to_array<TableColumn>({
    ColumnOf<EventBoxAt>(kBoxColumn, ColumnText::Utf8, 0),
    ColumnOf<EventCell<&ViewModel::eventTypes>>("Type", ColumnText::Project, 2),
    ColumnOf<EventCell<&ViewModel::eventNumbers>>("Event", ColumnText::Utf8, 1),
    ColumnOf<EventCell<&ViewModel::eventCh>>("Ch", ColumnText::Utf8, 4),
    ColumnOf<EventCell<&ViewModel::eventIn>>("In", ColumnText::Project, 5),
    ColumnOf<EventCell<&ViewModel::eventOut>>("Out", ColumnText::Project, 6),
    ColumnOf<EventCell<&ViewModel::eventTrack>>("Track", ColumnText::Utf8, 3),
    ColumnOf<EventCell<&ViewModel::eventName>>("Name", ColumnText::Utf8, 7),
});

Text WidthName(const ViewModel&, std::int32_t row) {
  return TextAt(kWidthNames, row);
}
/// Every track counts as mono.
Number WidthCount(const ViewModel& model, std::int32_t row) {
  if (!Has(kWidthNames, row)) return {};
  return Number(row == 0 ? model.trackCount : 0);
}

constexpr auto kWidthColumns = std::to_array<TableColumn>({
    ColumnOf<WidthName>("ItemName", ColumnText::Utf8, 0),
    ColumnOf<WidthCount>("Number", ColumnText::Utf8, 1),
});

template <class Array>
std::int32_t Count(const Array& rows) {
  return static_cast<std::int32_t>(rows.size());
}

constexpr double kPlainRowHeight = 16.0;

constexpr auto kTables = std::to_array<Table>({
    {kProjectTable, kProjectColumns, [](const ViewModel&) { return Count(kProjectTitles); }, 12.0,
     false},
    {kTrackTable, kTrackColumns,
     [](const ViewModel& model) { return std::max(model.trackCount, 0); }, kPlainRowHeight, true},
    {kEventTable, kEventColumns, [](const ViewModel& model) { return model.enableEvents; },
     kPlainRowHeight, true},
    {kWidthTable, kWidthColumns, [](const ViewModel&) { return Count(kWidthNames); }, 13.0, false},
});

const Table* FindTable(std::string_view identifier) {
  const auto* const found =
      std::find_if(kTables.begin(), kTables.end(),
                   [identifier](const Table& table) { return table.identifier == identifier; });
  return found != kTables.end() ? found : nullptr;
}

}  // namespace

std::span<const Table> Tables() {
  return kTables;
}

std::span<const TableColumn> Columns(std::string_view table) {
  const Table* const found = FindTable(table);
  return found != nullptr ? found->columns : std::span<const TableColumn>();
}

std::int32_t NumberOfRows(const ViewModel& model, std::string_view table) {
  const Table* const found = FindTable(table);
  return found != nullptr ? found->rows(model) : 0;
}

const TableColumn* FindColumn(std::string_view table, std::string_view column) {
  for (const TableColumn& candidate : Columns(table)) {
    if (candidate.identifier == column) return &candidate;
  }
  return nullptr;
}

CellValue ObjectValue(const ViewModel& model, std::string_view table, std::string_view column,
                      std::int32_t row) {
  const TableColumn* const found = FindColumn(table, column);
  return found != nullptr ? found->value(model, row) : CellValue();
}

void SetObjectValue(ViewModel& model, std::string_view table, std::string_view column,
                    std::int32_t row, std::int32_t value) {
  if (column != kBoxColumn) return;
  if (table == kTrackTable) model.SetTrackBox(row, value > 0);
  if (table == kEventTable) model.SetEventBox(row, value > 0);
}

CellStyle Style(const ViewModel& model, std::string_view table, std::string_view column,
                std::int32_t row) {
  constexpr int kLeft = 0;
  constexpr int kRight = 1;
  constexpr double kSmallFont = 11.0;
  if (table == kProjectTable) {
    return {Background::Untouched, column == "Title" ? kRight : kLeft, kSmallFont};
  }
  if (table == kWidthTable) {
    return {Background::Untouched, column == "ItemName" ? kLeft : kRight, kSmallFont};
  }
  if (table != kTrackTable && table != kEventTable) return {};
  const bool isMissing = table == kEventTable && Has(model.eventFound, row) &&
                         !model.eventFound[static_cast<std::size_t>(row)];
  if (isMissing) return {Background::Red, -1, 0};
  return {row % 2 == 0 ? Background::White : Background::Stripe, -1, 0};
}

double HeightOfRow(std::string_view table) {
  const Table* const found = FindTable(table);
  return found != nullptr ? found->rowHeight : kPlainRowHeight;
}

bool ShouldSelectRow(std::string_view table) {
  const Table* const found = FindTable(table);
  return found != nullptr && found->isSelectable;
}

}  // namespace velmora
