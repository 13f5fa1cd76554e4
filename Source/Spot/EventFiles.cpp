#include "Spot/EventFiles.h"

#include <cmath>

#include "BWF/OutputPaths.h"
#include "BWF/Renderers.h"

namespace velmora {

std::unique_ptr<AES31BWF> RenderGainInto(OutputFile& file, const AES31Event& event) {
  if (!event.gain.present) return nullptr;
  const double factor = std::pow(10.0, event.gain.gainDb / 20.0);
  return RenderScaledInto(file, event.sourceFile, factor);
}

std::unique_ptr<AES31BWF> RenderGainFile(const AES31Event& event, const char* path) {
  NamedFile file(path);
  return RenderGainInto(file, event);
}

std::string BuildCopyPath(const AES31Event& event, const char* folder) {
  return OutputNames().Find(SourcePath(event), folder, "");
}

std::string BuildDerivedPath(const AES31Event& event, const char* folder, const char* suffix) {
  return OutputNames().Find(SourcePath(event), folder, suffix);
}

std::string SourcePath(const AES31Event& event) {
  return event.sourceFile != nullptr ? event.sourceFile->GetPath() : "";
}

}  // namespace velmora
