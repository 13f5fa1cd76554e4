#include "Ardour/ScriptProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

#include "Ardour/LocalOnly.h"

namespace velmora::ardour {
namespace {

constexpr std::string_view kMark = "velmora: ";
constexpr std::size_t kMostLineBytes = 65536;  // a script that goes mad must not fill the memory
constexpr std::size_t kMostWords = 200;
constexpr int kPollMilliseconds = 50;

std::vector<char*> PointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

/// In a new process: joins a descriptor to one that the program expects.
void Join(int from, int to) {
  if (from == to) {
    ::fcntl(to, F_SETFD, 0);
  } else {
    ::dup2(from, to);
  }
}

}  // namespace

void ScriptProcess::Descriptor::Close() {
  if (number_ >= 0) ::close(number_);
  number_ = -1;
}

int ScriptProcess::Pipe::Open() {
  int ends[2];
  if (::pipe(ends) != 0) return errno;
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  readEnd.Take(ends[0]);
  writeEnd.Take(ends[1]);
  return 0;
}

int ScriptProcess::Start(const Command& command) {
  for (Pipe* const pipe : {&input_, &streams_[Output], &streams_[Errors], &life_}) {
    if (const int error = pipe->Open(); error != 0) return error;
  }
  // The guard comes first: so there is no moment at which the script has none.
  if (const int error = StartGuard(); error != 0) return error;
  if (const int error = StartScript(command); error != 0) return error;
  for (Pipe& stream : streams_) {
    stream.writeEnd.Close();
    ::fcntl(stream.readEnd.Number(), F_SETFL, O_NONBLOCK);
  }
  lastProgress_ = std::chrono::steady_clock::now();
  return 0;
}

int ScriptProcess::StartScript(const Command& command) {
  std::vector<std::string> words = {command.program};
  words.insert(words.end(), command.arguments.begin(), command.arguments.end());
  const std::vector<char*> arguments = PointersTo(words);
  const std::vector<char*> environment = PointersTo(command.environment);
  Pipe trouble;
  if (const int error = trouble.Open(); error != 0) return error;
  // A handler of this process must not run in the new one.
  sigset_t all, before;
  sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  script_ = ::fork();
  const int failure = errno;
  if (script_ != 0) ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  if (script_ < 0) return failure;
  if (script_ == 0) {
    const int error = BecomeScript(arguments.data(), environment.data());
    const bool isTold = ::write(trouble.writeEnd.Number(), &error, sizeof error) == sizeof error;
    ::_exit(isTold ? 127 : 126);
  }
  // The pipe closes without a word when the script begins.
  trouble.writeEnd.Close();
  int error = 0;
  ssize_t count = 0;
  do {
    count = ::read(trouble.readEnd.Number(), &error, sizeof error);
  } while (count < 0 && errno == EINTR);
  return count == sizeof error ? error : 0;
}

/// In a copy of this process that may have had threads: only what is safe in a signal handler may
/// be called here. Returns an errno, if at all.
int ScriptProcess::BecomeScript(char* const* arguments, char* const* environment) const {
  ::setpgid(0, guard_);
  Join(input_.readEnd.Number(), STDIN_FILENO);
  Join(streams_[Output].writeEnd.Number(), STDOUT_FILENO);
  Join(streams_[Errors].writeEnd.Number(), STDERR_FILENO);
  struct sigaction plain {};
  plain.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) ::sigaction(signal, &plain, nullptr);
  ::sigprocmask(SIG_SETMASK, &plain.sa_mask, nullptr);
  // A session needs no network, so nothing that a project says gets there. Where the system cannot
  // keep the script from it, it runs all the same.
  static_cast<void>(StayLocal());
  ::execve(arguments[0], arguments, environment);
  return errno;
}

int ScriptProcess::StartGuard() {
  guard_ = ::fork();
  if (guard_ < 0) return errno;
  if (guard_ == 0) RunGuard();
  // Both set it, so that the group is there for both from now on.
  ::setpgid(guard_, guard_);
  life_.readEnd.Close();
  return 0;
}

/// The guard's whole life, in a copy of this process that may have had threads: only what is safe
/// in a signal handler may be called here. It ends the group when this process has gone.
void ScriptProcess::RunGuard() const {
  ::setpgid(0, 0);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) std::signal(signal, SIG_IGN);
  // Nothing that this process has open may stay open by the guard; above all not the end of the
  // pipe that tells of this process.
  const int life = life_.readEnd.Number();
  const long most = std::min(::sysconf(_SC_OPEN_MAX), 65536L);
  for (int descriptor = 0; descriptor < most; ++descriptor) {
    if (descriptor != life) ::close(descriptor);
  }
  char byte = 0;
  while (::read(life, &byte, 1) < 0 && errno == EINTR) {
  }
  ::kill(-::getpid(), SIGKILL);
  ::_exit(0);
}

