// The check boxes of the two tables, by the mouse.

#include <cstdlib>

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

using Texts = std::vector<std::string>;

// What a worker would find: for each event, whether it and its track are on.
std::string Flags() {
  return Ask([] {
    std::string text;
    for (const AES31Event& event : [Controller() project]->events) {
      text += event.eventOn != 0 ? 'e' : '-';
      text += event.trackOn != 0 ? 't' : '-';
      text += ' ';
    }
    return text;
  });
}

// The numbers that the event table lists.
std::vector<int> ListedEvents() {
  std::vector<int> numbers;
  for (const std::string& text : ColumnTexts(EventTable(), @"Event")) {
    numbers.push_back(std::atoi(text.c_str()));
  }
  return numbers;
}

void TicksTracks() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 4, 2));
  const std::string allOn = "et et et et ";
  Check("all is on at first", allOn, Flags());

  ClickCell(TrackTable(), @"Space", 1);
  WaitFor("the events of the track leave the list",
          [] { return [EventTable() numberOfRows] == 2; });
  Check("its box is off", Texts{"1", "0"}, ColumnTexts(TrackTable(), @"Space"));
  Check("the others stay", std::vector<int>{0, 2}, ListedEvents());
  Check("the worker sees it", "et e- et e- ", Flags());
  Check("no row stays selected", NSInteger{-1}, Ask([] { return [TrackTable() selectedRow]; }));
  Screenshot(Window(), "track-off");

  // Row 1 is event 2 now.
  ClickCell(EventTable(), @"Space", 1);
  WaitFor("an event is off", [] { return [Controller() project]->events[2].eventOn == 0; });
  Check("no other event is", "et e- -t e- ", Flags());
  Check("the row stays listed, unticked", Texts{"1", "0"}, ColumnTexts(EventTable(), @"Space"));
  Check("no event row stays selected", NSInteger{-1},
        Ask([] { return [EventTable() selectedRow]; }));

  ClickCell(TrackTable(), @"Space", 1);
  WaitFor("the track is back", [] { return [EventTable() numberOfRows] == 4; });
  Check("the event is still off", Texts{"1", "1", "0", "1"}, ColumnTexts(EventTable(), @"Space"));
  Check("for the worker too", "et et -t et ", Flags());

  ClickCell(EventTable(), @"Space", 2);
  WaitFor("the event is on again", [] { return [Controller() project]->events[2].eventOn == 1; });
  Check("and so is all", allOn, Flags());
}

void KeepsTextsAsTheyAre() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 4, 2));
  const std::string before = TableText(TrackTable()) + TableText(EventTable()) +
                             TableText(ProjectTable()) + TableText(WidthTable());
  ClickCell(TrackTable(), @"Start", 0);
  ClickCell(EventTable(), @"Name", 1);
  Pause(1.0);
  ClickCell(EventTable(), @"Name", 1);  // what would edit a name elsewhere
  Keys({"x", "Return"});
  ClickCell(ProjectTable(), @"Data", 0);
  Keys({"x", "Return"});
  Check("no text of a table can be changed", before,
        TableText(TrackTable()) + TableText(EventTable()) + TableText(ProjectTable()) +
            TableText(WidthTable()));
  Check("no track row is selected", NSInteger{-1}, Ask([] { return [TrackTable() selectedRow]; }));
  Check("no event row is", NSInteger{-1}, Ask([] { return [EventTable() selectedRow]; }));
  Check("no row of the project is", NSInteger{-1},
        Ask([] { return [ProjectTable() selectedRow]; }));
}

