#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "Support/ProjectBuilder.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

/// Projects to load, in folders of their own: a spot makes files beside the sources.
namespace velmora::view {

/// A copy of the project's examples.
inline std::string CopyOfExample(const test::TemporaryFolder& folder, const std::string& name) {
  std::filesystem::copy(
      VELMORA_EXAMPLES, folder.Path("Examples"),
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::skip_existing);
  return folder.Path("Examples/" + name);
}

/// A wave file of 24 bits, 0.25 s at 48 kHz.
inline std::string ShortWave(std::uint16_t bits = 24) {
  test::WaveFormat format;
  format.bits = bits;
  return test::PlainWave(format, std::vector<std::int32_t>(12000, 1234));
}

/// `cuts` cuts on `tracks` tracks from one source that is there, each a tenth of a second.
inline std::string SimpleProject(const test::TemporaryFolder& folder, std::int32_t cuts,
                                 std::int32_t tracks, const std::string& name = "simple.adl") {
  folder.Write("tone.wav", ShortWave());
  test::ProjectBuilder project;
  project.Source(1, "tone.wav");
  for (std::int32_t i = 0; i < cuts; ++i) {
    test::CutSpec cut;
    cut.track = 1 + i % tracks;
    cut.destIn = test::Stamp(4800LL * i);
    cut.destOut = test::Stamp(4800LL * (i + 1));
    project.Cut(cut);
  }
  return project.WriteTo(folder, name);
}

}  // namespace velmora::view
