// Names, codes and layouts of the pixel formats and the other words of the
// orvane command line.
#include "vocabulary.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace orvtool {

namespace {

constexpr SampleLayout kNoSamples{0, 0, {0, 0, 0}};
constexpr SampleLayout grey(uint8_t bytes) { return {1, bytes, {0, 0, 0}}; }
constexpr SampleLayout rgb(uint8_t bytes, uint8_t r, uint8_t g, uint8_t b) {
    return {3, bytes, {r, g, b}};
}

} // namespace

const std::array<FormatInfo, 30> kFormats = {{
    {"y8", ORV_FORMAT_Y8, 8, 8, Family::grey, "grey, 1 byte", grey(1)},
    {"y16", ORV_FORMAT_Y16, 16, 16, Family::grey, "grey, u16, 16 significant bits",
     grey(2)},
    {"y32", ORV_FORMAT_Y32, 32, 32, Family::grey, "grey, u32",
     kNoSamples},
    {"04", ORV_FORMAT_04, 0, 0, Family::other, "no defined layout",
     kNoSamples},
    {"rgb15", ORV_FORMAT_RGB15, 16, 5, Family::colour,
     "u16: R bits 10-14, G 5-9, B 0-4", kNoSamples},
    {"rgb16", ORV_FORMAT_RGB16, 16, 6, Family::colour,
     "u16: R bits 11-15, G 5-10, B 0-4", kNoSamples},
    {"xbgr32", ORV_FORMAT_XBGR32, 32, 8, Family::colour, "bytes X, B, G, R",
     rgb(1, 3, 2, 1)},
    {"bgrx32", ORV_FORMAT_BGRX32, 32, 8, Family::colour, "bytes B, G, R, X",
     rgb(1, 2, 1, 0)},
    {"bgr48", ORV_FORMAT_BGR48, 48, 16, Family::colour, "three u16: B, G, R",
     rgb(2, 4, 2, 0)},
    {"bgr15", ORV_FORMAT_BGR15, 16, 5, Family::colour,
     "u16: B bits 10-14, G 5-9, R 0-4", kNoSamples},
    {"bgr16", ORV_FORMAT_BGR16, 16, 6, Family::colour,
     "u16: B bits 11-15, G 5-10, R 0-4", kNoSamples},
    {"xrgb32", ORV_FORMAT_XRGB32, 32, 8, Family::colour, "bytes X, R, G, B",
     rgb(1, 1, 2, 3)},
    {"rgbx32", ORV_FORMAT_RGBX32, 32, 8, Family::colour, "bytes R, G, B, X",
     rgb(1, 0, 1, 2)},
    {"rgb48", ORV_FORMAT_RGB48, 48, 16, Family::colour, "three u16: R, G, B",
     rgb(2, 0, 2, 4)},
    {"rgb30", ORV_FORMAT_RGB30, 32, 10, Family::colour,
     "u32, three 10-bit fields, B lowest", kNoSamples},
    {"bgr30", ORV_FORMAT_BGR30, 32, 10, Family::colour,
     "u32, three 10-bit fields, R lowest", kNoSamples},
    {"bgr24", ORV_FORMAT_BGR24, 24, 8, Family::colour, "bytes B, G, R",
     rgb(1, 2, 1, 0)},
    {"rgb24", ORV_FORMAT_RGB24, 24, 8, Family::colour, "bytes R, G, B",
     rgb(1, 0, 1, 2)},
    {"y10", ORV_FORMAT_Y10, 16, 10, Family::grey, "grey, u16, 10 significant bits",
     grey(2)},
    {"y12", ORV_FORMAT_Y12, 16, 12, Family::grey, "grey, u16, 12 significant bits",
     grey(2)},
    {"y14", ORV_FORMAT_Y14, 16, 14, Family::grey, "grey, u16, 14 significant bits",
     grey(2)},
    {"bay8", ORV_FORMAT_BAY8, 8, 8, Family::bayer, "Bayer mosaic, 1 byte",
     grey(1)},
    {"bay10", ORV_FORMAT_BAY10, 16, 10, Family::bayer, "Bayer mosaic, u16, depth 10",
     grey(2)},
    {"bay12", ORV_FORMAT_BAY12, 16, 12, Family::bayer, "Bayer mosaic, u16, depth 12",
     grey(2)},
    {"bay14", ORV_FORMAT_BAY14, 16, 14, Family::bayer, "Bayer mosaic, u16, depth 14",
     grey(2)},
    {"bay16", ORV_FORMAT_BAY16, 16, 16, Family::bayer, "Bayer mosaic, u16, depth 16",
     grey(2)},
    {"y12p", ORV_FORMAT_Y12P, 12, 12, Family::grey,
     "12-bit grey, 2 pixels in 3 bytes: bits 11-4 of the first; bits 3-0 of "
     "the first (high nibble) and 11-8 of the second; bits 7-0 of the second",
     kNoSamples},
    {"bgr36", ORV_FORMAT_BGR36, 48, 12, Family::colour,
     "three u16: B, G, R, 12 bits each", rgb(2, 4, 2, 0)},
    {"1d", ORV_FORMAT_1D, 48, 16, Family::grey, "three u16, all equal for grey",
     kNoSamples},
    {"yuv422", ORV_FORMAT_YUV422, 16, 8, Family::yuv,
     "Y0 U Y1 V per pair of pixels, full-range BT.601", kNoSamples},
}};

