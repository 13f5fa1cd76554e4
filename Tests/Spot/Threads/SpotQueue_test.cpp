#include "Spot/SpotQueue.h"

#include <array>
#include <new>

#include "SpotQueueSupport.h"

namespace velmora::test {
namespace {

constexpr int kCuts = 3;
/// What a plain run of three cuts reports: three passes, then the end.
const std::vector<std::int32_t> kAllReports = {1, 2, 3, 4, 5, 6, 7, 8, 9, -1};

class SpotQueueTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(model.LoadFile(WriteProject(folder, "a.adl", kCuts))); }

  std::shared_ptr<Worker> Request(SpotOptions options = PlainOptions()) {
    return Worker::Make(++workers, runs.Request(WorkOf(model), std::move(options)), host, loop,
                        calls);
  }
  std::shared_ptr<Worker> RequestAndStart(SpotOptions options = PlainOptions()) {
    std::shared_ptr<Worker> worker = Request(std::move(options));
    worker->Start();
    return worker;
  }
  /// A run whose worker stands inside its first message.
  std::shared_ptr<Worker> HeldInFirstMessage(SpotOptions options = PlainOptions()) {
    host.Hold();
    const int before = host.Sent();
    std::shared_ptr<Worker> worker = RequestAndStart(std::move(options));
    loop.RunUntil([&] { return host.Sent() > before; });
    return worker;
  }
  void RunUntilEnded(const std::shared_ptr<Worker>& worker) {
    loop.RunUntil([&] { return worker->Ended(); });
  }

  TemporaryFolder folder;
  ViewModel model;
  HoldingHost host;
  MainLoop loop;
  CallLog calls;
  int workers = 0;
  SpotQueue runs;
};

TEST_F(SpotQueueTest, reportsEachStepAndThenTheEnd) {
  const auto worker = RequestAndStart();
  EXPECT_FALSE(runs.Idle());
  RunUntilEnded(worker);
  EXPECT_TRUE(worker->Join());
  EXPECT_EQ(worker->shown, kAllReports);
  EXPECT_EQ(worker->run->Progress(), -1);
  EXPECT_FALSE(worker->run->Aborted());
  EXPECT_EQ(host.Sent(), kCuts);
  EXPECT_TRUE(runs.Idle());
}

/// Has no memory for one of its calls.
class ForgetfulFollower : public SpotFollower {
 public:
  explicit ForgetfulFollower(bool atTheBegin) : atTheBegin_(atTheBegin) {}
  void Began(const SpotProject& /*project*/, const SpotOptions& /*options*/) override {
    if (atTheBegin_) throw std::bad_alloc();
  }
  void Ended(const SpotOptions& /*options*/, bool /*finished*/) override {
    if (!atTheBegin_) throw std::bad_alloc();
  }

 private:
  const bool atTheBegin_;
};

TEST_F(SpotQueueTest, aFollowerWithoutMemoryDoesNotEndTheHost) {
  for (const bool atTheBegin : {false, true}) {
    ForgetfulFollower follower(atTheBegin);
    const int before = host.Sent();
    const auto worker = Request();
    worker->follower = &follower;
    worker->Start();
    RunUntilEnded(worker);
    EXPECT_EQ(worker->Join(), !atTheBegin);
    EXPECT_EQ(worker->shown, atTheBegin ? std::vector<std::int32_t>{-1} : kAllReports);
    EXPECT_EQ(host.Sent() - before, atTheBegin ? 0 : kCuts);
    EXPECT_EQ(worker->Lines(), std::vector<std::string>{"out of memory"});
  }
}

TEST_F(SpotQueueTest, workerStandsStillUntilItsReportIsDelivered) {
  const auto worker = RequestAndStart();
  loop.WaitForCall();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(worker->Posts(), 1);
  EXPECT_EQ(worker->run->Progress(), 1);
  EXPECT_TRUE(loop.RunOne());
  loop.WaitForCall();
  EXPECT_EQ(worker->shown, std::vector<std::int32_t>{1});
  EXPECT_EQ(worker->Posts(), 2);
  RunUntilEnded(worker);
}

