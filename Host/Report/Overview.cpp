#include "Report/Overview.h"

#include <algorithm>
#include <ostream>
#include <string>

#include "Base/Text.h"
#include "Report/Markup.h"
#include "Session/SessionClock.h"
#include "Session/SessionPreset.h"

namespace velmora::report {
namespace {

constexpr std::size_t kLongestTitleBytes = 200;
constexpr std::size_t kLongestValueBytes = 2000;

std::string EventCounts(const std::vector<EventState>& states) {
  const auto countOf = [&](EventState state) {
    return static_cast<std::size_t>(std::count(states.begin(), states.end(), state));
  };
  std::string text = Counted(countOf(EventState::Placed), "cut") + " placed";
  for (const EventState state :
       {EventState::Missing, EventState::LeftOut, EventState::Off, EventState::NoCut}) {
    const std::size_t count = countOf(state);
    if (count > 0) text += ", " + std::to_string(count) + ' ' + NameOf(state);
  }
  return text;
}

std::string MessageCounts(const ReportData& data) {
  std::string text;
  for (const Weight weight : {Weight::Failure, Weight::Warning, Weight::Note}) {
    const auto count = static_cast<std::size_t>(
        std::count_if(data.messages.begin(), data.messages.end(),
                      [weight](const MessageRow& row) { return row.weight == weight; }));
    if (count > 0) text += (text.empty() ? "" : ", ") + Counted(count, NameOf(weight));
  }
  return text.empty() ? "no failures, no warnings" : text;
}

std::string AudioText(const host::RecordedOptions& options) {
  std::string text = std::to_string(options.bitDepth) + " bit";
  if (options.native) text += ", fades and gain as facts of the regions";
  if (options.fades) text += ", fades rendered";
  if (options.gain) text += ", gain rendered";
  if (!options.copyFolder.empty()) text += ", copied to " + options.copyFolder;
  return text;
}

std::string PositionText(const host::RecordedOptions& options) {
  if (options.timelineOffset == 0) return options.position;
  return options.position + ", moved by " + std::to_string(options.timelineOffset) + " samples";
}

}  // namespace

void WriteTop(const host::TargetInput& input, const ReportData& data,
              const std::vector<EventState>& states, std::ostream& out) {
  const host::SpotRecord& record = input.record;
  out << "<header>\n<p class=\"kind\">"
      << (record.isPlan ? "Report – nothing was spotted" : "Spot report") << "</p>\n<h1>"
      << Html(Shortened(record.title, kLongestTitleBytes)) << "</h1>\n";
  if (!record.projectPath.empty()) {
    out << "<p class=\"path\">" << Html(record.projectPath) << "</p>\n";
  }
  // Messages stand in the order of their weight.
  const Weight weight = data.messages.empty() ? Weight::Note : data.messages.front().weight;
  out << "<p class=\"verdict " << NameOf(weight) << "\"><a href=\"#h-messages\">"
      << MessageCounts(data) << "</a> · " << EventCounts(states) << "</p>\n";
  if (record.isPlan && !states.empty()) {
    out << "<p class=\"dim\">No file was made but this page. Regions stand where a spot with these "
           "options would put them and show their sources; the table of files lists what it would "
           "make.</p>\n";
  }
  out << "</header>\n";
}

void WriteOverview(const host::TargetInput& input, std::ostream& out) {
  const host::SpotRecord& record = input.record;
  const host::SessionSummary summary = input.session.Summary();
  const host::SessionClock clock(input.rates);
  const auto fact = [&out](const char* name, const std::string& value) {
    out << "<div><dt>" << name << "</dt><dd>" << Html(value) << "</dd></div>\n";
  };
  out << "<dl class=\"facts\">\n";
  fact("Session", host::SampleRateName(input.rates.sampleRate) + ", " + clock.Rate().name +
                      " frames a second");
  fact("Project",
       record.projectRate > 0 ? host::SampleRateName(record.projectRate) : "names no sample rate");
  fact("Regions", Counted(summary.regions, "region") + " on " + Counted(summary.tracks, "track") +
                      ", of " + Counted(summary.files, "file"));
  if (summary.regions > 0) {
    fact("Span", clock.Timecode(summary.first) + " to " + clock.Timecode(summary.end));
  }
  if (!record.options.position.empty()) fact("Position", PositionText(record.options));
  fact("Audio", AudioText(record.options));
  out << "</dl>\n";
}

void WriteConstants(const host::SpotRecord& record, std::ostream& out) {
  out << "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"Table of the project "
         "header\"><table id=\"constants\">\n<caption>What the project says of itself.</caption>\n"
         "<thead><tr><th scope=\"col\">Section</th><th scope=\"col\">Keyword</th>"
         "<th scope=\"col\">Value</th></tr></thead>\n<tbody>\n";
  std::string absent;
  for (std::size_t id = 0; id < kProjectConstants.size(); ++id) {
    const std::optional<std::string>& value = record.constants[id];
    const auto& [section, keyword, displayName] = kProjectConstants[id];
    if (!value) {
      absent += (absent.empty() ? "" : ", ") + std::string(keyword);
      continue;
    }
    out << "<tr><td>" << section << "</td><th scope=\"row\">" << keyword << "</th><td>"
        << Html(Shortened(*value, kLongestValueBytes)) << "</td></tr>\n";
  }
  out << "</tbody></table></div>\n";
  if (!absent.empty()) out << "<p class=\"dim\">Not given: " << absent << ".</p>\n";
}

}  // namespace velmora::report
