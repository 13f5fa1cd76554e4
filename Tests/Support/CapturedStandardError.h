#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace velmora::test {

/// Catches standard error from its making to Text. One scratch file serves the whole program, since
/// the tests load tens of thousands of projects.
class CapturedStandardError {
 public:
  CapturedStandardError() {
    std::fflush(stderr);
    saved_ = dup(STDERR_FILENO);
    dup2(fileno(Scratch()), STDERR_FILENO);
  }
  /// What was not asked for is dropped.
  ~CapturedStandardError() {
    Restore();
    EmptyScratch();
  }
  CapturedStandardError(const CapturedStandardError&) = delete;
  CapturedStandardError& operator=(const CapturedStandardError&) = delete;

  /// What was said; standard error is itself again.
  std::string Text() {
    Restore();
    const int scratch = fileno(Scratch());
    std::string text(static_cast<std::size_t>(lseek(scratch, 0, SEEK_END)), '\0');
    const ssize_t got = pread(scratch, text.data(), text.size(), 0);
    text.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
    EmptyScratch();
    return text;
  }

 private:
  static std::FILE* Scratch() {
    static std::FILE* const file = std::tmpfile();
    return file;
  }
  static void EmptyScratch() {
    if (ftruncate(fileno(Scratch()), 0) == 0) lseek(fileno(Scratch()), 0, SEEK_SET);
  }
  void Restore() {
    if (saved_ < 0) return;
    std::fflush(stderr);
    dup2(saved_, STDERR_FILENO);
    close(saved_);
    saved_ = -1;
  }

  int saved_ = -1;
};

}  // namespace velmora::test