const std::array<NamedValue, 3> kBayerMethods = {{
    {"dup", ORV_BAYER_METHOD_DUP},
    {"ave", ORV_BAYER_METHOD_AVE},
    {"med", ORV_BAYER_METHOD_MED},
}};

const std::array<NamedValue, 4> kBayerPhases = {{
    {"a", ORV_BAYER_PHASE_A},
    {"b", ORV_BAYER_PHASE_B},
    {"c", ORV_BAYER_PHASE_C},
    {"d", ORV_BAYER_PHASE_D},
}};

const std::array<NamedValue, 4> kFieldMethods = {{
    {"linedup", OVC_FIELD_LINEDUP},
    {"lineave", OVC_FIELD_LINEAVE},
    {"bilinear", OVC_FIELD_BILINEAR},
    {"median", OVC_FIELD_MEDIAN},
}};

const std::array<NamedValue, 2> kFieldParities = {{
    {"even", 1},
    {"odd", 0},
}};

std::string lower_case(std::string_view text) {
    std::string lower(text);
    for (char &c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

const FormatInfo *find_format(std::string_view name_or_code) {
    std::string lower = lower_case(name_or_code);
    for (const FormatInfo &format : kFormats)
        if (lower == format.name)
            return &format;
    if (lower.size() > 2 && lower.compare(0, 2, "0x") == 0) {
        char *end = nullptr;
        errno = 0;
        unsigned long code = std::strtoul(lower.c_str(), &end, 16);
        if (errno == 0 && *end == '\0' && code <= UINT32_MAX)
            return format_by_code(static_cast<uint32_t>(code));
    }
    return nullptr;
}

const FormatInfo *format_by_code(uint32_t code) {
    for (const FormatInfo &format : kFormats)
        if (format.code == code)
            return &format;
    return nullptr;
}

uint64_t packed_line_bytes(const FormatInfo &format, uint32_t width) {
    return (uint64_t{format.bits_per_pixel} * width + 7) / 8;
}

std::string status_name(ORV_STATUS status) {
    switch (status) {
    case ORV_OK: return "ORV_OK";
    case ORV_ERROR_NOT_IMPLEMENTED: return "ORV_ERROR_NOT_IMPLEMENTED";
    case ORV_ERROR_OPEN_FAILED: return "ORV_ERROR_OPEN_FAILED";
    case ORV_ERROR_BAD_PARAM: return "ORV_ERROR_BAD_PARAM";
    case ORV_ERROR_NOT_SUPPORTED: return "ORV_ERROR_NOT_SUPPORTED";
    case ORV_ERROR_BAD_FORMAT: return "ORV_ERROR_BAD_FORMAT";
    case ORV_ERROR_WRITE_FAILED: return "ORV_ERROR_WRITE_FAILED";
    case ORV_ERROR_CLOSE_FAILED: return "ORV_ERROR_CLOSE_FAILED";
    default: return "status " + std::to_string(status);
    }
}

} // namespace orvtool
