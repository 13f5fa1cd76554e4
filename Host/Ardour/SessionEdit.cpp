#include "Ardour/SessionEdit.h"

#include <array>
#include <charconv>
#include <filesystem>

#include "Session/SessionClock.h"

namespace velmora::ardour {
namespace {

using pugi::xml_node;

/// Ardour's names of the session's timecode, by the host's frame-rate code.
constexpr std::array<const char*, host::kFrameRates.size()> kTimecodeFormats = {
    "timecode_30",       "timecode_24", "timecode_25",     "timecode_2997",
    "timecode_2997drop", "timecode_30", "timecode_30drop", "timecode_23976",
};

void Set(xml_node node, const char* name, const std::string& value) {
  node.append_attribute(name) = value.c_str();
}

/// The shortest text that reads back as the same number, whatever the locale.
std::string NumberText(double number) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

class Editor {
 public:
  Editor(const ArdourPlan& plan, const TimeWords& times, pugi::xml_document& xml)
      : plan_(plan), times_(times), session_(xml.child("Session")) {}

  std::string Edit(const std::vector<std::string>& trackIds, std::int32_t frameRateCode,
                   EditedRegions& edited) {
    if (std::string cause = WhyNot(); !cause.empty()) return cause;
    nextId_ = session_.attribute("id-counter").as_llong() + 1;
    AddFiles();
    for (std::size_t i = 0; i < plan_.Tracks().size(); ++i) {
      const xml_node playlist =
          session_.child("Playlists")
              .find_child_by_attribute("Playlist", "orig-track-id", trackIds[i].c_str());
      if (!playlist) return "Ardour's session has no playlist of " + plan_.Tracks()[i].name;
      AddRegions(plan_.Tracks()[i], playlist, edited);
    }
    AddRange();
    SetTimecode(frameRateCode);
    session_.attribute("id-counter") = nextId_;
    return {};
  }

 private:
  [[nodiscard]] std::string WhyNot() const {
    for (const char* const name : {"Sources", "Regions", "Locations", "Playlists"}) {
      if (!session_.child(name)) return std::string("Ardour's session has no ") + name;
    }
    if (!session_.attribute("id-counter")) return "Ardour's session does not count its ids";
    const std::string rate = std::to_string(plan_.SampleRate()) + " Hz";
    if (session_.attribute("sample-rate").as_llong() != plan_.SampleRate()) {
      return "Ardour's session is not one of " + rate;
    }
    // Where a sample is no whole number of Ardour's units of time, regions would come to stand
    // beside their places.
    const long long unit =
        session_.child("TempoMap").attribute("superclocks-per-second").as_llong();
    if (unit % plan_.SampleRate() != 0) {
      return "Ardour cannot place regions to the sample at " + rate;
    }
    return {};
  }

  std::string NextId() { return std::to_string(nextId_++); }

  void AddFiles() {
    sources_.resize(plan_.Files().size());
    for (const PlannedTrack& track : plan_.Tracks()) {
      for (const PlannedRegion& region : track.regions) {
        if (sources_[region.file].empty()) AddFile(region.file);
      }
    }
  }

  /// One source for each channel, and the region that shows the whole file in Ardour's list. A
  /// source without the flag "Writable" is never written to by Ardour.
  void AddFile(std::size_t number) {
    const PlannedFile& file = plan_.Files()[number];
    const std::filesystem::path path = file.path;
    for (std::int32_t channel = 0; channel < file.channels; ++channel) {
      const std::string id = NextId();
      xml_node source = session_.child("Sources").append_child("Source");
      Set(source, "name", path.filename());
      Set(source, "take-id", "");
      Set(source, "type", "audio");
      Set(source, "flags", "");
      Set(source, "id", id);
      Set(source, "channel", std::to_string(channel));
      Set(source, "origin", file.path);
      Set(source, "gain", "1");
      sources_[number].push_back(id);
    }
    xml_node region = AddRegion(session_.child("Regions"), NextId(), path.stem(), number);
    Set(region, "whole-file", "1");
    Set(region, "start", times_.Of(0));
    Set(region, "length", times_.Extent(file.frames, 0));
    AddFade(region, "FadeIn", {});
    AddFade(region, "FadeOut", {});
  }

