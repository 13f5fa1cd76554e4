#pragma once

#include <string>
#include <vector>

#include "Spot/SpotFixture.h"

namespace velmora::test {

/// Two 16-bit ramps, `a.wav` from sample 0 of its own time and `b.wav` from sample 1000 of its. A
/// fade of four samples takes quarters of multiples of 16, each of which comes out one below itself
/// for the depth's scale of 32767.
class FadePassTest : public SpotTest {
 protected:
  FadePassTest() { options.doFades = 1; }

  void LoadCuts(const std::vector<CutSpec>& cuts) {
    WriteWave("a.wav", 16, Ramp(200));
    WriteWave("b.wav", 16, Ramp(200));
    ProjectBuilder builder;
    builder.Source(1, "a.wav").Source(2, "b.wav", Stamp(1000)).Source(3, "missing.wav");
    for (const CutSpec& cut : cuts) builder.Cut(cut);
    Load(builder);
  }
  /// The regions of the fade pass: all but the main ones.
  std::vector<Placed> Pieces() const {
    std::vector<Placed> pieces;
    for (const Placed& placed : host.PlacedRegions()) {
      if (placed.name.find('_') != std::string::npos) pieces.push_back(placed);
    }
    return pieces;
  }
  /// Their files alone.
  std::vector<std::string> PieceFiles() const {
    std::vector<std::string> files;
    for (const Placed& piece : Pieces()) files.push_back(piece.file);
    return files;
  }
};

/// Two cuts that make a crossfade of four samples: a.wav under [100, 150), b.wav under [146, 200).
inline std::vector<CutSpec> Crossfading() {
  return {{.source = 1,
           .track = 2,
           .sourceIn = Stamp(20),
           .destIn = Stamp(100),
           .destOut = Stamp(150),
           .outfade = FadeLength(4)},
          {.source = 2,
           .track = 2,
           .sourceIn = Stamp(1030),
           .destIn = Stamp(146),
           .destOut = Stamp(200),
           .infade = FadeLength(4)}};
}

}  // namespace velmora::test
