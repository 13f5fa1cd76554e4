#import "View/VelmoraModelColumn.h"

#include <utility>

@implementation VelmoraModelColumn

+ (VelmoraModelColumn*)columnOf:(id)owner source:(std::unique_ptr<ColumnSource>)source {
  VelmoraModelColumn* column = [[[VelmoraModelColumn alloc] init] autorelease];
  column->owner = [owner retain];
  column->source = std::move(source);
  return column;
}

- (void)dealloc {
  [owner release];
  [super dealloc];
}

- (NSUInteger)count {
  return source != nullptr ? source->rows() : 0;
}

- (id)objectAtIndex:(NSUInteger)index {
  if (index >= [self count]) {
    [NSException raise:NSRangeException
                format:@"row %lu of %lu", (unsigned long)index, (unsigned long)[self count]];
  }
  return source->objectAt(index);
}

@end
