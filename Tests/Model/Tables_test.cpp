#include "Model/Tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Model/ModelFixture.h"

namespace velmora {
namespace {

using test::IntegerCell;
using test::kNoValue;
using test::Stamp;
using test::TextCell;

using Texts = std::vector<std::string>;

class TablesTest : public test::ModelTest {};

// ---- tables as such ----

struct TableRow {
  const char* rule;
  const char* table;
  std::int32_t rowsBeforeLoad;
  double height;
  bool selectable;
};

void PrintTo(const TableRow& row, std::ostream* out) {
  *out << row.rule;
}

class TableRows : public TablesTest, public testing::WithParamInterface<TableRow> {};

TEST_P(TableRows, hasItsRowsHeightAndSelection) {
  const TableRow& row = GetParam();
  EXPECT_EQ(NumberOfRows(model, row.table), row.rowsBeforeLoad);
  EXPECT_EQ(HeightOfRow(row.table), row.height);
  EXPECT_EQ(ShouldSelectRow(row.table), row.selectable);
}

constexpr TableRow kTableRows[] = {
    {"projectData", "ProjectInfomationTable", 13, 12.0, false},
    {"tracks", "TrackTable", 0, 16.0, true},
    {"events", "EventListTable", 0, 16.0, true},
    {"numberOfTracks", "numberOfTracksTable", 8, 13.0, false},
    {"anyOther", "OtherTable", 0, 16.0, false},
    {"emptyIdentifier", "", 0, 16.0, false},
    {"identifiersMindTheirCase", "NumberOfTracksTable", 0, 16.0, false},
    {"identifiersMatchAsAWhole", "TrackTables", 0, 16.0, false},
};

INSTANTIATE_TEST_SUITE_P(Tables, TableRows, testing::ValuesIn(kTableRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST_F(TablesTest, rowCountsFollowTheModel) {
  ASSERT_TRUE(LoadCuts({{.track = 2}, {.track = 6}, {.track = 3}}));
  EXPECT_EQ(NumberOfRows(model, "ProjectInfomationTable"), 13);
  EXPECT_EQ(NumberOfRows(model, "TrackTable"), 5);
  EXPECT_EQ(NumberOfRows(model, "EventListTable"), 3);
  EXPECT_EQ(NumberOfRows(model, "numberOfTracksTable"), 8);
}

// ---- project data ----

TEST_F(TablesTest, projectTitlesKeepTheirSpelling) {
  const Texts titles = {"Project Title",  "Proj Orijinator",  "Proj Create Data",
                        "Proj Note",      "Proj Client Data", "",
                        "Sequence Title", "Seq Sample Rate",  "Seq Frame Rate",
                        "Seq ADL Level",  "Seq Clean",        "Seq Multichan",
                        "Seq Dest Start"};
  for (std::int32_t row = 0; row < 13; ++row) {
    EXPECT_EQ(Cell("ProjectInfomationTable", "Title", row),
              TextCell(titles.at(static_cast<std::size_t>(row))));
    EXPECT_EQ(Cell("ProjectInfomationTable", "Data", row), TextCell("")) << "before any load";
  }
}

TEST_F(TablesTest, projectDataComesFromTheModel) {
  for (std::size_t row = 0; row < 13; ++row) model.ProjectInfomation[row] = std::to_string(row);
  for (std::int32_t row = 0; row < 13; ++row) {
    EXPECT_EQ(Cell("ProjectInfomationTable", "Data", row), TextCell(std::to_string(row)));
  }
}

// ---- tracks ----

TEST_F(TablesTest, trackTableShowsOneRowForEachNumber) {
  ASSERT_TRUE(LoadCuts({{.track = 3, .destIn = Stamp(0), .destOut = Stamp(48000)},
                        {.track = 6, .destIn = Stamp(48000), .destOut = Stamp(96000)}}));
  EXPECT_EQ(Column("TrackTable", "Track"), (Texts{"\"3\"", "\"4\"", "\"5\"", "\"6\""}));
  EXPECT_EQ(Column("TrackTable", "Type"), (Texts{"\"Mono\"", "\"Mono\"", "\"Mono\"", "\"Mono\""}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "1", "1", "1"}));
  EXPECT_EQ(Column("TrackTable", "Start"),
            (Texts{"\"00.00:00:00\"", "\"00.00:00:00\"", "\"00.00:00:00\"", "\"00.00:01:00\""}));
  EXPECT_EQ(Column("TrackTable", "End"),
            (Texts{"\"00.00:01:00\"", "\"00.00:02:00\"", "\"00.00:02:00\"", "\"00.00:02:00\""}));
}

TEST_F(TablesTest, trackNumberWrapsAt32Bits) {
  model.minTrack = 2147483647;
  model.trackCount = 2;
  EXPECT_EQ(Column("TrackTable", "Track"), (Texts{"\"2147483647\"", "\"-2147483648\""}));
}

// ---- events ----

TEST_F(TablesTest, eventTableShowsEveryColumn) {
  ASSERT_TRUE(
      LoadCuts({{.track = 3, .destIn = Stamp(0), .destOut = Stamp(48000)},
                {.source = 3, .track = 6, .destIn = Stamp(48000), .destOut = Stamp(96000)}}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(Cell("EventListTable", "Type", 1), TextCell("Cut"));
  EXPECT_EQ(Cell("EventListTable", "Event", 1), TextCell("0001\n"));
  EXPECT_EQ(Cell("EventListTable", "Ch", 1), TextCell("Mono"));
  EXPECT_EQ(Cell("EventListTable", "In", 1), TextCell("00.00:01:00"));
  EXPECT_EQ(Cell("EventListTable", "Out", 1), TextCell("00.00:02:00"));
  EXPECT_EQ(Cell("EventListTable", "Track", 1), TextCell("6"));
  EXPECT_EQ(Cell("EventListTable", "Name", 0), TextCell("a.wav"));
  EXPECT_EQ(Cell("EventListTable", "Name", 1), TextCell(""));
}

TEST_F(TablesTest, placeholderWouldShowAsOn) {
  ASSERT_TRUE(LoadCuts({{}}));
  model.eventEnable[0] = EventBox::Placeholder;
  EXPECT_EQ(Cell("EventListTable", "Space", 0), IntegerCell(1));
}

TEST_F(TablesTest, boxOfAnEventThatTheArrayLacksHasNoValue) {
  ASSERT_TRUE(LoadCuts({{}}));
  model.eventEnable.clear();
  EXPECT_EQ(Cell("EventListTable", "Space", 0), kNoValue);
  Tick("EventListTable", 0, 0);
  EXPECT_TRUE(model.eventEnable.empty());
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{0})) << "the event itself is there";
}

// ---- columns ----

/// A table's column identifiers, and how their texts are to be read.
std::string Described(std::string_view table) {
  std::string text;
  for (const TableColumn& column : Columns(table)) {
    text += (text.empty() ? "" : " ") + std::string(column.identifier);
    if (column.text == ColumnText::Project) text += "*";
  }
  return text;
}

TEST_F(TablesTest, columnsAreTheseInThisOrder) {
  EXPECT_EQ(Described("ProjectInfomationTable"), "Title Data");
  EXPECT_EQ(Described("TrackTable"), "Space Track Type Start* End*");
  EXPECT_EQ(Described("EventListTable"), "Space Type* Event Ch In* Out* Track Name");
  EXPECT_EQ(Described("numberOfTracksTable"), "ItemName Number");
  EXPECT_EQ(Described("tracktable"), "");
}

TEST_F(TablesTest, tablesAreAllFourWithTheirColumns) {
  std::string identifiers;
  for (const Table& table : Tables()) {
    identifiers += std::string(table.identifier) + " ";
    EXPECT_EQ(table.columns.data(), Columns(table.identifier).data()) << table.identifier;
  }
  EXPECT_EQ(identifiers, "ProjectInfomationTable TrackTable EventListTable numberOfTracksTable ");
}

// The view's layout file has the columns from left to right.
TEST_F(TablesTest, viewPositionsAreThoseOfTheLayout) {
  const std::string layout = test::TemporaryFolder::Read(VELMORA_VIEW_LAYOUT);
  ASSERT_NE(layout, "");
  for (const Table& table : Tables()) {
    std::vector<std::size_t> places(table.columns.size());
    const std::size_t start = layout.find("identifier=\"" + std::string(table.identifier) + "\"");
    ASSERT_NE(start, std::string::npos) << table.identifier;
    for (const TableColumn& column : table.columns) {
      ASSERT_LT(static_cast<std::size_t>(column.viewPosition), places.size());
      places[static_cast<std::size_t>(column.viewPosition)] =
          layout.find("<tableColumn identifier=\"" + std::string(column.identifier) + "\"", start);
    }
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end())) << table.identifier;
    EXPECT_LT(places.back(), layout.find("</tableColumns>", start)) << table.identifier;
  }
}

TEST_F(TablesTest, boxGoesByTheIndexAndNotByTheText) {
  ASSERT_TRUE(LoadCuts({{}, {}}));
  model.eventNumbers[1] = "0000\n";
  Tick("EventListTable", 1, 0);
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{1, 0}));
}

