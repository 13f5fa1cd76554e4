// What else than keys could write into the timecode entries: the clipboard, the mouse, the menus of
// a host. Whatever comes, their text keeps its shape.

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

// A drag that carries a text, as far as the receiver of one asks.
@interface DraggedText : NSObject
@end

@implementation DraggedText

- (NSPasteboard*)draggingPasteboard {
  return [NSPasteboard pasteboardWithName:NSDragPboard];
}
- (id)draggingSource {
  return nil;
}
- (NSDragOperation)draggingSourceOperationMask {
  return NSDragOperationEvery;
}
- (NSPoint)draggingLocation {
  TextView* const entry = velmora::view::OffsetEntry();
  return [entry convertPoint:NSMakePoint(60, 8) toView:nil];
}

@end

namespace velmora::view {

namespace {

const char* const kShown = "+00:00:01:23";

void PutText(NSPasteboard* board, NSString* text) {
  [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
  [board setString:text forType:NSStringPboardType];
}

void FillClipboard(NSString* text) {
  OnMain([&] { PutText([NSPasteboard generalPasteboard], text); });
}

std::string Clipboard() {
  return Ask(
      [] { return TextOf([[NSPasteboard generalPasteboard] stringForType:NSStringPboardType]); });
}

void Enter(TextView* entry) {
  if (Ask([&] { return [Window() firstResponder] == entry; })) return;
  Click(entry);
  WaitFor("the entry has the focus", [&] { return [Window() firstResponder] == entry; });
}

bool HasFocus(TextView* entry) {
  return Ask([&] { return [Window() firstResponder] == entry; });
}

// What a key or a button has done is seen when the window has taken it.
void WaitForText(const std::string& what, TextView* entry, const std::string& text) {
  WaitFor(what + ": " + text, [&] { return TextOf([entry string]) == text; });
}

// Shows 123 frames in the offset.
void Prepare() {
  Enter(OffsetEntry());
  Keys({"BackSpace", "1", "2", "3"});
  WaitForText("the entry shows digits", OffsetEntry(), kShown);
}

void PastesKeyByKey() {
  StartShell();
  TextView* const offset = OffsetEntry();
  TextView* const start = StartEntry();
  // From a field to the entry as a user does it.
  NSTextField* const field = [Controller() CopyFolderNameTextField];
  Click(field);
  WaitFor("the field takes keys", [&] { return [field currentEditor] != nil; });
  TypeText("a1-2:3");
  Keys({"ctrl+a", "ctrl+c"});
  Enter(offset);
  Key("ctrl+v");
  WaitForText("digits enter at the right, a sign in its place, the rest is ignored", offset,
              "-00:00:01:23");
  Key("ctrl+v");
  WaitForText("again", offset, "-00:12:31:23");
  Enter(start);
  Key("ctrl+v");
  WaitForText("without a sign there is none", start, " 00:00:01:23");

  Enter(offset);
  Key("BackSpace");
  FillClipboard(@"+12:34:56:07");
  Key("ctrl+v");
  WaitForText("a whole timecode fits", offset, "+12:34:56:07");
  FillClipboard(@"\uff11\u00e98\u3042\U0001F600"
                @"9");
  Key("ctrl+v");
  WaitForText("characters of several bytes are ignored", offset, "+34:56:07:89");
  FillClipboard(@"5\n6\t7");
  Key("ctrl+v");
  WaitForText("so are line feeds and tabs", offset, "+60:78:95:67");
}

// A return among the characters gives the focus away, and an escape undoes: as the keys do.
void PasteLeavesEntry() {
  StartShell();
  TextView* const offset = OffsetEntry();
  Prepare();
  FillClipboard(@"4\r5");
  Key("ctrl+v");
  WaitForText("Return commits, and what comes after it is not typed", offset, "+00:00:12:29");
  CheckTrue("the focus is gone", !HasFocus(offset));
  Check("the plain field has it", "+00:00:12:29", FieldText([Controller() timeOffset]));

  Enter(offset);
  FillClipboard(@"77\x1b"
                @"88");
  Key("ctrl+v");
  WaitFor("Escape gives the focus away too", [&] { return [Window() firstResponder] != offset; });
  Check("with the last committed value", "+00:00:12:29", EntryText(offset));
  OnMain([&] { [offset paste:nil]; });
  Check("an entry without the focus takes nothing", "+00:00:12:29", EntryText(offset));

  FillClipboard([@"" stringByPaddingToLength:3000000 withString:@"12x" startingAtIndex:0]);
  Enter(offset);
  Key("ctrl+v");
  WaitForText("a huge clipboard is over in no time", offset, "+12:12:12:12");
}

void RefusesPasteDuringSpot() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 2, 1));
  GatedHost& gate = GatedHost::Install();
  FillClipboard(@"45");
  PressSpot();
  gate.WaitForArrival(1);
  Enter(OffsetEntry());
  Keys({"ctrl+v", "ctrl+x"});
  OnMain([] {
    [OffsetEntry() insertText:@"6"];
    [OffsetEntry() readSelectionFromPasteboard:[NSPasteboard generalPasteboard]];
  });
  Pause(0.3);
  Check("nothing is pasted while keys are swallowed", "+00:00:00:00", EntryText(OffsetEntry()));
  gate.Open();
  WaitFor("the spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  Key("ctrl+v");
  WaitForText("then it is", OffsetEntry(), "+00:00:00:45");
}

void CopiesAndCutsNothing() {
  StartShell();
  TextView* const offset = OffsetEntry();
  Prepare();
  FillClipboard(@"before");
  Keys({"ctrl+a", "ctrl+x"});
  Pause(0.3);
  Check("cutting takes nothing away", kShown, EntryText(offset));
  Check("and puts nothing on the clipboard", "before", Clipboard());
  Keys({"ctrl+a", "ctrl+c"});
  WaitFor("copying does", [] {
    return TextOf([[NSPasteboard generalPasteboard] stringForType:NSStringPboardType]) == kShown;
  });
  Key("ctrl+a");
  Key("4");
  WaitForText("a digit over a selection enters at the right", offset, "+00:00:12:34");
  Keys({"ctrl+a", "ctrl+v"});
  WaitForText("a paste over a selection too", offset, kShown);
}

// The selection of the mouse and of other programs, by the middle button.
void MiddleButtonTypes() {
  StartShell();
  TextView* const offset = OffsetEntry();
  OnMain([] { PutText([NSPasteboard pasteboardWithName:@"Selection"], @"ab7-8"); });
  MiddleClick(offset);
  Check("an entry without the focus takes nothing", "+00:00:00:00", EntryText(offset));
  Prepare();
  OnMain([] { PutText([NSPasteboard pasteboardWithName:@"Selection"], @"ab7-8"); });
  MiddleClick(offset);
  WaitForText("the characters are typed", offset, "-00:01:23:78");
}

void RefusesDrops() {
  StartShell();
  TextView* const offset = OffsetEntry();
  NSTextField* const field = [Controller() CopyFolderNameTextField];
  Click(field);
  WaitFor("the field takes keys", [&] { return [field currentEditor] != nil; });
  TypeText("987654321987654321");
  // A click that overtakes what is typed would take the focus away from it.
  WaitFor("the field shows what was typed",
          [&] { return TextOf([[field currentEditor] string]) == "987654321987654321"; });
  Prepare();

  // By a mouse: out of the entry into itself and into the field.
  Key("ctrl+a");
  const NSRect bounds = Ask([&] { return [offset bounds]; });
  const NSPoint middle = NSMakePoint(NSMidX(bounds), NSMidY(bounds));
  Drag(offset, middle, NSMakePoint(NSMinX(bounds) + 20, middle.y));
  Check("a drag inside the entry moves nothing", kShown, EntryText(offset));
  Key("ctrl+a");
  const NSPoint outside =
      Ask([&] { return [offset convertPoint:NSMakePoint(60, 8) fromView:field]; });
  Drag(offset, middle, outside);
  Pause(0.3);
  Check("a drag out of it takes nothing away", kShown, EntryText(offset));

  // As the platform would hand over a drop.
  OnMain([&] { PutText([NSPasteboard pasteboardWithName:NSDragPboard], @"44"); });
  for (TextView* entry : {offset, StartEntry()}) {
    const std::string before = EntryText(entry);
    Check("an entry asks for no drags", NSUInteger{0},
          Ask([&] { return [[entry registeredDraggedTypes] count]; }));
    OnMain([&] {
      DraggedText* const drag = [[DraggedText new] autorelease];
      [entry draggingEntered:(id)drag];
      [entry draggingUpdated:(id)drag];
      if ([entry prepareForDragOperation:(id)drag]) [entry performDragOperation:(id)drag];
      [entry performDragOperation:(id)drag];
      [entry concludeDragOperation:(id)drag];
    });
    Check("a drop changes nothing", before, EntryText(entry));
  }
}

// What menus, services, spelling and input methods of a host can send to the first responder.
void RefusesOtherEdits() {
  StartShell();
  TextView* const offset = OffsetEntry();
  Prepare();
  FillClipboard(@"none");
  const char* const actions[] = {"cut:",
                                 "delete:",
                                 "undo:",
                                 "redo:",
                                 "deleteBackward:",
                                 "deleteForward:",
                                 "deleteToEndOfLine:",
                                 "deleteToEndOfParagraph:",
                                 "deleteWordBackward:",
                                 "deleteToBeginningOfLine:",
                                 "deleteWordForward:",
                                 "transpose:",
                                 "yank:",
                                 "insertNewline:",
                                 "insertTab:",
                                 "insertBacktab:",
                                 "insertLineBreak:",
                                 "insertContainerBreak:",
                                 "insertNewlineIgnoringFieldEditor:",
                                 "insertTabIgnoringFieldEditor:",
                                 "capitalizeWord:",
                                 "uppercaseWord:",
                                 "lowercaseWord:",
                                 "paste:",
                                 "pasteAsPlainText:",
                                 "pasteAsRichText:",
                                 "pasteFont:",
                                 "pasteRuler:",
                                 "complete:",
                                 "alignLeft:",
                                 "alignRight:",
                                 "underline:",
                                 "superscript:",
                                 "unscript:",
                                 "changeFont:",
                                 "changeAttributes:",
                                 "toggleRuler:"};
  for (const char* action : actions) {
    for (const bool selected : {false, true}) {
      OnMain([&] {
        if (selected) [offset selectAll:nil];
        [offset tryToPerform:sel_registerName(action) with:nil];
      });
      Check(std::string(action) + (selected ? " of all" : "") + " changes nothing", kShown,
            EntryText(offset));
    }
    CheckTrue("the text stays where it is",
              Ask([&] { return [offset alignment] == NSCenterTextAlignment; }));
  }

  const std::pair<const char*, std::function<void()>> edits[] = {
      {"text that is inserted", [&] { [offset insertText:@"word"]; }},
      {"a colour",
       [&] {
         [offset tryToPerform:@selector(changeColor:)
                         with:[[[NSColorWell alloc] init] autorelease]];
       }},
      {"a font", [&] { [offset changeFont:[NSFontManager sharedFontManager]]; }},
      {"text with attributes",
       [&] {
         [offset insertText:[[[NSAttributedString alloc] initWithString:@"word"] autorelease]];
       }},
      {"text of an input method",
       [&] { [offset setMarkedText:@"word" selectedRange:NSMakeRange(0, 4)]; }},
      {"text that replaces a range",
       [&] { [(id)offset insertText:@"word" replacementRange:NSMakeRange(0, 12)]; }},
      {"marked text that replaces a range",
       [&] {
         [(id)offset setMarkedText:@"word"
                     selectedRange:NSMakeRange(0, 4)
                  replacementRange:NSMakeRange(0, 12)];
       }},
      {"a completion",
       [&] {
         [offset insertCompletion:@"more than a word"
              forPartialWordRange:NSMakeRange(0, 12)
                         movement:NSReturnTextMovement
                          isFinal:YES];
       }},
      {"the answer of a service",
       [&] { [offset readSelectionFromPasteboard:[NSPasteboard generalPasteboard]]; }},
      {"a question whether text may change", [&] {
         if ([offset shouldChangeTextInRange:NSMakeRange(0, 12) replacementString:@""]) {
           [offset setString:@""];
         }
       }}};
  for (const auto& each : edits) {
    OnMain([&] {
      [offset selectAll:nil];
      each.second();
    });
    Check(std::string(each.first) + " changes nothing", kShown, EntryText(offset));
  }
  OnMain([&] { [offset insertText:@"+4"]; });
  Check("digits that are inserted are typed", "+00:00:12:34", EntryText(offset));
  Key("Return");
  WaitForText("the entry still commits", offset, "+00:00:12:29");
}

}  // namespace

std::vector<Scenario> PasteScenarios() {
  return {{"pastes-keys", PastesKeyByKey},           {"paste-leaves-entry", PasteLeavesEntry},
          {"refuses-paste", RefusesPasteDuringSpot}, {"copies-entry", CopiesAndCutsNothing},
          {"middle-button", MiddleButtonTypes},      {"refuses-drops", RefusesDrops},
          {"refuses-other-edits", RefusesOtherEdits}};
}

}  // namespace velmora::view
