#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "Ardour/ArdourKind.h"
#include "Ardour/ArdourProgram.h"
#include "Ardour/ArdourTarget.h"
#include "Bounce/BounceFixture.h"
#include "Support/Witness.h"

namespace velmora::ardour {

/// One session, what Ardour has of it, and what a bounce makes of it.
class ArdourFixture : public bounce::BounceFixture {
 public:
  /// Makes the session with the Ardour that is installed.
  [[nodiscard]] host::TargetOutcome Make(const std::string& path,
                                         const host::TargetProgress& progress = {}) const {
    host::ClaimedTarget claimed = kArdourSessionKind.claim(path, {});
    EXPECT_EQ(claimed.complaint, "");
    if (claimed.target == nullptr) return {claimed.complaint, {}, {}};
    const host::TargetOutcome outcome = Write(*claimed.target, progress);
    if (outcome.trouble.empty()) ExpectTimecode(path);
    return outcome;
  }

  [[nodiscard]] static pugi::xml_document Xml(const std::string& session) {
    pugi::xml_document xml;
    const std::string name = std::filesystem::path(session).filename();
    if (!xml.load_file((session + "/" + name + ".ardour").c_str())) {
      EXPECT_TRUE(xml.load_file((session + "/Session.ardour").c_str())) << session;
    }
    return xml;
  }

  /// Makes it with a stand-in for Ardour: a shell script.
  [[nodiscard]] host::TargetOutcome MakeWith(
      const std::string& commands, std::chrono::milliseconds patience = std::chrono::seconds(60),
      const host::TargetProgress& progress = {}) const {
    const std::string program = folder_.Write("stand-in", "#!/bin/sh\n" + commands);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    ArdourTarget target(folder_.Path("made"), program, patience);
    return Write(target, progress);
  }

  /// Holds the session's audio, read through Ardour in blocks, against the bounce of every track.
  /// Returns the largest difference, 1 being full scale.
  [[nodiscard]] double LargestDifference(const std::string& session, std::int64_t block) const {
    const std::string tracks = folder_.Path("bounce"), read = folder_.Path("read");
    const host::TargetOutcome outcome =
        Bounce(bounce::kBounceTracksKind, tracks, host::BounceDepth::Float32);
    EXPECT_EQ(outcome.trouble, "");
    std::filesystem::create_directory(read);
    const host::SessionSummary span = session_.Summary();
    static_cast<void>(
        test::OutputOf(test::Quoted(FindArdour().program) + " " +
                       test::Quoted(VELMORA_READ_SESSION) + " " + test::Quoted(session) + " " +
                       test::Quoted(std::filesystem::path(session).filename().string()) + " " +
                       std::to_string(span.first) + " " + std::to_string(span.end) + " " +
                       test::Quoted(read) + " " + std::to_string(block) + " 2>&1"));
    double largest = 0;
    for (const std::int64_t track : session_.Tracks()) {
      const std::string name = "Track " + std::to_string(record_.TrackNumber(track));
      const std::vector<float> bounced = Floats(AudioOf(tracks + "/" + name + ".wav"));
      const auto pathOf = [&](std::size_t channel) {
        return read + "/" + name + "." + std::to_string(channel);
      };
      std::size_t width = 0;
      while (std::filesystem::exists(pathOf(width))) ++width;
      EXPECT_GT(width, 0u) << name;
      for (std::size_t channel = 0; channel < width; ++channel) {
        const std::vector<float> heard = Floats(test::TemporaryFolder::Read(pathOf(channel)));
        EXPECT_EQ(heard.size() * width, bounced.size()) << name;
        if (heard.size() * width != bounced.size()) return 1;
        for (std::size_t i = 0; i < heard.size(); ++i) {
          if (isIgnored_ && isIgnored_(track, span.first + static_cast<std::int64_t>(i))) continue;
          const double difference = std::abs(double{heard[i]} - bounced[i * width + channel]);
          largest = std::max(largest, difference);
        }
      }
    }
    std::filesystem::remove_all(tracks);
    std::filesystem::remove_all(read);
    return largest;
  }

  /// Whether a sample is not to be compared: Ardour reads a region's last sample, alone, as
  /// silence.
  std::function<bool(std::int64_t track, std::int64_t position)> isIgnored_;

 private:
  /// What Ardour has saved after reading it: a word that it does not know would not come back.
  void ExpectTimecode(const std::string& session) const {
    static const char* const kFormats[] = {"timecode_30",     "timecode_24",       "timecode_25",
                                           "timecode_2997",   "timecode_2997drop", "timecode_30",
                                           "timecode_30drop", "timecode_23976"};
    const pugi::xml_document xml = Xml(session);
    EXPECT_STREQ(xml.child("Session")
                     .child("Config")
                     .find_child_by_attribute("name", "timecode-format")
                     .attribute("value")
                     .value(),
                 kFormats[rates_.frameRate]);
  }

  static std::vector<float> Floats(const std::string& bytes) {
    std::vector<float> floats(bytes.size() / sizeof(float));
    std::memcpy(floats.data(), bytes.data(), floats.size() * sizeof(float));
    return floats;
  }
};

}  // namespace velmora::ardour
