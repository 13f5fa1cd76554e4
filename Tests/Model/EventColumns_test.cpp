// The event columns, which hold nothing: against rows that are written out, and when the project
// under them changes or goes.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Model/ModelFixture.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

using test::ProjectBuilder;
using test::Stamp;

using Texts = std::vector<std::string>;

/// The rows of the event list, written out one after the other.
struct WrittenRows {
  std::vector<std::int32_t> indices;
  Texts types, numbers, channels, names, tracks, ins, outs;
  std::vector<bool> found;
  std::vector<EventBox> boxes;
  std::string message;

  bool operator==(const WrittenRows&) const = default;
};

std::string EventNumber(std::int32_t index) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d\n", index);
  return text;
}

/// What the list must say of the project's events as they are.
WrittenRows RowsFor(const AES31Project& project) {
  WrittenRows rows;
  for (std::size_t i = 0; i < project.events.size(); ++i) {
    const AES31Event& event = project.events[i];
    if (event.trackOn == 0) {
      rows.boxes.push_back(EventBox::Placeholder);
      continue;
    }
    rows.boxes.push_back(event.eventOn != 0 ? EventBox::On : EventBox::Off);
    rows.indices.push_back(static_cast<std::int32_t>(i));
    rows.types.emplace_back(event.label != nullptr ? event.label : "");
    rows.numbers.push_back(EventNumber(static_cast<std::int32_t>(i)));
    rows.channels.emplace_back("Mono");
    const std::string path = event.sourceFile != nullptr ? event.sourceFile->GetPath() : "";
    rows.names.push_back(path.substr(path.rfind('/') + 1));
    rows.found.push_back(event.sourceFile != nullptr);
    if (event.sourceFile == nullptr) rows.message = test::kFilesMissing;
    if (!IsCut(event)) continue;
    rows.tracks.push_back(std::to_string(event.cut.destChannel));
    rows.ins.push_back(TimestampTimecode(event.cut.destIn));
    rows.outs.push_back(TimestampTimecode(event.cut.destOut));
  }
  return rows;
}

/// What the model shows, read cell by cell through its columns.
WrittenRows RowsIn(const ViewModel& model) {
  WrittenRows rows;
  rows.indices = model.eventIndices;
  rows.types = model.eventTypes;
  rows.numbers = model.eventNumbers;
  rows.channels = model.eventCh;
  rows.names = model.eventName;
  rows.tracks = model.eventTrack;
  rows.ins = model.eventIn;
  rows.outs = model.eventOut;
  rows.found = model.eventFound;
  rows.boxes = model.eventEnable;
  rows.message = model.errorMessage;
  EXPECT_EQ(static_cast<std::size_t>(model.enableEvents), rows.types.size());
  return rows;
}

class EventColumnsTest : public test::ModelTest {
 protected:
  /// Cuts on three tracks, one without a file, between events of other kinds.
  ProjectBuilder Mixed() {
    ProjectBuilder builder = Sources();
    builder.Silence()
        .Cut({.track = 1})
        .Cut({.label = "CUT",
              .source = 3,
              .track = 2,
              .destIn = Stamp(48000),
              .destOut = Stamp(96000)});
    builder.Entry("(Rem) no edit").Cut({.source = 2, .track = 40000}).Silence().Cut({.track = 1});
    return builder;
  }
};

// ---- against rows that are written out ----

TEST_F(EventColumnsTest, rowsAreThoseOfTheEventsAfterAnyEdits) {
  std::mt19937 random(11);
  for (const int events : {1, 63, 64, 65, 700, 3000}) {
    ProjectBuilder builder = Sources();
    builder.Cut({.track = 3});
    for (int i = 1; i < events; ++i) {
      const auto at = static_cast<std::int64_t>(random() % 100000);
      if (random() % 5 == 0) {
        builder.Silence();
      } else {
        builder.Cut({.source = static_cast<std::int32_t>(random() % 3 + 1),
                     .track = static_cast<std::int32_t>(random() % 7),
                     .destIn = Stamp(at),
                     .destOut = Stamp(at + 1000)});
      }
    }
    ASSERT_TRUE(Load(builder));
    ASSERT_EQ(RowsIn(model), RowsFor(*model.project)) << events;
    for (int edit = 0; edit < 20; ++edit) {
      const auto value = static_cast<std::int32_t>(random() % 2);
      if (edit % 2 == 0) {
        Tick("TrackTable", static_cast<std::int32_t>(random() % 7), value);
      } else {
        const std::int32_t rows = std::max(model.enableEvents, 1);
        Tick("EventListTable", static_cast<std::int32_t>(random()) % rows, value);
      }
      ASSERT_EQ(RowsIn(model), RowsFor(*model.project)) << events << ' ' << edit;
    }
    const auto kept = static_cast<std::int32_t>(random() % 7);
    model.SetTrackBoxes([kept](std::int32_t track) { return track >= kept; });
    ASSERT_EQ(RowsIn(model), RowsFor(*model.project)) << events;
    model.setupEventList();
    ASSERT_EQ(RowsIn(model), RowsFor(*model.project)) << events;
  }
}

