#include "checkout/events/StandardEventDataCoding.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "checkout/events/FreeFormJson.h"
#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

using json::Json;
using json::JsonPath;
using json::optionalField;
using json::putOptional;

constexpr std::string_view kAddress1 = "address1";
constexpr std::string_view kAddress2 = "address2";
constexpr std::string_view kAllocationMethod = "allocationMethod";
constexpr std::string_view kAmount = "amount";
constexpr std::string_view kAttributes = "attributes";
constexpr std::string_view kBillingAddress = "billingAddress";
constexpr std::string_view kBuyerAcceptsEmailMarketing = "buyerAcceptsEmailMarketing";
constexpr std::string_view kBuyerAcceptsSmsMarketing = "buyerAcceptsSmsMarketing";
constexpr std::string_view kCheckout = "checkout";
constexpr std::string_view kCity = "city";
constexpr std::string_view kCost = "cost";
constexpr std::string_view kCostAfterDiscounts = "costAfterDiscounts";
constexpr std::string_view kCountry = "country";
constexpr std::string_view kCountryCode = "countryCode";
constexpr std::string_view kCurrencyCode = "currencyCode";
constexpr std::string_view kCustomer = "customer";
constexpr std::string_view kDelivery = "delivery";
constexpr std::string_view kDescription = "description";
constexpr std::string_view kDiscountAllocations = "discountAllocations";
constexpr std::string_view kDiscountApplication = "discountApplication";
constexpr std::string_view kDiscountApplications = "discountApplications";
constexpr std::string_view kDiscountsAmount = "discountsAmount";
constexpr std::string_view kEmail = "email";
constexpr std::string_view kFinalLinePrice = "finalLinePrice";
constexpr std::string_view kFirstName = "firstName";
constexpr std::string_view kGateway = "gateway";
constexpr std::string_view kHandle = "handle";
constexpr std::string_view kId = "id";
constexpr std::string_view kImage = "image";
constexpr std::string_view kIsFirstOrder = "isFirstOrder";
constexpr std::string_view kIsoCode = "isoCode";
constexpr std::string_view kKey = "key";
constexpr std::string_view kLanguage = "language";
constexpr std::string_view kLastName = "lastName";
constexpr std::string_view kLineItems = "lineItems";
constexpr std::string_view kLocalization = "localization";
constexpr std::string_view kMarket = "market";
constexpr std::string_view kMerchandise = "merchandise";
constexpr std::string_view kName = "name";
constexpr std::string_view kOrder = "order";
constexpr std::string_view kPaymentMethod = "paymentMethod";
constexpr std::string_view kPercentage = "percentage";
constexpr std::string_view kPhone = "phone";
constexpr std::string_view kPrice = "price";
constexpr std::string_view kProduct = "product";
constexpr std::string_view kProperties = "properties";
constexpr std::string_view kProvince = "province";
constexpr std::string_view kProvinceCode = "provinceCode";
constexpr std::string_view kQuantity = "quantity";
constexpr std::string_view kSelectedDeliveryOptions = "selectedDeliveryOptions";
constexpr std::string_view kSellingPlan = "sellingPlan";
constexpr std::string_view kSellingPlanAllocation = "sellingPlanAllocation";
constexpr std::string_view kShippingAddress = "shippingAddress";
constexpr std::string_view kShippingLine = "shippingLine";
constexpr std::string_view kSku = "sku";
constexpr std::string_view kSmsMarketingPhone = "smsMarketingPhone";
constexpr std::string_view kSrc = "src";
constexpr std::string_view kSubtotalPrice = "subtotalPrice";
constexpr std::string_view kTargetSelection = "targetSelection";
constexpr std::string_view kTargetType = "targetType";
constexpr std::string_view kTitle = "title";
constexpr std::string_view kToken = "token";
constexpr std::string_view kTotalAmount = "totalAmount";
constexpr std::string_view kTotalPrice = "totalPrice";
constexpr std::string_view kTotalTax = "totalTax";
constexpr std::string_view kTransactions = "transactions";
constexpr std::string_view kType = "type";
constexpr std::string_view kUntranslatedTitle = "untranslatedTitle";
constexpr std::string_view kUrl = "url";
constexpr std::string_view kValue = "value";
constexpr std::string_view kVariant = "variant";
constexpr std::string_view kVendor = "vendor";
constexpr std::string_view kZip = "zip";

