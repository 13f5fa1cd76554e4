#include "Desktop/Logic/CheckRun.h"

#include <new>

namespace velmora::desktop {

check::CheckedProject CheckAfresh(const std::string& path, const check::CheckOptions& options,
                                  const std::function<bool()>& stopped) {
  media::FolderListings listings;
  return check::CheckProject(path, options, listings, stopped);
}

bool CheckRun::Start(const std::string& path, const check::CheckOptions& options) {
  return run_.Start([=, checker = checker_](const auto& stopped) -> CheckedPtr {
    try {
      return std::make_shared<const check::CheckedProject>(checker(path, options, stopped));
    } catch (const std::bad_alloc&) {
      return nullptr;  // the window goes on without
    }
  });
}

}  // namespace velmora::desktop
