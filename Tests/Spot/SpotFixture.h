#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Spot/RecordingHost.h"
#include "Spot/SpotWorker.h"
#include "Support/ProjectBuilder.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {

/// The start of time: a first event that displaces nothing, neither by compensation nor from the
/// first event on.
inline const std::string kZeroStamp = "00.00:00:00/0000";

struct LoadOutcome {
  bool ok = false;
};

/// A project that notes each event that is fetched.
class RecordingProject : private LoadOutcome, public AES31Project {
 public:
  RecordingProject(const std::string& path, Journal& journal)
      : AES31Project(path.c_str(), nullptr, &ok), journal_(journal) {
    for (AES31Event& event : events) event.eventOn = event.trackOn = 1;
  }
  ~RecordingProject() override { ReleaseRenderedFiles(*this); }

  AES31Event* GetEvent(std::int32_t position) override {
    journal_.push_back("fetch " + std::to_string(position));
    return AES31Project::GetEvent(position);
  }
  bool Loaded() const { return ok; }

 private:
  Journal& journal_;
};

/// An observer that notes each call, and asks for the abort at one of its polls.
class RecordingObserver : public SpotObserver {
 public:
  RecordingObserver(Journal& journal, std::string root)
      : journal_(journal), root_(std::move(root)) {}

  bool Aborted() override {
    journal_.push_back("poll");
    return ++polls == abortAtPoll;
  }
  void Report(std::int32_t progress) override {
    journal_.push_back("report " + std::to_string(progress));
    reports.push_back(progress);
    if (onReport) onReport(progress);
  }
  void Log(const std::string& line) override {
    journal_.push_back("log " + line);
    log.push_back(line);
  }
  void FileMade(FilePass pass, std::int32_t event, const std::string& path,
                std::int32_t status) override {
    static const std::vector<std::string> kPasses = {"depth", "gain", "fade"};
    files.push_back(kPasses.at(static_cast<std::size_t>(pass)) + " " + std::to_string(event) + " " +
                    Shorten(path) + " " + std::to_string(status));
  }
  void RegionTried(std::int32_t event, RegionPiece piece, std::int32_t attempt,
                   std::int32_t status) override {
    tries.push_back(std::to_string(event) + " " + Name(piece) + " " + std::to_string(attempt) +
                    " " + std::to_string(status));
  }
  void RegionGivenUp(std::int32_t event, RegionPiece piece, std::int32_t status) override {
    givenUp.push_back(std::to_string(event) + " " + Name(piece) + " " + std::to_string(status));
  }
  void CutLeftOut(std::int32_t event, const std::string& path) override {
    leftOut.push_back(std::to_string(event) + " " + Shorten(path));
  }

  int polls = 0;
  int abortAtPoll = 0;  ///< from 1; 0 is never
  std::function<void(std::int32_t)> onReport;
  std::vector<std::int32_t> reports;
  std::vector<std::string> log, files, tries, givenUp, leftOut;

 private:
  static std::string Name(RegionPiece piece) {
    static const std::vector<std::string> kPieces = {"main", "infade", "crossfade", "outfade"};
    return kPieces.at(static_cast<std::size_t>(piece));
  }
  std::string Shorten(const std::string& path) const {
    return path.starts_with(root_ + "/") ? path.substr(root_.size() + 1) : path;
  }

  Journal& journal_;
  std::string root_;
};

/// A wave file on which a test can see that it was destroyed.
class CountedFile : public AES31BWF {
 public:
  CountedFile(const std::string& file, int& destroyed)
      : AES31BWF(file.c_str()), destroyed_(destroyed) {}
  ~CountedFile() override { ++destroyed_; }

 private:
  int& destroyed_;
};

/// Sample i of a ramp is 16 (i + 1): its value tells the place that it was taken from. Below 2047
/// frames it fits 16 bits.
inline std::vector<std::int32_t> Ramp(std::int32_t frames) {
  std::vector<std::int32_t> samples;
  for (std::int32_t i = 0; i < frames; ++i) samples.push_back(16 * (i + 1));
  return samples;
}

/// What a made file holds.
struct MadeWave {
  std::int32_t bits = 0;
  std::vector<std::int32_t> samples;

  bool operator==(const MadeWave&) const = default;
};

inline void PrintTo(const MadeWave& wave, std::ostream* out) {
  *out << wave.bits << " bits:";
  for (const std::int32_t sample : wave.samples) *out << ' ' << sample;
}

