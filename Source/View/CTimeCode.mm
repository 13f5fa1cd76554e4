#import "View/CTimeCode.h"

#include <cstring>
#include <string>

@implementation CTimeCode

- (id)init {
  self = [super init];
  if (self != nil) value = velmora::TimecodeValue();
  return self;
}

// clang-format off
- (void)GetTimeCode:(std::int32_t*)hours
                   :(std::int32_t*)mins
                   :(std::int32_t*)secs
                   :(std::int32_t*)frames {
  // clang-format on
  *hours = value.hours;
  *mins = value.mins;
  *secs = value.secs;
  *frames = value.frames;
}

// clang-format off
- (void)SetTimeCode:(std::int32_t)hours
                   :(std::int32_t)mins
                   :(std::int32_t)secs
                   :(std::int32_t)frames {
  // clang-format on
  value.hours = hours;
  value.mins = mins;
  value.secs = secs;
  value.frames = frames;
}

- (void)SetUseSign:(BOOL)flag {
  value.sign = flag;
}

- (BOOL)GetUseSign {
  return value.sign;
}

- (void)SetMaxFrames:(std::int32_t)frames {
  value.max_frames = frames;
}

- (void)ComposeString:(char*)buffer {
  std::strcpy(buffer, value.ComposeString().c_str());
}

- (void)DigestString:(const char*)text {
  value.DigestString(text);
}

- (const velmora::TimecodeValue&)value {
  return value;
}

@end
