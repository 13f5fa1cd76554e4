#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

namespace velmora {

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using FileStream = std::unique_ptr<std::FILE, CloseStream>;

/// Opens a regular file for reading; null for anything else, which is left unopened. Never blocks,
/// not even on a FIFO. errno tells the reason of a null.
[[nodiscard]] FileStream OpenRegularFile(const char* path);

/// Bytes of an open file, -1 if the system cannot tell.
[[nodiscard]] std::int64_t FileSize(std::FILE* stream);

/// Reads from a place in an open file by one call to the system, past the stream: neither its
/// buffer nor its position is touched.
/// @return the bytes read; fewer than `count` mostly mean the end of the file, 0 means it for sure,
///         or an error: then errno tells it, and is 0 otherwise
[[nodiscard]] std::size_t ReadSomeAt(std::FILE* stream, std::int64_t place, void* bytes,
                                     std::size_t count);

/// The same, but goes on until all is read.
/// @return the bytes read; fewer than `count` at the end of the file, where errno is 0, and after
///         an error, which errno tells
[[nodiscard]] std::size_t ReadAt(std::FILE* stream, std::int64_t place, void* bytes,
                                 std::size_t count);

/// Creates a file for writing, or empties the one that is there; null if that fails. Follows links
/// and never blocks.
[[nodiscard]] FileStream CreateFile(const char* path);

/// Creates a file for writing under a name that nothing holds, not even a link; null if that fails,
/// and then nothing is left. errno tells the reason of a null, EEXIST for a name that is held.
[[nodiscard]] FileStream CreateNewFile(const char* path);

/// Removes a file; failure passes.
void RemoveFile(const char* path);

enum class NameState {
  Free,
  Held,    ///< by anything: a file without rights, a folder, a FIFO, a link that leads nowhere
  Hidden,  ///< an error kept the system from telling
};

/// Whether a name is there, whatever it stands for. Opens nothing and follows no link at its end.
[[nodiscard]] NameState LookUpName(const char* path);

/// True for whatever would open for reading, a folder too. Opens nothing, so it never blocks.
[[nodiscard]] bool OpensForReading(const char* path);

/// Tells the system log that a file could not be read; `error` is the errno of the failed read.
void LogReadError(const char* path, int error);

/// Tells the system log that a file came out short; `error` is the errno of the failed write.
void LogWriteError(const char* path, int error);

/// Asks the system not to keep the stream's pages in its file cache. A hint: null and failure pass.
void DisableFileCache(std::FILE* stream);

}  // namespace velmora
