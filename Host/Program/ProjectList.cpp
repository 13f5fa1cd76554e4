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

/// An error that says that there is nothing: a link into the void or to itself, a name that has
/// gone meanwhile.
bool LeadsNowhere(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP;
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
    if (stat(folder.c_str(), &facts) != 0) return Complain(folder, errno);
    if (!seen_.insert({facts.st_dev, facts.st_ino}).second) return;
    const FolderStream stream(opendir(folder.c_str()));
    if (stream == nullptr) return Complain(folder, errno);
    std::vector<std::string> links;
    const std::string prefix = folder.ends_with('/') ? folder : folder + '/';
    // The end of a folder and an error look alike but for errno.
    for (errno = 0; const dirent* const entry = readdir(stream.get()); errno = 0) {
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") Take(prefix + entry->d_name, *entry, links);
    }
    if (errno != 0) Complain(folder, errno);
    std::sort(links.begin(), links.end());
    links_.insert(links_.end(), links.begin(), links.end());
  }

  void Complain(const std::string& path, int error) {
    list_.complaints.push_back(path + ": " + std::strerror(error));
  }

  void Take(const std::string& path, const dirent& entry, std::vector<std::string>& links) {
    bool isLink = entry.d_type == DT_LNK;
    bool isFolder = entry.d_type == DT_DIR;
    struct stat facts {};
    int error = 0;
    if (entry.d_type == DT_UNKNOWN) {
      error = lstat(path.c_str(), &facts) == 0 ? 0 : errno;
      isLink = error == 0 && S_ISLNK(facts.st_mode);
      isFolder = error == 0 && S_ISDIR(facts.st_mode);
    }
    if (isLink) error = stat(path.c_str(), &facts) == 0 ? 0 : errno;
    if (isFolder) {
      folders_.push_back(path);
    } else if (isLink && error == 0 && S_ISDIR(facts.st_mode)) {
      links.push_back(path);
    } else if (IsAdlName(entry.d_name)) {
      list_.paths.push_back(path);
    } else if (error != 0 && !LeadsNowhere(error)) {
      Complain(path, error);  // it may be a folder with projects
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