TEST_F(SpotQueueTest, nothingIsShownWhenNoReportWaits) {
  const auto worker = Request();
  int shows = 0;
  worker->run->DeliverReport([&](std::int32_t) { ++shows; });
  EXPECT_EQ(shows, 0);
  worker->Start();
  RunUntilEnded(worker);
  worker->run->DeliverReport([&](std::int32_t) { ++shows; });
  EXPECT_EQ(shows, 0);
}

TEST_F(SpotQueueTest, abortStopsAtTheNextEvent) {
  const auto worker = HeldInFirstMessage();
  worker->run->Abort();
  EXPECT_TRUE(worker->run->Aborted());
  EXPECT_EQ(worker->run->Progress(), -1);
  const std::vector<std::int32_t> shownBefore = worker->shown;
  host.Release();
  EXPECT_FALSE(worker->Join());  // with nobody to deliver reports
  EXPECT_EQ(host.Sent(), 1);
  EXPECT_EQ(worker->run->Progress(), -1);
  while (loop.RunOne()) {
  }
  EXPECT_EQ(worker->shown, shownBefore);
  EXPECT_TRUE(runs.Idle());
}

TEST_F(SpotQueueTest, abortReleasesAWorkerThatWaitsForItsReport) {
  const auto worker = RequestAndStart();
  loop.WaitForCall();
  worker->run->Abort();
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(worker->Posts(), 1);  // none after the abort
  EXPECT_EQ(loop.Waiting(), 1U);
  EXPECT_TRUE(loop.RunOne());  // comes late and shows nothing
  EXPECT_TRUE(worker->shown.empty());
}

/// The steps after which a plain run of three cuts looks at its abort no more.
constexpr std::int32_t kStepsOfLastLook = 6;

TEST_F(SpotQueueTest, abortAfterTheLastLookEndsAsUsual) {
  for (const std::int32_t steps : {7, 8, 9, -1}) {
    SCOPED_TRACE(steps);
    const auto worker = RequestAndStart();
    loop.RunUntil([&] { return worker->Posted() == steps && loop.Waiting() == 1; });
    const std::vector<std::int32_t> shownBefore = worker->shown;
    worker->run->Abort();
    EXPECT_TRUE(worker->Join());  // nobody needs to deliver anything for it
    EXPECT_TRUE(runs.Idle());
    while (loop.RunOne()) {
    }
    std::vector<std::int32_t> expected = shownBefore;
    expected.push_back(-1);
    EXPECT_EQ(worker->shown, expected) << "no steps any more, and the end once";
    EXPECT_EQ(worker->run->Progress(), -1);
    for (const AES31Event& event : model.project->events) EXPECT_EQ(event.renderedFile, nullptr);
  }
}

TEST_F(SpotQueueTest, abortAfterTheLastLookStaysOffTheDisplayOfALaterRun) {
  for (const std::int32_t steps : {7, 9, -1}) {
    SCOPED_TRACE(steps);
    const auto first = RequestAndStart();
    loop.RunUntil([&] { return first->Posted() == steps && loop.Waiting() == 1; });
    const std::vector<std::int32_t> shownBefore = first->shown;
    first->run->Abort();
    const auto second = Request();
    EXPECT_TRUE(first->Join());
    second->Start();
    RunUntilEnded(second);
    EXPECT_TRUE(second->Join());
    EXPECT_EQ(first->shown, shownBefore);
    EXPECT_EQ(second->shown, kAllReports);
  }
}

TEST_F(SpotQueueTest, abortBeforeTheLastLookShowsNoEnd) {
  const auto worker = RequestAndStart();
  loop.RunUntil([&] { return worker->Posted() == kStepsOfLastLook && loop.Waiting() == 1; });
  worker->run->Abort();
  EXPECT_FALSE(worker->Join());
  while (loop.RunOne()) {
  }
  EXPECT_EQ(worker->shown.back(), kStepsOfLastLook - 1);
}

TEST_F(SpotQueueTest, endOfALateAbortIsNotShownAfterAClose) {
  const auto worker = RequestAndStart();
  loop.RunUntil([&] { return worker->Posted() == 9 && loop.Waiting() == 1; });
  worker->run->Abort();
  EXPECT_TRUE(worker->Join());
  runs.Close();
  while (loop.RunOne()) {
  }
  EXPECT_EQ(worker->shown.back(), 8);
}

