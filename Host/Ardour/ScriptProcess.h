#pragma once

#include <sys/types.h>

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::ardour {

/// What a line of a script means to the one who reads it.
enum class LineUse {
  Ignored,   ///< noise, or nothing new
  Progress,  ///< a sign of life: the script does not hang
  Failure,   ///< the script is to be ended
};

/// How a script came to its end.
struct ScriptEnd {
  enum class Kind { Exited, Killed, Hung, Cancelled, Failed, Lost } kind = Kind::Lost;
  int number = 0;         ///< exit status of Exited, signal of Killed, errno of Lost
  std::string lastWords;  ///< the last line that was for people, shortened; empty if none came
};

/// A program that runs a script, with all the processes that it starts: they are a process group
/// of their own, and none of them outlives this object or this process, however that ends.
class ScriptProcess {
 public:
  struct Command {
    std::string program;                   ///< absolute
    std::vector<std::string> arguments;    ///< without the program's name
    std::vector<std::string> environment;  ///< "NAME=VALUE"
  };

  /// @param patience how long the script may show no progress
  explicit ScriptProcess(std::chrono::milliseconds patience) : patience_(patience) {}
  ~ScriptProcess() { EndGroup(); }
  ScriptProcess(const ScriptProcess&) = delete;
  ScriptProcess& operator=(const ScriptProcess&) = delete;

  /// 0, or an errno.
  [[nodiscard]] int Start(const Command& command);

  /// Reads the script's lines until its end, and hands on those that begin with "velmora: ",
  /// without that. `goesOn` is asked several times a second; an answer of false ends the script.
  [[nodiscard]] ScriptEnd Run(const std::function<LineUse(std::string_view)>& take,
                              const std::function<bool()>& goesOn);

  /// Writes a short line to the script's standard input. To be called from `take`.
  [[nodiscard]] bool Answer(std::string_view line) const;

 private:
  /// A descriptor that is closed at its end.
  class Descriptor {
   public:
    Descriptor() = default;
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    void Take(int number) {
      Close();
      number_ = number;
    }
    void Close();
    [[nodiscard]] int Number() const { return number_; }

   private:
    int number_ = -1;
  };
  struct Pipe {
    Descriptor readEnd, writeEnd;
    [[nodiscard]] int Open();  ///< 0 or an errno
  };
  /// Lines out of what a stream brings.
  struct LineBuffer {
    std::string line;
    bool isTooLong = false;
  };
  enum Stream { Output, Errors };

  [[nodiscard]] int StartScript(const Command& command);
  [[nodiscard]] int BecomeScript(char* const* arguments, char* const* environment) const;
  [[nodiscard]] int StartGuard();
  void RunGuard() const;
  void EndGroup();
  [[nodiscard]] bool HasEnded() const;
  /// False if a line is a failure.
  [[nodiscard]] bool ReadStream(Stream stream,
                                const std::function<LineUse(std::string_view)>& take);
  [[nodiscard]] bool TakeLine(Stream stream, const std::function<LineUse(std::string_view)>& take);
  [[nodiscard]] ScriptEnd Reap();

  std::chrono::milliseconds patience_;
  std::chrono::steady_clock::time_point lastProgress_;
  Pipe input_;
  std::array<Pipe, 2> streams_;
  std::array<LineBuffer, 2> lines_;
  Pipe life_;  ///< its write end is this process alone: when it closes, this process has ended
  std::string lastWords_;
  pid_t script_ = -1;  ///< -1 when it has been reaped, or is not started
  pid_t guard_ = -1;   ///< also the number of the process group of both
};

}  // namespace velmora::ardour
