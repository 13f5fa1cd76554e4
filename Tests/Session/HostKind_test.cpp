#include "Session/HostKind.h"

#include <gtest/gtest.h>

namespace velmora::host {
namespace {

std::unique_ptr<SessionHost> ConnectNothing(Session& /*session*/) {
  return nullptr;
}
ClaimedTarget ClaimNothing(const std::string& /*path*/, const TargetChoices& /*choices*/) {
  return {};
}

constexpr TargetKind kReel = {
    "reel", nullptr,     "REEL", ".reel", "Reel", "Tape", TargetKind::Use::Regions,
    false,  ClaimNothing};
constexpr TargetKind kPress = {
    "press", nullptr, "DIR", "", "Press", "Discs", TargetKind::Use::Regions, false, ClaimNothing};
constexpr HostKind kTape = {"tape", &kReel, TargetUse::Optional, "Plays back.", ConnectNothing};
constexpr HostKind kDisc = {"disc", &kPress, TargetUse::Required, "Engraves", ConnectNothing};
constexpr const HostKind* kHosts[] = {&kTape, &kDisc};

struct GoodRow {
  const char* text;
  const HostKind* kind;
  const char* target;
};

TEST(ParseHost, findsTheHostAndItsTarget) {
  for (const GoodRow& row :
       {GoodRow{"tape", &kTape, ""}, GoodRow{"tape:a.reel", &kTape, "a.reel"},
        GoodRow{"disc:/a/b", &kDisc, "/a/b"}, GoodRow{"tape:with:colons", &kTape, "with:colons"},
        GoodRow{"tape: ", &kTape, " "}}) {
    HostChoice choice;
    EXPECT_EQ(ParseHost(kHosts, row.text, choice), "") << row.text;
    EXPECT_EQ(choice.kind, row.kind) << row.text;
    EXPECT_EQ(choice.target, row.target) << row.text;
  }
}

struct BadRow {
  const char* text;
  const char* complaint;
};

TEST(ParseHost, saysWhatIsWrong) {
  for (const BadRow& row : {
           BadRow{"reel", "there is no host 'reel'; hosts: tape, disc"},
           BadRow{"", "there is no host ''; hosts: tape, disc"},
           BadRow{":a", "there is no host ''; hosts: tape, disc"},
           BadRow{"Tape", "there is no host 'Tape'; hosts: tape, disc"},
           BadRow{"tape:", "no target stands after tape; write tape:REEL"},
           BadRow{"disc", "no target stands after disc; write disc:DIR"},
           BadRow{"disc:", "no target stands after disc; write disc:DIR"},
       }) {
    HostChoice choice;
    EXPECT_EQ(ParseHost(kHosts, row.text, choice), row.complaint) << row.text;
  }
}

TEST(HostForm, putsBracketsAroundATargetThatCanBeLeftOut) {
  EXPECT_EQ(HostForm(kTape), "tape[:REEL]");
  EXPECT_EQ(HostForm(kDisc), "disc:DIR");
}

}  // namespace
}  // namespace velmora::host
