// Spots are requested, aborted, requested again and closed, projects are loaded in between, boxes
// change and tables draw, while hosts refuse, take their time or hold on to a message.

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Model/Tables.h"
#include "Model/ViewModel.h"
#include "Spot/SpotQueue.h"
#include "Spot/SpotRequest.h"
#include "Spot/Threads/SpotQueueSupport.h"
#include "Storms/Storm.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

/// How a host answers; changed by the main thread at any time.
class Moods {
 public:
  /// Every n-th message is refused; 0 for none.
  std::atomic<int> refused = 0;
  std::atomic<int> slowMicroseconds = 0;

  void Hold() { held_ = true; }
  void Release() { held_ = false; }
  bool Refuses() {
    while (held_) GiveWay();
    if (slowMicroseconds > 0) {
      std::this_thread::sleep_for(std::chrono::microseconds(slowMicroseconds));
    }
    const int each = refused;
    return each > 0 && ++messages_ % each == 0;
  }

 private:
  std::atomic<bool> held_ = false;
  std::atomic<int> messages_ = 0;
};

/// Which worker is at work: one at a time, in the order of the requests.
class Turns {
 public:
  void Call(int run) {
    if (latest_.exchange(run) > run) ++breaches_;
  }
  void Begin() {
    if (working_++ != 0) ++breaches_;
  }
  void End() { --working_; }
  int Breaches() const { return breaches_; }

 private:
  std::atomic<int> latest_ = 0;
  std::atomic<int> working_ = 0;
  std::atomic<int> breaches_ = 0;
};

/// One spot with its thread. What it notes is the worker's until Join.
class Run : public SpotDisplay,
            public SpotFollower,
            public RegionHost,
            public std::enable_shared_from_this<Run> {
 public:
  Run(int number, std::shared_ptr<SpotTask> itsTask, std::weak_ptr<AES31Project> itsProject,
      Moods& moods, Turns& turns, MainLoop& loop)
      : task(std::move(itsTask)),
        project(std::move(itsProject)),
        number_(number),
        moods_(moods),
        turns_(turns),
        loop_(loop) {}

  void Start(unsigned seed) {
    thread_ = std::thread([this, seed] {
      Dice(seed).Dawdle();
      completed = task->Execute(*this, *this, this);
      over_ = true;
    });
  }
  bool Started() const { return thread_.joinable(); }
  bool Over() const { return over_; }
  void Join() {
    if (thread_.joinable()) thread_.join();
  }

  void PostReport(std::int32_t progress) override {
    Note();
    loop_.Post([self = shared_from_this(), progress] {
      self->task->DeliverReport([&](std::int32_t told) {
        self->shown.push_back(told);
        if (told != progress) ++self->wrongReports;
      });
    });
  }
  void Log(const std::string& /*line*/) override { Note(); }
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    Note();
    alias.assign(path, path + std::strlen(path));
    return 0;
  }
  std::int32_t Send(const RegionMessage& /*message*/) override {
    Note();
    const std::int32_t status = moods_.Refuses() ? -1712 : 0;
    Note();
    return status;
  }

  void Began(const SpotProject& /*project*/, const SpotOptions& /*options*/) override {
    Note();
    turns_.Begin();
    ++began;
  }
  void Ended(const SpotOptions& /*options*/, bool finished) override {
    Note();
    ++ended;
    toldFinished = finished;
    turns_.End();
  }
  void FileMade(FilePass /*pass*/, std::int32_t /*event*/, const std::string& path,
                std::int32_t status) override {
    Note();
    files.emplace_back(path, status);
  }
  void RegionTried(std::int32_t /*event*/, RegionPiece piece, std::int32_t /*attempt*/,
                   std::int32_t status) override {
    Note();
    if (status == 0) ++done[piece];
  }
  void RegionGivenUp(std::int32_t /*event*/, RegionPiece piece, std::int32_t /*status*/) override {
    Note();
    ++done[piece];
  }

  const std::shared_ptr<SpotTask> task;
  const std::weak_ptr<AES31Project> project;

  // For the worker until Join:
  bool completed = false;
  int began = 0;
  int ended = 0;
  bool toldFinished = false;
  bool projectGone = false;
  std::vector<std::pair<std::string, std::int32_t>> files;
  std::map<RegionPiece, int> done;  ///< placed, or given up after its last attempt

  // For the main thread:
  std::vector<std::int32_t> shown;
  int wrongReports = 0;
  int liveCuts = 0;
  int fadesOfEach = 0;  ///< pieces of each kind for a cut
  std::int32_t steps = 0;
  bool aborted = false;
  bool closed = false;
  bool boxesChanged = false;  ///< after the abort, and before it was over

 private:
  void Note() {
    turns_.Call(number_);
    if (hasProject_ && project.expired()) projectGone = true;
  }

  const int number_;
  const bool hasProject_ = !project.expired();
  Moods& moods_;
  Turns& turns_;
  MainLoop& loop_;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

