#pragma once

#import <Foundation/Foundation.h>

namespace velmora {
class RegionHost;
class SpotFollower;
}

// The one place that knows where a spot sends its regions. On macOS they go to the host application
// by Apple Event unless a shell names another receiver; elsewhere a shell must name one, and until
// it does every send answers -600, "no such process".
//
// Main thread only. A spot takes the host that stands here when it starts.
@interface VelmoraHostConnection : NSObject

// Names the receiver of the spots to come, null for the platform's own. Not owned: the receiver
// must live until every spot that started with it has ended. It is called on the spot's thread.
+ (void)setRegionHost:(velmora::RegionHost*)host;

// The receiver that a spot would use now; never null.
+ (velmora::RegionHost*)regionHost;

// Names what is told of the spots to come, null for nothing. Not owned, and to live as the receiver
// does.
+ (void)setSpotFollower:(velmora::SpotFollower*)follower;
+ (velmora::SpotFollower*)spotFollower;

@end
