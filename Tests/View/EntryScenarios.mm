// The two timecode entries, by the keyboard.

#include <cmath>

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

bool HasFocus(TextView* entry) {
  return Ask([&] { return [Window() firstResponder] == entry; });
}

bool IsTinted(TextView* entry) {
  return Ask([&] {
    NSColor* tint = [NSColor colorWithDeviceRed:0.7098039215686275
                                          green:0.8352941176470589
                                           blue:1.0
                                          alpha:1.0];
    return [[entry backgroundColor] isEqual:tint] == YES;
  });
}

// Where the characters are drawn, against the middle of the entry.
bool IsCentered(TextView* entry) {
  return Ask([&] {
    NSLayoutManager* const layout = [entry layoutManager];
    const NSRange glyphs = NSMakeRange(0, [layout numberOfGlyphs]);
    const NSRect drawn = [layout boundingRectForGlyphRange:glyphs
                                           inTextContainer:[entry textContainer]];
    const CGFloat middle = NSMidX(drawn) + [entry textContainerOrigin].x;
    return NSWidth(drawn) > 40 && std::abs(middle - NSMidX([entry bounds])) < 2;
  });
}

void Enter(TextView* entry, const std::string& name) {
  Click(entry);
  WaitFor(name + " has the focus", [&] { return [Window() firstResponder] == entry; });
  CheckTrue(name + " is tinted", IsTinted(entry));
}

void CheckLeft(TextView* entry, const std::string& name) {
  CheckTrue(name + " has lost the focus", !HasFocus(entry));
  CheckTrue(name + " is white again",
            Ask([&] { return [[entry backgroundColor] isEqual:[NSColor whiteColor]] == YES; }));
}

// Types a whole value and leaves by Return; the entry has the focus.
void Type(std::initializer_list<const char*> digits) {
  Key("BackSpace");
  Keys(digits);
}

// A key that is no timecode's leaves the text, and the focus, alone.
void CheckIgnored(TextView* entry, const std::string& text) {
  Keys({"a", "Z", "space", "colon", "Tab", "Left", "Right", "Up", "Down", "Home", "F5", "Insert",
        "Delete"});
  Check("letters, blanks, Tab, arrows and function keys are ignored", text, EntryText(entry));
  SendCharacters(Window(), @"\u00e9");
  SendCharacters(Window(), @"\u3042");
  SendCharacters(Window(), @"");
  Check("keys of several bytes, or of none, are ignored", text, EntryText(entry));
  CheckTrue("the focus stays", HasFocus(entry));
}

void TypesOffset() {
  StartShell();
  TextView* const entry = OffsetEntry();
  NSTextField* const plain = [Controller() timeOffset];
  CheckTrue("the first text is centred", IsCentered(entry));
  CheckTrue("that of the start time too", IsCentered(StartEntry()));
  Enter(entry, "the offset");

  Keys({"1", "2", "3"});
  Check("digits enter at the right", "+00:00:01:23", EntryText(entry));
  CheckTrue("and stay centred", IsCentered(entry));
  CheckIgnored(entry, "+00:00:01:23");
  Key("minus");
  Check("a minus takes the sign's place", "-00:00:01:23", EntryText(entry));
  Key("plus");
  Check("and a plus", "+00:00:01:23", EntryText(entry));
  Keys({"minus", "4", "5", "6", "7", "8", "9"});
  Check("the ninth digit pushes the first out", "-23:45:67:89", EntryText(entry));
  Key("BackSpace");
  Check("Backspace shows zeros and a plus", "+00:00:00:00", EntryText(entry));
  Keys({"minus", "1"});
  SendCharacters(Window(), @"\x7f");
  Check("so does the character of Delete", "+00:00:00:00", EntryText(entry));
  Screenshot(Window(), "entry");

  Keys({"minus", "0"});
  Key("Return");
  CheckLeft(entry, "the offset");
  Check("a zero keeps its minus", "-00:00:00:00", EntryText(entry));
  Check("the plain field has it", "-00:00:00:00", FieldText(plain));
}

void TypesStart() {
  StartShell();
  TextView* const entry = StartEntry();
  NSTextField* const plain = [Controller() timeStart];
  Enter(entry, "the start time");

  Keys({"1", "2", "3"});
  Check("digits enter at the right", " 00:00:01:23", EntryText(entry));
  CheckIgnored(entry, " 00:00:01:23");
  Keys({"minus", "plus"});
  Check("signs are ignored", " 00:00:01:23", EntryText(entry));
  Key("BackSpace");
  Check("Backspace shows zeros", " 00:00:00:00", EntryText(entry));
  Key("4");
  SendCharacters(Window(), @"\x08");
  Check("so does its other character", " 00:00:00:00", EntryText(entry));
  Keys({"KP_1", "KP_2"});
  Check("the keypad's digits are digits", " 00:00:00:12", EntryText(entry));
  Key("KP_Enter");
  CheckLeft(entry, "the start time");
  Check("Enter has committed it", " 00:00:00:12", FieldText(plain));
}

