#include "Program/ProjectList.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "Base/Text.h"
#include "Program/AbsolutePath.h"

namespace velmora::program {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};
using FolderStream = std::unique_ptr<DIR, CloseFolder>;

bool IsAdlName(std::string_view name) {
  constexpr std::string_view kExtension = ".adl";
  if (name.size() <= kExtension.size()) return false;
  return EqualsIgnoringCase(std::string(name.substr(name.size() - kExtension.size())).c_str(),
                            kExtension.data());
}

/// Walks through one folder. Links to folders wait until all else is done, so that a folder is told
/// by its own path where it has one.
class Walk {
 public:
  Walk(ProjectList& list, const std::function<bool()>& cancelled)
      : list_(list), cancelled_(cancelled) {}

  void Run(const std::string& top) {
    const std::size_t first = list_.paths.size();
    folders_.push_back(top);
    while (!folders_.empty() || !links_.empty()) {
      std::deque<std::string>& next = folders_.empty() ? links_ : folders_;
      const std::string folder = std::move(next.front());
      next.pop_front();
      if (cancelled_()) return;
      ListFolder(folder);
    }
    std::sort(list_.paths.begin() + static_cast<std::ptrdiff_t>(first), list_.paths.end());
    if (list_.paths.size() == first)
      list_.complaints.push_back(top + ": there is no *.adl below it");
  }

 private:
  void ListFolder(const std::string& folder) {
    struct stat facts {};
    if (stat(folder.c_str(), &facts) != 0 || !seen_.insert({facts.st_dev, facts.st_ino}).second) {
      return;
    }
    const FolderStream stream(opendir(folder.c_str()));
    if (stream == nullptr) {
      list_.complaints.push_back(folder + ": " + std::strerror(errno));
      return;
    }
    std::vector<std::string> links;
    const std::string prefix = folder.ends_with('/') ? folder : folder + '/';
    while (const dirent* const entry = readdir(stream.get())) {
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") Take(prefix + entry->d_name, *entry, links);
    }
    std::sort(links.begin(), links.end());
    links_.insert(links_.end(), links.begin(), links.end());
  }

  void Take(const std::string& path, const dirent& entry, std::vector<std::string>& links) {
    bool isLink = entry.d_type == DT_LNK;
    bool isFolder = entry.d_type == DT_DIR;
    struct stat facts {};
    if (entry.d_type == DT_UNKNOWN && lstat(path.c_str(), &facts) == 0) {
      isLink = S_ISLNK(facts.st_mode);
      isFolder = S_ISDIR(facts.st_mode);
    }
    const bool leadsToFolder = isLink && stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
    if (isFolder) {
      folders_.push_back(path);
    } else if (leadsToFolder) {
      links.push_back(path);
    } else if (IsAdlName(entry.d_name)) {
      list_.paths.push_back(path);
    }
  }

  ProjectList& list_;
  const std::function<bool()>& cancelled_;
  std::deque<std::string> folders_;
  std::deque<std::string> links_;
  std::set<std::pair<dev_t, ino_t>> seen_;
};

}  // namespace

ProjectList FindProjects(const std::vector<std::string>& arguments,
                         const std::function<bool()>& cancelled) {
  ProjectList list;
  for (const std::string& argument : arguments) {
    const std::string path = AbsolutePath(argument);
    struct stat facts {};
    if (stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode)) {
      Walk(list, cancelled).Run(path);
    } else {
      list.paths.push_back(path);
    }
  }
  return list;
}

}  // namespace velmora::program
