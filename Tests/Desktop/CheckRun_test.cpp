#include "Desktop/Logic/CheckRun.h"

#include <gtest/gtest.h>

#include <future>
#include <new>
#include <thread>

#include "Desktop/Logic/PrepareRun.h"
#include "Support/ProjectBuilder.h"
#include "Support/TemporaryFolder.h"

namespace velmora::desktop {
namespace {

check::CheckedProject Named(const std::string& path) {
  check::CheckedProject checked;
  checked.path = path;
  return checked;
}

TEST(CheckRun, givesTheProjectThatWasLoadedLast) {
  std::promise<void> begun;
  std::promise<void> ended;
  CheckRun run([&] { ended.set_value(); },
               [&](const std::string& path, const check::CheckOptions&, const auto& stopped) {
                 if (path == "/first.adl") {
                   begun.set_value();
                   while (!stopped()) std::this_thread::yield();
                 }
                 return Named(path);
               });
  ASSERT_TRUE(run.Start("/first.adl", {}));
  begun.get_future().wait();
  ASSERT_TRUE(run.Start("/second.adl", {}));
  ended.get_future().wait();
  const CheckedPtr checked = run.Take();
  ASSERT_NE(checked, nullptr);
  EXPECT_EQ(checked->path, "/second.adl");
  EXPECT_EQ(run.Take(), nullptr);
}

TEST(CheckRun, withoutMemoryThereIsNoCheckAndNoHarm) {
  std::promise<void> ended;
  CheckRun run([&] { ended.set_value(); },
               [](const auto&, const auto&, const auto&) -> check::CheckedProject {
                 throw std::bad_alloc();
               });
  ASSERT_TRUE(run.Start("/big.adl", {}));
  ended.get_future().wait();
  EXPECT_EQ(run.Take(), nullptr);
}

TEST(CheckRun, checksAFile) {
  const test::TemporaryFolder folder;
  const std::string path =
      test::ProjectBuilder().Source(1, "nowhere.wav").Cut({}).WriteTo(folder, "Demo.adl");
  std::promise<void> ended;
  CheckRun run([&] { ended.set_value(); });
  ASSERT_TRUE(run.Start(path, {}));
  ended.get_future().wait();
  const CheckedPtr checked = run.Take();
  ASSERT_NE(checked, nullptr);
  EXPECT_EQ(checked->path, path);
  EXPECT_EQ(checked->verdict, check::Verdict::Loses);
  ASSERT_FALSE(checked->findings.empty());
}

class PrepareRunTest : public testing::Test {
 protected:
  prepare::Prepared TakeAfter(PrepareRun& run) {
    ended_.get_future().wait();
    return run.Take().value_or(prepare::Prepared());
  }
  prepare::PrepareOptions Into(const std::string& name) const {
    prepare::PrepareOptions options;
    options.into = folder_.Path(name);
    return options;
  }
  test::TemporaryFolder folder_;
  std::string project_ =
      test::ProjectBuilder().Source(1, "nowhere.wav").Cut({}).WriteTo(folder_, "Demo.adl");
  std::promise<void> ended_;
  std::function<void()> tell_ = [this] { ended_.set_value(); };
};

TEST_F(PrepareRunTest, preparesAFile) {
  PrepareRun run(tell_);
  ASSERT_TRUE(run.Start(project_, Into("out")));
  const prepare::Prepared prepared = TakeAfter(run);
  EXPECT_EQ(prepared.outcome, prepare::Outcome::Left) << prepared.trouble;
  EXPECT_EQ(prepared.projectPath, folder_.Path("out/Demo.adl"));
  EXPECT_TRUE(std::filesystem::exists(prepared.projectPath));
}

TEST_F(PrepareRunTest, aStopDuringTheCheckMakesNoFolder) {
  std::promise<void> begun;
  PrepareRun run(tell_, [&](const auto& path, const auto& options, const auto& stopped) {
    begun.set_value();
    while (!stopped()) std::this_thread::yield();
    return CheckAfresh(path, options, stopped);
  });
  ASSERT_TRUE(run.Start(project_, Into("out")));
  begun.get_future().wait();
  EXPECT_TRUE(run.IsRunning());
  EXPECT_EQ(run.Step().share, 0);
  EXPECT_EQ(run.Step().what, "Looking for the audio files");
  run.Stop();
  EXPECT_EQ(TakeAfter(run).outcome, prepare::Outcome::Cancelled);
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("out")));
}

TEST_F(PrepareRunTest, withoutMemoryItFailsInWords) {
  PrepareRun run(tell_, [](const auto&, const auto&, const auto&) -> check::CheckedProject {
    throw std::bad_alloc();
  });
  ASSERT_TRUE(run.Start(project_, Into("out")));
  const prepare::Prepared prepared = TakeAfter(run);
  EXPECT_EQ(prepared.outcome, prepare::Outcome::Failed);
  EXPECT_NE(prepared.trouble.find("memory"), std::string::npos);
}

}  // namespace
}  // namespace velmora::desktop
