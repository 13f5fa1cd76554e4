#include "View/AppleEventHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "AppleEventDouble.h"
#include "Spot/RegionSpotter.h"

namespace velmora::test {
namespace {

template <class Number>
std::string NumberHex(Number number) {
  return Hex(&number, sizeof number);
}
std::string Short(std::int16_t number) {
  return NumberHex(number);
}

std::string NameField(const std::string& name) {
  std::string field(256, '\0');
  field[0] = static_cast<char>(name.size());
  field.replace(1, name.size(), name);
  return Hex(field.data(), field.size());
}

/// A step of the road, and the line that it leaves.
struct Step {
  const char* name;
  std::string line;
};

/// Every call that can end the road of one region, in order: voice.wav from sample 100 to 580, on
/// the third track at one hour, of 48000 Hz.
std::vector<Step> Road() {
  const std::string alias = "alias of a file";
  return {
      {"AECreateDesc sign", "AECreateDesc sign " + NumberHex(std::uint32_t{0x5054756C})},
      {"AECreateAppleEvent", "AECreateAppleEvent Sd2a SRgn to target return -1 transaction 0"},
      {"AEPutParamPtr FILE", "AEPutParamPtr event FILE alis " + Hex(alias.data(), alias.size())},
      {"AEPutParamPtr Trak", "AEPutParamPtr event Trak shor " + Short(3)},
      {"AEPutParamPtr FFrm", "AEPutParamPtr event FFrm shor " + Short(1)},
      {"AEPutParamPtr TkOf", "AEPutParamPtr event TkOf shor " + Short(0)},
      {"AEPutParamPtr SMSt", "AEPutParamPtr event SMSt long " + NumberHex(172800000L)},
      {"AEPutParamPtr Strm", "AEPutParamPtr event Strm shor " + Short(1)},
      {"AECreateList", "AECreateList unfactored 0 record"},
      {"AEPutParamPtr Star", "AEPutParamPtr region Star long " + NumberHex(std::int32_t{100})},
      {"AEPutParamPtr Stop", "AEPutParamPtr region Stop long " + NumberHex(std::int32_t{580})},
      {"AEPutParamPtr Name", "AEPutParamPtr region Name TEXT " + NameField("voice")},
      {"AEPutParamDesc", "AEPutParamDesc event Rgn  region"},
      {"AECreateDesc null", "AECreateDesc null "},
      {"AESendMessage", "AESendMessage event without reply mode 35 timeout 100"},
  };
}

const std::vector<std::string> kAliasCalls = {
    "FSPathMakeRef /audio/voice.wav",
    "FSNewAlias absolute of file",
    "HLock",
    "GetHandleSize",
    "HUnlock",
    "DisposeHandle",
};

class AppleEventHostTest : public testing::Test {
 protected:
  void SetUp() override { TheAppleEventDouble() = AppleEventDouble(); }
  void TearDown() override {
    EXPECT_EQ(system.handles, 0);
    EXPECT_EQ(system.descriptors, 0);
    EXPECT_EQ(system.mistakes, std::vector<std::string>());
  }

  std::int32_t Spot() {
    RegionSpotter spotter("/audio/voice.wav", 100, 580, host);
    return spotter.SpotRegion(2, 172800000, 1, "voice", false);
  }

