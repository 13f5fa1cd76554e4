#include "Embedded/EmbeddedHost.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <thread>
#include <tuple>

#include "Embedded/AliasRecord.h"
#include "Embedded/MacStatus.h"
#include "Spot/RegionSpotter.h"
#include "Support/TemporaryFolder.h"

namespace velmora::host {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A mono wave file of 16-bit silence, 48 kHz.
std::string Wave(std::uint32_t frames) {
  std::string bytes;
  const auto number = [&bytes](std::uint32_t value, int size) {
    for (; size > 0; --size, value >>= 8) bytes.push_back(static_cast<char>(value));
  };
  bytes += "RIFF";
  number(36 + 2 * frames, 4);
  bytes += "WAVEfmt ";
  number(16, 4);
  number(1, 2);          // integer PCM
  number(1, 2);          // channels
  number(48000, 4);      // frames a second
  number(2 * 48000, 4);  // bytes a second
  number(2, 2);          // bytes of a frame
  number(16, 2);         // bits of a sample
  bytes += "data";
  number(2 * frames, 4);
  bytes.append(2 * frames, '\0');
  return bytes;
}

template <class Number>
Bytes Native(Number number) {
  Bytes bytes(sizeof number);
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

Bytes Short(int value) {
  return Native(static_cast<std::int16_t>(value));
}

Bytes Pascal(const std::string& name) {
  Bytes bytes(256);
  bytes[0] = static_cast<std::uint8_t>(name.size());
  std::copy(name.begin(), name.end(), bytes.begin() + 1);
  return bytes;
}

/// Built here by hand, so that the host is not measured against the code that it talks to.
RegionMessage Message(Bytes alias) {
  RegionMessage message;
  message.eventClass = 0x53643261;  // 'Sd2a'
  message.eventId = 0x5352676E;     // 'SRgn'
  message.target = 0x5054756C;      // 'PTul'
  message.returnId = -1;
  message.transactionId = 0;
  message.sendMode = 35;
  message.timeoutTicks = 100;
  message.parameters = {
      {0x46494C45, 0x616C6973, std::move(alias)},      // 'FILE' 'alis'
      {0x5472616B, 0x73686F72, Short(3)},              // 'Trak' 'shor'
      {0x4646726D, 0x73686F72, Short(1)},              // 'FFrm' 'shor'
      {0x546B4F66, 0x73686F72, Short(0)},              // 'TkOf' 'shor'
      {0x534D5374, 0x6C6F6E67, Native<long>(170000)},  // 'SMSt' 'long'
      {0x5374726D, 0x73686F72, Short(1)},              // 'Strm' 'shor'
  };
  message.region = {
      {0x53746172, 0x6C6F6E67, Native<std::int32_t>(10)},   // 'Star' 'long'
      {0x53746F70, 0x6C6F6E67, Native<std::int32_t>(110)},  // 'Stop' 'long'
      {0x4E616D65, 0x54455854, Pascal("Drum")},             // 'Name' 'TEXT'
  };
  return message;
}

class EmbeddedHostTest : public testing::Test {
 protected:
  Bytes Alias(const std::string& path) {
    Bytes alias;
    EXPECT_EQ(host_.MakeAlias(path.c_str(), alias), noErr) << path;
    return alias;
  }
  RegionMessage GoodMessage() { return Message(Alias(wave_)); }
  /// Sends the good message with its values replaced, and returns the remarks that it gives.
  std::vector<std::string> RemarksOn(const std::function<void(RegionMessage&)>& change) {
    RegionMessage message = GoodMessage();
    change(message);
    const std::size_t before = host_.Remarks().size();
    EXPECT_EQ(host_.Send(message), noErr);
    std::vector<std::string> texts;
    for (std::size_t i = before; i < host_.Remarks().size(); ++i) {
      EXPECT_EQ(host_.Remarks()[i].region, session_.Regions().size() - 1);
      texts.push_back(host_.Remarks()[i].text);
    }
    return texts;
  }

  test::TemporaryFolder folder_;
  std::string wave_ = folder_.Write("drum.wav", Wave(1000));
  Session session_;
  EmbeddedHost host_{session_};
};

TEST_F(EmbeddedHostTest, placesWhatTheMessageSays) {
  ASSERT_EQ(host_.Send(GoodMessage()), 0);
  ASSERT_EQ(session_.Regions().size(), 1u);
  const SessionRegion& region = session_.Regions()[0];
  EXPECT_EQ(region.track, 2);
  EXPECT_EQ(region.position, 170000);
  EXPECT_EQ(region.start, 10);
  EXPECT_EQ(region.stop, 110);
  EXPECT_EQ(region.stream, 1);
  EXPECT_EQ(region.path, wave_);
  EXPECT_EQ(region.name, "Drum");
  EXPECT_TRUE(host_.Remarks().empty());
}

TEST_F(EmbeddedHostTest, readsMinus99AsFromTheFirstTrackOn) {
  struct Row {
    const char* rule;
    int trak, tkOf;
    std::int64_t track;
  };
  const Row rows[] = {
      {"firstTrackByNumber", 1, 0, 0},
      {"highestTrackByNumber", 32767, 0, 32766},
      {"firstTrackByOffset", -99, 0, 0},
      {"fourthTrackByOffset", -99, 3, 3},
      {"highestTrackByOffset", -99, 32767, 32767},
  };
  for (const Row& row : rows) {
    RegionMessage message = GoodMessage();
    message.parameters[1].data = Short(row.trak);
    message.parameters[3].data = Short(row.tkOf);
    ASSERT_EQ(host_.Send(message), noErr) << row.rule;
    EXPECT_EQ(session_.Regions().back().track, row.track) << row.rule;
  }
}

TEST_F(EmbeddedHostTest, laterRegionCoversAnEarlierOne) {
  ASSERT_EQ(host_.Send(GoodMessage()), noErr);
  RegionMessage second = GoodMessage();
  second.parameters[4].data = Native<long>(170020);
  second.region[1].data = Native<std::int32_t>(40);
  ASSERT_EQ(host_.Send(second), noErr);
  const auto visible = session_.Visible(2);
  ASSERT_EQ(visible.size(), 3u);
  EXPECT_EQ(visible[1].region, 1u);
  EXPECT_EQ(visible[1].position, 170020);
  EXPECT_EQ(visible[1].end, 170050);
  EXPECT_EQ(visible[2].end, 170100);
}

/// One field broken, all others good.
struct Broken {
  const char* rule;
  std::function<void(RegionMessage&)> change;
  std::int32_t status;
};

void ExpectRefused(const Session& session, EmbeddedHost& host, const RegionMessage& good,
                   const std::vector<Broken>& rows) {
  for (const Broken& row : rows) {
    RegionMessage message = good;
    row.change(message);
    EXPECT_EQ(host.Send(message), row.status) << row.rule;
    EXPECT_TRUE(session.Regions().empty()) << row.rule;
    EXPECT_TRUE(session.Tracks().empty()) << row.rule;
    EXPECT_TRUE(host.Remarks().empty()) << row.rule;
  }
  EXPECT_EQ(host.Send(good), noErr) << "the message with nothing broken";
}

TEST_F(EmbeddedHostTest, brokenEnvelopeIsRefused) {
  using M = RegionMessage&;
  ExpectRefused(
      session_, host_, GoodMessage(),
      {
          {"eventClass", [](M m) { m.eventClass ^= 1; }, -1708},
          {"eventClassInTheOtherByteOrder", [](M m) { m.eventClass = 0x61326453; }, -1708},
          {"eventId", [](M m) { m.eventId = 0; }, -1708},
          {"target", [](M m) { m.target = 0x4D414353; }, -600},
          {"returnId", [](M m) { m.returnId = 0; }, -50},
          {"transactionId", [](M m) { m.transactionId = 1; }, -50},
          {"sendModeWithoutInteraction", [](M m) { m.sendMode = 3; }, -1710},
          {"sendModeWithoutReply", [](M m) { m.sendMode = 0x21; }, -1710},
          {"timeoutInOtherUnits", [](M m) { m.timeoutTicks = 60; }, -50},
          {"timeoutNegative", [](M m) { m.timeoutTicks = -1; }, -50},
      });
}

TEST_F(EmbeddedHostTest, everyKeywordIsCheckedForPresencePlaceTypeAndSize) {
  const RegionMessage good = GoodMessage();
  std::vector<Broken> rows;
  using List = std::vector<RegionParameter> RegionMessage::*;
  for (const List list : {&RegionMessage::parameters, &RegionMessage::region}) {
    for (std::size_t i = 0; i < (good.*list).size(); ++i) {
      using M = RegionMessage&;
      const auto at = static_cast<std::ptrdiff_t>(i);
      rows.push_back({"missing", [=](M m) { (m.*list).erase((m.*list).begin() + at); }, -1701});
      rows.push_back({"otherKey", [=](M m) { (m.*list)[i].key ^= 0x20; }, -1701});
      rows.push_back({"otherType", [=](M m) { (m.*list)[i].type ^= 0x20; }, -1703});
      rows.push_back({"typeNull", [=](M m) { (m.*list)[i].type = 0x6E756C6C; }, -1703});
      rows.push_back({"noData", [=](M m) { (m.*list)[i].data.clear(); }, -1700});
      // An alias has no size of its own: what is wrong with it shows in its record.
      const bool isAlias = list == &RegionMessage::parameters && i == 0;
      const std::int32_t status = isAlias ? -50 : -1700;
      rows.push_back({"aByteLess", [=](M m) { (m.*list)[i].data.pop_back(); }, status});
      rows.push_back({"aByteMore", [=](M m) { (m.*list)[i].data.push_back(0); }, status});
      rows.push_back({"twice", [=](M m) { (m.*list).insert((m.*list).begin() + at, (m.*list)[i]); },
                      // The last one twice is a keyword too many, any other pushes the rest on.
                      i + 1 == (good.*list).size() ? -1715 : -1701});
      if (i > 0) {
        rows.push_back({"swapped", [=](M m) { std::swap((m.*list)[i], (m.*list)[i - 1]); }, -1701});
      }
    }
    rows.push_back({"oneTooMany",
                    [=](RegionMessage& m) {
                      (m.*list).push_back({0x58747261, 0x73686F72, {}});
                    },
                    -1715});
    rows.push_back({"none", [=](RegionMessage& m) { (m.*list).clear(); }, -1701});
  }
  // The width of the other build's long is no width of this one's.
  rows.push_back({"positionOfTheOtherWidth",
                  [](RegionMessage& m) { m.parameters[4].data.assign(12 - sizeof(long), 0); },
                  -1700});
  ExpectRefused(session_, host_, good, rows);
}

TEST_F(EmbeddedHostTest, valuesOutsideTheirRangeAreRefused) {
  const auto tracks = [](int trak, int tkOf) {
    return [=](RegionMessage& m) {
      m.parameters[1].data = Short(trak);
      m.parameters[3].data = Short(tkOf);
    };
  };
  ExpectRefused(
      session_, host_, GoodMessage(),
      {
          {"trackZero", tracks(0, 0), -50},
          {"trackNegative", tracks(-1, 0), -50},
          {"trackNextToTheMark", tracks(-98, 0), -50},
          {"trackLowest", tracks(-32768, 0), -50},
          {"trackNumberWithAnOffset", tracks(1, 1), -50},
          {"offsetNegative", tracks(-99, -1), -50},
          {"firstFrameZero", [](RegionMessage& m) { m.parameters[2].data = Short(0); }, -50},
          {"firstFrameTwo", [](RegionMessage& m) { m.parameters[2].data = Short(2); }, -50},
      });
}

TEST_F(EmbeddedHostTest, aliasThatLeadsNowhereIsRefused) {
  const auto alias = [](const std::string& path) {
    return [=](RegionMessage& m) {
      AliasRecord record;
      record.path = path;
      EXPECT_EQ(EncodeAlias(record, m.parameters[0].data), AliasStatus::Ok);
    };
  };
  const std::string fifo = folder_.Path("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::filesystem::create_symlink("loop", folder_.Path("loop"));
  ExpectRefused(
      session_, host_, GoodMessage(),
      {
          {"noSuchFile", alias(folder_.Path("gone.wav")), -43},
          {"noSuchFolder", alias(folder_.Path("gone/drum.wav")), -43},
          {"fileTakenForAFolder", alias(wave_ + "/drum.wav"), -43},
          {"nameTooLong", alias('/' + std::string(300, 'x')), -37},
          {"symbolicLinksInACircle", alias(folder_.Path("loop")), -36},
          {"folder", alias(folder_.Path()), -1302},
          {"fifo", alias(fifo), -1302},
          {"device", alias("/dev/zero"), -1302},
          {"damagedVersion", [](RegionMessage& m) { m.parameters[0].data[7] = 9; }, -50},
          {"random", [](RegionMessage& m) { m.parameters[0].data = Bytes(200, 0xA5); }, -50},
          {"empty150Bytes", [](RegionMessage& m) { m.parameters[0].data = Bytes(150); }, -50},
      });
}

TEST_F(EmbeddedHostTest, everyTruncationOfTheAliasIsRefused) {
  const RegionMessage good = GoodMessage();
  for (std::size_t size = 1; size < good.parameters[0].data.size(); ++size) {
    RegionMessage message = good;
    message.parameters[0].data.resize(size);
    message.parameters[0].data.shrink_to_fit();
    ASSERT_EQ(host_.Send(message), -50) << size;
  }
  EXPECT_TRUE(session_.Regions().empty());
}

TEST_F(EmbeddedHostTest, fileThatWentAwayAfterItsAliasIsRefused) {
  const RegionMessage message = GoodMessage();
  ASSERT_EQ(host_.Send(message), noErr);
  std::filesystem::remove(wave_);
  EXPECT_EQ(host_.Send(message), fnfErr);
  EXPECT_EQ(session_.Regions().size(), 1u);
}

TEST_F(EmbeddedHostTest, oddRegionIsPlacedAndNoted) {
  using M = RegionMessage&;
  const auto bounds = [](std::int32_t start, std::int32_t stop) {
    return [=](M m) {
      m.region[0].data = Native(start);
      m.region[1].data = Native(stop);
    };
  };
  const auto at = [](long position) {
    return [=](M m) { m.parameters[4].data = Native(position); };
  };
  struct Row {
    const char* rule;
    std::function<void(M)> change;
    std::vector<std::string> remarks;
  };
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
  const Row rows[] = {
      {"nothingOdd", [](M) {}, {}},
      {"wholeFile", bounds(0, 1000), {}},
      {"twoSamples", bounds(10, 12), {}},
      {"positionZero", at(0), {}},
      {"positionNegative", at(-5), {"begins before the timeline, at sample -5"}},
      {"oneSample", bounds(10, 11), {"is one sample long"}},
      {"stopAtStart",
       bounds(10, 10),
       {"stops at sample 10 of its file, where it starts or before (10): nothing is heard"}},
      {"stopBelowStart",
       bounds(10, 9),
       {"stops at sample 9 of its file, where it starts or before (10): nothing is heard"}},
      {"oneSamplePastTheEnd", bounds(10, 1001), {"stops at sample 1001 of a file of 1000 samples"}},
      {"startNegative", bounds(-1, 5), {"starts at sample -1 of its file"}},
      {"lowestToHighest",
       bounds(kLowest, kHighest),
       {"starts at sample -2147483648 of its file",
        "stops at sample 2147483647 of a file of 1000 samples"}},
      {"highestToLowest",
       bounds(kHighest, kLowest),
       {"stops at sample -2147483648 of its file, where it starts or before (2147483647): nothing "
        "is heard"}},
      {"anotherStream", [](M m) { m.parameters[5].data = Short(2); }, {"asks for stream 2"}},
      {"noName", [](M m) { m.region[2].data = Pascal(""); }, {"has no name"}},
  };
  for (const Row& row : rows) EXPECT_EQ(RemarksOn(row.change), row.remarks) << row.rule;
}

TEST_F(EmbeddedHostTest, farthestPositionsArePlacedWithoutOverflow) {
  const auto at = [](long position) {
    return [=](RegionMessage& m) { m.parameters[4].data = Native(position); };
  };
  const auto highest = RemarksOn(at(std::numeric_limits<long>::max()));
  EXPECT_EQ(session_.Regions().back().position, std::numeric_limits<long>::max());
  if (sizeof(long) == 8) {
    EXPECT_EQ(highest,
              (std::vector<std::string>{"ends beyond the last sample that a timeline can have"}));
  } else {
    EXPECT_TRUE(highest.empty());
  }
  EXPECT_EQ(RemarksOn(at(std::numeric_limits<long>::min())).size(), 1u);
  EXPECT_EQ(session_.Regions().back().position, std::numeric_limits<long>::min());
}

TEST_F(EmbeddedHostTest, namesComeByTheirLengthByte) {
  const auto nameOf = [this](const Bytes& data) {
    RegionMessage message = GoodMessage();
    message.region[2].data = data;
    EXPECT_EQ(host_.Send(message), noErr);
    return session_.Regions().back().name;
  };
  Bytes data(256, 'x');
  data[0] = 5;
  EXPECT_EQ(nameOf(data), "xxxxx") << "what stands after the name is not looked at";
  data[0] = 255;
  EXPECT_EQ(nameOf(data), std::string(255, 'x'));
  data[0] = 44;  // as a name of 300 bytes comes, its length wrapped
  EXPECT_EQ(nameOf(data), std::string(44, 'x'));
  data[0] = 3;
  data[1] = 0x90;  // half a Shift-JIS character
  data[2] = 0;
  EXPECT_EQ(nameOf(data), std::string("\x90\0x", 3));
}

TEST_F(EmbeddedHostTest, fileThatIsNoWaveFileIsPlacedAndNoted) {
  const std::string text = folder_.Write("notes.wav", "no wave at all");
  const std::string empty = folder_.Write("empty.wav", "");
  for (const std::string& path : {text, empty}) {
    EXPECT_EQ(RemarksOn([&](RegionMessage& m) { m.parameters[0].data = Alias(path); }),
              (std::vector<std::string>{"its file is not a wave file that can be read"}))
        << path;
  }
}

TEST_F(EmbeddedHostTest, waveFileIsProbedOnceForAllItsRegions) {
  const auto tooFar = [](RegionMessage& m) { m.region[1].data = Native<std::int32_t>(1500); };
  EXPECT_EQ(RemarksOn(tooFar).size(), 1u);
  folder_.Write("drum.wav", Wave(2000));
  EXPECT_EQ(RemarksOn(tooFar).size(), 1u) << "the file was opened a second time";
}

TEST_F(EmbeddedHostTest, aliasNamesTheFile) {
  AliasRecord alias;
  ASSERT_EQ(DecodeAlias(Alias(wave_), alias), AliasStatus::Ok);
  struct stat file {};
  struct stat folder {};
  ASSERT_EQ(::stat(wave_.c_str(), &file), 0);
  ASSERT_EQ(::stat(folder_.Path().c_str(), &folder), 0);
  EXPECT_FALSE(alias.isFolder);
  EXPECT_EQ(alias.path, wave_);
  EXPECT_EQ(alias.fileName, "drum.wav");
  EXPECT_EQ(alias.folderName, std::filesystem::path(wave_).parent_path().filename().string());
  EXPECT_EQ(alias.fileId, static_cast<std::uint32_t>(file.st_ino));
  EXPECT_EQ(alias.folderId, static_cast<std::uint32_t>(folder.st_ino));
  EXPECT_EQ(alias.fileDate, MacTime(file.st_mtime));
}

TEST_F(EmbeddedHostTest, aliasOfAFolderSaysSo) {
  AliasRecord alias;
  ASSERT_EQ(DecodeAlias(Alias(folder_.Path()), alias), AliasStatus::Ok);
  EXPECT_TRUE(alias.isFolder);
}

TEST_F(EmbeddedHostTest, aliasOfARelativePathIsAbsolute) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path());
  const Bytes bytes = Alias("drum.wav");
  const std::string here = std::filesystem::current_path().string();
  std::filesystem::current_path(before);
  AliasRecord alias;
  ASSERT_EQ(DecodeAlias(bytes, alias), AliasStatus::Ok);
  EXPECT_EQ(alias.path, here + "/drum.wav");
}

TEST_F(EmbeddedHostTest, makeAliasTellsWhyThereIsNone) {
  std::filesystem::create_symlink("loop", folder_.Path("loop"));
  std::filesystem::create_symlink("gone", folder_.Path("dangling"));
  struct Row {
    const char* rule;
    std::string path;
    std::int32_t status;
  };
  const Row rows[] = {
      {"noSuchFile", folder_.Path("gone.wav"), -43},
      {"noSuchFolder", folder_.Path("gone/a.wav"), -43},
      {"fileTakenForAFolder", wave_ + "/a.wav", -43},
      {"danglingLink", folder_.Path("dangling"), -43},
      {"emptyPath", "", -43},
      {"nameTooLong", folder_.Path(std::string(256, 'x')), -37},
      {"pathTooLong", '/' + std::string(5000, '/'), -37},
      {"symbolicLinksInACircle", folder_.Path("loop"), -36},
      {"root", "/", -1302},
      {"slashes", "///", -1302},
  };
  for (const Row& row : rows) {
    Bytes alias{1, 2, 3};
    EXPECT_EQ(host_.MakeAlias(row.path.c_str(), alias), row.status) << row.rule;
    EXPECT_TRUE(alias.empty()) << row.rule;
  }
  Bytes alias{1};
  EXPECT_EQ(host_.MakeAlias(nullptr, alias), paramErr);
  EXPECT_TRUE(alias.empty());
}

/// Permissions stop everybody but root: a test that runs as root goes on as nobody for a while.
class WithoutRoot {
 public:
  WithoutRoot() { EXPECT_TRUE(user_ != 0 || ::seteuid(65534) == 0); }
  ~WithoutRoot() { EXPECT_TRUE(user_ != 0 || ::seteuid(user_) == 0); }

