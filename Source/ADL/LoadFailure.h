#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace velmora {

/// Why a project did not load, as programs tell it. The names in kLoadFailures are what people's
/// scripts compare with, so a code keeps its name for good.
enum class LoadFailureCode {
  FileNotOpened,
  FileNotRegular,
  FileNotRead,
  OutOfMemory,
  IndexMissing,
  ValuesMissing,
  FadeSeparator,
  FadeForm,
};

struct LoadFailureKind {
  LoadFailureCode code;
  const char* name;
  const char* meaning;
};

/// By code.
inline constexpr auto kLoadFailures = std::to_array<LoadFailureKind>({
    {LoadFailureCode::FileNotOpened, "file-not-opened", "the file does not open for reading"},
    {LoadFailureCode::FileNotRegular, "file-not-regular", "a folder, a device, a pipe or a socket"},
    {LoadFailureCode::FileNotRead, "file-not-read", "the file opens but does not give its bytes"},
    {LoadFailureCode::OutOfMemory, "out-of-memory", "the file or what it holds needs more memory"},
    {LoadFailureCode::IndexMissing, "index-missing", "an (Index) or (Entry) without a number"},
    {LoadFailureCode::ValuesMissing, "values-missing", "a label with fewer values than it needs"},
    {LoadFailureCode::FadeSeparator, "fade-separator",
     "a fade length with another mark than \";\" or \",\" before its frames"},
    {LoadFailureCode::FadeForm, "fade-form", "a fade length that is no timestamp"},
});

/// The code's name in kLoadFailures.
[[nodiscard]] constexpr const char* NameOf(LoadFailureCode code) {
  return kLoadFailures[static_cast<std::size_t>(code)].name;
}

/// Why a project did not load, and where.
struct LoadFailure {
  LoadFailureCode code = LoadFailureCode::FileNotOpened;
  /// Line of the file, from 1, on which the label stands; 0 for the file as a whole.
  std::int64_t line = 0;
  std::string section;  ///< name as the file has it; empty for the file as a whole
  std::string label;    ///< label as the file has it; empty for the file as a whole
  std::string reason;   ///< a phrase in plain words
};

}  // namespace velmora
