// The typed commerce data a standard web pixel event may carry, rooted at StandardEventData.
// Plain values handed on unchanged; every field is optional (absent when the page did not send it
// or sent null). Amounts and quantities are numbers; amounts come with a separate currency code.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vemba/Export.h"

namespace vemba::checkout {

// The money record of pixel data (not the completed event's Money).
struct VEMBA_EXPORT MoneyV2 {
  std::optional<double> amount;
  std::optional<std::string> currencyCode;
  bool operator==(const MoneyV2&) const = default;
};

// A custom cart attribute.
struct VEMBA_EXPORT Attribute {
  std::optional<std::string> key;
  std::optional<std::string> value;
  bool operator==(const Attribute&) const = default;
};

// A line item property.
struct VEMBA_EXPORT Property {
  std::optional<std::string> key;
  std::optional<std::string> value;
  bool operator==(const Property&) const = default;
};

struct VEMBA_EXPORT MailingAddress {
  std::optional<std::string> address1;
  std::optional<std::string> address2;
  std::optional<std::string> city;
  std::optional<std::string> country;
  std::optional<std::string> countryCode;
  std::optional<std::string> firstName;
  std::optional<std::string> lastName;
  std::optional<std::string> phone;
  std::optional<std::string> province;
  std::optional<std::string> provinceCode;
  std::optional<std::string> zip;
  bool operator==(const MailingAddress&) const = default;
};

struct VEMBA_EXPORT DeliveryOption {
  std::optional<MoneyV2> cost;
  std::optional<MoneyV2> costAfterDiscounts;
  std::optional<std::string> description;
  std::optional<std::string> handle;
  std::optional<std::string> title;
  std::optional<std::string> type;
  bool operator==(const DeliveryOption&) const = default;
};

struct VEMBA_EXPORT Delivery {
  std::optional<std::vector<DeliveryOption>> selectedDeliveryOptions;
  bool operator==(const Delivery&) const = default;
};

// A discount's value: an amount of money or a percentage, both in one record.
struct VEMBA_EXPORT Value {
  std::optional<double> amount;
  std::optional<std::string> currencyCode;
  std::optional<double> percentage;
  bool operator==(const Value&) const = default;
};

// A percentage on its own; no other record refers to it.
struct VEMBA_EXPORT PricingPercentageValue {
  std::optional<double> percentage;
  bool operator==(const PricingPercentageValue&) const = default;
};

struct VEMBA_EXPORT DiscountApplication {
  std::optional<std::string> allocationMethod;
  std::optional<std::string> targetSelection;
  std::optional<std::string> targetType;
  std::optional<std::string> title;
  std::optional<std::string> type;
  std::optional<Value> value;
  bool operator==(const DiscountApplication&) const = default;
};

struct VEMBA_EXPORT DiscountAllocation {
  std::optional<MoneyV2> amount;
  std::optional<DiscountApplication> discountApplication;
  bool operator==(const DiscountAllocation&) const = default;
};

struct VEMBA_EXPORT Image {
  std::optional<std::string> src;
  bool operator==(const Image&) const = default;
};

struct VEMBA_EXPORT Product {
  std::optional<std::string> id;
  std::optional<std::string> title;
  std::optional<std::string> type;
  std::optional<std::string> untranslatedTitle;
  std::optional<std::string> url;
  std::optional<std::string> vendor;
  bool operator==(const Product&) const = default;
};

struct VEMBA_EXPORT ProductVariant {
  std::optional<std::string> id;
  std::optional<Image> image;
  std::optional<MoneyV2> price;
  std::optional<Product> product;
  std::optional<std::string> sku;
  std::optional<std::string> title;
  std::optional<std::string> untranslatedTitle;
  bool operator==(const ProductVariant&) const = default;
};

struct VEMBA_EXPORT SellingPlan {
  std::optional<std::string> id;
  std::optional<std::string> name;
  bool operator==(const SellingPlan&) const = default;
};

struct VEMBA_EXPORT SellingPlanAllocation {
  std::optional<SellingPlan> sellingPlan;
  bool operator==(const SellingPlanAllocation&) const = default;
};

struct VEMBA_EXPORT CheckoutLineItem {
  std::optional<std::vector<DiscountAllocation>> discountAllocations;
  std::optional<MoneyV2> finalLinePrice;
  std::optional<std::string> id;
  std::optional<std::vector<Property>> properties;
  std::optional<double> quantity;
  std::optional<SellingPlanAllocation> sellingPlanAllocation;
  std::optional<std::string> title;
  std::optional<ProductVariant> variant;
  bool operator==(const CheckoutLineItem&) const = default;
};

struct VEMBA_EXPORT CartLineCost {
  std::optional<MoneyV2> totalAmount;
  bool operator==(const CartLineCost&) const = default;
};

// A cart line as pixel data (not the completed event's cart line).
struct VEMBA_EXPORT CartLine {
  std::optional<CartLineCost> cost;
  std::optional<ProductVariant> merchandise;
  std::optional<double> quantity;
  bool operator==(const CartLine&) const = default;
};

struct VEMBA_EXPORT Country {
  std::optional<std::string> isoCode;
  bool operator==(const Country&) const = default;
};

struct VEMBA_EXPORT Language {
  std::optional<std::string> isoCode;
  bool operator==(const Language&) const = default;
};

struct VEMBA_EXPORT Market {
  std::optional<std::string> handle;
  std::optional<std::string> id;
  bool operator==(const Market&) const = default;
};

struct VEMBA_EXPORT Localization {
  std::optional<Country> country;
  std::optional<Language> language;
  std::optional<Market> market;
  bool operator==(const Localization&) const = default;
};

struct VEMBA_EXPORT OrderCustomer {
  std::optional<std::string> id;
  std::optional<bool> isFirstOrder;
  bool operator==(const OrderCustomer&) const = default;
};

struct VEMBA_EXPORT Order {
  std::optional<OrderCustomer> customer;
  std::optional<std::string> id;
  bool operator==(const Order&) const = default;
};

struct VEMBA_EXPORT ShippingRate {
  std::optional<MoneyV2> price;
  bool operator==(const ShippingRate&) const = default;
};

struct VEMBA_EXPORT TransactionPaymentMethod {
  std::optional<std::string> name;
  std::optional<std::string> type;
  bool operator==(const TransactionPaymentMethod&) const = default;
};

struct VEMBA_EXPORT Transaction {
  std::optional<MoneyV2> amount;
  std::optional<std::string> gateway;
  std::optional<TransactionPaymentMethod> paymentMethod;
  bool operator==(const Transaction&) const = default;
};

struct VEMBA_EXPORT Checkout {
  std::optional<std::vector<Attribute>> attributes;
  std::optional<MailingAddress> billingAddress;
  std::optional<bool> buyerAcceptsEmailMarketing;
  std::optional<bool> buyerAcceptsSmsMarketing;
  std::optional<std::string> currencyCode;
  std::optional<Delivery> delivery;
  std::optional<std::vector<DiscountApplication>> discountApplications;
  std::optional<MoneyV2> discountsAmount;
  std::optional<std::string> email;
  std::optional<std::vector<CheckoutLineItem>> lineItems;
  std::optional<Localization> localization;
  std::optional<Order> order;
  std::optional<std::string> phone;
  std::optional<MailingAddress> shippingAddress;
  std::optional<ShippingRate> shippingLine;
  std::optional<std::string> smsMarketingPhone;
  std::optional<MoneyV2> subtotalPrice;
  std::optional<std::string> token;
  std::optional<MoneyV2> totalPrice;
  std::optional<MoneyV2> totalTax;
  std::optional<std::vector<Transaction>> transactions;
  bool operator==(const Checkout&) const = default;
};

struct VEMBA_EXPORT StandardEventData {
  std::optional<Checkout> checkout;
  bool operator==(const StandardEventData&) const = default;
};

}  // namespace vemba::checkout
