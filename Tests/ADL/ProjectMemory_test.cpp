#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "CountedFile.h"
#include "LoadedProject.h"
#include "Support/OwnNew.h"

namespace {

// No allocation of this program gets more than this.
constexpr std::size_t kLargestAllocation = std::size_t{256} * 1024 * 1024;
std::atomic<int> refusals = 0;
std::atomic<bool> refuseAll = false;

}  // namespace

bool velmora::test::RefusesMemory(std::size_t bytes) noexcept {
  const bool refuses = bytes > kLargestAllocation || refuseAll;
  if (refuses) ++refusals;
  return refuses;
}

namespace velmora::test {
namespace {

// A sparse file: it claims a gigabyte and takes a few bytes of disk.
TEST(ProjectMemory, fileThatCannotBeHeldFails) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("huge.adl", "<ADL> ");
  ASSERT_EQ(truncate(path.c_str(), off_t{1024} * 1024 * 1024), 0);
  refusals = 0;
  const Loading loading(path);
  EXPECT_FALSE(loading.ok);
  EXPECT_GT(refusals, 0) << "the file's size was not asked of this program's allocator";
  ASSERT_TRUE(loading->failure.has_value());
  EXPECT_EQ(loading->failure->code, LoadFailureCode::OutOfMemory);
  EXPECT_EQ(loading->failure->line, 0);
  EXPECT_EQ(loading->failure->section, "");
  EXPECT_EQ(loading->failure->label, "");
  EXPECT_NE(loading->failure->reason, "");
  EXPECT_TRUE(loading->sections.empty());
}

std::optional<LoadFailureCode> CodeOf(const std::string& path) {
  const Loading loading(path);
  if (!loading->failure) return std::nullopt;
  return loading->failure->code;
}

// Here rather than beside the other failures, because only this program can run out of memory.
TEST(LoadFailureCodes, everyOneHasANameOfItsOwnAndCanBeProvoked) {
  const TemporaryFolder folder;
  const auto file = [&folder](const char* name, const std::string& adl) {
    return folder.Write(name, adl);
  };
  const std::string huge = folder.Write("huge.adl", "<ADL> ");
  ASSERT_EQ(truncate(huge.c_str(), off_t{1024} * 1024 * 1024), 0);
  using Code = LoadFailureCode;
  std::map<Code, std::vector<std::string>> paths;
  paths[Code::FileNotOpened] = {folder.Path("absent.adl"), folder.Path(std::string(300, 'n'))};
  paths[Code::FileNotRegular] = {folder.Path(), "/dev/null"};
  // A kernel file claims a page and holds a few bytes.
  const std::string kernelFile = "/sys/kernel/mm/transparent_hugepage/enabled";
  paths[Code::FileNotRead] = {};
  if (std::filesystem::exists(kernelFile)) paths[Code::FileNotRead].push_back(kernelFile);
  paths[Code::OutOfMemory] = {huge};
  paths[Code::IndexMissing] = {file("index.adl", WithSources("(Index)")),
                               file("entry.adl", WithEvents("(Entry) (Rem)"))};
  paths[Code::ValuesMissing] = {file("f.adl", WithSources("(Index) 1 (F) a b c")),
                                file("t.adl", WithSources("(Index) 1 (T) a b c d")),
                                file("cut.adl", WithEvents("(Entry) 1 (Cut) I 1 1 1 a b c")),
                                file("fade.adl", WithEvents("(Entry) 1 (Infade) _ a 0 0"))};
  paths[Code::FadeSeparator] = {
      file("colon.adl", WithEvents("(Entry) 1 (Infade) 00=00:01:00/0000 a 0 0 0")),
      file("long.adl", WithEvents("(Entry) 1 (Outfade) 00=00:01|00/0000x a 0 0 0"))};
  paths[Code::FadeForm] = {
      file("none.adl", WithEvents("(Entry) 1 (Outfade) _ a 0 0 0")),
      file("hours.adl", WithEvents("(Entry) 1 (Infade) 30=00:01:00/0000 a 0 0 0")),
      file("short.adl", WithEvents("(Entry) 1 (Infade) 00=00:01 a 0 0 0"))};

  std::set<std::string> names;
  for (std::size_t i = 0; i < kLoadFailures.size(); ++i) {
    const LoadFailureKind& kind = kLoadFailures[i];
    EXPECT_EQ(static_cast<std::size_t>(kind.code), i) << kind.name;
    EXPECT_STREQ(NameOf(kind.code), kind.name);
    EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
    EXPECT_STRNE(kind.meaning, "") << kind.name;
    ASSERT_TRUE(paths.contains(kind.code)) << kind.name;
    for (const std::string& path : paths[kind.code]) {
      EXPECT_EQ(CodeOf(path), kind.code) << kind.name << ", " << path;
    }
  }
}

TEST(ProjectMemory, projectGoesWithoutNeedOfAny) {
  std::vector<int> deleted;
  deleted.reserve(16);
  auto project = std::make_unique<LoadedProject>(WithSources("(Index) 1 (Index) 2 (Index) 3"));
  auto& sources = (*project)->sourceFiles;
  sources.at(1).file = sources.at(3).file = new CountedFile(1, deleted);
  sources.at(2).file = new CountedFile(2, deleted);
  (*project)->ResolveSources();
  sources.at(2).file = sources.at(3).file = new CountedFile(3, deleted);
  refusals = 0;
  refuseAll = true;
  project->loading.project.reset();
  refuseAll = false;
  EXPECT_GT(refusals, 0) << "nothing was asked for, so nothing was tested";
  EXPECT_EQ(deleted, (std::vector<int>{3, 1, 2}));
}

// Neither a count nor an index of the file makes memory be asked for in its proportion.
TEST(ProjectMemory, claimsOfAFileAllocateNothing) {
  refusals = 0;
  const LoadedProject project("<ADL> <A> (x)2147483647 y </A> </ADL>");
  EXPECT_TRUE(project.ok());
  const LoadedProject events(WithEvents("(Entry) -2147483648 (Rem) (Entry) 2147483647 (Rem)"));
  EXPECT_EQ(events->GetEventCount(), 2);
  const LoadedProject sources(WithSources("(Index) -2147483648 (Index) 2147483647"));
  EXPECT_EQ(sources->sourceFiles.size(), 2U);
  EXPECT_EQ(refusals, 0);
}

}  // namespace
}  // namespace velmora::test