Json toJson(const MoneyV2& moneyV2);
Json toJson(const Attribute& attribute);
Json toJson(const Property& property);
Json toJson(const MailingAddress& mailingAddress);
Json toJson(const DeliveryOption& deliveryOption);
Json toJson(const Delivery& delivery);
Json toJson(const Value& value);
Json toJson(const DiscountApplication& discountApplication);
Json toJson(const DiscountAllocation& discountAllocation);
Json toJson(const Image& image);
Json toJson(const Product& product);
Json toJson(const ProductVariant& productVariant);
Json toJson(const SellingPlan& sellingPlan);
Json toJson(const SellingPlanAllocation& sellingPlanAllocation);
Json toJson(const CheckoutLineItem& checkoutLineItem);
Json toJson(const CartLineCost& cartLineCost);
Json toJson(const Country& country);
Json toJson(const Language& language);
Json toJson(const Market& market);
Json toJson(const Localization& localization);
Json toJson(const OrderCustomer& orderCustomer);
Json toJson(const Order& order);
Json toJson(const ShippingRate& shippingRate);
Json toJson(const TransactionPaymentMethod& transactionPaymentMethod);
Json toJson(const Transaction& transaction);
Json toJson(const Checkout& checkout);

constexpr auto encode = [](const auto& record) { return toJson(record); };
constexpr auto encodeEach = json::arrayEncoder(encode);

// How the decoders below read numbers and arrays; everything else they read the same way under
// both rule sets.
//
// AsSent reads the JSON value as it is.
//
// AsReadFreeForm reads a free-form object (one readJsonObject accepts) as if it had been read by
// readJsonObject and written back by toJson, without building either. That round trip changes
// only what these rules account for:
// - a member number that reads as an integer becomes that integer (freeFormMemberDouble);
// - nulls are dropped from arrays. In objects they are dropped too, but every field here is
//   optional, so a null reads as absent either way;
// - numbers inside arrays become doubles, but every array here holds records, so any element
//   that is not an object fails either way.
struct AsSent {
  static std::optional<double> optionalNumber(const Json& object, std::string_view key,
                                              const JsonPath& path) {
    return json::optionalDouble(object, key, path);
  }
  template <typename Fn>
  static constexpr auto arrayOf(Fn decodeElement) {
    return json::arrayOf(decodeElement);
  }
};

struct AsReadFreeForm {
  static std::optional<double> optionalNumber(const Json& object, std::string_view key,
                                              const JsonPath& path) {
    return optionalField(object, key, path, freeFormMemberDouble);
  }
  template <typename Fn>
  static constexpr auto arrayOf(Fn decodeElement) {
    return [decodeElement](const Json& array, const JsonPath& path) {
      json::requireArray(array, path);
      std::vector<decltype(decodeElement(array, path))> out;
      out.reserve(array.size());
      std::size_t index = 0;
      for (const Json& element : array) {
        if (!element.is_null()) {
          out.push_back(decodeElement(element, path / index));
        }
        ++index;
      }
      return out;
    };
  }
};

// ---- MoneyV2

template <typename Rules>
MoneyV2 decodeMoneyV2(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  MoneyV2 out;
  out.amount = Rules::optionalNumber(value, kAmount, path);
  out.currencyCode = json::optionalString(value, kCurrencyCode, path);
  return out;
}

Json toJson(const MoneyV2& moneyV2) {
  Json out = Json::object();
  putOptional(out, kAmount, moneyV2.amount);
  putOptional(out, kCurrencyCode, moneyV2.currencyCode);
  return out;
}

// ---- Attribute

template <typename Rules>
Attribute decodeAttribute(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Attribute out;
  out.key = json::optionalString(value, kKey, path);
  out.value = json::optionalString(value, kValue, path);
  return out;
}

Json toJson(const Attribute& attribute) {
  Json out = Json::object();
  putOptional(out, kKey, attribute.key);
  putOptional(out, kValue, attribute.value);
  return out;
}

// ---- Property