TEST_F(SpotQueueTest, closeIsNotHeldUpByTheLastReport) {
  const auto worker = RequestAndStart();
  loop.RunUntil([&] { return worker->Posted() == -1 && loop.Waiting() == 1; });
  runs.Close();  // on the thread that would have to deliver it
  EXPECT_FALSE(worker->Join());
  while (loop.RunOne()) {
  }
  EXPECT_EQ(worker->shown.back(), 9);
}

TEST_F(SpotQueueTest, aReportMayAbortItsOwnRun) {
  const auto worker = RequestAndStart();
  loop.WaitForCall();
  worker->run->DeliverReport([&](std::int32_t) { worker->run->Abort(); });
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(worker->Posts(), 1);
}

TEST_F(SpotQueueTest, abortBeforeTheThreadComesEndsWithoutWork) {
  const auto worker = Request();
  worker->run->Abort();
  worker->Start();
  EXPECT_FALSE(worker->Join());
  EXPECT_TRUE(calls.Order().empty());
  EXPECT_TRUE(runs.Idle());
}

TEST_F(SpotQueueTest, secondRunStartsItsWorkWhenTheAbortedOneHasEnded) {
  const auto first = HeldInFirstMessage();
  first->run->Abort();
  const auto second = RequestAndStart();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(first->Ended());
  EXPECT_EQ(second->Posts(), 0);
  EXPECT_EQ(calls.Order(), std::vector<int>{1});
  host.Release();
  RunUntilEnded(second);
  EXPECT_FALSE(first->Join());
  EXPECT_TRUE(second->Join());
  EXPECT_EQ(second->shown, kAllReports);
  EXPECT_EQ(calls.Order(), (std::vector<int>{1, 2}));
  EXPECT_EQ(host.Sent(), 1 + kCuts);
}

TEST_F(SpotQueueTest, runsWorkInTheOrderOfTheirRequests) {
  const auto first = Request();
  const auto second = RequestAndStart();  // its thread comes first
  std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_TRUE(calls.Order().empty());
  first->Start();
  RunUntilEnded(second);
  EXPECT_TRUE(first->Join());
  EXPECT_TRUE(second->Join());
  EXPECT_EQ(calls.Order(), (std::vector<int>{1, 2}));
}

TEST_F(SpotQueueTest, eachRunObeysOnlyItsOwnAbort) {
  const auto first = HeldInFirstMessage();
  const auto second = RequestAndStart();
  second->run->Abort();
  EXPECT_FALSE(second->Join());  // while the first still works
  EXPECT_EQ(calls.Order(), std::vector<int>{1});
  EXPECT_FALSE(first->run->Aborted());
  const auto third = RequestAndStart();
  EXPECT_FALSE(third->run->Aborted());
  host.Release();
  RunUntilEnded(third);
  EXPECT_TRUE(first->Join());
  EXPECT_TRUE(third->Join());
  EXPECT_EQ(first->shown, kAllReports);
  EXPECT_EQ(third->shown, kAllReports);
  EXPECT_EQ(calls.Order(), (std::vector<int>{1, 3}));
}

TEST_F(SpotQueueTest, abortAndSpotAtOnceTenTimesInARow) {
  std::vector<std::shared_ptr<Worker>> all{HeldInFirstMessage()};
  for (int i = 0; i < 10; ++i) {
    all.back()->run->Abort();
    all.push_back(RequestAndStart());
  }
  EXPECT_EQ(host.Sent(), 1);
  host.Release();
  RunUntilEnded(all.back());
  for (std::size_t i = 0; i + 1 < all.size(); ++i) EXPECT_FALSE(all[i]->Join()) << i;
  EXPECT_TRUE(all.back()->Join());
  EXPECT_EQ(all.back()->shown, kAllReports);
  EXPECT_EQ(calls.Order(), (std::vector<int>{1, 11}));
  EXPECT_EQ(host.Sent(), 1 + kCuts);
  EXPECT_TRUE(runs.Idle());
}

