#include "Session/SessionFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "Session/SessionJson.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"

namespace {
bool linksAreUnknown = false;
}

/// In place of the system's: a file system without second names can be had for a test.
extern "C" int link(const char* from, const char* to) noexcept {
  if (!linksAreUnknown) return linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
  errno = EPERM;
  return -1;
}

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEarlier = "{\n  \"summary\": {\"tracks\":7}\n}\n";

Session SessionOf(int regions) {
  Session session;
  for (int i = 0; i < regions; ++i) session.Place({0, i * 100, 0, 50, 1, "/a/x.wav", "x"});
  return session;
}

std::string TextOf(const Session& session) {
  std::ostringstream out;
  EXPECT_TRUE(WriteSessionJson(session, out));
  return out.str();
}

class SessionFileTest : public testing::Test {
 protected:
  std::unique_ptr<SessionTarget> Claimed() {
    ClaimedTarget claimed = SessionFile::Claim(path_);
    EXPECT_EQ(claimed.complaint, "");
    return std::move(claimed.target);
  }
  std::string WriteTo(SessionTarget& target, int regions) {
    const Session session = SessionOf(regions);
    return target.Write({session, HeardSession(session), {48000, 2}, {}}, {}).trouble;
  }
  std::string Content() {
    return fs::is_directory(path_) ? "" : test::TemporaryFolder::Read(path_);
  }
  /// Everything in the folder, so that nothing is left behind unseen.
  std::size_t Entries() {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
  }
  /// The complaint of a claim that has to fail and to change nothing.
  std::string Refusal() {
    const std::size_t before = Entries();
    const ClaimedTarget claimed = SessionFile::Claim(path_);
    EXPECT_EQ(claimed.target, nullptr);
    EXPECT_EQ(Entries(), before);
    return claimed.complaint;
  }

  test::TemporaryFolder folder_;
  std::string path_ = folder_.Path("s.json");
};

TEST_F(SessionFileTest, writesTheSessionUnderAFreeName) {
  const auto target = Claimed();
  EXPECT_EQ(Entries(), 0u);  // a claim makes nothing
  EXPECT_EQ(WriteTo(*target, 2), "");
  EXPECT_EQ(Content(), TextOf(SessionOf(2)));
  EXPECT_EQ(Entries(), 1u);
  struct stat facts {};
  ASSERT_EQ(stat(path_.c_str(), &facts), 0);
  const mode_t mask = umask(0);
  umask(mask);
  EXPECT_EQ(facts.st_mode & 0777, 0666 & ~mask);
  EXPECT_EQ(facts.st_nlink, 1u);
}

TEST_F(SessionFileTest, writesOnFileSystemsWithoutSecondNames) {
  linksAreUnknown = true;
  EXPECT_EQ(WriteTo(*Claimed(), 2), "");
  const auto late = [&] {
    fs::remove(path_);
    const auto target = Claimed();
    folder_.Write("s.json", "diary");
    return WriteTo(*target, 2);
  }();
  linksAreUnknown = false;
  EXPECT_EQ(late, path_ + " has appeared meanwhile; it is not written over");
  EXPECT_EQ(Content(), "diary");
  EXPECT_EQ(Entries(), 1u);
}

TEST_F(SessionFileTest, replacesAnEarlierSessionAndKeepsItsRights) {
  folder_.Write("s.json", kEarlier);
  fs::permissions(path_, fs::perms(0640));
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_EQ(Content(), TextOf(SessionOf(1)));
  EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0640));
  EXPECT_EQ(Entries(), 1u);
}

TEST_F(SessionFileTest, anEmptyFileCountsAsASession) {
  folder_.Write("s.json", "");
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_EQ(Content(), TextOf(SessionOf(1)));
}

TEST_F(SessionFileTest, aNameMayBeAsLongAsTheSystemLetsIt) {
  path_ = folder_.Path(std::string(255, 'n'));
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_EQ(Content(), TextOf(SessionOf(1)));
}

TEST_F(SessionFileTest, leavesItsNeighboursAlone) {
  const std::string victim = folder_.Write("victim", "precious");
  const std::string part = path_ + ".part";
  for (const bool isThere : {false, true}) {
    if (isThere) folder_.Write("s.json", kEarlier);
    for (const char* kind : {"file", "link", "danglingLink"}) {
      if (kind == std::string("file")) folder_.Write("s.json.part", "mine");
      if (kind == std::string("link")) fs::create_symlink(victim, part);
      if (kind == std::string("danglingLink")) fs::create_symlink(folder_.Path("none"), part);
      EXPECT_EQ(WriteTo(*Claimed(), 1), "") << kind;
      EXPECT_EQ(Content(), TextOf(SessionOf(1))) << kind;
      EXPECT_EQ(fs::is_symlink(part), kind != std::string("file")) << kind;
      if (kind == std::string("file")) {
        EXPECT_EQ(test::TemporaryFolder::Read(part), "mine");
      }
      EXPECT_EQ(test::TemporaryFolder::Read(victim), "precious") << kind;
      EXPECT_FALSE(fs::exists(folder_.Path("none"))) << kind;
      EXPECT_EQ(Entries(), 3u) << kind;
      fs::remove(part);
    }
  }
}