 private:
  uid_t user_ = ::geteuid();
};

TEST_F(EmbeddedHostTest, folderThatMayNotBeEnteredIsRefused) {
  const std::string path = folder_.Write("locked/a.wav", Wave(10));
  const RegionMessage message = Message(Alias(path));
  const std::string locked = folder_.Path("locked");
  ASSERT_EQ(::chmod(locked.c_str(), 0), 0);
  {
    const WithoutRoot guard;
    Bytes alias;
    EXPECT_EQ(host_.MakeAlias(path.c_str(), alias), -54);
    EXPECT_TRUE(alias.empty());
    EXPECT_EQ(host_.Send(message), -54);
  }
  ASSERT_EQ(::chmod(locked.c_str(), 0700), 0);
  EXPECT_TRUE(session_.Regions().empty());
}

TEST_F(EmbeddedHostTest, fileThatMayNotBeReadIsPlacedAndNoted) {
  ASSERT_EQ(::chmod(wave_.c_str(), 0), 0);
  const WithoutRoot guard;
  EXPECT_EQ(RemarksOn([](RegionMessage&) {}),
            (std::vector<std::string>{"its file is not a wave file that can be read"}));
}

TEST_F(EmbeddedHostTest, pathsOfAnyBytesArriveWhole) {
  const std::string names[] = {"\xE9\x8C\xB2\xE9\x9F\xB3.wav", "a:b.wav", "bad\xFF\x80.wav",
                               std::string(251, 'n') + ".wav", "new\nline.wav"};
  for (const std::string& name : names) {
    const std::string path = folder_.Write(name, Wave(1000));
    RegionMessage message = Message(Alias(path));
    ASSERT_EQ(host_.Send(message), noErr) << name;
    EXPECT_EQ(session_.Regions().back().path, path);
  }
  EXPECT_EQ(session_.Summary().files, 5u);
}

/// A wave file whose path has this many bytes, in folders made for it.
std::string DeepFile(const std::string& root, std::size_t bytes) {
  std::string path = root;
  while (bytes - path.size() > 250) path += '/' + std::string(200, 'd');
  std::filesystem::create_directories(path);
  path += '/' + std::string(bytes - path.size() - 1, 'f');
  std::ofstream(path, std::ios::binary) << Wave(1000);
  return path;
}

TEST_F(EmbeddedHostTest, longestPathThatTheSystemTakesArrivesWhole) {
  const std::string path = DeepFile(folder_.Path(), 4095);
  ASSERT_EQ(path.size(), 4095u);
  ASSERT_EQ(host_.Send(Message(Alias(path))), noErr);
  EXPECT_EQ(session_.Regions()[0].path, path);
  EXPECT_TRUE(host_.Remarks().empty());
}

TEST_F(EmbeddedHostTest, receivesWhatARegionSpotterSends) {
  RegionSpotter spotter(wave_.c_str(), 100, 400, host_);
  ASSERT_EQ(spotter.SpotRegion(0, 48000, 1, "drum", false), 0);
  ASSERT_EQ(spotter.SpotRegion(3, -1, 1, "drum_Gain", true), 0);
  const auto& regions = session_.Regions();
  ASSERT_EQ(regions.size(), 2u);
  EXPECT_EQ(regions[0].track, 0);
  EXPECT_EQ(regions[0].position, 48000);
  EXPECT_EQ(regions[0].Length(), 300);
  EXPECT_EQ(regions[0].name, "drum");
  EXPECT_EQ(regions[1].track, 3);
  EXPECT_EQ(regions[1].position, -1);
  EXPECT_EQ(regions[1].name, "drum_Gain");
  ASSERT_EQ(host_.Remarks().size(), 1u);
  EXPECT_EQ(host_.Remarks()[0].region, 1u);
}

/// A host that is reached by its alias and its message alone.
class ByMessage : public RegionHost {
 public:
  explicit ByMessage(RegionHost& host) : host_(host) {}
  std::int32_t MakeAlias(const char* path, Bytes& alias) override {
    return host_.MakeAlias(path, alias);
  }
  std::int32_t Send(const RegionMessage& message) override { return host_.Send(message); }