/// One project in a folder of its own, a session that agrees with it (48000 Hz, 25 frames), and one
/// run after another.
class SpotTest : public testing::Test {
 protected:
  SpotTest() {
    options.sessionRate = 48000;
    options.frameRate = 2;
    options.bitDepth = 16;
    options.depthSuffix = "_16bit";
  }

  void WriteWave(const std::string& name, std::uint16_t bits,
                 const std::vector<std::int32_t>& samples) {
    folder.Write(name, PlainWave({.bits = bits}, samples));
  }
  /// Writes and loads a project with all boxes on.
  void Load(const ProjectBuilder& builder) {
    project = std::make_unique<RecordingProject>(builder.WriteTo(folder), journal);
    ASSERT_TRUE(project->Loaded());
    events = static_cast<std::int32_t>(project->events.size());
    minTrack = 1;
  }
  /// Spots the project. What was recorded before is forgotten, the abort and the answers stay.
  bool Run() {
    journal.clear();
    host.messages.clear();
    observer.polls = 0;
    for (auto* list :
         {&observer.log, &observer.files, &observer.tries, &observer.givenUp, &observer.leftOut}) {
      list->clear();
    }
    observer.reports.clear();
    return RunSpot({project.get(), events, minTrack, firstEvent.c_str()}, options, host, observer);
  }
  void RefuseSends(std::size_t from, std::size_t to, std::int32_t status = -1712) {
    host.answer = [=](std::size_t send) { return send >= from && send <= to ? status : 0; };
  }

  bool Exists(const std::string& name) const { return std::filesystem::exists(folder.Path(name)); }
  /// All regular files below the folder, sorted, but for the project.
  std::vector<std::string> FilesMade(const std::vector<std::string>& sources) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
      const std::string name =
          std::filesystem::relative(entry.path(), folder.Path()).generic_string();
      const bool known = std::find(sources.begin(), sources.end(), name) != sources.end();
      if (entry.is_regular_file() && name != "project.adl" && !known) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  /// Reads a wave file with a plain walk over its chunks.
  MadeWave Wave(const std::string& name) const {
    const std::string bytes = TemporaryFolder::Read(folder.Path(name));
    const auto number = [&](std::size_t at, std::size_t count) {
      std::uint32_t value = 0;
      for (std::size_t i = 0; i < count; ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(at + i)))
                 << (8 * i);
      }
      return value;
    };
    MadeWave wave;
    for (std::size_t at = 12; at + 8 <= bytes.size(); at += 8 + number(at + 4, 4)) {
      const std::string identifier = bytes.substr(at, 4);
      if (identifier == "fmt ") wave.bits = static_cast<std::int32_t>(number(at + 22, 2));
      if (identifier == "data") {
        const std::size_t size = number(at + 4, 4);
        EXPECT_LE(at + 8 + size, bytes.size()) << name << " holds less than it says";
        wave.samples = PcmSamples(wave.bits, std::string_view(bytes).substr(at + 8, size));
      }
    }
    return wave;
  }
  /// The journal with the lines of one kind alone, or of several.
  Journal Only(const std::vector<std::string>& kinds) const {
    Journal kept;
    for (const std::string& line : journal) {
      for (const std::string& kind : kinds) {
        if (line == kind || line.starts_with(kind + " ")) kept.push_back(line);
      }
    }
    return kept;
  }

  TemporaryFolder folder;
  Journal journal;
  RecordingHost host{journal, folder.Path()};
  RecordingObserver observer{journal, folder.Path()};
  std::unique_ptr<RecordingProject> project;
  SpotOptions options;
  std::string firstEvent = kZeroStamp;
  std::int32_t events = 0;
  std::int32_t minTrack = 1;
};

class SpotWorkerTest : public SpotTest {
 protected:
  /// Two cuts on one 16-bit source with a silence between them. The first has a gain and both have
  /// fades; the spot is at 16 bits, so that the depth pass leaves the files alone.
  void LoadThreeEvents() {
    WriteWave("take.wav", 16, Ramp(100));
    Load(ProjectBuilder()
             .Source(1, "take.wav")
             .Cut({.destIn = Stamp(1000),
                   .destOut = Stamp(1060),
                   .outfade = FadeLength(10),
                   .gainDb = "-6"})
             .Silence()
             .Cut({.sourceIn = Stamp(20),
                   .destIn = Stamp(2000),
                   .destOut = Stamp(2050),
                   .infade = FadeLength(10)}));
  }
};

}  // namespace velmora::test
