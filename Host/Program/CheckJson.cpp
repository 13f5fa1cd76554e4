#include "Program/CheckJson.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

#include "Check/Finding.h"
#include "Program/JsonStream.h"

namespace velmora::program {
namespace {

using check::CheckedProject;
using check::Finding;
using check::Severity;

void WriteCounts(JsonStream& json, const CheckedProject& checked) {
  json.Key("counts").BeginObject();
  for (const Severity severity :
       {Severity::Fails, Severity::Misplaced, Severity::Lost, Severity::Note}) {
    json.Key(NameOf(severity)).Integer(static_cast<std::int64_t>(checked.Count(severity)));
  }
  json.EndObject();
}

void WriteFile(JsonStream& json, const check::SourceMedia& media) {
  if (media.located.result != media::SearchResult::Found) {
    json.Null();
    return;
  }
  json.BeginObject();
  json.Key("path").Text(media.located.path);
  json.Key("found").Text(NameOf(media.located.found));
  if (media.facts) {
    json.Key("kind").Text(NameOf(media.facts->kind));
    json.Key("sampleRate").Integer(media.facts->sampleRate);
    json.Key("channels").Integer(media.facts->channels);
    json.Key("bitsPerSample").Integer(media.facts->bitsPerSample);
    json.Key("frames").Integer(media.facts->frames);
    json.Key("timeReference").IntegerOrNull(media.facts->timeReference);
  } else {
    json.Key("kind").Text(NameOf(media::FileKind::Other));
    for (const char* const key :
         {"sampleRate", "channels", "bitsPerSample", "frames", "timeReference"}) {
      json.Key(key).Null();
    }
  }
  json.EndObject();
}

void WriteSource(JsonStream& json, const field::Source& source, const check::SourceMedia& media) {
  json.BeginObject();
  json.Key("index").Integer(source.index);
  json.Key("location").Text(source.location);
  json.Key("name").TextOrNull(source.name);
  json.Key("file");
  WriteFile(json, media);
  json.Key("fileStart");
  if (source.givenStart || source.startDecided) {
    json.Integer(source.fileStart);
  } else {
    json.Null();
  }
  json.Key("length").IntegerOrNull(source.length);
  json.EndObject();
}

void WriteRun(JsonStream& json, const field::ChannelRun& run) {
  // A run that somebody made up may be as long as numbers go; none is told beyond this.
  constexpr std::int32_t kMost = 1024;
  json.BeginArray();
  for (std::int32_t i = 0; i < std::min(run.Count(), kMost); ++i) json.Integer(run.first + i);
  json.EndArray();
}

/// The number of a source that is told with its type, "I 2"; none for a file name.
std::optional<std::int32_t> NumberOf(const std::string& source) {
  const std::string word = source.substr(source.rfind(' ') + 1);
  std::int32_t number = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

void WriteFade(JsonStream& json, const field::Seldom<field::Fade>& fade) {
  if (!fade) {
    json.Null();
    return;
  }
  json.BeginObject();
  json.Key("length").Integer(fade->length);
  json.Key("shape").TextOrNull(fade->shape);
  json.Key("levels").BeginArray();
  for (const std::optional<double>& level : fade->levelsDb) json.RealOrNull(level);
  json.EndArray();
  json.Key("rendered");
  if (fade->rendered) {
    json.BeginObject();
    json.Key("source").IntegerOrNull(NumberOf(fade->rendered->source));
    json.Key("in").IntegerOrNull(fade->rendered->in);
    json.EndObject();
  } else {
    json.Null();
  }
  json.EndObject();
}

void WriteGains(JsonStream& json, const field::Event& event) {
  json.BeginArray();
  for (const field::Gain& gain : event.gains) {
    json.BeginObject();
    json.Key("channels");
    if (gain.channels) {
      WriteRun(json, *gain.channels);
    } else {
      json.Null();
    }
    json.Key("dB").Real(gain.dB);
    json.EndObject();
  }
  json.EndArray();
}

const char* NameOf(field::EventKind kind) {
  constexpr std::array kNames = {"cut", "silence", "aux", "video", "other"};
  return kNames[static_cast<std::size_t>(kind)];
}

/// What only a cut has.
void WriteCut(JsonStream& json, const field::Project& project, const field::Event& event) {
  json.Key("enabled").Boolean(!event.IsOff());
  json.Key("source");
  if (event.source) {
    json.Integer(project.sources[*event.source].index);
  } else {
    json.IntegerOrNull(event.sourceIndex);
  }
  json.Key("sourceChannels");
  WriteRun(json, event.sourceChannels);
  json.Key("tracks");
  WriteRun(json, event.tracks);
  const bool isPlaced = event.complete;
  json.Key("position").IntegerOrNull(isPlaced ? std::optional(event.position) : std::nullopt);
  json.Key("end").IntegerOrNull(isPlaced ? std::optional(event.end) : std::nullopt);
  json.Key("fileOffset")
      .IntegerOrNull(isPlaced ? project.FileOffset(event) : std::optional<std::int64_t>());
  json.Key("fadeIn");
  WriteFade(json, event.fadeIn);
  json.Key("fadeOut");
  WriteFade(json, event.fadeOut);
  json.Key("gains");
  WriteGains(json, event);
}

void WriteEvent(JsonStream& json, const field::Project& project, const field::Event& event) {
  json.BeginObject();
  json.Key("entry").Integer(event.number);
  json.Key("kind").Text(NameOf(event.kind));
  json.Key("name").TextOrNull(event.name);
  if (event.kind == field::EventKind::Cut) {
    WriteCut(json, project, event);
  } else {
    for (const char* const key : {"enabled", "source", "sourceChannels", "tracks", "position",
                                  "end", "fileOffset", "fadeIn", "fadeOut", "gains"}) {
      json.Key(key).Null();
    }
  }
  json.EndObject();
}

void WriteMeant(JsonStream& json, const CheckedProject& checked) {
  if (checked.verdict == check::Verdict::Unreadable) {
    json.Null();
    return;
  }
  const field::Project& project = *checked.project;
  json.BeginObject();
  json.Key("sampleRate").Real(project.rates.sampleRate);
  json.Key("frameRate").Real(project.rates.FrameRate());
  json.Key("sources").BeginArray();
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    WriteSource(json, project.sources[i], checked.media[i]);
  }
  json.EndArray();
  json.Key("events").BeginArray();
  for (const field::Event& event : project.events) WriteEvent(json, project, event);
  json.EndArray();
  json.EndObject();
}

}  // namespace

void WriteFindingJson(JsonStream& json, const Finding& finding) {
  json.BeginObject();
  json.Key("code").Text(RowOf(finding.code).name);
  json.Key("severity").Text(NameOf(finding.severity));
  json.Key("line").Integer(finding.line);
  json.Key("column").Integer(finding.column);
  json.Key("entry").IntegerOrNull(finding.entry);
  json.Key("source").IntegerOrNull(finding.source);
  json.Key("text").Text(finding.text);
  json.Key("effect").Text(finding.effect);
  json.Key("remedy").Text(finding.remedy);
  json.EndObject();
}

void WriteCheckJson(const CheckedProject& checked, std::ostream& out) {
  JsonStream json(out);
  json.BeginObject();
  json.Key("path").Text(checked.path);
  json.Key("verdict").Text(NameOf(checked.verdict));
  WriteCounts(json, checked);
  json.Key("encoding").TextOrNull(checked.project != nullptr ? checked.project->encoding : "");
  json.Key("findings").BeginArray();
  for (const Finding& finding : checked.findings) WriteFindingJson(json, finding);
  json.EndArray();
  json.Key("meant");
  WriteMeant(json, checked);
  json.EndObject();
  json.EndLine();
}

}  // namespace velmora::program
