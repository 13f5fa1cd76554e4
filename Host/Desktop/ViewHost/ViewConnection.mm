#import "Desktop/ViewHost/ViewConnection.h"

#import "Desktop/ViewHost/LoadObserver.h"
#import "Desktop/Shell/ShellText.h"
#include "View/HostInterfaces.h"

using namespace velmora::desktop;

namespace {

// What a plug-in hands over beside its two answering objects; this shell has no parameters.
class EffectParameters : public AAX_IEffectParameters {};
class ViewContainer : public AAX_IViewContainer {};

EffectParameters effectParameters;
ViewContainer viewContainer;

}  // namespace

// What this shell calls in the bundle, whose classes it knows by name alone. The first two are
// answered by classes, which the compiler sees as objects like any other.
@protocol DesktopViewFactory
- (NSViewController*)viewControllerFromBundle:(NSBundle*)bundle
                             effectParameters:(AAX_IEffectParameters*)parameters
                                   controller:(AAX_IController*)controller;
@end

@protocol DesktopHostConnection
- (void)setRegionHost:(velmora::RegionHost*)host;
@end

@protocol DesktopView
- (void)SetTransport:(AAX_ITransport*)transport;
- (void)SetViewContainerOnViews:(AAX_IViewContainer*)container;
- (NSTextField*)FileNameTextField;
- (NSButton*)spotButton;
- (void)LoadFile;
- (void)DoSpot:(id)sender;
- (velmora::AES31Project*)project;
@end

@interface ViewConnection (Private)
- (BOOL)loadBundleAtPath:(NSString*)path
                settings:(SessionSettings*)settings
                    host:(velmora::RegionHost*)host
                   error:(std::string*)error;
- (id<DesktopView>)desktopView;
@end

@implementation ViewConnection

- (id)initWithBundleAtPath:(NSString*)path
                  settings:(SessionSettings*)settings
                      host:(velmora::RegionHost*)host
                     error:(std::string*)error {
  self = [super init];
  if (self == nil) return nil;
  if (![self loadBundleAtPath:path settings:settings host:host error:error]) {
    [self release];
    return nil;
  }
  return self;
}

- (void)dealloc {
  [self close];
  [super dealloc];
}

- (NSView*)view {
  return [controller view];
}

- (void)loadFile:(NSString*)path {
  [[[self desktopView] FileNameTextField] setStringValue:path];
  [[self desktopView] LoadFile];
}

- (ProjectFacts)facts {
  const std::string path = TextOf([[[self desktopView] FileNameTextField] stringValue]);
  velmora::AES31Project* project = [[self desktopView] project];
  if (project != nullptr) return GatherFacts(path, project, std::nullopt);
  // The view keeps no project that did not load, nor why: another try tells the reason.
  bool ok = false;
  const velmora::AES31Project failed(path.c_str(), nullptr, &ok);
  return GatherFacts(path, nullptr, failed.failure);
}

- (void)spot {
  [[self desktopView] DoSpot:self];
}

- (BOOL)isSpotRunning {
  return [[[self desktopView] spotButton] tag] == 1;
}

- (void)close {
  if (controller == nil) return;
  if ([self isSpotRunning]) [self spot];
  [[controller view] removeFromSuperview];
  [controller release];
  controller = nil;
}

@end

@implementation ViewConnection (Private)

- (BOOL)loadBundleAtPath:(NSString*)path
                settings:(SessionSettings*)settings
                    host:(velmora::RegionHost*)host
                   error:(std::string*)error {
  // The toolkit's connection to its notification service must stand before the bundle exchanges
  // methods: the run time mixes up decoders of classes that nobody has used by then.
  [NSWorkspace sharedWorkspace];
  NSBundle* bundle = [NSBundle bundleWithPath:path];
  if (bundle == nil) {
    *error = "there is no bundle at " + TextOf(path);
    return NO;
  }
  if (![bundle load] || [bundle principalClass] == Nil) {
    *error = "the bundle at " + TextOf(path) + " does not load";
    return NO;
  }
  if (![[bundle principalClass]
          respondsToSelector:@selector(viewControllerFromBundle:effectParameters:controller:)]) {
    *error = "the bundle at " + TextOf(path) + " offers no view";
    return NO;
  }
  const Class connection = NSClassFromString(@"VelmoraHostConnection");
  [(id<DesktopHostConnection>)(id)connection setRegionHost:host];

  controller = [(id<DesktopViewFactory>)(id)[bundle principalClass]
      viewControllerFromBundle:bundle
              effectParameters:&effectParameters
                    controller:settings];
  [LoadObserver watchClass:[controller class]];
  [[self desktopView] SetTransport:settings];
  [[self desktopView] SetViewContainerOnViews:&viewContainer];
  if ([controller view] == nil) {
    *error = "the view of the bundle at " + TextOf(path) + " is missing";
    return NO;
  }
  return YES;
}

- (id<DesktopView>)desktopView {
  return (id<DesktopView>)controller;
}

@end