TEST_F(SpotQueueTest, abortAtAnyMomentLeavesOneWorkerAtATime) {
  std::vector<std::shared_ptr<Worker>> all;
  for (std::size_t steps = 0; steps < 10; ++steps) {
    const auto worker = RequestAndStart();
    loop.RunUntil([&] { return worker->shown.size() >= steps; });
    worker->run->Abort();
    all.push_back(worker);
  }
  all.push_back(RequestAndStart());
  RunUntilEnded(all.back());
  for (std::size_t i = 0; i + 1 < all.size(); ++i) {
    const bool completed = all[i]->Join();
    // Once the last step with a look is shown, the worker may have looked already.
    if (i != kStepsOfLastLook) {
      EXPECT_EQ(completed, i > kStepsOfLastLook) << i;
    }
    EXPECT_EQ(all[i]->shown.size(), i);
  }
  EXPECT_TRUE(all.back()->Join());
  const std::vector<int> order = calls.Order();
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
  EXPECT_EQ(order.back(), 11);
}

TEST_F(SpotQueueTest, eachRunHasItsOwnOptions) {
  const auto first = HeldInFirstMessage();
  SpotOptions options = PlainOptions();
  options.positionMode = PositionWithOffset;
  options.offsetSamples = 7;
  const auto second = RequestAndStart(options);
  options.offsetSamples = 1000;
  host.Release();
  RunUntilEnded(second);
  constexpr long kHour = 3600L * 48000;
  EXPECT_EQ(host.Positions(), (std::vector<long>{kHour, kHour + 48000, kHour + 96000, kHour + 7,
                                                 kHour + 48000 + 7, kHour + 96000 + 7}));
}

TEST_F(SpotQueueTest, loadInTheGapKeepsTheOldProjectUntilItsWorkerHasEnded) {
  const std::weak_ptr<AES31Project> old = model.project;
  const auto first = HeldInFirstMessage();
  first->run->Abort();
  ASSERT_TRUE(model.LoadFile(WriteProject(folder, "b.adl", 2)));
  EXPECT_NE(model.project, old.lock());
  const auto second = RequestAndStart();
  EXPECT_FALSE(old.expired());
  host.Release();
  EXPECT_FALSE(first->Join());
  EXPECT_TRUE(old.expired());
  RunUntilEnded(second);
  EXPECT_TRUE(second->Join());
  EXPECT_EQ(second->shown, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, -1}));
  EXPECT_EQ(host.Sent(), 1 + 2);
}

TEST_F(SpotQueueTest, oldProjectIsGoneBeforeTheNextRunWorks) {
  const std::weak_ptr<AES31Project> old = model.project;
  const auto first = HeldInFirstMessage();
  first->run->Abort();
  ASSERT_TRUE(model.LoadFile(WriteProject(folder, "b.adl", 2)));
  const auto second = RequestAndStart();
  host.Release();
  loop.WaitForCall();  // the second run's first report
  EXPECT_EQ(second->Posts(), 1);
  EXPECT_TRUE(old.expired());
  RunUntilEnded(second);
}

TEST_F(SpotQueueTest, failedLoadInTheGapKeepsTheOldProjectToo) {
  const std::weak_ptr<AES31Project> old = model.project;
  const auto worker = HeldInFirstMessage();
  worker->run->Abort();
  EXPECT_FALSE(model.LoadFile(folder.Path("none.adl")));
  EXPECT_FALSE(old.expired());
  host.Release();
  EXPECT_FALSE(worker->Join());
  EXPECT_TRUE(old.expired());
}

TEST_F(SpotQueueTest, filesRenderedByAnAbortedRunGoWithItsProject) {
  SpotOptions options = PlainOptions();
  options.bitDepth = 24;
  options.depthSuffix = "_24bit";
  const std::weak_ptr<AES31Project> old = model.project;
  const auto worker = HeldInFirstMessage(options);  // after the depth pass
  worker->run->Abort();
  ASSERT_TRUE(model.LoadFile(folder.Path("a.adl")));
  host.Release();
  EXPECT_FALSE(worker->Join());
  EXPECT_TRUE(old.expired());  // what it held is the leak checker's to see
  EXPECT_FALSE(TemporaryFolder::Read(folder.Path("voice_24bit.wav")).empty());
}

TEST_F(SpotQueueTest, waitingRunKeepsItsProjectOnlyUntilItIsAborted) {
  const auto first = HeldInFirstMessage();
  ASSERT_TRUE(model.LoadFile(WriteProject(folder, "b.adl", 2)));
  const std::weak_ptr<AES31Project> ofWaiting = model.project;
  const auto second = RequestAndStart();
  ASSERT_TRUE(model.LoadFile(folder.Path("a.adl")));
  EXPECT_FALSE(ofWaiting.expired());
  second->run->Abort();
  EXPECT_FALSE(second->Join());
  EXPECT_TRUE(ofWaiting.expired());
  host.Release();
  RunUntilEnded(first);
}

