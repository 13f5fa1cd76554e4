#include <cstring>
#include <vector>

#include "Model/ViewModel.h"
#import "View/TextConversion.h"
#import "View/Velmora_ViewController.h"

@interface Velmora_ViewController (LoadingSteps)
- (void)loadAndShow;
- (void)showEventList;
- (NSString*)pathFromPanel:(NSOpenPanel*)panel;
@end

@implementation Velmora_ViewController (Loading)

- (void)GetAdlFileName:(char*)buffer {
  std::strcpy(buffer, TextFromString([FileNameTextField stringValue]).c_str());
}

- (void)LoadFile {
  [self loadAndShow];
  [[NSNotificationCenter defaultCenter] postNotificationName:VelmoraDidLoadFileNotification
                                                      object:self];
}

- (const velmora::LoadFailure*)loadFailure {
  const bool failed = model->project == nullptr && model->loadFailure.has_value();
  return failed ? &*model->loadFailure : nullptr;
}

- (void)loadAndShow {
  [FileNameTextField validateEditing];  // a path that is still being typed counts
  const std::size_t length = TextFromString([FileNameTextField stringValue]).size();
  std::vector<char> path(length + 1);
  [self GetAdlFileName:path.data()];

  const bool loaded = model->LoadFile(path.data());
  [errorMessageLabel setStringValue:StringFromText(model->errorMessage)];
  if (!loaded) return;
  [_projectInfomationTableView reloadData];
  if (!model->HasCuts()) return;  // no rows were built: the tables stay as they are

  [totalStartTimeTextField setStringValue:StringFromText(model->totalStartTime)];
  [totalEndTimeTextField setStringValue:StringFromText(model->totalEndTime)];
  [self showEventList];
  [_trackTableView reloadData];
  [_numberOfTracksTableView reloadData];
  [_projectInfomationTableView reloadData];
}

- (void)setupEventList {
  model->setupEventList();
  [self showEventList];
}

- (void)showEventList {
  [errorMessageLabel setStringValue:StringFromText(model->errorMessage)];
  [_eventListTableView reloadData];
}

- (IBAction)SelectFileButton_Click:(id)sender {
  NSString* path = [self pathFromPanel:[NSOpenPanel openPanel]];
  if (path == nil) return;
  [FileNameTextField setStringValue:path];
  [self LoadFile];
}

- (IBAction)SelectFolderButton_Click:(id)sender {
  NSOpenPanel* panel = [NSOpenPanel openPanel];
  [panel setCanChooseFiles:NO];
  [panel setCanChooseDirectories:YES];
  NSString* path = [self pathFromPanel:panel];
  if (path != nil) [CopyFolderNameTextField setStringValue:path];
}

// The path that was chosen, nil when the panel was cancelled. An edit that is in progress ends
// first, or its text would come back over the chosen path.
- (NSString*)pathFromPanel:(NSOpenPanel*)panel {
  [self commitTypedText];
  NSArray* fileTypes = [NSArray arrayWithObjects:@"adl", nil];
  if ([panel runModalForTypes:fileTypes] != NSOKButton) return nil;
  return [panel filename];
}

@end
