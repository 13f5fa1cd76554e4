#pragma once

#include <cstdint>
#include <string>

#include "Check/CheckProject.h"
#include "Field/FieldTime.h"

namespace velmora::check {

// What the rates of a project as a whole come to: once, for the judges and for the glance.

/// What the header says where it differs from the marks of a time: "44100 Hz, 25 frames". Empty if
/// it does not.
[[nodiscard]] std::string HeaderContradiction(const field::TimeContext& times,
                                              const field::TimeRates& marks);

/// By how many samples a spot into the session of the options moves everything.
/// @param stamp of the earliest cut, as the system has it
[[nodiscard]] std::int64_t MovedSamples(const std::string& stamp, const CheckOptions& options);

}  // namespace velmora::check
