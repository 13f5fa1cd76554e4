#include <string>
#include <vector>

#include "Model/ViewModel.h"
#import "View/TextConversion.h"
#import "View/VelmoraModelColumn.h"
#import "View/Velmora_ViewController.h"

static NSString* const kOn = @"1";
static NSString* const kOff = @"0";

// A column over anything with size() and [], whose rows `convert` turns into objects.
template <class Rows, class Convert>
static NSArray* Column(id owner, const Rows& rows, Convert convert) {
  auto source = std::make_unique<ColumnSource>();
  source->rows = [&rows] { return rows.size(); };
  source->objectAt = [&rows, convert](std::size_t row) { return convert(rows[row]); };
  return [VelmoraModelColumn columnOf:owner source:std::move(source)];
}

template <class T, class Convert>
static NSArray* TrackColumn(id owner, const velmora::SparseColumn<T>& rows, Convert convert) {
  auto source = std::make_unique<ColumnSource>();
  source->rows = [&rows] { return static_cast<std::size_t>(rows.Rows()); };
  source->objectAt = [&rows, convert](std::size_t row) {
    return convert(*rows.At(static_cast<std::int32_t>(row)));
  };
  return [VelmoraModelColumn columnOf:owner source:std::move(source)];
}

static id BoxObject(velmora::EventBox box) {
  switch (box) {
    case velmora::EventBox::On:
      return kOn;
    case velmora::EventBox::Off:
      return kOff;
    case velmora::EventBox::Placeholder:
      break;
  }
  return [NSNull null];
}

@implementation Velmora_ViewController (Model)

- (velmora::AES31Project*)project {
  return model->project.get();
}

- (std::int32_t)TrackNo {
  return model->TrackNo;
}

- (std::int32_t)numEvents {
  return model->numEvents;
}

- (std::int32_t)minTrack {
  return model->minTrack;
}

- (std::int32_t)maxTrack {
  return model->maxTrack;
}

- (std::int32_t)trackCount {
  return model->trackCount;
}

- (std::int32_t)enableEvents {
  return model->enableEvents;
}

- (const char*)firstEvent {
  return model->firstEvent;
}

- (const char*)lastEvent {
  return model->lastEvent;
}

- (NSArray*)ProjectInfomation {
  return Column(self, model->ProjectInfomation, StringFromText);
}

- (NSArray*)trackEnable {
  return TrackColumn(self, model->trackEnable, [](bool on) { return on ? kOn : kOff; });
}

- (NSArray*)trackStart {
  return TrackColumn(self, model->trackStart, StringFromText);
}

- (NSArray*)trackEnd {
  return TrackColumn(self, model->trackEnd, StringFromText);
}

- (NSArray*)eventEnable {
  return Column(self, model->eventEnable, BoxObject);
}

- (NSArray*)eventTypes {
  return Column(self, model->eventTypes, StringFromText);
}

- (NSArray*)eventNumbers {
  return Column(self, model->eventNumbers, StringFromText);
}

- (NSArray*)eventTrack {
  return Column(self, model->eventTrack, StringFromText);
}

- (NSArray*)eventCh {
  return Column(self, model->eventCh, StringFromText);
}

- (NSArray*)eventIn {
  return Column(self, model->eventIn, StringFromText);
}

- (NSArray*)eventOut {
  return Column(self, model->eventOut, StringFromText);
}

- (NSArray*)eventName {
  return Column(self, model->eventName, StringFromText);
}

- (NSArray*)eventFound {
  return Column(self, model->eventFound,
                [](bool found) { return [NSNumber numberWithBool:found]; });
}

@end
