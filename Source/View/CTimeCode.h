#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>

#include "Timecode/TimecodeEntry.h"

// The value of one timecode field: hours, mins, secs, frames, sgn, sign and max_frames, all held by
// the portable value, which also parses, limits and composes.
@interface CTimeCode : NSObject {
  velmora::TimecodeValue value;
}

- (id)init;

// Stores the four numbers where the pointers say.
// clang-format off
- (void)GetTimeCode:(std::int32_t*)hours
                   :(std::int32_t*)mins
                   :(std::int32_t*)secs
                   :(std::int32_t*)frames;
// clang-format on

// Takes the four numbers as they are: no limit, and the sign stays.
// clang-format off
- (void)SetTimeCode:(std::int32_t)hours
                   :(std::int32_t)mins
                   :(std::int32_t)secs
                   :(std::int32_t)frames;
// clang-format on

- (void)SetUseSign:(BOOL)flag;
- (BOOL)GetUseSign;

// Frames per second that limit the frames field, 30 at first.
- (void)SetMaxFrames:(std::int32_t)frames;

// Writes the text form, terminated, into a buffer of at least 64 bytes; a limited value needs 13.
- (void)ComposeString:(char*)buffer;

// Parses a text and limits it into the value.
- (void)DigestString:(const char*)text;

- (const velmora::TimecodeValue&)value;

@end
