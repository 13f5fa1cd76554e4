#include "Report/Page.h"

#include <algorithm>
#include <ostream>
#include <string>

#include "Base/Text.h"
#include "Report/Checksum.h"
#include "Report/EventStates.h"
#include "Report/FactsJson.h"
#include "Report/Markup.h"
#include "Report/PageTexts.h"
#include "Report/Picture.h"
#include "Report/Tables.h"
#include "Session/SessionClock.h"
#include "Session/SessionPreset.h"

namespace velmora::report {
namespace {

class PageWriter {
 public:
  PageWriter(const host::TargetInput& input, const ReportData& data, std::ostream& out)
      : input_(input), data_(data), out_(out), states_(StatesOf(input)) {}

  void Write(const std::vector<Peaks>& peaks) {
    WriteHead();
    WriteTop();
    out_ << "<main>\n";
    WriteOverview();
    WriteTimeline(peaks);
    Section("Messages", [this] { WriteMessages(data_, out_); });
    Section("Events", [this] { WriteEvents(input_, states_, out_); });
    Section("Regions", [this] { WriteRegions(input_, out_); });
    Section("Files", [this] { WriteFiles(data_, out_); });
    Section("Project header", [this] { WriteConstants(); });
    out_ << "</main>\n<script type=\"application/json\" id=\"facts\">";
    WriteFacts(input_, data_, out_);
    out_ << "</script>\n<script>" << kPageScript << "</script>\n</body>\n</html>\n";
  }

 private:
  void WriteHead() {
    out_ << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         << "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '"
         << PolicyHash(kPageStyle) << "'; script-src '" << PolicyHash(kPageScript)
         << "'; base-uri 'none'; form-action 'none'\">\n"
         << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         << "<meta name=\"color-scheme\" content=\"light dark\">\n"
         << "<meta name=\"referrer\" content=\"no-referrer\">\n"
         << "<meta name=\"generator\" content=\"Velmora " VELMORA_VERSION "\">\n"
         << "<title>" << Html(input_.record.title) << " – spot report</title>\n"
         << "<style>" << kPageStyle << "</style>\n</head>\n<body>\n"
         << "<a class=\"skip\" href=\"#messages\">To the messages</a>\n";
  }

  void WriteTop() {
    const host::SpotRecord& record = input_.record;
    out_ << "<header>\n<p class=\"kind\">"
         << (record.isPlan ? "Report – nothing was spotted" : "Spot report") << "</p>\n<h1>"
         << Html(record.title) << "</h1>\n";
    if (!record.projectPath.empty()) {
      out_ << "<p class=\"path\">" << Html(record.projectPath) << "</p>\n";
    }
    if (record.isPlan) {
      out_ << "<p class=\"plan\">No file was made but this page. Regions stand where a spot with "
              "these options would put them and show their sources; the table of files lists what "
              "it would make.</p>\n";
    }
    out_ << "</header>\n";
  }

  void Fact(const char* name, const std::string& value) {
    out_ << "<div><dt>" << name << "</dt><dd>" << Html(value) << "</dd></div>\n";
  }

  [[nodiscard]] std::size_t CountOf(EventState state) const {
    return static_cast<std::size_t>(std::count(states_.begin(), states_.end(), state));
  }
  [[nodiscard]] std::size_t CountOf(Weight weight) const {
    return static_cast<std::size_t>(
        std::count_if(data_.messages.begin(), data_.messages.end(),
                      [weight](const MessageRow& row) { return row.weight == weight; }));
  }

  [[nodiscard]] std::string EventCounts() const {
    std::string text = Counted(CountOf(EventState::Placed), "cut") + " placed";
    for (const EventState state :
         {EventState::Missing, EventState::LeftOut, EventState::Off, EventState::NoCut}) {
      const std::size_t count = CountOf(state);
      if (count > 0) text += ", " + std::to_string(count) + ' ' + NameOf(state);
    }
    return text;
  }

  [[nodiscard]] std::string MessageCounts() const {
    if (data_.messages.empty()) return "none";
    std::string text;
    for (const Weight weight : {Weight::Failure, Weight::Warning, Weight::Note}) {
      const std::size_t count = CountOf(weight);
      if (count == 0) continue;
      text += (text.empty() ? "" : ", ") + Counted(count, NameOf(weight));
    }
    return text;
  }

  [[nodiscard]] std::string AudioText() const {
    const host::RecordedOptions& options = input_.record.options;
    std::string text = std::to_string(options.bitDepth) + " bit";
    if (options.native) text += ", fades and gain as facts of the regions";
    if (options.fades) text += ", fades rendered";
    if (options.gain) text += ", gain rendered";
    if (!options.copyFolder.empty()) text += ", copied to " + options.copyFolder;
    return text;
  }

