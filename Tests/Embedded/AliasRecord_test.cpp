#include "Embedded/AliasRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace velmora::host {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

Bytes Text(std::string_view text) {
  return {text.begin(), text.end()};
}

Bytes Pascal(std::string_view name, std::size_t field) {
  Bytes bytes = Bytes{static_cast<std::uint8_t>(name.size())} + Text(name);
  bytes.resize(field);
  return bytes;
}

/// Made by hand, field by field, of the file "/snd/Drum 1.wav".
Bytes FixedPart() {
  return Bytes{0, 0, 0, 0,              // user type
               0, 0,                    // record size, set by Record
               0, 2,                    // version
               0, 0} +                  // kind: a file
         Pascal("Studio", 28) +         // volume name
         Bytes{0xC0, 0,   0, 1,         // volume date
               'H',  '+',               // file system
               0,    0,                 // fixed disk
               0,    1,   2, 3} +       // folder id
         Pascal("Drum 1.wav", 64) +     // file name
         Bytes{0x80, 0x90, 0xA0, 0xB0,  // file id
               0xDB, 0x12, 0x34, 0x56,  // file date
               0,    0,    0,    0,     // creator
               'W',  'A',  'V',  'E',   // type
               0xFF, 0xFF,              // levels from alias to root: none known
               0xFF, 0xFF,              // levels from root to target
               0,    0,    0,    0,     // volume attributes
               0,    0,                 // file system id
               0,    0,    0,    0,    0, 0, 0, 0, 0, 0};
}

Bytes Item(int tag, const Bytes& data) {
  Bytes bytes{static_cast<std::uint8_t>(tag >> 8), static_cast<std::uint8_t>(tag),
              static_cast<std::uint8_t>(data.size() >> 8), static_cast<std::uint8_t>(data.size())};
  bytes = bytes + data;
  if (data.size() % 2 != 0) bytes.push_back(0);
  return bytes;
}

const Bytes kEnd{0xFF, 0xFF, 0, 0};

Bytes Record(Bytes fixed, const Bytes& items) {
  Bytes bytes = std::move(fixed) + items;
  bytes[4] = static_cast<std::uint8_t>(bytes.size() >> 8);
  bytes[5] = static_cast<std::uint8_t>(bytes.size());
  return bytes;
}

Bytes GoodItems() {
  return Item(0, Text("snd")) + Item(14, {0,   10, 0,   'D', 0,   'r', 0,   'u', 0,   'm', 0,
                                          ' ', 0,  '1', 0,   '.', 0,   'w', 0,   'a', 0,   'v'}) +
         Item(15, {0, 2, 0, 'S', 0, 't'}) + Item(18, Text("snd/Drum 1.wav")) + Item(19, Text("/"));
}

Bytes GoodRecord() {
  return Record(FixedPart(), GoodItems() + kEnd);
}

AliasStatus Decode(const Bytes& bytes) {
  AliasRecord alias;
  return DecodeAlias(bytes, alias);
}

std::string PathOf(const Bytes& items) {
  AliasRecord alias;
  EXPECT_EQ(DecodeAlias(Record(FixedPart(), items + kEnd), alias), AliasStatus::Ok);
  return alias.path;
}

Bytes Encoded(std::string path) {
  AliasRecord alias;
  alias.path = std::move(path);
  Bytes bytes;
  EXPECT_EQ(EncodeAlias(alias, bytes), AliasStatus::Ok);
  return bytes;
}

TEST(AliasRecord, decodesARecordMadeByHand) {
  ASSERT_EQ(FixedPart().size(), 150u);
  AliasRecord alias;
  ASSERT_EQ(DecodeAlias(GoodRecord(), alias), AliasStatus::Ok);
  EXPECT_FALSE(alias.isFolder);
  EXPECT_EQ(alias.path, "/snd/Drum 1.wav");
  EXPECT_EQ(alias.fileName, "Drum 1.wav");
  EXPECT_EQ(alias.folderName, "snd");
  EXPECT_EQ(alias.volumeName, "St");
  EXPECT_EQ(alias.folderId, 0x00010203u);
  EXPECT_EQ(alias.fileId, 0x8090A0B0u);
  EXPECT_EQ(alias.fileDate, 0xDB123456u);
}

