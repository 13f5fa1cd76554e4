#pragma once

#import <Foundation/Foundation.h>

#include <cstddef>
#include <functional>
#include <memory>

// What a column reads: how many rows there are, and the autoreleased object at one of them.
struct ColumnSource {
  std::function<std::size_t()> rows;
  std::function<id(std::size_t row)> objectAt;
};

// An array that holds nothing itself: it asks its source each time. It serves columns that may span
// as many rows as there are track numbers.
@interface VelmoraModelColumn : NSArray {
  id owner;
  std::unique_ptr<ColumnSource> source;
}

// An autoreleased column. `owner` is retained: it keeps alive what the source reads.
+ (VelmoraModelColumn*)columnOf:(id)owner source:(std::unique_ptr<ColumnSource>)source;

@end
