#include "Program/ProjectJson.h"

#include <cmath>
#include <utility>

#include "ADL/ShiftJis.h"

namespace velmora::program {
namespace {

Json EditJson(const AES31Event& event) {
  switch (KindOf(event)) {
    case EditKind::Cut:
      return {{"kind", "cut"},
              {"sourceType", ProjectText(event.cut.sourceType)},
              {"sourceIn", ProjectText(event.cut.sourceIn)},
              {"destIn", ProjectText(event.cut.destIn)},
              {"destOut", ProjectText(event.cut.destOut)},
              {"cutTail", ProjectText(event.cut.cutTail)},
              {"sourceIndex", event.cut.sourceIndex},
              {"sourceChannel", event.cut.sourceChannel},
              {"destChannel", event.cut.destChannel},
              {"cutMark1", event.cut.cutMark1},
              {"cutMark2", event.cut.cutMark2}};
    case EditKind::Silence:
      return {{"kind", "silence"},
              {"silenceText1", ProjectText(event.silence.silenceText1)},
              {"silenceText2", ProjectText(event.silence.silenceText2)},
              {"silenceText3", ProjectText(event.silence.silenceText3)},
              {"silenceNumber", event.silence.silenceNumber},
              {"silenceMark", event.silence.silenceMark}};
    case EditKind::Vid:
      return {{"kind", "vid"},
              {"vidText0", ProjectText(event.vid.vidText0)},
              {"vidText1", ProjectText(event.vid.vidText1)},
              {"vidText2", ProjectText(event.vid.vidText2)},
              {"vidText3", ProjectText(event.vid.vidText3)}};
    case EditKind::Alt:
      return {{"kind", "alt"},
              {"altType", ProjectText(event.alt.altType)},
              {"altTime", ProjectText(event.alt.altTime)},
              {"altIndex", event.alt.altIndex},
              {"altChannel", event.alt.altChannel},
              {"altMark", event.alt.altMark}};
    case EditKind::None:
      break;
  }
  return nullptr;
}

Json FadeJson(const AES31Fade& fade) {
  if (!fade.present) return nullptr;
  return {{"present", true},
          {"length", ProjectText(fade.length)},
          {"fadeText1", ProjectText(fade.fadeText1)},
          {"fadeText5", ProjectText(fade.fadeText5)},
          {"fadeText7", ProjectText(fade.fadeText7)},
          {"fadeNumber6", fade.fadeNumber6},
          {"fadeParam2", Number(fade.fadeParam2)},
          {"fadeParam3", Number(fade.fadeParam3)},
          {"fadeParam4", Number(fade.fadeParam4)}};
}

Json CrossfadeJson(const AES31Crossfade& xfade) {
  if (!xfade.present) return nullptr;
  return {{"present", true},
          {"xfadeText1", ProjectText(xfade.xfadeText1)},
          {"xfadeText2", ProjectText(xfade.xfadeText2)},
          {"xfadeText3", ProjectText(xfade.xfadeText3)},
          {"xfadeText5", ProjectText(xfade.xfadeText5)},
          {"xfadeNumber0", xfade.xfadeNumber0},
          {"xfadeNumber4", xfade.xfadeNumber4}};
}

Json GainJson(const AES31Gain& gain) {
  if (!gain.present) return nullptr;
  return {{"present", true}, {"gainNumber", gain.gainNumber}, {"gainDb", Number(gain.gainDb)}};
}

}  // namespace

Json ProjectText(const char* text) {
  if (text == nullptr) return nullptr;
  return ShiftJisToUtf8(text);
}

Json PathText(const std::string& path) {
  if (path.empty()) return nullptr;
  return path;
}

Json Number(double number) {
  if (!std::isfinite(number)) return nullptr;
  return number;
}

Json SectionJson(const AES31Section& section) {
  Json entries = Json::array();
  for (const AES31Entry& entry : section.entries) {
    Json values = Json::array();
    for (const char* const value : entry.values) values.push_back(ProjectText(value));
    entries.push_back({{"label", ProjectText(entry.label)}, {"values", std::move(values)}});
  }
  return {{"name", ProjectText(section.name)}, {"entries", std::move(entries)}};
}

Json WaveFileJson(AES31BWF& file) {
  return {{"path", file.GetPath()},
          {"valid", file.IsValid()},
          {"sampleRate", file.GetSampleRate()},
          {"channels", file.GetChannels()},
          {"bitsPerSample", file.GetBitsPerSample()},
          {"formatTag", file.GetFormat()->formatTag},
          {"frames", file.frames}};
}

Json EventJson(const AES31Event& event, std::size_t index) {
  return {{"index", index},
          {"entryNumber", event.entryNumber},
          {"label", ProjectText(event.label)},
          {"edit", EditJson(event)},
          {"infade", FadeJson(event.infade)},
          {"outfade", FadeJson(event.outfade)},
          {"xfade", CrossfadeJson(event.xfade)},
          {"gain", GainJson(event.gain)},
          {"sourceFile", PathText(event.sourceFile != nullptr ? event.sourceFile->GetPath() : "")},
          {"sourceStart", ProjectText(event.sourceStart)},
          {"sourceLength", ProjectText(event.sourceLength)}};
}

}  // namespace velmora::program