template <typename Rules>
Property decodeProperty(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Property out;
  out.key = json::optionalString(value, kKey, path);
  out.value = json::optionalString(value, kValue, path);
  return out;
}

Json toJson(const Property& property) {
  Json out = Json::object();
  putOptional(out, kKey, property.key);
  putOptional(out, kValue, property.value);
  return out;
}

// ---- MailingAddress

template <typename Rules>
MailingAddress decodeMailingAddress(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  MailingAddress out;
  out.address1 = json::optionalString(value, kAddress1, path);
  out.address2 = json::optionalString(value, kAddress2, path);
  out.city = json::optionalString(value, kCity, path);
  out.country = json::optionalString(value, kCountry, path);
  out.countryCode = json::optionalString(value, kCountryCode, path);
  out.firstName = json::optionalString(value, kFirstName, path);
  out.lastName = json::optionalString(value, kLastName, path);
  out.phone = json::optionalString(value, kPhone, path);
  out.province = json::optionalString(value, kProvince, path);
  out.provinceCode = json::optionalString(value, kProvinceCode, path);
  out.zip = json::optionalString(value, kZip, path);
  return out;
}

Json toJson(const MailingAddress& mailingAddress) {
  Json out = Json::object();
  putOptional(out, kAddress1, mailingAddress.address1);
  putOptional(out, kAddress2, mailingAddress.address2);
  putOptional(out, kCity, mailingAddress.city);
  putOptional(out, kCountry, mailingAddress.country);
  putOptional(out, kCountryCode, mailingAddress.countryCode);
  putOptional(out, kFirstName, mailingAddress.firstName);
  putOptional(out, kLastName, mailingAddress.lastName);
  putOptional(out, kPhone, mailingAddress.phone);
  putOptional(out, kProvince, mailingAddress.province);
  putOptional(out, kProvinceCode, mailingAddress.provinceCode);
  putOptional(out, kZip, mailingAddress.zip);
  return out;
}

// ---- DeliveryOption

template <typename Rules>
DeliveryOption decodeDeliveryOption(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  DeliveryOption out;
  out.cost = optionalField(value, kCost, path, decodeMoneyV2<Rules>);
  out.costAfterDiscounts = optionalField(value, kCostAfterDiscounts, path, decodeMoneyV2<Rules>);
  out.description = json::optionalString(value, kDescription, path);
  out.handle = json::optionalString(value, kHandle, path);
  out.title = json::optionalString(value, kTitle, path);
  out.type = json::optionalString(value, kType, path);
  return out;
}

Json toJson(const DeliveryOption& deliveryOption) {
  Json out = Json::object();
  putOptional(out, kCost, deliveryOption.cost, encode);
  putOptional(out, kCostAfterDiscounts, deliveryOption.costAfterDiscounts, encode);
  putOptional(out, kDescription, deliveryOption.description);
  putOptional(out, kHandle, deliveryOption.handle);
  putOptional(out, kTitle, deliveryOption.title);
  putOptional(out, kType, deliveryOption.type);
  return out;
}

// ---- Delivery

template <typename Rules>
Delivery decodeDelivery(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Delivery out;
  out.selectedDeliveryOptions = optionalField(value, kSelectedDeliveryOptions, path,
                                              Rules::arrayOf(decodeDeliveryOption<Rules>));
  return out;
}

Json toJson(const Delivery& delivery) {
  Json out = Json::object();
  putOptional(out, kSelectedDeliveryOptions, delivery.selectedDeliveryOptions, encodeEach);
  return out;
}

// ---- Value

template <typename Rules>
Value decodeValue(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Value out;
  out.amount = Rules::optionalNumber(value, kAmount, path);
  out.currencyCode = json::optionalString(value, kCurrencyCode, path);
  out.percentage = Rules::optionalNumber(value, kPercentage, path);
  return out;
}

Json toJson(const Value& value) {
  Json out = Json::object();
  putOptional(out, kAmount, value.amount);
  putOptional(out, kCurrencyCode, value.currencyCode);
  putOptional(out, kPercentage, value.percentage);
  return out;
}

// ---- DiscountApplication

