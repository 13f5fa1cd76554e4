#include "Desktop/Logic/SaveRun.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <new>
#include <thread>

#include "Desktop/Logic/SaveReport.h"
#include "Destinations/Destinations.h"
#include "Support/TemporaryFolder.h"

namespace velmora::desktop {
namespace {

std::atomic<std::size_t> regionsSeen = 0;

/// Writes until it is cancelled; then says so, as every target does.
class Endless : public host::SessionTarget {
 public:
  host::TargetOutcome Write(const host::TargetInput& input,
                            const host::TargetProgress& progress) override {
    while (progress(0.5)) {
      regionsSeen = input.session.Regions().size();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return {"it was cancelled", {}, {}};
  }
};

class Greedy : public host::SessionTarget {
 public:
  host::TargetOutcome Write(const host::TargetInput&, const host::TargetProgress&) override {
    throw std::bad_alloc();
  }
};

template <class Target>
host::TargetKind KindOf() {
  return {.name = "test",
          .option = nullptr,
          .form = "FILE",
          .extension = ".test",
          .title = "Test",
          .help = "",
          .use = host::TargetKind::Use::Regions,
          .claim = [](const std::string&, const host::TargetChoices&) -> host::ClaimedTarget {
            return {std::make_unique<Target>(), {}};
          }};
}

std::shared_ptr<const SpottedSession> OneRegion() {
  SpottedSession session;
  session.session.Place({0, 0, 0, 100, 1, "/nowhere/a.wav", "a"});
  return std::make_shared<const SpottedSession>(std::move(session));
}

class SaveRunTest : public testing::Test {
 protected:
  SaveOutcome WaitForOutcome() {
    while (!ended_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return run_.Take().value();
  }
  const host::TargetKind& Kind(const std::string& name) {
    for (const host::Destination& row : host::Destinations()) {
      if (row.target->name == name) return *row.target;
    }
    throw std::runtime_error(name);
  }
  test::TemporaryFolder folder_;
  std::atomic<bool> ended_ = false;
  SaveRun run_{[this] { ended_ = true; }};
};

TEST_F(SaveRunTest, stopCancelsIt) {
  const host::TargetKind kind = KindOf<Endless>();
  ASSERT_TRUE(run_.Start({&kind, folder_.Path("x.test"), {}}, OneRegion()));
  while (run_.Share() < 0.5) std::this_thread::yield();
  EXPECT_TRUE(run_.IsRunning());
  run_.Stop();
  const SaveOutcome outcome = WaitForOutcome();
  EXPECT_TRUE(outcome.cancelled);
  EXPECT_FALSE(run_.IsRunning());
  EXPECT_EQ(regionsSeen, 1U);
  EXPECT_FALSE(HasDetails(outcome));
  EXPECT_EQ(DescribeSave(outcome).text, "x.test: cancelled, nothing was made");
}

TEST_F(SaveRunTest, closeCancelsItAndWaits) {
  const host::TargetKind kind = KindOf<Endless>();
  ASSERT_TRUE(run_.Start({&kind, folder_.Path("x.test"), {}}, OneRegion()));
  while (run_.Share() < 0.5) std::this_thread::yield();
  run_.Close();
  EXPECT_FALSE(ended_);
  EXPECT_FALSE(run_.Start({&kind, folder_.Path("y.test"), {}}, OneRegion()));
}

TEST_F(SaveRunTest, tooLittleMemoryIsTrouble) {
  const host::TargetKind kind = KindOf<Greedy>();
  ASSERT_TRUE(run_.Start({&kind, folder_.Path("x.test"), {}}, OneRegion()));
  const SaveOutcome outcome = WaitForOutcome();
  EXPECT_FALSE(outcome.cancelled);
  EXPECT_NE(outcome.made.trouble.find("not enough memory"), std::string::npos);
}

TEST_F(SaveRunTest, aTakenNameIsTroubleAndStaysAsItIs) {
  const std::string path = folder_.Write("taken.json", "mine");
  ASSERT_TRUE(run_.Start({&Kind("session"), path, {}}, OneRegion()));
  const SaveOutcome outcome = WaitForOutcome();
  EXPECT_NE(outcome.made.trouble.find(path), std::string::npos);
  EXPECT_EQ(DescribeSave(outcome).severity, Severity::Problem);
  EXPECT_EQ(std::filesystem::file_size(path), 4U);
}

TEST_F(SaveRunTest, noNameThatIsTakenIsAccepted) {
  const std::string earlier = folder_.Path("earlier.json");
  ASSERT_TRUE(run_.Start({&Kind("session"), earlier, {}}, OneRegion()));
  ASSERT_EQ(WaitForOutcome().made.trouble, "");
  const std::string empty = folder_.Write("empty.json", "");
  std::filesystem::create_symlink("/nowhere", folder_.Path("link.json"));
  for (const host::Destination& row : host::Destinations()) {
    for (const std::string& path : {earlier, empty, folder_.Path("link.json"), folder_.Path()}) {
      EXPECT_NE(ComplaintAbout({row.target, path, {}}).find(path), std::string::npos)
          << row.target->name;
    }
  }
  EXPECT_EQ(ComplaintAbout({&Kind("session"), folder_.Path("free.json"), {}}), "");
}

TEST_F(SaveRunTest, anEmptySessionIsRefusedWhereRegionsAreNeeded) {
  const auto empty = std::make_shared<const SpottedSession>();
  ASSERT_TRUE(run_.Start({&Kind("otio"), folder_.Path("x.otio"), {}}, empty));
  EXPECT_NE(WaitForOutcome().made.trouble.find("No region"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("x.otio")));
}

TEST_F(SaveRunTest, aReportOfASpotThatPlacedNothingIsMade) {
  const auto empty = std::make_shared<const SpottedSession>();
  ASSERT_TRUE(run_.Start({&Kind("report"), folder_.Path("x.html"), {}}, empty));
  const SaveOutcome outcome = WaitForOutcome();
  EXPECT_EQ(outcome.made.trouble, "");
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("x.html")));
}

TEST(SaveReport, theNameIsTheProjectsAndFree) {
  const test::TemporaryFolder folder;
  const host::TargetKind kind = KindOf<Endless>();
  const std::string project = folder.Path("My Film.v2.adl");
  EXPECT_EQ(FreeTargetFor(kind, project), folder.Path("My Film.v2.test"));
  folder.Write("My Film.v2.test", "x");
  std::filesystem::create_symlink("/nowhere", folder.Path("My Film.v2 2.test"));
  EXPECT_EQ(FreeTargetFor(kind, project), folder.Path("My Film.v2 3.test"));
}

TEST(SaveReport, theExtensionIsAddedOnce) {
  const host::TargetKind kind = KindOf<Endless>();
  const struct {
    const char* typed;
    const char* meant;
  } rows[] = {
      {"/a/x", "/a/x.test"},           {"/a/x.test", "/a/x.test"},    {"/a/x.TEST", "/a/x.TEST"},
      {"/a.test/x", "/a.test/x.test"}, {"/a/x.wav", "/a/x.wav.test"}, {"/a/", "/a/"},
  };
  for (const auto& row : rows) EXPECT_EQ(WithExtension(kind, row.typed), row.meant) << row.typed;
  host::TargetKind folderKind = kind;
  folderKind.extension = "";
  EXPECT_EQ(WithExtension(folderKind, "/a/x"), "/a/x");
}

TEST(SaveReport, whatWasLeftOutIsCountedAndListed) {
  const host::TargetKind kind = KindOf<Endless>();
  const SaveOutcome outcome{
      {&kind, "/a/x.test", {}}, {{}, {"one", "two\nlines"}, {"three"}}, false};
  EXPECT_TRUE(HasDetails(outcome));
  EXPECT_EQ(DescribeSave(outcome).severity, Severity::Notice);
  EXPECT_EQ(DescribeSave(outcome).text, "Made /a/x.test (2 left out, 1 note)");
  EXPECT_EQ(SaveHeadline(outcome), "x.test is made, but it lacks something.");
  EXPECT_EQ(SaveDetails(outcome, 1),
            "Made\n  /a/x.test\n\nLeft out (2)\n  one\n  and 1 more\n\n"
            "Worth knowing (1)\n  three\n");
  EXPECT_NE(SaveDetails(outcome, 9).find("  two lines\n"), std::string::npos);
}

}  // namespace
}  // namespace velmora::desktop
