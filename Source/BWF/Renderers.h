#pragma once

#include <cstdint>
#include <memory>

#include "BWF/AES31BWF.h"
#include "BWF/KeptStreams.h"
#include "BWF/OutputFile.h"

namespace velmora {

// Each makes a new file with the sample rate, channels and depth of its source and returns it
// closed and readable, or null if it could not be made whole. A file that came out short stays. The
// sources that were read are closed in any case; `kept`, if not null, may keep their streams.
//
// A path is created, or emptied if it is there. An OutputFile settles its name when it is created:
// its Path tells it afterwards.

/// The whole source file, each sample multiplied by `factor`.
std::unique_ptr<AES31BWF> RenderScaledInto(OutputFile& file, AES31BWF* source, double factor);
std::unique_ptr<AES31BWF> RenderScaledFile(const char* path, AES31BWF* source, double factor);

/// `length` frames of the source from frame `first` on, under a straight line.
///
///     rising  0, 1/L, ... (L-1)/L        falling  1, (L-1)/L, ... 1/L
///
/// Frames outside the source are silent. Null if the file would have 2 GiB of samples or more,
/// which no reader of this system takes.
std::unique_ptr<AES31BWF> RenderFadeInto(OutputFile& file, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first, KeptStreams* kept);
std::unique_ptr<AES31BWF> RenderFadeFile(const char* path, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first);

/// `length` frames of both files under opposite straight lines whose factors add up to 1, in the
/// outgoing file's format.
std::unique_ptr<AES31BWF> RenderCrossfadeInto(OutputFile& file, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length,
                                              KeptStreams* kept);
std::unique_ptr<AES31BWF> RenderCrossfadeFile(const char* path, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length);

}  // namespace velmora
