#include "Model/Tables.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

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

CellValue NoValue() {
  return {};
}
CellValue TextValue(std::string text) {
  return {CellValue::Text, std::move(text), 0};
}
CellValue BoxValue(bool on) {
  return {CellValue::Integer, {}, on ? 1 : 0};
}

template <class Array>
bool Has(const Array& column, std::int32_t row) {
  return row >= 0 && std::cmp_less(row, column.size());
}

/// A row's text, or no value for a row that the column does not have.
template <class Array>
CellValue TextAt(const Array& column, std::int32_t row) {
  return Has(column, row) ? TextValue(column[static_cast<std::size_t>(row)]) : NoValue();
}

CellValue TextAt(const SparseColumn<std::string>& column, std::int32_t row) {
  const std::string* const text = column.At(row);
  return text != nullptr ? TextValue(*text) : NoValue();
}

constexpr auto kProjectColumns = std::to_array<TableColumn>({
    {"Title", ColumnText::Utf8, 0,
     [](const ViewModel&, std::int32_t row) { return TextAt(kProjectTitles, row); }},
    {"Data", ColumnText::Utf8, 1,
     [](const ViewModel& model, std::int32_t row) { return TextAt(model.ProjectInfomation, row); }},
});

bool HasTrack(const ViewModel& model, std::int32_t row) {
  return row >= 0 && row < model.trackCount;
}

CellValue TrackBox(const ViewModel& model, std::int32_t row) {
  const bool* const on = HasTrack(model, row) ? model.trackEnable.At(row) : nullptr;
  return on != nullptr ? BoxValue(*on) : NoValue();
}
CellValue TrackNumber(const ViewModel& model, std::int32_t row) {
  return HasTrack(model, row) ? TextValue(std::to_string(WrapAdd(model.minTrack, row))) : NoValue();
}
CellValue TrackType(const ViewModel& model, std::int32_t row) {
  return HasTrack(model, row) ? TextValue("Mono") : NoValue();
}
CellValue TrackStart(const ViewModel& model, std::int32_t row) {
  return HasTrack(model, row) ? TextAt(model.trackStart, row) : NoValue();
}
CellValue TrackEnd(const ViewModel& model, std::int32_t row) {
  return HasTrack(model, row) ? TextAt(model.trackEnd, row) : NoValue();
}

constexpr auto kTrackColumns = std::to_array<TableColumn>({
    {kBoxColumn, ColumnText::Utf8, 0, TrackBox},
    {"Track", ColumnText::Utf8, 1, TrackNumber},
    {"Type", ColumnText::Utf8, 2, TrackType},
    {"Start", ColumnText::Project, 3, TrackStart},
    {"End", ColumnText::Project, 4, TrackEnd},
});

CellValue EventBoxAt(const ViewModel& model, std::int32_t row) {
  if (!Has(model.eventIndices, row)) return NoValue();
  const std::int32_t index = model.eventIndices[static_cast<std::size_t>(row)];
  if (!Has(model.eventEnable, index)) return NoValue();
  return BoxValue(model.eventEnable[static_cast<std::size_t>(index)] != EventBox::Off);
}

/// The cells of a column that the model keeps as texts by row.
template <std::vector<std::string> ViewModel::*Texts>
CellValue EventText(const ViewModel& model, std::int32_t row) {
  return TextAt(model.*Texts, row);
}

constexpr auto kEventColumns = std::to_array<TableColumn>({
    {kBoxColumn, ColumnText::Utf8, 0, EventBoxAt},
    {"Type", ColumnText::Project, 2, EventText<&ViewModel::eventTypes>},
    {"Event", ColumnText::Utf8, 1, EventText<&ViewModel::eventNumbers>},
    {"Ch", ColumnText::Utf8, 4, EventText<&ViewModel::eventCh>},
    {"In", ColumnText::Project, 5, EventText<&ViewModel::eventIn>},
    {"Out", ColumnText::Project, 6, EventText<&ViewModel::eventOut>},
    {"Track", ColumnText::Utf8, 3, EventText<&ViewModel::eventTrack>},
    {"Name", ColumnText::Utf8, 7, EventText<&ViewModel::eventName>},
});

CellValue WidthName(const ViewModel&, std::int32_t row) {
  return TextAt(kWidthNames, row);
}
/// Every track counts as mono.
CellValue WidthCount(const ViewModel& model, std::int32_t row) {
  if (!Has(kWidthNames, row)) return NoValue();
  return TextValue(row == 0 ? std::to_string(model.trackCount) : "0");
}

constexpr auto kWidthColumns = std::to_array<TableColumn>({
    {"ItemName", ColumnText::Utf8, 0, WidthName},
    {"Number", ColumnText::Utf8, 1, WidthCount},
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

CellValue ObjectValue(const ViewModel& model, std::string_view table, std::string_view column,
                      std::int32_t row) {
  for (const TableColumn& candidate : Columns(table)) {
    if (candidate.identifier == column) return candidate.value(model, row);
  }
  return NoValue();
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
