#import "Desktop/Shell/Snapshot.h"

BOOL WriteSnapshot(NSWindow* window, NSString* path) {
  NSView* content = [window contentView];
  [window display];
  [content lockFocus];
  NSBitmapImageRep* picture =
      [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[content bounds]] autorelease];
  [content unlockFocus];
  NSData* png = [picture representationUsingType:NSPNGFileType
                                      properties:[NSDictionary dictionary]];
  return png != nil && [png writeToFile:path atomically:NO];
}
