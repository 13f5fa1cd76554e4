#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>
#include <memory>

namespace velmora {
class AES31Project;
class SpotQueue;
class ViewModel;
struct LoadFailure;
}  // namespace velmora

class AAX_IController;
class AAX_IEffectParameters;
class AAX_ITransport;
class AAX_IViewContainer;

@class TextView;
@class myImageView;
@class spotThreadClass;

// Posted on the main thread, with the view controller as its object, when a load has ended, good or
// failed, and the view shows its outcome. An offer to shells that show facts of their own about a
// project; nobody needs to listen. The name stands here by value, because the bundle exports no
// symbol but its classes.
NSString* const VelmoraDidLoadFileNotification = @"VelmoraDidLoadFileNotification";

// Objective-C has one namespace for all classes of a process, and a host loads the bundles of many
// makers into its own. What is ours to name bears the prefix Velmora. The names TextView,
// CTimeCode, myImageView, spotThreadClass, Velmora_ViewController and Velmora_ViewControllerFactory
// are part of the interface to the nib and to shells, and stay.

// The centre of the view: one object for each open window. It takes texts from the outlets, hands
// them to the portable model and shows what comes back. The project, the rows of the tables and the
// texts are the model's; they are read here by the accessors of their names, below. A controller
// that goes aborts its spot and waits for it.
@interface Velmora_ViewController : NSViewController <NSTextFieldDelegate> {
  NSTextField* mGainText;                    // nothing reads or writes it
  NSLevelIndicator* mInputLevelIndicator;    // nothing reads or writes it
  NSLevelIndicator* mOutputLevelIndicator;   // nothing reads or writes it
  NSTextField* FileNameTextField;            // path of the ADL file
  NSTextField* CopyFolderNameTextField;      // folder that receives copies
  NSTextField* totalStartTimeTextField;      // start of the project's material
  NSTextField* totalEndTimeTextField;        // end of the project's material
  NSTextField* timeOffset;                   // what offsetTimeText has committed
  NSTextField* timeStart;                    // what startTimeText has committed
  AAX_IEffectParameters* mEffectParameters;  // not owned, never used
  AAX_IController* mController;              // not owned; answers the sample rate
  AAX_ITransport* mTransport;                // not owned; answers the timecode setting
  AAX_IViewContainer* mViewContainer;        // not owned, never used
  std::unique_ptr<velmora::ViewModel> model;
  IBOutlet NSTableView* _projectInfomationTableView;
  IBOutlet NSTableView* _trackTableView;
  IBOutlet NSTableView* _eventListTableView;
  IBOutlet NSTableView* _numberOfTracksTableView;
  NSButton* cpoySourcecheckBox;       // option: copy the sources
  NSMatrix* spotPsitionMatrix;        // option: where the events land
  NSMatrix* depthMatrix;              // option: bit depth
  NSMatrix* fadeDataMatrix;           // option: fades
  NSMatrix* gainDataMatrix;           // option: gain
  NSComboBox* trackOffsetComboBox;    // nothing reads its value
  std::int32_t thread_progresstotal;  // end value of the progress
  std::int32_t thread_progress;       // steps done; -1 when no worker counts
  BOOL thread_abort;                  // the latest worker was asked to stop
  spotThreadClass* spotThread;        // the latest worker
  TextView* offsetTimeText;           // signed entry for the offset
  TextView* startTimeText;            // unsigned entry for the start
  NSWindow* spotProgressPanel;        // never shown
  NSProgressIndicator* spotProgressIndicator;
  NSTextField* dummyTextField;  // takes the focus away from the entries
  NSBox* timeCodeSetBaseBox;    // holds the two entries
  NSButton* selectFileButton;
  NSButton* selectFolderButton;
  NSButton* spotButton;  // its tag is the spot's state: 1 while one runs
  myImageView* backGroundImageView;
  NSTextField* errorMessageLabel;  // the one line of user messages
  std::unique_ptr<velmora::SpotQueue> runs;
}

@property(nonatomic, retain) IBOutlet NSTextField* mGainText;
@property(nonatomic, retain) IBOutlet NSLevelIndicator* mInputLevelIndicator;
@property(nonatomic, retain) IBOutlet NSLevelIndicator* mOutputLevelIndicator;
@property(nonatomic, retain) IBOutlet NSTextField* FileNameTextField;
@property(nonatomic, retain) IBOutlet NSTextField* CopyFolderNameTextField;
@property(nonatomic, retain) IBOutlet NSTextField* totalStartTimeTextField;
@property(nonatomic, retain) IBOutlet NSTextField* totalEndTimeTextField;
@property(nonatomic, assign) IBOutlet myImageView* backGroundImageView;
@property(nonatomic, assign) IBOutlet NSButton* cpoySourcecheckBox;
@property(nonatomic, assign) IBOutlet NSButton* selectFileButton;
@property(nonatomic, assign) IBOutlet NSButton* selectFolderButton;
@property(nonatomic, assign) IBOutlet NSButton* spotButton;
@property(nonatomic, assign) IBOutlet NSMatrix* spotPsitionMatrix;
@property(nonatomic, assign) IBOutlet NSMatrix* depthMatrix;
@property(nonatomic, assign) IBOutlet NSMatrix* fadeDataMatrix;
@property(nonatomic, assign) IBOutlet NSMatrix* gainDataMatrix;
@property(nonatomic, assign) IBOutlet NSWindow* spotProgressPanel;
@property(nonatomic, assign) IBOutlet NSProgressIndicator* spotProgressIndicator;
@property(nonatomic, assign) IBOutlet NSTextField* timeOffset;
@property(nonatomic, assign) IBOutlet NSTextField* timeStart;
@property(nonatomic, assign) IBOutlet NSBox* timeCodeSetBaseBox;
@property(nonatomic, assign) IBOutlet NSTextField* dummyTextField;
@property(nonatomic, assign) IBOutlet NSTextField* errorMessageLabel;
@property(nonatomic, assign) IBOutlet NSComboBox* trackOffsetComboBox;

