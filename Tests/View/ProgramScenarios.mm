// The program as a whole, in a process of its own.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "Support/SystemConditions.h"
#import "View/Checks.h"
#import "View/Driver.h"
#import "View/Material.h"
#import "View/Scenarios.h"

namespace velmora::view {

namespace {

struct Outcome {
  int status = -1;  // of a process that ended by itself
  int signal = 0;   // that ended it
  std::string errors;
};

// Runs velmora-desktop to its end. A limit on time is the caller's of this very process.
Outcome RunDesktop(const test::TemporaryFolder& folder, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), VELMORA_DESKTOP);
  std::vector<char*> raw;
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);
  const std::string errors = folder.Path("errors.txt");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t usual;
  sigemptyset(&usual);
  sigaddset(&usual, SIGXFSZ);
  posix_spawnattr_setsigdefault(&attributes, &usual);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  pid_t process = 0;
  int status = 0;
  CheckTrue("the program starts",
            posix_spawn(&process, raw[0], &actions, &attributes, raw.data(), environ) == 0);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  waitpid(process, &status, 0);

  Outcome outcome;
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  outcome.errors = test::TemporaryFolder::Read(errors);
  return outcome;
}

void NibIsMissing() {
  const test::TemporaryFolder folder;
  const std::string copy = folder.Path("Damaged.bundle");
  std::filesystem::copy(std::filesystem::canonical(VELMORA_BUNDLE), copy,
                        std::filesystem::copy_options::recursive);
  CheckTrue("the nib is taken", std::filesystem::remove(copy + "/Resources/Velmora_View.xib"));
  const Outcome outcome = RunDesktop(folder, {"--bundle", copy});
  Check("the assertion ends the process", SIGABRT, outcome.signal);
  CheckContains("and names itself", "viewController != nil", outcome.errors);
  CheckContains("and its place", "Source/View/Velmora_ViewControllerFactory", outcome.errors);
  Check("a bundle that is not there is told", 4,
        RunDesktop(folder, {"--bundle", folder.Path("None.bundle")}).status);
}

void WritesSnapshot() {
  const test::TemporaryFolder folder;
  const std::string storm = CopyOfExample(folder, "Storm.adl");
  const std::string picture = folder.Path("window.png");
  Check("it ends well", 0, RunDesktop(folder, {storm, "--spot", "--snapshot", picture}).status);
  Check("the file is a PNG", std::string("\x89PNG\r\n\x1a\n"),
        test::TemporaryFolder::Read(picture).substr(0, 8));
  std::filesystem::create_directories(VELMORA_SCREENSHOTS);
  std::filesystem::copy_file(picture, std::string(VELMORA_SCREENSHOTS) + "/snapshot.png",
                             std::filesystem::copy_options::overwrite_existing);

  const Outcome refused = RunDesktop(folder, {storm, "--snapshot", folder.Path("none/window.png")});
  Check("a picture that cannot be written is told", 4, refused.status);
  CheckContains("by its path", "none/window.png", refused.errors);
  const Outcome bad = RunDesktop(folder, {folder.Path("none.adl"), "--snapshot", picture});
  Check("a project that does not load is a picture too", 0, bad.status);
}

// A limit for files (ulimit -f) is told like a full disk: its signal, which ends a program, does
// not.
void MeetsLimitForFiles() {
  const test::TemporaryFolder folder;
  const std::string storm = CopyOfExample(folder, "Storm.adl");
  const std::string picture = folder.Path("window.png");
  Check("the program has run before", 0, RunDesktop(folder, {storm, "--snapshot", picture}).status);
  std::filesystem::remove(picture);
  constexpr rlim_t kBytes = 4096;  // less than any picture of the window
  const test::FileSizeLimit limit(kBytes);
  const Outcome outcome = RunDesktop(folder, {storm, "--snapshot", picture});
  Check("no signal ends it", 0, outcome.signal);
  Check("its status tells", 4, outcome.status);
  CheckContains("by the picture's path", picture, outcome.errors);
}

void HasNoDisplay() {
  const test::TemporaryFolder folder;
  for (const char* display : {"", ":4711"}) {
    if (*display == '\0') {
      unsetenv("DISPLAY");
    } else {
      setenv("DISPLAY", display, 1);
    }
    const Outcome outcome = RunDesktop(folder, {});
    Check("there is no crash", 0, outcome.signal);
    Check("the exit status tells", 4, outcome.status);
    CheckContains("one line says why", "there is no display", outcome.errors);
    CheckContains("another what to do", "xvfb-run", outcome.errors);
  }
  Check("help needs no display", 0, RunDesktop(folder, {"--help"}).status);
}

}  // namespace

std::vector<Scenario> ProgramScenarios() {
  return {{"nib-missing", NibIsMissing},
          {"writes-snapshot", WritesSnapshot},
          {"limits-files", MeetsLimitForFiles},
          {"no-display", HasNoDisplay}};
}

}  // namespace velmora::view
