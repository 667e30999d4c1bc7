// The benchmark messages must decode on the success path: a benchmark of a fallback or a
// failure would measure the wrong thing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "CheckoutTestSupport.h"
#include "checkout/events/CheckoutCompletedEventDecoder.h"
#include "checkout/events/WebPixelsEventDecoder.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

json::Json readMessage(const char* name) {
  const std::filesystem::path path =
      std::filesystem::path(__FILE__).parent_path() / "../../../bench/data" / name;
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  std::optional<json::Json> message = json::parseJson(text.str());
  EXPECT_TRUE(message && message->is_object()) << path;
  return message ? *message : json::Json::object();
}

class EventBenchDataTest : public testing::CheckoutTest {};

TEST_F(EventBenchDataTest, MessagesDecodeOnTheSuccessPath) {
  const CheckoutCompletedEvent completed =
      CheckoutCompletedEventDecoder::decode(readMessage("completed_message.json"));
  EXPECT_EQ(completed.orderDetails.cart.lines.size(), 3U);
  EXPECT_TRUE(logLines().empty());

  const auto standard = WebPixelsEventDecoder::decode(readMessage("pixel_standard_message.json"));
  ASSERT_TRUE(standard && standard->has_value());
  const auto* standardEvent = std::get_if<StandardEvent>(&**standard);
  ASSERT_NE(standardEvent, nullptr);
  ASSERT_TRUE(standardEvent->data && standardEvent->data->checkout);
  EXPECT_TRUE(standardEvent->context && standardEvent->context->window);

  const auto custom = WebPixelsEventDecoder::decode(readMessage("pixel_custom_message.json"));
  ASSERT_TRUE(custom && custom->has_value());
  const auto* customEvent = std::get_if<CustomEvent>(&**custom);
  ASSERT_NE(customEvent, nullptr);
  EXPECT_TRUE(customEvent->customData && json::parseJson(*customEvent->customData));
}

}  // namespace
}  // namespace vemba::checkout
