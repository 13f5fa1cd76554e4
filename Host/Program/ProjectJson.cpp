#include "Program/ProjectJson.h"

#include <string_view>

#include "BWF/AES31BWF.h"
#include "Program/JsonPen.h"

namespace velmora::program {
namespace {

// Calls that are made in place, as a JsonPen wants it.

[[gnu::always_inline]] inline void WriteEdit(JsonPen& json, const AES31Cut& cut) {
  json.Part(R"({"kind":"cut","sourceType":)").ProjectText(cut.sourceType);
  json.Part(R"(,"sourceIn":)").ProjectText(cut.sourceIn);
  json.Part(R"(,"destIn":)").ProjectText(cut.destIn);
  json.Part(R"(,"destOut":)").ProjectText(cut.destOut);
  json.Part(R"(,"cutTail":)").ProjectText(cut.cutTail);
  json.Part(R"(,"sourceIndex":)").Integer(cut.sourceIndex);
  json.Part(R"(,"sourceChannel":)").Integer(cut.sourceChannel);
  json.Part(R"(,"destChannel":)").Integer(cut.destChannel);
  json.Part(R"(,"cutMark1":)").Integer(cut.cutMark1);
  json.Part(R"(,"cutMark2":)").Integer(cut.cutMark2);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteEdit(JsonPen& json, const AES31Silence& silence) {
  json.Part(R"({"kind":"silence","silenceText1":)").ProjectText(silence.silenceText1);
  json.Part(R"(,"silenceText2":)").ProjectText(silence.silenceText2);
  json.Part(R"(,"silenceText3":)").ProjectText(silence.silenceText3);
  json.Part(R"(,"silenceNumber":)").Integer(silence.silenceNumber);
  json.Part(R"(,"silenceMark":)").Integer(silence.silenceMark);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteEdit(JsonPen& json, const AES31Vid& vid) {
  json.Part(R"({"kind":"vid","vidText0":)").ProjectText(vid.vidText0);
  json.Part(R"(,"vidText1":)").ProjectText(vid.vidText1);
  json.Part(R"(,"vidText2":)").ProjectText(vid.vidText2);
  json.Part(R"(,"vidText3":)").ProjectText(vid.vidText3);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteEdit(JsonPen& json, const AES31Alt& alt) {
  json.Part(R"({"kind":"alt","altType":)").ProjectText(alt.altType);
  json.Part(R"(,"altTime":)").ProjectText(alt.altTime);
  json.Part(R"(,"altIndex":)").Integer(alt.altIndex);
  json.Part(R"(,"altChannel":)").Integer(alt.altChannel);
  json.Part(R"(,"altMark":)").Integer(alt.altMark);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteEdit(JsonPen& json, const AES31Event& event) {
  switch (KindOf(event)) {
    case EditKind::Cut:
      return WriteEdit(json, event.cut);
    case EditKind::Silence:
      return WriteEdit(json, event.silence);
    case EditKind::Vid:
      return WriteEdit(json, event.vid);
    case EditKind::Alt:
      return WriteEdit(json, event.alt);
    case EditKind::None:
      break;
  }
  json.Part("null");
}

[[gnu::always_inline]] inline void WriteFade(JsonPen& json, const AES31Fade& fade) {
  if (!fade.present) {
    json.Part("null");
    return;
  }
  json.Part(R"({"present":true,"length":)").ProjectText(fade.length);
  json.Part(R"(,"fadeText1":)").ProjectText(fade.fadeText1);
  json.Part(R"(,"fadeText5":)").ProjectText(fade.fadeText5);
  json.Part(R"(,"fadeText7":)").ProjectText(fade.fadeText7);
  json.Part(R"(,"fadeNumber6":)").Integer(fade.fadeNumber6);
  json.Part(R"(,"fadeParam2":)").Decimal(fade.fadeParam2);
  json.Part(R"(,"fadeParam3":)").Decimal(fade.fadeParam3);
  json.Part(R"(,"fadeParam4":)").Decimal(fade.fadeParam4);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteCrossfade(JsonPen& json, const AES31Crossfade& xfade) {
  if (!xfade.present) {
    json.Part("null");
    return;
  }
  json.Part(R"({"present":true,"xfadeText1":)").ProjectText(xfade.xfadeText1);
  json.Part(R"(,"xfadeText2":)").ProjectText(xfade.xfadeText2);
  json.Part(R"(,"xfadeText3":)").ProjectText(xfade.xfadeText3);
  json.Part(R"(,"xfadeText5":)").ProjectText(xfade.xfadeText5);
  json.Part(R"(,"xfadeNumber0":)").Integer(xfade.xfadeNumber0);
  json.Part(R"(,"xfadeNumber4":)").Integer(xfade.xfadeNumber4);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteGain(JsonPen& json, const AES31Gain& gain) {
  if (!gain.present) {
    json.Part("null");
    return;
  }
  json.Part(R"({"present":true,"gainNumber":)").Integer(gain.gainNumber);
  json.Part(R"(,"gainDb":)").Decimal(gain.gainDb);
  json.Part("}");
}

[[gnu::always_inline]] inline void WriteSourceOf(JsonPen& json, const AES31Event& event) {
  std::string_view path;
  if (event.sourceFile != nullptr) path = event.sourceFile->path;
  json.Part(R"(,"sourceFile":)");
  if (path.empty()) {
    json.Part("null");
  } else {
    json.Text(path);
  }
  json.Part(R"(,"sourceStart":)").ProjectText(event.sourceStart);
  json.Part(R"(,"sourceLength":)").ProjectText(event.sourceLength);
}

[[gnu::always_inline]] inline void WriteEvent(JsonPen& json, const AES31Event& event,
                                              std::size_t index) {
  json.Part(R"({"index":)").Integer(static_cast<std::int64_t>(index));
  json.Part(R"(,"entryNumber":)").Integer(event.entryNumber);
  json.Part(R"(,"label":)").ProjectText(event.label);
  json.Part(R"(,"edit":)");
  WriteEdit(json, event);
  json.Part(R"(,"infade":)");
  WriteFade(json, event.infade);
  json.Part(R"(,"outfade":)");
  WriteFade(json, event.outfade);
  json.Part(R"(,"xfade":)");
  WriteCrossfade(json, event.xfade);
  json.Part(R"(,"gain":)");
  WriteGain(json, event.gain);
  WriteSourceOf(json, event);
  json.Part("}");
}

/// The values of the entry that was read last. Those that the line has at hand need no second walk.
[[gnu::always_inline]] inline void WriteValues(JsonPen& json, const EntryLine& line,
                                               const EntryLines& lines) {
  if (line.valueCount == 0) {
    json.Part("[]");
    return;
  }
  json.Part("[").ProjectText(line.texts[0]);
  if (line.valueCount <= EntryLine::kTexts) {
    for (std::size_t i = 1; i < line.valueCount; ++i) json.Part(",").ProjectText(line.texts[i]);
  } else {
    const AES31Values values = lines.ValuesOf(line);
    for (auto at = ++values.begin(); at != values.end(); ++at) json.Part(",").ProjectText(*at);
  }
  json.Part("]");
}

void WriteWaveFile(JsonStream& json, AES31BWF& file) {
  json.BeginObject();
  json.Key("path").Text(file.GetPath());
  json.Key("valid").Boolean(file.IsValid());
  json.Key("sampleRate").Integer(file.GetSampleRate());
  json.Key("channels").Integer(file.GetChannels());
  json.Key("bitsPerSample").Integer(file.GetBitsPerSample());
  json.Key("formatTag").Integer(file.GetFormat()->formatTag);
  json.Key("frames").Integer(static_cast<std::int64_t>(file.frames));
  json.EndObject();
}

template <class Texts>
void WriteTexts(JsonStream& json, const Texts& texts) {
  json.BeginArray();
  for (const char* const text : texts) json.ProjectText(text);
  json.EndArray();
}

}  // namespace

std::string_view BlockOf(const AES31Project& project) {
  if (project.buffer == nullptr) return {};
  return {project.buffer, static_cast<std::size_t>(project.bufferEnd - project.buffer) + 1};
}

void WriteSourceJson(JsonStream& json, std::int32_t index, const AES31SourceFile& source) {
  json.BeginObject();
  json.Key("index").Integer(index);
  json.Key("f");
  WriteTexts(json, source.fValues);
  json.Key("t");
  WriteTexts(json, source.tValues);
  json.Key("file");
  if (source.file != nullptr) {
    WriteWaveFile(json, *source.file);
  } else {
    json.Null();
  }
  json.EndObject();
}

void AppendEventsJson(CharBuffer& text, const AES31Project& project, std::size_t begin,
                      std::size_t end) {
  JsonPen json(text, BlockOf(project));
  for (std::size_t i = begin; i < end; ++i) {
    if (i > 0) json.Part(",");
    WriteEvent(json, project.events[i], i);
  }
}

void AppendEntriesJson(CharBuffer& text, const AES31Project& project, const AES31Entries& entries,
                       std::size_t begin, std::size_t end) {
  JsonPen json(text, BlockOf(project));
  EntryLines lines(entries, begin);
  EntryLine line;
  for (std::size_t i = begin; i < end && lines.Next(line); ++i) {
    if (i > 0) json.Part(",");
    json.Part(R"({"label":)").ProjectText(line.label);
    json.Part(R"(,"values":)");
    WriteValues(json, line, lines);
    json.Part("}");
  }
}

}  // namespace velmora::program