TEST_F(EventColumnsTest, rowsAreThoseOfTheLastListing) {
  ASSERT_TRUE(Load(Mixed()));
  const WrittenRows before = RowsIn(model);
  model.project->events[1].trackOn = 0;
  model.project->events[2].eventOn = 0;
  EXPECT_EQ(RowsIn(model), before) << "as listed, whatever has become of the flags";
  model.setupEventList();
  EXPECT_NE(RowsIn(model), before);
  EXPECT_EQ(RowsIn(model), RowsFor(*model.project));
}

TEST_F(EventColumnsTest, setupFindsWhatHasChangedInTheEvents) {
  ASSERT_TRUE(Load(Mixed()));
  model.project->events[1].sourceFile = nullptr;
  model.project->events[2].sourceFile = model.project->events[4].sourceFile;
  model.project->events[4].cut.destChannel = 2;
  model.setupEventList();
  EXPECT_EQ(RowsIn(model), RowsFor(*model.project));
  Tick("TrackTable", 1, 0);
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 1, 0, 1, 0, 1, 1}));
  EXPECT_EQ(RowsIn(model), RowsFor(*model.project));
}

TEST_F(EventColumnsTest, numberOfEventsBoundsTheList) {
  ASSERT_TRUE(Load(Mixed()));
  for (const std::int32_t events : {3, 0, -1}) {
    model.numEvents = events;
    model.setupEventList();
    EXPECT_EQ(model.enableEvents, std::max(events, 0));
    EXPECT_EQ(model.eventEnable.size(), model.eventTypes.size());
  }
  model.numEvents = 2000000000;
  model.setupEventList();
  EXPECT_EQ(model.enableEvents, 7) << "no more than there are";
}

// ---- when the project goes ----

TEST_F(EventColumnsTest, rowsOutliveAFailedLoad) {
  for (const bool isTrackOff : {false, true}) {
    ASSERT_TRUE(Load(Mixed()));
    if (isTrackOff) Tick("TrackTable", 0, 0);
    WrittenRows rows = RowsIn(model);
    const std::weak_ptr<AES31Project> old = model.project;
    EXPECT_FALSE(LoadBad());
    EXPECT_TRUE(old.expired()) << "the rows do not keep a project";
    rows.message = "File NG.";
    EXPECT_EQ(RowsIn(model), rows);
    EXPECT_FALSE(LoadBad());
    EXPECT_EQ(RowsIn(model), rows) << "after another failed load, too";
  }
}

TEST_F(EventColumnsTest, rowsOutliveTheLoadOfAProjectWithoutCuts) {
  ASSERT_TRUE(Load(Mixed()));
  WrittenRows rows = RowsIn(model);
  ASSERT_TRUE(Load(ProjectBuilder().Silence().Silence()));
  rows.message = "";
  EXPECT_EQ(RowsIn(model), rows);
  Tick("EventListTable", 1, 0);
  rows.boxes[1] = EventBox::Off;
  EXPECT_EQ(RowsIn(model), rows);
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{0, 0})) << "as their load left them";
  model.setupEventList();
  EXPECT_EQ(RowsIn(model), RowsFor(*model.project));
}

TEST_F(EventColumnsTest, rowsDoNotKeepAProjectThatIsTakenAway) {
  ASSERT_TRUE(Load(Mixed()));
  const std::weak_ptr<AES31Project> old = model.project;
  model.project.reset();
  EXPECT_TRUE(old.expired());
  EXPECT_EQ(model.enableEvents, 7);
  EXPECT_EQ(Column("EventListTable", "In").front(), "\"\"") << "nobody kept the texts";
  EXPECT_EQ(Column("EventListTable", "Name"), Column("EventListTable", "Type"));
  Tick("TrackTable", 0, 0);
  model.setupEventList();
  EXPECT_EQ(model.enableEvents, 0);
}