/// Reads from beside what may be read from any thread.
class Onlooker {
 public:
  Onlooker() : thread_([this] { Look(); }) {}
  ~Onlooker() {
    gone_ = true;
    thread_.join();
  }
  Onlooker(const Onlooker&) = delete;
  Onlooker& operator=(const Onlooker&) = delete;

  void Watch(const std::shared_ptr<SpotTask>& task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(task);
  }
  void Forget() {
    const std::lock_guard lock(mutex_);
    tasks_.clear();
  }
  int Contradictions() const { return contradictions_; }

 private:
  void Look() {
    while (!gone_) {
      {
        const std::lock_guard lock(mutex_);
        for (const auto& weak : tasks_) {
          const std::shared_ptr<SpotTask> task = weak.lock();
          if (!task) continue;
          const bool aborted = task->Aborted();
          if (task->Progress() < -1) ++contradictions_;
          if (aborted && !task->Aborted()) ++contradictions_;
        }
      }
      std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
  }

  std::mutex mutex_;
  std::vector<std::weak_ptr<SpotTask>> tasks_;
  std::atomic<bool> gone_ = false;
  std::atomic<int> contradictions_ = 0;
  std::thread thread_;
};

constexpr const char* kFades =
    "(Infade) 00.00.00,00/0100 _ 0 0 0 (Outfade) 00.00.00,00/0100 _ 0 0 0 (Gain) 1 -6.0";

class SpotRound {
 public:
  SpotRound(Dice& dice, Onlooker& onlooker) : dice_(dice), onlooker_(onlooker) {}

  void Run() {
    WriteProject(folder_, "plain.adl", 3);
    WriteProject(folder_, "fades.adl", 2, kFades);
    WriteProject(folder_, "more.adl", 8);
    std::filesystem::create_directory(folder_.Path("copies"));
    given_ = FilesThere();
    voice_ = TemporaryFolder::Read(folder_.Path("voice.wav"));
    Load();
    for (int steps = dice_.Between(4, 18); steps > 0; --steps) {
      Act();
      dice_.Dawdle();
    }
    End();
    onlooker_.Forget();
    while (loop_.RunOne()) {
    }
    CheckAll();
  }

 private:
  void Act() {
    switch (dice_.Throw(12)) {
      case 0:
      case 1:
      case 2:
        if (runs_.size() < 6) Request();
        break;
      case 3:
      case 4:
        AbortOne();
        break;
      case 5:
        Load();
        break;
      case 6:
        ChangeBoxes();
        break;
      case 7:
        ChangeMood();
        break;
      case 8:
        Draw();
        break;
      case 9:
        if (dice_.OneIn(3)) Close();
        break;
      default:
        for (int calls = dice_.Throw(8); calls > 0 && loop_.RunOne(); --calls) dice_.Dawdle();
        break;
    }
  }

  void Load() {
    static constexpr const char* kNames[] = {"plain.adl", "fades.adl", "more.adl", "none.adl"};
    const int which = dice_.Throw(dice_.OneIn(5) ? 4 : 3);
    EXPECT_EQ(model_.LoadFile(folder_.Path(kNames[which])), which < 3);
    fades_ = which == 1 ? 1 : 0;
    if (model_.project) projects_.emplace_back(model_.project);
  }

  SpotOptions Options() {
    SpotOptions options = PlainOptions();
    options.positionMode = dice_.Throw(4);
    options.doFades = dice_.Throw(2);
    options.doGain = dice_.Throw(2);
    if (dice_.OneIn(2)) {
      options.bitDepth = 24;
      options.depthSuffix = "_24bit";
    }
    options.copySource = dice_.OneIn(3) ? 1 : 0;
    if (options.copySource != 0) options.copyFolder = folder_.Path("copies");
    return options;
  }