TEST(AliasRecord, takesNamesFromTheFixedPartWithoutUnicodeItems) {
  AliasRecord alias;
  ASSERT_EQ(DecodeAlias(Record(FixedPart(), Item(18, Text("a")) + kEnd), alias), AliasStatus::Ok);
  EXPECT_EQ(alias.fileName, "Drum 1.wav");
  EXPECT_EQ(alias.volumeName, "Studio");
  EXPECT_EQ(alias.folderName, "");
}

TEST(AliasRecord, joinsMountPointAndPath) {
  const Bytes path = Item(18, Text("snd/a.wav"));
  EXPECT_EQ(PathOf(path), "/snd/a.wav") << "without a mount point: the root's";
  EXPECT_EQ(PathOf(path + Item(19, Text("/"))), "/snd/a.wav");
  EXPECT_EQ(PathOf(Item(19, Text("/")) + path), "/snd/a.wav") << "in either order";
  EXPECT_EQ(PathOf(path + Item(19, Text("/Volumes/Audio"))), "/Volumes/Audio/snd/a.wav");
  EXPECT_EQ(PathOf(path + Item(19, Text("/Volumes/Audio/"))), "/Volumes/Audio/snd/a.wav");
  EXPECT_EQ(PathOf(Item(18, Text("/snd/a.wav"))), "/snd/a.wav") << "with a slash at its front";
}

TEST(AliasRecord, passesOverUnknownItemsOfAnyLength) {
  const Bytes path = Item(18, Text("a"));
  EXPECT_EQ(PathOf(Item(1, {0, 0, 0, 9}) + path + Item(99, {}) + Item(0x7FFF, Bytes(333, 1))),
            "/a");
  EXPECT_EQ(PathOf(Item(1, {1}) + Item(1, {2}) + path), "/a") << "also the same one twice";
  EXPECT_EQ(PathOf(Item(18 + 32, Text("b")) + path), "/a") << "a tag 32 above a known one";
}

TEST(AliasRecord, oddItemsArePadded) {
  // "snd" is odd: without its pad byte everything after it would be misread.
  const Bytes folder{0, 0, 0, 3, 's', 'n', 'd', 0};
  EXPECT_EQ(Item(0, Text("snd")), folder);
  EXPECT_EQ(PathOf(folder + Item(18, Text("x"))), "/x");
}

TEST(AliasRecord, everyTruncationIsRefused) {
  for (const Bytes& whole : {GoodRecord(), Encoded("/snd/Drum 1.wav")}) {
    ASSERT_EQ(Decode(whole), AliasStatus::Ok);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      // A buffer of exactly this size, so that a sanitizer sees every read past it.
      Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_EQ(Decode(cut), size < 150 ? AliasStatus::Truncated : AliasStatus::WrongSize) << size;
      if (size < 150) continue;
      cut[4] = static_cast<std::uint8_t>(size >> 8);
      cut[5] = static_cast<std::uint8_t>(size);
      const AliasStatus status = Decode(cut);
      EXPECT_TRUE(status == AliasStatus::Truncated || status == AliasStatus::NoEnd)
          << size << ": " << AliasStatusText(status);
    }
  }
}

struct Broken {
  const char* rule;
  Bytes bytes;
  AliasStatus status;
};

Bytes With(Bytes bytes, std::size_t at, std::uint8_t value) {
  bytes[at] = value;
  return bytes;
}

Bytes WithItems(const Bytes& items) {
  return Record(FixedPart(), items);
}

