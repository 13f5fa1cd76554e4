#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "../../Tests/Support/WaveBytes.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

// A tenth of a second at 48 kHz.
constexpr std::size_t kFrames = 4800;

std::string Sound(const test::WaveFormat& format) {
  std::vector<std::int32_t> samples(kFrames * format.channels);
  std::int32_t value = 0;
  for (std::int32_t& sample : samples) sample = (value += 37) % 20000;
  return test::PlainWave(format, samples);
}

}  // namespace

void WriteSounds(const WorkFolder& folder) {
  folder.Write("one.wav", Sound({.bits = 24}));
  folder.Write("two.wav", Sound({.bits = 16}));
  folder.Write("wide.wav", Sound({.channels = 2, .bits = 24}));
  folder.Write("fast.wav", Sound({.sampleRate = 44100, .bits = 24}));
  folder.Write("s/float.wav", test::WaveBytes()
                                  .Format({.bits = 32, .formatTag = 3})
                                  .Data(std::string(kFrames * 4, '\0'))
                                  .Bytes());
  folder.Write("s/late.wav", test::WaveBytes()
                                 .Format({.bits = 24})
                                 .Bext({.timeLow = 480000})
                                 .Data(std::string(kFrames * 3, '\x12'))
                                 .Bytes());
  folder.Write("s/noise.wav", "RIFF");
}

}  // namespace velmora::fuzz