  xml_node AddRegion(xml_node parent, const std::string& id, const std::string& name,
                     std::size_t file) {
    xml_node region = parent.append_child("Region");
    Set(region, "name", name);
    Set(region, "type", "audio");
    Set(region, "id", id);
    for (std::size_t i = 0; i < sources_[file].size(); ++i) {
      Set(region, ("source-" + std::to_string(i)).c_str(), sources_[file][i]);
      Set(region, ("master-source-" + std::to_string(i)).c_str(), sources_[file][i]);
    }
    Set(region, "channels", std::to_string(sources_[file].size()));
    Set(region, "opaque", "1");
    Set(region, "envelope-active", "0");
    region.append_child("Envelope").append_attribute("default") = "yes";
    return region;
  }

  void AddRegions(const PlannedTrack& track, xml_node playlist, EditedRegions& edited) {
    std::size_t layer = 0;
    for (const PlannedRegion& planned : track.regions) {
      const std::string id = NextId();
      xml_node region = AddRegion(playlist, id, planned.name, planned.file);
      Set(region, "start", times_.Of(planned.start));
      Set(region, "length", times_.Extent(planned.length, planned.position));
      Set(region, "layering-index", std::to_string(layer));
      Set(region, "scale-amplitude", NumberText(planned.gain));
      AddFade(region, "FadeIn", planned.fadeIn);
      AddFade(region, "FadeOut", planned.fadeOut);
      edited[id] = {&planned, layer++};
    }
  }

  /// A fade and its inverse, by which Ardour fades what lies under the region. Ardour gives every
  /// region a short fade unless it is switched off.
  void AddFade(xml_node region, const std::string& name, const Ramp& ramp) {
    const bool isIn = name == "FadeIn";
    const bool isActive = ramp.length > 0;
    Set(region, isIn ? "fade-in-active" : "fade-out-active", isActive ? "1" : "0");
    xml_node fade = region.append_child(name.c_str());
    if (!isActive) {
      fade.append_attribute("default") = "yes";
      fade.append_attribute("active") = "0";
      return;
    }
    AddPoints(fade, isIn, ramp);
    AddPoints(region.append_child(("Inverse" + name).c_str()), isIn,
              {ramp.length, 1 - ramp.from, 1 - ramp.to});
  }

  void AddPoints(xml_node fade, bool isIn, const Ramp& ramp) {
    xml_node list = fade.append_child("AutomationList");
    Set(list, "automation-id", isIn ? "fadein" : "fadeout");
    Set(list, "id", NextId());
    Set(list, "interpolation-style", "Linear");
    Set(list, "time-domain", "AudioTime");
    Set(list, "state", "Off");
    const std::string points = times_.Of(0) + ' ' + NumberText(ramp.from) + '\n' +
                               times_.Of(ramp.length) + ' ' + NumberText(ramp.to) + '\n';
    list.append_child("events").append_child(pugi::node_pcdata).set_value(points.c_str());
  }

  /// Without a range an export of the session is empty.
  void AddRange() {
    xml_node range = session_.child("Locations").append_child("Location");
    Set(range, "id", NextId());
    Set(range, "name", "session");
    Set(range, "start", times_.Of(plan_.First()));
    Set(range, "end", times_.Of(plan_.End()));
    Set(range, "flags", "IsSessionRange");
  }

  void SetTimecode(std::int32_t code) {
    if (code < 0 || static_cast<std::size_t>(code) >= kTimecodeFormats.size()) return;
    session_.child("Config")
        .find_child_by_attribute("Option", "name", "timecode-format")
        .attribute("value") = kTimecodeFormats[static_cast<std::size_t>(code)];
  }

  const ArdourPlan& plan_;
  const TimeWords& times_;
  xml_node session_;
  /// Ids, by file and channel; none of a file that no region has.
  std::vector<std::vector<std::string>> sources_;
  std::int64_t nextId_ = 0;
};

}  // namespace

std::string EditSession(const ArdourPlan& plan, const TimeWords& times,
                        const std::vector<std::string>& trackIds, std::int32_t frameRateCode,
                        pugi::xml_document& xml, EditedRegions& edited) {
  return Editor(plan, times, xml).Edit(trackIds, frameRateCode, edited);
}

}  // namespace velmora::ardour
