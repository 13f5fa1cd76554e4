#include "DawProject/ProjectXml.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "ADL/ProjectConstants.h"
#include "DawProject/Seconds.h"
#include "Session/HeardClips.h"
#include "Session/RegionLabel.h"
#include "Session/SessionClock.h"
#include "Session/XmlText.h"

namespace velmora::dawproject {
namespace {

// A session has no tempo and no metre, and importers expect both. These are the usual ones to begin
// with; all times are seconds and do not depend on them.
constexpr double kBeatsPerMinute = 120;
constexpr int kBeatsInABar = 4;

void Set(pugi::xml_node node, const char* name, const std::string& value) {
  node.append_attribute(name).set_value(value.c_str());
}
void Set(pugi::xml_node node, const char* name, const char* value) {
  node.append_attribute(name).set_value(value);
}

pugi::xml_node AddParameter(pugi::xml_node parent, const char* name, const char* unit,
                            double value) {
  pugi::xml_node parameter = parent.append_child(name);
  Set(parameter, "unit", unit);
  Set(parameter, "value", NumberText(value));
  return parameter;
}

void AddTransport(pugi::xml_node project) {
  pugi::xml_node transport = project.append_child("Transport");
  pugi::xml_node tempo = AddParameter(transport, "Tempo", "bpm", kBeatsPerMinute);
  Set(tempo, "id", "tempo");
  pugi::xml_node metre = transport.append_child("TimeSignature");
  Set(metre, "id", "metre");
  Set(metre, "numerator", std::to_string(kBeatsInABar));
  Set(metre, "denominator", "4");
}

class ProjectMaker {
 public:
  ProjectMaker(const ProjectParts& parts, std::vector<std::string>& notes)
      : parts_(parts),
        notes_(notes),
        sampleRate_(static_cast<double>(host::SessionClock(parts.input.rates).SampleRate())) {}

  bool Make(pugi::xml_node project, const host::TargetProgress& progress) {
    AddStructure(project.append_child("Structure"));
    pugi::xml_node arrangement = project.append_child("Arrangement");
    Set(arrangement, "id", "arrangement");
    pugi::xml_node lanes = arrangement.append_child("Lanes");
    Set(lanes, "timeUnit", "seconds");
    const std::vector<std::int64_t> tracks = parts_.input.session.Tracks();
    for (std::size_t i = 0; i < tracks.size(); ++i) {
      if (progress && !progress(static_cast<double>(i) / static_cast<double>(tracks.size()))) {
        return false;
      }
      AddClips(lanes, tracks[i]);
    }
    AddMarkers(arrangement);
    return true;
  }

 private:
  [[nodiscard]] std::string Seconds(std::int64_t samples) const {
    return SecondsText(samples, sampleRate_);
  }
  static std::string TrackId(std::int64_t track) { return "track" + std::to_string(track); }

  /// A track is as wide as its widest region.
  void AddStructure(pugi::xml_node structure) {
    std::unordered_map<std::int64_t, std::int32_t> channels;
    for (const host::SessionRegion& region : parts_.usable.Regions().Regions()) {
      if (region.Length() <= 0) continue;
      std::int32_t& widest = channels[region.track];
      widest = std::max(widest, parts_.media.Of(region.path).facts->channels);
    }
    for (const std::int64_t number : parts_.input.session.Tracks()) {
      pugi::xml_node track = structure.append_child("Track");
      Set(track, "contentType", "audio");
      Set(track, "loaded", "true");
      Set(track, "id", TrackId(number));
      Set(track, "name", "Track " + std::to_string(parts_.input.record.TrackNumber(number)));
      pugi::xml_node channel = track.append_child("Channel");
      Set(channel, "id", "channel" + std::to_string(number));
      Set(channel, "role", "regular");
      Set(channel, "audioChannels", std::to_string(std::max(channels[number], 1)));
      pugi::xml_node pan = AddParameter(channel, "Pan", "normalized", 0.5);
      Set(pan, "min", "0");
      Set(pan, "max", "1");
      pugi::xml_node volume = AddParameter(channel, "Volume", "linear", 1);
      Set(volume, "min", "0");
      Set(volume, "max", "2");
    }
  }

  void AddClips(pugi::xml_node lanes, std::int64_t track) {
    pugi::xml_node lane = lanes.append_child("Lanes");
    Set(lane, "track", TrackId(track));
    Set(lane, "timeUnit", "seconds");
    pugi::xml_node clips = lane.append_child("Clips");
    Set(clips, "timeUnit", "seconds");
    host::HeardClips told = host::ClipsOf(parts_.usable.Regions(), parts_.usable.Heard(), track);
    host::CutToFiles(
        parts_.usable.Regions(),
        [this](const host::SessionRegion& region) {
          return std::optional(parts_.media.Of(region.path).facts->frames);
        },
        told.clips);
    for (const host::HeardClip& clip : told.clips) AddClip(clips, clip);
    for (const host::Remark& remark : told.remarks) Note(remark.region, remark.text);
  }

