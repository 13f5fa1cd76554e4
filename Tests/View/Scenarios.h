#pragma once

#include <vector>

namespace velmora::view {

/// One way of using the window, in a process of its own.
struct Scenario {
  const char* name;
  void (*run)();
};

std::vector<Scenario> LoadingScenarios();
std::vector<Scenario> TroubleScenarios();
std::vector<Scenario> TableScenarios();
std::vector<Scenario> EntryScenarios();
std::vector<Scenario> EditScenarios();
std::vector<Scenario> PasteScenarios();
std::vector<Scenario> SpotScenarios();
std::vector<Scenario> AbortScenarios();
std::vector<Scenario> LookScenarios();
std::vector<Scenario> ShellScenarios();
std::vector<Scenario> WaveScenarios();
std::vector<Scenario> FindingsScenarios();
std::vector<Scenario> SaveScenarios();
std::vector<Scenario> ProgramScenarios();
std::vector<Scenario> SpeedScenarios();
std::vector<Scenario> SoakScenarios();

const std::vector<Scenario>& AllScenarios();

}  // namespace velmora::view
