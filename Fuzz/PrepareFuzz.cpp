// A clean project out of any project: plan, text and audio. The input is the project; its last byte
// chooses how it is prepared.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "Base/Utf8.h"
#include "Prepare/PrepareProject.h"
#include "Support/Checking.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

// Of what a preparation writes; a project may name any length, but the sounds are short.
constexpr unsigned kMostFileBytes = 1U << 20;

prepare::PrepareOptions OptionsOf(std::uint8_t choice, const std::string& into) {
  prepare::PrepareOptions options;
  options.into = into;
  options.copyMedia = (choice & 1) != 0;
  options.keepStereo = (choice & 2) != 0;
  options.keepOff = (choice & 4) != 0;
  options.resample = (choice & 8) != 0;
  if ((choice & 0x10) != 0) options.check.reading.trust = field::Trust::Header;
  if ((choice & 0x80) != 0) options.check.sessionFrameRate = 4;
  return options;
}

void HoldPrepared(const prepare::Prepared& prepared, const prepare::PrepareOptions& options) {
  using prepare::Outcome;
  namespace fs = std::filesystem;
  const bool isMade = prepared.outcome == Outcome::Done || prepared.outcome == Outcome::Left;
  Hold(fs::exists(options.into) == isMade, "the folder appears whole or not at all");
  Hold(isMade || prepared.outcome == Outcome::NotAnAdl || !prepared.trouble.empty(),
       "a failure has words");
  for (const prepare::Change& change : prepared.changes) {
    Hold(ValidUtf8(change.text) == change.text, "a change is UTF-8", change.text);
  }
  if (!isMade) return;
  Hold(fs::exists(prepared.projectPath), "the project is there");
  for (const prepare::MadeFile& file : prepared.files) {
    Hold(fs::exists(file.to), "a file that was made is there", file.to);
  }
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora;
  using namespace velmora::fuzz;
  static const WorkFolder folder;
  [[maybe_unused]] static const bool isReady = [] {
    WriteSounds(folder);
    LimitFiles(kMostFileBytes);
    return true;
  }();
  const ProjectInput input(bytes, size);
  const std::string path = folder.Write("project.adl", input.text);
  static const WorkFolder target;  // not below the project: its files would be found there
  const prepare::PrepareOptions options = OptionsOf(input.choice, target.Path("made"));
  const check::CheckedProject checked = Check(path, options.check);
  HoldPrepared(prepare::PrepareProject(checked, options), options);
  target.Clear("");
  Hold(folder.Read("project.adl") == input.text, "the source side is never written to");
  return 0;
}