TEST(AliasRecord, malformedRecordsAreRefused) {
  const Bytes good = GoodRecord();
  const Bytes path = Item(18, Text("a"));
  const std::string atLimit(kAliasPathLimit - 1, 'x');
  const Broken rows[] = {
      {"sizeFieldTooLarge", With(good, 5, static_cast<std::uint8_t>(good[5] + 1)),
       AliasStatus::WrongSize},
      {"sizeFieldZero", With(With(good, 4, 0), 5, 0), AliasStatus::WrongSize},
      {"version1", With(good, 7, 1), AliasStatus::WrongVersion},
      {"version3HasAnotherForm", With(good, 7, 3), AliasStatus::WrongVersion},
      {"versionInTheHighByte", With(good, 6, 2), AliasStatus::WrongVersion},
      {"kind2", With(good, 9, 2), AliasStatus::WrongKind},
      {"kindNegative", With(With(good, 8, 0xFF), 9, 0xFF), AliasStatus::WrongKind},
      {"volumeNameOverItsField", With(good, 10, 28), AliasStatus::BadName},
      {"fileNameOverItsField", With(good, 50, 64), AliasStatus::BadName},
      {"fileNameFarOverItsField", With(good, 50, 255), AliasStatus::BadName},
      {"nothingBehindTheFixedPart", Record(FixedPart(), {}), AliasStatus::NoEnd},
      {"noEnd", WithItems(path), AliasStatus::NoEnd},
      {"endWithData", WithItems(path + Item(0xFFFF, {1, 2})), AliasStatus::BadItem},
      {"endWithALengthOnly", WithItems(path + Bytes{0xFF, 0xFF, 0, 4}), AliasStatus::BadItem},
      {"aByteBehindTheEnd", WithItems(path + kEnd + Bytes{0}), AliasStatus::TrailingBytes},
      {"aSecondEnd", WithItems(path + kEnd + kEnd), AliasStatus::TrailingBytes},
      {"itemRunsPastTheEnd", WithItems(Bytes{0, 18, 0xFF, 0xFF, 'a'} + kEnd),
       AliasStatus::Truncated},
      {"padByteMissingAtTheEnd", WithItems({0, 18, 0, 1, 'a'}), AliasStatus::Truncated},
      {"unicodeNameWithoutACount", WithItems(path + Item(14, {}) + kEnd), AliasStatus::BadItem},
      {"unicodeNameOfOneByte", WithItems(path + Item(14, {0}) + kEnd), AliasStatus::BadItem},
      {"unicodeNameShorterThanItsCount", WithItems(path + Item(14, {0, 2, 0, 'a'}) + kEnd),
       AliasStatus::BadItem},
      {"unicodeNameLongerThanItsCount", WithItems(path + Item(15, {0, 0, 0, 'a'}) + kEnd),
       AliasStatus::BadItem},
      {"twoPaths", WithItems(path + path + kEnd), AliasStatus::BadItem},
      {"twoMountPoints", WithItems(path + Item(19, Text("/")) + Item(19, Text("/")) + kEnd),
       AliasStatus::BadItem},
      {"noPath", WithItems(Item(19, Text("/")) + kEnd), AliasStatus::NoPath},
      {"emptyPath", WithItems(Item(18, {}) + kEnd), AliasStatus::BadPath},
      {"pathOfSlashes", WithItems(Item(18, Text("//")) + kEnd), AliasStatus::BadPath},
      {"nulInThePath", WithItems(Item(18, {'a', 0, 'b'}) + kEnd), AliasStatus::BadPath},
      {"nulInTheMountPoint", WithItems(path + Item(19, {'/', 0}) + kEnd), AliasStatus::BadPath},
      {"mountPointNotAbsolute", WithItems(path + Item(19, Text("Volumes")) + kEnd),
       AliasStatus::BadPath},
      {"mountPointEmpty", WithItems(path + Item(19, {}) + kEnd), AliasStatus::BadPath},
      {"pathAtTheLimit", WithItems(Item(18, Text(atLimit)) + kEnd), AliasStatus::Ok},
      {"pathOverTheLimit", WithItems(Item(18, Text(atLimit + "x")) + kEnd),
       AliasStatus::PathTooLong},
  };
  for (const Broken& row : rows) {
    EXPECT_STREQ(AliasStatusText(Decode(row.bytes)), AliasStatusText(row.status)) << row.rule;
  }
}

TEST(AliasRecord, noByteThatIsChangedLeadsOutOfBounds) {
  const Bytes good = GoodRecord();
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      AliasRecord alias;
      if (DecodeAlias(With(good, at, static_cast<std::uint8_t>(value)), alias) == AliasStatus::Ok) {
        EXPECT_EQ(alias.path.front(), '/');
      }
    }
  }
}

TEST(AliasRecord, randomItemsNeverLeadOutOfBounds) {
  std::mt19937 random(7);
  std::size_t accepted = 0;
  for (int round = 0; round < 20000; ++round) {
    Bytes items;
    for (std::size_t count = random() % 6; count > 0; --count) {
      Bytes data(random() % 12);
      for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random() % 4);
      items = items + Item(static_cast<int>(random() % 24), data);
    }
    if (random() % 2 == 0) items = items + Item(18, Text("a"));
    if (random() % 4 != 0) items = items + kEnd;
    if (Decode(WithItems(items)) == AliasStatus::Ok) ++accepted;
  }
  EXPECT_GT(accepted, 0u);
}

