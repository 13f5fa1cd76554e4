// The quick look at a project against the full check: both come to the same line. The input is the
// project; its last byte chooses the session.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "ADL/AES31Project.h"
#include "Check/Glance.h"
#include "Support/Checking.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

std::string Words(bool fails, const check::Glance& glance) {
  return std::string(fails ? "fails " : "") + (glance.misplaces ? "misplaces " : "") +
         (glance.loses ? "loses" : "");
}

std::string Full(const std::string& path, const check::CheckOptions& options) {
  using check::Severity;
  const check::CheckedProject checked = Check(path, options);
  return Words(checked.Count(Severity::Fails) > 0,
               {checked.Count(Severity::Misplaced) > 0, checked.Count(Severity::Lost) > 0});
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora;
  using namespace velmora::fuzz;
  static const WorkFolder folder;
  [[maybe_unused]] static const bool isReady = (WriteSounds(folder), true);
  const ProjectInput input(bytes, size);
  const std::string path = folder.Write("project.adl", input.text);
  check::CheckOptions options;
  options.atAGlance = true;
  if ((input.choice & 0x40) != 0) options.sessionRate = 44100;
  if ((input.choice & 0x80) != 0) options.sessionFrameRate = 4;
  bool loads = false;
  const AES31Project project(path.c_str(), nullptr, &loads);
  const std::optional<check::Glance> glance =
      check::GlanceAt(path, options).For(project.events.size());
  if (!loads || !glance) return 0;  // left to the check, or no question
  const std::string quick = Words(false, *glance);
  const std::string full = Full(path, options);
  Hold(quick == full, "the glance finds what the check finds", quick + " instead of " + full);
  return 0;
}
