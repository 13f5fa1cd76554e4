// The walks over a project's events: against loops that look at one event after the other.

#include "Model/EventSurvey.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Model/ModelFixture.h"
#include "Support/ProjectBuilder.h"

namespace velmora {
namespace {

using test::ProjectBuilder;
using test::Stamp;

constexpr std::size_t kCounts[] = {0, 1, 2, 63, 64, 65, 127, 128, 129, 1000};

/// Events of all kinds. Some share a label's text with others, some have a text of their own.
class EventSurveyTest : public testing::Test {
 protected:
  std::vector<AES31Event> Events(std::size_t count) {
    std::vector<AES31Event> events(count);
    for (AES31Event& event : events) {
      event.label = labels_[random_() % labels_.size()];
      event.cut.destIn = times_[random_() % times_.size()].c_str();
      event.cut.destOut = times_[random_() % times_.size()].c_str();
      event.cut.destChannel = tracks_[random_() % tracks_.size()];
      if (random_() % 3 != 0) event.sourceFile = &file_;
      event.trackOn = static_cast<std::int32_t>(random_() % 3) - 1;  // -1 is on, too
      event.eventOn = static_cast<std::int32_t>(random_() % 3) - 1;
    }
    return events;
  }

  AES31BWF file_{"nowhere.wav"};
  std::mt19937 random_{31};
  const std::string own_ = "Cut";
  const std::vector<const char*> labels_ = {"Cut", own_.c_str(), "cUT", "Cut",  "Silence",
                                            "",    "Cuts",       "Cu",  nullptr};
  const std::vector<std::string> times_ = {Stamp(0), Stamp(48000), Stamp(96000), Stamp(5)};
  const std::vector<std::int32_t> tracks_ = {1, 2, 3, -7, 1023, 1024, 2000000000};
};

std::vector<std::int32_t> Members(const EventSet& set) {
  std::vector<std::int32_t> members;
  for (std::int32_t event = 0; event < set.Events(); ++event) {
    if (set.Has(event)) members.push_back(event);
  }
  return members;
}

template <class Counts>
std::vector<std::int32_t> Those(const std::vector<AES31Event>& events, const Counts& count) {
  std::vector<std::int32_t> counted;
  for (std::size_t i = 0; i < events.size(); ++i) {
    if (count(events[i])) counted.push_back(static_cast<std::int32_t>(i));
  }
  return counted;
}

bool HasFile(const AES31Event& event) {
  return event.sourceFile != nullptr;
}

TEST_F(EventSurveyTest, listsWhatTheEventsHold) {
  for (const std::size_t count : kCounts) {
    const std::vector<AES31Event> events = Events(count);
    const EventListing listing = ListEvents(events);
    EXPECT_EQ(Members(listing.marks->cuts), Those(events, IsCut)) << count;
    EXPECT_EQ(Members(listing.marks->found), Those(events, HasFile)) << count;
    EXPECT_EQ(Members(listing.listed),
              Those(events, [](const AES31Event& event) { return event.trackOn != 0; }))
        << count;
    ASSERT_EQ(listing.boxes.size(), count);
    ASSERT_EQ(listing.listed.Events(), static_cast<std::int32_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
      const EventBox box = events[i].trackOn == 0   ? EventBox::Placeholder
                           : events[i].eventOn == 0 ? EventBox::Off
                                                    : EventBox::On;
      EXPECT_EQ(listing.boxes[i], box) << count << ' ' << i;
    }
  }
}

TEST_F(EventSurveyTest, bitsPastTheLastEventStayZero) {
  for (const std::size_t count : kCounts) {
    std::vector<AES31Event> events(count);
    for (AES31Event& event : events) {
      event.label = "Cut";
      event.sourceFile = &file_;
      event.trackOn = 1;
    }
    const EventListing listing = ListEvents(events);
    const EventSet all(static_cast<std::int32_t>(count), true);
    EXPECT_EQ(listing.listed.Words(), all.Words()) << count;
    EXPECT_EQ(listing.marks->cuts.Words(), all.Words()) << count;
    EXPECT_EQ(listing.marks->found.Words(), all.Words()) << count;
  }
}

TEST_F(EventSurveyTest, placesTheTracksOfCuts) {
  for (const std::size_t count : kCounts) {
    const std::vector<AES31Event> events = Events(count);
    const TrackPlaces places = PlaceTracks(events, ListEvents(events).marks->cuts);
    ASSERT_EQ(places.ofEvents.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
      const std::int32_t place = places.ofEvents[i];
      ASSERT_EQ(place != NumberPlaces::kNone, IsCut(events[i])) << count << ' ' << i;
      if (place == NumberPlaces::kNone) continue;
      EXPECT_EQ(places.tracks.Numbers()[static_cast<std::size_t>(place)],
                events[i].cut.destChannel);
    }
  }
}

TEST_F(EventSurveyTest, surveyTicksAllAndFindsTheSpans) {
  for (const std::size_t count : kCounts) {
    std::vector<AES31Event> events = Events(count);
    const EventSurvey survey = SurveyAndTickAll(events);
    const EventListing listing = ListEvents(events);
    EXPECT_EQ(Members(listing.listed).size(), count);
    EXPECT_EQ(listing.boxes, std::vector<EventBox>(count, EventBox::On));
    EXPECT_EQ(survey.marks->cuts.Words(), listing.marks->cuts.Words());
    EXPECT_EQ(survey.marks->found.Words(), listing.marks->found.Words());
    EXPECT_EQ(survey.places.ofEvents, PlaceTracks(events, survey.marks->cuts).ofEvents);
    CutSpan project;
    std::vector<CutSpan> tracks(survey.tracks.size());
    for (std::size_t i = 0; i < count; ++i) {
      if (!IsCut(events[i])) continue;
      project.Include(events[i].cut);
      tracks.at(static_cast<std::size_t>(survey.places.ofEvents[i])).Include(events[i].cut);
    }
    EXPECT_EQ(survey.project.earliest, project.earliest) << count;
    EXPECT_EQ(survey.project.latest, project.latest) << count;
    EXPECT_EQ(survey.project.minTrack, project.minTrack);
    EXPECT_EQ(survey.project.maxTrack, project.maxTrack);
    ASSERT_EQ(survey.tracks.size(), survey.places.tracks.Numbers().size());
    for (std::size_t place = 0; place < tracks.size(); ++place) {
      EXPECT_EQ(survey.tracks[place].earliest, tracks[place].earliest) << count;
      EXPECT_EQ(survey.tracks[place].latest, tracks[place].latest) << count;
    }
  }
}

// ---- what is changed by hand ----

class ChangedByHandTest : public test::ModelTest {
 protected:
  std::vector<std::int32_t> Cuts() const {
    std::vector<std::int32_t> tracks;
    for (const std::string& track : model.eventTrack) tracks.push_back(std::stoi(track));
    return tracks;
  }
};

TEST_F(ChangedByHandTest, labelsCountAsTheyAreAtEachListing) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}, {.track = 3}, {.track = 4}}));
  EXPECT_EQ(Cuts(), (std::vector<std::int32_t>{1, 2, 3, 4}));
  std::string label = "Vid";
  model.project->events[1].label = label.c_str();
  model.project->events[2].label = nullptr;
  model.setupEventList();
  EXPECT_EQ(Cuts(), (std::vector<std::int32_t>{1, 4}));
  label = "cut";  // the same text in memory, with other letters
  model.setupEventList();
  EXPECT_EQ(Cuts(), (std::vector<std::int32_t>{1, 2, 4}));
  Tick("TrackTable", 1, 0);
  Tick("TrackTable", 2, 0);
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 0, 1, 1}));
}

TEST_F(ChangedByHandTest, boxesCountAsTheyAreAtEachListing) {
  for (const int events : {1, 63, 64, 65}) {
    ASSERT_TRUE(LoadCuts(std::vector<test::CutSpec>(static_cast<std::size_t>(events))));
    AES31Event& last = model.project->events.back();
    last.trackOn = 0;
    model.setupEventList();
    EXPECT_EQ(model.enableEvents, events - 1);
    EXPECT_EQ(model.eventEnable.back(), EventBox::Placeholder);
    last.trackOn = 5;
    last.eventOn = 0;
    model.setupEventList();
    EXPECT_EQ(model.enableEvents, events);
    EXPECT_EQ(model.eventEnable.back(), EventBox::Off);
  }
}

TEST_F(ChangedByHandTest, trackEditServesAnotherNumberOfEvents) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}, {.track = 1}}));
  model.numEvents = 2;
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{0, 1, 1}));
  EXPECT_EQ(model.enableEvents, 1);
  model.project->events.pop_back();
  model.numEvents = 3;
  Tick("TrackTable", 0, 1);
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 1}));
  EXPECT_EQ(model.enableEvents, 2);
}

}  // namespace
}  // namespace velmora
