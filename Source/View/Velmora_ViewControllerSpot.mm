#include <string>
#include <vector>

#include "Model/ViewModel.h"
#include "Spot/SpotChoices.h"
#include "Spot/SpotQueue.h"
#include "Spot/SpotRequest.h"
#include "Timecode/AdlTime.h"
#include "View/HostInterfaces.h"
#import "View/TextConversion.h"
#import "View/TextView.h"
#import "View/ThreadStart.h"
#import "View/VelmoraHostConnection.h"
#import "View/Velmora_ViewController.h"
#import "View/spotThreadClass.h"

// Where the bundle's own resources are found.
static NSString* const kBundleIdentifier = @"org.velmora.VelmoraGUI";

@interface Velmora_ViewController (SpotSteps)
- (void)startSpot;
- (void)abortSpot;
- (float)sessionRate;
- (std::int32_t)sessionFrameRate;
- (void)warnAboutSession;
- (void)runAlert:(const std::string&)text;
- (void)setControlsEnabled:(BOOL)flag;
- (void)setSpotTag:(NSInteger)tag picture:(NSString*)name;
- (NSImage*)picture:(NSString*)name;
- (velmora::SpotOptions)spotOptions;
- (velmora::SharedSpotProject)spotProject;
@end

static std::int32_t SelectedTag(NSMatrix* matrix) {
  return static_cast<std::int32_t>([[matrix selectedCell] tag]);
}

@implementation Velmora_ViewController (Spot)

- (IBAction)DoSpot:(id)sender {
  if (!model->HasCuts()) return;  // no project, or none with anything to place
  if ([spotButton tag] == 1) {
    [self abortSpot];
  } else {
    [[self retain] autorelease];  // an alert may stand while the shell lets go of the view
    [self commitTypedText];       // what stands in the fields while an alert is read is what counts
    [self warnAboutSession];
    if (model->HasCuts()) [self startSpot];
  }
}

- (IBAction)SpotCancelButton_Click:(id)sender {
  thread_abort = YES;
  [spotThread abort];
  [self setControlsEnabled:YES];
}

- (void)Thread {
  [[spotThreadClass current] execute];
}

- (void)progress:(NSNumber*)number {
  if (thread_progress < 0) {
    [spotProgressIndicator setDoubleValue:0.0];
    [spotProgressIndicator stopAnimation:self];
  } else if (thread_progress <= thread_progresstotal) {
    [spotProgressIndicator setDoubleValue:thread_progress];
  }
}

- (void)showProgress:(std::int32_t)steps of:(NSNumber*)number {
  thread_progress = steps;
  if (steps < 0) {
    [self setControlsEnabled:YES];
    [self setSpotTag:0 picture:@"Spot_Off.png"];
  }
  [self progress:number];
}

@end

@implementation Velmora_ViewController (SpotSteps)

- (void)startSpot {
  [self commitTypedText];  // again: a shell may have moved the focus while an alert stood
  const std::int32_t doFades = SelectedTag(fadeDataMatrix);
  const std::int32_t doGain = SelectedTag(gainDataMatrix);

  thread_progress = 0;
  [spotProgressIndicator setDoubleValue:0.0];
  thread_progresstotal = velmora::SpotSteps(model->numEvents, doFades, doGain);
  [spotProgressIndicator setMaxValue:thread_progresstotal];
  [self setControlsEnabled:NO];
  [dummyTextField becomeFirstResponder];
  [spotProgressIndicator startAnimation:self];

  [spotThread release];
  spotThread = [spotThreadClass spotThreadClassCreate:self];
  thread_abort = NO;
  [self setSpotTag:1 picture:@"Cancel_Off.png"];

  // The options are read here, from the controls that were just frozen, so that the worker touches
  // no view object.
  [spotThread setRun:runs->Request([self spotProject], [self spotOptions])
                host:[VelmoraHostConnection regionHost]
            follower:[VelmoraHostConnection spotFollower]];
  if (VelmoraDetachThread(@selector(spotProc:), spotThread, @"first")) return;
  [spotThread dropRun];  // a run without a thread would hold up those after it
  [self abortSpot];
}

