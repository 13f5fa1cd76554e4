#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Detaches a thread that runs `selector` of `target` with `argument`. NO if there is no thread to
// be had: then the log has the reason, nothing runs, and the platform may keep the target for ever.
//
// The platform reports this by an exception. It is caught in plain Objective-C, because catching it
// in Objective-C++ ends the process with some compilers.
BOOL VelmoraDetachThread(SEL selector, id target, id argument);

#ifdef __cplusplus
}
#endif
