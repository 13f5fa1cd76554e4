#include "Prepare/Staging.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "Session/HiddenName.h"
#include "Session/MoveToFreeName.h"
#include "Session/RemoveTree.h"
#include "Session/StagedFile.h"

namespace velmora::prepare {
namespace {

namespace fs = std::filesystem;

std::string Complaint(const std::string& path, const std::string& what, int error) {
  return path + what + ": " + std::strerror(error);
}

/// True if a folder holds nothing but what killed processes may have left.
bool HoldsLeftOversAlone(const std::string& folder, std::error_code& error) {
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!host::IsHiddenName(entry->path().filename().native())) return false;
  }
  return true;
}

/// What stands below a folder, each after the folder that it is in. Links are not followed.
std::vector<fs::path> PathsBelow(const std::string& folder, std::error_code& error) {
  std::vector<fs::path> paths;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    paths.push_back(entry->path().lexically_relative(folder));
  }
  return paths;
}

}  // namespace

std::string WithoutDetours(const std::string& path) {
  const fs::path given(path);
  fs::path there;
  auto part = given.begin();
  struct stat facts {};
  for (; part != given.end(); ++part) {
    if (lstat((there / *part).c_str(), &facts) != 0 && errno == ENOENT) break;
    there /= *part;
  }
  fs::path missing;
  for (; part != given.end(); ++part) missing /= *part;
  std::string result = missing.empty() ? there : there / missing.lexically_normal();
  while (result.size() > 1 && (result.ends_with('/') || result.ends_with("/."))) result.pop_back();
  return result;
}

Staging::~Staging() {
  Discard();
}

std::string Staging::Begin(const std::string& target) {
  target_ = WithoutDetours(target);
  struct stat facts {};
  there_ = lstat(target_.c_str(), &facts) == 0;
  std::error_code error;
  if (there_ && S_ISLNK(facts.st_mode)) {  // the folder is where the link leads
    target_ = fs::canonical(target_, error).string();
    if (error) return target + " is a link that leads nowhere";
    if (stat(target_.c_str(), &facts) != 0) return Complaint(target, " cannot be read", errno);
  }
  if (there_ && !S_ISDIR(facts.st_mode)) return target + " is there already, and is no folder";
  if (there_) {
    bool empty = HoldsLeftOversAlone(target_, error);
    if (empty && !error) {
      host::TidyLeftOvers(target_, host::IsHiddenName);
      empty = fs::is_empty(target_, error);
    }
    if (error) return target + " cannot be read: " + error.message();
    if (!empty) return target + " is there already, and is not empty";
  } else {
    std::string complaint = MakeParents();
    if (!complaint.empty()) return complaint;
  }
  staging_ = MakeStaging(target_);
  if (staging_.empty() && there_) {  // its folder lets nobody make anything; the target may
    inside_ = true;
    staging_ = MakeStaging(target_ + "/inside");
  }
  if (staging_.empty()) return Complaint(target, " cannot be made", errno);
  // A file system of its own cannot be replaced by another folder.
  struct stat made {};
  if (there_ && !inside_ && stat(staging_.c_str(), &made) == 0 && made.st_dev != facts.st_dev) {
    const std::string beside = staging_;
    inside_ = true;
    staging_ = MakeStaging(target_ + "/inside");
    rmdir(beside.c_str());
    if (staging_.empty()) return Complaint(target, " cannot be written to", errno);
  }
  // What is replaced keeps its rights. A folder with others is still the right folder.
  if (there_) static_cast<void>(chmod(staging_.c_str(), facts.st_mode & 07777));
  return {};
}

/// Makes a hidden folder beside `neighbour`. Empty on failure, errno tells why.
std::string Staging::MakeStaging(const std::string& neighbour) {
  return host::MakeHidden(neighbour, making_,
                          [](const std::string& name) { return mkdir(name.c_str(), 0777) == 0; });
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
  std::string complaint = inside_ ? CommitInside() : TakeTheName();
  if (!complaint.empty()) {
    Discard();
    return complaint;
  }
  if (inside_) rmdir(staging_.c_str());
  staging_.clear();
  making_.End();
  firstParent_.clear();
  return {};
}

std::string Staging::TakeTheName() {
  if (there_) {
    // Over a folder that is still empty this puts the new one in its place in one step.
    const bool replaced = std::rename(staging_.c_str(), target_.c_str()) == 0;
    return replaced ? "" : Complaint(target_, " cannot be replaced", errno);
  }
  const int error = host::MoveToFreeName(staging_, target_);
  return error == 0 ? "" : host::StagedFile(target_).Trouble(error);
}

/// The project comes last: before it there is nothing that could be taken for a whole folder.
std::string Staging::CommitInside() {
  std::error_code error;
  const std::vector<fs::path> made = PathsBelow(staging_, error);
  if (error) return Complaint(target_, " cannot be filled", error.value());
  std::vector<std::string> names;
  for (const fs::path& path : made) {
    if (!path.has_parent_path()) names.push_back(path);
  }
  std::sort(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
    const bool aIsFolder = fs::is_directory(fs::path(staging_) / a);
    const bool bIsFolder = fs::is_directory(fs::path(staging_) / b);
    return aIsFolder != bIsFolder ? aIsFolder : a < b;
  });
  // All paths are made before the first move, after which there may be no memory.
  std::vector<std::pair<std::string, std::string>> moves;
  moves.reserve(names.size());
  for (const std::string& name : names) {
    moves.emplace_back(staging_ + '/' + name, target_ + '/' + name);
  }
  for (std::size_t i = 0; i < moves.size(); ++i) {
    const int trouble = host::MoveToFreeName(moves[i].first, moves[i].second);
    if (trouble == 0) continue;
    names.resize(i);
    TakeBack(made, names);
    return host::StagedFile(moves[i].second).Trouble(trouble);
  }
  return {};
}

/// Removes from the target what of `made` has got there with these names of its folder. What others
/// have put there meanwhile stays, and so do the folders that it is in.
void Staging::TakeBack(const std::vector<fs::path>& made, const std::vector<std::string>& names) {
  for (auto path = made.rbegin(); path != made.rend(); ++path) {
    std::error_code ignored;
    const bool moved = std::find(names.begin(), names.end(), *path->begin()) != names.end();
    if (moved) fs::remove(fs::path(target_) / *path, ignored);
  }
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
