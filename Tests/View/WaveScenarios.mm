// Waveforms in the timeline: that they come, follow zoom and files, and never hold the window up.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>

#import "View/Checks.h"
#import "View/Driver.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

constexpr std::int64_t kRate = 48000;
constexpr std::int64_t kHour = 3600 * kRate;

TimelineView* Lanes() {
  return [Timeline() timeline];
}

/// 24 bits: one second of silence, then one of a loud square wave.
std::string HalfLoudWave() {
  test::WaveFormat format;
  format.bits = 24;
  std::vector<std::int32_t> samples(2 * kRate, 0);
  for (std::size_t i = kRate; i < samples.size(); ++i) {
    samples[i] = i / 24 % 2 == 0 ? 0x600000 : -0x600000;
  }
  return test::PlainWave(format, samples);
}

/// A wave file of 24 bits: a hole of an hour.
void WriteHour(const test::TemporaryFolder& folder, const std::string& name) {
  constexpr std::uint32_t kBytes = kHour * 3;
  test::WaveFormat format;
  format.bits = 24;
  const std::string bytes = test::WaveBytes()
                                .Format(format)
                                .Claim("data", kBytes)
                                .RiffSize(test::kPlainDataOffset - 8 + kBytes)
                                .Bytes();
  const std::string path = folder.Write(name, bytes);
  std::filesystem::resize_file(path, test::kPlainDataOffset + std::uint64_t{kBytes});
}

/// One hour on each of so many tracks.
std::string HoursProject(const test::TemporaryFolder& folder, std::int32_t tracks) {
  test::ProjectBuilder project;
  for (std::int32_t i = 1; i <= tracks; ++i) {
    const std::string name = "hour" + std::to_string(i) + ".wav";
    WriteHour(folder, name);
    project.Source(i, name);
    test::CutSpec cut;
    cut.source = i;
    cut.track = i;
    cut.destOut = test::Stamp(kHour);
    project.Cut(cut);
  }
  return project.WriteTo(folder);
}

// How many pixels of a lane's column differ from the most frequent colour of the region's fill.
CGFloat WaveHeight(std::size_t lane, std::int64_t sample) {
  return Ask([&] {
    NSBitmapImageRep* const pixels = [DrawnPixels(Lanes()) autorelease];
    const NSRect row = [Lanes() rectOfLane:lane];
    const double x = NSMinX(row) + std::floor([Lanes() scale].ToX(sample));
    const auto pixelAt = [&](CGFloat y) {
      NSUInteger pixel[4] = {};
      [pixels getPixel:pixel atX:static_cast<NSInteger>(x) y:static_cast<NSInteger>(y)];
      return std::vector<NSUInteger>(pixel, pixel + 3);
    };
    // Just inside the region's border nothing is drawn but its fill.
    const auto fill = pixelAt(NSMaxY(row) - 5);
    CGFloat height = 0;
    for (CGFloat y = NSMinY(row) + 5; y < NSMaxY(row) - 5; ++y) height += pixelAt(y) != fill;
    return height;
  });
}

void WaitForWaveforms() {
  WaitFor("the waveforms have come", [] {
    [Window() display];  // which asks for them
    return ![Lanes() isReadingWaveforms];
  });
  OnMain([] {});  // their notice stands in the run loop before this
}

void SpotAndWait(std::size_t regions) {
  PressSpot();
  WaitFor("all regions have landed", [=] { return [Lanes() model].Regions().size() == regions; });
}

