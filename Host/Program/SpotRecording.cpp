#include "Program/SpotRecording.h"

#include "ADL/ShiftJis.h"
#include "Base/FileNames.h"
#include "Base/Wrapping.h"
#include "Timecode/AdlTime.h"

namespace velmora::program {
namespace {

constexpr std::uint32_t kProjectTitle = 5;
constexpr std::uint32_t kSequenceTitle = 15;

/// A value of the file as people write it: without the quotation marks around it.
std::optional<std::string> PlainText(const char* value) {
  if (value == nullptr) return std::nullopt;
  std::string text = ShiftJisToUtf8(value);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  return text;
}

std::string TitleOf(const host::SpotRecord& record) {
  for (const std::uint32_t id : {kSequenceTitle, kProjectTitle}) {
    const std::optional<std::string>& title = record.constants[id];
    if (title && !title->empty()) return *title;
  }
  const std::string name = FileNameOf(record.projectPath);
  return name.substr(0, name.size() - ExtensionOf(name).size());
}

host::RegionShape ShapeOf(const AES31Event& event) {
  host::RegionShape shape;
  if (event.infade.present) shape.fadeIn = AdlToSamples(event.infade.length);
  if (event.outfade.present) shape.fadeOut = AdlToSamples(event.outfade.length);
  if (event.gain.present) shape.gainDb = event.gain.gainDb;
  return shape;
}

}  // namespace

void SpotRecording::RegionLanded(std::int32_t index, RegionPiece piece) {
  const AES31Event* const event = model_.project->GetEvent(index);
  if (event == nullptr || session_.Regions().empty()) return;
  const std::size_t region = session_.Regions().size() - 1;
  host::RegionOrigin origin{index, event->entryNumber, std::nullopt, piece};
  const std::int32_t source = event->cut.sourceIndex;
  if (model_.project->sourceFiles.contains(source)) origin.source = source;
  session_.Describe(region, origin);
  if (native_ && piece == RegionPiece::Main) session_.Shape(region, ShapeOf(*event));
}

host::SpotRecord SpotRecording::RecordOf(const std::string& projectPath, const SpotOptions& options,
                                         const LeftOut& leftOut) const {
  host::SpotRecord record;
  record.projectPath = projectPath;
  for (std::uint32_t id = 0; id < record.constants.size(); ++id) {
    record.constants[id] = PlainText(model_.project->GetConstant(id));
  }
  record.title = TitleOf(record);
  record.firstTrackNumber = model_.minTrack;
  for (const LeftOut::Part& part : leftOut.Parts()) {
    const AES31Event* const event = model_.project->GetEvent(part.event);
    if (event == nullptr) continue;
    record.leftOut.push_back({part.event, event->entryNumber, HostTrack(*event, model_.minTrack),
                              WrapAdd(AdlToSamples(event->cut.destIn), options.timelineOffset),
                              part.text});
  }
  return record;
}

}  // namespace velmora::program