 private:
  RegionHost& host_;
};

TEST_F(EmbeddedHostTest, placesAtOnceWhatAliasAndMessagePlace) {
  folder_.Write("folder/wave.wav", Wave(10));
  folder_.Write("no wave", "text");
  std::vector<std::string> paths = {"",
                                    "/",
                                    "//",
                                    "relative",
                                    "/tmp",
                                    wave_,
                                    "/" + wave_,
                                    wave_ + "/",
                                    wave_ + "/below",
                                    folder_.Path("gone.wav"),
                                    folder_.Path("folder"),
                                    folder_.Path("folder/../drum.wav"),
                                    folder_.Path("folder//wave.wav"),
                                    folder_.Path("no wave"),
                                    "/" + std::string(5000, 'x'),
                                    folder_.Path("a\nb\x80:c")};
  folder_.Write("a\nb\x80:c", Wave(5));
  const RegionPlacement placements[] = {
      {.track = 3, .position = 4800, .start = 1, .stop = 7},
      {.track = 3, .position = -1, .stream = 2, .relative = true, .start = -5, .stop = 2000},
      {.track = -1, .stop = 1},
      {.track = -100, .stop = 1},
      {.track = 32767, .stop = 1},
      {.track = -1, .relative = true, .stop = 1}};
  Session expected;
  EmbeddedHost plain(expected);
  ByMessage byMessage(plain);
  for (int round = 0; round < 3; ++round) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    for (const std::string& path : paths) {
      for (const RegionPlacement& placement : placements) {
        for (const std::string& name : {std::string(), std::string("n"), std::string(300, 'n')}) {
          ASSERT_EQ(host_.Place(path.c_str(), placement, name),
                    byMessage.Place(path.c_str(), placement, name))
              << path;
        }
      }
    }
  }
  EXPECT_EQ(host_.Place(nullptr, placements[0], "n"), paramErr);
  ASSERT_EQ(session_.Regions().size(), expected.Regions().size());
  EXPECT_GT(expected.Regions().size(), 100U);
  for (std::size_t i = 0; i < expected.Regions().size(); ++i) {
    const SessionRegion& a = session_.Regions()[i];
    const SessionRegion& b = expected.Regions()[i];
    EXPECT_EQ(std::tie(a.track, a.position, a.start, a.stop, a.stream, a.path, a.name),
              std::tie(b.track, b.position, b.start, b.stop, b.stream, b.path, b.name));
  }
  ASSERT_EQ(host_.Remarks().size(), plain.Remarks().size());
  for (std::size_t i = 0; i < plain.Remarks().size(); ++i) {
    EXPECT_EQ(host_.Remarks()[i].region, plain.Remarks()[i].region);
    EXPECT_EQ(host_.Remarks()[i].text, plain.Remarks()[i].text);
  }
}

