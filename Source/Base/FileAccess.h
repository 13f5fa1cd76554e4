#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

namespace velmora {

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using FileStream = std::unique_ptr<std::FILE, CloseStream>;

/// Opens a regular file for reading; null for anything else. Never blocks, not even on a FIFO.
/// errno tells the reason of a null.
FileStream OpenRegularFile(const char* path);

/// Bytes of an open file, -1 if the system cannot tell.
std::int64_t FileSize(std::FILE* stream);

/// Creates a file for writing, or empties the one that is there; null if that fails. Never blocks.
FileStream CreateFile(const char* path);

/// True for whatever opens for reading, a folder too. Never blocks.
bool OpensForReading(const char* path);

/// Tells the system log that a file came out short; `error` is the errno of the failed write.
void LogWriteError(const char* path, int error);

/// Asks the system not to keep the stream's pages in its file cache. A hint: null and failure pass.
void DisableFileCache(std::FILE* stream);

}  // namespace velmora
