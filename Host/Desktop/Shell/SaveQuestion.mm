#import "Desktop/Shell/SaveQuestion.h"

#include <algorithm>

#include "Base/FileNames.h"
#include "Desktop/Logic/SaveReport.h"
#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;
using velmora::host::BounceDepth;
using velmora::host::TargetKind;

namespace {

constexpr CGFloat kAccessoryWidth = 380;
constexpr CGFloat kLabelWidth = 70;
constexpr CGFloat kMenuWidth = 230;
constexpr NSUInteger kAlertTextWidth = 60;  // characters a line: the toolkit cuts what is longer

struct Depth {
  BounceDepth depth;
  NSString* title;
};

const Depth kDepths[] = {
    {BounceDepth::Bits16, @"16 bits"},
    {BounceDepth::Bits24, @"24 bits"},
    {BounceDepth::Float32, @"32 bits, floating point"},
};

// A path has no blanks to break at, and an alert does not break elsewhere.
NSString* InLines(NSString* text) {
  NSMutableString* lines = [NSMutableString string];
  NSUInteger begin = 0;
  while ([text length] - begin > kAlertTextWidth) {
    NSRange line = NSMakeRange(begin, kAlertTextWidth);
    const NSRange blank = [text rangeOfString:@" " options:NSBackwardsSearch range:line];
    const NSRange slash = [text rangeOfString:@"/" options:NSBackwardsSearch range:line];
    if (blank.location != NSNotFound && blank.location > begin) {
      line.length = blank.location + 1 - begin;
    } else if (slash.location != NSNotFound && slash.location > begin) {
      line.length = slash.location + 1 - begin;
    } else {
      line = [text rangeOfComposedCharacterSequencesForRange:line];
    }
    [lines appendFormat:@"%@\n", [text substringWithRange:line]];
    begin = NSMaxRange(line);
  }
  [lines appendString:[text substringFromIndex:begin]];
  return lines;
}

}  // namespace

@interface SaveQuestion (Building)
- (void)makePanel;
- (void)letGoOfPanel;
- (void)makeAccessory;
- (NSPopUpButton*)addMenu:(NSString*)label at:(CGFloat)y;
- (void)kindChosen:(id)sender;
- (void)takeChoices;
@end

@implementation SaveQuestion

- (id)initWithKinds:(const std::vector<const TargetKind*>&)someKinds
            choices:(const velmora::host::TargetChoices&)choices
            project:(const std::string&)path {
  self = [super init];
  if (self == nil) return nil;
  kinds = someKinds;
  project = path;
  request = {kinds.front(), FreeTargetFor(*kinds.front(), project), choices};
  return self;
}

- (void)dealloc {
  [self letGoOfPanel];
  [kindMenu release];
  [depthMenu release];
  [embedBox release];
  [accessory release];
  [super dealloc];
}

- (BOOL)ask {
  [self makeAccessory];
  [self makePanel];
  NSString* folder = StringFromText(velmora::FolderOf(request.path));
  NSString* name = StringFromText(velmora::FileNameOf(request.path));
  const BOOL isGiven = [panel runModalForDirectory:folder file:name] == NSOKButton;
  [self letGoOfPanel];
  return isGiven;
}

- (const SaveRequest&)request {
  return request;
}

// The panel's delegate. Nil keeps the panel open.

- (NSString*)panel:(id)sender userEnteredFilename:(NSString*)name confirmed:(BOOL)confirmed {
  if (!confirmed) return name;
  [self takeChoices];
  request.path = WithExtension(*request.kind, TextFromString(name));
  const std::string complaint = ComplaintAbout(request);
  if (complaint.empty()) return StringFromText(request.path);
  NSAlert* alert = [[[NSAlert alloc] init] autorelease];
  [alert
      setMessageText:[NSString stringWithFormat:@"%s cannot be saved here", request.kind->title]];
  [alert setInformativeText:InLines(StringFromText(complaint))];
  [alert addButtonWithTitle:@"OK"];
  [alert runModal];
  return nil;
}

