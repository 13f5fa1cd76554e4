#include "Support/WorkFolder.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "Support/Holds.h"

namespace velmora::fuzz {
namespace {

namespace fs = std::filesystem;

std::string MakeRoot() {
  const char* const chosen = std::getenv("TMPDIR");
  std::string root = chosen != nullptr              ? chosen
                     : fs::is_directory("/dev/shm") ? "/dev/shm"
                                                    : fs::temp_directory_path().string();
  root += "/velmora-fuzz-XXXXXX";
  Hold(mkdtemp(root.data()) != nullptr, "a folder for files can be made", root);
  return root;
}

}  // namespace

WorkFolder::WorkFolder() : root_(MakeRoot()) {}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  fs::remove_all(root_, ignored);
}

std::string WorkFolder::Path(std::string_view name) const {
  return name.empty() ? root_ : root_ + '/' + std::string(name);
}

std::string WorkFolder::Write(std::string_view name, std::string_view bytes) const {
  std::string path = Path(name);
  int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    fs::create_directories(fs::path(path).parent_path());
    descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  }
  const ssize_t written = write(descriptor, bytes.data(), bytes.size());
  Hold(close(descriptor) == 0 && written == static_cast<ssize_t>(bytes.size()),
       "a file of an input can be written", path);
  return path;
}

std::string WorkFolder::Read(std::string_view name) const {
  std::ifstream file(Path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WorkFolder::Remove(std::string_view name) const {
  unlink(Path(name).c_str());
}

void WorkFolder::Clear(std::string_view name) const {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(Path(name), ignored)) {
    fs::remove_all(entry.path(), ignored);
  }
}

void LimitFiles(unsigned bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes;
  setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace velmora::fuzz
