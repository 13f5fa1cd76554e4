#include "Program/TargetOptions.h"

#include <algorithm>
#include <set>

#include "Destinations/Destinations.h"
#include "Program/AbsolutePath.h"
#include "Program/OptionForms.h"

namespace velmora::program {
namespace {

constexpr const char* kStandardOutput = "-";

host::BounceDepth DepthOf(const std::string& text) {
  if (text == "16") return host::BounceDepth::Bits16;
  return text == "32f" ? host::BounceDepth::Float32 : host::BounceDepth::Bits24;
}

}  // namespace

bool TargetRequests::TakeStandardOutput() const {
  return std::any_of(targets.begin(), targets.end(),
                     [](const TargetRequest& target) { return target.path == kStandardOutput; });
}

void AddTargetOptions(CLI::App& spot, RawTargets& raw) {
  for (const host::TargetKind* const kind : host::Targets()) {
    spot.add_option(kind->option, raw.paths[kind->name], kind->help)
        ->type_name(kind->form)
        ->expected(1)
        ->take_all();
  }
  spot.add_flag("--embed-media", raw.choices.embedMedia, "Audio inside the DAWproject file");
  spot.add_option("--bounce-depth", raw.bounceDepth, "Bits per sample of bounces; 32f is float")
      ->type_name("16|24|32f")
      ->check(OneOf({"16", "24", "32f"}))
      ->capture_default_str();
  spot.add_flag("--native", raw.native,
                "Fades, crossfades and gain as facts of the\nregions, to be changed in the "
                "workstation, in\nplace of rendered pieces");
}

std::string FinishTargets(const RawTargets& raw, const std::string& hostTarget,
                          TargetRequests& requests) {
  requests.choices = raw.choices;
  requests.choices.bounceDepth = DepthOf(raw.bounceDepth);
  requests.native = raw.native;
  std::set<std::string> seen;
  if (!hostTarget.empty()) seen.insert(hostTarget);
  for (const host::TargetKind* const kind : host::Targets()) {
    const auto paths = raw.paths.find(kind->name);
    if (paths == raw.paths.end()) continue;
    for (const std::string& given : paths->second) {
      if (given.empty()) return std::string(kind->option) + ": the name is empty";
      const std::string path = given == kStandardOutput ? given : AbsolutePath(given);
      if (!seen.insert(path).second) {
        return std::string(kind->option) + ": " + path + " is given twice";
      }
      requests.targets.push_back({kind, path});
    }
  }
  return {};
}

}  // namespace velmora::program