struct ChangeRow {
  const char* rule;
  std::function<void(const std::filesystem::path& folder)> change;
};

/// A host that knows a file makes the alias that one makes which has never seen it, once the moment
/// is over for which a look holds.
TEST_F(EmbeddedHostTest, aliasOfAKnownFileIsNeverStale) {
  namespace fs = std::filesystem;
  std::int64_t now = 0;
  EmbeddedHost known(session_, [&now] { return now += EmbeddedHost::kLookHolds; });
  const ChangeRow rows[] = {
      {"nothing", [](const fs::path&) {}},
      {"contents", [](const fs::path& f) { std::ofstream(f / "now/x.wav", std::ios::app) << "x"; }},
      {"date", [](const fs::path& f) { fs::last_write_time(f / "now/x.wav", {}); }},
      {"otherFile", [](const fs::path& f) { fs::rename(f / "x2.wav", f / "now/x.wav"); }},
      {"otherFolder",
       [](const fs::path& f) {
         fs::rename(f / "now", f / "before");
         fs::create_directory(f / "now");
         fs::rename(f / "before/x.wav", f / "now/x.wav");
       }},
      {"linkToAnotherFolder",
       [](const fs::path& f) {
         fs::rename(f / "now", f / "before");
         fs::create_directory_symlink("other", f / "now");
       }},
  };
  for (const ChangeRow& row : rows) {
    SCOPED_TRACE(row.rule);
    const std::string before = std::string(row.rule) + "/";
    const std::string path = folder_.Write(before + "now/x.wav", Wave(10));
    folder_.Write(before + "x2.wav", Wave(20));
    folder_.Write(before + "other/y.wav", Wave(20));
    // One file in two folders, each by its own name and since long before.
    fs::create_hard_link(path, folder_.Path(before + "other/x.wav"));
    if (std::string(row.rule) != "linkToAnotherFolder") {
      fs::remove(folder_.Path(before + "other/x.wav"));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    for (int i = 0; i < 3; ++i) ASSERT_EQ(known.Place(path.c_str(), {.stop = 1}, "x"), noErr);
    row.change(folder_.Path(row.rule));
    Session other;
    EmbeddedHost fresh(other);
    for (int i = 0; i < 2; ++i) {
      Bytes expected;
      ASSERT_EQ(fresh.MakeAlias(path.c_str(), expected), noErr);
      Bytes alias;
      ASSERT_EQ(known.MakeAlias(path.c_str(), alias), noErr);
      EXPECT_EQ(alias, expected);
      ASSERT_EQ(known.Place(path.c_str(), {.stop = 1}, "x"), noErr);
    }
    fs::remove(path);
    EXPECT_EQ(known.Place(path.c_str(), {.stop = 1}, "x"), fnfErr);
  }
}

/// A host whose clock stands still until it is told, and which has looked at a file just now.
class HeldLookTest : public EmbeddedHostTest {
 protected:
  void SetUp() override {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));  // the file is an old one then
    for (int i = 0; i < 2; ++i) ASSERT_EQ(Place(), noErr);
  }
  std::int32_t Place() { return Place(wave_); }
  std::int32_t Place(const std::string& path) {
    return still_.Place(path.c_str(), {.stop = 1}, "x");
  }

  std::int64_t now_ = 0;
  EmbeddedHost still_{session_, [this] { return now_; }};
};

