// Does nothing: names are bytes, and the locale decides about texts.
#include "platform/text_encoding.h"

namespace vel::platform {

void useUtf8() noexcept {}

}  // namespace vel::platform
