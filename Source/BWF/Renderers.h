#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "BWF/AES31BWF.h"
#include "BWF/KeptStreams.h"
#include "BWF/OutputFile.h"

namespace velmora {

// Each makes a new file with the sample rate, channels and depth of its source and returns it
// closed and readable, or null if it could not be made whole: a write or read error, of which the
// system log is told, or no memory. A file that came out short stays. The sources that were read
// are closed in any case.
//
// A path is created, or emptied if it is there. An OutputFile settles its name when it is created:
// its Path tells it afterwards.

/// What a run lends to those who make its fade pieces.
struct RenderAids {
  /// May keep the streams of the sources; null for nobody.
  KeptStreams* kept = nullptr;
  /// Asked now and then while a long piece is made. True ends it, and the file is discarded.
  std::function<bool()> isStopped = {};
};

/// The whole source file, each sample multiplied by `factor`.
std::unique_ptr<AES31BWF> RenderScaledInto(OutputFile& file, AES31BWF* source, double factor);
std::unique_ptr<AES31BWF> RenderScaledFile(const char* path, AES31BWF* source, double factor);

/// `length` frames of the source from frame `first` on, under a straight line.
///
///     rising  0, 1/L, ... (L-1)/L        falling  1, (L-1)/L, ... 1/L
///
/// Frames outside the source are silent. Null if the file would have 2 GiB of samples or more,
/// which no reader of this system takes, or if it would be longer than its source by more than
/// 64 MiB: such a length is a mistake, and would fill a disk with silence.
std::unique_ptr<AES31BWF> RenderFadeInto(OutputFile& file, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first, const RenderAids& aids);
std::unique_ptr<AES31BWF> RenderFadeFile(const char* path, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first);

/// `length` frames of both files under opposite straight lines whose factors add up to 1, in the
/// outgoing file's format.
std::unique_ptr<AES31BWF> RenderCrossfadeInto(OutputFile& file, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length,
                                              const RenderAids& aids);
std::unique_ptr<AES31BWF> RenderCrossfadeFile(const char* path, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length);

}  // namespace velmora
