// Test seam of the ad half, kept out of the public headers.
#pragma once

namespace vemba::ads {

// Replaces the ad half's state (AdsState) with a fresh one, as if the process had just started:
// no API key, no cached user agent, nothing readied and every earlier claim on it forgotten. Takes
// the state out first, then destroys it; the next use creates a fresh one. Main thread, between
// tests, with no other thread using the ad half; no reference into the old state may be used
// after it.
void resetVembaSdkForTesting();

}  // namespace vemba::ads