  void Request() {
    const SpotOptions options = Options();
    (void)SpotWarnings(model_.firstEvent, 48000, options.frameRate);
    auto run = std::make_shared<test::Run>(static_cast<int>(runs_.size()) + 1,
                                           queue_->Request(WorkOf(model_), options), model_.project,
                                           moods_, turns_, loop_);
    run->fadesOfEach = options.doFades != 0 ? fades_ : 0;
    if (model_.project) {
      run->steps = SpotSteps(model_.numEvents, options.doFades, options.doGain);
      for (const AES31Event& event : model_.project->events) run->liveCuts += IsLive(event) ? 1 : 0;
    }
    runs_.push_back(run);
    onlooker_.Watch(run->task);
    if (!dice_.OneIn(8)) run->Start(dice_.Seed());
  }

  void AbortOne() {
    if (runs_.empty()) return;
    const auto run =
        dice_.OneIn(3)
            ? runs_[static_cast<std::size_t>(dice_.Throw(static_cast<int>(runs_.size())))]
            : runs_.back();
    run->aborted = true;
    run->task->Abort();
    EXPECT_TRUE(run->task->Aborted());
    EXPECT_EQ(run->task->Progress(), -1);
  }

  /// As the button has it: boxes are free once no run of this project goes on unaborted.
  void ChangeBoxes() {
    const auto ours = [this](const auto& run) {
      return !run->Over() && model_.project && run->project.lock() == model_.project;
    };
    for (const auto& run : runs_) {
      if (ours(run) && !run->aborted) return;
    }
    for (const auto& run : runs_) {
      if (ours(run)) run->boxesChanged = true;
    }
    const std::int32_t off = dice_.Throw(8);
    for (std::int32_t row = 0; row < model_.enableEvents; ++row) {
      model_.SetEventBox(row, row != off);
    }
    if (dice_.OneIn(4)) {
      model_.SetTrackBox(0, false);
      model_.SetTrackBox(0, true);
    }
  }

  void ChangeMood() {
    static constexpr int kRefusals[] = {0, 0, 2, 3, 5};
    moods_.refused = dice_.OneIn(20) ? 1 : kRefusals[dice_.Throw(5)];
    moods_.slowMicroseconds = dice_.OneIn(3) ? dice_.Throw(200) : 0;
    if (dice_.OneIn(4)) {
      moods_.Hold();
    } else {
      moods_.Release();
    }
  }

  /// The tables are drawn while workers work.
  void Draw() const {
    for (const Table& table : Tables()) {
      for (std::int32_t row = 0; row < std::min(table.rows(model_), 8); ++row) {
        for (const TableColumn& column : table.columns) (void)column.value(model_, row);
      }
    }
  }

  void Close() {
    std::thread later;
    if (dice_.OneIn(2)) {
      later = std::thread([this, own = Dice(dice_.Seed())]() mutable {
        own.Dawdle();
        moods_.Release();
      });
    } else {
      moods_.Release();
    }
    for (const auto& run : runs_) run->closed = true;
    queue_->Close();
    EXPECT_TRUE(queue_->Idle());
    if (later.joinable()) later.join();
  }

  void End() {
    for (const auto& run : runs_) {
      if (!run->Started() && dice_.OneIn(2)) run->Start(dice_.Seed());
    }
    switch (dice_.Throw(4)) {
      case 0:
        model_.project.reset();  // a view that goes
        Close();
        queue_.reset();
        break;
      case 1:
        while (!runs_.empty() && dice_.OneIn(2)) AbortOne();
        break;
      default:
        break;
    }
    moods_.Release();
    if (moods_.refused == 1) moods_.refused = 3;
    for (const auto& run : runs_) {
      // A thread that could not be started: an abort alone is not its end.
      if (!run->Started()) run->closed = true;
    }
    if (queue_) DropThoseNotStarted();
    loop_.RunUntil([this] {
      return std::all_of(runs_.begin(), runs_.end(),
                         [](const auto& run) { return !run->Started() || run->Over(); });
    });
    for (const auto& run : runs_) run->Join();
  }

  /// A run that is dropped holds nobody up.
  void DropThoseNotStarted() {
    std::erase_if(runs_, [](const auto& run) { return !run->Started(); });
  }

