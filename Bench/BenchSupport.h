#pragma once

#include <cstdint>
#include <string>

namespace velmora::bench {

/// The folder of this run's inputs, made when first asked for and gone with the program.
const std::string& InputFolder();

/// An ADL file with so many cuts on 24 tracks and 100 sources, every fourth with a fade and a
/// remark. Returns its path.
std::string WriteProject(std::int32_t cuts);

/// A mono wave file of about so many megabytes, filled with seeded noise. Returns its path.
std::string WriteNoise(std::int32_t bitDepth, std::int32_t megabytes);

/// Ends the program with a message: a benchmark of a wrong answer is worth nothing.
[[noreturn]] void Fail(const std::string& what);

}  // namespace velmora::bench
