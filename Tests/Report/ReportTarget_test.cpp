#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "Report/ReportKind.h"
#include "Support/TargetMaterial.h"

namespace velmora::report {
namespace {

class ReportTargetTest : public testing::Test {
 protected:
  host::TargetOutcome Write(const host::TargetProgress& progress = {}) const {
    const host::ClaimedTarget claimed = kReportKind.claim(path_, {});
    EXPECT_EQ(claimed.complaint, "");
    return material_.Write(*claimed.target, progress);
  }
  [[nodiscard]] std::string Page() const {
    std::ostringstream text;
    text << std::ifstream(path_, std::ios::binary).rdbuf();
    return text.str();
  }
  [[nodiscard]] nlohmann::json Facts() const {
    const std::string page = Page(), open = "id=\"facts\">";
    const std::size_t from = page.find(open) + open.size();
    return nlohmann::json::parse(page.substr(from, page.find("</script>", from) - from));
  }

  test::TargetMaterial material_;
  std::string path_ = material_.folder.Path("page.html");
};

TEST_F(ReportTargetTest, tellsAlsoOfASessionWithoutRegions) {
  material_.record.leftOut.push_back({0, 1, 0, 0, "the file is gone", "bring it back"});
  EXPECT_EQ(Write().trouble, "");
  const nlohmann::json facts = Facts();
  EXPECT_TRUE(facts["regions"].empty());
  ASSERT_EQ(facts["messages"].size(), 1U);
  const nlohmann::json& message = facts["messages"][0];
  EXPECT_EQ(message["text"], "the file is gone");
  EXPECT_EQ(message["remedy"], "bring it back");
}

TEST_F(ReportTargetTest, holdsNoTextAsMarkup) {
  const std::string evil = "</script><script>alert(1)</script>\"'\xff";
  material_.record.title = evil;
  material_.record.projectPath = "/" + evil;
  material_.record.constants.fill(evil);
  host::RecordedEvent event;
  event.kind = "cut";
  event.name = event.path = evil;
  material_.record.events.push_back(event);
  material_.record.messages.push_back({host::RecordedMessage::Kind::Note, evil, evil});
  material_.record.findings.push_back({"lost", evil, 1, 1, 1, evil, evil, evil});
  material_.record.files.push_back({host::RecordedFile::State::Failed, "depth", 0, evil});
  material_.record.targets.push_back({evil, evil, false, evil, {evil}, {evil}});
  material_.record.options.copyFolder = evil;
  material_.Place(material_.Wave("a.wav"), 0, 100, {}, 0, 0, evil);
  EXPECT_EQ(Write().trouble, "");
  EXPECT_EQ(Page().find("<script>alert"), std::string::npos);
  EXPECT_EQ(Facts()["regions"][0]["name"], "</script><script>alert(1)</script>\"'\uFFFD");
}

TEST_F(ReportTargetTest, holdsALongNameInEachEventAndStaysSmall) {
  const std::string name(100'000, 'n');
  for (int i = 0; i < 1000; ++i) {
    host::RecordedEvent event;
    event.event = i;
    event.kind = "cut";
    event.name = name;
    event.source = 1;
    event.isOn = event.isMissing = true;
    material_.record.events.push_back(event);
    material_.record.leftOut.push_back({i, i, 0, 0, name + " is not there", "bring it"});
  }
  EXPECT_EQ(Write().trouble, "");
  EXPECT_LT(Page().size(), 4'000'000U);
  EXPECT_EQ(Facts()["sources"][0]["name"], name);
}

TEST_F(ReportTargetTest, standsPositionsThatAreNoTimes) {
  using Limits = std::numeric_limits<std::int64_t>;
  const std::string wave = material_.Wave("a.wav");
  material_.Place(wave, Limits::min(), 100);
  material_.Place(wave, Limits::max() - 5, 100);
  material_.Place(wave, 0, -7);
  EXPECT_EQ(Write().trouble, "");
  EXPECT_EQ(Facts()["regions"].size(), 3U);
  EXPECT_EQ(Page().find("nan"), std::string::npos);
}

TEST_F(ReportTargetTest, refusesANameThatIsHeld) {
  material_.folder.Write("page.html", std::string("mine"));
  EXPECT_NE(kReportKind.claim(path_, {}).complaint.find("page.html"), std::string::npos);
}

TEST_F(ReportTargetTest, leavesNothingWhenItIsCancelled) {
  material_.Place(material_.Wave("a.wav"), 0, 100);
  EXPECT_NE(Write([](double) { return false; }).trouble, "");
  EXPECT_FALSE(std::filesystem::exists(path_));
}

}  // namespace
}  // namespace velmora::report