TEST_F(SpotQueueTest, boxesMayChangeOnceTheRunIsAborted) {
  // The worker is on its way through the boxes of all events when the abort comes, which it sees at
  // its next event only.
  ASSERT_TRUE(model.LoadFile(WriteProject(folder, "b.adl", 50)));
  for (const std::size_t steps : {0U, 1U, 5U, 20U}) {
    const auto worker = RequestAndStart();
    loop.RunUntil([&] { return worker->shown.size() >= steps; });
    worker->run->Abort();
    for (std::int32_t row = 0; row < model.numEvents; ++row) model.SetEventBox(row, row % 2 == 0);
    model.SetTrackBox(0, false);
    model.SetTrackBox(0, true);
    EXPECT_FALSE(worker->Join());
  }
}

TEST_F(SpotQueueTest, boxesMayChangeWhileTheLastEventIsStillWorkedOn) {
  const auto worker = HeldInFirstMessage();
  worker->run->Abort();
  std::thread release([&] { host.Release(); });
  for (std::int32_t row = 0; row < kCuts; ++row) model.SetEventBox(row, false);
  model.SetTrackBox(0, false);
  release.join();
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(host.Sent(), 1);
}

TEST_F(SpotQueueTest, runWithoutAProjectMakesNoCall) {
  const auto worker = Worker::Make(1, runs.Request({}, PlainOptions()), host, loop, calls);
  worker->Start();
  worker->Join();
  EXPECT_TRUE(calls.Order().empty());
  EXPECT_TRUE(runs.Idle());
}

TEST_F(SpotQueueTest, droppedRunDoesNotHoldTheNextOne) {
  {
    const auto neverStarted = runs.Request(WorkOf(model), PlainOptions());
    EXPECT_FALSE(runs.Idle());
  }
  EXPECT_TRUE(runs.Idle());
  const auto worker = RequestAndStart();
  RunUntilEnded(worker);
  EXPECT_TRUE(worker->Join());
}

TEST_F(SpotQueueTest, runDroppedWhileTheNextOneWaitsLetsItWork) {
  auto neverStarted = runs.Request(WorkOf(model), PlainOptions());
  const auto worker = RequestAndStart();
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  neverStarted.reset();
  RunUntilEnded(worker);
  EXPECT_TRUE(worker->Join());
}

TEST_F(SpotQueueTest, closeWithoutRunsReturns) {
  runs.Close();
  EXPECT_TRUE(runs.Idle());
}

TEST_F(SpotQueueTest, closeWaitsForWorkersThatWaitForTheMainThread) {
  const std::weak_ptr<AES31Project> project = model.project;
  const auto first = RequestAndStart();
  loop.WaitForCall();
  const auto second = RequestAndStart();
  const auto third = RequestAndStart();
  model.project.reset();
  runs.Close();  // on the thread that would have to deliver the reports
  EXPECT_TRUE(runs.Idle());
  EXPECT_TRUE(project.expired());
  EXPECT_FALSE(first->Join());
  EXPECT_FALSE(second->Join());
  EXPECT_FALSE(third->Join());
  while (loop.RunOne()) {
  }
  EXPECT_TRUE(first->shown.empty());
  EXPECT_EQ(calls.Order(), std::vector<int>{1});
}

TEST_F(SpotQueueTest, closeWaitsForAWorkerInsideAMessage) {
  const auto worker = HeldInFirstMessage();
  std::atomic<bool> released = false;
  std::thread release([&] {
    while (!worker->run->Aborted()) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    released = true;
    host.Release();
  });
  runs.Close();
  EXPECT_TRUE(released);
  release.join();
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(host.Sent(), 1);
}

TEST_F(SpotQueueTest, closeDoesNotWaitForThreadsThatHaveNotCome) {
  const std::weak_ptr<AES31Project> project = model.project;
  const auto first = HeldInFirstMessage();
  const auto late = Request();
  const auto never = Request();
  model.project.reset();
  std::thread release([&] {
    while (!first->run->Aborted()) std::this_thread::yield();
    host.Release();
  });
  runs.Close();
  release.join();
  EXPECT_TRUE(runs.Idle());
  EXPECT_TRUE(project.expired()) << "none of them holds it any more";
  EXPECT_FALSE(first->Join());
  late->Start();  // comes after all
  EXPECT_FALSE(late->Join());
  EXPECT_EQ(calls.Order(), std::vector<int>{1});
}

