#include "checkout/events/CheckoutCompletedEventCoding.h"

#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

using json::Json;
using json::JsonPath;
using json::optionalField;
using json::optionalString;
using json::put;
using json::putOptional;
using json::requireField;
using json::requireString;
using Event = CheckoutCompletedEvent;

constexpr std::string_view kAdditionalInfo = "additionalInfo";
constexpr std::string_view kAddress1 = "address1";
constexpr std::string_view kAddress2 = "address2";
constexpr std::string_view kAltText = "altText";
constexpr std::string_view kAmount = "amount";
constexpr std::string_view kApplicationType = "applicationType";
constexpr std::string_view kBillingAddress = "billingAddress";
constexpr std::string_view kCart = "cart";
constexpr std::string_view kCity = "city";
constexpr std::string_view kCountryCode = "countryCode";
constexpr std::string_view kCurrencyCode = "currencyCode";
constexpr std::string_view kDeliveries = "deliveries";
constexpr std::string_view kDetails = "details";
constexpr std::string_view kDiscounts = "discounts";
constexpr std::string_view kEmail = "email";
constexpr std::string_view kFirstName = "firstName";
constexpr std::string_view kId = "id";
constexpr std::string_view kImage = "image";
constexpr std::string_view kLastName = "lastName";
constexpr std::string_view kLg = "lg";
constexpr std::string_view kLines = "lines";
constexpr std::string_view kLocation = "location";
constexpr std::string_view kMd = "md";
constexpr std::string_view kMerchandiseId = "merchandiseId";
constexpr std::string_view kMethod = "method";
constexpr std::string_view kName = "name";
constexpr std::string_view kOrderDetails = "orderDetails";
constexpr std::string_view kPaymentMethods = "paymentMethods";
constexpr std::string_view kPhone = "phone";
constexpr std::string_view kPostalCode = "postalCode";
constexpr std::string_view kPrice = "price";
constexpr std::string_view kProductId = "productId";
constexpr std::string_view kQuantity = "quantity";
constexpr std::string_view kReferenceId = "referenceId";
constexpr std::string_view kShipping = "shipping";
constexpr std::string_view kSm = "sm";
constexpr std::string_view kSubtotal = "subtotal";
constexpr std::string_view kTaxes = "taxes";
constexpr std::string_view kTitle = "title";
constexpr std::string_view kToken = "token";
constexpr std::string_view kTotal = "total";
constexpr std::string_view kType = "type";
constexpr std::string_view kValue = "value";
constexpr std::string_view kValueType = "valueType";
constexpr std::string_view kZoneCode = "zoneCode";

Json toJson(const Event::Address& address);
Json toJson(const Event::Money& money);
Json toJson(const Event::Discount& discount);
Json toJson(const Event::CartLineImage& image);
Json toJson(const Event::CartLine& line);
Json toJson(const Event::Price& price);
Json toJson(const Event::CartInfo& cart);
Json toJson(const Event::DeliveryDetails& details);
Json toJson(const Event::DeliveryInfo& delivery);
Json toJson(const Event::PaymentMethod& method);
Json toJson(const Event::OrderDetails& details);

constexpr auto encode = [](const auto& record) { return toJson(record); };
constexpr auto encodeEach = json::arrayEncoder(encode);

// ---- Address

Event::Address decodeAddress(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::Address out;
  out.address1 = optionalString(value, kAddress1, path);
  out.address2 = optionalString(value, kAddress2, path);
  out.city = optionalString(value, kCity, path);
  out.countryCode = optionalString(value, kCountryCode, path);
  out.firstName = optionalString(value, kFirstName, path);
  out.lastName = optionalString(value, kLastName, path);
  out.name = optionalString(value, kName, path);
  out.phone = optionalString(value, kPhone, path);
  out.postalCode = optionalString(value, kPostalCode, path);
  out.referenceId = optionalString(value, kReferenceId, path);
  out.zoneCode = optionalString(value, kZoneCode, path);
  return out;
}

