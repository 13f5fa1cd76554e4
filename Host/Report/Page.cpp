#include "Report/Page.h"

#include <ostream>
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

class PageWriter {
 public:
  PageWriter(const host::TargetInput& input, const ReportData& data, std::ostream& out)
      : input_(input), data_(data), out_(out), states_(StatesOf(input)) {}

  void Write(const std::vector<Peaks>& peaks) {
    WriteHead();
    WriteTop(input_, data_, states_, out_);
    WriteContents();
    out_ << "<main id=\"main\">\n";
    Section("overview", "Overview", [this] { WriteOverview(input_, out_); });
    Section("timeline", "Timeline", [&] { WriteTimeline(peaks); });
    Section("messages", "Messages", [this] { WriteMessages(data_, out_); });
    Section("tracks", "Tracks", [this] { WriteTracks(input_, out_); });
    Section("events", "Events", [this] { WriteEvents(input_, states_, out_); });
    Section("regions", "Regions", [this] { WriteRegions(input_, out_); });
    Section("files", "Files", [this] { WriteFiles(data_, input_.record.isPlan, out_); });
    Section("project", "Project header", [this] { WriteConstants(input_.record, out_); });
    out_
        << "</main>\n<footer>Made by Velmora " VELMORA_VERSION
           ". This page is whole in itself and asks for nothing over a network. Its facts stand in "
           "it as JSON, too, in the element <code>facts</code>.</footer>\n"
           "<script type=\"application/json\" id=\"facts\">";
    WriteFacts(input_, data_, out_);
    out_ << "</script>\n<script>" << kPageScript << "</script>\n</body>\n</html>\n";
  }

 private:
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

  void WriteTimeline(const std::vector<Peaks>& peaks) {
    out_ << "<p id=\"picture-text\" class=\"dim\">" << Html(PictureText()) << "</p>\n";
    if (!HasPicture(states_, input_.session)) return;
    out_ << "<div class=\"tools\" role=\"group\" aria-label=\"Zoom\">"
            "<button type=\"button\" id=\"zoom-out\" aria-label=\"Zoom out\">−</button>"
            "<button type=\"button\" id=\"zoom-in\" aria-label=\"Zoom in\">+</button>"
            "<button type=\"button\" id=\"zoom-all\">Whole</button>"
            "<output id=\"zoom\">1×</output></div>\n";
    WritePicture(input_, states_, peaks, out_);
    out_
        << "<ul class=\"legend\" aria-label=\"Legend\"><li class=\"k-cut\">cut</li>"
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