TEST_F(HeldLookTest, lookHoldsForItsMomentAndNotLonger) {
  std::filesystem::remove(wave_);
  now_ = EmbeddedHost::kLookHolds - 1;
  EXPECT_EQ(Place(), noErr) << "the look of time 0 holds";
  EXPECT_EQ(session_.Regions().back().path, wave_);
  now_ = EmbeddedHost::kLookHolds;
  EXPECT_EQ(Place(), fnfErr);
  folder_.Write("drum.wav", Wave(1000));
  EXPECT_EQ(Place(), noErr) << "that nothing was there holds for no time";
}

TEST_F(HeldLookTest, useOfALookDoesNotProlongIt) {
  now_ = EmbeddedHost::kLookHolds - 1;
  ASSERT_EQ(Place(), noErr);
  std::filesystem::remove(wave_);
  now_ = EmbeddedHost::kLookHolds;
  EXPECT_EQ(Place(), fnfErr);
}

TEST_F(HeldLookTest, aliasAndMessageHaveLooksOfTheirOwn) {
  const RegionMessage message = GoodMessage();
  std::filesystem::remove(wave_);
  Bytes alias;
  EXPECT_EQ(still_.MakeAlias(wave_.c_str(), alias), fnfErr);
  EXPECT_EQ(still_.Send(message), fnfErr);
}

