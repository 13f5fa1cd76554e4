#pragma once

#import <AppKit/AppKit.h>

#include "Session/SessionPreset.h"

// The strip above the view: the session's sample rate and frame rate, and what it holds.
@interface SessionBar : NSView {
  NSPopUpButton* rateMenu;
  NSPopUpButton* frameRateMenu;
  NSButton* clearButton;
  NSTextField* summaryField;
  id target;
  SEL ratesAction;
}

// `ratesChanged` is sent when the user chooses another rate, `clear` by the button that empties the
// session. The target is not retained.
- (id)initWithFrame:(NSRect)frame
             target:(id)aTarget
       ratesChanged:(SEL)ratesChanged
              clear:(SEL)clear;

- (velmora::host::SessionRates)rates;
// Chooses the rates without sending an action; a rate that the menu lacks is added to it.
- (void)setRates:(const velmora::host::SessionRates&)rates;

// What the session holds, in words; empty for an empty session.
- (void)setSummary:(NSString*)summary;

@end