Json toJson(const Event::Address& address) {
  Json out = Json::object();
  putOptional(out, kAddress1, address.address1);
  putOptional(out, kAddress2, address.address2);
  putOptional(out, kCity, address.city);
  putOptional(out, kCountryCode, address.countryCode);
  putOptional(out, kFirstName, address.firstName);
  putOptional(out, kLastName, address.lastName);
  putOptional(out, kName, address.name);
  putOptional(out, kPhone, address.phone);
  putOptional(out, kPostalCode, address.postalCode);
  putOptional(out, kReferenceId, address.referenceId);
  putOptional(out, kZoneCode, address.zoneCode);
  return out;
}

// ---- Money

Event::Money decodeMoney(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::Money out;
  out.amount = json::optionalDouble(value, kAmount, path);
  out.currencyCode = optionalString(value, kCurrencyCode, path);
  return out;
}

Json toJson(const Event::Money& money) {
  Json out = Json::object();
  putOptional(out, kAmount, money.amount);
  putOptional(out, kCurrencyCode, money.currencyCode);
  return out;
}

// ---- Discount

Event::Discount decodeDiscount(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::Discount out;
  out.amount = optionalField(value, kAmount, path, decodeMoney);
  out.applicationType = optionalString(value, kApplicationType, path);
  out.title = optionalString(value, kTitle, path);
  out.value = json::optionalDouble(value, kValue, path);
  out.valueType = optionalString(value, kValueType, path);
  return out;
}

Json toJson(const Event::Discount& discount) {
  Json out = Json::object();
  putOptional(out, kAmount, discount.amount, encode);
  putOptional(out, kApplicationType, discount.applicationType);
  putOptional(out, kTitle, discount.title);
  putOptional(out, kValue, discount.value);
  putOptional(out, kValueType, discount.valueType);
  return out;
}

// ---- CartLineImage

Event::CartLineImage decodeCartLineImage(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::CartLineImage out;
  out.altText = optionalString(value, kAltText, path);
  out.lg = requireString(value, kLg, path);
  out.md = requireString(value, kMd, path);
  out.sm = requireString(value, kSm, path);
  return out;
}

Json toJson(const Event::CartLineImage& image) {
  Json out = Json::object();
  putOptional(out, kAltText, image.altText);
  put(out, kLg, image.lg);
  put(out, kMd, image.md);
  put(out, kSm, image.sm);
  return out;
}

// ---- CartLine

Event::CartLine decodeCartLine(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::CartLine out;
  out.discounts = optionalField(value, kDiscounts, path, json::arrayOf(decodeDiscount));
  out.image = optionalField(value, kImage, path, decodeCartLineImage);
  out.merchandiseId = optionalString(value, kMerchandiseId, path);
  out.price = requireField(value, kPrice, path, decodeMoney);
  out.productId = optionalString(value, kProductId, path);
  out.quantity = json::requireInt(value, kQuantity, path);
  out.title = requireString(value, kTitle, path);
  return out;
}

Json toJson(const Event::CartLine& line) {
  Json out = Json::object();
  putOptional(out, kDiscounts, line.discounts, encodeEach);
  putOptional(out, kImage, line.image, encode);
  putOptional(out, kMerchandiseId, line.merchandiseId);
  put(out, kPrice, toJson(line.price));
  putOptional(out, kProductId, line.productId);
  put(out, kQuantity, line.quantity);
  put(out, kTitle, line.title);
  return out;
}

// ---- Price

Event::Price decodePrice(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::Price out;
  out.discounts = optionalField(value, kDiscounts, path, json::arrayOf(decodeDiscount));
  out.shipping = optionalField(value, kShipping, path, decodeMoney);
  out.subtotal = optionalField(value, kSubtotal, path, decodeMoney);
  out.taxes = optionalField(value, kTaxes, path, decodeMoney);
  out.total = optionalField(value, kTotal, path, decodeMoney);
  return out;
}

Json toJson(const Event::Price& price) {
  Json out = Json::object();
  putOptional(out, kDiscounts, price.discounts, encodeEach);
  putOptional(out, kShipping, price.shipping, encode);
  putOptional(out, kSubtotal, price.subtotal, encode);
  putOptional(out, kTaxes, price.taxes, encode);
  putOptional(out, kTotal, price.total, encode);
  return out;
}

// ---- CartInfo

Event::CartInfo decodeCartInfo(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::CartInfo out;
  out.lines = requireField(value, kLines, path, json::arrayOf(decodeCartLine));
  out.price = requireField(value, kPrice, path, decodePrice);
  out.token = requireString(value, kToken, path);
  return out;
}

