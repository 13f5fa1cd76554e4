#include <algorithm>

#include "Report/Markup.h"
#include "Report/ReportData.h"
#include "Session/RegionLabel.h"

namespace velmora::report {
namespace {

using host::RecordedMessage;

Weight WeightOf(RecordedMessage::Kind kind) {
  switch (kind) {
    case RecordedMessage::Kind::Warning:
      return Weight::Warning;
    case RecordedMessage::Kind::Trouble:
      return Weight::Failure;
    case RecordedMessage::Kind::Remark:
    case RecordedMessage::Kind::Note:
      break;
  }
  return Weight::Note;
}

/// What is misplaced or lost does not stop a spot, what fails does.
Weight WeightOf(const host::RecordedFinding& finding) {
  if (finding.severity == "fails") return Weight::Failure;
  return finding.severity == "note" ? Weight::Note : Weight::Warning;
}

MessageRow Row(Weight weight, const char* kind, std::string text, std::string remedy = {}) {
  MessageRow row;
  row.weight = weight;
  row.kind = kind;
  row.text = std::move(text);
  row.remedy = std::move(remedy);
  return row;
}

void AddTarget(const host::RecordedTarget& target, std::vector<MessageRow>& rows) {
  const std::string who = target.name + ": ";
  if (!target.trouble.empty()) {
    rows.push_back(Row(Weight::Failure, "target", who + target.trouble,
                       "Take away the cause that is named, then spot again with this target."));
  }
  const std::string lacks = who + "left out: ";
  for (const std::string& line : target.leftOut) {
    rows.push_back(Row(Weight::Failure, "target", lacks + line,
                       "Bring the file to what the target takes (velmora prepare --resample "
                       "changes sample rates), then spot again."));
  }
  for (const std::string& line : target.notes) {
    rows.push_back(Row(Weight::Note, "target", who + line));
  }
}

}  // namespace

const char* NameOf(Weight weight) {
  switch (weight) {
    case Weight::Failure:
      return "failure";
    case Weight::Warning:
      return "warning";
    case Weight::Note:
      break;
  }
  return "note";
}

std::vector<MessageRow> MessagesOf(const host::TargetInput& input) {
  const host::SpotRecord& record = input.record;
  std::vector<MessageRow> rows;
  if (record.wasStopped) {
    rows.push_back(Row(Weight::Failure, "spot", "The spot was stopped before its end.",
                       "Spot again; what was made stays where it is."));
  }
  for (const host::LeftOutPart& part : record.leftOut) {
    MessageRow row = Row(Weight::Failure, "left out", part.text, part.remedy);
    row.event = part.event;
    row.entry = part.entry;
    rows.push_back(std::move(row));
  }
  for (const RecordedMessage& message : record.messages) {
    rows.push_back(Row(WeightOf(message.kind), "spot", message.text, message.remedy));
  }
  for (const host::RecordedTarget& target : record.targets) AddTarget(target, rows);
  for (const host::Remark& remark : input.heard.Remarks()) {
    rows.push_back(
        Row(Weight::Note, "spot", host::RegionLabel(input, remark.region) + ": " + remark.text));
  }
  for (const host::RecordedFinding& finding : record.findings) {
    MessageRow row = Row(WeightOf(finding), "check", finding.text, finding.remedy);
    row.code = finding.code;
    if (finding.line > 0) row.line = finding.line;
    row.entry = finding.entry;
    row.effect = finding.effect;
    rows.push_back(std::move(row));
  }
  // A name of 100 KB may stand in the message of each event.
  constexpr std::size_t kLongestBytes = 1000;
  for (MessageRow& row : rows) {
    row.text = Shortened(row.text, kLongestBytes);
    row.effect = Shortened(row.effect, kLongestBytes);
  }
  std::stable_sort(rows.begin(), rows.end(), [](const MessageRow& one, const MessageRow& other) {
    return one.weight < other.weight;
  });
  return rows;
}

}  // namespace velmora::report