TEST(AliasRecord, encodesTheFixedPartFieldByField) {
  AliasRecord alias;
  alias.path = "/snd/Drum 1.wav";
  alias.volumeName = "Studio";
  alias.folderId = 0x00010203;
  alias.fileId = 0x8090A0B0;
  alias.fileDate = 0xDB123456;
  Bytes bytes;
  ASSERT_EQ(EncodeAlias(alias, bytes), AliasStatus::Ok);
  Bytes expected = FixedPart();
  expected[4] = static_cast<std::uint8_t>(bytes.size() >> 8);
  expected[5] = static_cast<std::uint8_t>(bytes.size());
  for (std::size_t at : {38u, 39u, 40u, 41u}) expected[at] = 0;      // no volume date
  for (std::size_t at : {126u, 127u, 128u, 129u}) expected[at] = 0;  // no type
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 150), expected);
}

TEST(AliasRecord, encodesTheItemsInOrder) {
  const Bytes bytes = Encoded("/snd/b.wav");
  const Bytes expected = Item(0, Text("snd")) +
                         Item(14, {0, 5, 0, 'b', 0, '.', 0, 'w', 0, 'a', 0, 'v'}) +
                         Item(15, {0, 7, 0, 'V', 0, 'e', 0, 'l', 0, 'm', 0, 'o', 0, 'r', 0, 'a'}) +
                         Item(18, Text("snd/b.wav")) + Item(19, Text("/")) + kEnd;
  EXPECT_EQ(Bytes(bytes.begin() + 150, bytes.end()), expected);
  EXPECT_EQ(bytes[4] * 256u + bytes[5], bytes.size());
  EXPECT_EQ(bytes.size() % 2, 0u);
}

TEST(AliasRecord, folderHasKindOne) {
  AliasRecord alias;
  alias.path = "/snd/takes/";
  alias.isFolder = true;
  Bytes bytes;
  ASSERT_EQ(EncodeAlias(alias, bytes), AliasStatus::Ok);
  EXPECT_EQ(bytes[8] * 256 + bytes[9], 1);
  AliasRecord back;
  ASSERT_EQ(DecodeAlias(bytes, back), AliasStatus::Ok);
  EXPECT_TRUE(back.isFolder);
  EXPECT_EQ(back.fileName, "takes");
  EXPECT_EQ(back.folderName, "snd");
  EXPECT_EQ(back.path, "/snd/takes/");
}

TEST(AliasRecord, namesOverThePascalLimitsAreCutInTheFixedPartOnly) {
  const std::string name(255, 'n');
  const std::string volume(40, 'v');
  AliasRecord alias;
  alias.path = '/' + name;
  alias.volumeName = volume;
  Bytes bytes;
  ASSERT_EQ(EncodeAlias(alias, bytes), AliasStatus::Ok);
  EXPECT_EQ(bytes[10], 27);
  EXPECT_EQ(bytes[50], 63);
  EXPECT_EQ(bytes[113], 'n');
  AliasRecord back;
  ASSERT_EQ(DecodeAlias(bytes, back), AliasStatus::Ok);
  EXPECT_EQ(back.fileName, name);
  EXPECT_EQ(back.volumeName, volume);
  EXPECT_EQ(back.path, alias.path);
}

TEST(AliasRecord, fixedPartHasOneByteForACharacterAndNoColon) {
  const Bytes bytes = Encoded("/\xE9\x9F\xB3:\xC3\xA4\xFFz");  // a kanji, ":", a-umlaut, a bad byte
  EXPECT_EQ(Bytes(bytes.begin() + 50, bytes.begin() + 57), (Bytes{5, '?', '/', '?', '?', 'z', 0}));
  AliasRecord back;
  ASSERT_EQ(DecodeAlias(bytes, back), AliasStatus::Ok);
  EXPECT_EQ(back.fileName, "\xE9\x9F\xB3:\xC3\xA4\xEF\xBF\xBDz");
  EXPECT_EQ(back.path, "/\xE9\x9F\xB3:\xC3\xA4\xFFz") << "a path keeps its bytes";
}