TEST_F(HeldLookTest, lookAtAnotherFileIsItsOwn) {
  EXPECT_EQ(Place(folder_.Path("gone.wav")), fnfErr);
  EXPECT_EQ(Place(folder_.Path("drum.wav/gone.wav")), fnfErr);
  ASSERT_EQ(::mkfifo(folder_.Path("fifo").c_str(), 0600), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Place(folder_.Path("fifo")), notAFileErr);
}

TEST_F(HeldLookTest, lookAtAFileWithOtherNamesHoldsForNoTime) {
  std::filesystem::create_hard_link(wave_, folder_.Path("other.wav"));
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  now_ = EmbeddedHost::kLookHolds;
  for (int i = 0; i < 3; ++i) ASSERT_EQ(Place(), noErr);
  std::filesystem::remove(wave_);
  EXPECT_EQ(Place(), fnfErr);
}

TEST_F(HeldLookTest, lookAtAFileJustMadeHoldsForNoTime) {
  const std::string fresh = folder_.Write("fresh.wav", Wave(10));
  // A date in the future stays a fresh one, however slow this machine is.
  const timespec future = {2'000'000'000, 0};
  const timespec times[] = {future, future};
  ASSERT_EQ(::utimensat(AT_FDCWD, fresh.c_str(), times, 0), 0);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(Place(fresh), noErr);
  std::filesystem::remove(fresh);
  EXPECT_EQ(Place(fresh), fnfErr);
}

/// A region that is refused comes 80 times in a row.
TEST_F(HeldLookTest, lookHoldsForRefusedRegionsToo) {
  const std::string other = folder_.Write("other.wav", Wave(10));
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  constexpr RegionPlacement kNoTrack = {.track = -5, .stop = 1};  // no session has it
  const auto refused = [&] { return still_.Place(other.c_str(), kNoTrack, "x"); };
  now_ = EmbeddedHost::kLookHolds;
  for (int i = 0; i < 3; ++i) ASSERT_EQ(refused(), paramErr);
  const std::size_t regions = session_.Regions().size();
  std::filesystem::remove(other);
  EXPECT_EQ(refused(), paramErr) << "the last look holds";
  now_ = 2 * EmbeddedHost::kLookHolds;
  EXPECT_EQ(refused(), fnfErr);
  folder_.Write("other.wav", Wave(20));
  EXPECT_EQ(session_.Regions().size(), regions);
  const std::size_t remarks = still_.Remarks().size();
  // The first region that lands has its file opened, and not one that was refused before.
  ASSERT_EQ(still_.Place(other.c_str(), {.stop = 20}, "x"), noErr);
  EXPECT_EQ(still_.Remarks().size(), remarks);
}

TEST_F(HeldLookTest, refusedRegionOfAFolderOpensNoWayForOthers) {
  const std::string folder = folder_.Path("takes");
  std::filesystem::create_directory(folder);
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(still_.Place(folder.c_str(), {.track = -5, .stop = 1}, "x"), paramErr);
  }
  EXPECT_EQ(still_.Place(folder.c_str(), {.stop = 1}, "x"), notAFileErr);
}

TEST_F(EmbeddedHostTest, spotterOfAMissingFileSendsNothing) {
  const std::string gone = folder_.Path("gone.wav");
  RegionSpotter spotter(gone.c_str(), 0, 10, host_);
  EXPECT_EQ(spotter.SpotRegion(0, 0, 1, "gone", false), fnfErr);
  EXPECT_TRUE(session_.Regions().empty());
}

}  // namespace
}  // namespace velmora::host
