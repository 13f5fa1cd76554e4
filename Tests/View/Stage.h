#pragma once

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

#include <string>
#include <vector>

#include "Desktop/Logic/CommandLine.h"
#import "Desktop/Shell/SessionBar.h"
#import "Desktop/Shell/ShellController.h"
#import "Desktop/Timeline/TimelinePane.h"
#import "View/TextView.h"
#import "View/Velmora_ViewController.h"

// The window under test: the shell as its program starts it, and the view that it loaded.
namespace velmora::view {

// An instance variable that no method hands out.
template <class T>
T Variable(id object, const char* name) {
  Ivar variable = class_getInstanceVariable(object_getClass(object), name);
  NSCAssert(variable != nullptr, @"no such variable");
  return *reinterpret_cast<T*>(reinterpret_cast<char*>(object) + ivar_getOffset(variable));
}

// Opens the shell and returns when its window is up, which may not have the keys yet. Once in a
// process.
void StartShellAtOnce(const desktop::ShellOptions& options);
// The same, and waits until the window takes keys.
void StartShell(const desktop::ShellOptions& options = {});
// The same with a project loaded.
void StartShellWith(const std::string& project);

// What the program gives as its shell's bundle.
std::string BundlePath();

ShellController* Shell();
NSWindow* Window();
Velmora_ViewController* Controller();
SessionBar* Bar();
TimelinePane* Timeline();

// The tables by the names of the outlets.
NSTableView* TrackTable();
NSTableView* EventTable();
NSTableView* ProjectTable();
NSTableView* WidthTable();

TextView* OffsetEntry();
TextView* StartEntry();

// Everything below asks on the main thread by itself.

std::string FieldText(NSTextField* field);
std::string Message();     // the view's one line
std::string StatusText();  // the shell's
std::string EntryText(TextView* entry);

// What the table asks for when it draws.
std::string CellText(NSTableView* table, NSString* column, NSInteger row);
std::vector<std::string> ColumnTexts(NSTableView* table, NSString* column);
// All cells of a table, line by line.
std::string TableText(NSTableView* table);
NSInteger Rows(NSTableView* table);

// A press on the box or cell of a row, which must be on view.
void ClickCell(NSTableView* table, NSString* column, NSInteger row);

// Counts the reloads of tables, from the watch on.
void WatchReloads();
int Reloads();

// Loads without a hand on the button.
void LoadPath(const std::string& path);

NSInteger SpotTag();
std::int32_t Progress();  // thread_progress
bool HasProject();
std::size_t LandedRegions();  // in the timeline
// Whether each of the eleven controls takes input, in the order in which a spot freezes them.
std::vector<bool> ControlsEnabled();
// The name of the picture's file, empty for no picture. Watched from before the shell starts.
std::string SpotPicture();
void WatchPictures();

// Whether the progress indicator was started last or stopped, from the watch on.
void WatchIndicator();
bool IsAnimating();
double Indicator();

void Choose(NSMatrix* matrix, NSInteger tag);
void PressSpot();

// Every view of a class below `root`.
std::vector<NSView*> ViewsOfClass(NSView* root, Class cls);

}  // namespace velmora::view
