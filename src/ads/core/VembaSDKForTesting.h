// Test seam of the ad half's entry point, kept out of the public headers.
#pragma once

namespace vemba::ads {

// Forgets the stored API key, as if initialize() had never run. Main thread, between tests.
void resetVembaSdkForTesting();

}  // namespace vemba::ads
