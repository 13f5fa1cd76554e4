#import "View/Velmora_ViewController.h"

#include <unistd.h>

#include "Base/PrintableLine.h"
#include "Base/StandardError.h"
#include "Base/SystemLog.h"
#include "Model/ViewModel.h"
#include "Spot/SpotQueue.h"
#import "View/TextConversion.h"
#import "View/TextView.h"
#import "View/myImageView.h"
#import "View/spotThreadClass.h"

static void LogLine(const std::string& line) {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  NSLog(@"%@", StringFromText(velmora::FilteredLine(line)));
  [pool release];
}

@interface Velmora_ViewController (Start)
- (void)makeCheckBoxes;
- (TextView*)timecodeEntryAt:(CGFloat)y
                  plainField:(NSTextField*)plainField
                      signed:(BOOL)useSign
                        text:(NSString*)text;
- (void)fillTables;
- (void)connectKeyLoop;
- (void)leaveView;
@end

@implementation Velmora_ViewController

@synthesize mGainText;
@synthesize mInputLevelIndicator;
@synthesize mOutputLevelIndicator;
@synthesize FileNameTextField;
@synthesize CopyFolderNameTextField;
@synthesize totalStartTimeTextField;
@synthesize totalEndTimeTextField;
@synthesize backGroundImageView;
@synthesize cpoySourcecheckBox;
@synthesize selectFileButton;
@synthesize selectFolderButton;
@synthesize spotButton;
@synthesize spotPsitionMatrix;
@synthesize depthMatrix;
@synthesize fadeDataMatrix;
@synthesize gainDataMatrix;
@synthesize spotProgressPanel;
@synthesize spotProgressIndicator;
@synthesize timeOffset;
@synthesize timeStart;
@synthesize timeCodeSetBaseBox;
@synthesize dummyTextField;
@synthesize errorMessageLabel;
@synthesize trackOffsetComboBox;

+ (void)initialize {
  if (self != [Velmora_ViewController class]) return;
  velmora::SetSystemLog(LogLine);
  // Whoever starts the host from a terminal must not have it obey what a project holds.
  if (isatty(STDERR_FILENO) != 0) velmora::SetStandardErrorFilter(velmora::PrintableLine);
}

- (id)initWithNibName:(NSString*)nibName bundle:(NSBundle*)bundle {
  self = [super initWithNibName:nibName bundle:bundle];
  if (self != nil) {
    model = std::make_unique<velmora::ViewModel>();
    runs = std::make_unique<velmora::SpotQueue>();
  }
  return self;
}

- (void)awakeFromNib {
  [self makeCheckBoxes];
  offsetTimeText = [self timecodeEntryAt:35 plainField:timeOffset signed:YES text:@"+00:00:00:00"];
  startTimeText = [self timecodeEntryAt:13 plainField:timeStart signed:NO text:@" 00:00:00:00"];
  [_trackTableView setAllowsColumnSelection:NO];
  [trackOffsetComboBox selectItemAtIndex:3];
  [self fillTables];
  [self connectKeyLoop];
}

// One cell serves the check boxes of both tables.
- (void)makeCheckBoxes {
  NSTableColumn* trackBoxes = [_trackTableView tableColumnWithIdentifier:@"Space"];
  NSTableColumn* eventBoxes = [_eventListTableView tableColumnWithIdentifier:@"Space"];
  NSButtonCell* cell = [[NSButtonCell alloc] init];
  [cell setButtonType:NSSwitchButton];
  [cell setTitle:@""];
  [cell setState:NSOnState];
  [trackBoxes setDataCell:cell];
  [eventBoxes setDataCell:cell];
  [cell release];
}

- (TextView*)timecodeEntryAt:(CGFloat)y
                  plainField:(NSTextField*)plainField
                      signed:(BOOL)useSign
                        text:(NSString*)text {
  NSFont* font = [NSFont fontWithName:@"Courier" size:13];
  if (font == nil) font = [NSFont userFixedPitchFontOfSize:13];
  // clang-format off
  TextView* entry = [[TextView alloc] initWithFrame:NSMakeRect(4, y, 135, 17)
                                                   :(plainField)
                                                   :(dummyTextField)];
  // clang-format on
  [entry setFont:font];
  [entry alignCenter:self];
  [entry SetUseSign:useSign];
  [[timeCodeSetBaseBox contentView] addSubview:entry];
  [entry insertText:text];
  return entry;
}

// The last columns reach to the tables' right ends, and go on doing so when the window is resized.
- (void)fillTables {
  [_projectInfomationTableView sizeLastColumnToFit];
  [_trackTableView sizeLastColumnToFit];
  [_eventListTableView sizeLastColumnToFit];
  [_numberOfTracksTableView sizeLastColumnToFit];
}

// Tab leads to the entries from the choice of position, and on from the field that takes the focus
// when Return ends an entry.
- (void)connectKeyLoop {
  NSView* next = [dummyTextField nextKeyView];
  [spotPsitionMatrix setNextKeyView:offsetTimeText];
  [offsetTimeText setNextKeyView:startTimeText];
  [startTimeText setNextKeyView:next];
}

// The view may outlive the controller, in a shell's window: nothing in it may call back.
- (void)leaveView {
  NSTableView* tables[] = {_projectInfomationTableView, _trackTableView, _eventListTableView,
                           _numberOfTracksTableView};
  for (NSTableView* table : tables) {
    [table setDataSource:nil];
    [table setDelegate:nil];
  }
  [selectFileButton setTarget:nil];
  [selectFolderButton setTarget:nil];
  [spotButton setTarget:nil];
}

- (void)dealloc {
  if (runs != nullptr) runs->Close();
  [self leaveView];
  [spotThread release];
  [offsetTimeText release];
  [startTimeText release];
  [mGainText release];
  [mInputLevelIndicator release];
  [mOutputLevelIndicator release];
  [FileNameTextField release];
  [CopyFolderNameTextField release];
  [totalStartTimeTextField release];
  [totalEndTimeTextField release];
  [super dealloc];
}

- (void)SetParameters:(AAX_IEffectParameters*)parameters {
  mEffectParameters = parameters;
}

- (void)SetController:(AAX_IController*)controller {
  mController = controller;
}

- (void)SetViewContainerOnViews:(AAX_IViewContainer*)viewContainer {
  mViewContainer = viewContainer;
}

- (void)SetTransport:(AAX_ITransport*)transport {
  mTransport = transport;
}

- (AAX_IController*)Controller {
  return mController;
}

- (void)SetTrackNo:(std::int32_t)trackNo {
  model->SetTrackNo(trackNo);
}

- (void)commitTypedText {
  NSWindow* window = [[self view] window];
  // A field may refuse to let the focus go; its edit is ended all the same.
  if (![window makeFirstResponder:nil]) [window endEditingFor:nil];
}

@end
