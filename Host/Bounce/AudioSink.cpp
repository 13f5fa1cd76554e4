#include "Bounce/AudioSink.h"

#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <utility>

namespace velmora::bounce {

int FileSink::Write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(descriptor_, bytes.data(), bytes.size(), size_);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 ? errno : EIO;
    size_ += written;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

int FileSink::Silence(std::int64_t bytes) {
  if (bytes > std::numeric_limits<std::int64_t>::max() - size_) return EFBIG;
  size_ += bytes;
  return 0;
}

int FileSink::Finish() {
  // A hole at the end is in no write.
  while (::ftruncate(descriptor_, size_) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

StreamSink::StreamSink(int descriptor, std::function<bool()> goOn)
    : descriptor_(descriptor), goOn_(std::move(goOn)) {
  struct stat facts {};
  isFile_ = ::fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
  sigemptyset(&pipeSignal_);
  sigaddset(&pipeSignal_, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipeSignal_, &before_);
}

StreamSink::~StreamSink() {
  // One that a write has raised meanwhile must not arrive when the mask goes.
  const timespec now{};
  if (sigismember(&before_, SIGPIPE) == 0) {
    while (sigtimedwait(&pipeSignal_, nullptr, &now) == SIGPIPE) {
    }
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int StreamSink::WaitForReader() const {
  constexpr int kMilliseconds = 200;
  for (;;) {
    pollfd stream{descriptor_, POLLOUT, 0};
    const int ready = ::poll(&stream, 1, kMilliseconds);
    if (ready > 0) return 0;  // an error too: the write tells it
    if (ready < 0 && errno != EINTR) return errno;
    if (!goOn_()) return ECANCELED;
  }
}

int StreamSink::Write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const int waited = isFile_ ? 0 : WaitForReader();
    if (waited != 0) return waited;
    // A pipe that is ready takes this much at once, and so a slow reader never holds up a write.
    const std::size_t count =
        isFile_ ? bytes.size() : std::min<std::size_t>(bytes.size(), PIPE_BUF);
    const ssize_t written = ::write(descriptor_, bytes.data(), count);
    if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (written <= 0) return written < 0 ? errno : EIO;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

int StreamSink::Silence(std::int64_t bytes) {
  if (zeros_.empty()) zeros_.resize(std::size_t{1} << 16);
  while (bytes > 0) {
    const std::int64_t count = std::min(bytes, static_cast<std::int64_t>(zeros_.size()));
    const int error = Write({zeros_.data(), static_cast<std::size_t>(count)});
    if (error != 0) return error;
    bytes -= count;
  }
  return 0;
}

}  // namespace velmora::bounce
