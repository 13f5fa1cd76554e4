#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora::program {

// The forms that values of options have. Each validator answers with what is wrong, in words that
// follow the option's name.

[[nodiscard]] CLI::Validator OneOf(std::vector<std::string> words);
/// Also puts the timecode through the limits of the view's entry field.
[[nodiscard]] CLI::Validator TimecodeForm(bool isSigned);
/// Numbers and rising ranges: see NumberSet.
[[nodiscard]] CLI::Validator NumberListForm();
/// What a session may have, in Hz: see SessionClock.
[[nodiscard]] CLI::Validator SampleRateForm();
[[nodiscard]] CLI::Validator FrameRateForm();
/// A number of threads.
[[nodiscard]] CLI::Validator JobsForm();

/// The host's frame-rate code of a text that is one, or a rate's name; none for another text.
[[nodiscard]] std::optional<std::int32_t> FrameRateCodeOf(const std::string& text);

}  // namespace velmora::program
