#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Ardour/ArdourPlan.h"
#include "Ardour/ScriptProcess.h"
#include "Ardour/SessionEdit.h"
#include "Ardour/SessionJob.h"
#include "Ardour/SessionProof.h"
#include "Session/SessionTarget.h"

namespace velmora::ardour {

/// One run of Ardour that makes a session out of a plan and proves it.
class SessionMaker {
 public:
  /// Where all of the run takes place, so that nothing is left elsewhere however it ends.
  struct Place {
    std::string folder;  ///< absolute, empty, and nobody else's; the caller takes it away
    std::string name;    ///< of the session and of its file
    /// Ardour calls folders inside a session by the name of the session's own folder.
    [[nodiscard]] std::string Session() const { return folder + "/made/" + name; }
    [[nodiscard]] std::string File() const { return Session() + "/" + name + ".ardour"; }
    /// What the run needs beside the session.
    [[nodiscard]] std::string Run(const char* part) const { return folder + "/run/" + part; }
  };

  /// `input` and `plan` must outlive this.
  SessionMaker(const host::TargetInput& input, const ArdourPlan& plan, Place place)
      : input_(input),
        plan_(plan),
        place_(std::move(place)),
        times_(plan),
        proof_(input, plan, edited_) {}

  /// @param program absolute: Ardour's Lua
  /// @param patience how long it may show no progress
  /// @return an empty text, or why there is no session; what is in the folder is then worth nothing
  [[nodiscard]] std::string Make(const std::string& program, std::chrono::milliseconds patience,
                                 const host::TargetProgress& progress);

 private:
  [[nodiscard]] std::string MakeFolders() const;
  [[nodiscard]] std::string WriteJob() const;
  [[nodiscard]] std::vector<std::string> Environment() const;
  [[nodiscard]] LineUse Take(std::string_view line, const ScriptProcess& script);
  [[nodiscard]] LineUse TakeStep(std::string_view number);
  [[nodiscard]] LineUse Refuse(std::string trouble);
  [[nodiscard]] std::string Edit();
  [[nodiscard]] std::string TroubleOf(const ScriptEnd& end, std::chrono::milliseconds patience);
  [[nodiscard]] std::string Finish() const;
  [[nodiscard]] std::size_t ExpectedSteps() const;

  const host::TargetInput& input_;
  const ArdourPlan& plan_;
  Place place_;
  TimeWords times_;
  EditedRegions edited_;
  SessionProof proof_;
  std::vector<std::string> trackIds_;
  std::size_t steps_ = 0;
  bool isEdited_ = false;
  bool isDone_ = false;
  std::string trouble_;  ///< what a line told
};

}  // namespace velmora::ardour