  void AddClip(pugi::xml_node clips, const host::HeardClip& heard) {
    const host::SessionRegion& region = parts_.usable.Regions().Regions()[heard.region];
    pugi::xml_node clip = clips.append_child("Clip");
    Set(clip, "time", Seconds(heard.position));
    Set(clip, "duration", Seconds(heard.Length()));
    Set(clip, "contentTimeUnit", "seconds");
    Set(clip, "playStart", Seconds(region.start + (heard.position - region.position)));
    Set(clip, "fadeTimeUnit", "seconds");
    // A fade-in below 0 is a crossfade: the clip begins that much before its time.
    Set(clip, "fadeInTime", Seconds(heard.crossfade > 0 ? -heard.crossfade : heard.fadeIn));
    Set(clip, "fadeOutTime", Seconds(heard.fadeOut));
    Set(clip, "name", host::XmlText(region.name));

    const double gain = parts_.usable.Heard().Shapes()[heard.region].gain;
    if (gain == 1) return AddAudio(clip, region);
    pugi::xml_node lanes = clip.append_child("Lanes");
    AddAudio(lanes, region);
    pugi::xml_node points = lanes.append_child("Points");
    Set(points, "timeUnit", "seconds");
    Set(points, "unit", "linear");
    Set(points.append_child("Target"), "expression", "gain");
    pugi::xml_node point = points.append_child("RealPoint");
    Set(point, "time", "0");
    Set(point, "value", NumberText(gain));
    Set(point, "interpolation", "hold");
  }

  void AddAudio(pugi::xml_node parent, const host::SessionRegion& region) {
    const media::AudioFacts& facts = *parts_.media.Of(region.path).facts;
    pugi::xml_node audio = parent.append_child("Audio");
    Set(audio, "timeUnit", "seconds");
    Set(audio, "channels", std::to_string(facts.channels));
    Set(audio, "sampleRate", std::to_string(facts.sampleRate));
    Set(audio, "duration", SecondsText(facts.frames, facts.sampleRate));
    pugi::xml_node file = audio.append_child("File");
    const bool isInside = parts_.inside != nullptr;
    Set(file, "path", isInside ? parts_.inside->Of(region.path) : region.path);
    Set(file, "external", isInside ? "false" : "true");
  }

  void AddMarkers(pugi::xml_node arrangement) const {
    if (parts_.absences.empty()) return;
    pugi::xml_node markers = arrangement.append_child("Markers");
    Set(markers, "timeUnit", "seconds");
    for (const Absence& absence : parts_.absences) {
      pugi::xml_node marker = markers.append_child("Marker");
      Set(marker, "time", Seconds(absence.position));
      Set(marker, "name", host::XmlText("Left out: " + absence.text));
      Set(marker, "color", "#ff0000");
    }
  }

  void Note(std::size_t region, const std::string& text) {
    notes_.push_back(host::RegionLabel(parts_.input, parts_.usable.Original(region)) + ": " + text);
  }

  const ProjectParts& parts_;
  std::vector<std::string>& notes_;
  double sampleRate_;
};

/// Null for a constant that the project does not give.
const std::string* ConstantOf(const host::SpotRecord& record, std::string_view keyword) {
  for (std::size_t i = 0; i < kProjectConstants.size(); ++i) {
    if (kProjectConstants[i].keyword == keyword) {
      return record.constants[i] ? &*record.constants[i] : nullptr;
    }
  }
  return nullptr;
}

}  // namespace

bool MakeProjectXml(const ProjectParts& parts, pugi::xml_document& xml,
                    std::vector<std::string>& notes, const host::TargetProgress& progress) {
  pugi::xml_node project = xml.append_child("Project");
  Set(project, "version", "1.0");
  pugi::xml_node application = project.append_child("Application");
  Set(application, "name", "Velmora");
  Set(application, "version", VELMORA_VERSION);
  AddTransport(project);
  return ProjectMaker(parts, notes).Make(project, progress);
}

void MakeMetadataXml(const host::SpotRecord& record, pugi::xml_document& xml) {
  pugi::xml_node metadata = xml.append_child("MetaData");
  const auto add = [&](const char* name, const std::string* text) {
    if (text == nullptr || text->empty()) return;
    metadata.append_child(name)
        .append_child(pugi::node_pcdata)
        .set_value(host::XmlText(*text).c_str());
  };
  add("Title", &record.title);
  add("Comment", ConstantOf(record, "PROJ_NOTES"));
}

}  // namespace velmora::dawproject
