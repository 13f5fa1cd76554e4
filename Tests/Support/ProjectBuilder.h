#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "Support/TemporaryFolder.h"

namespace velmora::test {

/// A timestamp at 25 frames per second and 48000 Hz, where a frame is 1920 samples: every sample
/// count from 0 to 100 hours has one, exact to the sample by its last four digits.
inline std::string Stamp(std::int64_t samples, char frameSeparator = ':') {
  const std::int64_t frames = samples / 1920;
  const auto part = [](std::int64_t value) { return static_cast<int>(value); };
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02d.%02d:%02d%c%02d/%04d", part(frames / 90000),
                part(frames / 1500 % 60), part(frames / 25 % 60), frameSeparator, part(frames % 25),
                part(samples % 1920));
  return text.data();
}

/// The length of a fade, below a minute: the drop-frame mark that fades must have moves nothing
/// there.
inline std::string FadeLength(std::int64_t samples) {
  return Stamp(samples, ';');
}

/// One (Cut) with what may go with it; empty texts leave a line out.
struct CutSpec {
  std::string label = "Cut";
  std::int32_t source = 1;
  std::int32_t track = 1;
  std::string sourceIn = Stamp(0);
  std::string destIn = Stamp(0);
  std::string destOut = Stamp(1000);
  std::string infade{};
  std::string outfade{};
  std::string gainDb{};
};

/// Composes the text of an ADL project.
class ProjectBuilder {
 public:
  ProjectBuilder& Constant(const std::string& section, const std::string& keyword,
                           const std::string& value) {
    constants_ += "<" + section + ">\n(" + keyword + ") " + value + "\n</" + section + ">\n";
    return *this;
  }
  /// A source whose audio lies beside the project under `file`.
  ProjectBuilder& Source(std::int32_t index, const std::string& file,
                         const std::string& start = Stamp(0)) {
    sources_ += "(Index) " + std::to_string(index) + "\n(F) \"URL:file://localhost/Audio/" + file +
                "\" _ " + start + " " + Stamp(1000) + "\n";
    return *this;
  }
  ProjectBuilder& Cut(const CutSpec& cut) {
    std::string text = "(" + cut.label + ") I " + std::to_string(cut.source) + " 1 " +
                       std::to_string(cut.track) + " " + cut.sourceIn + " " + cut.destIn + " " +
                       cut.destOut + " _";
    if (!cut.infade.empty()) text += "\n  (Infade) " + cut.infade + " LIN 0 0 0";
    if (!cut.outfade.empty()) text += "\n  (Outfade) " + cut.outfade + " LIN 0 0 0";
    if (!cut.gainDb.empty()) text += "\n  (Gain) 1 " + cut.gainDb;
    return Entry(text);
  }
  /// An event of any other form: what stands after its (Entry) and number.
  ProjectBuilder& Entry(std::string_view text) {
    events_ += "(Entry) " + std::to_string(++entries_) + " ";
    events_ += text;
    events_ += "\n";
    return *this;
  }
  ProjectBuilder& Silence() { return Entry("(Silence) 1 a b c"); }

  std::string Text() const {
    return "<ADL>\n" + constants_ + "<SOURCE_INDEX>\n" + sources_ +
           "</SOURCE_INDEX>\n<EVENT_LIST>\n" + events_ + "</EVENT_LIST>\n</ADL>\n";
  }
  /// Writes the project into a folder and returns its path.
  std::string WriteTo(const TemporaryFolder& folder, std::string_view name = "project.adl") const {
    return folder.Write(name, Text());
  }

 private:
  std::string constants_;
  std::string sources_;
  std::string events_;
  std::int32_t entries_ = 0;
};

}  // namespace velmora::test
