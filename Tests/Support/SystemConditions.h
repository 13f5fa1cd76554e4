#pragma once

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Base/SystemLog.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {

/// Receives the system log while it lives.
class LogCapture {
 public:
  LogCapture() {
    SetSystemLog([this](const std::string& line) { lines.push_back(line); });
  }
  ~LogCapture() { SetSystemLog({}); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<std::string> lines;
};

/// While it lives, no file of this process grows beyond `bytes`: a write past that fails.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("RLIMIT_FSIZE");
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  sighandler_t handler_;
};

/// Ends the program if a call under test blocks for good.
class Watchdog {
 public:
  Watchdog() { alarm(20); }
  ~Watchdog() { alarm(0); }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
};

/// Gives up the rights of the superuser while it lives, if the tests have them.
class OrdinaryRights {
 public:
  OrdinaryRights() : before_(geteuid()) {
    constexpr uid_t kNobody = 65534;
    if (before_ == 0 && seteuid(kNobody) != 0) throw std::runtime_error("seteuid");
  }
  ~OrdinaryRights() {
    if (seteuid(before_) != 0) std::terminate();
  }
  OrdinaryRights(const OrdinaryRights&) = delete;
  OrdinaryRights& operator=(const OrdinaryRights&) = delete;

 private:
  uid_t before_;
};

/// A path that opens for writing and takes no byte, as on a full disk.
inline std::string FullDisk(const TemporaryFolder& folder, std::string_view name = "full.wav") {
  const std::string path = folder.Path(name);
  std::filesystem::create_symlink("/dev/full", path);
  return path;
}

/// A named pipe that nobody has open: opening it the plain way would wait for ever.
inline std::string Fifo(const TemporaryFolder& folder, std::string_view name) {
  const std::string path = folder.Path(name);
  if (mkfifo(path.c_str(), 0666) != 0) throw std::runtime_error("mkfifo");
  return path;
}

}  // namespace velmora::test
