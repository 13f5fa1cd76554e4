// The reader that takes a project as it was meant, and the check that is built on it, with what the
// program says of both. The input is the project; its last byte chooses how it is read.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "Base/Utf8.h"
#include "Field/Encoding.h"
#include "Program/CheckJson.h"
#include "Program/CheckText.h"
#include "Support/Checking.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

constexpr const char* kEncodings[] = {
    "",      "",      "",      "UTF-8",        "GBK",    "UTF-16", "ASCII",  "Shift-JIS",
    "BIG-5", "CP437", "UTF-7", "Windows-1252", "KOI8-R", "EUC-JP", "UTF-32", "no such encoding"};

field::ReadOptions ReadingOf(std::uint8_t choice) {
  field::ReadOptions options;
  if ((choice & 1) != 0) options.trust = field::Trust::Header;
  const char* const encoding = kEncodings[choice >> 1 & 15];
  if (field::IsKnownEncoding(encoding)) options.encoding = encoding;
  return options;
}

void HoldPlaces(const check::CheckedProject& checked, std::size_t size) {
  for (const check::Finding& finding : checked.findings) {
    Hold(finding.line >= 0 && finding.column >= 0, "a finding has a place in the file");
    Hold(finding.line <= static_cast<std::int64_t>(size) + 1, "a finding's line is in the file");
    for (const std::string_view text :
         {std::string_view(finding.text), std::string_view(finding.effect),
          std::string_view(finding.remedy)}) {
      Hold(ValidUtf8(text) == text, "a finding is UTF-8", text);
    }
  }
}

void HoldWords(const check::CheckedProject& checked) {
  std::ostringstream json;
  program::WriteCheckJson(checked, json);
  Hold(nlohmann::json::accept(json.str()), "a check as JSON is JSON", json.str());
  std::ostringstream text;
  program::WriteCheckText(checked, false, text);
  for (const char c : text.str()) {
    Hold(c == '\n' || c < 0 || (c >= ' ' && c != 0x7F), "no control characters are shown",
         text.str());
  }
  (void)check::SummaryLine(checked);
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
  options.reading = ReadingOf(input.choice);
  if ((input.choice & 0x20) != 0) options.mediaFolders = {folder.Path("s")};
  if ((input.choice & 0x40) != 0) options.sessionRate = 44100;
  if ((input.choice & 0x80) != 0) options.sessionFrameRate = 4;
  const check::CheckedProject checked = Check(path, options);
  HoldPlaces(checked, size);
  HoldWords(checked);
  options.atAGlance = true;
  HoldWords(Check(path, options));
  return 0;
}