// What a nib with other editable columns could send.
void DropsEditsOfOtherColumns() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 4, 2));
  OnMain([] { [[Controller() errorMessageLabel] setStringValue:@"as it was"]; });
  const std::string before = Flags() + TableText(TrackTable()) + TableText(EventTable());
  const auto edit = [](NSTableView* table, NSString* identifier) {
    OnMain([&] {
      NSTableColumn* const column =
          [[[NSTableColumn alloc] initWithIdentifier:identifier] autorelease];
      [Controller() tableView:table
               setObjectValue:[NSNumber numberWithInt:0]
               forTableColumn:column
                          row:1];
    });
  };
  WatchReloads();
  for (NSString* identifier : {@"Track", @"Type", @"Start", @"End", @"Other", @""}) {
    edit(TrackTable(), identifier);
    edit(EventTable(), identifier);
    edit(ProjectTable(), identifier);
  }
  Check("no table is reloaded", 0, Reloads());
  Check("the message stands", "as it was", Message());
  Check("nothing has changed", before, Flags() + TableText(TrackTable()) + TableText(EventTable()));
  edit(TrackTable(), @"Space");
  Check("an edit of a box reloads the event table", 1, Reloads());
  Check("and renews the message", "", Message());

  LoadPath(folder.Path("missing.adl"));
  const int loaded = Reloads();
  edit(TrackTable(), @"Space");
  Check("without a project a box does nothing either", loaded, Reloads());
}

// The message speaks for what is listed.
void SwitchingTrackOffTakesMessageAway() {
  const test::TemporaryFolder folder;
  folder.Write("tone.wav", ShortWave());
  test::ProjectBuilder project;
  project.Source(1, "tone.wav").Source(2, "gone.wav");
  project.Cut({}).Cut({.source = 2, .track = 2});
  StartShellWith(project.WriteTo(folder));
  const std::string message = "Some files not found. Check event list.";
  Check("a file is missing", message, Message());
  ClickCell(EventTable(), @"Space", 1);
  WaitFor("its event is off", [] { return [Controller() project]->events[1].eventOn == 0; });
  Check("an unticked event still speaks", message, Message());
  ClickCell(TrackTable(), @"Space", 1);
  WaitFor("its track is off", [] { return [EventTable() numberOfRows] == 1; });
  Check("an event that is not listed is silent", "", Message());
  ClickCell(TrackTable(), @"Space", 0);
  WaitFor("all tracks are off", [] { return [EventTable() numberOfRows] == 0; });
  Check("an empty list is silent", "", Message());
}

void RefusesEditsDuringSpot() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 4, 2));
  GatedHost& gate = GatedHost::Install();
  PressSpot();
  gate.WaitForArrival(1);
  const std::string before = Flags() + TableText(TrackTable()) + TableText(EventTable());

  ClickCell(TrackTable(), @"Space", 1);
  ClickCell(EventTable(), @"Space", 3);
  Pause(0.3);
  Check("neither kind of box changes any state", before,
        Flags() + TableText(TrackTable()) + TableText(EventTable()));
  Screenshot(Window(), "spot-runs");

  gate.Open();
  WaitFor("the spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  WaitFor("all four regions have landed",
          [] { return [[Timeline() timeline] model].Regions().size() == 4; });
  ClickCell(TrackTable(), @"Space", 1);
  WaitFor("boxes work again", [] { return [EventTable() numberOfRows] == 2; });
}

void SpotsWhatIsTicked() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 6, 3));
  ClickCell(TrackTable(), @"Space", 1);
  WaitFor("a track is off", [] { return [EventTable() numberOfRows] == 4; });
  ClickCell(EventTable(), @"Space", 3);  // event 5
  WaitFor("an event is off", [] { return [Controller() project]->events[5].eventOn == 0; });
  PressSpot();
  WaitFor("the spot has come to its end", [] {
    return
        [[Controller() spotButton] tag] == 0 && [[Timeline() timeline] model].Regions().size() == 3;
  });
  const auto places = Ask([] {
    std::vector<std::int64_t> found;
    for (const auto& region : [[Timeline() timeline] model].Regions()) {
      found.push_back(region.track);
      found.push_back(region.position);
    }
    return found;
  });
  Check("what is off does not land", std::vector<std::int64_t>{0, 0, 2, 9600, 0, 14400}, places);
}

}  // namespace

std::vector<Scenario> TableScenarios() {
  return {{"ticks-tracks", TicksTracks},
          {"keeps-texts", KeepsTextsAsTheyAre},
          {"drops-other-edits", DropsEditsOfOtherColumns},
          {"message-follows-tracks", SwitchingTrackOffTakesMessageAway},
          {"refuses-edits", RefusesEditsDuringSpot},
          {"spots-ticked", SpotsWhatIsTicked}};
}

}  // namespace velmora::view