// Does not wait for the worker, which stops at its next event and reports no more. If it has none
// left it ends as usual, and its last report finds all this done.
- (void)abortSpot {
  thread_abort = YES;
  [spotThread abort];
  [self setControlsEnabled:YES];
  [self setSpotTag:0 picture:@"Spot_Off.png"];
  thread_progress = -1;
  [spotProgressIndicator stopAnimation:self];
}

- (float)sessionRate {
  float rate = 0;
  if ([self Controller] != nullptr) [self Controller]->GetSampleRate(&rate);
  return rate;
}

- (std::int32_t)sessionFrameRate {
  std::int32_t frameRate = 0;
  std::int32_t offset = 0;
  if (mTransport != nullptr) mTransport->GetTimeCodeInfo(&frameRate, &offset);
  return frameRate;
}

// The host is asked for its timecode only when the alert about the rates has been read: the user
// may have put something right meanwhile.
- (void)warnAboutSession {
  const std::shared_ptr<velmora::AES31Project> project =
      model->project;  // alive through the alerts
  const char* firstEvent = model->firstEvent;
  const float rate = [self sessionRate];
  const bool ratesDiffer = velmora::AdlSampleRate(firstEvent) != static_cast<double>(rate);
  if (ratesDiffer) [self runAlert:velmora::SpotWarnings(firstEvent, rate, 0).front()];

  const std::vector<std::string> warnings =
      velmora::SpotWarnings(firstEvent, rate, [self sessionFrameRate]);
  if (warnings.size() > (ratesDiffer ? 1 : 0)) [self runAlert:warnings.back()];
}

- (void)runAlert:(const std::string&)text {
  NSAlert* alert = [NSAlert alertWithMessageText:StringFromText(text)
                                   defaultButton:@"OK"
                                 alternateButton:nil
                                     otherButton:nil
                       informativeTextWithFormat:@"%@", @""];
  [alert runModal];
}

- (void)setControlsEnabled:(BOOL)flag {
  [FileNameTextField setEnabled:flag];
  [CopyFolderNameTextField setEnabled:flag];
  [cpoySourcecheckBox setEnabled:flag];
  [selectFileButton setEnabled:flag];
  [selectFolderButton setEnabled:flag];
  [spotPsitionMatrix setEnabled:flag];
  [depthMatrix setEnabled:flag];
  [fadeDataMatrix setEnabled:flag];
  [gainDataMatrix setEnabled:flag];
  [offsetTimeText setEnabled:flag];
  [startTimeText setEnabled:flag];
}

- (void)setSpotTag:(NSInteger)tag picture:(NSString*)name {
  NSImage* picture = [self picture:name];
  [spotButton setTag:tag];
  [spotButton setImage:picture];
}

// nil when the picture is missing, which leaves the button without one.
- (NSImage*)picture:(NSString*)name {
  NSString* resources = [[NSBundle bundleWithIdentifier:kBundleIdentifier] resourcePath];
  NSString* bundlePath = [resources stringByAppendingPathComponent:@"KestaneGUI.bundle"];
  NSString* pictures = [[NSBundle bundleWithPath:bundlePath] resourcePath];
  NSString* path = [pictures stringByAppendingPathComponent:name];
  if (path == nil) return nil;
  return [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
}

- (velmora::SpotOptions)spotOptions {
  velmora::SessionRates rates;
  rates.sampleRate = [self sessionRate];
  rates.frameRate = [self sessionFrameRate];
  velmora::SpotChoices choices;
  choices.positionMode = SelectedTag(spotPsitionMatrix);
  choices.fades = SelectedTag(fadeDataMatrix);
  choices.gain = SelectedTag(gainDataMatrix);
  choices.offset = TextFromString([timeOffset stringValue]);
  choices.start = TextFromString([timeStart stringValue]);
  choices.copy = [cpoySourcecheckBox state] != NSOffState;
  choices.depth = SelectedTag(depthMatrix);
  choices.copyFolder = TextFromString([CopyFolderNameTextField stringValue]);
  return velmora::BuildSpotOptions(choices, rates);
}

- (velmora::SharedSpotProject)spotProject {
  velmora::SharedSpotProject work;
  work.project = model->project;
  work.numEvents = model->numEvents;
  work.minTrack = model->minTrack;
  work.firstEvent = model->firstEvent;
  return work;
}

@end
