#include "Report/Tables.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ostream>
#include <string>

#include "Base/FileNames.h"
#include "Base/Wrapping.h"
#include "Report/Markup.h"
#include "Report/Tracks.h"
#include "Session/SessionClock.h"

namespace velmora::report {
namespace {

enum class Sort { Text, Number };

struct Column {
  const char* heading;
  Sort sort = Sort::Text;
};

/// A name that a project gives may be of any length, and stand in each row.
constexpr std::size_t kLongestBytes = 500;

enum class Search { Offered, None };

struct TableTexts {
  const char* id;
  const char* noun;  ///< of its rows, in the plural
  const char* caption;
  const char* nothing;  ///< in place of the caption, if there are no rows
  Search search = Search::Offered;
};

/// A table's frame, and its rows cell by cell.
class TableWriter {
 public:
  template <std::size_t Count>
  TableWriter(std::ostream& out, const TableTexts& texts, const std::array<Column, Count>& columns,
              std::size_t rows, std::size_t most = kAllRows)
      : out_(out), rows_(std::min(rows, most)) {
    if (rows > 0 && texts.search == Search::Offered) WriteSearch(texts, rows);
    out << "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"Table of " << texts.noun
        << "\"><table id=\"" << texts.id << '"' << (rows == 0 ? " class=\"empty\"" : "");
    if (rows_ < rows) out << " data-rows=\"" << rows << '"';
    out << ">\n<caption>" << (rows == 0 ? texts.nothing : texts.caption);
    if (rows_ < rows) {
      out << " The first " << rows_ << " of " << rows
          << " rows stand in the page, which would grow "
          << "too large; its script makes the others from its facts.";
    }
    out << "</caption>\n<thead><tr>";
    for (const Column& column : columns) {
      const bool isNumber = column.sort == Sort::Number;
      out << "<th scope=\"col\" aria-sort=\"none\"" << (isNumber ? " class=\"n\"" : "")
          << "><button type=\"button\">" << column.heading << "</button></th>";
    }
    out << "</tr></thead>\n<tbody>\n";
  }
  ~TableWriter() { out_ << "\n</tbody></table></div>\n"; }
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  /// Of those that are written here.
  [[nodiscard]] std::size_t Rows() const { return rows_; }

  void Begin(const char* look = "") {
    out_ << "<tr";
    if (*look != '\0') out_ << " class=\"" << look << '"';
    out_ << '>';
  }
  void End() { out_ << "</tr>"; }

  void Text(std::string_view text) {
    out_ << "<td>" << Html(Shortened(text, kLongestBytes)) << "</td>";
  }
  /// Our own markup, its texts escaped.
  void Markup(std::string_view html) { out_ << "<td>" << html << "</td>"; }
  void Number(std::int64_t number) { out_ << "<td>" << number << "</td>"; }
  void Number(const std::optional<std::int64_t>& number) { number ? Number(*number) : Nothing(); }
  /// Only what is there to see is shown: zeros would hide the few numbers among them.
  void Shape(std::int64_t fadeIn, std::int64_t fadeOut, double gainDb) {
    std::string text;
    const auto add = [&text](const std::string& part) {
      text += (text.empty() ? "" : ", ") + part;
    };
    if (fadeIn != 0) add("in " + std::to_string(fadeIn));
    if (fadeOut != 0) add("out " + std::to_string(fadeOut));
    if (gainDb != 0) {
      std::array<char, 64> gain{};
      std::snprintf(gain.data(), gain.size(), "%+.2f dB", gainDb);
      add(gain.data());
    }
    Text(text);
  }
  void Nothing() { out_ << "<td></td>"; }

 private:
  void WriteSearch(const TableTexts& texts, std::size_t rows) {
    out_ << "<div class=\"tools\"><label>Search " << texts.noun
         << " <input type=\"search\" data-table=\"" << texts.id
         << "\" autocomplete=\"off\" spellcheck=\"false\"></label> <output data-count=\""
         << texts.id << "\" data-noun=\"" << texts.noun << "\">" << rows << ' ' << texts.noun
         << "</output><button type=\"button\" data-all=\"" << texts.id
         << "\" hidden>Show all rows</button></div>\n";
  }