TEST_F(EventColumnsTest, anotherProjectPutInByHandIsServed) {
  ASSERT_TRUE(Load(Mixed()));
  ViewModel other;
  ASSERT_TRUE(
      other.LoadFile(Sources().Cut({.track = 1}).Cut({.track = 2}).WriteTo(folder, "o.adl")));
  model.project = other.project;
  model.numEvents = 2;
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{0, 1}));
  EXPECT_EQ(RowsIn(model), RowsFor(*model.project));
}

// ---- as containers ----

TEST_F(EventColumnsTest, columnsReadLikeVectors) {
  ASSERT_TRUE(Load(Mixed()));
  const Texts types = model.eventTypes;
  ASSERT_EQ(types, (Texts{"Silence", "Cut", "CUT", "", "Cut", "Silence", "Cut"}));
  EXPECT_FALSE(model.eventTypes.empty());
  EXPECT_EQ(model.eventTypes.front(), "Silence");
  EXPECT_EQ(model.eventTypes.back(), "Cut");
  EXPECT_EQ(model.eventTypes.at(2), "CUT");
  EXPECT_THROW((void)model.eventTypes.at(7), std::out_of_range);
  EXPECT_EQ(model.eventTypes.end() - model.eventTypes.begin(), 7);
  EXPECT_EQ(
      std::find(model.eventTypes.begin(), model.eventTypes.end(), "CUT") - model.eventTypes.begin(),
      2);
  EXPECT_EQ(Texts(model.eventTypes.begin() + 1, model.eventTypes.begin() + 3),
            (Texts{"Cut", "CUT"}));
  std::size_t row = 0;
  for (const std::string& type : model.eventTypes) EXPECT_EQ(type, types[row++]);
  EXPECT_EQ(row, types.size());
  EXPECT_EQ(model.eventTypes, model.eventTypes);
  EXPECT_NE(model.eventTypes, (Texts{"Silence"}));
  EXPECT_EQ(model.eventFound.at(1), true);
}

TEST_F(EventColumnsTest, textsAreReadWithoutACopy) {
  ASSERT_TRUE(Load(Mixed()));
  EXPECT_EQ(std::string_view(model.eventNumbers.View(6)), "0006\n");
  EXPECT_EQ(model.eventName.View(1), "a.wav");
  EXPECT_EQ(std::string_view(model.eventTrack.View(2)), "40000");
  EXPECT_EQ(model.eventIn.View(1), "00.00:01:00");
}

TEST_F(EventColumnsTest, copiedModelHasRowsOfItsOwn) {
  ASSERT_TRUE(Load(Mixed()));
  const WrittenRows all = RowsIn(model);
  ViewModel copy = model;
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(RowsIn(copy), all);
  EXPECT_EQ(model.enableEvents, 5);
  const ViewModel moved = std::move(copy);
  EXPECT_EQ(RowsIn(moved), all);
}

// ---- cells by the tables ----

/// Cells from a row on, in one call: those that the table has, and some that it lacks.
void ExpectFilledAsValues(const ViewModel& model, const TableColumn& column, std::int32_t first) {
  std::array<CellView, 9> cells;
  column.fill(model, first, cells);
  for (std::int32_t row = first; const CellView& cell : cells) {
    const CellValue value = column.value(model, row++);
    EXPECT_EQ(cell.kind, value.kind) << column.identifier << ' ' << row - 1;
    EXPECT_EQ(cell.text,
              value.kind == CellValue::Integer ? std::to_string(value.integer) : value.text)
        << column.identifier << ' ' << row - 1;
  }
}

TEST_F(EventColumnsTest, filledCellsAreTheValues) {
  ASSERT_TRUE(Load(Mixed()));
  Tick("EventListTable", 2, 0);
  for (const std::int32_t first : {-3, 0, 1, 5, 39995, 40000}) {
    for (const Table& table : Tables()) {
      for (const TableColumn& column : table.columns) ExpectFilledAsValues(model, column, first);
    }
  }
  Tick("TrackTable", 0, 0);  // rows are no longer events
  ASSERT_LT(model.enableEvents, 7);
  for (const TableColumn& column : Columns("EventListTable")) {
    ExpectFilledAsValues(model, column, 0);
  }
}

TEST_F(EventColumnsTest, columnsAreFoundByTheirNames) {
  const TableColumn* const column = FindColumn("EventListTable", "Name");
  ASSERT_NE(column, nullptr);
  EXPECT_EQ(column->identifier, "Name");
  EXPECT_EQ(FindColumn("EventListTable", "name"), nullptr);
  EXPECT_EQ(FindColumn("OtherTable", "Name"), nullptr);
}

}  // namespace
}  // namespace velmora
