#include "checkout/events/CheckoutCompletedEventCoding.h"

#include "common/JsonFields.h"

namespace vemba::checkout {

using json::field;
using json::fields;
using json::Tag;
using Event = CheckoutCompletedEvent;

// The order summary's field tables; every key equals its field's name.

constexpr auto jsonFields(Tag<Event::Address> /*record*/) {
  using R = Event::Address;
  return fields(field("address1", &R::address1), field("address2", &R::address2),
                field("city", &R::city), field("countryCode", &R::countryCode),
                field("firstName", &R::firstName), field("lastName", &R::lastName),
                field("name", &R::name), field("phone", &R::phone),
                field("postalCode", &R::postalCode), field("referenceId", &R::referenceId),
                field("zoneCode", &R::zoneCode));
}

constexpr auto jsonFields(Tag<Event::Money> /*record*/) {
  using R = Event::Money;
  return fields(field("amount", &R::amount), field("currencyCode", &R::currencyCode));
}

constexpr auto jsonFields(Tag<Event::Discount> /*record*/) {
  using R = Event::Discount;
  return fields(field("amount", &R::amount), field("applicationType", &R::applicationType),
                field("title", &R::title), field("value", &R::value),
                field("valueType", &R::valueType));
}

constexpr auto jsonFields(Tag<Event::CartLineImage> /*record*/) {
  using R = Event::CartLineImage;
  return fields(field("altText", &R::altText), field("lg", &R::lg), field("md", &R::md),
                field("sm", &R::sm));
}

constexpr auto jsonFields(Tag<Event::CartLine> /*record*/) {
  using R = Event::CartLine;
  return fields(field("discounts", &R::discounts), field("image", &R::image),
                field("merchandiseId", &R::merchandiseId), field("price", &R::price),
                field("productId", &R::productId), field("quantity", &R::quantity),
                field("title", &R::title));
}

constexpr auto jsonFields(Tag<Event::Price> /*record*/) {
  using R = Event::Price;
  return fields(field("discounts", &R::discounts), field("shipping", &R::shipping),
                field("subtotal", &R::subtotal), field("taxes", &R::taxes),
                field("total", &R::total));
}

constexpr auto jsonFields(Tag<Event::CartInfo> /*record*/) {
  using R = Event::CartInfo;
  return fields(field("lines", &R::lines), field("price", &R::price), field("token", &R::token));
}

constexpr auto jsonFields(Tag<Event::DeliveryDetails> /*record*/) {
  using R = Event::DeliveryDetails;
  return fields(field("additionalInfo", &R::additionalInfo), field("location", &R::location),
                field("name", &R::name));
}

constexpr auto jsonFields(Tag<Event::DeliveryInfo> /*record*/) {
  using R = Event::DeliveryInfo;
  return fields(field("details", &R::details), field("method", &R::method));
}

// "details" keeps every key the page sent, a null one with an absent value.
constexpr auto jsonFields(Tag<Event::PaymentMethod> /*record*/) {
  using R = Event::PaymentMethod;
  return fields(field("details", &R::details), field("type", &R::type));
}

constexpr auto jsonFields(Tag<Event::OrderDetails> /*record*/) {
  using R = Event::OrderDetails;
  return fields(field("billingAddress", &R::billingAddress), field("cart", &R::cart),
                field("deliveries", &R::deliveries), field("email", &R::email), field("id", &R::id),
                field("paymentMethods", &R::paymentMethods), field("phone", &R::phone));
}

constexpr auto jsonFields(Tag<Event> /*record*/) {
  return fields(field("orderDetails", &Event::orderDetails));
}

CheckoutCompletedEvent decodeCheckoutCompletedEvent(const json::Json& value,
                                                    const json::JsonPath& path) {
  return json::decodeRecord<Event>(value, path);
}

json::Json encodeCheckoutCompletedEvent(const CheckoutCompletedEvent& event) {
  return json::encodeRecord(event);
}

}  // namespace vemba::checkout
