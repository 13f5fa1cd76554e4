#include "Base/FileAccess.h"

#include <gtest/gtest.h>
#if defined(__linux__)
#include <sys/inotify.h>
#endif
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "Support/TemporaryFolder.h"

namespace velmora {
namespace {

/// A folder with one thing of each kind.
class Kinds {
 public:
  Kinds() {
    folder_.Write("file", "1234");
    EXPECT_EQ(::mkfifo(Path("fifo").c_str(), 0600), 0);
    std::filesystem::create_directory(Path("folder"));
    std::filesystem::create_symlink("file", Path("link"));
    std::filesystem::create_symlink("fifo", Path("link to a fifo"));
    std::filesystem::create_symlink("nowhere", Path("dangling link"));
    std::filesystem::create_symlink("itself", Path("itself"));
    BindSocket();
  }
  [[nodiscard]] std::string Path(const std::string& name) const {
    return name.starts_with('/') ? name : folder_.Path(name);
  }

 private:
  void BindSocket() {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    const std::string path = Path("socket");
    ASSERT_LT(path.size(), sizeof place.sun_path);
    std::memcpy(place.sun_path, path.c_str(), path.size());
    EXPECT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
    ::close(socket);
  }
  test::TemporaryFolder folder_;
};

TEST(FileAccess, onlyRegularFilesAreOpened) {
  const Kinds kinds;
  const struct {
    const char* name;
    int error;  // 0: opens
    bool wouldOpen;
  } rows[] = {
      {"file", 0, true},
      {"link", 0, true},
      {"folder", EISDIR, true},
      {"fifo", ENODEV, true},
      {"link to a fifo", ENODEV, true},
      {"/dev/null", ENODEV, true},
      {"socket", ENODEV, false},
      {"dangling link", ENOENT, false},
      {"itself", ELOOP, false},
      {"file/below", ENOTDIR, false},
      {"nothing", ENOENT, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = kinds.Path(row.name);
    errno = 0;
    const FileStream stream = OpenRegularFile(path.c_str());
    EXPECT_EQ(stream != nullptr, row.error == 0);
    EXPECT_EQ(stream != nullptr ? 0 : errno, row.error);
    EXPECT_EQ(OpensForReading(path.c_str()), row.wouldOpen);
  }
}

#if defined(__linux__)
/// To open them is an act of its own on a FIFO and on many a device.
TEST(FileAccess, whatIsNoFileIsNotEvenOpened) {
  const Kinds kinds;
  for (const char* const name : {"file", "fifo"}) {
    SCOPED_TRACE(name);
    const std::string path = kinds.Path(name);
    const int watch = ::inotify_init1(IN_NONBLOCK);
    ASSERT_GE(::inotify_add_watch(watch, path.c_str(), IN_OPEN), 0);
    const bool opens = OpenRegularFile(path.c_str()) != nullptr;
    static_cast<void>(OpensForReading(path.c_str()));
    alignas(inotify_event) char events[4096];
    EXPECT_EQ(::read(watch, events, sizeof events) > 0, opens);
    ::close(watch);
  }
}
#endif

TEST(FileAccess, rightsAreThoseOfTheUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give up its rights";
  const Kinds kinds;
  for (const char* const name : {"file", "folder", "fifo"}) {
    SCOPED_TRACE(name);
    ASSERT_EQ(::chmod(kinds.Path(name).c_str(), 0), 0);
    EXPECT_TRUE(OpensForReading(kinds.Path(name).c_str()));  // root may all
  }
  std::filesystem::permissions(std::filesystem::path(kinds.Path("file")).parent_path(),
                               std::filesystem::perms(0755));
  ASSERT_EQ(::seteuid(65534), 0);
  for (const char* const name : {"file", "folder", "fifo"}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(OpensForReading(kinds.Path(name).c_str()));
    EXPECT_EQ(OpenRegularFile(kinds.Path(name).c_str()), nullptr);
  }
  EXPECT_EQ(::seteuid(0), 0);
}

}  // namespace
}  // namespace velmora
