#pragma once

#import <Foundation/Foundation.h>

class AAX_IController;
class AAX_IEffectParameters;
@class Velmora_ViewController;

// Where a plug-in's shell gets the view from.
@interface Velmora_ViewControllerFactory : NSObject

// Makes a view controller from the nib "Velmora_View" in `bundle`; the caller owns it. The host
// objects are not owned and must outlive it. Ends the process when the nib cannot be loaded.
+ (Velmora_ViewController*)viewControllerFromBundle:(NSBundle*)bundle
                                   effectParameters:(AAX_IEffectParameters*)effectParameters
                                         controller:(AAX_IController*)controller;

@end
