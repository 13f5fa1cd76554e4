#include "Recording/SpotRecording.h"

#include "ADL/ShiftJis.h"
#include "BWF/AES31BWF.h"
#include "Base/FileNames.h"
#include "Base/Wrapping.h"
#include "Model/ProjectSummary.h"
#include "Recording/SpotNotes.h"
#include "Timecode/AdlTime.h"

namespace velmora::recording {
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

const char* NameOf(EditKind kind) {
  switch (kind) {
    case EditKind::Cut:
      return "cut";
    case EditKind::Silence:
      return "silence";
    case EditKind::Vid:
      return "vid";
    case EditKind::Alt:
      return "alt";
    case EditKind::None:
      break;
  }
  return "none";
}

/// The sources' names and paths are bytes of a file system, not texts of the project.
host::RecordedEvent RecordedEventOf(const AES31Project& project, const AES31Event& event,
                                    std::int32_t minTrack, std::int64_t timelineOffset) {
  host::RecordedEvent recorded;
  recorded.entry = event.entryNumber;
  recorded.kind = NameOf(KindOf(event));
  if (!IsCut(event)) return recorded;
  recorded.isOn = IsLive(event);
  recorded.isMissing = event.sourceFile == nullptr || !event.sourceFile->IsValid();
  if (project.sourceFiles.contains(event.cut.sourceIndex)) recorded.source = event.cut.sourceIndex;
  if (event.sourceFile != nullptr) {
    recorded.path = event.sourceFile->GetPath();
    recorded.name = FileNameOf(recorded.path);
  } else {
    recorded.name = MissingSourceAt(project, event.cut.sourceIndex).fileName;
  }
  recorded.track = HostTrack(event, minTrack);
  recorded.position = WrapAdd(AdlToSamples(event.cut.destIn), timelineOffset);
  recorded.end = WrapAdd(AdlToSamples(event.cut.destOut), timelineOffset);
  const host::RegionShape shape = ShapeOf(event);
  recorded.fadeIn = shape.fadeIn;
  recorded.fadeOut = shape.fadeOut;
  recorded.gainDb = shape.gainDb;
  return recorded;
}

}  // namespace

const char* NameOf(FilePass pass) {
  switch (pass) {
    case FilePass::Gain:
      return "gain";
    case FilePass::Fade:
      return "fade";
    case FilePass::Depth:
      break;
  }
  return "depth";
}

void SpotRecording::FileMade(FilePass pass, std::int32_t event, const std::string& path,
                             bool isMade) {
  using State = host::RecordedFile::State;
  files_.push_back({isMade ? State::Made : State::Failed, NameOf(pass), event, path});
}

void SpotRecording::FilePlanned(FilePass pass, std::int32_t event) {
  AES31BWF* const source = project_.project->GetEvent(event)->sourceFile;
  files_.push_back({host::RecordedFile::State::Planned, NameOf(pass), event,
                    source != nullptr ? source->GetPath() : ""});
}

void SpotRecording::Message(host::RecordedMessage::Kind kind, const std::string& text,
                            const std::string& remedy) {
  messages_.push_back({kind, text, remedy});
}

void SpotRecording::Remark(const host::Remark& remark) {
  Message(host::RecordedMessage::Kind::Remark,
          "region of " + session_.Regions()[remark.region].path + ": " + remark.text);
}

void SpotRecording::RegionLanded(std::int32_t index, RegionPiece piece) {
  const AES31Event* const event = project_.project->GetEvent(index);
  if (event == nullptr || session_.Regions().empty()) return;
  const std::size_t region = session_.Regions().size() - 1;
  host::RegionOrigin origin{index, event->entryNumber, std::nullopt, piece};
  const std::int32_t source = event->cut.sourceIndex;
  if (project_.project->sourceFiles.contains(source)) origin.source = source;
  session_.Describe(region, origin);
  if (piece != RegionPiece::Main) return;
  host::RegionShape shape = ShapeOf(*event);
  if (!native_.fades) shape.fadeIn = shape.fadeOut = 0;
  if (!native_.gain) shape.gainDb = 0;
  session_.Shape(region, shape);
}

host::SpotRecord SpotRecording::RecordOf(const std::string& projectPath, const SpotOptions& options,
                                         const LeftOut& leftOut) const {
  host::SpotRecord record;
  record.projectPath = projectPath;
  for (std::uint32_t id = 0; id < record.constants.size(); ++id) {
    record.constants[id] = PlainText(project_.project->GetConstant(id));
  }
  record.title = TitleOf(record);
  record.firstTrackNumber = project_.minTrack;
  for (const LeftOut::Part& part : leftOut.Parts()) {
    const AES31Event* const event = project_.project->GetEvent(part.event);
    if (event == nullptr) continue;
    record.leftOut.push_back({part.event, event->entryNumber, HostTrack(*event, project_.minTrack),
                              WrapAdd(AdlToSamples(event->cut.destIn), options.timelineOffset),
                              part.text, part.remedy});
  }
  return record;
}

void SpotRecording::AddDetails(const SpotOptions& options, std::int32_t positionMode,
                               host::SpotRecord& record) const {
  const AES31Project& project = *project_.project;
  record.projectRate = AdlSampleRate(project_.firstEvent);
  for (std::size_t i = 0; i < project.events.size(); ++i) {
    record.events.push_back(
        RecordedEventOf(project, project.events[i], project_.minTrack, options.timelineOffset));
    record.events.back().event = static_cast<std::int32_t>(i);
  }
  record.files = files_;
  record.messages = messages_;
  record.options = {options.bitDepth,
                    options.doFades != 0,
                    options.doGain != 0,
                    native_.fades || native_.gain,
                    options.copySource != 0 ? options.copyFolder : "",
                    PositionText(positionMode),
                    options.timelineOffset};
}

}  // namespace velmora::recording
