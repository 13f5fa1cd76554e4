// Files whose name is settled when they are created: nothing that is there is ever touched.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "BWF/OutputPaths.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

/// What a folder may hold under a name, and how to see that it is still the same.
struct HeldRow {
  const char* form;
  void (*make)(const std::string& path);
};

constexpr HeldRow kHeldRows[] = {
    {"file", [](const std::string& path) { std::ofstream(path) << "in use"; }},
    {"writeOnlyFile",
     [](const std::string& path) {
       std::ofstream(path) << "in use";
       chmod(path.c_str(), 0222);
     }},
    {"fileWithoutRights",
     [](const std::string& path) {
       std::ofstream(path) << "in use";
       chmod(path.c_str(), 0);
     }},
    {"danglingLink",
     [](const std::string& path) { std::filesystem::create_symlink("nowhere", path); }},
    {"linkToItself", [](const std::string& path) { std::filesystem::create_symlink(path, path); }},
    {"linkToAFile",
     [](const std::string& path) {
       std::ofstream(path + "-aim") << "in use";
       std::filesystem::create_symlink(path + "-aim", path);
     }},
    {"fifo", [](const std::string& path) { mkfifo(path.c_str(), 0666); }},
    {"folder", [](const std::string& path) { std::filesystem::create_directory(path); }},
};

/// Type, rights, size, time of the last change and aim of a link: what nobody may have touched.
std::string FactsOf(const std::string& path) {
  struct stat facts {};
  if (lstat(path.c_str(), &facts) != 0) return "gone";
  std::error_code none;
  return std::to_string(facts.st_mode) + " " + std::to_string(facts.st_size) + " " +
         std::to_string(facts.st_ino) + " " + std::to_string(facts.st_mtim.tv_nsec) + " " +
         std::filesystem::read_symlink(path, none).string();
}

class NewFileTest : public testing::Test {
 protected:
  /// Creates the file and writes into it, as everything does that makes one.
  static bool WriteInto(NewFile& file, const std::string& text = "made") {
    const FileStream stream = file.Create();
    if (stream == nullptr) return false;
    file.Keep();
    return std::fputs(text.c_str(), stream.get()) >= 0;
  }
  NewFile New(OutputNames& names) const { return names.New(source, root.c_str(), ""); }

  TemporaryFolder folder;
  const std::string root = folder.Path();
  const std::string source = "/no-x/a.wav";
};

TEST_F(NewFileTest, takesTheFirstFreeName) {
  OutputNames names;
  for (const char* const expected : {"/a.wav", "/a.1.wav", "/a.2.wav"}) {
    NewFile file = New(names);
    EXPECT_EQ(file.Path(), root + expected);
    EXPECT_FALSE(std::filesystem::exists(file.Path())) << "before it is created";
    EXPECT_TRUE(WriteInto(file));
    EXPECT_EQ(file.Path(), root + expected);
    EXPECT_EQ(TemporaryFolder::Read(root + expected), "made");
  }
}

TEST_F(NewFileTest, nameThatNobodyAskedForIsTheSame) {
  folder.Write("a.wav", "in use");
  OutputNames names;
  for (const char* const expected : {"/a.1.wav", "/a.2.wav", "/a.3.wav"}) {
    NewFile file = New(names);
    EXPECT_TRUE(WriteInto(file));
    EXPECT_EQ(file.Path(), root + expected);
    EXPECT_EQ(TemporaryFolder::Read(root + expected), "made");
  }
  EXPECT_EQ(TemporaryFolder::Read(root + "/a.wav"), "in use");
}

TEST_F(NewFileTest, namesHeldInAnyFormArePassedOver) {
  OrdinaryRights rights;  // as the owner of a fresh folder, so that rights count
  TemporaryFolder own;
  for (const HeldRow& row : kHeldRows) {
    SCOPED_TRACE(row.form);
    const std::string base = own.Path(row.form);
    const std::string held = base + ".wav";
    row.make(held);
    const std::string before = FactsOf(held);
    OutputNames names;
    EXPECT_EQ(names.Find(base + ".wav", nullptr, ""), base + ".1.wav");
    NewFile file = names.New(base + ".wav", nullptr, "");
    EXPECT_TRUE(WriteInto(file));
    EXPECT_EQ(file.Path(), base + ".1.wav");
    EXPECT_EQ(FactsOf(held), before);
    EXPECT_FALSE(std::filesystem::exists(own.Path("nowhere")));
  }
}

