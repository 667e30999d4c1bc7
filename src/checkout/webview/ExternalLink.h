// The "open_externally" query parameter by which the checkout page asks for a link to be opened
// outside the sheet. Stateless.
#pragma once

#include "vemba/Url.h"

namespace vemba::checkout {

// True when the first query item named "open_externally" has the value "1" or a value that is
// "true" in any letter case. Later items of that name do not count; "yes" is not enough.
bool asksToOpenExternally(const Url& url);

// `url` without any "open_externally" query item (the other items keep their order and their
// encoding; a query left empty is dropped with its "?"). `url` itself when nothing is removed or
// the result does not parse.
Url removingOpenExternally(const Url& url);

}  // namespace vemba::checkout
