// A whole spot, over wave files of any bytes, into a host that refuses by a pattern.
//
//     1 byte   fades 1, gain 2, 16 bits 4, copies 8, native 16, position in bits 5 to 7
//     1 byte   frame-rate code in bits 0 to 2, session at 44.1 kHz 8, abort after so many reports
//     4 bytes  a bit for each send: refused; the pattern begins anew after 32
//     2 bytes  a bit for each alias: none can be made
//     3 times  2 bytes of length, and a wave file: one.wav, two.wav, s/wide.wav
//     the rest the project

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Base/SystemLog.h"
#include "Embedded/EmbeddedHost.h"
#include "Model/ProjectSummary.h"
#include "Model/ViewModel.h"
#include "Session/Session.h"
#include "Spot/SpotChoices.h"
#include "Spot/SpotRequest.h"
#include "Spot/SpotWorker.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"
#include "Timecode/AdlTime.h"

namespace velmora::fuzz {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kMostFileBytes = 1U << 17;
// Of one fade no more is made than its file may hold, of all fades so many samples: more of them
// would only make the same spot slower.
constexpr std::int64_t kMostFadeSamples = kMostFileBytes;
constexpr std::int64_t kMostSamplesOfFades = kMostFadeSamples + 20000;
constexpr std::int32_t kMostEvents = 32;

class RefusingHost : public host::EmbeddedHost {
 public:
  RefusingHost(host::Session& session, std::uint32_t sends, std::uint16_t aliases)
      : EmbeddedHost(session), sends_(sends), aliases_(aliases) {}

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    if (Next(aliases_, aliasesAsked_, 16)) return -43;
    return EmbeddedHost::MakeAlias(path, alias);
  }
  std::int32_t Send(const RegionMessage& message) override {
    if (Next(sends_, sent_, 32)) return -600;
    return EmbeddedHost::Send(message);
  }
  std::int32_t Place(const char* path, const RegionPlacement& placement,
                     std::string_view name) override {
    return RegionHost::Place(path, placement, name);  // through the two above
  }

 private:
  static bool Next(std::uint32_t pattern, std::uint32_t& count, std::uint32_t period) {
    return (pattern >> count++ % period & 1) != 0;
  }

  std::uint32_t sends_;
  std::uint16_t aliases_;
  std::uint32_t sent_ = 0;
  std::uint32_t aliasesAsked_ = 0;
};

/// Aborts after so many reports, and keeps what it is told to hold it against the outcome.
class Watcher : public SpotObserver {
 public:
  explicit Watcher(int reportsUntilAbort) : left_(reportsUntilAbort) {}

  bool Aborted() override {
    aborted = aborted || left_ == 0;
    return aborted;
  }
  void Report(std::int32_t progress) override {
    if (left_ > 0) --left_;
    Hold(!ended, "nothing is reported after the end");
    Hold(progress == -1 || progress >= last, "progress never falls");
    ended = progress == -1;
    if (!ended) last = progress;
  }
  void Log(const std::string& /*line*/) override {}
  void FileMade(FilePass /*pass*/, std::int32_t /*event*/, const std::string& path,
                std::int32_t status) override {
    if (status == 0) Hold(made.insert(path).second, "each file is made once", path);
  }

  std::set<std::string> made;
  std::int32_t last = 0;
  bool aborted = false;
  bool ended = false;

 private:
  int left_;
};

struct Settings {
  SpotChoices choices;
  SessionRates rates;
  int reportsUntilAbort = -1;
  std::uint32_t sends = 0;
  std::uint16_t aliases = 0;
};

Settings ReadSettings(Input& input, const std::string& copyFolder) {
  Settings settings;
  const std::uint8_t form = input.Byte();
  settings.choices.fades = form & 1;
  settings.choices.gain = form >> 1 & 1;
  settings.choices.depth = (form & 4) != 0 ? 0 : 1;
  settings.choices.copy = (form & 8) != 0;
  settings.choices.copyFolder = copyFolder;
  settings.choices.positionMode = form >> 5;
  settings.choices.offset = "-00:00:01:00";
  settings.choices.start = " 01:00:00:00";
  const std::uint8_t session = input.Byte();
  settings.rates = {(session & 8) != 0 ? 44100.0F : 48000.0F, session & 7};
  settings.reportsUntilAbort = (session >> 4) == 0 ? -1 : session >> 4;
  settings.sends = input.Number<std::uint32_t>();
  settings.aliases = input.Number<std::uint16_t>();
  return settings;
}

/// How many samples a fade asks for.
std::int64_t AskedFor(const AES31Fade& fade) {
  return fade.present ? std::clamp<std::int64_t>(AdlToSamples(fade.length), 0, kMostFadeSamples)
                      : 0;
}

std::int64_t SamplesOfFades(const AES31Project& project) {
  std::int64_t samples = 0;
  for (const AES31Event& event : project.events) {
    samples += AskedFor(event.infade) + AskedFor(event.outfade);
  }
  return samples;
}

class Spots {
 public:
  Spots() {
    LimitFiles(kMostFileBytes);
    SetSystemLog([](const std::string&) {});
    fs::create_directories(source_.Path("s"));
  }

  void Take(Input input) {
    const Settings settings = ReadSettings(input, copies_.Path());
    std::array<std::string, 3> waves;
    for (std::size_t i = 0; i < waves.size(); ++i) {
      waves[i] = input.LongBytes();
      source_.Write(kNames[i], waves[i]);
    }
    const std::string text(input.Rest());
    const std::string path = source_.Write("project.adl", text);
    Run(path, settings);
    for (std::size_t i = 0; i < waves.size(); ++i) {
      Hold(source_.Read(kNames[i]) == waves[i], "a source is never written to", kNames[i]);
    }
    Hold(source_.Read("project.adl") == text, "a project is never written to");
    copies_.Clear("");
    source_.Clear("s");
    for (const auto& entry : fs::directory_iterator(source_.Path())) {
      if (entry.path().filename() != "s") fs::remove(entry.path());
    }
  }

 private:
  static constexpr const char* kNames[] = {"one.wav", "two.wav", "s/wide.wav"};

  static void Run(const std::string& path, const Settings& settings) {
    ViewModel model;
    if (!model.LoadFile(path) || model.numEvents > kMostEvents) return;
    if (settings.choices.fades != 0 && SamplesOfFades(*model.project) > kMostSamplesOfFades) return;
    SpotOptions options = BuildSpotOptions(settings.choices, settings.rates);
    (void)SpotWarnings(model.firstEvent, settings.rates.sampleRate, settings.rates.frameRate);
    host::Session session;
    RefusingHost receiver(session, settings.sends, settings.aliases);
    Watcher watcher(settings.reportsUntilAbort);
    const SpotProject project{model.project.get(), model.numEvents, model.minTrack,
                              model.firstEvent};
    const bool isWhole = RunSpot(project, options, receiver, watcher);
    Hold(isWhole != watcher.aborted, "an abort ends a spot early, and nothing else does");
    Hold(isWhole == watcher.ended, "a spot tells its end unless it was aborted");
    for (const std::string& made : watcher.made) Hold(fs::exists(made), "a file made is there");
    for (const host::SessionRegion& region : session.Regions()) {
      Hold(fs::is_regular_file(region.path), "a region's file is there", region.path);
    }
    ReleaseRenderedFiles(*model.project);
  }

  WorkFolder source_;
  WorkFolder copies_;
};

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora::fuzz;
  static Spots spots;
  spots.Take(Input(bytes, size));
  return 0;
}
