#include "Report/Page.h"

#include <ostream>
#include <sstream>
#include <string>

#include "Base/Text.h"
#include "Report/Checksum.h"
#include "Report/EventStates.h"
#include "Report/FactsJson.h"
#include "Report/Markup.h"
#include "Report/Overview.h"
#include "Report/PageTexts.h"
#include "Report/Picture.h"
#include "Report/Tables.h"
#include "Session/SessionClock.h"

namespace velmora::report {
namespace {

constexpr std::size_t kLongestTitleBytes = 100;

/// What a page of 5,000 events has to stay below: it is sent by mail and opened by a browser.
constexpr std::size_t kMostBytes = 4'950'000;
/// For the head, the overview and the project's header.
constexpr std::size_t kRoomForTheRest = 20'000;
/// More than a screen holds, and than the script shows at first.
constexpr std::size_t kFirstRows = 200;

/// Parts that grow with the project, as they stand in the page.
struct PageParts {
  std::string messages, events, regions, files, facts;

  [[nodiscard]] std::size_t Bytes() const {
    return messages.size() + events.size() + regions.size() + files.size() + facts.size();
  }
};

class PageWriter {
 public:
  PageWriter(const host::TargetInput& input, const ReportData& data, std::ostream& out)
      : input_(input), data_(data), out_(out), states_(StatesOf(input)) {}

  void Write(const std::vector<Peaks>& peaks) {
    std::string timeline = Written([&](std::ostream& out) { WriteTimeline(peaks, out); });
    const PageParts parts = Fit(timeline.size());
    if (parts.Bytes() + timeline.size() > kMostBytes - kRoomForTheRest) {
      // Of so many regions each is a few pixels wide: their waveforms are what is missed least.
      const std::vector<Peaks> none(peaks.size());
      timeline = Written([&](std::ostream& out) { WriteTimeline(none, out); });
    }
    WriteHead();
    WriteTop(input_, data_, states_, out_);
    WriteContents();
    out_ << "<main id=\"main\">\n";
    Section("overview", "Overview", [this] { WriteOverview(input_, out_); });
    Section("timeline", "Timeline", [&] { out_ << timeline; });
    Section("messages", "Messages", [&] { out_ << parts.messages; });
    Section("tracks", "Tracks", [this] { WriteTracks(input_, out_); });
    Section("events", "Events", [&] { out_ << parts.events; });
    Section("regions", "Regions", [&] { out_ << parts.regions; });
    Section("files", "Files", [&] { out_ << parts.files; });
    Section("project", "Project header", [this] { WriteConstants(input_.record, out_); });
    out_
        << "</main>\n<footer>Made by Velmora " VELMORA_VERSION
           ". This page is whole in itself and asks for nothing over a network. Its facts stand in "
           "it as JSON, too, in the element <code>facts</code>.</footer>\n"
           "<script type=\"application/json\" id=\"facts\">";
    out_ << parts.facts << "</script>\n<script>" << kPageScript << "</script>\n</body>\n</html>\n";
  }

 private:
  template <class Body>
  static std::string Written(Body body) {
    std::ostringstream out;
    body(out);
    return out.str();
  }

  /// Chooses the fullest form of the parts that grow with the project with which the page stays
  /// below its size: first rows leave the tables, then the facts lose their names.
  /// @param taken bytes of the timeline
  [[nodiscard]] PageParts Fit(std::size_t taken) const {
    taken += kPageStyle.size() + kPageScript.size() + kRoomForTheRest;
    taken += Written([this](std::ostream& out) { WriteTracks(input_, out); }).size();
    const PageParts whole = Parts(kAllRows), cut = Parts(kFirstRows);
    PageParts parts;
    for (const FactsForm form : {FactsForm::Objects, FactsForm::Rows}) {
      parts = whole;
      parts.facts = Written([&](std::ostream& out) { WriteFacts(input_, data_, form, out); });
      for (const auto table :
           {&PageParts::files, &PageParts::regions, &PageParts::messages, &PageParts::events}) {
        if (taken + parts.Bytes() <= kMostBytes) return parts;
        parts.*table = cut.*table;
      }
      if (taken + parts.Bytes() <= kMostBytes) break;
    }
    return parts;
  }

