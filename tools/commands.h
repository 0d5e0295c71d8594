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

// Input options as typed, names not yet looked up; an option left out is
// empty.
struct InputOptions {
    std::string format;
    std::optional<uint32_t> width, height, stride;
    std::optional<std::string> bayer_method, bayer_phase; // med, a
};

// Looks the names up; UsageError for a name the tool does not know.
InputDescription resolve_input(const InputOptions &options);

struct ConvertOptions {
    InputOptions input;
    std::vector<std::string> inputs;
    std::string output;
    std::string to;
    std::optional<std::string> extension; // png
    bool library_tiff = false;
    unsigned jobs = 0; // 0: one per core
};

struct DeinterlaceOptions {
    InputOptions input;
    std::string in;
    std::string output;
    std::string to;
    std::optional<std::string> method; // by the field's format
    std::string parity;
    bool library_tiff = false;
};

// Which de-interlace methods take which formats, as OVC_FieldToFrame
// answers: "bilinear, median: y8 xbgr32 ...; linedup, lineave: every
// format".
std::string deinterlace_methods_text();

int run_convert(const ConvertOptions &options);
int run_deinterlace(const DeinterlaceOptions &options);
int run_formats();
// `command` is how the user started the tool, for the closing hint.
int run_demo(const std::string &directory, const std::string &command);

} // namespace orvtool

#endif // ORVANE_TOOL_COMMANDS_H
