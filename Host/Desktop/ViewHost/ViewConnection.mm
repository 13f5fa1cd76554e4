#import "Desktop/ViewHost/ViewConnection.h"

#include "View/HostInterfaces.h"
#import "View/TextConversion.h"
#import "View/Velmora_ViewController.h"

using namespace velmora::desktop;

namespace {

// What a plug-in hands over beside its two answering objects; this shell has no parameters.
class EffectParameters : public AAX_IEffectParameters {};
class ViewContainer : public AAX_IViewContainer {};

EffectParameters effectParameters;
ViewContainer viewContainer;

}  // namespace

// What this shell calls of the bundle's classes, which it knows by name alone: a reference to a
// class itself would have to be linked. Both are answered by classes, which the compiler sees as
// objects like any other.
@protocol DesktopViewFactory
- (NSViewController*)viewControllerFromBundle:(NSBundle*)bundle
                             effectParameters:(AAX_IEffectParameters*)parameters
                                   controller:(AAX_IController*)controller;
@end

@protocol DesktopHostConnection
- (void)setRegionHost:(velmora::RegionHost*)host;
- (void)setSpotFollower:(velmora::SpotFollower*)follower;
@end

@interface ViewConnection (Private)
- (BOOL)loadBundleAtPath:(NSString*)path
                settings:(SessionSettings*)settings
                    host:(velmora::RegionHost*)host
                follower:(velmora::SpotFollower*)follower
                   error:(std::string*)error;
@end

@implementation ViewConnection

+ (NSString*)didLoadNotification {
  return VelmoraDidLoadFileNotification;
}

- (id)initWithBundleAtPath:(NSString*)path
                  settings:(SessionSettings*)settings
                      host:(velmora::RegionHost*)host
                  follower:(velmora::SpotFollower*)follower
                     error:(std::string*)error {
  self = [super init];
  if (self == nil) return nil;
  if (![self loadBundleAtPath:path settings:settings host:host follower:follower error:error]) {
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
  [[controller FileNameTextField] setStringValue:path];
  [controller LoadFile];
}

- (const velmora::AES31Project*)project {
  return [controller project];
}

- (ProjectFacts)facts {
  const std::string path = TextFromString([[controller FileNameTextField] stringValue]);
  return GatherFacts(path, [controller project], [controller loadFailure]);
}

- (void)spot {
  [controller DoSpot:self];
}

- (BOOL)isSpotRunning {
  return [[controller spotButton] tag] == 1;
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
                follower:(velmora::SpotFollower*)follower
                   error:(std::string*)error {
  // The toolkit's connection to its notification service must stand before the bundle exchanges
  // methods: the run time mixes up decoders of classes that nobody has used by then.
  [NSWorkspace sharedWorkspace];
  NSBundle* bundle = [NSBundle bundleWithPath:path];
  if (bundle == nil) {
    *error = "there is no bundle at " + TextFromString(path);
    return NO;
  }
  if (![bundle load] || [bundle principalClass] == Nil) {
    *error = "the bundle at " + TextFromString(path) + " does not load";
    return NO;
  }
  if (![[bundle principalClass]
          respondsToSelector:@selector(viewControllerFromBundle:effectParameters:controller:)]) {
    *error = "the bundle at " + TextFromString(path) + " offers no view";
    return NO;
  }
  const Class connection = NSClassFromString(@"VelmoraHostConnection");
  [(id<DesktopHostConnection>)(id)connection setRegionHost:host];
  [(id<DesktopHostConnection>)(id)connection setSpotFollower:follower];

  controller = (Velmora_ViewController*)[(id<DesktopViewFactory>)(id)[bundle principalClass]
      viewControllerFromBundle:bundle
              effectParameters:&effectParameters
                    controller:settings];
  [controller SetTransport:settings];
  [controller SetViewContainerOnViews:&viewContainer];
  if ([controller view] == nil) {
    *error = "the view of the bundle at " + TextFromString(path) + " is missing";
    return NO;
  }
  return YES;
}

@end