  /// The tables, with at most so many rows.
  [[nodiscard]] PageParts Parts(std::size_t most) const {
    PageParts parts;
    parts.messages = Written([&](std::ostream& out) { WriteMessages(data_, most, out); });
    parts.events = Written([&](std::ostream& out) { WriteEvents(input_, states_, most, out); });
    parts.regions = Written([&](std::ostream& out) { WriteRegions(input_, most, out); });
    parts.files =
        Written([&](std::ostream& out) { WriteFiles(data_, input_.record.isPlan, most, out); });
    return parts;
  }

  void WriteHead() {
    out_ << "<!DOCTYPE html>\n<html lang=\"en\" dir=\"ltr\">\n<head>\n<meta charset=\"utf-8\">\n"
         << "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '"
         << PolicyHash(kPageStyle) << "'; script-src '" << PolicyHash(kPageScript)
         << "'; base-uri 'none'; form-action 'none'\">\n"
         << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         << "<meta name=\"color-scheme\" content=\"light dark\">\n"
         << "<meta name=\"referrer\" content=\"no-referrer\">\n"
         << "<meta name=\"generator\" content=\"Velmora " VELMORA_VERSION "\">\n"
         << "<title>" << Html(Shortened(input_.record.title, kLongestTitleBytes))
         << " – spot report</title>\n<style>" << kPageStyle << "</style>\n</head>\n<body>\n"
         << "<a class=\"skip\" href=\"#main\">Skip to the content</a>\n";
  }

  void WriteContents() {
    out_ << "<nav aria-label=\"Contents\"><ul>\n";
    const auto link = [this](const char* name, const char* heading) {
      out_ << "<li><a href=\"#h-" << name << "\">" << heading << "</a></li>\n";
    };
    const auto counted = [this](const char* name, const char* heading, std::size_t count) {
      out_ << "<li><a href=\"#h-" << name << "\">" << heading << "</a> <span>" << count
           << "</span></li>\n";
    };
    link("overview", "Overview");
    link("timeline", "Timeline");
    counted("messages", "Messages", data_.messages.size());
    link("tracks", "Tracks");
    counted("events", "Events", states_.size());
    counted("regions", "Regions", input_.session.Regions().size());
    counted("files", "Files", data_.files.size());
    link("project", "Project header");
    out_ << "</ul></nav>\n";
  }

  /// @param name what the section's ids and links end with
  template <class Body>
  void Section(const char* name, const char* heading, Body body) {
    out_ << "<section aria-labelledby=\"h-" << name << "\">\n<h2 id=\"h-" << name
         << "\" tabindex=\"-1\">" << heading << "</h2>\n";
    body();
    out_ << "</section>\n";
  }

  void WriteTimeline(const std::vector<Peaks>& peaks, std::ostream& out) const {
    out << "<p id=\"picture-text\" class=\"dim\">" << Html(PictureText()) << "</p>\n";
    if (!HasPicture(states_, input_.session)) return;
    out << "<div class=\"tools\" role=\"group\" aria-label=\"Zoom\">"
           "<button type=\"button\" id=\"zoom-out\" aria-label=\"Zoom out\">−</button>"
           "<button type=\"button\" id=\"zoom-in\" aria-label=\"Zoom in\">+</button>"
           "<button type=\"button\" id=\"zoom-all\">Whole</button>"
           "<output id=\"zoom\">1×</output></div>\n";
    WritePicture(input_, states_, peaks, out);
    out << "<ul class=\"legend\" aria-label=\"Legend\"><li class=\"k-cut\">cut</li>"
           "<li class=\"k-fade\">fade</li><li class=\"k-cross\">crossfade</li>"
           "<li class=\"k-gone\">missing or left out</li><li class=\"k-off\">off</li></ul>\n"
           "<div id=\"about\" class=\"about\"><p class=\"dim\">Point at a region to see its facts. "
           "Drag to move, Ctrl and wheel to zoom. With the keyboard: arrow keys go from region to "
           "region, + and - zoom, 0 shows the whole, Enter goes to the row in the "
           "table.</p></div>\n";
  }

  /// The picture in words.
  [[nodiscard]] std::string PictureText() const {
    const host::SessionSummary summary = input_.session.Summary();
    if (!HasPicture(states_, input_.session)) return "There is no cut to show.";
    const host::SessionClock clock(input_.rates);
    std::string text =
        Counted(summary.regions, "region") + " on " + Counted(summary.tracks, "track");
    if (summary.regions > 0) {
      text += ", from " + clock.Timecode(summary.first) + " to " + clock.Timecode(summary.end);
    }
    return text + ". The tables of regions and events tell all that the picture shows.";
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
