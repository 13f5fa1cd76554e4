#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "Bounce/AudioSink.h"
#include "BounceFixture.h"
#include "Support/SystemConditions.h"

namespace velmora::bounce {
namespace {

/// Leads standard output elsewhere while it lives.
class LeadOutput {
 public:
  explicit LeadOutput(int descriptor) : before_(::dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    ::dup2(descriptor, STDOUT_FILENO);
  }
  ~LeadOutput() {
    std::fflush(stdout);
    ::dup2(before_, STDOUT_FILENO);
    ::close(before_);
  }
  LeadOutput(const LeadOutput&) = delete;
  LeadOutput& operator=(const LeadOutput&) = delete;

 private:
  int before_;
};

struct Pipe {
  Pipe() {
    if (::pipe(ends) != 0) throw std::runtime_error("pipe");
  }
  ~Pipe() {
    CloseReader();
    CloseWriter();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void CloseReader() { Close(ends[0]); }
  void CloseWriter() { Close(ends[1]); }
  static void Close(int& end) {
    if (end >= 0) ::close(end);
    end = -1;
  }
  int ends[2] = {-1, -1};
};

std::string ReadAll(int descriptor) {
  std::string text;
  std::vector<char> block(10000);
  for (ssize_t got = 0; (got = ::read(descriptor, block.data(), block.size())) > 0;) {
    text.append(block.data(), static_cast<std::size_t>(got));
  }
  return text;
}

class StandardOutput : public BounceFixture {
 protected:
  StandardOutput() {
    const TestSource a = MakeSource("a", {24}, 150001);
    Place(0, 10, a, 0, 150001);
    Place(0, 400000, a, 100, 301, {100, 100, 2});
  }
  const test::Watchdog watchdog_;
};

TEST_F(StandardOutput, aPipeGetsTheBytesOfTheFile) {
  setenv("SOURCE_DATE_EPOCH", "1795323967", 1);
  ASSERT_EQ(Bounce(kBounceKind, folder_.Path("out.wav"), BounceDepth::Bits24).trouble, "");
  Pipe pipe;
  std::string read;
  std::thread reader([&] { read = ReadAll(pipe.ends[0]); });
  std::string trouble;
  {
    const LeadOutput lead(pipe.ends[1]);
    trouble = Bounce(kBounceKind, "-", BounceDepth::Bits24).trouble;
  }
  pipe.CloseWriter();
  reader.join();
  unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_EQ(trouble, "");
  EXPECT_TRUE(read == test::TemporaryFolder::Read(folder_.Path("out.wav")));
  AudioOf(folder_.Path("out.wav"));
}

TEST_F(StandardOutput, aFileGetsItAfterWhatStandsThere) {
  const std::string path = folder_.Write("log", "before");
  const int file = ::open(path.c_str(), O_WRONLY | O_APPEND);
  std::string trouble;
  {
    const LeadOutput lead(file);
    std::printf("buffered");
    trouble = Bounce(kBounceKind, "-", BounceDepth::Bits16).trouble;
  }
  ::close(file);
  EXPECT_EQ(trouble, "");
  const std::string bytes = test::TemporaryFolder::Read(path);
  EXPECT_EQ(bytes.substr(0, 18), "beforebufferedRIFF");
  const WaveFile wave = ParseWave(bytes.substr(14));
  EXPECT_TRUE(bytes.substr(14 + wave.dataAt) == Expected(BounceDepth::Bits16));
}

TEST_F(StandardOutput, aReaderThatHasGoneIsTold) {
  Pipe pipe;
  pipe.CloseReader();
  std::string trouble;
  {
    const LeadOutput lead(pipe.ends[1]);
    trouble = Bounce(kBounceKind, "-", BounceDepth::Bits24).trouble;
  }
  EXPECT_EQ(trouble, "standard output cannot be written: Broken pipe");
  // The signal of it does not come later either.
  sigset_t pending;
  ASSERT_EQ(sigpending(&pending), 0);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(StandardOutput, aReaderThatTakesNothingCanBeLeft) {
  Pipe pipe;
  int asked = 0;
  std::string trouble;
  {
    const LeadOutput lead(pipe.ends[1]);
    trouble =
        Bounce(kBounceKind, "-", BounceDepth::Bits24, [&](double) { return ++asked < 4; }).trouble;
  }
  EXPECT_EQ(trouble, "standard output is not made: it was cancelled");
}

TEST_F(StandardOutput, aFullDiskIsTold) {
  const int full = ::open("/dev/full", O_WRONLY);
  std::string trouble;
  {
    const LeadOutput lead(full);
    trouble = Bounce(kBounceKind, "-", BounceDepth::Bits24).trouble;
  }
  ::close(full);
  EXPECT_EQ(trouble, "standard output cannot be written: No space left on device");
}

TEST_F(StandardOutput, aTerminalIsRefused) {
  const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(master, 0);
  ASSERT_EQ(::grantpt(master), 0);
  ASSERT_EQ(::unlockpt(master), 0);
  const int terminal = ::open(::ptsname(master), O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  std::string complaint;
  {
    const LeadOutput lead(terminal);
    complaint = kBounceKind.claim("-", {}).complaint;
  }
  ::close(terminal);
  ::close(master);
  EXPECT_EQ(complaint, "standard output is a terminal; audio goes into a pipe or a file");
}

}  // namespace
}  // namespace velmora::bounce
