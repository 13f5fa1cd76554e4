#include "Model/Tables.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Base/Text.h"
#include "Base/Wrapping.h"

namespace velmora {
namespace {

constexpr std::string_view kProjectTable = "ProjectInfomationTable";
constexpr std::string_view kTrackTable = "TrackTable";
constexpr std::string_view kEventTable = "EventListTable";
constexpr std::string_view kWidthTable = "numberOfTracksTable";

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

CellValue ProjectCell(const ViewModel& model, std::string_view column, std::int32_t row) {
  if (column == "Title") return TextAt(kProjectTitles, row);
  if (column == "Data") return TextAt(model.ProjectInfomation, row);
  return NoValue();
}

CellValue TrackCell(const ViewModel& model, std::string_view column, std::int32_t row) {
  if (row < 0 || row >= model.trackCount) return NoValue();
  if (column == "Space") {
    const bool* const on = model.trackEnable.At(row);
    return on != nullptr ? BoxValue(*on) : NoValue();
  }
  if (column == "Track") return TextValue(std::to_string(WrapAdd(model.minTrack, row)));
  if (column == "Type") return TextValue("Mono");
  if (column == "Start") return TextAt(model.trackStart, row);
  if (column == "End") return TextAt(model.trackEnd, row);
  return NoValue();
}

CellValue EventBoxCell(const ViewModel& model, std::int32_t row) {
  if (!Has(model.eventNumbers, row)) return NoValue();
  const std::int32_t index = ToInt32(model.eventNumbers[static_cast<std::size_t>(row)].c_str());
  if (!Has(model.eventEnable, index)) return NoValue();
  return BoxValue(model.eventEnable[static_cast<std::size_t>(index)] != EventBox::Off);
}

CellValue EventCell(const ViewModel& model, std::string_view column, std::int32_t row) {
  if (column == "Space") return EventBoxCell(model, row);
  if (column == "Type") return TextAt(model.eventTypes, row);
  if (column == "Event") return TextAt(model.eventNumbers, row);
  if (column == "Ch") return TextAt(model.eventCh, row);
  if (column == "In") return TextAt(model.eventIn, row);
  if (column == "Out") return TextAt(model.eventOut, row);
  if (column == "Track") return TextAt(model.eventTrack, row);
  if (column == "Name") return TextAt(model.eventName, row);
  return NoValue();
}

/// Every track counts as mono.
CellValue WidthCell(const ViewModel& model, std::string_view column, std::int32_t row) {
  if (!Has(kWidthNames, row)) return NoValue();
  if (column == "ItemName") return TextAt(kWidthNames, row);
  if (column == "Number") return TextValue(row == 0 ? std::to_string(model.trackCount) : "0");
  return NoValue();
}

}  // namespace

std::int32_t NumberOfRows(const ViewModel& model, std::string_view table) {
  if (table == kProjectTable) return static_cast<std::int32_t>(kProjectTitles.size());
  if (table == kTrackTable) return std::max(model.trackCount, 0);
  if (table == kEventTable) return model.enableEvents;
  if (table == kWidthTable) return static_cast<std::int32_t>(kWidthNames.size());
  return 0;
}

CellValue ObjectValue(const ViewModel& model, std::string_view table, std::string_view column,
                      std::int32_t row) {
  if (table == kProjectTable) return ProjectCell(model, column, row);
  if (table == kTrackTable) return TrackCell(model, column, row);
  if (table == kEventTable) return EventCell(model, column, row);
  if (table == kWidthTable) return WidthCell(model, column, row);
  return NoValue();
}

void SetObjectValue(ViewModel& model, std::string_view table, std::string_view column,
                    std::int32_t row, std::int32_t value) {
  if (column != "Space") return;
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
  if (table == kProjectTable) return 12.0;
  if (table == kWidthTable) return 13.0;
  return 16.0;
}

bool ShouldSelectRow(std::string_view table) {
  return table == kTrackTable || table == kEventTable;
}

}  // namespace velmora
