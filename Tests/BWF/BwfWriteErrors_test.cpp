#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/Renderers.h"
#include "Support/BwfReference.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;

class BwfWriteErrors : public testing::Test {
 protected:
  // One line, with the path and the reason that the system gives.
  void ExpectOneLine(const std::string& path, int cause) {
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_NE(log.lines[0].find(path), std::string::npos) << log.lines[0];
    EXPECT_NE(log.lines[0].find(std::strerror(cause)), std::string::npos) << log.lines[0];
    EXPECT_EQ(log.lines[0].find('\n'), std::string::npos);
    log.lines.clear();
  }
  std::string Source(std::size_t samples) {
    return folder.Write("source.wav", PlainWave({}, Ints(samples, 0x4000)));
  }

  TemporaryFolder folder;
  LogCapture log;
};

constexpr std::size_t kFew = 4;         // all of it stays in the stream's buffer until it closes
constexpr std::size_t kMany = 100'000;  // it does not

// Each row makes one file at `target` from `source` and says whether that failed as it should.
struct Operation {
  const char* name;
  bool (*failed)(AES31BWF& source, const std::string& target);
};

constexpr Operation kOperations[] = {
    {"copyOfTheSameDepth",
     [](AES31BWF& source, const std::string& target) {
       return source.CopyTo(target.c_str(), -1) == CopyFailed;
     }},
    {"copyToAnotherDepth",
     [](AES31BWF& source, const std::string& target) {
       return source.CopyTo(target.c_str(), 24) == CopyFailed;
     }},
    {"conversion",
     [](AES31BWF& source, const std::string& target) {
       AES31BWF file(target.c_str(), 48000, 1, 16, source.GetFrames());
       source.OpenAtData();
       return file.IsValid() && source.ConvertInto(&file, false, 0) == 2 && file.WriteFailed();
     }},
    {"copyOfFrames",
     [](AES31BWF& source, const std::string& target) {
       AES31BWF file(target.c_str(), 48000, 1, 16, source.GetFrames());
       return file.IsValid() && !file.CopyFrames(&source, 0) && file.WriteFailed();
     }},
    {"scalingRenderer",
     [](AES31BWF& source, const std::string& target) {
       return RenderScaledFile(target.c_str(), &source, 0.5) == nullptr;
     }},
    {"fadeRenderer",
     [](AES31BWF& source, const std::string& target) {
       return RenderFadeFile(target.c_str(), &source, source.GetFrames(), true, 0) == nullptr;
     }},
    {"crossfadeRenderer",
     [](AES31BWF& source, const std::string& target) {
       return RenderCrossfadeFile(target.c_str(), &source, &source, 0, 0, source.GetFrames()) ==
              nullptr;
     }},
    {"writeSample",
     [](AES31BWF& source, const std::string& target) {
       AES31BWF file(target.c_str(), 48000, 1, 16, source.GetFrames());
       for (std::int32_t i = 0; i < source.GetFrames(); ++i) file.WriteSample(0.5F);
       file.CloseFile();
       return file.WriteFailed();
     }},
};

TEST_F(BwfWriteErrors, fullDiskFailsEveryOperationAndIsLoggedOnce) {
  const std::string full = FullDisk(folder);
  for (const std::size_t samples : {kFew, kMany}) {
    AES31BWF source(Source(samples).c_str());
    for (const Operation& operation : kOperations) {
      SCOPED_TRACE(testing::Message() << operation.name << " of " << samples << " samples");
      EXPECT_TRUE(operation.failed(source, full));
      ExpectOneLine(full, ENOSPC);
    }
  }
  EXPECT_TRUE(std::filesystem::is_symlink(full)) << "what came out short stays";
}

