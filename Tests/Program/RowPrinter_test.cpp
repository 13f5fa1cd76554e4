#include "Program/RowPrinter.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "Program/TextTable.h"
#include "Support/TemporaryFolder.h"

namespace velmora::program {
namespace {

using Row = std::vector<std::string>;

/// The plainest way to print a table: every cell made harmless, every line built and then trimmed.
class PlainTable {
 public:
  explicit PlainTable(std::vector<PrintedColumn> columns) : columns_(std::move(columns)) {}
  void Add(Row row, bool alarming) { rows_.push_back({std::move(row), alarming}); }

  std::string Print(bool colours) const {
    std::vector<std::size_t> widths;
    Row headings;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      std::size_t width = DisplayWidth(columns_[i].heading);
      for (const auto& row : rows_) width = std::max(width, DisplayWidth(Printable(row.first[i])));
      widths.push_back(width);
      headings.push_back(columns_[i].heading);
    }
    std::string text = Coloured(colours ? "\x1b[1m" : "", Line(headings, widths));
    for (const auto& [cells, alarming] : rows_) {
      text += Coloured(colours && alarming ? "\x1b[31m" : "", Line(cells, widths));
    }
    return text;
  }

 private:
  static std::string Coloured(const std::string& colour, const std::string& line) {
    return colour.empty() ? line + '\n' : colour + line + "\x1b[0m\n";
  }
  std::string Line(const Row& cells, const std::vector<std::size_t>& widths) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string cell = Printable(cells[i]);
      const std::string padding(widths[i] - DisplayWidth(cell), ' ');
      line += "  " + (columns_[i].align == Align::Right ? padding + cell : cell + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
  }

  std::vector<PrintedColumn> columns_;
  std::vector<std::pair<Row, bool>> rows_;
};

/// A text of any bytes, most often a short one of plain characters.
std::string AnyCell(std::mt19937& random) {
  const char* const kOdd[] = {"",         " ",        "0007\n",       "\x1b[31m",
                              "\x7F",     "嵐の予報", "\xC2\x85",     "e\xCC\x81",
                              "\xFF\xFE", "a ",       "\xE2\x80\xAE", "\xE5\xB5"};
  const auto pick = [&random](int below) {
    return static_cast<int>(random() % static_cast<unsigned>(below));
  };
  std::string text;
  for (int parts = pick(3); parts > 0; --parts) {
    if (pick(3) == 0) {
      text += kOdd[pick(std::size(kOdd))];
    } else {
      for (int size = pick(25); size > 0; --size) text += static_cast<char>(' ' + pick(95));
    }
  }
  if (pick(20) == 0) text += static_cast<char>(pick(256));
  return text;
}

TEST(RowPrinter, printsAnyTableAsThePlainestWayDoes) {
  std::mt19937 random(31);
  for (int table = 0; table < 300; ++table) {
    std::vector<PrintedColumn> columns;
    for (std::size_t i = 0; i < 1 + random() % 5; ++i) {
      columns.push_back(
          {i % 2 == 0 ? "H" : "Heading", random() % 3 == 0 ? Align::Right : Align::Left});
    }
    TextTable printed(columns);
    PlainTable plain(columns);
    for (std::size_t rows = random() % 8; rows > 0; --rows) {
      Row row;
      for (std::size_t i = 0; i < columns.size(); ++i) row.push_back(AnyCell(random));
      const bool alarming = random() % 3 == 0;
      plain.Add(row, alarming);
      printed.Add(std::move(row), alarming);
    }
    for (const bool colours : {false, true}) {
      CharBuffer text;
      printed.Append(text, colours);
      ASSERT_EQ(text.Text(), plain.Print(colours)) << "table " << table;
    }
  }
}

/// Rows without texts of their own; the widest cell stands in one row alone.
class ManyRows : public TableRows {
 public:
  static constexpr std::size_t kCount = 20000;
  static constexpr std::size_t kWidest = 17321;
  std::size_t Count() const override { return kCount; }
  static std::string Cell(std::size_t row, std::size_t column) {
    if (column == 0) return std::to_string(row);
    if (column == 1) return row == kWidest ? "a wide one, 嵐" : "-";
    return row % 2 == 0 ? "end" : "";
  }
  void FillCells(std::size_t column, std::size_t first, std::size_t count,
                 PrintedCells& cells) const override {
    for (std::size_t i = 0; i < count; ++i) cells.Set(i, Cell(first + i, column));
  }
  bool IsAlarming(std::size_t row) const override { return row % 5 == 0; }
};

TEST(RowPrinter, printsLargeTablesInOrderWithOneWidthForAllRows) {
  const std::vector<PrintedColumn> columns = {{"N", Align::Right}, {"Text"}, {"Last"}};
  const ManyRows rows;
  PlainTable plain(columns);
  for (std::size_t i = 0; i < rows.Count(); ++i) {
    Row row(columns.size());
    for (std::size_t column = 0; column < row.size(); ++column) {
      row[column] = ManyRows::Cell(i, column);
    }
    plain.Add(std::move(row), rows.IsAlarming(i));
  }
  const test::TemporaryFolder folder;
  const std::string path = folder.Write("out", "");
  const int descriptor = ::open(path.c_str(), O_WRONLY);
  BlockOutput out(descriptor);
  RowPrinter(columns, rows, true).Print(out);
  EXPECT_TRUE(out.Finish());
  ::close(descriptor);
  EXPECT_EQ(test::TemporaryFolder::Read(path), plain.Print(true));
}

TEST(TextTable, rowOfOtherLengthThanTheColumnsIsFilledUpOrCut) {
  TextTable table({{"A"}, {"B"}, {"C", Align::Right}});
  table.Add({});
  table.Add({"one"});
  table.Add({"two", "cells"}, true);
  table.Add({"of", "four", "cells", "one is not shown"});
  CharBuffer text;
  table.Append(text, false);
  EXPECT_EQ(text.Text(),
            "  A    B          C\n"
            "\n"
            "  one\n"
            "  two  cells\n"
            "  of   four   cells\n");
}

}  // namespace
}  // namespace velmora::program