TEST_F(SpotQueueTest, closeAndAThreadThatComesMeanwhile) {
  for (int i = 0; i < 50; ++i) {
    const auto worker = RequestAndStart();
    runs.Close();
    EXPECT_TRUE(runs.Idle());
    EXPECT_FALSE(worker->Join());
  }
}

TEST_F(SpotQueueTest, closeGivesUpTheMessagesOfAHostThatRefuses) {
  // Three pieces for the cut, each with up to 80 attempts and no look at the abort in between.
  const std::string fade = "(Infade) 00.00.00,00/0100 _ 0 0 0 (Outfade) 00.00.00,00/0100 _ 0 0 0";
  ASSERT_TRUE(model.LoadFile(WriteProject(folder, "fades.adl", 1, fade)));
  SpotOptions options = PlainOptions();
  options.doFades = 1;
  const auto worker = RequestAndStart(options);
  loop.RunUntil([&] { return worker->Posted() == 4 && loop.Waiting() == 1; });
  EXPECT_EQ(host.Sent(), 1);  // the fade pass begins
  host.Answer(-1712);
  host.Hold();
  ASSERT_TRUE(loop.RunOne());
  host.WaitForSent(2);
  std::thread release([&] {
    while (!worker->run->Aborted()) std::this_thread::yield();
    host.Release();
  });
  runs.Close();
  release.join();
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(host.Sent(), 2);
  EXPECT_TRUE(worker->Lines().empty());
}

TEST_F(SpotQueueTest, abortAloneLeavesTheAttemptsOfAPieceTheirCourse) {
  const std::string fade = "(Infade) 00.00.00,00/0100 _ 0 0 0";
  ASSERT_TRUE(model.LoadFile(WriteProject(folder, "fades.adl", 2, fade)));
  SpotOptions options = PlainOptions();
  options.doFades = 1;
  const auto worker = RequestAndStart(options);
  loop.RunUntil([&] { return worker->Posted() == 7 && loop.Waiting() == 1; });
  EXPECT_EQ(host.Sent(), 2);
  host.Answer(-1712);
  host.Hold();
  ASSERT_TRUE(loop.RunOne());
  host.WaitForSent(3);
  worker->run->Abort();
  host.Release();
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(host.Sent(), 2 + 80);  // one piece, and none of the second cut
}

TEST_F(SpotQueueTest, logLinesOfTheWorkerAreHandedOn) {
  host.Answer(-600);
  const auto worker = HeldInFirstMessage();
  host.Release();
  loop.RunUntil([&] { return worker->Lines().size() >= 2; });
  worker->run->Abort();
  EXPECT_FALSE(worker->Join());
  EXPECT_EQ(worker->Lines()[0].find("spot 5555555555555555  ttt=-600"), 0U);
}

TEST_F(SpotQueueTest, newRunsMayFollowAClose) {
  const auto first = RequestAndStart();
  runs.Close();
  EXPECT_FALSE(first->Join());
  const auto second = RequestAndStart();
  RunUntilEnded(second);
  EXPECT_TRUE(second->Join());
  EXPECT_EQ(second->shown, kAllReports);
}

TEST_F(SpotQueueTest, managerAndViewMayGoWhileTheThreadLeaves) {
  for (int i = 0; i < 20; ++i) {
    auto view = std::make_unique<ViewModel>();
    ASSERT_TRUE(view->LoadFile(folder.Path("a.adl")));
    const std::weak_ptr<AES31Project> project = view->project;
    auto manager = std::make_unique<SpotQueue>();
    std::array<std::shared_ptr<Worker>, 3> threads;
    for (auto& thread : threads) {
      thread = Worker::Make(i, manager->Request(WorkOf(*view), PlainOptions()), host, loop, calls);
      thread->Start();
    }
    view.reset();
    manager.reset();  // closes
    EXPECT_TRUE(project.expired());
  }
}

}  // namespace
}  // namespace velmora::test
