#include "DawProject/ZipFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
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