TEST_F(BwfWriteErrors, fileThatGrowsTooLargeStaysShort) {
  // Inside the header, at its end, inside the audio, and one byte before the end of it all.
  constexpr std::size_t kWhole = kHeaderBytes + kMany * 2;
  for (const std::size_t limit : {std::size_t{100}, std::size_t{kHeaderBytes}, std::size_t{65536},
                                  std::size_t{kPlainDataOffset + kMany * 2 - 1}}) {
    AES31BWF source(Source(kMany).c_str());
    for (const Operation& operation : kOperations) {
      SCOPED_TRACE(testing::Message() << operation.name << " up to " << limit << " bytes");
      const std::string target = folder.Path("short.wav");
      bool failed = false;
      {
        FileSizeLimit sizeLimit(limit);
        failed = operation.failed(source, target);
      }
      EXPECT_TRUE(failed);
      ExpectOneLine(target, EFBIG);
      ASSERT_TRUE(std::filesystem::exists(target)) << "what came out short stays";
      EXPECT_LE(std::filesystem::file_size(target), limit);
      EXPECT_LT(std::filesystem::file_size(target), kWhole);
      source.CloseFile();
      std::filesystem::remove(target);
    }
  }
}

TEST_F(BwfWriteErrors, limitThatTheFileJustFitsIsNoError) {
  AES31BWF source(Source(kMany).c_str());
  const std::string target = folder.Path("whole.wav");
  {
    FileSizeLimit limit(kHeaderBytes + kMany * 3);
    EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone);
  }
  EXPECT_EQ(std::filesystem::file_size(target), kHeaderBytes + kMany * 3);
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(BwfWriteErrors, errorIsLoggedOnceHoweverManyWritesFollow) {
  const std::string full = FullDisk(folder);
  {
    AES31BWF file(full.c_str(), 48000, 1, 16, 200000);
    for (int i = 0; i < 200000; ++i) file.WriteSample(0.5F);
    file.CloseFile();
    file.CloseFile();
  }
  ExpectOneLine(full, ENOSPC);
}

TEST_F(BwfWriteErrors, errorThatOnlyTheDestructorMeetsIsLoggedToo) {
  const std::string full = FullDisk(folder);
  { AES31BWF file(full.c_str(), 48000, 1, 16, 0); }
  ExpectOneLine(full, ENOSPC);
}

TEST_F(BwfWriteErrors, sourceStaysUsableAfterwards) {
  AES31BWF source(Source(kFew).c_str());
  EXPECT_EQ(source.CopyTo(FullDisk(folder).c_str(), 24), CopyFailed);
  EXPECT_TRUE(source.IsValid());
  EXPECT_EQ(source.CopyTo(folder.Path("good.wav").c_str(), 24), CopyDone);
  EXPECT_EQ(TemporaryFolder::Read(folder.Path("good.wav")),
            WrittenHeader(48000, 1, 24, kFew) + PcmBytes(24, Ints(kFew, 0x3FFFFF)));
}

TEST_F(BwfWriteErrors, goodWritesLogNothing) {
  AES31BWF source(Source(kMany).c_str());
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    EXPECT_FALSE(operation.failed(source, folder.Path("good.wav")));
  }
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(BwfWriteErrors, targetThatCannotBeCreatedFailsEveryOperation) {
  AES31BWF source(Source(kFew).c_str());
  const std::string target = folder.Path("missing/x.wav");
  EXPECT_EQ(RenderScaledFile(target.c_str(), &source, 0.5), nullptr);
  EXPECT_EQ(RenderFadeFile(target.c_str(), &source, 2, true, 0), nullptr);
  EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &source, &source, 0, 1, 2), nullptr);
}

TEST(BwfSystemLog, linesGoToStandardErrorByDefault) {
  TemporaryFolder folder;
  const std::string full = FullDisk(folder);
  testing::internal::CaptureStderr();
  AES31BWF file(full.c_str(), 48000, 1, 16, 0);
  file.CloseFile();
  const std::string captured = testing::internal::GetCapturedStderr();
  EXPECT_NE(captured.find(full), std::string::npos);
  EXPECT_EQ(captured.find('\n'), captured.size() - 1) << "one line";
}

}  // namespace
}  // namespace velmora::test
