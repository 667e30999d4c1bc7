#include "CheckoutJson.h"

#include "checkout/CheckoutErrorMapping.h"
#include "checkout/events/PixelEventCoding.h"

namespace vemba::inspect {

using checkout::CheckoutError;

Line checkoutErrorJson(const CheckoutError& error) {
  Line out;
  std::visit(
      [&out](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, CheckoutError::SdkError>) {
          out["case"] = "sdkError";
        } else if constexpr (std::is_same_v<T, CheckoutError::ConfigurationError>) {
          out["case"] = "configurationError";
          out["message"] = value.message;
          out["code"] = checkout::rawValue(value.code);
        } else if constexpr (std::is_same_v<T, CheckoutError::Unavailable>) {
          out["case"] = "checkoutUnavailable";
          out["message"] = value.message;
          if (const auto* client =
                  std::get_if<checkout::CheckoutUnavailable::ClientError>(&value.code.value())) {
            out["code"] = Line{{"clientError", checkout::rawValue(client->code)}};
          } else {
            out["code"] = Line{
                {"httpError", std::get<checkout::CheckoutUnavailable::HttpError>(value.code.value())
                                  .statusCode}};
          }
        } else {
          out["case"] = "checkoutExpired";
          out["message"] = value.message;
          out["code"] = checkout::rawValue(value.code);
        }
      },
      error.value());
  out["recoverable"] = error.isRecoverable();
  return out;
}

Line pixelJson(const std::optional<checkout::PixelEvent>& pixel) {
  if (!pixel) {
    return Line(nullptr);
  }
  if (const auto* standard = std::get_if<checkout::StandardEvent>(&*pixel)) {
    return Line{{"standardEvent", Line(checkout::toJson(*standard))}};
  }
  return Line{{"customEvent", Line(checkout::toJson(std::get<checkout::CustomEvent>(*pixel)))}};
}

}  // namespace vemba::inspect
