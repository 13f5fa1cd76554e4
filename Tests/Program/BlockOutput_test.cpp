#include "Program/BlockOutput.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <iterator>
#include <new>
#include <set>
#include <string>
#include <thread>

#include "Program/WorkBlocks.h"
#include "Support/TemporaryFolder.h"

namespace velmora::program {
namespace {

constexpr std::size_t kMany = 10007;
constexpr std::size_t kPerBlock = 64;

void AppendNumbers(CharBuffer& text, std::size_t begin, std::size_t end) {
  for (std::size_t i = begin; i < end; ++i) text.Append(std::to_string(i) + ' ');
}

std::string Numbers(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += std::to_string(i) + ' ';
  return text;
}

/// What a descriptor was given.
class BlockOutputTest : public ::testing::Test {
 protected:
  BlockOutputTest()
      : path_(folder_.Write("out", "")), descriptor_(::open(path_.c_str(), O_WRONLY)) {}
  ~BlockOutputTest() override { ::close(descriptor_); }
  std::string Written() const { return test::TemporaryFolder::Read(path_); }

  test::TemporaryFolder folder_;
  std::string path_;
  int descriptor_;
};

TEST_F(BlockOutputTest, writesInTheOrderToldWhateverIsFormattedFirst) {
  BlockOutput out(descriptor_);
  out << "before " << '\n';
  out.InBlocks(kMany, kPerBlock, [](CharBuffer& text, std::size_t begin, std::size_t end) {
    if (begin % (3 * kPerBlock) == 0) ::usleep(200);  // others overtake this one
    AppendNumbers(text, begin, end);
  });
  out << "between ";
  out.InBlocks(3, kPerBlock, AppendNumbers);
  out.InBlocks(0, kPerBlock, AppendNumbers);
  out << "after";
  EXPECT_TRUE(out.Finish());
  EXPECT_EQ(Written(), "before \n" + Numbers(kMany) + "between " + Numbers(3) + "after");
}

/// The pipe takes part of what is written, or nothing for the moment.
TEST(BlockOutputPages, textsOfAnySizeArriveWholeInAPipeThatIsReadSlowly) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
  std::string read;
  std::jthread reader([&read, descriptor = ends[0]] {
    char piece[3001];
    for (;;) {
      const ssize_t got = ::read(descriptor, piece, sizeof piece);
      if (got == 0) return;
      if (got > 0) read.append(piece, static_cast<std::size_t>(got));
      if (got < 0) ::usleep(50);
    }
  });
  std::string expected;
  {
    BlockOutput out(ends[1]);
    for (const std::size_t size :
         {1u, 4095u, 4096u, 4097u, 65535u, 65536u, 3u, 200001u, 262143u, 262144u, 5u, 600001u}) {
      out.InBlocks(2, 1, [&](CharBuffer& text, std::size_t begin, std::size_t) {
        text.Append(std::string(size + begin, static_cast<char>('a' + begin)));
      });
      expected += std::string(size, 'a') + std::string(size + 1, 'b');
    }
    EXPECT_TRUE(out.Finish());
  }
  ::close(ends[1]);
  reader.join();
  ::close(ends[0]);
  EXPECT_TRUE(read == expected) << read.size() << " of " << expected.size() << " bytes";
}

/// Texts of all sizes between those that fill no stretch and those that fill many. The file holds
/// what was written and no more: no room stays booked after its end.
TEST_F(BlockOutputTest, textsOfAnySizeArriveWholeInAFile) {
  constexpr std::size_t kSizes[] = {1, 100000, 262143, 262144, 262145, 7, 1500000, 30000, 90001};
  std::string expected;
  {
    BlockOutput out(descriptor_);
    for (int round = 0; round < 3; ++round) {
      out << "round ";
      expected += "round ";
      out.InBlocks(std::size(kSizes), 1, [&](CharBuffer& text, std::size_t begin, std::size_t) {
        text.Append(std::string(kSizes[begin], static_cast<char>('a' + begin)));
      });
      for (std::size_t i = 0; i < std::size(kSizes); ++i) {
        expected += std::string(kSizes[i], static_cast<char>('a' + i));
      }
    }
    EXPECT_TRUE(out.Finish());
  }
  EXPECT_TRUE(Written() == expected);
  struct stat facts {};
  ASSERT_EQ(::fstat(descriptor_, &facts), 0);
  EXPECT_EQ(facts.st_size, static_cast<off_t>(expected.size()));
  EXPECT_LT(facts.st_blocks * 512, facts.st_size + 65536);
}

TEST_F(BlockOutputTest, countsAroundTheEndOfABlock) {
  std::string expected;
  BlockOutput out(descriptor_);
  for (const std::size_t count : {kPerBlock - 1, kPerBlock, kPerBlock + 1, 2 * kPerBlock}) {
    out.InBlocks(count, kPerBlock, AppendNumbers);
    expected += Numbers(count);
  }
  EXPECT_TRUE(out.Finish());
  EXPECT_EQ(Written(), expected);
}

TEST_F(BlockOutputTest, whatIsThrownReachesTheCaller) {
  BlockOutput out(descriptor_);
  for (const std::size_t failing : {std::size_t{0}, 5 * kPerBlock, kMany - kMany % kPerBlock}) {
    EXPECT_THROW(out.InBlocks(kMany, kPerBlock,
                              [failing](CharBuffer& text, std::size_t begin, std::size_t end) {
                                if (begin == failing) throw std::bad_alloc();
                                AppendNumbers(text, begin, end);
                              }),
                 std::bad_alloc)
        << failing;
  }
  out.InBlocks(2 * kPerBlock, kPerBlock, AppendNumbers);
  EXPECT_TRUE(out.Finish());
  EXPECT_TRUE(Written().ends_with(Numbers(2 * kPerBlock))) << "nothing of failed blocks is left";
}

TEST(BlockOutputErrors, fullDiskIsToldAndEndsTheWork) {
  const int full = ::open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  std::atomic<std::size_t> formatted = 0;
  BlockOutput out(full);
  out.InBlocks(kMany, 1, [&](CharBuffer& text, std::size_t begin, std::size_t end) {
    formatted += end - begin;
    text.Append(std::string(1000, 'x'));
  });
  EXPECT_FALSE(out.Finish());
  EXPECT_LT(formatted, kMany);
  ::close(full);
}

TEST(BlockOutputErrors, descriptorThatTakesNoWritingIsTold) {
  const int readable = ::open("/dev/null", O_RDONLY);
  BlockOutput out(readable);
  out << "x";
  EXPECT_FALSE(out.Finish());
  ::close(readable);
}

TEST(WorkInBlocks, doesEachThingOnce) {
  std::vector<std::atomic<int>> done(kMany);
  WorkInBlocks(kMany, kPerBlock, [&done](std::size_t begin, std::size_t end) {
    EXPECT_LE(end - begin, kPerBlock);
    for (std::size_t i = begin; i < end; ++i) ++done[i];
  });
  EXPECT_TRUE(std::all_of(done.begin(), done.end(), [](const auto& count) { return count == 1; }));
}

TEST(WorkInBlocks, oneBlockNeedsNoThread) {
  EXPECT_EQ(WorkersFor(1), 1u);
  EXPECT_EQ(WorkersFor(0), 1u);
  EXPECT_GE(WorkersFor(100), 1u);
}

}  // namespace
}  // namespace velmora::program
