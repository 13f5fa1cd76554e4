#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Session/HeardSession.h"
#include "Session/SessionTarget.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {

/// What a target is tested with: wave files and a session of regions on them.
class TargetMaterial {
 public:
  /// A wave file of `frames` frames of 16 bits. Returns its path.
  std::string Wave(std::string_view name, std::int64_t frames = 1000, std::uint32_t rate = 48000,
                   std::uint16_t channels = 1) const {
    WaveFormat format;
    format.sampleRate = rate;
    format.channels = channels;
    const std::vector<std::int32_t> samples(static_cast<std::size_t>(frames) * channels, 7);
    return folder.Write(name, PlainWave(format, samples));
  }

  /// The same of 8 bits, mono, of 50 frames.
  std::string WaveOf8Bits(std::string_view name) const {
    WaveFormat format;
    format.bits = 8;
    return folder.Write(name, PlainWave(format, std::vector<std::int32_t>(50, 7)));
  }

  /// Puts a region of `length` samples, from sample `start` of its file on. Returns its index.
  std::size_t Place(const std::string& path, std::int64_t position, std::int64_t length,
                    host::RegionShape shape = {}, std::int64_t track = 0, std::int64_t start = 0,
                    const std::string& name = "region") {
    const std::size_t region =
        session.Place({track, position, start, start + length, 1, path, name});
    session.Shape(region, shape);
    return region;
  }

  /// Writes the session as it stands.
  host::TargetOutcome Write(host::SessionTarget& target,
                            const host::TargetProgress& progress = {}) const {
    const host::HeardSession heard(session);
    return target.Write({session, heard, rates, record}, progress);
  }

  /// How many files and folders there are beside the wave files.
  [[nodiscard]] std::size_t EntriesOf(std::string_view name) const {
    namespace fs = std::filesystem;
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder.Path(name)), fs::directory_iterator()));
  }

  TemporaryFolder folder;
  host::Session session;
  SessionRates rates;  ///< 48 kHz
  host::SpotRecord record;
};

}  // namespace velmora::test
