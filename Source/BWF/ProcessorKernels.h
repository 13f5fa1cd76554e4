#pragma once

#include "BWF/SampleKernels.h"

// The sets of loops that are written for one kind of processor. Each exists only where the compiler
// can make it; samples of other sizes than 2 and 3 bytes go to the portable loops. Internal to
// SampleKernels.

#if defined(__x86_64__) || defined(__i386__)
#define VELMORA_AVX2_KERNELS 1
#elif defined(__aarch64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define VELMORA_NEON_KERNELS 1
#endif

namespace velmora {

#if defined(VELMORA_AVX2_KERNELS)
/// To be run only where the processor has AVX2.
[[nodiscard]] const SampleKernels& Avx2Kernels();
#endif

#if defined(VELMORA_NEON_KERNELS)
/// Every 64-bit ARM processor runs these.
[[nodiscard]] const SampleKernels& NeonKernels();
#endif

}  // namespace velmora