Json toJson(const Event::CartInfo& cart) {
  Json out = Json::object();
  put(out, kLines, encodeEach(cart.lines));
  put(out, kPrice, toJson(cart.price));
  put(out, kToken, cart.token);
  return out;
}

// ---- DeliveryDetails

Event::DeliveryDetails decodeDeliveryDetails(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::DeliveryDetails out;
  out.additionalInfo = optionalString(value, kAdditionalInfo, path);
  out.location = optionalField(value, kLocation, path, decodeAddress);
  out.name = optionalString(value, kName, path);
  return out;
}

Json toJson(const Event::DeliveryDetails& details) {
  Json out = Json::object();
  putOptional(out, kAdditionalInfo, details.additionalInfo);
  putOptional(out, kLocation, details.location, encode);
  putOptional(out, kName, details.name);
  return out;
}

// ---- DeliveryInfo

Event::DeliveryInfo decodeDeliveryInfo(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::DeliveryInfo out;
  out.details = requireField(value, kDetails, path, decodeDeliveryDetails);
  out.method = requireString(value, kMethod, path);
  return out;
}

Json toJson(const Event::DeliveryInfo& delivery) {
  Json out = Json::object();
  put(out, kDetails, toJson(delivery.details));
  put(out, kMethod, delivery.method);
  return out;
}

// ---- PaymentMethod

// Every member is kept: a null value as an absent string, any other non-string fails.
std::map<std::string, std::optional<std::string>> decodePaymentDetails(const Json& value,
                                                                       const JsonPath& path) {
  json::requireObject(value, path);
  std::map<std::string, std::optional<std::string>> out;
  for (auto it = value.begin(); it != value.end(); ++it) {
    const std::string& key = it.key();
    std::optional<std::string> member;
    if (!it.value().is_null()) {
      member = json::decodeString(it.value(), path / key);
    }
    out.emplace_hint(out.end(), key, std::move(member));
  }
  return out;
}

Event::PaymentMethod decodePaymentMethod(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::PaymentMethod out;
  out.details = requireField(value, kDetails, path, decodePaymentDetails);
  out.type = requireString(value, kType, path);
  return out;
}

Json toJson(const Event::PaymentMethod& method) {
  // A detail without a value is written as null: the key itself is part of the details.
  Json details = Json::object();
  for (const auto& [key, member] : method.details) {
    details[key] = member ? Json(*member) : Json(nullptr);
  }
  Json out = Json::object();
  put(out, kDetails, std::move(details));
  put(out, kType, method.type);
  return out;
}

// ---- OrderDetails

Event::OrderDetails decodeOrderDetails(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Event::OrderDetails out;
  out.billingAddress = optionalField(value, kBillingAddress, path, decodeAddress);
  out.cart = requireField(value, kCart, path, decodeCartInfo);
  out.deliveries = optionalField(value, kDeliveries, path, json::arrayOf(decodeDeliveryInfo));
  out.email = optionalString(value, kEmail, path);
  out.id = requireString(value, kId, path);
  out.paymentMethods =
      optionalField(value, kPaymentMethods, path, json::arrayOf(decodePaymentMethod));
  out.phone = optionalString(value, kPhone, path);
  return out;
}

Json toJson(const Event::OrderDetails& details) {
  Json out = Json::object();
  putOptional(out, kBillingAddress, details.billingAddress, encode);
  put(out, kCart, toJson(details.cart));
  putOptional(out, kDeliveries, details.deliveries, encodeEach);
  putOptional(out, kEmail, details.email);
  put(out, kId, details.id);
  putOptional(out, kPaymentMethods, details.paymentMethods, encodeEach);
  putOptional(out, kPhone, details.phone);
  return out;
}

}  // namespace

CheckoutCompletedEvent decodeCheckoutCompletedEvent(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  CheckoutCompletedEvent out;
  out.orderDetails = requireField(value, kOrderDetails, path, decodeOrderDetails);
  return out;
}

Json toJson(const CheckoutCompletedEvent& event) {
  Json out = Json::object();
  put(out, kOrderDetails, toJson(event.orderDetails));
  return out;
}

}  // namespace vemba::checkout