  std::ostream& out_;
  const std::size_t rows_;
};

std::optional<std::int64_t> Wide(const std::optional<std::int32_t>& number) {
  return number ? std::optional<std::int64_t>(*number) : std::nullopt;
}

const char* PieceName(const host::SessionRegion& region) {
  if (!region.origin) return "";
  switch (region.origin->piece) {
    case RegionPiece::FadeIn:
      return "fade-in";
    case RegionPiece::Crossfade:
      return "crossfade";
    case RegionPiece::FadeOut:
      return "fade-out";
    case RegionPiece::Main:
      break;
  }
  return "cut";
}

/// What a person does with a message: the text, then what the system makes of it.
std::string MessageText(const MessageRow& row) {
  std::string html = Html(row.text);
  if (!row.effect.empty()) html += "<br><span class=\"dim\">" + Html(row.effect) + "</span>";
  return html;
}

std::string Sign(const MessageRow& row) {
  const std::string name = NameOf(row.weight);
  return "<span class=\"sign " + name + "\">" + name + "</span>";
}

const char* LookOf(EventState state) {
  switch (state) {
    case EventState::Missing:
    case EventState::LeftOut:
      return "gone";
    case EventState::Off:
    case EventState::NoCut:
      return "off";
    case EventState::Placed:
      break;
  }
  return "";
}

std::string KindWord(const std::string& kind) {
  if (kind == "vid") return "video";
  if (kind == "none") return "other";
  return kind;
}

}  // namespace

void WriteMessages(const ReportData& data, std::size_t most, std::ostream& out) {
  constexpr auto kColumns = std::to_array<Column>({{"Weight"},
                                                   {"Message"},
                                                   {"What helps"},
                                                   {"From"},
                                                   {"Line", Sort::Number},
                                                   {"Entry", Sort::Number},
                                                   {"Event", Sort::Number}});
  TableWriter table(out,
                    {"messages", "messages", "Failures, warnings and notes, the gravest first.",
                     "Nothing to tell: no failure, no warning, no note."},
                    kColumns, data.messages.size(), most);
  for (std::size_t i = 0; i < table.Rows(); ++i) {
    const MessageRow& row = data.messages[i];
    table.Begin();
    table.Markup(Sign(row));
    table.Markup(MessageText(row));
    table.Text(row.remedy);
    table.Text(row.code.empty() ? row.kind : row.kind + ": " + row.code);
    table.Number(row.line);
    table.Number(Wide(row.entry));
    table.Number(Wide(row.event));
    table.End();
  }
}

void WriteTracks(const host::TargetInput& input, std::ostream& out) {
  constexpr auto kColumns = std::to_array<Column>({{"Track", Sort::Number},
                                                   {"Cuts", Sort::Number},
                                                   {"Regions", Sort::Number},
                                                   {"Begins"},
                                                   {"Ends"}});
  const host::SessionClock clock(input.rates);
  const std::vector<TrackRow> rows = TracksOf(input);
  TableWriter table(out,
                    {"tracks", "tracks",
                     "Tracks by the project's numbers: cuts of the project, and "
                     "what the session has of them.",
                     "The project has no track.", Search::None},
                    kColumns, rows.size());
  for (const TrackRow& row : rows) {
    table.Begin(row.regions == 0 ? "off" : "");
    table.Number(row.number);
    table.Number(static_cast<std::int64_t>(row.cuts));
    table.Number(static_cast<std::int64_t>(row.regions));
    table.Text(row.regions > 0 ? clock.Timecode(row.first) : "");
    table.Text(row.regions > 0 ? clock.Timecode(row.end) : "");
    table.End();
  }
}

void WriteEvents(const host::TargetInput& input, const std::vector<EventState>& states,
                 std::size_t most, std::ostream& out) {
  constexpr auto kColumns = std::to_array<Column>({{"Event", Sort::Number},
                                                   {"Entry", Sort::Number},
                                                   {"State"},
                                                   {"Kind"},
                                                   {"Name"},
                                                   {"Source", Sort::Number},
                                                   {"Track", Sort::Number},
                                                   {"In"},
                                                   {"Out"},
                                                   {"Position", Sort::Number},
                                                   {"Length", Sort::Number},
                                                   {"Fades and gain"}});
  const host::SessionClock clock(input.rates);
  const std::vector<host::RecordedEvent>& events = input.record.events;
  TableWriter table(out,
                    {"events", "events",
                     "Events of the project, where a spot puts them. Position, length and fades in "
                     "samples.",
                     "The project has no event."},
                    kColumns, events.size(), most);
  for (std::size_t i = 0; i < table.Rows(); ++i) {
    const host::RecordedEvent& event = events[i];
    table.Begin(LookOf(states[i]));
    table.Number(event.event);
    table.Number(event.entry);
    table.Text(NameOf(states[i]));
    table.Text(KindWord(event.kind));
    table.Text(event.name);
    table.Number(Wide(event.source));
    if (event.IsCut()) {
      table.Number(input.record.TrackNumber(event.track));
      table.Text(clock.Timecode(event.position));
      table.Text(clock.Timecode(event.end));
      table.Number(event.position);
      table.Number(WrapSubtract(event.end, event.position));
    } else {
      for (int column = 0; column < 5; ++column) table.Nothing();
    }
    table.Shape(event.fadeIn, event.fadeOut, event.gainDb);
    table.End();
  }
}

void WriteRegions(const host::TargetInput& input, std::size_t most, std::ostream& out) {
  constexpr auto kColumns = std::to_array<Column>({{"Region", Sort::Number},
                                                   {"Name"},
                                                   {"Piece"},
                                                   {"Track", Sort::Number},
                                                   {"In"},
                                                   {"Out"},
                                                   {"Position", Sort::Number},
                                                   {"Length", Sort::Number},
                                                   {"File"},
                                                   {"From", Sort::Number},
                                                   {"Fades and gain"},
                                                   {"Event", Sort::Number}});
  const host::SessionClock clock(input.rates);
  const std::vector<host::SessionRegion>& regions = input.session.Regions();
  TableWriter table(out,
                    {"regions", "regions",
                     "Regions of the session, in order of arrival. Position, length, start inside "
                     "the file and fades in samples.",
                     "No region was placed."},
                    kColumns, regions.size(), most);
  for (std::size_t i = 0; i < table.Rows(); ++i) {
    const host::SessionRegion& region = regions[i];
    table.Begin();
    table.Number(static_cast<std::int64_t>(i));
    table.Text(region.name);
    table.Text(PieceName(region));
    table.Number(input.record.TrackNumber(region.track));
    table.Text(clock.Timecode(region.position));
    table.Text(clock.Timecode(region.End()));
    table.Number(region.position);
    table.Number(region.Length());
    table.Text(FileNameOf(region.path));
    table.Number(region.start);
    table.Shape(region.shape.fadeIn, region.shape.fadeOut, region.shape.gainDb);
    table.Number(region.origin ? std::optional<std::int64_t>(region.origin->event) : std::nullopt);
    table.End();
  }
}

void WriteFiles(const ReportData& data, bool isPlan, std::size_t most, std::ostream& out) {
  constexpr auto kPlanned =
      std::to_array<Column>({{"What"}, {"State"}, {"Event", Sort::Number}, {"Source or target"}});
  constexpr auto kMade = std::to_array<Column>({{"What"},
                                                {"State"},
                                                {"Event", Sort::Number},
                                                {"Path"},
                                                {"Bytes", Sort::Number},
                                                {"SHA-256"}});
  const TableTexts texts = {
      "files", "files",
      isPlan ? "Files that a spot with these options would make."
      : data.files.size() > kMostSummedFiles
          ? "Files that this spot made, with their sizes in bytes. They are too many for checksums."
          : "Files that this spot made, with their sizes in bytes and SHA-256 checksums.",
      isPlan ? "A spot with these options would make no file: regions play their sources."
             : "No file was made: regions play their sources."};
  TableWriter table = isPlan ? TableWriter(out, texts, kPlanned, data.files.size(), most)
                             : TableWriter(out, texts, kMade, data.files.size(), most);
  for (std::size_t i = 0; i < table.Rows(); ++i) {
    const FileRow& file = data.files[i];
    table.Begin(file.state == "failed" ? "gone" : "");
    table.Text(file.what);
    table.Text(file.isFolder ? file.state + " (folder)" : file.state);
    table.Number(Wide(file.event));
    table.Text(file.path);
    if (!isPlan) {
      table.Number(file.bytes);
      table.Text(file.sha256.empty() ? file.noSha256 : file.sha256);
    }
    table.End();
  }
}

}  // namespace velmora::report
