#include "checkout/events/StandardEventDataCoding.h"

namespace vemba::checkout {

using json::field;
using json::fields;
using json::Tag;

// The commerce data's field tables; every field is optional and every key equals its field's
// name.

constexpr auto jsonFields(Tag<MoneyV2> /*record*/) {
  return fields(field("amount", &MoneyV2::amount), field("currencyCode", &MoneyV2::currencyCode));
}

constexpr auto jsonFields(Tag<Attribute> /*record*/) {
  return fields(field("key", &Attribute::key), field("value", &Attribute::value));
}

constexpr auto jsonFields(Tag<Property> /*record*/) {
  return fields(field("key", &Property::key), field("value", &Property::value));
}

constexpr auto jsonFields(Tag<MailingAddress> /*record*/) {
  using R = MailingAddress;
  return fields(field("address1", &R::address1), field("address2", &R::address2),
                field("city", &R::city), field("country", &R::country),
                field("countryCode", &R::countryCode), field("firstName", &R::firstName),
                field("lastName", &R::lastName), field("phone", &R::phone),
                field("province", &R::province), field("provinceCode", &R::provinceCode),
                field("zip", &R::zip));
}

constexpr auto jsonFields(Tag<DeliveryOption> /*record*/) {
  using R = DeliveryOption;
  return fields(field("cost", &R::cost), field("costAfterDiscounts", &R::costAfterDiscounts),
                field("description", &R::description), field("handle", &R::handle),
                field("title", &R::title), field("type", &R::type));
}

constexpr auto jsonFields(Tag<Delivery> /*record*/) {
  return fields(field("selectedDeliveryOptions", &Delivery::selectedDeliveryOptions));
}

constexpr auto jsonFields(Tag<Value> /*record*/) {
  return fields(field("amount", &Value::amount), field("currencyCode", &Value::currencyCode),
                field("percentage", &Value::percentage));
}

constexpr auto jsonFields(Tag<PricingPercentageValue> /*record*/) {
  return fields(field("percentage", &PricingPercentageValue::percentage));
}

constexpr auto jsonFields(Tag<DiscountApplication> /*record*/) {
  using R = DiscountApplication;
  return fields(field("allocationMethod", &R::allocationMethod),
                field("targetSelection", &R::targetSelection), field("targetType", &R::targetType),
                field("title", &R::title), field("type", &R::type), field("value", &R::value));
}

constexpr auto jsonFields(Tag<DiscountAllocation> /*record*/) {
  using R = DiscountAllocation;
  return fields(field("amount", &R::amount), field("discountApplication", &R::discountApplication));
}

constexpr auto jsonFields(Tag<Image> /*record*/) {
  return fields(field("src", &Image::src));
}

constexpr auto jsonFields(Tag<Product> /*record*/) {
  using R = Product;
  return fields(field("id", &R::id), field("title", &R::title), field("type", &R::type),
                field("untranslatedTitle", &R::untranslatedTitle), field("url", &R::url),
                field("vendor", &R::vendor));
}

constexpr auto jsonFields(Tag<ProductVariant> /*record*/) {
  using R = ProductVariant;
  return fields(field("id", &R::id), field("image", &R::image), field("price", &R::price),
                field("product", &R::product), field("sku", &R::sku), field("title", &R::title),
                field("untranslatedTitle", &R::untranslatedTitle));
}

constexpr auto jsonFields(Tag<SellingPlan> /*record*/) {
  return fields(field("id", &SellingPlan::id), field("name", &SellingPlan::name));
}

constexpr auto jsonFields(Tag<SellingPlanAllocation> /*record*/) {
  return fields(field("sellingPlan", &SellingPlanAllocation::sellingPlan));
}

constexpr auto jsonFields(Tag<CheckoutLineItem> /*record*/) {
  using R = CheckoutLineItem;
  return fields(field("discountAllocations", &R::discountAllocations),
                field("finalLinePrice", &R::finalLinePrice), field("id", &R::id),
                field("properties", &R::properties), field("quantity", &R::quantity),
                field("sellingPlanAllocation", &R::sellingPlanAllocation),
                field("title", &R::title), field("variant", &R::variant));
}

constexpr auto jsonFields(Tag<CartLineCost> /*record*/) {
  return fields(field("totalAmount", &CartLineCost::totalAmount));
}

constexpr auto jsonFields(Tag<CartLine> /*record*/) {
  return fields(field("cost", &CartLine::cost), field("merchandise", &CartLine::merchandise),
                field("quantity", &CartLine::quantity));
}

constexpr auto jsonFields(Tag<Country> /*record*/) {
  return fields(field("isoCode", &Country::isoCode));
}

constexpr auto jsonFields(Tag<Language> /*record*/) {
  return fields(field("isoCode", &Language::isoCode));
}

constexpr auto jsonFields(Tag<Market> /*record*/) {
  return fields(field("handle", &Market::handle), field("id", &Market::id));
}

constexpr auto jsonFields(Tag<Localization> /*record*/) {
  using R = Localization;
  return fields(field("country", &R::country), field("language", &R::language),
                field("market", &R::market));
}

constexpr auto jsonFields(Tag<OrderCustomer> /*record*/) {
  return fields(field("id", &OrderCustomer::id),
                field("isFirstOrder", &OrderCustomer::isFirstOrder));
}

constexpr auto jsonFields(Tag<Order> /*record*/) {
  return fields(field("customer", &Order::customer), field("id", &Order::id));
}

constexpr auto jsonFields(Tag<ShippingRate> /*record*/) {
  return fields(field("price", &ShippingRate::price));
}

constexpr auto jsonFields(Tag<TransactionPaymentMethod> /*record*/) {
  return fields(field("name", &TransactionPaymentMethod::name),
                field("type", &TransactionPaymentMethod::type));
}

constexpr auto jsonFields(Tag<Transaction> /*record*/) {
  using R = Transaction;
  return fields(field("amount", &R::amount), field("gateway", &R::gateway),
                field("paymentMethod", &R::paymentMethod));
}

constexpr auto jsonFields(Tag<Checkout> /*record*/) {
  using R = Checkout;
  return fields(
      field("attributes", &R::attributes), field("billingAddress", &R::billingAddress),
      field("buyerAcceptsEmailMarketing", &R::buyerAcceptsEmailMarketing),
      field("buyerAcceptsSmsMarketing", &R::buyerAcceptsSmsMarketing),
      field("currencyCode", &R::currencyCode), field("delivery", &R::delivery),
      field("discountApplications", &R::discountApplications),
      field("discountsAmount", &R::discountsAmount), field("email", &R::email),
      field("lineItems", &R::lineItems), field("localization", &R::localization),
      field("order", &R::order), field("phone", &R::phone),
      field("shippingAddress", &R::shippingAddress), field("shippingLine", &R::shippingLine),
      field("smsMarketingPhone", &R::smsMarketingPhone), field("subtotalPrice", &R::subtotalPrice),
      field("token", &R::token), field("totalPrice", &R::totalPrice),
      field("totalTax", &R::totalTax), field("transactions", &R::transactions));
}

constexpr auto jsonFields(Tag<StandardEventData> /*record*/) {
  return fields(field("checkout", &StandardEventData::checkout));
}

StandardEventData decodeStandardEventData(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<StandardEventData>(value, path);
}

json::Json encodeStandardEventData(const StandardEventData& data) {
  return json::encodeRecord(data);
}

CartLine decodeCartLine(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<CartLine>(value, path);
}

json::Json encodeCartLine(const CartLine& line) {
  return json::encodeRecord(line);
}

PricingPercentageValue decodePricingPercentageValue(const json::Json& value,
                                                    const json::JsonPath& path) {
  return json::decodeRecord<PricingPercentageValue>(value, path);
}

json::Json encodePricingPercentageValue(const PricingPercentageValue& value) {
  return json::encodeRecord(value);
}

}  // namespace vemba::checkout
