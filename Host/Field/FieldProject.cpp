#include "Field/FieldProject.h"

#include <utility>

#include "Field/Encoding.h"
#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"
#include "Field/Keyword.h"
#include "Field/ProjectReader.h"

namespace velmora::field {
namespace {

/// The texts that name files: first values of (F).
std::vector<std::string_view> LocationsOf(const Tree& tree) {
  std::vector<std::string_view> locations;
  ForEachEntryOf(tree, IsSourceIndex, [&](const Entry& entry, EntryPlace, bool) {
    if (IsKeyword(entry.label, "F")) {
      locations.push_back(ReadSourceTexts(tree, entry).location.text);
    }
    return true;
  });
  return locations;
}

bool HasEventList(const Tree& tree) {
  for (const Section& section : tree.sections) {
    if (!section.inReferenceList && IsEventList(section.name)) return true;
  }
  return false;
}

void ReadTreeOf(Project& project, const std::string& path, const ReadOptions& options) {
  const bool given = IsKnownEncoding(options.encoding);
  if (given && !KeepsAscii(options.encoding)) {
    project.bytes = TextDecoder(options.encoding).ToUtf8(project.bytes);
  }
  project.tree = ReadTree(project.bytes);
  if (given) {
    project.encoding = options.encoding;
    project.bytesEncoding = KeepsAscii(options.encoding) ? options.encoding : "UTF-8";
    return;
  }
  project.encoding = DetectEncoding(project.bytes, LocationsOf(project.tree), path);
  project.bytesEncoding = project.encoding;
}

}  // namespace

std::string Project::TextOf(const Value& value) const {
  TextDecoder decoder(bytesEncoding);
  return DecodedText(decoder, value);
}

std::unique_ptr<Project> ReadProject(std::string bytes, const std::string& path,
                                     const ReadOptions& options) {
  auto project = std::make_unique<Project>();
  project->bytes = std::move(bytes);
  project->times.trust = options.trust;
  ReadTreeOf(*project, path, options);
  project->isAdl = project->tree.hasOpeningTag || HasEventList(project->tree);
  if (!project->isAdl) return project;
  ProjectReader reader(*project);
  reader.ReadHeader();
  reader.ReadSources();
  reader.ReadEvents();
  return project;
}

}  // namespace velmora::field