// ---- number of tracks ----

TEST_F(TablesTest, everyTrackCountsAsMono) {
  const Texts items = {"Mono", "Stereo", "3 Ch.", "4 Ch.", "5 Ch.", "6 Ch.", "7 Ch.", "8 Ch."};
  for (std::int32_t row = 0; row < 8; ++row) {
    EXPECT_EQ(Cell("numberOfTracksTable", "ItemName", row),
              TextCell(items.at(static_cast<std::size_t>(row))));
    EXPECT_EQ(Cell("numberOfTracksTable", "Number", row), TextCell("0")) << "before any load";
  }
  ASSERT_TRUE(LoadCuts({{.track = 3}, {.track = 6}}));
  EXPECT_EQ(Cell("numberOfTracksTable", "Number", 0), TextCell("4"));
  for (std::int32_t row = 1; row < 8; ++row) {
    EXPECT_EQ(Cell("numberOfTracksTable", "Number", row), TextCell("0"));
  }
}

// ---- what has no value ----

struct AbsentRow {
  const char* rule;
  const char* table;
  const char* column;
  std::int32_t row;
};

void PrintTo(const AbsentRow& row, std::ostream* out) {
  *out << row.rule;
}

class AbsentRows : public TablesTest, public testing::WithParamInterface<AbsentRow> {};

