#pragma once

#include <signal.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <vector>

namespace velmora::bounce {

/// Where the bytes of a bounce go, one after the other. Each operation answers 0 or an errno.
class AudioSink {
 public:
  virtual ~AudioSink() = default;
  [[nodiscard]] virtual int Write(std::span<const std::uint8_t> bytes) = 0;
  /// Bytes of 0.
  [[nodiscard]] virtual int Silence(std::int64_t bytes) = 0;
  /// How much silence is asked for at a time by one who wants to be able to stop.
  [[nodiscard]] virtual std::int64_t SilenceAtOnce() const = 0;
  /// After the last byte.
  [[nodiscard]] virtual int Finish() = 0;
};

/// A regular file, new and empty. Its silence is a hole, which takes no time and no room on disk.
class FileSink : public AudioSink {
 public:
  /// @param descriptor open for writing, and not owned
  explicit FileSink(int descriptor) : descriptor_(descriptor) {}

  [[nodiscard]] int Write(std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] int Silence(std::int64_t bytes) override;
  [[nodiscard]] std::int64_t SilenceAtOnce() const override {
    return std::numeric_limits<std::int64_t>::max();
  }
  [[nodiscard]] int Finish() override;

 private:
  int descriptor_;
  std::int64_t size_ = 0;
};

/// Whatever takes bytes in order: a pipe into a player, a file that somebody else has opened. A
/// reader that takes its time is waited for, and one that has gone is told as EPIPE: SIGPIPE, which
/// would end the program, is held back while this lives, in the thread that made it.
class StreamSink : public AudioSink {
 public:
  /// @param descriptor open for writing, and not owned
  /// @param goOn is asked while a reader keeps us waiting; after a false the write answers
  /// ECANCELED
  StreamSink(int descriptor, std::function<bool()> goOn);
  ~StreamSink() override;
  StreamSink(const StreamSink&) = delete;
  StreamSink& operator=(const StreamSink&) = delete;

  [[nodiscard]] int Write(std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] int Silence(std::int64_t bytes) override;
  [[nodiscard]] std::int64_t SilenceAtOnce() const override { return std::int64_t{16} << 20; }
  [[nodiscard]] int Finish() override { return 0; }

 private:
  [[nodiscard]] int WaitForReader() const;

  int descriptor_;
  std::function<bool()> goOn_;
  bool isFile_;
  sigset_t pipeSignal_{};
  sigset_t before_{};
  std::vector<std::uint8_t> zeros_;
};

}  // namespace velmora::bounce