template <typename Rules>
DiscountApplication decodeDiscountApplication(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  DiscountApplication out;
  out.allocationMethod = json::optionalString(value, kAllocationMethod, path);
  out.targetSelection = json::optionalString(value, kTargetSelection, path);
  out.targetType = json::optionalString(value, kTargetType, path);
  out.title = json::optionalString(value, kTitle, path);
  out.type = json::optionalString(value, kType, path);
  out.value = optionalField(value, kValue, path, decodeValue<Rules>);
  return out;
}

Json toJson(const DiscountApplication& discountApplication) {
  Json out = Json::object();
  putOptional(out, kAllocationMethod, discountApplication.allocationMethod);
  putOptional(out, kTargetSelection, discountApplication.targetSelection);
  putOptional(out, kTargetType, discountApplication.targetType);
  putOptional(out, kTitle, discountApplication.title);
  putOptional(out, kType, discountApplication.type);
  putOptional(out, kValue, discountApplication.value, encode);
  return out;
}

// ---- DiscountAllocation

template <typename Rules>
DiscountAllocation decodeDiscountAllocation(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  DiscountAllocation out;
  out.amount = optionalField(value, kAmount, path, decodeMoneyV2<Rules>);
  out.discountApplication =
      optionalField(value, kDiscountApplication, path, decodeDiscountApplication<Rules>);
  return out;
}

Json toJson(const DiscountAllocation& discountAllocation) {
  Json out = Json::object();
  putOptional(out, kAmount, discountAllocation.amount, encode);
  putOptional(out, kDiscountApplication, discountAllocation.discountApplication, encode);
  return out;
}

// ---- Image

template <typename Rules>
Image decodeImage(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Image out;
  out.src = json::optionalString(value, kSrc, path);
  return out;
}

Json toJson(const Image& image) {
  Json out = Json::object();
  putOptional(out, kSrc, image.src);
  return out;
}

// ---- Product

template <typename Rules>
Product decodeProduct(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Product out;
  out.id = json::optionalString(value, kId, path);
  out.title = json::optionalString(value, kTitle, path);
  out.type = json::optionalString(value, kType, path);
  out.untranslatedTitle = json::optionalString(value, kUntranslatedTitle, path);
  out.url = json::optionalString(value, kUrl, path);
  out.vendor = json::optionalString(value, kVendor, path);
  return out;
}

Json toJson(const Product& product) {
  Json out = Json::object();
  putOptional(out, kId, product.id);
  putOptional(out, kTitle, product.title);
  putOptional(out, kType, product.type);
  putOptional(out, kUntranslatedTitle, product.untranslatedTitle);
  putOptional(out, kUrl, product.url);
  putOptional(out, kVendor, product.vendor);
  return out;
}

// ---- ProductVariant

template <typename Rules>
ProductVariant decodeProductVariant(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  ProductVariant out;
  out.id = json::optionalString(value, kId, path);
  out.image = optionalField(value, kImage, path, decodeImage<Rules>);
  out.price = optionalField(value, kPrice, path, decodeMoneyV2<Rules>);
  out.product = optionalField(value, kProduct, path, decodeProduct<Rules>);
  out.sku = json::optionalString(value, kSku, path);
  out.title = json::optionalString(value, kTitle, path);
  out.untranslatedTitle = json::optionalString(value, kUntranslatedTitle, path);
  return out;
}

Json toJson(const ProductVariant& productVariant) {
  Json out = Json::object();
  putOptional(out, kId, productVariant.id);
  putOptional(out, kImage, productVariant.image, encode);
  putOptional(out, kPrice, productVariant.price, encode);
  putOptional(out, kProduct, productVariant.product, encode);
  putOptional(out, kSku, productVariant.sku);
  putOptional(out, kTitle, productVariant.title);
  putOptional(out, kUntranslatedTitle, productVariant.untranslatedTitle);
  return out;
}

// ---- SellingPlan

template <typename Rules>
SellingPlan decodeSellingPlan(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  SellingPlan out;
  out.id = json::optionalString(value, kId, path);
  out.name = json::optionalString(value, kName, path);
  return out;
}

Json toJson(const SellingPlan& sellingPlan) {
  Json out = Json::object();
  putOptional(out, kId, sellingPlan.id);
  putOptional(out, kName, sellingPlan.name);
  return out;
}