TEST_P(AbsentRows, hasNoValue) {
  ASSERT_TRUE(LoadCuts({{.track = 3}, {.track = 4}}));
  EXPECT_EQ(Cell(GetParam().table, GetParam().column, GetParam().row), kNoValue);
}

constexpr AbsentRow kAbsentRows[] = {
    {"unknownTable", "OtherTable", "Title", 0},
    {"tableOfAnotherCase", "tracktable", "Track", 0},
    {"unknownProjectColumn", "ProjectInfomationTable", "Other", 0},
    {"unknownTrackColumn", "TrackTable", "Name", 0},
    {"unknownEventColumn", "EventListTable", "Start", 0},
    {"unknownNumberColumn", "numberOfTracksTable", "Track", 0},
    {"columnOfAnotherCase", "TrackTable", "track", 0},
    {"emptyColumn", "EventListTable", "", 0},
    {"titleBeyondTheRows", "ProjectInfomationTable", "Title", 13},
    {"titleBeforeTheRows", "ProjectInfomationTable", "Title", -1},
    {"dataBeyondTheRows", "ProjectInfomationTable", "Data", 13},
    {"dataBeforeTheRows", "ProjectInfomationTable", "Data", -1},
    {"numberBeyondRow7", "numberOfTracksTable", "Number", 8},
    {"numberBeforeTheRows", "numberOfTracksTable", "Number", -1},
    {"itemBeyondRow7", "numberOfTracksTable", "ItemName", 8},
    {"itemBeforeTheRows", "numberOfTracksTable", "ItemName", -1},
    {"trackBoxBeyondTheRows", "TrackTable", "Space", 2},
    {"trackBoxBeforeTheRows", "TrackTable", "Space", -1},
    {"startBeyondTheRows", "TrackTable", "Start", 2},
    {"endBeforeTheRows", "TrackTable", "End", -1},
    {"eventBoxBeyondTheRows", "EventListTable", "Space", 2},
    {"eventBoxBeforeTheRows", "EventListTable", "Space", -1},
    {"typeBeyondTheRows", "EventListTable", "Type", 2},
    {"eventBeforeTheRows", "EventListTable", "Event", -1},
    {"channelBeyondTheRows", "EventListTable", "Ch", 2147483647},
    {"inBeyondTheRows", "EventListTable", "In", 2},
    {"outBeforeTheRows", "EventListTable", "Out", -2147483647 - 1},
    {"trackBeyondTheRows", "EventListTable", "Track", 2},
    {"nameBeyondTheRows", "EventListTable", "Name", 2},
};

