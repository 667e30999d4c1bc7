// Everything a host needs of the ad half.
#pragma once

#include "vemba/Error.h"
#include "vemba/ads/VembaAdDelegates.h"
#include "vemba/ads/VembaError.h"
#include "vemba/ads/VembaInterstitialAd.h"
#include "vemba/ads/VembaPrivacy.h"
#include "vemba/ads/VembaReward.h"
#include "vemba/ads/VembaRewardedAd.h"
#include "vemba/ads/VembaSDK.h"
