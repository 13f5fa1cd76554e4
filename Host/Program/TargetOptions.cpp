#include "Program/TargetOptions.h"

#include <algorithm>

#include "Destinations/Destinations.h"
#include "Program/AbsolutePath.h"
#include "Program/OptionForms.h"

namespace velmora::program {
namespace {

host::BounceDepth DepthOf(const std::string& text) {
  if (text == "16") return host::BounceDepth::Bits16;
  return text == "32f" ? host::BounceDepth::Float32 : host::BounceDepth::Bits24;
}

}  // namespace

std::string NoStandardOutput(const std::string& option) {
  return option + ": only a bounce goes to standard output; a file of that name is ./-";
}

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

std::string FinishTargets(const RawTargets& raw, TargetRequests& requests) {
  requests.choices = raw.choices;
  requests.choices.bounceDepth = DepthOf(raw.bounceDepth);
  requests.native = raw.native;
  for (const host::TargetKind* const kind : host::Targets()) {
    const auto paths = raw.paths.find(kind->name);
    if (paths == raw.paths.end()) continue;
    for (const std::string& given : paths->second) {
      if (given.empty()) return std::string(kind->option) + ": the name is empty";
      if (given == kStandardOutput && !kind->canStream) return NoStandardOutput(kind->option);
      requests.targets.push_back({kind, given == kStandardOutput ? given : AbsolutePath(given)});
    }
  }
  return {};
}

}  // namespace velmora::program
