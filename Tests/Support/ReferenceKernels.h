#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace velmora::test {

/// What the loops over samples have to give, told in the plainest way: one sample after the other,
/// in the words of the rule. `gain` is a linear factor.
void ReferenceConvert(const std::uint8_t* source, std::uint32_t sourceBits, std::uint8_t* target,
                      std::uint32_t targetBits, std::size_t count, std::optional<double> gain);

}  // namespace velmora::test
