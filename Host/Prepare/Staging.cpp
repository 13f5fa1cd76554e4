#include "Prepare/Staging.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "Session/RemoveTree.h"

namespace velmora::prepare {
namespace {

namespace fs = std::filesystem;

std::string Complaint(const std::string& path, const std::string& what, int error) {
  return path + what + ": " + std::strerror(error);
}

/// The rights that a new folder gets; mkdtemp gives its maker alone any.
void GiveCommonRights(const std::string& folder, const struct stat* model) {
  const mode_t mask = umask(0);
  umask(mask);
  const mode_t rights = model != nullptr ? model->st_mode & 07777 : 0777 & ~mask;
  // A folder with fewer rights than wanted is still the right folder.
  if (chmod(folder.c_str(), rights) != 0) return;
}

constexpr std::string_view kMark = ".preparing-";
constexpr std::string_view kPattern = "XXXXXX";  // which mkdtemp replaces

/// Removes what killed processes have left that were preparing into `target`, beside it or in it.
void TidyUp(const std::string& target) {
  const std::string name = fs::path(target).filename();
  const auto isOurs = [](std::string_view found, std::string_view start) {
    if (!found.starts_with(start)) return false;
    found.remove_prefix(start.size());
    return found.starts_with(kMark) && found.size() == kMark.size() + kPattern.size();
  };
  host::TidyLeftOvers(fs::path(target).parent_path(),
                      [&](std::string_view found) { return isOurs(found, name); });
  host::TidyLeftOvers(target, [&](std::string_view found) { return isOurs(found, ""); });
}

}  // namespace

Staging::~Staging() {
  Discard();
}

std::string Staging::Begin(const std::string& target) {
  target_ = target;
  while (target_.size() > 1 && target_.back() == '/') target_.pop_back();
  struct stat facts {};
  const bool there = lstat(target_.c_str(), &facts) == 0;
  std::error_code error;
  if (!there || S_ISDIR(facts.st_mode)) TidyUp(target_);
  if (there && S_ISLNK(facts.st_mode)) {  // the folder is where the link leads
    target_ = fs::canonical(target_, error).string();
    if (error) return target + " is a link that leads nowhere";
    if (stat(target_.c_str(), &facts) != 0) return Complaint(target, " cannot be read", errno);
    if (S_ISDIR(facts.st_mode)) TidyUp(target_);
  }
  if (there && !S_ISDIR(facts.st_mode)) return target + " is there already, and is no folder";
  if (there) {
    const bool empty = fs::is_empty(target_, error);
    if (error) return target + " cannot be read: " + error.message();
    if (!empty) return target + " is there already, and is not empty";
  } else {
    std::string complaint = MakeParents();
    if (!complaint.empty()) return complaint;
  }
  staging_ = MakeStaging(target_);
  if (staging_.empty() && there) {  // its folder lets nobody make anything; the target may
    inside_ = true;
    staging_ = MakeStaging(target_ + '/');
  }
  if (staging_.empty()) return Complaint(target, " cannot be made", errno);
  // A file system of its own cannot be replaced by another folder.
  struct stat made {};
  if (there && !inside_ && stat(staging_.c_str(), &made) == 0 && made.st_dev != facts.st_dev) {
    const std::string beside = staging_;
    inside_ = true;
    staging_ = MakeStaging(target_ + '/');
    rmdir(beside.c_str());
    if (staging_.empty()) return Complaint(target, " cannot be written to", errno);
  }
  GiveCommonRights(staging_, there ? &facts : nullptr);
  return {};
}

/// Makes a folder whose name begins with `start`. Empty on failure, errno tells why.
std::string Staging::MakeStaging(const std::string& start) {
  constexpr int kMostNames = 100;
  for (int i = 0; i < kMostNames; ++i) {
    std::string name = start;
    name.append(kMark).append(kPattern);
    if (mkdtemp(name.data()) == nullptr) return {};
    if (making_.Begin(name)) return name;
  }
  errno = EEXIST;
  return {};
}

std::string Staging::MakeParents() {
  std::vector<std::string> missing;
  struct stat facts {};
  for (fs::path parent = fs::path(target_).parent_path();
       lstat(parent.c_str(), &facts) != 0 && errno == ENOENT; parent = parent.parent_path()) {
    missing.push_back(parent.string());
  }
  for (auto parent = missing.rbegin(); parent != missing.rend(); ++parent) {
    if (mkdir(parent->c_str(), 0777) == 0) {
      if (firstParent_.empty()) firstParent_ = *parent;
    } else if (errno != EEXIST) {
      return Complaint(*parent, " cannot be made", errno);
    }
  }
  return {};
}

std::string Staging::Commit() {
  if (inside_) return CommitInside();
  // Over an empty folder this puts the new one in its place in one step.
  if (std::rename(staging_.c_str(), target_.c_str()) != 0) {
    const int error = errno;
    Discard();
    return Complaint(target_, " cannot take its place", error);
  }
  staging_.clear();
  making_.End();
  firstParent_.clear();
  return {};
}

/// The project comes last: before it there is nothing that could be taken for a whole folder.
std::string Staging::CommitInside() {
  std::vector<fs::path> names;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(staging_, error)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end(), [&](const fs::path& a, const fs::path& b) {
    const bool aIsFolder = fs::is_directory(fs::path(staging_) / a);
    const bool bIsFolder = fs::is_directory(fs::path(staging_) / b);
    return aIsFolder != bIsFolder ? aIsFolder : a < b;
  });
  std::vector<fs::path> moved;
  for (const fs::path& name : names) {
    const fs::path to = fs::path(target_) / name;
    if (!error) fs::rename(fs::path(staging_) / name, to, error);
    if (!error) moved.push_back(to);
  }
  std::string complaint;
  if (error) {
    complaint = target_ + " cannot be filled: " + error.message();
    std::error_code ignored;
    for (const fs::path& path : moved) fs::remove_all(path, ignored);
  }
  Discard();
  return complaint;
}

/// Takes no memory, since there may be none.
void Staging::Discard() noexcept {
  if (!staging_.empty()) host::RemoveTree(staging_);
  staging_.clear();
  making_.End();
  if (firstParent_.empty()) return;
  // From the target's folder up to the first that was made, those that stayed empty.
  for (std::size_t end = target_.size(); end > firstParent_.size();) {
    end = target_.find_last_of('/', end - 1);
    if (end > 0 && target_[end - 1] == '/') continue;
    target_[end] = '\0';
    const bool removed = rmdir(target_.c_str()) == 0;
    target_[end] = '/';
    if (!removed) break;
  }
  firstParent_.clear();
}

}  // namespace velmora::prepare
