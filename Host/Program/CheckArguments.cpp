#include "Program/CheckArguments.h"

#include <sys/stat.h>

#include "Field/Encoding.h"
#include "Program/AbsolutePath.h"
#include "Program/OptionForms.h"

namespace velmora::program {
namespace {

CLI::Validator EncodingForm() {
  return CLI::Validator(
      [](const std::string& name) -> std::string {
        if (field::IsKnownEncoding(name)) return {};
        return "'" + name + "' is no encoding that iconv knows; see iconv --list";
      },
      "");
}

bool IsFolder(const std::string& path) {
  struct stat facts {};
  return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

}  // namespace

std::vector<std::string> AddProjectOptions(CLI::App& command, RawReadingOptions& raw) {
  command
      .add_option("--media", raw.mediaFolders,
                  "A folder to look for audio in, with all below\nit; may be given several times")
      ->type_name("DIR")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command
      .add_option("--trust", raw.trust,
                  "What tells the rates of times: their own marks,\nor the project's header")
      ->type_name("marks|header")
      ->check(OneOf({"marks", "header"}))
      ->capture_default_str();
  command
      .add_option(
          "--encoding", raw.encoding,
          "The encoding of the project's text, by a name\nthat iconv knows; otherwise found out")
      ->type_name("NAME")
      ->check(EncodingForm());
  return {"--media", "--trust", "--encoding"};
}

void AddReadingOptions(CLI::App& command, RawReadingOptions& raw) {
  AddProjectOptions(command, raw);
  command
      .add_option("--session-rate", raw.sessionRate,
                  "The sample rate of the session to spot into, from\n1 to 10000000; otherwise "
                  "that of the first cut")
      ->type_name("HZ")
      ->check(SampleRateForm());
  command
      .add_option("--session-frame-rate", raw.frameRate,
                  "That session's frame rate: a code from 0 to 7, or\n24, 25, 29.97, 29.97df, 30, "
                  "30df, 23.976;\notherwise that of the first cut")
      ->type_name("CODE")
      ->check(FrameRateForm());
}

check::CheckOptions FinishReadingOptions(const RawReadingOptions& raw, const CLI::App& command) {
  check::CheckOptions options;
  for (const std::string& folder : raw.mediaFolders) {
    options.mediaFolders.push_back(AbsolutePath(folder));
  }
  options.reading.trust = raw.trust == "header" ? field::Trust::Header : field::Trust::Marks;
  options.reading.encoding = raw.encoding;
  if (command.count("--session-rate") > 0) options.sessionRate = raw.sessionRate;
  if (!raw.frameRate.empty()) options.sessionFrameRate = FrameRateCodeOf(raw.frameRate);
  return options;
}

std::string ComplaintAboutMediaFolders(const check::CheckOptions& options) {
  for (const std::string& folder : options.mediaFolders) {
    if (folder.empty()) return "--media: the name of the folder is empty";
    if (!IsFolder(folder)) return "--media: there is no folder '" + folder + "'";
  }
  return {};
}

}  // namespace velmora::program