void ShowsWaveforms() {
  const test::TemporaryFolder folder;
  const std::string wave = folder.Write("half.wav", HalfLoudWave());
  test::ProjectBuilder project;
  project.Source(1, "half.wav").Source(2, "gone.wav");
  test::CutSpec cut;
  cut.destOut = test::Stamp(2 * kRate);
  project.Cut(cut);
  StartShellWith(project.WriteTo(folder));
  SpotAndWait(1);
  WaitForWaveforms();
  Screenshot(Window(), "waveform");
  const std::int64_t start = Ask([] { return [Lanes() model].Regions()[0].position; });
  const std::int64_t quiet = start + kRate * 8 / 10;
  const std::int64_t loud = start + kRate * 12 / 10;
  Check("silence is a line", CGFloat{1}, WaveHeight(0, quiet));
  CheckTrue("three quarters of full scale nearly fill the region", WaveHeight(0, loud) >= 17);

  const auto zoomTo = [&](double samplesPerPixel) {
    OnMain([&] {
      [Lanes() zoomIn:nil];
      while ([Lanes() scale].SamplesPerPixel() > samplesPerPixel) [Lanes() zoomIn:nil];
      const double middle = NSWidth([Lanes() lanesRect]) / 2;
      const std::int64_t change = start + kRate;
      [Lanes() scrollPixels:[Lanes() scale].ToX(change) - middle lanes:0];
    });
    WaitForWaveforms();
  };
  for (const double zoom : {50.0, 5.0, 0.3}) {
    zoomTo(zoom);
    const auto pixels = [&](double count) {
      return static_cast<std::int64_t>(
          std::ceil(count * Ask([] { return [Lanes() scale].SamplesPerPixel(); })));
    };
    const std::string at = " at " + Shown(zoom) + " samples a pixel";
    Check("silence stays a line" + at, CGFloat{1}, WaveHeight(0, start + kRate - pixels(40)));
    CheckTrue("the sound begins where it did" + at,
              WaveHeight(0, start + kRate + pixels(3)) >= (zoom > 24 ? 17 : 1));
    Screenshot(Window(), "waveform-at-" + Shown(zoom));
  }

  OnMain([] { [Lanes() fit:nil]; });
  std::filesystem::remove(wave);
  WaitFor("a file that has gone loses its waveform", [&] {
    [Lanes() setNeedsDisplay:YES];
    [Window() display];
    return ![Lanes() isReadingWaveforms] && WaveHeight(0, loud) == 0;
  });
}

// Fades and gain that a region has as facts are seen in its waveform.
void ShowsShapes() {
  const test::TemporaryFolder folder;
  const std::string wave = folder.Write("half.wav", HalfLoudWave());
  StartShell();
  velmora::host::SessionRegion region{0, 0, kRate, 2 * kRate, 1, wave, "shaped"};
  region.shape.fadeIn = kRate / 2;
  region.shape.fadeOut = kRate / 4;
  velmora::host::SessionRegion quiet{1, 0, kRate, 2 * kRate, 1, wave, "quiet"};
  quiet.shape.gainDb = -12;
  const std::vector<velmora::host::SessionRegion> regions = {region, quiet};
  OnMain([&] { [Timeline() addRegions:regions]; });
  WaitForWaveforms();
  Screenshot(Window(), "waveform-shapes");
  const CGFloat full = WaveHeight(0, kRate * 6 / 10);
  CheckTrue("between the fades it is loud", full >= 16);
  const CGFloat begun = WaveHeight(0, kRate / 8);
  CheckTrue("a fade-in begins low, with " + Shown(begun), begun < full / 2);
  const CGFloat ending = WaveHeight(0, kRate * 15 / 16);
  CheckTrue("a fade-out ends low, with " + Shown(ending), ending < full / 2);
  const CGFloat lowered = WaveHeight(1, kRate / 2);
  CheckTrue("gain lowers it, to " + Shown(lowered), lowered < full / 2 && lowered > 1);
}

