#pragma once

#include <cstddef>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Base/FileAccess.h"
#include "Base/FileStamp.h"

namespace velmora {

/// Streams of the files that a run reads many short stretches of, kept open in between: one look at
/// a path costs a quarter of opening and closing the file.
///
/// A stream is used again only while its path leads to the same file and nothing about that has
/// changed; else the file is opened anew. So whoever reads meets a file that has gone, that has
/// changed or that may no longer be read just as without this.
class KeptStreams {
 public:
  /// OpenAtData of a closed file.
  void Open(AES31BWF& file);
  /// CloseFile, but the stream may be kept. The file itself is closed either way.
  void Close(AES31BWF& file);

 private:
  struct Kept {
    const AES31BWF* file;
    FileStamp stamp;
    FileStream stream;  ///< null while the file has it
  };
  using Place = std::vector<Kept>::iterator;

  [[nodiscard]] Place Find(const AES31BWF& file);

  static constexpr std::size_t kMost = 8;

  /// The system gives the lowest number that is free: one in the upper half of what the process may
  /// have tells that others will soon be missed.
  int mostDescriptor_ = HalfOfDescriptors();
  static int HalfOfDescriptors();

  std::vector<Kept> kept_;  ///< at most one of a file, those used last at the end
};

}  // namespace velmora
