// The command-line vocabulary of the orvane tool: pixel format names with
// their codes and memory layouts, Bayer method and phase names,
// de-interlace method and parity names, and status names.
//
// What converts into what is deliberately not here: the tool asks
// OVC_Convert itself (see formats_command.cpp).
#ifndef ORVANE_TOOL_VOCABULARY_H
#define ORVANE_TOOL_VOCABULARY_H

#include <orvaneimage.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvtool {

// Where the file readers and writers find the samples of one pixel: one
// grey sample or R, G and B, each 1 byte or a little-endian u16, at fixed
// byte offsets. A Bayer mosaic has one sample a pixel too, which PGM and
// raw files keep as it is. channels == 0 marks a layout that no image file
// holds directly (packed words, YUV): such images are converted first.
struct SampleLayout {
    uint8_t channels;     // 0, 1 (grey) or 3 (R, G, B)
    uint8_t sample_bytes; // 1 or 2
    std::array<uint8_t, 3> offset; // byte offset of grey, or of R, G, B
};

enum class Family { grey, colour, bayer, yuv, other };

struct FormatInfo {
    const char *name; // command-line name, lower case
    uint32_t code;
    uint32_t bits_per_pixel; // 0: no defined layout
    uint32_t depth;          // significant bits of a sample (of a channel)
    Family family;
    const char *layout;
    SampleLayout samples;
};

extern const std::array<FormatInfo, 30> kFormats;

// By name (any case) or by full code written in hexadecimal ("0xC0022616").
const FormatInfo *find_format(std::string_view name_or_code);
// By full code; nullptr for a code the tool does not name.
const FormatInfo *format_by_code(uint32_t code);
// One of the ORV_FORMAT_ codes, which all have an entry.
inline const FormatInfo &format_of(uint32_t code) { return *format_by_code(code); }
// Bytes of one line of `width` pixels without padding (rounded up).
uint64_t packed_line_bytes(const FormatInfo &format, uint32_t width);

// A command-line word and the number the library takes for it.
struct NamedValue {
    const char *name;
    uint32_t value;
};

extern const std::array<NamedValue, 3> kBayerMethods;
extern const std::array<NamedValue, 4> kBayerPhases;
extern const std::array<NamedValue, 4> kFieldMethods;
// Parity as OVC_FieldToFrame takes it: non-zero when the field holds the
// even frame lines.
extern const std::array<NamedValue, 2> kFieldParities;

// `text` in lower case (ASCII): every name on the command line takes any
// case.
std::string lower_case(std::string_view text);

template <size_t N>
const NamedValue *find_name(const std::array<NamedValue, N> &table,
                            std::string_view name) {
    std::string lower = lower_case(name);
    for (const NamedValue &entry : table)
        if (lower == entry.name)
            return &entry;
    return nullptr;
}

template <size_t N>
const char *name_of(const std::array<NamedValue, N> &table, uint32_t value) {
    for (const NamedValue &entry : table)
        if (entry.value == value)
            return entry.name;
    return "?";
}

// "dup|ave|med": the names of a table for help texts and messages.
template <size_t N>
std::string choices(const std::array<NamedValue, N> &table) {
    std::string text;
    for (const NamedValue &entry : table)
        text += (text.empty() ? "" : "|") + std::string(entry.name);
    return text;
}

// "ORV_ERROR_NOT_SUPPORTED"; "status 42" for a code without a name.
std::string status_name(ORV_STATUS status);

} // namespace orvtool

#endif // ORVANE_TOOL_VOCABULARY_H
