// Vemba::Testing: unit-test a host's ad and checkout flows on a fake platform, without a network
// or a display, in virtual time. A test makes a FakePlatform, scripts the bid exchange's answers,
// drives the clock, finds what the library presented and plays the page and the user on it:
//
//   TEST(Rewards, AWatchedAdGrantsTheReward) {
//     vemba::testing::FakePlatform platform;  // first, so it outlives the library's objects
//     const auto ad = vemba::VembaRewardedAd::create("level-end");
//     ad->setDelegate(rewards);  // the host's own VembaRewardedAdDelegate
//     platform.respondToBid(vemba::testing::bidResponse("https://ads.example.test/page"));
//     ad->load();
//     platform.runUntilIdle();  // adDidLoad
//     ad->show();               // from the host's key window
//     platform.advance(vemba::testing::kTransitionTime);  // adDidShow, the billing pixel
//     platform.presentedAd()->postClose();  // the page closes the ad: adDidEarnReward
//     platform.advance(vemba::testing::kTransitionTime);  // adDidDismiss
//     EXPECT_EQ(platform.billingPixels().size(), 1U);
//   }
//
// and a checkout: sheet.present(platform.hostScreen()); platform.runUntilIdle(); then
// platform.presentedCheckout()->postCompleted("1001") reaches the sheet's onComplete.
// tests/unit/testing/HostExample_test.cpp compiles and runs both against these headers alone.
#pragma once

#include "vemba/testing/FakePlatform.h"
#include "vemba/testing/PresentedScreens.h"