TEST_F(SessionFileTest, takesTheNextNameForItsTemporaryFile) {
  const std::string victim = folder_.Write("victim", "precious");
  const std::string first = folder_.Path(".velmora-" + std::to_string(getpid()) + "-1.part");
  fs::create_symlink(victim, first);
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_TRUE(fs::is_symlink(first));
  EXPECT_EQ(test::TemporaryFolder::Read(victim), "precious");
}

TEST_F(SessionFileTest, refusesWhatIsNoSession) {
  for (const char* content : {"my diary", "{\"a\": 1}", "[]", " ", "\xFF"}) {
    folder_.Write("s.json", content);
    EXPECT_EQ(Refusal(), path_ + " is there and is no session; it is not written over");
    EXPECT_EQ(Content(), content);
  }
}

TEST_F(SessionFileTest, refusesWhatCannotBeRead) {
  folder_.Write("s.json", kEarlier);
  fs::permissions(path_, fs::perms(0200));
  fs::permissions(folder_.Path(), fs::perms::all);
  std::string complaint;
  {
    const test::OrdinaryRights ordinary;
    complaint = SessionFile::Claim(path_).complaint;
  }
  EXPECT_EQ(complaint,
            path_ + " is there and cannot be read (Permission denied); it is not written over");
  EXPECT_EQ(Content(), kEarlier);
}

TEST_F(SessionFileTest, refusesALinkToNothing) {
  fs::create_symlink(folder_.Path("none"), path_);
  EXPECT_EQ(Refusal(), path_ +
                           " is a link that leads to no file (No such file or directory); "
                           "it is not written over");
  fs::remove(path_);
  fs::create_symlink(path_, path_);
  EXPECT_EQ(Refusal(), path_ +
                           " is a link that leads to no file (Too many levels of symbolic "
                           "links); it is not written over");
  EXPECT_TRUE(fs::is_symlink(path_));
}

TEST_F(SessionFileTest, refusesPlacesThatTakeNoFile) {
  path_ = folder_.Path();
  EXPECT_EQ(Refusal(), path_ + " is a folder");
  path_ = folder_.Path("none/s.json");
  EXPECT_EQ(Refusal(), path_ + " cannot be written: No such file or directory");
  path_ = folder_.Write("file", "") + "/s.json";
  EXPECT_EQ(Refusal(), path_ + " cannot be written: Not a directory");
  path_ = folder_.Path(std::string(256, 'n'));
  EXPECT_EQ(Refusal(), path_ + " cannot be written: File name too long");
}

TEST_F(SessionFileTest, aLinkToAnEarlierSessionIsReplacedItself) {
  const std::string other = folder_.Write("other.json", kEarlier);
  fs::create_symlink(other, path_);
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_FALSE(fs::is_symlink(path_));
  EXPECT_EQ(Content(), TextOf(SessionOf(1)));
  EXPECT_EQ(test::TemporaryFolder::Read(other), kEarlier);
}

TEST_F(SessionFileTest, whatHasAppearedMeanwhileStays) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"file", [&] { folder_.Write("s.json", "diary"); }},
      {"session", [&] { folder_.Write("s.json", kEarlier); }},
      {"emptyFile", [&] { folder_.Write("s.json", ""); }},
      {"danglingLink", [&] { fs::create_symlink(folder_.Path("none"), path_); }},
      {"folder", [&] { fs::create_directory(path_); }},
  };
  for (const auto& [rule, appear] : rows) {
    const auto target = Claimed();
    appear();
    const fs::file_type type = fs::symlink_status(path_).type();
    const std::string content = Content();
    EXPECT_EQ(WriteTo(*target, 1), path_ + " has appeared meanwhile; it is not written over")
        << rule;
    EXPECT_EQ(fs::symlink_status(path_).type(), type) << rule;
    EXPECT_EQ(Content(), content) << rule;
    EXPECT_EQ(Entries(), 1u) << rule;
    fs::remove(path_);
  }
}

TEST_F(SessionFileTest, anEarlierSessionThatHasChangedMeanwhileStays) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"writtenTo", [&] { std::ofstream(path_, std::ios::app) << "more"; }},
      {"writtenToWithTheSameSizeInTheSameSecond",
       [&] { std::fstream(path_, std::ios::in | std::ios::out).seekp(-1, std::ios::end) << " "; }},
      {"replaced",
       [&] {
         folder_.Write("new", kEarlier);
         fs::rename(folder_.Path("new"), path_);
       }},
      {"becameALinkToNothing",
       [&] {
         fs::remove(path_);
         fs::create_symlink(folder_.Path("none"), path_);
       }},
  };
  for (const auto& [rule, change] : rows) {
    fs::remove(path_);
    folder_.Write("s.json", kEarlier);
    // Further back than the ticks in which a file system counts.
    fs::last_write_time(path_, fs::last_write_time(path_) - std::chrono::milliseconds(50));
    const auto target = Claimed();
    change();
    const std::string content = Content();
    EXPECT_EQ(WriteTo(*target, 1), path_ + " has changed meanwhile; it is not written over")
        << rule;
    EXPECT_EQ(Content(), content) << rule;
    EXPECT_EQ(Entries(), 1u) << rule;
  }
}

