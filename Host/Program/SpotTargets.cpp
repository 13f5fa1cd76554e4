#include "Program/SpotTargets.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

#include "Program/ProgressBar.h"
#include "Program/StopRequests.h"
#include "Program/TextTable.h"
#include "Session/JsonText.h"

namespace velmora::program {
namespace {

using Use = host::TargetKind::Use;

void PrintLine(const host::TargetKind& kind, const std::string& path, int status,
               const std::string& reason) {
  std::cout << host::JsonText({{"kind", "target"},
                               {"name", kind.name},
                               {"path", path},
                               {"status", status},
                               {"reason", reason.empty() ? host::Json() : host::Json(reason)}})
            << '\n'
            << std::flush;
}

/// One reason for the line of a target: what went wrong, or the first of what it lacks.
std::string ReasonOf(const host::TargetOutcome& outcome) {
  if (!outcome.trouble.empty()) return outcome.trouble;
  if (outcome.leftOut.empty()) return {};
  const std::size_t more = outcome.leftOut.size() - 1;
  return outcome.leftOut.front() + (more > 0 ? " (and " + std::to_string(more) + " more)" : "");
}

void Tell(const host::TargetKind& kind, const host::TargetOutcome& outcome) {
  const bool isSession = kind.use == host::TargetKind::Use::SessionRecord;
  const std::string who =
      std::string("velmora: ") + (isSession ? "the session " : std::string(kind.name) + ": ");
  if (!outcome.trouble.empty()) std::cerr << who << Printable(outcome.trouble) << '\n';
  for (const std::string& line : outcome.leftOut) {
    std::cerr << who << "left out: " << Printable(line) << '\n';
  }
  for (const std::string& line : outcome.notes) {
    std::cerr << who << "note: " << Printable(line) << '\n';
  }
}

}  // namespace

std::string SpotTargets::Add(const host::TargetKind& kind, const std::string& path,
                             const std::string& option, const host::TargetChoices& choices) {
  if (!TakePlace(path)) return option + ": " + path + " is given twice";
  host::ClaimedTarget claimed = kind.claim(path, choices);
  if (!claimed.complaint.empty()) return option + ": " + claimed.complaint;
  rows_.push_back({&kind, path, std::move(claimed.target)});
  return {};
}

bool SpotTargets::TakePlace(const std::string& path) {
  std::filesystem::path place = path;
  if (!place.has_filename()) place = place.parent_path();  // "DIR/" is "DIR"
  // The last name is new, so that no link can stand there. Without the folder nothing can be made.
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::canonical(place.parent_path(), error);
  return places_.insert(error ? path : (folder / place.filename()).string()).second;
}

std::string SpotTargets::Claim(const SpotArguments& arguments) {
  const TargetRequests& requests = arguments.targets;
  if (arguments.plan) return Add(*arguments.plan->kind, arguments.plan->path, "-o", {});
  for (const std::string& folder : {arguments.copyFolder, arguments.preparation.into}) {
    static_cast<void>(TakePlace(folder));
  }
  if (!arguments.host.target.empty()) {
    std::string complaint =
        Add(*arguments.host.kind->target, arguments.host.target, "--host", requests.choices);
    if (!complaint.empty()) return complaint;
  }
  for (const TargetRequest& request : requests.targets) {
    std::string complaint =
        Add(*request.kind, request.path, request.kind->option, requests.choices);
    if (!complaint.empty()) return complaint;
  }
  return {};
}

host::TargetOutcome SpotTargets::WriteOne(const Row& row, const host::TargetInput& input, bool json,
                                          bool showsBar) {
  host::TargetOutcome outcome;
  if (input.session.Regions().empty() && row.kind->use == Use::Regions) {
    outcome.trouble = "no region was placed, so " + row.path + " was not made";
  } else {
    ProgressBar bar(showsBar);
    outcome = row.target->Write(input, [&bar](double share) {
      bar.Draw(share);
      return !Interrupted();
    });
  }
  Tell(*row.kind, outcome);
  const std::string reason = ReasonOf(outcome);
  if (json && row.kind->use != Use::SessionRecord) {
    PrintLine(*row.kind, row.path, reason.empty() ? 0 : 3, reason);
  }
  return outcome;
}

bool SpotTargets::Write(const host::TargetInput& input, bool json, bool showsBar) const {
  bool whole = true;
  host::SpotRecord record = input.record;
  const host::TargetInput withRecord = {input.session, input.heard, input.rates, record};
  const auto write = [&](const Row& row) {
    host::TargetOutcome outcome = WriteOne(row, withRecord, json, showsBar);
    whole = whole && ReasonOf(outcome).empty();
    return outcome;
  };
  for (const Row& row : rows_) {
    if (row.kind->use == Use::Record) continue;
    host::TargetOutcome outcome = write(row);
    record.targets.push_back({row.kind->name, row.path, false, std::move(outcome.trouble),
                              std::move(outcome.leftOut), std::move(outcome.notes)});
  }
  for (const Row& row : rows_) {
    if (row.kind->use == Use::Record) static_cast<void>(write(row));
  }
  return whole;
}

void SpotTargets::ForgetSession() {
  std::erase_if(rows_, [](const Row& row) { return row.kind->use == Use::SessionRecord; });
}

bool SpotTargets::TellOfTheSpot() const {
  return std::any_of(rows_.begin(), rows_.end(),
                     [](const Row& row) { return row.kind->use == Use::Record; });
}

}  // namespace velmora::program
