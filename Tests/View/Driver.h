#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

// How a scenario, on its own thread, works the window: questions go to the main thread, hands go to
// the X server.
namespace velmora::view {

// Runs `work` on the main thread, inside modal and tracking loops too, and waits for it.
void OnMain(const std::function<void()>& work);

template <class Question>
auto Ask(const Question& question) {
  decltype(question()) answer{};
  OnMain([&] { answer = question(); });
  return answer;
}

// Runs `work` on the main thread without waiting: for what runs a modal panel.
void PostToMain(std::function<void()> work);

// Makes a modal loop look whether it is to end.
void WakeMain();

// Real input. Places are in the view's own coordinates; the main window is the one with the view.
void Click(NSView* view, NSRect place);
void Click(NSView* view);
// The press comes in while the main thread asks the display something, and is read with the answer.
void ClickReadWithAnswer(NSView* view);
void MiddleClick(NSView* view);
// Presses at one place, moves and lets go at another.
void Drag(NSView* view, NSPoint from, NSPoint to);
void TurnWheel(NSView* view, NSPoint place, int notches);  // up if positive
// The same while a key is held down: "ctrl", "shift".
void TurnWheelWith(const std::string& key, NSView* view, NSPoint place, int notches);
// A key by its X name: "Return", "KP_Enter", "minus", "alt+F4".
void Key(const std::string& name);
// The same for a key that keeps the main thread busy.
void KeyUnanswered(const std::string& name);
void Keys(std::initializer_list<const char*> names);
// A text by its keys, one after the other. ASCII only.
void TypeText(const std::string& text);

// A key event that no keyboard has, given to the first responder's window.
void SendCharacters(NSWindow* window, NSString* characters);

void Pause(double seconds);

// Writes the content of a window into the folder of screenshots.
void Screenshot(NSWindow* window, const std::string& name);

// What is drawn of a view, read back from the display. Owned by the caller.
NSBitmapImageRep* DrawnPixels(NSView* view);

NSString* StringOf(const std::string& text);
std::string TextOf(NSString* string);

}  // namespace velmora::view
