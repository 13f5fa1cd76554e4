#include "Session/SessionFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "Session/FileBuffer.h"
#include "Session/SessionJson.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // the system follows no more of them either

/// True for a session as WriteSessionJson begins it, in any layout, and for an empty file. Other
/// programs write a "summary" too: it takes the members of ours to be one.
bool HoldsSession(std::FILE* file) {
  char head[256];
  const std::size_t size = std::fread(head, 1, sizeof head, file);
  if (std::ferror(file) != 0) return false;
  std::string text(head, size);
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; });
  return size == 0 || text.starts_with("{\"summary\":{\"tracks\":");
}

/// True for a name of something that this process has open, such as /dev/stdout. It may stand for
/// a regular file, but a file that took the name's place would not reach it.
bool NamesDescriptor(fs::path path) {
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(path, error); ++links) {
    if (fs::equivalent(path.parent_path(), "/dev/fd", error)) return true;
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return false;
}

bool IsSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// When a file was last written to: seconds, and nanoseconds within the second.
std::pair<std::time_t, long> ModifiedAt(const struct stat& facts) {
#ifdef __APPLE__
  return {facts.st_mtimespec.tv_sec, facts.st_mtimespec.tv_nsec};
#else
  return {facts.st_mtim.tv_sec, facts.st_mtim.tv_nsec};
#endif
}

/// 0, or the errno of what went wrong.
int WriteTo(std::FILE* file, const Session& session) {
  errno = 0;
  FileBuffer buffer(file);
  std::ostream out(&buffer);
  if (WriteSessionJson(session, out)) return 0;
  return errno != 0 ? errno : EIO;
}

}  // namespace

ClaimedTarget SessionFile::Claim(const std::string& path) {
  std::unique_ptr<SessionFile> file(new SessionFile(path));
  std::string complaint = file->ClaimFile();
  if (!complaint.empty()) return {nullptr, std::move(complaint)};
  return {std::move(file), {}};
}

std::string SessionFile::ClaimFile() {
  struct stat facts {};
  const bool isThere = ::stat(path_.c_str(), &facts) == 0;
  const int cause = isThere ? 0 : errno;
  struct stat link {};
  if (!isThere && ::lstat(path_.c_str(), &link) == 0) {
    return path_ + " is a link that leads to no file (" + std::strerror(cause) +
           "); it is not written over";
  }
  if (!isThere && cause != ENOENT) return Trouble(std::strerror(cause));
  if (isThere && S_ISDIR(facts.st_mode)) return path_ + " is a folder";
  if (isThere && (!S_ISREG(facts.st_mode) || NamesDescriptor(path_))) return ClaimInPlace();

  if (isThere) {
    earlier_ = OpenRegularFile(path_.c_str());
    if (earlier_ == nullptr) {
      return path_ + " is there and cannot be read (" + std::strerror(errno) +
             "); it is not written over";
    }
    if (!HoldsSession(earlier_.get()) || ::fstat(::fileno(earlier_.get()), &earlierFacts_) != 0) {
      return path_ + " is there and is no session; it is not written over";
    }
  }
  const std::string folder = fs::path(path_).parent_path();
  return ::access(folder.c_str(), W_OK | X_OK) == 0 ? "" : Trouble(std::strerror(errno));
}

/// Opened at once and not only when there is something to write: a socket takes nothing, and a pipe
/// that nobody reads would hold the program up for ever.
std::string SessionFile::ClaimInPlace() {
  // Appended: what has gone to standard output before may be in the same file.
  const int descriptor =
      ::open(path_.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  inPlace_.reset(descriptor < 0 ? nullptr : ::fdopen(descriptor, "a"));
  if (inPlace_ == nullptr) {
    return Trouble(errno == ENXIO ? "it is a socket, or a pipe that nobody reads"
                                  : std::strerror(errno));
  }
  // A slow reader is waited for.
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  return {};
}

TargetOutcome SessionFile::Write(const TargetInput& input, const TargetProgress& /*progress*/) {
  return {inPlace_ != nullptr ? WriteInPlace(input.session) : WriteBeside(input.session), {}, {}};
}

std::string SessionFile::WriteInPlace(const Session& session) {
  int error = WriteTo(inPlace_.get(), session);
  // A network may report a full disk as late as here.
  if (std::fclose(inPlace_.release()) != 0 && error == 0) error = errno;
  return error == 0 ? "" : Trouble(std::strerror(error));
}

std::string SessionFile::WriteBeside(const Session& session) const {
  StagedFile file(path_);
  if (!file.Create()) return file.Trouble(errno);
  int error = WriteTo(file.Stream(), session);
  const int closing = file.Close();
  if (error == 0) error = closing;
  return error == 0 ? Publish(file) : file.Trouble(error);
}

std::string SessionFile::Publish(StagedFile& file) const {
  if (earlier_ == nullptr || LookUpName(path_.c_str()) == NameState::Free) {
    const int error = file.Publish();
    return error == 0 ? "" : file.Trouble(error);
  }
  // Of several runs that claimed one session, the lock lets one at a time look and replace.
  const int descriptor = ::fileno(earlier_.get());
  const bool isBusy = ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  if (isBusy || !IsAsClaimed()) return path_ + " has changed meanwhile; it is not written over";
  ::chmod(file.WrittenPath().c_str(), earlierFacts_.st_mode & 0777);
  if (::rename(file.WrittenPath().c_str(), path_.c_str()) != 0) return file.Trouble(errno);
  file.Forget();
  return {};
}

bool SessionFile::IsAsClaimed() const {
  struct stat now {};
  return ::stat(path_.c_str(), &now) == 0 && IsSameFile(now, earlierFacts_) &&
         now.st_size == earlierFacts_.st_size && ModifiedAt(now) == ModifiedAt(earlierFacts_);
}

std::string SessionFile::Trouble(const std::string& cause) const {
  return path_ + " cannot be written: " + cause;
}

}  // namespace velmora::host
