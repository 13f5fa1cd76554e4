#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

constexpr const char* kSound = "<ADL> <PROJECT> (PROJ_TITLE) x </PROJECT> </ADL>\n";

/// The load failed for the file as a whole, and left nothing.
void ExpectNoFile(const Loading& loading, const std::string& what) {
  EXPECT_FALSE(loading.ok) << what;
  ASSERT_TRUE(loading->failure.has_value()) << what;
  EXPECT_EQ(loading->failure->line, 0) << what;
  EXPECT_EQ(loading->failure->section, "") << what;
  EXPECT_EQ(loading->failure->label, "") << what;
  EXPECT_NE(loading->failure->reason, "") << what;
  EXPECT_EQ(loading.standardError, "") << what;
  EXPECT_TRUE(loading->sections.empty()) << what;
  EXPECT_EQ(loading->GetEventCount(), 0) << what;
  for (std::uint32_t id = 0; id < loading->constants.size(); ++id) {
    EXPECT_EQ(loading->GetConstant(id), nullptr) << what;
  }
}

TEST(ProjectFile, thatDoesNotExistFails) {
  const TemporaryFolder folder;
  ExpectNoFile(Loading(folder.Path("missing.adl")), "missing file");
  ExpectNoFile(Loading(folder.Path("missing/deeper.adl")), "missing folder");
  ExpectNoFile(Loading(""), "empty path");
}

TEST(ProjectFile, folderFails) {
  const TemporaryFolder folder;
  ExpectNoFile(Loading(folder.Path()), "folder");
  ExpectNoFile(Loading("/"), "root folder");
}

TEST(ProjectFile, devicesFailAtOnce) {
  for (const char* const device : {"/dev/zero", "/dev/null", "/dev/full", "/dev/urandom"}) {
    ExpectNoFile(Loading(device), device);
  }
}

TEST(ProjectFile, fifoFailsWithoutWaitingForAWriter) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("fifo.adl");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  ExpectNoFile(Loading(path), "fifo");
}

TEST(ProjectFile, socketFails) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("s");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(socket, 0);
  EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ExpectNoFile(Loading(path), "socket");
  close(socket);
}

TEST(ProjectFile, symbolicLinks) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("sound.adl", kSound);
  std::filesystem::create_symlink(path, folder.Path("link.adl"));
  std::filesystem::create_symlink(folder.Path("nothing"), folder.Path("dangling.adl"));
  std::filesystem::create_symlink(folder.Path("loop.adl"), folder.Path("loop.adl"));
  EXPECT_TRUE(Loading(folder.Path("link.adl")).ok);
  ExpectNoFile(Loading(folder.Path("dangling.adl")), "dangling link");
  ExpectNoFile(Loading(folder.Path("loop.adl")), "link to itself");
}

// The superuser reads everything, so the test gives that up while it loads, where it is allowed to.
TEST(ProjectFile, unreadableFileFails) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("secret.adl", kSound);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  const uid_t user = geteuid();
  if (user == 0) static_cast<void>(seteuid(65534));
  std::FILE* const witness = std::fopen(path.c_str(), "rb");
  const Loading loading(path);
  ASSERT_EQ(seteuid(user), 0);
  if (witness == nullptr) {
    ExpectNoFile(loading, "unreadable file");
  } else {
    std::fclose(witness);
    EXPECT_TRUE(loading.ok) << "the file is readable here";
  }
}

// A kernel file claims a page and holds a few bytes.
TEST(ProjectFile, thatDoesNotGiveAllItsBytesFails) {
  const std::string path = "/sys/kernel/mm/transparent_hugepage/enabled";
  struct stat status {};
  const bool there = stat(path.c_str(), &status) == 0;
  const auto held = static_cast<off_t>(TemporaryFolder::Read(path).size());
  const Loading loading(path);
  EXPECT_EQ(loading.ok, there && held == status.st_size);
}

