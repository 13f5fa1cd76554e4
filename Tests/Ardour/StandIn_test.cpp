#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "ArdourFixture.h"

// What becomes of a session when Ardour does not do what it should: a shell script takes its place.

namespace velmora::ardour {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience(400);

class StandIn : public ArdourFixture {
 public:
  StandIn() { Place(0, 0, MakeSource("one.wav", {24, 1}, 100), 0, 100); }

  void ExpectNothingIsMade(const host::TargetOutcome& outcome, const std::string& cause) const {
    EXPECT_NE(outcome.trouble.find(folder_.Path("made")), std::string::npos) << outcome.trouble;
    EXPECT_NE(outcome.trouble.find(cause), std::string::npos) << outcome.trouble;
    for (const std::string& name : Names()) {
      EXPECT_TRUE(name == "one.wav" || name == "stand-in" || name == "child") << name;
    }
  }
  /// The number that a script wrote into the file "child".
  [[nodiscard]] pid_t Child() const {
    for (int tries = 0; tries < 200; ++tries) {
      const std::string text = test::TemporaryFolder::Read(folder_.Path("child"));
      if (!text.empty() && text.back() == '\n') return std::stoi(text);
      std::this_thread::sleep_for(milliseconds(10));
    }
    ADD_FAILURE() << "the script has not started its child";
    return -1;
  }
  static bool EndsSoon(pid_t process) {
    for (int tries = 0; tries < 500; ++tries) {
      // One that nobody has waited for yet has ended all the same.
      const std::string state =
          test::TemporaryFolder::Read("/proc/" + std::to_string(process) + "/stat");
      if (state.empty() || state.find(") Z ") != std::string::npos) return true;
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }
  [[nodiscard]] std::string StartsChild() const {
    return "sleep 100 & echo $! > '" + folder_.Path("child") + "'\n";
  }
};

TEST_F(StandIn, everyFaultIsNamedAndLeavesNothing) {
  const std::string session =
      "job=$2; name() { sed -n 1s/^[0-9]*.//p $job; }; d=$(name); mkdir -p \"$d\"\n"
      "echo '<Session id-counter=\"9\" "
      "sample-rate=\"48000\"><Sources/><Regions/><Locations/><Playlists>"
      "<Playlist orig-track-id=\"7\"/></Playlists></Session>' > \"$d/made.ardour\"\n"
      "echo velmora: step 1; echo velmora: track 7\n"
      "n=$(sed -n 7p $job); for i in $(seq $n); do echo velmora: time a$i; done\n";
  const std::string saved = session + "echo velmora: saved; read answer\n";
  const std::string told = saved + "echo velmora: playlist 7 Track 1\n";
  const std::string whole = told + "echo velmora: region 12 0 0 100\n";
  const struct {
    const char* rule;
    std::string commands;
    std::string cause;
  } rows[] = {
      {"isAnotherProgram", "exit 0", "has not begun, is this Ardour's ardour<N>-lua?"},
      {"endsWithAStatus", "echo broken >&2; exit 7", "exit status 7; it said last: broken"},
      {"crashes", "kill -SEGV $$", "crashed (signal 11"},
      {"tellsAFailure", "echo velmora: failed no sound; sleep 100", "no sound"},
      {"hangs", "sleep 100", "hung"},
      {"hangsWithoutItsOutput", "exec >&- 2>&-; sleep 100", "hung"},
      {"saysTheSameForEver", "while :; do echo velmora: step 1; sleep 0.02; done", "hung"},
      {"makesNoiseForEver", "while :; do echo noise; done", "hung"},
      {"makesNoiseForEverOnItsErrors", "while :; do echo noise >&2; done", "hung"},
      {"countsForEver", "i=0; while :; do i=$((i+1)); echo velmora: step $i; sleep 0.001; done",
       "hung"},
      {"leavesItsGroupAndHangs", "exec setsid sleep 100", "hung"},
      {"writesALineWithoutEnd", "tr '\\0' x < /dev/zero", "hung"},
      {"tellsTooManyTracks", "echo velmora: track 1; echo velmora: track 2; sleep 100",
       "too many tracks"},
      {"savesNothing",
       "n=$(sed -n 7p $2); echo velmora: track 7; for i in $(seq $n); do echo velmora: time a$i; "
       "done; echo velmora: saved; sleep 100",
       "saved no session"},
      {"savesAtAnotherRate",
       session + "sed -i s/48000/44100/ \"$d/made.ardour\"; echo velmora: saved; sleep 100",
       "not one of 48000 Hz"},
      {"savesTooEarly", "echo velmora: saved; sleep 100", "has not made all tracks"},
      {"claimsToBeDone", "echo velmora: done 1; sleep 100", "has not done"},
      {"isDoneWithoutTheRegion", told + "echo velmora: done 1", "does not have region 0"},
      {"isDoneWithAnotherCount", whole + "echo velmora: done 2", "has not done"},
      {"isDoneAndCrashes", whole + "echo velmora: done 1; kill -ABRT $$", "crashed (signal 6"},
      {"isDoneWithAStatus", whole + "echo velmora: done 1; exit 4", "exit status 4"},
      {"isDoneAndHangs", whole + "echo velmora: done 1; sleep 100", "hung"},
      {"lacksTheLastLine", whole, "ended before the session was done"},
      {"hasAnotherRegion", told + "echo velmora: region 3 0 0 100; sleep 100", "was not given"},
      {"hasItTwice", whole + "echo velmora: region 12 0 0 100; sleep 100", "is there twice"},
      {"hasItElsewhere", told + "echo velmora: region 12 5 0 100; sleep 100",
       "region 0 \"name\" (track 1, 00:00:00:00) otherwise: position 5 in place of 0"},
      {"hasItFromElsewhere", told + "echo velmora: region 12 0 3 100; sleep 100",
       "start 3 in place of 0"},
      {"hasItShorter", told + "echo velmora: region 12 0 0 99; sleep 100",
       "length 99 in place of 100"},
      {"renamesTheTrack", saved + "echo velmora: playlist 7 Track 9; sleep 100", "another name"},
      {"savesAnOlderSession",
       whole + "echo '<Session/>' > \"$d/made.ardour\"; echo velmora: done 1",
       "0 of 1 regions; is the disk full?"},
      {"leavesATrackUnheard",
       whole + "sed -i 's:<Sources:<Routes><Route name=\"Track 1\"><PresentationInfo "
               "flags=\"AudioTrack\"/><IO "
               "direction=\"Output\"><Port/></IO>"
               "</Route></Routes><Sources:' \"$d/made.ardour\"; echo velmora: done 1",
       "plays Track 1 nowhere"},
      {"makesTheSourceWritable",
       whole + "sed -i 's/flags=\"\"/flags=\"Writable\"/' \"$d/made.ardour\"; echo velmora: done 1",
       "would be allowed to write"},
      {"losesAFile", whole + "rm '" + folder_.Path("one.wav") + "'; echo velmora: done 1",
       "one.wav is gone: No such file"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.rule);
    // A busy machine takes its time over the others.
    const milliseconds patience = row.cause == "hung" ? kPatience : std::chrono::seconds(60);
    ExpectNothingIsMade(MakeWith(row.commands + "\n", patience), row.cause);
  }
  MakeSource("one.wav", {24, 1}, 100);  // which the last row took away
  // The stand-in that does all that is asked of it shows that the rows fail for their own reasons.
  EXPECT_EQ(MakeWith(whole + "echo velmora: done 1\n").trouble, "");
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("made/made.ardour")));
}