TEST_F(NewFileTest, namesThatAppearMeanwhileArePassedOver) {
  OrdinaryRights rights;
  TemporaryFolder own;
  for (const HeldRow& row : kHeldRows) {
    SCOPED_TRACE(row.form);
    const std::string base = own.Path(row.form);
    OutputNames names;
    NewFile file = names.New(base + ".wav", nullptr, "");
    ASSERT_EQ(file.Path(), base + ".wav");
    row.make(base + ".wav");
    row.make(base + ".1.wav");
    const std::string before = FactsOf(base + ".wav") + FactsOf(base + ".1.wav");
    EXPECT_TRUE(WriteInto(file));
    EXPECT_EQ(file.Path(), base + ".2.wav");
    EXPECT_EQ(FactsOf(base + ".wav") + FactsOf(base + ".1.wav"), before);
    EXPECT_FALSE(std::filesystem::exists(own.Path("nowhere")));
  }
}

TEST_F(NewFileTest, nameTakenInVainIsGivenBack) {
  OutputNames names;
  {
    NewFile file = New(names);
    const FileStream stream = file.Create();
    EXPECT_NE(stream, nullptr);
    EXPECT_TRUE(std::filesystem::exists(root + "/a.wav"));
  }
  EXPECT_TRUE(std::filesystem::is_empty(root));
  NewFile file = New(names);
  EXPECT_EQ(file.Path(), root + "/a.wav");
}

TEST_F(NewFileTest, fileThatWasNeverCreatedRemovesNothing) {
  OutputNames names;
  {
    NewFile file = New(names);
    folder.Write("a.wav", "in use");
  }
  EXPECT_EQ(TemporaryFolder::Read(root + "/a.wav"), "in use");
}

TEST_F(NewFileTest, folderThatRefusesEveryNameEndsAtTheFirst) {
  OrdinaryRights rights;
  TemporaryFolder own;
  std::filesystem::create_directory(own.Path("locked"));
  std::ofstream(own.Path("locked") + "/a.wav") << "in use";
  chmod(own.Path("locked").c_str(), 0555);
  struct Row {
    const char* rule;
    std::string folder;
    const char* first;
  };
  const Row rows[] = {{"missing", own.Path("missing"), "/a.wav"},
                      {"belowAFile", own.Write("file", "x"), "/a.wav"},
                      {"notToBeWritten", own.Path("locked"), "/a.1.wav"},
                      {"nameTooLong", own.Path(std::string(300, 'n')), "/a.wav"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    OutputNames names;
    for (const bool isAskedBefore : {true, false, true}) {
      NewFile file = names.New(source, row.folder.c_str(), "");
      if (isAskedBefore) {
        EXPECT_EQ(file.Path(), row.folder + row.first);
      }
      EXPECT_EQ(file.Create(), nullptr);
      EXPECT_EQ(file.Path(), row.folder + row.first);
    }
  }
  chmod(own.Path("locked").c_str(), 0755);
}

TEST_F(NewFileTest, runsAtOnceShareNoName) {
  constexpr int kRuns = 4;
  constexpr int kFilesEach = 200;
  std::vector<pid_t> children;
  for (int run = 0; run < kRuns; ++run) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child != 0) {
      children.push_back(child);
      continue;
    }
    OutputNames names;
    for (int i = 0; i < kFilesEach; ++i) {
      NewFile file = New(names);
      const std::string label = std::to_string(run) + " " + std::to_string(i);
      if (!WriteInto(file, label)) _exit(1);
      if (TemporaryFolder::Read(file.Path()) != label) _exit(2);
    }
    _exit(0);
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  std::set<std::string> labels;
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(root)) {
    labels.insert(TemporaryFolder::Read(entry.path().string()));
    ++count;
  }
  EXPECT_EQ(count, kRuns * kFilesEach);
  EXPECT_EQ(labels.size(), static_cast<std::size_t>(kRuns * kFilesEach));
  const std::string last = "/a." + std::to_string(kRuns * kFilesEach - 1) + ".wav";
  EXPECT_TRUE(std::filesystem::exists(root + last)) << "no number is left out";
}

}  // namespace
}  // namespace velmora::test