TEST(ProjectFile, pathOfAnyLength) {
  const TemporaryFolder folder;
  ExpectNoFile(Loading(folder.Path() + "/" + std::string(300, 'n')), "name too long");
  ExpectNoFile(Loading(folder.Path() + "/" + std::string(100'000, 'p')), "path too long");
  std::string detour = folder.Path();
  folder.Write("sound.adl", kSound);
  for (int i = 0; i < 1'000; ++i) detour += "/.";
  const Loading loading(detour + "/sound.adl");
  EXPECT_TRUE(loading.ok);
  EXPECT_EQ(loading->folder, detour);
}

void ExpectEmptyTree(const std::string& bytes, const std::string& what) {
  const LoadedProject project(bytes);
  EXPECT_TRUE(project.ok()) << what;
  EXPECT_FALSE(project->failure.has_value()) << what;
  EXPECT_EQ(project.standardError(), "") << what;
  EXPECT_TRUE(project->sections.empty()) << what;
  EXPECT_TRUE(project->refLists.empty()) << what;
  EXPECT_TRUE(project->comments.empty()) << what;
  EXPECT_TRUE(project->sourceFiles.empty()) << what;
  EXPECT_EQ(project->GetEventCount(), 0) << what;
  for (std::uint32_t id = 0; id < project->constants.size(); ++id) {
    EXPECT_EQ(project->GetConstant(id), nullptr) << what;
  }
}

TEST(ProjectFile, emptyFileIsAProjectWithoutEvents) {
  ExpectEmptyTree("", "empty file");
}

TEST(ProjectFile, withoutTheOpeningTagIsAProjectWithoutEvents) {
  const std::string events = "<EVENT_LIST> (Entry) 1 (Rem) </EVENT_LIST> </ADL>";
  ExpectEmptyTree(" <ADL> " + events, "blank ahead");
  ExpectEmptyTree("\xEF\xBB\xBF<ADL> " + events, "byte-order mark ahead");
  ExpectEmptyTree("/* c */<ADL> " + events, "comment ahead");
  ExpectEmptyTree("plain text", "text");
  ExpectEmptyTree(std::string(100'000, '\0'), "zeros");
  ExpectEmptyTree(std::string(100'000, '('), "parentheses");
  ExpectEmptyTree("RIFF\x04\x01\x02\x03WAVEfmt ", "binary");
}

TEST(ProjectFile, largeFileLoads) {
  std::string adl = "<ADL> <A> ";
  for (int i = 0; i < 200'000; ++i) adl += "(x) \"some text of some length\" 1\n";
  const LoadedProject project(adl + "</A> </ADL>");
  EXPECT_TRUE(project.ok());
  ASSERT_EQ(project->sections.size(), 1U);
  EXPECT_EQ(project->sections[0].entries.size(), 200'000U);
}

TEST(ProjectFile, loadedProjectHasNoFailure) {
  const LoadedProject project(kSound);
  EXPECT_TRUE(project.ok());
  EXPECT_FALSE(project->failure.has_value());
}

TEST(ProjectFolder, isThePathUpToItsLastSlash) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("sub/sound.adl", kSound);
  EXPECT_EQ(Loading(path)->folder, folder.Path("sub"));
}

TEST(ProjectFolder, isTheWholePathIfThatHasNoSlash) {
  const TemporaryFolder folder;
  folder.Write("sound.adl", kSound);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const Loading loading("sound.adl");
  std::filesystem::current_path(before);
  EXPECT_TRUE(loading.ok);
  EXPECT_EQ(loading->folder, "sound.adl");
}

TEST(ProjectFolder, isEmptyForAFileInTheRootFolder) {
  EXPECT_EQ(Loading("/no such project.adl")->folder, "");
}

TEST(ProjectFolder, isTheGivenSearchFolder) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("sound.adl", kSound);
  EXPECT_EQ(Loading(path, "/some/where")->folder, "/some/where");
  EXPECT_EQ(Loading(path, "")->folder, "");
}

TEST(ProjectFolder, isACopyOfTheCallersText) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("sound.adl", kSound);
  std::string search = "/some/where";
  const Loading loading(path, search.c_str());
  search.assign(search.size(), '#');
  EXPECT_EQ(loading->folder, "/some/where");
}

}  // namespace
}  // namespace velmora::test
