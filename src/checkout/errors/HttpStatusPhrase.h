// The standard reason phrase of an HTTP status code ("Not Found" for 404), for texts shown to
// hosts. Codes without a registered phrase get the phrase of their class ("Client Error").
#pragma once

#include <cstdint>
#include <string_view>

namespace vemba::checkout {

std::string_view httpStatusPhrase(std::int64_t statusCode);

}  // namespace vemba::checkout
