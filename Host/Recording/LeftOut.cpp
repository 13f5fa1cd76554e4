#include "Recording/LeftOut.h"

#include "BWF/AES31BWF.h"
#include "Model/ProjectSummary.h"
#include "Session/Printable.h"

namespace velmora::recording {
namespace {

std::string MissingText(const MissingSource& source) {
  const std::string number = std::to_string(source.index);
  if (!source.isInIndex) return "source " + number + " is not in the source index";
  return "the file of source " + number +
         " was not found: " + (source.location.empty() ? "it has no location" : source.location);
}

constexpr const char* kPrepare =
    "velmora prepare makes a project whose files a spot reads; velmora check says why it does not "
    "read this one.";

const char* PieceName(RegionPiece piece) {
  switch (piece) {
    case RegionPiece::FadeIn:
      return "the fade-in";
    case RegionPiece::Crossfade:
      return "the crossfade";
    case RegionPiece::FadeOut:
      return "the fade-out";
    case RegionPiece::Main:
      break;
  }
  return "the region";
}

const char* PassName(FilePass pass) {
  switch (pass) {
    case FilePass::Gain:
      return "the file with its gain";
    case FilePass::Fade:
      return "a fade piece";
    case FilePass::Depth:
      break;
  }
  return "the prepared copy of its audio";
}

const char* CopyCause(std::int32_t status) {
  switch (status) {
    case CopyTargetNotCreated:
      return "the file cannot be created";
    case CopyNotValid:
      return "the source is no valid wave file";
    default:
      return "it could not be made whole";
  }
}

}  // namespace

std::string EventName(AES31Project& project, std::int32_t event) {
  const AES31Event* const found = project.GetEvent(event);
  std::string name = "event " + std::to_string(event);
  if (found == nullptr) return name;
  return name + " (entry " + std::to_string(found->entryNumber) + ", track " +
         std::to_string(found->cut.destChannel) + ")";
}

void LeftOut::Add(std::int32_t event, const std::string& what, const char* remedy) {
  parts_.push_back({event, host::Printable(what), remedy});
}

std::string LeftOut::LineOf(const Part& part) const {
  return EventName(project_, part.event) + ": " + part.text;
}

void LeftOut::NotPcm(std::int32_t event) {
  AES31BWF& file = *project_.GetEvent(event)->sourceFile;
  Add(event,
      "its samples read as silence, for the file is not plain PCM (format tag " +
          std::to_string(file.GetFormat()->formatTag) + "): " + file.GetPath(),
      kPrepare);
}

void LeftOut::Cut(std::int32_t event, const std::string& path) {
  if (!path.empty()) return Add(event, "the file is no valid wave file: " + path, kPrepare);
  Add(event, MissingText(MissingSourceAt(project_, project_.GetEvent(event)->cut.sourceIndex)),
      "Put the file into the project's folder, or let velmora prepare --media DIR look for it.");
}

void LeftOut::File(FilePass pass, std::int32_t event, const std::string& path,
                   std::int32_t status) {
  Add(event, std::string(PassName(pass)) + " is missing, for " + CopyCause(status) + ": " + path,
      "See that the folder takes files and has room, or name another one with --copy-to.");
}

void LeftOut::Region(std::int32_t event, RegionPiece piece, std::int32_t status) {
  Add(event,
      std::string(PieceName(piece)) + " was refused by the host, status " + std::to_string(status),
      "See whether the host is still there and takes regions, then spot this event again with "
      "--only-events.");
}

}  // namespace velmora::recording