void LimitsOnCommit() {
  StartShell();
  TextView* const offset = OffsetEntry();
  TextView* const start = StartEntry();
  const auto commit = [](TextView* entry, std::initializer_list<const char*> keys) {
    Enter(entry, "the entry");
    Type(keys);
    Key("Return");
    CheckLeft(entry, "the entry");
    return EntryText(entry);
  };
  Check("25 hours with a sign", "+12:00:00:00",
        commit(offset, {"2", "5", "0", "0", "0", "0", "0", "0"}));
  Check("12:30:15:10 with a sign", "-12:00:00:00",
        commit(offset, {"minus", "1", "2", "3", "0", "1", "5", "1", "0"}));
  Check("61 minutes", "+11:59:00:00", commit(offset, {"1", "1", "6", "1", "0", "0", "0", "0"}));
  Check("all too large", " 23:59:59:29", commit(start, {"2", "5", "6", "1", "6", "1", "4", "0"}));
  Check("12:30 without a sign", " 12:30:00:00",
        commit(start, {"1", "2", "3", "0", "0", "0", "0", "0"}));
  Check("the plain field of the offset", "+11:59:00:00", FieldText([Controller() timeOffset]));
  Check("the plain field of the start", " 12:30:00:00", FieldText([Controller() timeStart]));
}

void LeavesEntries() {
  StartShell();
  TextView* const offset = OffsetEntry();
  TextView* const start = StartEntry();
  const auto plain = [] { return FieldText([Controller() timeOffset]); };

  Enter(offset, "the offset");
  Keys({"5", "Escape"});
  CheckLeft(offset, "the offset");
  Check("Escape undoes the typing before any commit", "+00:00:00:00", EntryText(offset));

  Enter(offset, "the offset");
  Keys({"minus", "7"});
  Check("what is typed is not committed yet", "+00:00:00:00", plain());
  Click(start);
  WaitFor("the other entry has the focus", [&] { return [Window() firstResponder] == start; });
  CheckLeft(offset, "the offset");
  Check("a change of focus commits", "-00:00:00:07", plain());

  Enter(offset, "the offset");
  Keys({"9", "9", "Escape"});
  CheckLeft(offset, "the offset");
  Check("Escape shows the last committed value", "-00:00:00:07", EntryText(offset));
  Check("and the plain field has it", "-00:00:00:07", plain());

  Enter(offset, "the offset");
  Keys({"BackSpace", "Escape"});
  Check("Backspace kept it until the commit", "-00:00:00:07", EntryText(offset));

  Enter(offset, "the offset");
  Keys({"8"});
  Click([Controller() CopyFolderNameTextField]);
  CheckLeft(offset, "the offset");
  Check("a click into a text field commits, within 30 frames", "-00:00:00:29", plain());
}

void SwallowsKeysDuringSpot() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 3, 1));
  GatedHost& gate = GatedHost::Install();
  Enter(OffsetEntry(), "the offset");
  Keys({"1"});
  PressSpot();
  gate.WaitForArrival(1);
  CheckTrue("the start of a spot takes the focus", !HasFocus(OffsetEntry()));
  Check("and so commits", "+00:00:00:01", FieldText([Controller() timeOffset]));
  Click(OffsetEntry());
  Keys({"2", "BackSpace", "minus"});
  Check("keys are swallowed during the spot", "+00:00:00:01", EntryText(OffsetEntry()));
  Click(StartEntry());
  Keys({"3"});
  Check("in both entries", " 00:00:00:00", EntryText(StartEntry()));
  gate.Open();
  WaitFor("the spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  Enter(OffsetEntry(), "the offset");
  Keys({"2"});
  Check("then they are taken again", "+00:00:00:12", EntryText(OffsetEntry()));
}

}  // namespace

std::vector<Scenario> EntryScenarios() {
  return {{"types-offset", TypesOffset},
          {"types-start", TypesStart},
          {"limits-entries", LimitsOnCommit},
          {"leaves-entries", LeavesEntries},
          {"swallows-keys", SwallowsKeysDuringSpot}};
}

}  // namespace velmora::view
