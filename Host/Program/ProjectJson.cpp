#include "Program/ProjectJson.h"

#include "BWF/AES31BWF.h"

namespace velmora::program {
namespace {

void WriteEdit(JsonStream& json, const AES31Cut& cut) {
  json.BeginObject();
  json.Key("kind").Text("cut");
  json.Key("sourceType").ProjectText(cut.sourceType);
  json.Key("sourceIn").ProjectText(cut.sourceIn);
  json.Key("destIn").ProjectText(cut.destIn);
  json.Key("destOut").ProjectText(cut.destOut);
  json.Key("cutTail").ProjectText(cut.cutTail);
  json.Key("sourceIndex").Integer(cut.sourceIndex);
  json.Key("sourceChannel").Integer(cut.sourceChannel);
  json.Key("destChannel").Integer(cut.destChannel);
  json.Key("cutMark1").Integer(cut.cutMark1);
  json.Key("cutMark2").Integer(cut.cutMark2);
  json.EndObject();
}

void WriteEdit(JsonStream& json, const AES31Silence& silence) {
  json.BeginObject();
  json.Key("kind").Text("silence");
  json.Key("silenceText1").ProjectText(silence.silenceText1);
  json.Key("silenceText2").ProjectText(silence.silenceText2);
  json.Key("silenceText3").ProjectText(silence.silenceText3);
  json.Key("silenceNumber").Integer(silence.silenceNumber);
  json.Key("silenceMark").Integer(silence.silenceMark);
  json.EndObject();
}

void WriteEdit(JsonStream& json, const AES31Vid& vid) {
  json.BeginObject();
  json.Key("kind").Text("vid");
  json.Key("vidText0").ProjectText(vid.vidText0);
  json.Key("vidText1").ProjectText(vid.vidText1);
  json.Key("vidText2").ProjectText(vid.vidText2);
  json.Key("vidText3").ProjectText(vid.vidText3);
  json.EndObject();
}

void WriteEdit(JsonStream& json, const AES31Alt& alt) {
  json.BeginObject();
  json.Key("kind").Text("alt");
  json.Key("altType").ProjectText(alt.altType);
  json.Key("altTime").ProjectText(alt.altTime);
  json.Key("altIndex").Integer(alt.altIndex);
  json.Key("altChannel").Integer(alt.altChannel);
  json.Key("altMark").Integer(alt.altMark);
  json.EndObject();
}

void WriteEdit(JsonStream& json, const AES31Event& event) {
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
  json.Null();
}

void WriteFade(JsonStream& json, const AES31Fade& fade) {
  if (!fade.present) {
    json.Null();
    return;
  }
  json.BeginObject();
  json.Key("present").Boolean(true);
  json.Key("length").ProjectText(fade.length);
  json.Key("fadeText1").ProjectText(fade.fadeText1);
  json.Key("fadeText5").ProjectText(fade.fadeText5);
  json.Key("fadeText7").ProjectText(fade.fadeText7);
  json.Key("fadeNumber6").Integer(fade.fadeNumber6);
  json.Key("fadeParam2").Decimal(fade.fadeParam2);
  json.Key("fadeParam3").Decimal(fade.fadeParam3);
  json.Key("fadeParam4").Decimal(fade.fadeParam4);
  json.EndObject();
}

void WriteCrossfade(JsonStream& json, const AES31Crossfade& xfade) {
  if (!xfade.present) {
    json.Null();
    return;
  }
  json.BeginObject();
  json.Key("present").Boolean(true);
  json.Key("xfadeText1").ProjectText(xfade.xfadeText1);
  json.Key("xfadeText2").ProjectText(xfade.xfadeText2);
  json.Key("xfadeText3").ProjectText(xfade.xfadeText3);
  json.Key("xfadeText5").ProjectText(xfade.xfadeText5);
  json.Key("xfadeNumber0").Integer(xfade.xfadeNumber0);
  json.Key("xfadeNumber4").Integer(xfade.xfadeNumber4);
  json.EndObject();
}

void WriteGain(JsonStream& json, const AES31Gain& gain) {
  if (!gain.present) {
    json.Null();
    return;
  }
  json.BeginObject();
  json.Key("present").Boolean(true);
  json.Key("gainNumber").Integer(gain.gainNumber);
  json.Key("gainDb").Decimal(gain.gainDb);
  json.EndObject();
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

void WriteEventJson(JsonStream& json, const AES31Event& event, std::size_t index) {
  json.BeginObject();
  json.Key("index").Integer(static_cast<std::int64_t>(index));
  json.Key("entryNumber").Integer(event.entryNumber);
  json.Key("label").ProjectText(event.label);
  json.Key("edit");
  WriteEdit(json, event);
  json.Key("infade");
  WriteFade(json, event.infade);
  json.Key("outfade");
  WriteFade(json, event.outfade);
  json.Key("xfade");
  WriteCrossfade(json, event.xfade);
  json.Key("gain");
  WriteGain(json, event.gain);
  json.Key("sourceFile").TextOrNull(event.sourceFile != nullptr ? event.sourceFile->GetPath() : "");
  json.Key("sourceStart").ProjectText(event.sourceStart);
  json.Key("sourceLength").ProjectText(event.sourceLength);
  json.EndObject();
}

void WriteEntryJson(JsonStream& json, const AES31Entry& entry) {
  json.BeginObject();
  json.Key("label").ProjectText(entry.label);
  json.Key("values");
  WriteTexts(json, entry.values);
  json.EndObject();
}

}  // namespace velmora::program