TEST_F(StandIn, progressKeepsItAlive) {
  const std::string commands =
      "for i in 1 2 3 4 5 6 7 8; do echo velmora: step $i; sleep 0.3; done; echo velmora: failed "
      "late\n";
  ExpectNothingIsMade(MakeWith(commands, std::chrono::seconds(2)), "late");
}

TEST_F(StandIn, aHangEndsAllItsProcesses) {
  ExpectNothingIsMade(MakeWith(StartsChild() + "wait\n", kPatience), "hung");
  EXPECT_TRUE(EndsSoon(Child()));
}

TEST_F(StandIn, whatItLeavesRunningIsEnded) {
  ExpectNothingIsMade(MakeWith(StartsChild() + "exit 0\n"), "ended before");
  EXPECT_TRUE(EndsSoon(Child()));
}

TEST_F(StandIn, cancelEndsAllItsProcesses) {
  const auto begin = std::chrono::steady_clock::now();
  ExpectNothingIsMade(
      MakeWith(StartsChild() + "wait\n", std::chrono::seconds(60),
               [this](double) { return !std::filesystem::exists(folder_.Path("child")); }),
      "cancelled");
  EXPECT_TRUE(EndsSoon(Child()));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST_F(StandIn, ourOwnEndEndsAllItsProcesses) {
  const pid_t self = ::fork();
  ASSERT_GE(self, 0);
  if (self == 0) {
    // What is killed cannot tidy up: the test does.
    ::setenv("TMPDIR", folder_.Path().c_str(), 1);
    static_cast<void>(MakeWith(StartsChild() + "wait\n"));
    ::_exit(0);
  }
  const pid_t child = Child();
  ::kill(self, SIGKILL);
  ::waitpid(self, nullptr, 0);
  EXPECT_TRUE(EndsSoon(child));
}

TEST_F(StandIn, itsHomeIsItsOwnAndGoesWithIt) {
  const std::string commands =
      "test \"$(stat -c %a \"$HOME/../..\")\" = 700 || exit 1\n"
      "for folder in \"$HOME\" \"$XDG_CONFIG_HOME\" \"$XDG_DATA_HOME\" \"$XDG_CACHE_HOME\" "
      "\"$XDG_STATE_HOME\" \"$XDG_RUNTIME_DIR\" \"$LV2_PATH\" \"$LADSPA_PATH\" "
      "\"$LXVST_PATH\" \"$VST_PATH\"; do\n"
      "case $folder in '" +
      folder_.Path(".velmora-") +
      "'*) test -z \"$(ls -A \"$folder\")\" || exit 1;; *) exit 1;; esac\n"
      "done\n"
      "echo settings > \"$HOME/.left\"; echo velmora: failed apart\n";
  ExpectNothingIsMade(MakeWith(commands), "apart");
}

TEST_F(StandIn, itReachesNoNetwork) {
  const int server = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof place;
  auto* const address = reinterpret_cast<sockaddr*>(&place);
  ASSERT_EQ(::bind(server, address, size), 0);
  ASSERT_EQ(::listen(server, 8), 0);
  ASSERT_EQ(::getsockname(server, address, &size), 0);
  const std::string connect =
      "bash -c ': < /dev/tcp/127.0.0.1/" + std::to_string(ntohs(place.sin_port)) + "'";
  // What this program starts by itself gets there, before and after.
  EXPECT_EQ(std::system(connect.c_str()), 0);
  ExpectNothingIsMade(
      MakeWith(connect + " && echo velmora: failed reached; echo velmora: failed apart\n"),
      "apart");
  EXPECT_EQ(std::system(connect.c_str()), 0);
  ::close(server);
}

TEST_F(StandIn, aFolderThatAppearsMeanwhileStays) {
  const std::string made = folder_.Path("made");
  const std::string session =
      "d=$(sed -n 1s/^[0-9]*.//p $2); mkdir -p \"$d\"; mkdir '" + made +
      "'\n"
      "echo '<Session id-counter=\"9\" "
      "sample-rate=\"48000\"><Sources/><Regions/><Locations/><Playlists>"
      "<Playlist orig-track-id=\"7\"/></Playlists></Session>' > \"$d/made.ardour\"\n"
      "echo velmora: track 7; for i in $(seq $(sed -n 7p $2)); do echo velmora: time a$i; done\n"
      "echo velmora: saved; read answer; echo velmora: playlist 7 Track 1\n"
      "echo velmora: region 12 0 0 100; echo velmora: done 1\n";
  const host::TargetOutcome outcome = MakeWith(session);
  EXPECT_EQ(outcome.trouble, made + " has appeared meanwhile; it is not written over");
  EXPECT_TRUE(std::filesystem::is_empty(made));
}

}  // namespace
}  // namespace velmora::ardour
