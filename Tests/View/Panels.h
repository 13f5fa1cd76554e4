#pragma once

#import <AppKit/AppKit.h>

#include <string>

// The modal windows: alerts and file panels.
namespace velmora::view {

// Waits for a modal window and returns it.
NSWindow* WaitForPanel(const std::string& what);
void WaitForNoPanel(const std::string& what);
bool PanelStands();

// All that a modal window says, its title included, line by line.
std::string PanelText(NSWindow* panel);

// Presses a button of a modal window by its title.
void ClickButton(NSWindow* panel, const std::string& title);

// Selects a path in an open panel. The panel's buttons are then for the mouse.
void SelectInPanel(NSWindow* panel, const std::string& path);

// Reads an alert and presses its OK; returns its text.
std::string ReadAlert(const std::string& what);

}  // namespace velmora::view
