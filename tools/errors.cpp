// Texts of system errors for the tool's one-line messages.
#include "errors.h"

#include <system_error>

namespace orvtool {

std::string system_message(int code) {
    return std::error_code(code, std::generic_category()).message();
}

} // namespace orvtool
