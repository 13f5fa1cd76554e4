#include "View/Scenarios.h"

namespace velmora::view {

const std::vector<Scenario>& AllScenarios() {
  static const std::vector<Scenario> all = [] {
    std::vector<Scenario> scenarios;
    for (const auto& part :
         {LoadingScenarios(), TroubleScenarios(), TableScenarios(), EntryScenarios(),
          EditScenarios(), PasteScenarios(), SpotScenarios(), AbortScenarios(), LookScenarios(),
          ShellScenarios(), WaveScenarios(), FindingsScenarios(), SaveScenarios(),
          ProgramScenarios(), SpeedScenarios(), SoakScenarios()}) {
      scenarios.insert(scenarios.end(), part.begin(), part.end());
    }
    return scenarios;
  }();
  return all;
}

}  // namespace velmora::view