@end

@implementation SaveQuestion (Building)

- (void)makePanel {
  panel = [[NSSavePanel savePanel] retain];
  [panel setTitle:[NSString stringWithFormat:@"Save Session: %s", request.kind->title]];
  [panel setCanCreateDirectories:YES];
  [panel setAccessoryView:accessory];
  [panel setDelegate:(id)self];
}

// The toolkit has one save panel for all questions: let go at this one's end and not at its
// release, which may come when the panel is the next one's.
- (void)letGoOfPanel {
  [panel setDelegate:nil];
  [panel setAccessoryView:nil];
  [panel release];
  panel = nil;
}

- (void)makeAccessory {
  const velmora::host::OfferedChoices offers = request.kind->offers;
  const CGFloat rows =
      (kinds.size() > 1 ? 1 : 0) + (offers.bounceDepth ? 1 : 0) + (offers.embedMedia ? 1 : 0);
  if (rows == 0) return;
  const CGFloat rowHeight = kControlHeight + kControlGap;
  accessory = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, kAccessoryWidth, rows * rowHeight)];
  CGFloat y = (rows - 1) * rowHeight + kControlGap / 2;
  if (kinds.size() > 1) {
    kindMenu = [self addMenu:@"Make" at:y];
    for (const TargetKind* kind : kinds) [kindMenu addItemWithTitle:StringFromText(kind->title)];
    [kindMenu setTarget:self];
    [kindMenu setAction:@selector(kindChosen:)];
    y -= rowHeight;
  }
  if (offers.bounceDepth) {
    depthMenu = [self addMenu:@"Samples" at:y];
    for (const Depth& depth : kDepths) {
      [depthMenu addItemWithTitle:depth.title];
      if (depth.depth == request.choices.bounceDepth) {
        [depthMenu selectItemAtIndex:[depthMenu numberOfItems] - 1];
      }
    }
    y -= rowHeight;
  }
  if (offers.embedMedia) {
    embedBox = MakeCheckBox(
        NSMakeRect(kWindowMargin, y, kAccessoryWidth - 2 * kWindowMargin, kControlHeight),
        @"Put the audio into the file");
    [embedBox setState:request.choices.embedMedia ? NSOnState : NSOffState];
    [accessory addSubview:embedBox];
  }
}

- (NSPopUpButton*)addMenu:(NSString*)text at:(CGFloat)y {
  NSTextField* label = MakeLabel(
      NSMakeRect(kWindowMargin, y + (kControlHeight - kLabelHeight) / 2, kLabelWidth, kLabelHeight),
      kTextSize);
  [label setStringValue:text];
  [accessory addSubview:label];
  [label release];
  NSPopUpButton* menu = [[NSPopUpButton alloc]
      initWithFrame:NSMakeRect(kWindowMargin + kLabelWidth, y, kMenuWidth, kControlHeight)
          pullsDown:NO];
  [menu setAutoenablesItems:NO];
  [accessory addSubview:menu];
  return menu;
}

// The name that was typed stays; only its extension is another one's.
- (void)kindChosen:(id)sender {
  const std::string before = request.kind->extension;
  std::string name = TextFromString([panel nameFieldStringValue]);
  if (!before.empty() && name.size() > before.size() && name.ends_with(before)) {
    name.resize(name.size() - before.size());
  }
  [self takeChoices];
  [panel setNameFieldStringValue:StringFromText(WithExtension(*request.kind, name))];
}

- (void)takeChoices {
  if (kindMenu != nil) {
    request.kind = kinds[static_cast<std::size_t>([kindMenu indexOfSelectedItem])];
  }
  if (depthMenu != nil) {
    const NSInteger chosen = [depthMenu indexOfSelectedItem];
    request.choices.bounceDepth = kDepths[chosen].depth;
  }
  if (embedBox != nil) request.choices.embedMedia = [embedBox state] == NSOnState;
}

@end
