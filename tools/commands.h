// The orvane commands, as main.cpp hands them the parsed command line.
// Each returns the process exit status; problems are reported by
// throwing ToolError or UsageError (errors.h).
#ifndef ORVANE_TOOL_COMMANDS_H
#define ORVANE_TOOL_COMMANDS_H

#include "image_io.h"

#include <optional>
#include <string>
#include <vector>

namespace orvtool {

// Input options as typed, names not yet looked up.
struct InputOptions {
    std::string format;
    std::optional<uint32_t> width, height, stride;
    std::string bayer_method = "med";
    std::string bayer_phase = "a";
};

// Looks the names up; UsageError for a name the tool does not know.
InputDescription resolve_input(const InputOptions &options);

struct ConvertOptions {
    InputOptions input;
    std::vector<std::string> inputs;
    std::string output;
    std::string to;
    std::string extension = "png";
    unsigned jobs = 0; // 0: one per core
};

struct DeinterlaceOptions {
    InputOptions input;
    std::string in;
    std::string output;
    std::string to;
    std::string method = "bilinear";
    std::string parity;
};

int run_convert(const ConvertOptions &options);
int run_deinterlace(const DeinterlaceOptions &options);
int run_formats();
int run_demo(const std::string &directory);

} // namespace orvtool

#endif // ORVANE_TOOL_COMMANDS_H
