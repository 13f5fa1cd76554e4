#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Model/ViewModel.h"

namespace velmora {

// The four tables as functions of the model. Tables and columns go by the identifiers that the view
// gives them; a row, column or table that is not there has no value, and an edit of it is dropped.

struct CellValue {
  enum Kind { None, Text, Integer } kind = None;
  std::string text;
  std::int32_t integer = 0;
};

enum class Background { Untouched, White, Stripe, Red };

struct CellStyle {
  Background background = Background::Untouched;
  int alignment = -1;   ///< 0 left, 1 right, -1 untouched
  double fontSize = 0;  ///< points, 0 untouched
};

std::int32_t NumberOfRows(const ViewModel& model, std::string_view table);
CellValue ObjectValue(const ViewModel& model, std::string_view table, std::string_view column,
                      std::int32_t row);
/// Only the check box columns "Space" take a value; above 0 is on.
void SetObjectValue(ViewModel& model, std::string_view table, std::string_view column,
                    std::int32_t row, std::int32_t value);
CellStyle Style(const ViewModel& model, std::string_view table, std::string_view column,
                std::int32_t row);
double HeightOfRow(std::string_view table);
bool ShouldSelectRow(std::string_view table);

}  // namespace velmora
