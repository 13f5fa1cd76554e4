#pragma once

#import <Foundation/Foundation.h>

// The main thread's run loop, whatever it is at: a modal panel and a pressed mouse included.
namespace velmora::desktop {

// Sends a message to an object on the main thread, with nil as its argument, and does not wait.
// From any thread. The object is retained until the message has come.
void SendToMain(id receiver, SEL selector);

void AddToAllModes(NSTimer* timer);

}  // namespace velmora::desktop
