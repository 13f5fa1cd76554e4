#include "Base/DuplicateStream.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace velmora {

FileStream DuplicateStream(std::FILE* stream) {
  const int descriptor = fcntl(fileno(stream), F_DUPFD_CLOEXEC, 0);
  if (descriptor < 0) return nullptr;
  std::FILE* const duplicate = fdopen(descriptor, "rb");
  if (duplicate == nullptr) {
    const int error = errno;
    close(descriptor);
    errno = error;
  }
  return FileStream(duplicate);
}

}  // namespace velmora