- (id)initWithNibName:(NSString*)nibName bundle:(NSBundle*)bundle;

// The host's objects, kept as they are.
- (void)SetParameters:(AAX_IEffectParameters*)parameters;
- (void)SetController:(AAX_IController*)controller;
- (void)SetViewContainerOnViews:(AAX_IViewContainer*)viewContainer;
- (void)SetTransport:(AAX_ITransport*)transport;
- (AAX_IController*)Controller;

// Nothing reads the number.
- (void)SetTrackNo:(std::int32_t)trackNo;

// Ends whatever edit is in progress in the window, as a change of focus does: the fields hold what
// they show, and the timecode entries are committed. Call it before fields are read or disabled. A
// field that is disabled in the middle of an edit loses the typed text.
- (void)commitTypedText;

@end

// Loading a project into the model: Velmora_ViewControllerLoading.mm.
@interface Velmora_ViewController (Loading)

// Copies the path of the ADL file, in UTF-8 and terminated, into a buffer that must be large
// enough for it.
- (void)GetAdlFileName:(char*)buffer;

// Loads the file that FileNameTextField names; answers in errorMessageLabel and in the tables, and
// posts VelmoraDidLoadFileNotification at the end.
- (void)LoadFile;

// Why the last load failed; null after a good one and before the first. Valid until the next load.
// For shells that say more than the view's "File NG.".
- (const velmora::LoadFailure*)loadFailure;

// Builds the event rows anew and shows them.
- (void)setupEventList;

- (IBAction)SelectFileButton_Click:(id)sender;
- (IBAction)SelectFolderButton_Click:(id)sender;

@end

// Data source and delegate of the four tables: Velmora_ViewControllerTables.mm.
@interface Velmora_ViewController (Tables)

- (NSInteger)numberOfRowsInTableView:(NSTableView*)tableView;
- (id)tableView:(NSTableView*)tableView
    objectValueForTableColumn:(NSTableColumn*)column
                          row:(NSInteger)row;
- (void)tableView:(NSTableView*)tableView
    setObjectValue:(id)value
    forTableColumn:(NSTableColumn*)column
               row:(NSInteger)row;
- (void)tableView:(NSTableView*)tableView
    willDisplayCell:(id)cell
     forTableColumn:(NSTableColumn*)column
                row:(NSInteger)row;
- (CGFloat)tableView:(NSTableView*)tableView heightOfRow:(NSInteger)row;
- (BOOL)tableView:(NSTableView*)tableView shouldSelectRow:(NSInteger)row;
- (void)tableViewSelectionDidChange:(NSNotification*)notification;

@end

// The spot: Velmora_ViewControllerSpot.mm.
@interface Velmora_ViewController (Spot)

// Starts a spot, or aborts the one that runs.
- (IBAction)DoSpot:(id)sender;

// Asks the worker to stop and enables the controls. The button stays on Cancel, and its next press
// only brings it back. If the request comes too late to stop anything, the end of the spot does so.
- (IBAction)SpotCancelButton_Click:(id)sender;

// The body of a worker's thread: runs the spot of the worker whose thread this is.
- (void)Thread;

// Shows thread_progress; the number is not looked at.
- (void)progress:(NSNumber*)number;

// A report of the latest worker: the steps done, or -1 at its end, when the controls and the button
// come back. An aborted worker reports only an end that it has reached all the same.
- (void)showProgress:(std::int32_t)steps of:(NSNumber*)number;

@end

// The model's fields under their names: Velmora_ViewControllerModel.mm. The arrays read through to
// the model, row by row; the boxes in trackEnable and eventEnable are the texts "1" and "0", and
// NSNull for the event of a track that is off.
@interface Velmora_ViewController (Model)

- (velmora::AES31Project*)project;
- (std::int32_t)TrackNo;
- (std::int32_t)numEvents;
- (std::int32_t)minTrack;
- (std::int32_t)maxTrack;
- (std::int32_t)trackCount;
- (std::int32_t)enableEvents;
- (const char*)firstEvent;
- (const char*)lastEvent;
- (NSArray*)ProjectInfomation;
- (NSArray*)trackEnable;
- (NSArray*)trackStart;
- (NSArray*)trackEnd;
- (NSArray*)eventEnable;
- (NSArray*)eventTypes;
- (NSArray*)eventNumbers;
- (NSArray*)eventTrack;
- (NSArray*)eventCh;
- (NSArray*)eventIn;
- (NSArray*)eventOut;
- (NSArray*)eventName;
- (NSArray*)eventFound;

@end