// ---- SellingPlanAllocation

template <typename Rules>
SellingPlanAllocation decodeSellingPlanAllocation(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  SellingPlanAllocation out;
  out.sellingPlan = optionalField(value, kSellingPlan, path, decodeSellingPlan<Rules>);
  return out;
}

Json toJson(const SellingPlanAllocation& sellingPlanAllocation) {
  Json out = Json::object();
  putOptional(out, kSellingPlan, sellingPlanAllocation.sellingPlan, encode);
  return out;
}

// ---- CheckoutLineItem

template <typename Rules>
CheckoutLineItem decodeCheckoutLineItem(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  CheckoutLineItem out;
  out.discountAllocations = optionalField(value, kDiscountAllocations, path,
                                          Rules::arrayOf(decodeDiscountAllocation<Rules>));
  out.finalLinePrice = optionalField(value, kFinalLinePrice, path, decodeMoneyV2<Rules>);
  out.id = json::optionalString(value, kId, path);
  out.properties = optionalField(value, kProperties, path, Rules::arrayOf(decodeProperty<Rules>));
  out.quantity = Rules::optionalNumber(value, kQuantity, path);
  out.sellingPlanAllocation =
      optionalField(value, kSellingPlanAllocation, path, decodeSellingPlanAllocation<Rules>);
  out.title = json::optionalString(value, kTitle, path);
  out.variant = optionalField(value, kVariant, path, decodeProductVariant<Rules>);
  return out;
}

Json toJson(const CheckoutLineItem& checkoutLineItem) {
  Json out = Json::object();
  putOptional(out, kDiscountAllocations, checkoutLineItem.discountAllocations, encodeEach);
  putOptional(out, kFinalLinePrice, checkoutLineItem.finalLinePrice, encode);
  putOptional(out, kId, checkoutLineItem.id);
  putOptional(out, kProperties, checkoutLineItem.properties, encodeEach);
  putOptional(out, kQuantity, checkoutLineItem.quantity);
  putOptional(out, kSellingPlanAllocation, checkoutLineItem.sellingPlanAllocation, encode);
  putOptional(out, kTitle, checkoutLineItem.title);
  putOptional(out, kVariant, checkoutLineItem.variant, encode);
  return out;
}

// ---- CartLineCost

template <typename Rules>
CartLineCost decodeCartLineCost(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  CartLineCost out;
  out.totalAmount = optionalField(value, kTotalAmount, path, decodeMoneyV2<Rules>);
  return out;
}

Json toJson(const CartLineCost& cartLineCost) {
  Json out = Json::object();
  putOptional(out, kTotalAmount, cartLineCost.totalAmount, encode);
  return out;
}

// ---- Country

template <typename Rules>
Country decodeCountry(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Country out;
  out.isoCode = json::optionalString(value, kIsoCode, path);
  return out;
}

Json toJson(const Country& country) {
  Json out = Json::object();
  putOptional(out, kIsoCode, country.isoCode);
  return out;
}

// ---- Language

template <typename Rules>
Language decodeLanguage(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Language out;
  out.isoCode = json::optionalString(value, kIsoCode, path);
  return out;
}

Json toJson(const Language& language) {
  Json out = Json::object();
  putOptional(out, kIsoCode, language.isoCode);
  return out;
}

// ---- Market

template <typename Rules>
Market decodeMarket(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Market out;
  out.handle = json::optionalString(value, kHandle, path);
  out.id = json::optionalString(value, kId, path);
  return out;
}

Json toJson(const Market& market) {
  Json out = Json::object();
  putOptional(out, kHandle, market.handle);
  putOptional(out, kId, market.id);
  return out;
}

// ---- Localization

template <typename Rules>
Localization decodeLocalization(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Localization out;
  out.country = optionalField(value, kCountry, path, decodeCountry<Rules>);
  out.language = optionalField(value, kLanguage, path, decodeLanguage<Rules>);
  out.market = optionalField(value, kMarket, path, decodeMarket<Rules>);
  return out;
}

Json toJson(const Localization& localization) {
  Json out = Json::object();
  putOptional(out, kCountry, localization.country, encode);
  putOptional(out, kLanguage, localization.language, encode);
  putOptional(out, kMarket, localization.market, encode);
  return out;
}

