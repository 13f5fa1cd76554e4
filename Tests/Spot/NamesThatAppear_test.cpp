#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "Spot/SpotFixture.h"

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

/// Whatever stands at the name: a folder, a link to nothing and a file that nobody may read too.
bool Held(const fs::path& path) {
  return fs::symlink_status(path).type() != fs::file_type::not_found;
}

struct Way {
  const char* name;
  std::function<void(const fs::path&)> hold;
};

void PrintTo(const Way& way, std::ostream* out) {
  *out << way.name;
}

const std::string kForeign = "foreign";

const std::vector<Way> kWays = {
    {"File", [](const fs::path& path) { std::ofstream(path) << kForeign; }},
    {"EmptyFile", [](const fs::path& path) { std::ofstream{path}; }},
    {"LinkToNothing", [](const fs::path& path) { fs::create_symlink("nowhere", path); }},
    {"LinkToAFile", [](const fs::path& path) { fs::create_symlink("precious", path); }},
    {"Folder", [](const fs::path& path) { fs::create_directory(path); }},
    {"Pipe", [](const fs::path& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }},
};

/// A folder into which somebody else works at the same time: at each step of the run that person
/// takes the next free name of every series.
class NamesThatAppear : public SpotWorkerTest, public testing::WithParamInterface<Way> {
 protected:
  NamesThatAppear() {
    options.doFades = options.doGain = 1;
    options.bitDepth = 24;
    options.depthSuffix = "_24bit";
    fs::create_directory(folder.Path("copies"));
  }

  void TakeNextNames() {
    for (const char* where : {"", "copies/"}) {
      for (const char* stem : {"take", "take_24bit", "take_Gain", "take_FadeIn", "take_FadeOut"}) {
        const std::string name = std::string(where) + stem;
        fs::path path = folder.Path(name + ".wav");
        for (int number = 1; Held(path); ++number) {
          path = folder.Path(name + "." + std::to_string(number) + ".wav");
        }
        GetParam().hold(path);
        taken_.push_back(path);
      }
    }
  }

  /// Contents of the files that the last run made, in the order of their making.
  std::vector<std::string> Made() const {
    std::vector<std::string> contents;
    for (const std::string& line : observer.files) {
      const std::size_t from = line.find(' ', line.find(' ') + 1) + 1;
      const std::string path = line.substr(from, line.rfind(' ') - from);
      EXPECT_TRUE(line.ends_with(" 0")) << line;
      EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder.Path(path)))) << path;
      contents.push_back(TemporaryFolder::Read(folder.Path(path)));
    }
    return contents;
  }

  std::vector<fs::path> taken_;
};

TEST_P(NamesThatAppear, AreLeftToTheirOwners) {
  folder.Write("precious", "precious");
  LoadThreeEvents();
  for (const bool copying : {false, true}) {
    options.copySource = copying;
    options.copyFolder = copying ? folder.Path("copies") : "";
    observer.onReport = nullptr;
    host.onSend = nullptr;
    ASSERT_TRUE(Run());
    const std::vector<std::string> quiet = Made();
    ASSERT_EQ(quiet.size(), 5U);
    const std::size_t regions = host.messages.size();

    taken_.clear();
    observer.onReport = [&](std::int32_t) { TakeNextNames(); };
    host.onSend = [&] { TakeNextNames(); };
    ASSERT_TRUE(Run());
    EXPECT_EQ(Made(), quiet);
    EXPECT_EQ(host.messages.size(), regions);
    for (const fs::path& path : taken_) {
      const fs::file_status status = fs::symlink_status(path);
      EXPECT_NE(status.type(), fs::file_type::not_found) << path;
      if (fs::is_regular_file(status)) {
        const std::string held = TemporaryFolder::Read(path);
        EXPECT_TRUE(held.empty() || held == kForeign) << path;
      }
    }
  }
  EXPECT_EQ(TemporaryFolder::Read(folder.Path("precious")), "precious");
  EXPECT_FALSE(Exists("nowhere"));
  EXPECT_FALSE(Exists("copies/nowhere"));
}

INSTANTIATE_TEST_SUITE_P(Ways, NamesThatAppear, testing::ValuesIn(kWays),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace velmora::test
