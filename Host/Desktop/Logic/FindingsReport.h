#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Check/CheckProject.h"
#include "Desktop/Logic/CheckRun.h"
#include "Desktop/Logic/ProjectReport.h"

namespace velmora::desktop {

/// How many findings there are, of what gravity, and of which kinds most of all, for the status
/// line. None if nothing fails, is misplaced or lost.
[[nodiscard]] std::optional<StatusItem> DescribeFindings(const check::CheckedProject& checked);

/// The status line's items of a project with what its check says, gravest first. After a failed
/// load the findings explain more than the line that the load gave up at, which then comes after
/// them.
[[nodiscard]] std::vector<StatusItem> WithFindings(std::vector<StatusItem> items,
                                                   const ProjectFacts& facts,
                                                   const std::optional<StatusItem>& findings);

/// Whether a preparation can help: there is something that fails, is misplaced or lost, and it is
/// an ADL.
[[nodiscard]] bool CanPrepare(const check::CheckedProject& checked);

enum class FindingColumn { Gravity, Line, Event, Text, Effect, Remedy };

/// The findings of one project as the rows of a table. Texts are UTF-8.
class FindingsList {
 public:
  FindingsList() = default;
  /// Sorted by gravity, the worst first. Null gives no rows.
  explicit FindingsList(CheckedPtr checked);

  [[nodiscard]] std::size_t RowCount() const { return order_.size(); }
  [[nodiscard]] const check::Finding& At(std::size_t row) const;
  /// One line; empty where the finding has nothing for the column.
  [[nodiscard]] std::string CellText(std::size_t row, FindingColumn column) const;

  /// Rows that are equal in the column keep the order of the file.
  void SortBy(FindingColumn column, bool falling);
  /// The row at which a finding stands now; its number is its place in CheckedProject::findings.
  [[nodiscard]] std::size_t RowOf(std::size_t number) const;
  [[nodiscard]] std::size_t NumberOf(std::size_t row) const { return order_[row]; }

  /// "3 findings in Demo.adl: 1 fails, 2 lose something"
  [[nodiscard]] std::string Headline() const;
  /// All that is to be said of one finding, in several lines.
  [[nodiscard]] std::string FullText(std::size_t row) const;
  /// Findings as text for a mail: each with its place, effect and remedy.
  [[nodiscard]] std::string CopyText(const std::vector<std::size_t>& rows) const;

 private:
  CheckedPtr checked_;
  std::vector<std::uint32_t> order_;  ///< by row: place in CheckedProject::findings
};

/// "Line 12, event 4"; "The whole file" for a finding without a line.
[[nodiscard]] std::string PlaceText(std::int64_t line, std::optional<std::int32_t> entry,
                                    std::optional<std::int32_t> source);

/// A text on one line: control characters are blanks.
[[nodiscard]] std::string OneLine(std::string text);

}  // namespace velmora::desktop