// While hours are read, the window answers and zooms.
void StaysAlive() {
  constexpr std::int32_t kTracks = 6;
  const test::TemporaryFolder folder;
  StartShellWith(HoursProject(folder, kTracks));
  SpotAndWait(kTracks);
  int answers = 0;
  double slowest = 0;
  const auto begin = std::chrono::steady_clock::now();
  const auto since = [](std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  bool reading = true;
  OnMain([] { [Window() display]; });
  while (reading) {
    const auto asked = std::chrono::steady_clock::now();
    reading = Ask([&] {
      (answers % 2 == 0) ? [Lanes() zoomIn:nil] : [Lanes() zoomOut:nil];
      [Window() display];
      return [Lanes() isReadingWaveforms];
    });
    slowest = std::max(slowest, since(asked));
    if (reading) ++answers;
    if (since(begin) > 200) break;
  }
  Note("time until six hours were read: " + Shown(since(begin)) +
       " s; the window zoomed and drew " + Shown(answers) + " times meanwhile, the slowest in " +
       Shown(slowest) + " s");
  CheckTrue("the hours have been read", !reading);
  CheckTrue("the window answered while they were read", answers >= 1);
  OnMain([] { [Lanes() fit:nil]; });
  WaitForWaveforms();
  Check("an hour of silence is a line", CGFloat{1}, WaveHeight(2, kHour / 2));
  Screenshot(Window(), "waveforms-of-hours");
}

// More regions are on view than there is room for.
void ShowsMany() {
  constexpr std::int32_t kRegions = 10000;
  constexpr std::int32_t kTracks = 4;  // all of which are on view
  constexpr std::int64_t kLength = kRate / 10;
  const test::TemporaryFolder folder;
  const std::string wave = folder.Write("half.wav", HalfLoudWave());
  StartShell();
  std::vector<velmora::host::SessionRegion> regions;
  for (std::int32_t i = 0; i < kRegions; ++i) {
    const auto track = static_cast<std::int16_t>(i % kTracks);
    regions.push_back({track, kLength * (i / kTracks), kRate, kRate + kLength, 1, wave, "half"});
  }
  OnMain([&] { [Timeline() addRegions:regions]; });
  WaitForWaveforms();
  for (const double zoom : {1e9, 4000.0, 800.0, 200.0, 10.0}) {
    OnMain([&] {
      while ([Lanes() scale].SamplesPerPixel() > zoom) [Lanes() zoomIn:nil];
    });
    WaitForWaveforms();
    const std::clock_t before = std::clock();
    constexpr int kTimes = 5;
    for (int i = 0; i < kTimes; ++i) OnMain([] { [Lanes() display]; });
    const double each = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC / kTimes;
    Note("time of a redraw at " + Shown(Ask([] { return [Lanes() scale].SamplesPerPixel(); })) +
         " samples a pixel: " + Shown(each) + " s of the processor");
    if (zoom == 800) Screenshot(Window(), "many-waveforms");
  }
}

void ClosesDuringWaveforms() {
  const test::TemporaryFolder folder;
  StartShellWith(HoursProject(folder, 6));
  SpotAndWait(6);
  std::atexit([] { _exit(FailureCount() == 0 ? 0 : 1); });
  PostToMain([] {
    [Window() display];
    CheckTrue("waveforms are being read", [Lanes() isReadingWaveforms]);
    [Window() performClose:nil];
  });
  Pause(kPatienceSeconds);
  CheckTrue("closing the window ends the program", false);
}

// The session goes while its files are read, and another comes.
void ClearsDuringWaveforms() {
  const test::TemporaryFolder folder;
  const test::TemporaryFolder other;
  const std::string next = SimpleProject(other, 8, 2, "next.adl");
  StartShellWith(HoursProject(folder, 6));
  SpotAndWait(6);
  OnMain([] {
    [Window() display];
    CheckTrue("waveforms are being read", [Lanes() isReadingWaveforms]);
    [(id)Shell() performSelector:@selector(clearSession:) withObject:nil];
    [Window() display];
  });
  LoadPath(next);
  SpotAndWait(8);
  WaitForWaveforms();
  const std::int64_t middle = Ask([] { return [Lanes() model].Regions()[0].position + 2400; });
  Check("the new session has its waveforms", CGFloat{1}, WaveHeight(0, middle));
}

}  // namespace

std::vector<Scenario> WaveScenarios() {
  return {{"shows-waveforms", ShowsWaveforms},
          {"shows-shapes", ShowsShapes},
          {"hour-long-waveforms", StaysAlive},
          {"many-waveforms", ShowsMany},
          {"closes-during-waveforms", ClosesDuringWaveforms},
          {"clears-during-waveforms", ClearsDuringWaveforms}};
}

}  // namespace velmora::view
