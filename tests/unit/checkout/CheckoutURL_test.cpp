#include "checkout/webview/CheckoutURL.h"

#include <gtest/gtest.h>

#include "checkout/webview/ExternalLink.h"
#include "unit/FakePlatformTest.h"

namespace vemba::checkout {
namespace {

using vemba::tests::url;

struct KindCase {
  const char* url;
  bool confirmation;
  bool deepLink;
  bool blank;
  bool multipass;
};

TEST(CheckoutURLTest, Kinds) {
  const KindCase cases[] = {
      {"https://shop.example/checkouts/c1/thank_you", true, false, false, false},
      {"https://shop.example/checkouts/c1/Thank-You?order_id=1", true, false, false, false},
      {"https://shop.example/a/THANK_YOU/b", true, false, false, false},
      {"https://shop.example/thank%2Dyou", true, false, false, false},
      {"https://shop.example/checkouts/thank_you_page", false, false, false, false},
      {"https://shop.example/thankyou", false, false, false, false},
      {"https://shop.example/thank__you", false, false, false, false},
      {"https://shop.example/thank_you.html", false, false, false, false},
      {"https://shop.example/thank_you%0A", false, false, false, false},
      {"https://shop.example/account/login/multipass/tok", false, false, false, true},
      {"http://shop.example/", false, false, false, false},
      {"HTTPS://shop.example/", false, false, false, false},
      {"mailto:help@shop.example", false, true, false, false},
      {"bankapp://pay?x=1", false, true, false, false},
      {"about:blank", false, false, true, false},
      {"about:srcdoc", false, false, true, false},
      {"/relative/thank-you", true, false, false, false},
  };
  for (const KindCase& c : cases) {
    SCOPED_TRACE(c.url);
    const CheckoutURL checkoutUrl{url(c.url)};
    EXPECT_EQ(checkoutUrl.isConfirmationPage(), c.confirmation);
    EXPECT_EQ(checkoutUrl.isDeepLink(), c.deepLink);
    EXPECT_EQ(checkoutUrl.isBlank(), c.blank);
    EXPECT_EQ(checkoutUrl.isMultipassURL(), c.multipass);
  }
}

struct ExternalCase {
  const char* url;
  bool asks;
  const char* withoutParameter;
};

TEST(ExternalLinkTest, OnlyTheFirstItemCountsAndEveryItemIsRemoved) {
  const ExternalCase cases[] = {
      {"https://x.example/p?open_externally=TRUE", true, "https://x.example/p"},
      {"https://x.example/p?open_externally=true&a=1", true, "https://x.example/p?a=1"},
      {"https://x.example/p?a=%20b&open_externally=1#frag", true,
       "https://x.example/p?a=%20b#frag"},
      {"https://x.example/p?open_externally=yes", false, "https://x.example/p"},
      {"https://x.example/p?open_externally", false, "https://x.example/p"},
      {"https://x.example/p?open_externally=0&open_externally=1", false, "https://x.example/p"},
      {"https://x.example/p?open_externally=1&b=2&open_externally=0", true,
       "https://x.example/p?b=2"},
      {"https://x.example/p?open%5Fexternally=1", true, "https://x.example/p"},
      {"https://x.example/p?other=1", false, "https://x.example/p?other=1"},
      {"https://x.example/p", false, "https://x.example/p"},
  };
  for (const ExternalCase& c : cases) {
    SCOPED_TRACE(c.url);
    EXPECT_EQ(asksToOpenExternally(url(c.url)), c.asks);
    EXPECT_EQ(removingOpenExternally(url(c.url)).absoluteString(), c.withoutParameter);
  }
}

}  // namespace
}  // namespace vemba::checkout
