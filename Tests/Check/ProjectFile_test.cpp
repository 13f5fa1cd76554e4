// Files that are no ADL, or cannot be read at all.

#include "Check/ProjectFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "CheckFixture.h"

namespace velmora::check {
namespace {

class Unreadable : public CheckTest {
 protected:
  void ExpectUnreadable(const std::string& path, const std::string& why) {
    media::FolderListings listings;
    const CheckedProject checked = CheckProject(path, options_, listings);
    EXPECT_EQ(checked.verdict, Verdict::Unreadable) << path;
    EXPECT_EQ(Told(checked.findings), "not-an-adl fails 0:0\n") << path;
    ASSERT_EQ(checked.findings.size(), 1U);
    EXPECT_NE(checked.findings[0].text.Text().find(why), std::string::npos)
        << checked.findings[0].text;
  }
};

TEST_F(Unreadable, whatHasNeitherTagNorEvents) {
  ExpectUnreadable(folder_.Write("empty.adl", ""), "neither");
  ExpectUnreadable(folder_.Write("letter.adl", "Dear diary"), "neither");
  ExpectUnreadable(folder_.Write("take.adl", Wave()), "neither");
}

TEST_F(Unreadable, whatIsNoRegularFileAndNothingWaits) {
  ExpectUnreadable(folder_.Path("gone.adl"), "No such file");
  ExpectUnreadable(folder_.Path(), "no regular file");
  ExpectUnreadable("/dev/null", "no regular file");
  ASSERT_EQ(mkfifo(folder_.Path("pipe.adl").c_str(), 0600), 0);
  ExpectUnreadable(folder_.Path("pipe.adl"), "no regular file");
}

TEST_F(Unreadable, whatIsLargerThanAnyAdlIsNotRead) {
  const std::string path = folder_.Write("huge.adl", "<ADL>");
  std::filesystem::resize_file(path, std::uintmax_t{1} << 40);  // takes no room on the disk
  ExpectUnreadable(path, "larger than any ADL");
}

TEST_F(Unreadable, largeNoiseIsRefusedWithoutBeingKept) {
  std::string noise(std::size_t{9} << 20, 'x');
  ExpectUnreadable(folder_.Write("noise.adl", noise), "neither");
  // A word that lies across two blocks of the search counts.
  noise.replace((std::size_t{1} << 20) - 3, 12, "<event_list>");
  EXPECT_EQ(ReadProjectFile(folder_.Write("noise.adl", noise)).trouble, "");
}

TEST_F(Unreadable, anEventListWithoutATagIsRead) {
  const std::string text = kClean;
  const CheckedProject checked = Check(text.substr(text.find("<VERSION>")));
  EXPECT_EQ(checked.verdict, Verdict::Loses);
  EXPECT_EQ(Told(checked.findings), "stray-text lost 1:1\n");
}

}  // namespace
}  // namespace velmora::check