  void CheckAll() {
    EXPECT_EQ(turns_.Breaches(), 0) << "one worker at a time, in the order of the requests";
    EXPECT_EQ(onlooker_.Contradictions(), 0);
    if (queue_) {
      EXPECT_TRUE(queue_->Idle());
    }
    std::set<std::string> made;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
      SCOPED_TRACE("run " + std::to_string(i + 1) + " of " + std::to_string(runs_.size()));
      CheckRun(*runs_[i]);
      CheckFiles(*runs_[i], made);
    }
    made.insert(given_.begin(), given_.end());
    EXPECT_EQ(FilesThere(), made) << "no file is lost, and none is there that nobody told of";
    EXPECT_TRUE(TemporaryFolder::Read(folder_.Path("voice.wav")) == voice_);
    runs_.clear();
    model_.project.reset();
    for (const auto& project : projects_) EXPECT_TRUE(project.expired());
  }

  static void CheckRun(const test::Run& run) {
    EXPECT_FALSE(run.projectGone) << "the project stays while its worker works";
    EXPECT_LE(run.began, 1);
    EXPECT_EQ(run.ended, run.began);
    EXPECT_EQ(run.toldFinished, run.completed);
    EXPECT_EQ(run.wrongReports, 0);
    const bool undisturbed = !run.aborted && !run.closed;
    if (undisturbed) {
      EXPECT_TRUE(run.completed) << "a run obeys only its own abort";
    }
    if (run.completed && !run.boxesChanged) {
      CheckRegions(run);
    }
    CheckReports(run, undisturbed);
  }

  static int DoneOf(const test::Run& run, RegionPiece piece) {
    const auto found = run.done.find(piece);
    return found != run.done.end() ? found->second : 0;
  }
  static void CheckRegions(const test::Run& run) {
    EXPECT_EQ(DoneOf(run, RegionPiece::Main), run.liveCuts);
    EXPECT_EQ(DoneOf(run, RegionPiece::FadeIn), run.liveCuts * run.fadesOfEach);
    EXPECT_EQ(DoneOf(run, RegionPiece::FadeOut), run.liveCuts * run.fadesOfEach);
  }

  /// Steps rise to the last one, an attempt that is made again telling its own again; then comes
  /// the end, once.
  static void CheckReports(const test::Run& run, bool undisturbed) {
    if (run.shown.empty()) {
      EXPECT_TRUE(!undisturbed || run.project.expired() || run.steps == 0);
      return;
    }
    std::vector<std::int32_t> steps = run.shown;
    const bool end = steps.back() == -1;
    if (end) steps.pop_back();
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
    steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
    for (std::size_t i = 0; i < steps.size(); ++i) {
      EXPECT_EQ(steps[i], static_cast<std::int32_t>(i) + 1);
    }
    if (undisturbed) {
      EXPECT_TRUE(end);
      EXPECT_EQ(steps.size(), static_cast<std::size_t>(run.steps));
    }
  }

  /// What is told to be made is there, and no later run has taken it for its own.
  static void CheckFiles(const test::Run& run, std::set<std::string>& made) {
    std::set<std::string> own;
    for (const auto& [path, status] : run.files) {
      EXPECT_EQ(status, 0) << path;
      EXPECT_FALSE(made.contains(path)) << path;
      own.insert(path);
      std::error_code error;
      EXPECT_GT(std::filesystem::file_size(path, error), 44U) << path;
    }
    made.insert(own.begin(), own.end());
  }

  std::set<std::string> FilesThere() const {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path())) {
      if (entry.is_regular_file()) files.insert(entry.path().string());
    }
    return files;
  }

  Dice& dice_;
  Onlooker& onlooker_;
  TemporaryFolder folder_;
  Moods moods_;
  Turns turns_;
  MainLoop loop_;
  ViewModel model_;
  int fades_ = 0;
  std::vector<std::weak_ptr<AES31Project>> projects_;
  std::set<std::string> given_;
  std::string voice_;
  std::unique_ptr<SpotQueue> queue_ = std::make_unique<SpotQueue>();
  std::vector<std::shared_ptr<test::Run>> runs_;
};

TEST(SpotStorm, eachRunObeysItsOwnAbortAndNothingIsLost) {
  Onlooker onlooker;
  RunStorm([&](Dice& dice) { SpotRound(dice, onlooker).Run(); });
}

}  // namespace
}  // namespace velmora::test
