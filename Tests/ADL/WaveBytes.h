#pragma once

#include <string>

namespace velmora::test {

/// Three frames of 16-bit mono at 48 kHz.
inline std::string SmallWave() {
  using std::string_literals::operator""s;
  return "RIFF"
         "\x2A\x00\x00\x00"  // 42 bytes follow
         "WAVE"
         "fmt "
         "\x10\x00\x00\x00"  // 16 bytes
         "\x01\x00"          // integer PCM
         "\x01\x00"          // 1 channel
         "\x80\xBB\x00\x00"  // 48000 frames per second
         "\x00\x77\x01\x00"  // 96000 bytes per second
         "\x02\x00"          // 2 bytes a frame
         "\x10\x00"          // 16 bits a sample
         "data"
         "\x06\x00\x00\x00"  // 6 bytes
         "\x01\x00"
         "\xFF\xFF"
         "\x00\x80"s;
}

}  // namespace velmora::test
