// The loops over samples that are written for this processor, each against the plain reference.
//
//     1 byte   depths: of the source bits 0 and 1, of the target bits 2 and 3, with a gain bit 4
//     1 byte   places of source and target in their memory, so that nothing is aligned
//     8 bytes  the gain, 4 the full scale of values that are encoded as they are
//     the rest samples

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "BWF/SampleConversion.h"
#include "BWF/SampleKernels.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/ReferenceKernels.h"

namespace velmora::fuzz {
namespace {

using Memory = std::vector<std::uint8_t>;

constexpr std::uint32_t kDepths[] = {16, 24, 8, 32};
constexpr std::uint8_t kUntouched = 0xA5;

/// The bytes from a place on, in memory that ends with them.
Memory At(std::size_t place, std::string_view bytes) {
  Memory memory(place + bytes.size());
  if (!bytes.empty()) std::memcpy(memory.data() + place, bytes.data(), bytes.size());
  return memory;
}

bool SameBytes(const std::vector<float>& a, const std::vector<float>& b) {
  return a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

/// As any value is multiplied: not-a-numbers may differ in their bits, and count as one.
void Quieten(std::vector<float>& values) {
  for (float& value : values) {
    if (std::isnan(value)) value = 0;
  }
}

struct Depths {
  std::uint32_t source;
  std::uint32_t target;
};

void HoldConversion(Depths depths, const double* gain, std::uint8_t places,
                    std::string_view bytes) {
  const std::size_t count = bytes.size() / (depths.source / 8);
  const std::size_t sourcePlace = places & 7;
  const std::size_t targetPlace = places >> 3 & 7;
  const Memory source = At(sourcePlace, bytes.substr(0, count * (depths.source / 8)));
  Memory expected(targetPlace + count * (depths.target / 8) + 8, kUntouched);
  test::ReferenceConvert(source.data() + sourcePlace, depths.source, expected.data() + targetPlace,
                         depths.target, count,
                         gain != nullptr ? std::optional(*gain) : std::nullopt);
  for (const SampleKernels* const kernels : KernelsOfThisMachine()) {
    Memory made(expected.size(), kUntouched);
    const SampleConversion conversion(depths.source, depths.target, gain, *kernels);
    conversion.Convert(source.data() + sourcePlace, made.data() + targetPlace, count);
    Hold(made == expected, "a conversion is the reference's", kernels->name);
  }
}

/// The steps by themselves, over values of any kind.
void HoldSteps(std::uint32_t bits, double gain, float fullScale, std::string_view bytes) {
  std::vector<float> values(bytes.size() / sizeof(float));
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(float));
  const SampleKernels& plain = PortableKernels();
  const std::size_t sampleBytes = bits / 8;
  Memory expected(values.size() * sampleBytes);
  plain.encode(values.data(), fullScale, expected.data(), sampleBytes, values.size());
  std::vector<float> decoded(values.size());
  plain.decode(expected.data(), sampleBytes, decoded.data(), values.size());
  std::vector<float> louder = values;
  plain.multiply(louder.data(), gain, louder.size());
  Quieten(louder);
  for (const SampleKernels* const kernels : KernelsOfThisMachine()) {
    Memory made(expected.size());
    kernels->encode(values.data(), fullScale, made.data(), sampleBytes, values.size());
    Hold(made == expected, "values are encoded as by the plain loops", kernels->name);
    std::vector<float> read(decoded.size());
    kernels->decode(made.data(), sampleBytes, read.data(), read.size());
    Hold(SameBytes(read, decoded), "samples are decoded as by the plain loops", kernels->name);
    std::vector<float> multiplied = values;
    kernels->multiply(multiplied.data(), gain, multiplied.size());
    Quieten(multiplied);
    Hold(SameBytes(multiplied, louder), "values are multiplied as by the plain loops",
         kernels->name);
  }
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora::fuzz;
  Input input(bytes, size);
  const std::uint8_t form = input.Byte();
  const std::uint8_t places = input.Byte();
  const auto gain = input.Number<double>();
  const auto fullScale = input.Number<float>();
  const Depths depths{kDepths[form & 3], kDepths[form >> 2 & 3]};
  const std::string_view samples = input.Rest();
  HoldConversion(depths, (form & 16) != 0 ? &gain : nullptr, places, samples);
  HoldSteps(depths.target, gain, fullScale, samples);
  return 0;
}
