// The two ways an orvane command fails: a mistake on the command line
// (exit status 2) and a file or the library refusing the work (exit
// status 1). Messages are one line and name the file they concern.
#ifndef ORVANE_TOOL_ERRORS_H
#define ORVANE_TOOL_ERRORS_H

#include <stdexcept>
#include <string>

namespace orvtool {

// A file that cannot be read or written, or a call the library refuses.
class ToolError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Options that make no sense before any file is touched.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

// The system's text for errno `code`, safe to call from several threads.
std::string system_message(int code);

// "PATH: cannot write: CAUSE", the one wording of every failed write, with
// the cause from errno `code` (an input/output error when it is 0).
ToolError write_error(const std::string &target, int code);

} // namespace orvtool

#endif // ORVANE_TOOL_ERRORS_H