bool ScriptProcess::Answer(std::string_view line) const {
  // The pipe has room for it, and a reader for certain: this process keeps the other end open.
  const std::string text = std::string(line) + '\n';
  return ::write(input_.writeEnd.Number(), text.data(), text.size()) ==
         static_cast<ssize_t>(text.size());
}

ScriptEnd ScriptProcess::Run(const std::function<LineUse(std::string_view)>& take,
                             const std::function<bool()>& goesOn) {
  using Kind = ScriptEnd::Kind;
  for (bool ended = false; !ended;) {
    pollfd polled[2] = {};
    for (const Stream stream : {Output, Errors}) {
      polled[stream] = {streams_[stream].readEnd.Number(), POLLIN, 0};
    }
    ::poll(polled, 2, kPollMilliseconds);
    // What was written before the end is read after it.
    ended = HasEnded();
    for (const Stream stream : {Output, Errors}) {
      if (!ReadStream(stream, take)) return {Kind::Failed, 0, lastWords_};
    }
    if (!goesOn()) return {Kind::Cancelled, 0, lastWords_};
    if (!ended && std::chrono::steady_clock::now() - lastProgress_ > patience_) {
      return {Kind::Hung, 0, lastWords_};
    }
  }
  return Reap();
}

bool ScriptProcess::HasEnded() const {
  siginfo_t info{};
  // It is only looked at here: EndGroup reaps it. Another failure is no end: to wait for one then
  // would be to wait for a script that waits for its answer.
  if (::waitid(P_PID, static_cast<id_t>(script_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
    return errno == ECHILD;
  }
  return info.si_pid == script_;
}

bool ScriptProcess::ReadStream(Stream stream,
                               const std::function<LineUse(std::string_view)>& take) {
  constexpr int kMostReads = 64;  // noise without end must not keep from looking at the clock
  Descriptor& end = streams_[stream].readEnd;
  LineBuffer& buffer = lines_[stream];
  char bytes[65536];
  for (int reads = 0; reads < kMostReads && end.Number() >= 0; ++reads) {
    const ssize_t count = ::read(end.Number(), bytes, sizeof bytes);
    if (count < 0) break;
    if (count == 0) end.Close();
    for (const char byte : std::string_view(bytes, static_cast<std::size_t>(count))) {
      if (byte == '\n') {
        if (!TakeLine(stream, take)) return false;
      } else if (buffer.line.size() < kMostLineBytes) {
        buffer.line += byte;
      } else {
        buffer.isTooLong = true;
      }
    }
  }
  return true;
}

bool ScriptProcess::TakeLine(Stream stream, const std::function<LineUse(std::string_view)>& take) {
  LineBuffer buffer = std::exchange(lines_[stream], {});
  if (stream == Output && buffer.line.starts_with(kMark) && !buffer.isTooLong) {
    const LineUse use = take(std::string_view(buffer.line).substr(kMark.size()));
    if (use == LineUse::Progress) lastProgress_ = std::chrono::steady_clock::now();
    return use != LineUse::Failure;
  }
  if (!buffer.line.empty()) lastWords_ = buffer.line.substr(0, kMostWords);
  return true;
}

ScriptEnd ScriptProcess::Reap() {
  siginfo_t info{};
  if (::waitid(P_PID, static_cast<id_t>(script_), &info, WEXITED | WNOWAIT) != 0) {
    return {ScriptEnd::Kind::Lost, errno, lastWords_};
  }
  EndGroup();
  const bool exited = info.si_code == CLD_EXITED;
  return {exited ? ScriptEnd::Kind::Exited : ScriptEnd::Kind::Killed, info.si_status, lastWords_};
}

void ScriptProcess::EndGroup() {
  // While the guard is not reaped its number names no other group.
  if (guard_ > 0) ::kill(-guard_, SIGKILL);
  // A script may have left the group. Until it is reaped its number is its own.
  if (script_ > 0) ::kill(script_, SIGKILL);
  for (const pid_t process : {script_, guard_}) {
    while (process > 0 && ::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  script_ = guard_ = -1;
}

}  // namespace velmora::ardour