// ---- OrderCustomer

template <typename Rules>
OrderCustomer decodeOrderCustomer(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  OrderCustomer out;
  out.id = json::optionalString(value, kId, path);
  out.isFirstOrder = json::optionalBool(value, kIsFirstOrder, path);
  return out;
}

Json toJson(const OrderCustomer& orderCustomer) {
  Json out = Json::object();
  putOptional(out, kId, orderCustomer.id);
  putOptional(out, kIsFirstOrder, orderCustomer.isFirstOrder);
  return out;
}

// ---- Order

template <typename Rules>
Order decodeOrder(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Order out;
  out.customer = optionalField(value, kCustomer, path, decodeOrderCustomer<Rules>);
  out.id = json::optionalString(value, kId, path);
  return out;
}

Json toJson(const Order& order) {
  Json out = Json::object();
  putOptional(out, kCustomer, order.customer, encode);
  putOptional(out, kId, order.id);
  return out;
}

// ---- ShippingRate

template <typename Rules>
ShippingRate decodeShippingRate(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  ShippingRate out;
  out.price = optionalField(value, kPrice, path, decodeMoneyV2<Rules>);
  return out;
}

Json toJson(const ShippingRate& shippingRate) {
  Json out = Json::object();
  putOptional(out, kPrice, shippingRate.price, encode);
  return out;
}

// ---- TransactionPaymentMethod

template <typename Rules>
TransactionPaymentMethod decodeTransactionPaymentMethod(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  TransactionPaymentMethod out;
  out.name = json::optionalString(value, kName, path);
  out.type = json::optionalString(value, kType, path);
  return out;
}

Json toJson(const TransactionPaymentMethod& transactionPaymentMethod) {
  Json out = Json::object();
  putOptional(out, kName, transactionPaymentMethod.name);
  putOptional(out, kType, transactionPaymentMethod.type);
  return out;
}

// ---- Transaction

template <typename Rules>
Transaction decodeTransaction(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Transaction out;
  out.amount = optionalField(value, kAmount, path, decodeMoneyV2<Rules>);
  out.gateway = json::optionalString(value, kGateway, path);
  out.paymentMethod =
      optionalField(value, kPaymentMethod, path, decodeTransactionPaymentMethod<Rules>);
  return out;
}

Json toJson(const Transaction& transaction) {
  Json out = Json::object();
  putOptional(out, kAmount, transaction.amount, encode);
  putOptional(out, kGateway, transaction.gateway);
  putOptional(out, kPaymentMethod, transaction.paymentMethod, encode);
  return out;
}

// ---- Checkout

template <typename Rules>
Checkout decodeCheckout(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Checkout out;
  out.attributes = optionalField(value, kAttributes, path, Rules::arrayOf(decodeAttribute<Rules>));
  out.billingAddress = optionalField(value, kBillingAddress, path, decodeMailingAddress<Rules>);
  out.buyerAcceptsEmailMarketing = json::optionalBool(value, kBuyerAcceptsEmailMarketing, path);
  out.buyerAcceptsSmsMarketing = json::optionalBool(value, kBuyerAcceptsSmsMarketing, path);
  out.currencyCode = json::optionalString(value, kCurrencyCode, path);
  out.delivery = optionalField(value, kDelivery, path, decodeDelivery<Rules>);
  out.discountApplications = optionalField(value, kDiscountApplications, path,
                                           Rules::arrayOf(decodeDiscountApplication<Rules>));
  out.discountsAmount = optionalField(value, kDiscountsAmount, path, decodeMoneyV2<Rules>);
  out.email = json::optionalString(value, kEmail, path);
  out.lineItems =
      optionalField(value, kLineItems, path, Rules::arrayOf(decodeCheckoutLineItem<Rules>));
  out.localization = optionalField(value, kLocalization, path, decodeLocalization<Rules>);
  out.order = optionalField(value, kOrder, path, decodeOrder<Rules>);
  out.phone = json::optionalString(value, kPhone, path);
  out.shippingAddress = optionalField(value, kShippingAddress, path, decodeMailingAddress<Rules>);
  out.shippingLine = optionalField(value, kShippingLine, path, decodeShippingRate<Rules>);
  out.smsMarketingPhone = json::optionalString(value, kSmsMarketingPhone, path);
  out.subtotalPrice = optionalField(value, kSubtotalPrice, path, decodeMoneyV2<Rules>);
  out.token = json::optionalString(value, kToken, path);
  out.totalPrice = optionalField(value, kTotalPrice, path, decodeMoneyV2<Rules>);
  out.totalTax = optionalField(value, kTotalTax, path, decodeMoneyV2<Rules>);
  out.transactions =
      optionalField(value, kTransactions, path, Rules::arrayOf(decodeTransaction<Rules>));
  return out;
}

