#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace velmora::view {

/// Thrown when a scenario cannot go on.
struct ScenarioFailed {};

/// Notes one outcome: `ok WHAT`, or `FAILED WHAT: expected E, got G`.
void Report(bool passed, const std::string& what, const std::string& expected,
            const std::string& got);
int FailureCount();
/// Prints a line that is no check.
void Note(const std::string& line);

inline std::string Shown(const std::string& text) {
  return "\"" + text + "\"";
}
inline std::string Shown(const char* text) {
  return text == nullptr ? "null" : Shown(std::string(text));
}
inline std::string Shown(bool flag) {
  return flag ? "true" : "false";
}
template <class T>
std::string Shown(const T& value) {
  std::ostringstream text;
  text << value;
  return text.str();
}
template <class T>
std::string Shown(const std::vector<T>& values) {
  std::string text = "[";
  for (const auto& value : values) text += (text.size() > 1 ? ", " : "") + Shown(value);
  return text + "]";
}

template <class T>
void Check(const std::string& what, const T& expected, const T& got) {
  Report(expected == got, what, Shown(expected), Shown(got));
}
inline void Check(const std::string& what, const char* expected, const std::string& got) {
  Check(what, std::string(expected), got);
}
inline void CheckTrue(const std::string& what, bool condition) {
  Check(what, true, condition);
}
void CheckContains(const std::string& what, const std::string& part, const std::string& whole);

/// How long a scenario waits for what must happen: long, for a slow machine that does more besides
/// is no fault. Only a scenario that fails waits so long.
constexpr double kPatienceSeconds = 90;

/// Asks on the main thread until `condition` holds. Ends the scenario if it never does.
void WaitFor(const std::string& what, const std::function<bool()>& condition,
             double seconds = kPatienceSeconds);

}  // namespace velmora::view
