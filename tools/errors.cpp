// Texts of system errors for the tool's one-line messages.
#include "errors.h"

#include <cerrno>
#include <system_error>

namespace orvtool {

std::string system_message(int code) {
    return std::error_code(code, std::generic_category()).message();
}

ToolError write_error(const std::string &target, int code) {
    return ToolError(target + ": cannot write: " +
                     system_message(code != 0 ? code : EIO));
}

} // namespace orvtool
