#include "Session/HostKind.h"

#include <algorithm>

namespace velmora::host {
namespace {

std::string Names(HostTable hosts) {
  std::string names;
  for (const HostKind* const kind : hosts) {
    if (!names.empty()) names += ", ";
    names += kind->name;
  }
  return names;
}

}  // namespace

std::string ParseHost(HostTable hosts, const std::string& text, HostChoice& choice) {
  const std::size_t colon = text.find(':');  // a target may hold further ones
  const std::string name = text.substr(0, colon);
  const auto found = std::find_if(hosts.begin(), hosts.end(),
                                  [&](const HostKind* kind) { return name == kind->name; });
  if (found == hosts.end()) return "there is no host '" + name + "'; hosts: " + Names(hosts);
  choice.kind = *found;
  choice.target = colon == std::string::npos ? "" : text.substr(colon + 1);
  const bool needsTarget =
      colon != std::string::npos || choice.kind->targetUse == TargetUse::Required;
  if (needsTarget && choice.target.empty()) {
    return "no target stands after " + name + "; write " + name + ":" + choice.kind->target->form;
  }
  return {};
}

std::string HostForm(const HostKind& kind) {
  const std::string target = std::string(":") + kind.target->form;
  return kind.name + (kind.targetUse == TargetUse::Required ? target : "[" + target + "]");
}

}  // namespace velmora::host