Json toJson(const Checkout& checkout) {
  Json out = Json::object();
  putOptional(out, kAttributes, checkout.attributes, encodeEach);
  putOptional(out, kBillingAddress, checkout.billingAddress, encode);
  putOptional(out, kBuyerAcceptsEmailMarketing, checkout.buyerAcceptsEmailMarketing);
  putOptional(out, kBuyerAcceptsSmsMarketing, checkout.buyerAcceptsSmsMarketing);
  putOptional(out, kCurrencyCode, checkout.currencyCode);
  putOptional(out, kDelivery, checkout.delivery, encode);
  putOptional(out, kDiscountApplications, checkout.discountApplications, encodeEach);
  putOptional(out, kDiscountsAmount, checkout.discountsAmount, encode);
  putOptional(out, kEmail, checkout.email);
  putOptional(out, kLineItems, checkout.lineItems, encodeEach);
  putOptional(out, kLocalization, checkout.localization, encode);
  putOptional(out, kOrder, checkout.order, encode);
  putOptional(out, kPhone, checkout.phone);
  putOptional(out, kShippingAddress, checkout.shippingAddress, encode);
  putOptional(out, kShippingLine, checkout.shippingLine, encode);
  putOptional(out, kSmsMarketingPhone, checkout.smsMarketingPhone);
  putOptional(out, kSubtotalPrice, checkout.subtotalPrice, encode);
  putOptional(out, kToken, checkout.token);
  putOptional(out, kTotalPrice, checkout.totalPrice, encode);
  putOptional(out, kTotalTax, checkout.totalTax, encode);
  putOptional(out, kTransactions, checkout.transactions, encodeEach);
  return out;
}

// ---- StandardEventData

template <typename Rules>
StandardEventData decodeStandardEventDataWith(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  StandardEventData out;
  out.checkout = optionalField(value, kCheckout, path, decodeCheckout<Rules>);
  return out;
}

}  // namespace

// ---- PricingPercentageValue

PricingPercentageValue decodePricingPercentageValue(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  PricingPercentageValue out;
  out.percentage = json::optionalDouble(value, kPercentage, path);
  return out;
}

Json toJson(const PricingPercentageValue& pricingPercentageValue) {
  Json out = Json::object();
  putOptional(out, kPercentage, pricingPercentageValue.percentage);
  return out;
}

// ---- CartLine

CartLine decodeCartLine(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  CartLine out;
  out.cost = optionalField(value, kCost, path, decodeCartLineCost<AsSent>);
  out.merchandise = optionalField(value, kMerchandise, path, decodeProductVariant<AsSent>);
  out.quantity = json::optionalDouble(value, kQuantity, path);
  return out;
}

Json toJson(const CartLine& cartLine) {
  Json out = Json::object();
  putOptional(out, kCost, cartLine.cost, encode);
  putOptional(out, kMerchandise, cartLine.merchandise, encode);
  putOptional(out, kQuantity, cartLine.quantity);
  return out;
}

// ---- StandardEventData

StandardEventData decodeStandardEventData(const Json& value, const JsonPath& path) {
  return decodeStandardEventDataWith<AsSent>(value, path);
}

StandardEventData decodeFreeFormStandardEventData(const Json& value, const JsonPath& path) {
  return decodeStandardEventDataWith<AsReadFreeForm>(value, path);
}

Json toJson(const StandardEventData& standardEventData) {
  Json out = Json::object();
  putOptional(out, kCheckout, standardEventData.checkout, encode);
  return out;
}

}  // namespace vemba::checkout