TEST_F(SessionFileTest, anEarlierSessionThatIsGoneIsNoHindrance) {
  folder_.Write("s.json", kEarlier);
  const auto target = Claimed();
  fs::remove(path_);
  EXPECT_EQ(WriteTo(*target, 1), "");
  EXPECT_EQ(Content(), TextOf(SessionOf(1)));
}

TEST_F(SessionFileTest, ofManyRunsOnOneNameOneWritesAndTheOthersSaySo) {
  constexpr int kRuns = 8;
  for (const bool isThere : {false, true}) {
    fs::remove(path_);
    if (isThere) folder_.Write("s.json", kEarlier);
    std::vector<std::unique_ptr<SessionTarget>> targets;
    for (int i = 0; i < kRuns; ++i) targets.push_back(Claimed());
    std::vector<std::string> complaints(kRuns);
    std::vector<std::thread> runs;
    for (std::size_t i = 0; i < kRuns; ++i) {
      runs.emplace_back([&, i] { complaints[i] = WriteTo(*targets[i], static_cast<int>(i) + 1); });
    }
    for (std::thread& run : runs) run.join();
    int written = 0;
    for (std::size_t i = 0; i < kRuns; ++i) {
      if (!complaints[i].empty()) continue;
      ++written;
      EXPECT_EQ(Content(), TextOf(SessionOf(static_cast<int>(i) + 1)));
    }
    EXPECT_EQ(written, 1) << isThere;
    EXPECT_EQ(Entries(), 1u);
  }
}

TEST_F(SessionFileTest, aFailureLeavesAnEarlierSessionAndNothingElse) {
  folder_.Write("s.json", kEarlier);
  const auto target = Claimed();
  std::string complaint;
  {
    const test::FileSizeLimit limit(50);
    complaint = WriteTo(*target, 3);
  }
  EXPECT_EQ(complaint, path_ + " cannot be written: File too large");
  EXPECT_EQ(Content(), kEarlier);
  EXPECT_EQ(Entries(), 1u);
}

TEST_F(SessionFileTest, aDeviceIsWrittenToInPlace) {
  path_ = "/dev/null";
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_TRUE(fs::is_character_file(path_));
  path_ = test::FullDisk(folder_, "full.json");
  EXPECT_EQ(WriteTo(*Claimed(), 1), path_ + " cannot be written: No space left on device");
  EXPECT_TRUE(fs::is_symlink(path_));
}

TEST_F(SessionFileTest, aPipeIsWrittenToInPlace) {
  const test::Watchdog watchdog;
  path_ = test::Fifo(folder_, "pipe");
  // So small a session fits into the pipe, so that one thread can write it and read it afterwards.
  const int reader = open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(reader, 0);
  EXPECT_EQ(WriteTo(*Claimed(), 2), "");
  std::string received(4096, '\0');
  received.resize(static_cast<std::size_t>(
      std::max<ssize_t>(read(reader, received.data(), received.size()), 0)));
  close(reader);
  EXPECT_EQ(received, TextOf(SessionOf(2)));
  EXPECT_TRUE(fs::is_fifo(path_));
}

TEST_F(SessionFileTest, aPipeThatNobodyReadsIsRefused) {
  const test::Watchdog watchdog;
  path_ = test::Fifo(folder_, "pipe");
  EXPECT_EQ(Refusal(), path_ + " cannot be written: it is a socket, or a pipe that nobody reads");
}

TEST_F(SessionFileTest, aDescriptorsNameReachesTheFileThatIsOpen) {
  const std::string file = folder_.Write("out.txt", "");
  const int descriptor = open(file.c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(write(descriptor, "report\n", 7), 7);
  const std::string name = "/dev/fd/" + std::to_string(descriptor);
  path_ = name;
  EXPECT_EQ(WriteTo(*Claimed(), 1), "");
  EXPECT_EQ(test::TemporaryFolder::Read(file), "report\n" + TextOf(SessionOf(1)));
  // As /dev/stdout is: a link to the descriptor's name.
  path_ = folder_.Path("stdout");
  fs::create_symlink(name, path_);
  EXPECT_EQ(WriteTo(*Claimed(), 0), "");
  EXPECT_TRUE(fs::is_symlink(path_));
  EXPECT_EQ(test::TemporaryFolder::Read(file),
            "report\n" + TextOf(SessionOf(1)) + TextOf(SessionOf(0)));
  close(descriptor);
}

}  // namespace
}  // namespace velmora::host
