#include "DawProject/ZipFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "Base/FileAccess.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "ZipReader.h"

namespace velmora::dawproject {
namespace {

bool Add(ZipFile& zip, const std::string& name, ZipFile::Packing packing, const std::string& text) {
  return zip.Begin(name, packing, static_cast<std::int64_t>(text.size())) &&
         zip.Write(text.data(), text.size()) && zip.End();
}

TEST(ZipFile, holdsWhatItIsGiven) {
  const test::TemporaryFolder folder;
  const std::string path = folder.Path("a.zip");
  const std::string large(3000000, 'x');
  {
    const FileStream stream = CreateNewFile(path.c_str());
    ZipFile zip(stream.get());
    EXPECT_TRUE(Add(zip, "a.xml", ZipFile::Packing::Deflated, large));
    EXPECT_TRUE(Add(zip, "audio/Grüße.wav", ZipFile::Packing::Stored, large));
    EXPECT_TRUE(Add(zip, "empty", ZipFile::Packing::Stored, ""));
    EXPECT_TRUE(zip.Finish());
    EXPECT_EQ(zip.Error(), 0);
  }
  EXPECT_EQ(test::ZipNames(path), (std::vector<std::string>{"a.xml", "audio/Grüße.wav", "empty"}));
  EXPECT_EQ(test::ZipEntry(path, "a.xml"), large);
  EXPECT_EQ(test::ZipEntry(path, "audio/Grüße.wav"), large);
  EXPECT_EQ(test::ZipEntry(path, "empty"), "");
  // Another reader, which also checks the names' encoding.
  const std::string command = std::string(VELMORA_PYTHON) +
                              " -c \"import zipfile; z = zipfile.ZipFile('" + path +
                              "'); assert z.testzip() is None; assert z.namelist()[1] == "
                              "'audio/Gr\\u00fc\\u00dfe.wav'; assert z.infolist()[1].date_time[0] "
                              ">= 2024\"";
  EXPECT_EQ(std::system(command.c_str()), 0);
}

std::string BytesOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(ZipFile, laysOutHeadersDirectoryAndEnd) {
  const test::TemporaryFolder folder;
  const std::string path = folder.Path("a.zip");
  {
    const FileStream stream = CreateNewFile(path.c_str());
    ZipFile zip(stream.get());
    EXPECT_TRUE(Add(zip, "b", ZipFile::Packing::Stored, "123456789"));
    EXPECT_TRUE(zip.Finish());
  }
  using namespace std::string_literals;
  const std::string bytes = BytesOf(path);
  ASSERT_EQ(bytes.size(), 40U + 47U + 22U);
  const std::string time = bytes.substr(10, 4);  // of the day
  const std::string numbers =
      "\x26\x39\xF4\xCB"s   // CRC-32 of the nine digits
      "\x09\x00\x00\x00"s   // as they stand in the file
      "\x09\x00\x00\x00"s   // as they are
      "\x01\x00\x00\x00"s;  // the name, and nothing extra
  const std::string shape =
      "\x14\x00"s   // version 2.0 is needed
      "\x06\x08"s   // flags: the name is UTF-8
      "\x00\x00"s;  // stored
  EXPECT_EQ(bytes.substr(0, 40), "PK\x03\x04"s + shape + time + numbers + "b123456789");
  EXPECT_EQ(bytes.substr(40, 47), "PK\x01\x02\x2D\x03"s + shape + time + numbers +
                                      "\x00\x00"s          // no comment
                                      "\x00\x00\x00\x00"s  // on the first disk, no text
                                      "\x00\x00\xA4\x81"s  // a file with rights 0644
                                      "\x00\x00\x00\x00"s  // where its header is
                                      "b");
  EXPECT_EQ(bytes.substr(87),
            "PK\x05\x06"s
            "\x00\x00\x00\x00"s  // of the first disk
            "\x01\x00\x01\x00"s  // one entry there, and in all
            "\x2F\x00\x00\x00"s  // bytes of the directory
            "\x28\x00\x00\x00"s  // where it is
            "\x00\x00"s);        // no comment
}

TEST(ZipFile, tellsAFullDisk) {
  const test::TemporaryFolder folder;
  const FileStream stream = CreateNewFile(folder.Path("a.zip").c_str());
  const test::FileSizeLimit limit(100000);
  ZipFile zip(stream.get());
  EXPECT_FALSE(Add(zip, "a", ZipFile::Packing::Stored, std::string(3000000, 'x')) && zip.Finish());
  EXPECT_EQ(zip.Error(), EFBIG);
  EXPECT_FALSE(Add(zip, "b", ZipFile::Packing::Stored, "later"));
  EXPECT_FALSE(zip.Finish());
}

}  // namespace
}  // namespace velmora::dawproject
