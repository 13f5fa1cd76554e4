#pragma once

#import <Foundation/Foundation.h>

// Turns an interrupt or a request to terminate into the application's ordinary end, which aborts a
// spot and waits for it. The toolkit's own handler does this inside the signal, where it can come
// to wait for a lock that the interrupted thread holds. A second signal ends the process at once.
@interface SignalWatch : NSObject
// To be called once on the main thread, before any other thread of the program's is started.
+ (void)start;
@end
