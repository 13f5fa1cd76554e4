#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace velmora {

/// An oddity of a file that does not stop its load, as programs tell it. The names in
/// kLoadDiagnostics are what people's scripts compare with, so a code keeps its name for good.
enum class LoadDiagnosticCode {
  NoAdl,
  UnknownIdentifier,
  UnexpectedEntry,
  UnexpectedLabel,
};

struct LoadDiagnosticKind {
  LoadDiagnosticCode code;
  const char* name;
  const char* meaning;
};

/// By code.
inline constexpr auto kLoadDiagnostics = std::to_array<LoadDiagnosticKind>({
    {LoadDiagnosticCode::NoAdl, "no-adl",
     "the file does not begin with <ADL>, so nothing in it is read"},
    {LoadDiagnosticCode::UnknownIdentifier, "unknown-identifier",
     "a constant that its section does not know, or one without a value"},
    {LoadDiagnosticCode::UnexpectedEntry, "unexpected-entry",
     "a label before the first (Index) or (Entry) of its section"},
    {LoadDiagnosticCode::UnexpectedLabel, "unexpected-label",
     "a label that an event does not know, or a second edit of one event"},
});

/// The code's name in kLoadDiagnostics.
[[nodiscard]] constexpr const char* NameOf(LoadDiagnosticCode code) {
  return kLoadDiagnostics[static_cast<std::size_t>(code)].name;
}

/// One oddity.
struct LoadDiagnostic {
  LoadDiagnosticCode code = LoadDiagnosticCode::NoAdl;
  /// Line of the file, from 1, on which the label stands; 0 for the file as a whole.
  std::int64_t line = 0;
  /// What standard error says of it, bytes of the file included. A file without <ADL> is told here
  /// alone.
  std::string text;
};

}  // namespace velmora
