#pragma once

#import <AppKit/AppKit.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#import "Desktop/Shell/FindingsDesk.h"
#import "Desktop/Shell/PreparePanel.h"
#include "Support/TemporaryFolder.h"

// The parts of the shell that are about findings and preparations, and projects for them.
namespace velmora::view {

FindingsDesk* Desk();
PreparePanel* PrepareControl();
NSWindow* FindingsWindow();
NSWindow* PrepareWindow();
NSTableView* FindingsTable();
NSTableView* MediaTable();
NSTextField* TargetField();

// The check of the last load has ended.
void WaitForCheck();

NSButton* StatusButton(const char* name);
// The titles of the status line's buttons that are there.
std::string OfferedButtons();

std::string FindingText(NSString* column, NSInteger row);
std::string DetailText();
std::string PrepareMessage();
std::string ResultText();
// How far the preparation that runs is, 0 to 1.
double PreparedShare();

// A button of a window by its title.
NSButton* PanelButton(NSWindow* window, const std::string& title);
bool PanelHas(NSWindow* window, const std::string& title);
void ClickRow(NSTableView* table, NSInteger row);
void ClickHeading(NSString* column);
// On the main thread.
NSString* ClipboardText();
// As the user can: never below the least size.
void Resize(NSWindow* window, NSSize content);

// Holds checks back until it is opened or they are stopped.
class CheckGate {
 public:
  void Open() { open_ = true; }
  void WaitFor(const std::function<bool()>& stopped) const {
    while (!open_ && !stopped()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }

 private:
  std::atomic<bool> open_ = false;
};

// Holds the checks of projects of this name back.
std::shared_ptr<CheckGate> SlowChecks(const std::string& name);
// All checks run out of memory.
void BrokenChecks();
// Holds back all preparations.
std::shared_ptr<CheckGate> SlowPreparations();

// Loads a project with a Japanese name and shows findings that nobody found: long ones, `count` of
// them, of all gravities.
void ShowHandMade(const test::TemporaryFolder& folder, std::int32_t count);

// Cuts with fades whose lengths have a point before the frames.
std::string FadeMarkProject(const test::TemporaryFolder& folder, const std::string& name,
                            std::int32_t cuts);
// One that loads, but loses a cut of two.
std::string MovedToneProject(const test::TemporaryFolder& folder);
// One whose file takes long to convert: a quarter of a gigabyte of float samples.
std::string BigFloatProject(const test::TemporaryFolder& folder);

}  // namespace velmora::view
