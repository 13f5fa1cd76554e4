#include "Desktop/Logic/OpenInBrowser.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

namespace velmora::desktop {

bool OpenInBrowser(const std::string& path) {
#ifdef __APPLE__
  std::string opener = "open";
#else
  std::string opener = "xdg-open";
#endif
  std::string argument = path;
  char* arguments[] = {opener.data(), argument.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawnp(&child, opener.c_str(), nullptr, nullptr, arguments, environ) != 0) {
    return false;
  }
  try {
    // Somebody has to take note of its end, which may come when the browser is closed.
    std::thread([child] {
      while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
      }
    }).detach();
  } catch (const std::system_error&) {
    return true;  // it runs, and is taken note of when this program ends
  }
  return true;
}

}  // namespace velmora::desktop