TEST(AliasRecord, unicodeNameHasASlashWherePosixHasAColon) {
  const Bytes item = Item(14, {0, 3, 0, 'a', 0, '/', 0, 'b'});
  AliasRecord alias;
  ASSERT_EQ(DecodeAlias(Record(FixedPart(), item + Item(18, Text("a:b")) + kEnd), alias),
            AliasStatus::Ok);
  EXPECT_EQ(alias.fileName, "a:b");
  const Bytes bytes = Encoded("/a:b");
  EXPECT_NE(std::search(bytes.begin(), bytes.end(), item.begin(), item.end()), bytes.end());
}

TEST(AliasRecord, roundTripKeepsWhatARecordHolds) {
  const std::string paths[] = {
      "/a",
      "/snd/b.wav",
      "/snd//double//slash.wav",
      "/snd/../snd/./dots.wav",
      "/\xE9\x8C\xB2\xE9\x9F\xB3/\xF0\x9F\x8E\xB5.wav",
      "/bytes\xFF\x80/that are\nno text\x01",
      '/' + std::string(kAliasPathLimit - 1, 'x'),
      '/' + std::string(255, 'd') + '/' + std::string(255, 'f'),
  };
  for (const std::string& path : paths) {
    AliasRecord alias;
    alias.path = path;
    alias.folderId = 0xFFFFFFFF;
    alias.fileId = 1;
    alias.fileDate = 0x80000000;
    Bytes bytes;
    ASSERT_EQ(EncodeAlias(alias, bytes), AliasStatus::Ok) << path;
    AliasRecord back;
    ASSERT_EQ(DecodeAlias(bytes, back), AliasStatus::Ok) << path;
    EXPECT_EQ(back.path, path);
    EXPECT_EQ(back.folderId, alias.folderId);
    EXPECT_EQ(back.fileId, alias.fileId);
    EXPECT_EQ(back.fileDate, alias.fileDate);
  }
}

TEST(AliasRecord, leavesNothingBehindForAPathThatCannotBe) {
  struct Row {
    const char* rule;
    std::string path;
    AliasStatus status;
  };
  const Row rows[] = {
      {"empty", "", AliasStatus::BadPath},
      {"relative", "snd/a.wav", AliasStatus::BadPath},
      {"root", "/", AliasStatus::BadPath},
      {"nul", std::string("/a\0b", 4), AliasStatus::BadPath},
      {"overTheLimit", '/' + std::string(kAliasPathLimit, 'x'), AliasStatus::PathTooLong},
  };
  for (const Row& row : rows) {
    AliasRecord alias;
    alias.path = row.path;
    Bytes bytes{1, 2, 3};
    EXPECT_EQ(EncodeAlias(alias, bytes), row.status) << row.rule;
    EXPECT_TRUE(bytes.empty()) << row.rule;
  }
}

TEST(AliasRecord, nameThatNoRecordHoldsIsRefused) {
  AliasRecord alias;
  alias.path = "/a";
  alias.fileName = std::string(70000, 'n');
  Bytes bytes;
  EXPECT_EQ(EncodeAlias(alias, bytes), AliasStatus::BadName);
  EXPECT_TRUE(bytes.empty());
}

TEST(AliasRecord, macTimeCountsFrom1904) {
  EXPECT_EQ(MacTime(0), 0x7C25B080u);
  EXPECT_EQ(MacTime(-2'082'844'800), 0u);
  EXPECT_EQ(MacTime(2'212'122'495), 0xFFFFFFFFu);
  EXPECT_EQ(MacTime(2'212'122'496), 0xFFFFFFFFu) << "after February 2040";
  EXPECT_EQ(MacTime(std::numeric_limits<std::int64_t>::max()), 0xFFFFFFFFu);
  EXPECT_EQ(MacTime(std::numeric_limits<std::int64_t>::min()), 0u);
}

TEST(AliasRecord, everyStatusHasItsOwnText) {
  std::vector<std::string> texts;
  for (int status = 0; status <= static_cast<int>(AliasStatus::PathTooLong); ++status) {
    const std::string text = AliasStatusText(static_cast<AliasStatus>(status));
    EXPECT_FALSE(text.empty()) << status;
    for (const std::string& other : texts) EXPECT_NE(text, other);
    texts.push_back(text);
  }
}

}  // namespace
}  // namespace velmora::host