  AppleEventDouble& system = TheAppleEventDouble();
  AppleEventHost host;
};

TEST_F(AppleEventHostTest, regionGoesOutCallByCall) {
  EXPECT_EQ(Spot(), 0);
  std::vector<std::string> expected = kAliasCalls;
  for (const Step& step : Road()) expected.push_back(step.line);
  for (const char* name : {"target", "event", "reply", "region"}) {
    expected.push_back(std::string("AEDisposeDesc ") + name);
  }
  EXPECT_EQ(system.calls, expected);
}

TEST_F(AppleEventHostTest, relativeRegionCountsFromTheFirstTrack) {
  RegionSpotter spotter("/audio/voice.wav", 100, 580, host);
  EXPECT_EQ(spotter.SpotRegion(3, -5, 2, "voice", true), 0);
  ASSERT_GT(system.calls.size(), 13U);
  const std::vector<std::string> numbers(system.calls.begin() + 9, system.calls.begin() + 14);
  EXPECT_EQ(numbers, (std::vector<std::string>{"AEPutParamPtr event Trak shor " + Short(-99),
                                               "AEPutParamPtr event FFrm shor " + Short(1),
                                               "AEPutParamPtr event TkOf shor " + Short(3),
                                               "AEPutParamPtr event SMSt long " + NumberHex(-5L),
                                               "AEPutParamPtr event Strm shor " + Short(2)}));
}

TEST_F(AppleEventHostTest, messageGoesOutAsItIs) {
  // The values are the message's own: another transport would put the same.
  RegionMessage message{};
  message.eventClass = FourCharCode("Abcd");
  message.eventId = FourCharCode("Efgh");
  message.target = FourCharCode("Ijkl");
  message.returnId = 12;
  message.transactionId = -70000;
  message.sendMode = 1;
  message.timeoutTicks = -2;
  message.parameters = {{FourCharCode("Only"), FourCharCode("type"), {}}};
  EXPECT_EQ(host.Send(message), 0);
  EXPECT_EQ(system.calls,
            (std::vector<std::string>{
                "AECreateDesc sign " + NumberHex(FourCharCode("Ijkl")),
                "AECreateAppleEvent Abcd Efgh to target return 12 transaction -70000",
                "AEPutParamPtr event Only type ", "AECreateList unfactored 0 record",
                "AEPutParamDesc event Rgn  region", "AECreateDesc null ",
                "AESendMessage event without reply mode 1 timeout -2", "AEDisposeDesc target",
                "AEDisposeDesc event", "AEDisposeDesc reply", "AEDisposeDesc region"}));
}

TEST_F(AppleEventHostTest, firstFailedStepEndsTheRoadAndDisposesOfAll) {
  const std::vector<Step> road = Road();
  for (std::size_t failed = 0; failed < road.size(); ++failed) {
    SCOPED_TRACE(road[failed].name);
    system = AppleEventDouble();
    const std::int32_t status = -1700 - static_cast<std::int32_t>(failed);
    system.answers[road[failed].name] = status;
    // Later ones would fail as well, if they were still made.
    for (std::size_t later = failed + 1; later < road.size(); ++later) {
      system.answers[road[later].name] = -1;
    }
    EXPECT_EQ(Spot(), status);

    std::vector<std::string> expected = kAliasCalls;
    for (std::size_t i = 0; i <= failed; ++i) expected.push_back(road[i].line);
    // A descriptor is there if the step that makes it came before the failed one.
    const auto disposed = [&](const char* name, const char* maker) {
      const auto made = static_cast<std::size_t>(
          std::find_if(road.begin(), road.end(),
                       [&](const Step& step) { return std::strcmp(step.name, maker) == 0; }) -
          road.begin());
      ASSERT_LT(made, road.size());
      expected.push_back(std::string("AEDisposeDesc ") + (made < failed ? name : "empty"));
    };
    disposed("target", "AECreateDesc sign");
    disposed("event", "AECreateAppleEvent");
    disposed("reply", "AECreateDesc null");
    disposed("region", "AECreateList");
    EXPECT_EQ(system.calls, expected);
    EXPECT_EQ(system.handles, 0);
    EXPECT_EQ(system.descriptors, 0);
    EXPECT_EQ(system.mistakes, std::vector<std::string>());
  }
}

TEST_F(AppleEventHostTest, failedAliasWithAHandleGoesToTheEnd) {
  system.answers["FSNewAlias"] = -43;
  EXPECT_EQ(Spot(), -43);
  EXPECT_EQ(system.calls, (std::vector<std::string>{
                              "FSPathMakeRef /audio/voice.wav", "FSNewAlias absolute of file",
                              "AEDisposeDesc empty", "AEDisposeDesc empty", "AEDisposeDesc empty",
                              "AEDisposeDesc empty", "DisposeHandle"}));
}

TEST_F(AppleEventHostTest, failedAliasWithoutAHandleTouchesNoDescriptor) {
  system.aliasHandleIsNull = true;
  system.answers["FSNewAlias"] = -35;
  EXPECT_EQ(Spot(), -35);
  EXPECT_EQ(system.calls, (std::vector<std::string>{"FSPathMakeRef /audio/voice.wav",
                                                    "FSNewAlias absolute of file"}));
}

TEST_F(AppleEventHostTest, successWithoutAHandleSendsNothing) {
  system.aliasHandleIsNull = true;
  EXPECT_NE(Spot(), 0);
  EXPECT_EQ(system.calls.size(), 2U);
}

TEST_F(AppleEventHostTest, statusOfTheFileReferenceIsNotExamined) {
  // The alias step is the one that tells: here it can do without the file, there it cannot.
  system.answers["FSPathMakeRef"] = -43;
  EXPECT_EQ(Spot(), 0);
  EXPECT_EQ(system.calls[1], "FSNewAlias absolute of nothing");

  system = AppleEventDouble();
  system.answers["FSPathMakeRef"] = -43;
  system.answers["FSNewAlias"] = -50;
  system.aliasHandleIsNull = true;
  EXPECT_EQ(Spot(), -50);
}

TEST_F(AppleEventHostTest, sendStatusIsCutToItsLow16Bits) {
  const std::pair<std::int32_t, std::int32_t> rows[] = {
      {-1712, -1712}, {0x12345, 0x2345}, {0x1FFFF, -1}, {0x28000, -32768}, {0x10000, 0}};
  for (const auto& [answered, status] : rows) {
    SCOPED_TRACE(answered);
    system.answers["AESendMessage"] = answered;
    EXPECT_EQ(Spot(), status);
    RegionMessage message{};
    EXPECT_EQ(host.Send(message), status);
  }
}

TEST_F(AppleEventHostTest, aliasBytesComeWhole) {
  system.aliasBytes = std::string("\0\xFF\x80 alias", 9);
  std::vector<std::uint8_t> alias{1, 2, 3};
  EXPECT_EQ(host.MakeAlias("/audio/voice.wav", alias), 0);
  EXPECT_EQ(std::string(alias.begin(), alias.end()), system.aliasBytes);
  EXPECT_EQ(system.calls, kAliasCalls);

  system.aliasBytes.clear();
  EXPECT_EQ(host.MakeAlias("/audio/voice.wav", alias), 0);
  EXPECT_TRUE(alias.empty());
}

TEST_F(AppleEventHostTest, failedAliasLeavesNoBytes) {
  system.answers["FSNewAlias"] = -43;
  std::vector<std::uint8_t> alias{1, 2, 3};
  EXPECT_EQ(host.MakeAlias("/audio/voice.wav", alias), -43);
  EXPECT_TRUE(alias.empty());
}

TEST_F(AppleEventHostTest, pathIsHandedOverByteForByte) {
  std::vector<std::uint8_t> alias;
  host.MakeAlias("/Ton/\xC3\xBC \xE3\x81\x82.wav", alias);
  EXPECT_EQ(system.calls[0], "FSPathMakeRef /Ton/\xC3\xBC \xE3\x81\x82.wav");
}

TEST_F(AppleEventHostTest, eachAttemptMakesAliasAndEventAnew) {
  system.answers["AESendMessage"] = -600;
  RegionSpotter spotter("/audio/voice.wav", 100, 580, host);
  EXPECT_EQ(spotter.SpotRegion(2, 172800000, 1, "voice", false), -600);
  const std::vector<std::string> first = system.calls;
  system.calls.clear();
  EXPECT_EQ(spotter.SpotRegion(2, 172800000, 1, "voice", false), -600);
  EXPECT_EQ(system.calls, first);
}

}  // namespace
}  // namespace velmora::test