  void WriteOverview() {
    const host::SpotRecord& record = input_.record;
    const host::SessionSummary summary = input_.session.Summary();
    const host::SessionClock clock(input_.rates);
    out_ << "<section aria-labelledby=\"h-overview\">\n<h2 id=\"h-overview\">Overview</h2>\n"
            "<dl class=\"facts\">\n";
    Fact("Session", host::SampleRateName(input_.rates.sampleRate) + ", " + clock.Rate().name +
                        " frames a second");
    Fact("Project", record.projectRate > 0 ? host::SampleRateName(record.projectRate)
                                           : "names no sample rate");
    Fact("Events", EventCounts());
    Fact("Regions", Counted(summary.regions, "region") + " on " + Counted(summary.tracks, "track") +
                        ", of " + Counted(summary.files, "file"));
    if (summary.regions > 0) {
      Fact("Span", clock.Timecode(summary.first) + " to " + clock.Timecode(summary.end));
    }
    Fact("Position",
         record.options.position +
             (record.options.timelineOffset != 0
                  ? ", moved by " + std::to_string(record.options.timelineOffset) + " samples"
                  : ""));
    Fact("Audio", AudioText());
    Fact("Messages", MessageCounts());
    out_ << "</dl>\n</section>\n";
  }

  void WriteTimeline(const std::vector<Peaks>& peaks) {
    out_ << "<section aria-labelledby=\"h-timeline\">\n<h2 id=\"h-timeline\">Timeline</h2>\n"
            "<p id=\"picture-text\" class=\"dim\">"
         << Html(PictureText())
         << "</p>\n<div class=\"tools\" role=\"group\" aria-label=\"Zoom\">"
            "<button type=\"button\" id=\"zoom-out\" aria-label=\"Zoom out\">−</button> "
            "<button type=\"button\" id=\"zoom-in\" aria-label=\"Zoom in\">+</button> "
            "<button type=\"button\" id=\"zoom-all\">Whole</button> "
            "<output id=\"zoom\" aria-live=\"polite\">1×</output></div>\n";
    WritePicture(input_, states_, peaks, out_);
    out_ << "<ul class=\"legend\" aria-label=\"Legend\"><li class=\"k-cut\">cut</li>"
            "<li class=\"k-fade\">fade</li><li class=\"k-cross\">crossfade</li>"
            "<li class=\"k-gone\">missing</li><li class=\"k-off\">off</li></ul>\n"
            "<p id=\"about\" class=\"about\" aria-live=\"polite\">Point at a region, or give the "
            "picture the keyboard and use the arrow keys.</p>\n</section>\n";
  }

  /// The picture in words.
  [[nodiscard]] std::string PictureText() const {
    const host::SessionSummary summary = input_.session.Summary();
    const host::SessionClock clock(input_.rates);
    std::string text =
        Counted(summary.regions, "region") + " on " + Counted(summary.tracks, "track");
    if (summary.regions > 0) {
      text += ", from " + clock.Timecode(summary.first) + " to " + clock.Timecode(summary.end);
    }
    return text +
           ". The tables of regions and events tell all that the picture shows. Arrow keys go from "
           "region to region, + and - zoom, Enter goes to the table.";
  }

  template <class Body>
  void Section(const std::string& heading, Body body) {
    const std::string id = "h-" + heading.substr(0, heading.find(' '));
    out_ << "<section class=\"table\" aria-labelledby=\"" << id << "\">\n<h2 id=\"" << id << "\">"
         << heading << "</h2>\n";
    body();
    out_ << "</section>\n";
  }

  void WriteConstants() {
    out_ << "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"Table of the project "
            "header\"><table id=\"constants\">\n<caption>What the project says of itself"
            "</caption>\n<thead><tr><th scope=\"col\">Section</th><th scope=\"col\">Keyword</th>"
            "<th scope=\"col\">Value</th></tr></thead>\n<tbody>\n";
    for (std::size_t id = 0; id < kProjectConstants.size(); ++id) {
      const std::optional<std::string>& value = input_.record.constants[id];
      out_ << "<tr><td>" << kProjectConstants[id].section << "</td><th scope=\"row\">"
           << kProjectConstants[id].keyword << "</th><td>"
           << (value ? Html(*value) : "<span class=\"dim\">not given</span>") << "</td></tr>\n";
    }
    out_ << "</tbody></table></div>\n";
  }

  const host::TargetInput& input_;
  const ReportData& data_;
  std::ostream& out_;
  const std::vector<EventState> states_;
};

}  // namespace

void WritePage(const host::TargetInput& input, const ReportData& data,
               const std::vector<Peaks>& peaks, std::ostream& out) {
  PageWriter(input, data, out).Write(peaks);
}

}  // namespace velmora::report
