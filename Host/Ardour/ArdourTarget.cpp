#include "Ardour/ArdourTarget.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "Ardour/ArdourPlan.h"
#include "Ardour/SessionMaker.h"
#include "Session/StagedFolder.h"
#include "Session/XmlText.h"

namespace velmora::ardour {
namespace {

namespace fs = std::filesystem;

/// The session has the name of its folder, as Ardour expects it, but where a file cannot have it:
/// Ardour makes longer names of it, and writes it into its file.
std::string SessionName(const std::string& path) {
  constexpr std::size_t kMostBytes = 200;
  fs::path folder = path;
  if (!folder.has_filename()) folder = folder.parent_path();
  const std::string name = folder.filename();
  return name.size() > kMostBytes || host::XmlText(name) != name ? "Session" : name;
}

/// Moves all that is in a folder to another. 0 or an errno.
int MoveInto(const fs::path& target, const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> entries;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    entries.push_back(entry->path());
  }
  for (const fs::path& entry : entries) {
    if (!error) fs::rename(entry, target / entry.filename(), error);
  }
  return error.value();
}

}  // namespace

host::TargetOutcome ArdourTarget::Write(const host::TargetInput& input,
                                        const host::TargetProgress& progress) {
  const ArdourPlan plan(input);
  host::TargetOutcome outcome = {{}, plan.LeftOut(), plan.Notes()};
  const auto fails = [&](const std::string& cause) {
    outcome.trouble = path_ + " is not made: " + cause;
    return outcome;
  };
  if (!plan.Trouble().empty()) return fails(plan.Trouble());

  host::StagedFolder staged(path_);
  if (!staged.Create()) return fails(std::strerror(errno));
  // Ardour makes no session in a folder that is there. So it is made further down and moved up.
  const SessionMaker::Place place = {staged.WrittenPath() + "/.making", SessionName(path_)};
  if (::mkdir(place.folder.c_str(), 0700) != 0) return fails(std::strerror(errno));
  SessionMaker maker(input, plan, place);
  const std::string trouble = maker.Make(program_, patience_, progress);
  if (!trouble.empty()) return fails(trouble);
  const int moving = MoveInto(staged.WrittenPath(), place.Session());
  if (moving != 0) return fails(std::strerror(moving));
  std::error_code error;
  fs::remove_all(place.folder, error);
  if (error) return fails(error.message());
  const int publishing = staged.Publish();
  if (publishing == EEXIST) {
    outcome.trouble = path_ + " has appeared meanwhile; it is not written over";
  } else if (publishing != 0) {
    return fails(std::strerror(publishing));
  }
  return outcome;
}

}  // namespace velmora::ardour