INSTANTIATE_TEST_SUITE_P(Tables, AbsentRows, testing::ValuesIn(kAbsentRows),
                         [](const auto& row) { return std::string(row.param.rule); });

// ---- edits ----

struct DroppedRow {
  const char* rule;
  const char* table;
  const char* column;
};

void PrintTo(const DroppedRow& row, std::ostream* out) {
  *out << row.rule;
}

class DroppedRows : public TablesTest, public testing::WithParamInterface<DroppedRow> {};

TEST_P(DroppedRows, leavesTheModelUntouched) {
  ASSERT_TRUE(LoadCuts({{.track = 3}, {.track = 4}}));
  SetObjectValue(model, GetParam().table, GetParam().column, 0, 0);
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 1}));
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{1, 1}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(Column("TrackTable", "Track"), (Texts{"\"3\"", "\"4\""}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(Cell("ProjectInfomationTable", "Data", 0), TextCell(""));
  EXPECT_EQ(Cell("numberOfTracksTable", "Number", 0), TextCell("2"));
}

constexpr DroppedRow kDroppedRows[] = {
    {"projectData", "ProjectInfomationTable", "Data"},
    {"boxColumnOfTheProjectTable", "ProjectInfomationTable", "Space"},
    {"trackNumber", "TrackTable", "Track"},
    {"trackStart", "TrackTable", "Start"},
    {"unknownTrackColumn", "TrackTable", "Other"},
    {"boxColumnOfAnotherCase", "TrackTable", "space"},
    {"eventName", "EventListTable", "Name"},
    {"unknownEventColumn", "EventListTable", "Other"},
    {"numberOfTracks", "numberOfTracksTable", "Number"},
    {"boxColumnOfTheNumberTable", "numberOfTracksTable", "Space"},
    {"unknownTable", "OtherTable", "Space"},
};

INSTANTIATE_TEST_SUITE_P(Tables, DroppedRows, testing::ValuesIn(kDroppedRows),
                         [](const auto& row) { return std::string(row.param.rule); });

// ---- style ----

struct StyleRow {
  const char* rule;
  const char* table;
  const char* column;
  int alignment;
  double fontSize;
};

void PrintTo(const StyleRow& row, std::ostream* out) {
  *out << row.rule;
}

class StyleRows : public TablesTest, public testing::WithParamInterface<StyleRow> {};

TEST_P(StyleRows, setsFontAndAlignmentAlone) {
  const StyleRow& row = GetParam();
  for (const std::int32_t at : {0, 5, 7}) {
    const CellStyle style = Style(model, row.table, row.column, at);
    EXPECT_EQ(style.alignment, row.alignment);
    EXPECT_EQ(style.fontSize, row.fontSize);
    EXPECT_EQ(style.background, Background::Untouched);
  }
}

constexpr StyleRow kStyleRows[] = {
    {"projectTitleIsRight", "ProjectInfomationTable", "Title", 1, 11.0},
    {"projectDataIsLeft", "ProjectInfomationTable", "Data", 0, 11.0},
    {"otherProjectColumnIsLeft", "ProjectInfomationTable", "Other", 0, 11.0},
    {"itemNameIsLeft", "numberOfTracksTable", "ItemName", 0, 11.0},
    {"numberIsRight", "numberOfTracksTable", "Number", 1, 11.0},
    {"otherNumberColumnIsRight", "numberOfTracksTable", "Other", 1, 11.0},
    {"otherTableIsUntouched", "OtherTable", "Title", -1, 0.0},
};

INSTANTIATE_TEST_SUITE_P(Tables, StyleRows, testing::ValuesIn(kStyleRows),
                         [](const auto& row) { return std::string(row.param.rule); });

/// The backgrounds of the rows in a column: w, s and r for white, stripe and red, - for none.
std::string Backgrounds(const ViewModel& model, std::string_view table, std::string_view column) {
  std::string letters;
  for (std::int32_t row = 0; row < NumberOfRows(model, table); ++row) {
    const CellStyle style = Style(model, table, column, row);
    EXPECT_EQ(style.alignment, -1);
    EXPECT_EQ(style.fontSize, 0.0);
    letters += "-wsr"[static_cast<std::size_t>(style.background)];
  }
  return letters;
}

TEST_F(TablesTest, evenRowsAreWhiteAndOddOnesStriped) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 1}, {.track = 4}}));
  for (const char* column : {"Space", "Track", "Type", "Start", "End", "Other"}) {
    EXPECT_EQ(Backgrounds(model, "TrackTable", column), "wsws") << column;
  }
  for (const char* column : {"Space", "Type", "Name", "Other"}) {
    EXPECT_EQ(Backgrounds(model, "EventListTable", column), "wsw") << column;
  }
}

