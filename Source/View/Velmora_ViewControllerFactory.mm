#import "View/Velmora_ViewControllerFactory.h"

#import <AppKit/AppKit.h>

#import "View/Velmora_ViewController.h"

// A bundle without its nib is broken, and a shell that got no controller would only fail later and
// less clearly: the assertion below stands in release builds too.
#undef NDEBUG
#include <cassert>

@implementation Velmora_ViewControllerFactory

+ (Velmora_ViewController*)viewControllerFromBundle:(NSBundle*)bundle
                                   effectParameters:(AAX_IEffectParameters*)effectParameters
                                         controller:(AAX_IController*)controller {
  Velmora_ViewController* viewController =
      [[Velmora_ViewController alloc] initWithNibName:@"Velmora_View" bundle:bundle];

  // The nib is loaded here, and not when the shell first asks for the view: on some platforms a
  // controller that lacks its nib still is an object, only one without a view.
  if ([viewController view] == nil) {
    [viewController release];
    viewController = nil;
  }
  assert(viewController != nil);

  [viewController SetParameters:effectParameters];
  [viewController SetController:controller];
  return viewController;
}

@end