TEST_F(TablesTest, missingFileIsRedInEvenAndOddRowsAndEveryColumn) {
  ASSERT_TRUE(LoadCuts({{.source = 3}, {.source = 3}, {.source = 1}, {.source = 1}}));
  for (const char* column :
       {"Space", "Type", "Event", "Ch", "In", "Out", "Track", "Name", "Other"}) {
    EXPECT_EQ(Backgrounds(model, "EventListTable", column), "rrws") << column;
  }
  EXPECT_EQ(Backgrounds(model, "TrackTable", "Track"), "w") << "tracks are never red";
}

TEST_F(TablesTest, silenceIsRed) {
  ASSERT_TRUE(Load(Sources().Silence().Cut({})));
  EXPECT_EQ(Backgrounds(model, "EventListTable", "Type"), "rs");
}

TEST_F(TablesTest, stripesRunOnOverTheListOnView) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.source = 3, .track = 2}, {.track = 1}, {.track = 1}}));
  EXPECT_EQ(Backgrounds(model, "EventListTable", "Name"), "wrws");
  Tick("TrackTable", 1, 0);
  EXPECT_EQ(Backgrounds(model, "EventListTable", "Name"), "wsw");
  Tick("EventListTable", 1, 0);
  EXPECT_EQ(Backgrounds(model, "EventListTable", "Name"), "wsw") << "ticks have no colour";
}

TEST_F(TablesTest, eventRowThatIsNotThereIsNotRed) {
  for (const std::int32_t row : {-1, 0, 5, 2147483647}) {
    EXPECT_NE(Style(model, "EventListTable", "Name", row).background, Background::Red) << row;
  }
}

}  // namespace
}  // namespace velmora
