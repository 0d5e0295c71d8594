// `orvane formats`: every pixel format with its code and layout, and for
// each source format the destinations it converts into. The tool keeps no
// list of conversions: it asks OVC_Convert about every pair.
#include "commands.h"

#include <cstdio>

namespace orvtool {

namespace {

constexpr uint32_t kProbeStride = 64;

// A zero-height conversion checks the pair and converts nothing: it
// returns ORV_OK for a pair the library converts and
// ORV_ERROR_NOT_SUPPORTED for any other.
bool converts(const FormatInfo &source, const FormatInfo &destination) {
    Image from(source, 2, 0, kProbeStride);
    Image to(destination, 2, 0, kProbeStride);
    return OVC_Convert(from.handle(), to.handle()) == ORV_OK;
}

// Bayer pairs are asked with a real 2 x 2 mosaic instead: a demosaic
// routine needs two lines to work on, and OVC_Convert runs one whenever
// the method and phase are offered. ORV_ERROR_NOT_IMPLEMENTED answers a
// method or phase that the pair does not offer.
ORV_STATUS demosaic_probe(const FormatInfo &source,
                          const FormatInfo &destination, uint32_t method,
                          uint32_t phase) {
    Image from(source, 2, 2, kProbeStride);
    Image to(destination, 2, 2, kProbeStride);
    from.set_bayer(method, phase);
    return OVC_Convert(from.handle(), to.handle());
}

// " (dup ave med)", " (dup)" or " (dup, phase a only)": what a Bayer pair
// offers; empty when the pair does not convert at all.
std::string offered_methods(const FormatInfo &source,
                            const FormatInfo &destination) {
    std::string text;
    for (const NamedValue &method : kBayerMethods) {
        std::string phases;
        size_t count = 0;
        for (const NamedValue &phase : kBayerPhases) {
            ORV_STATUS status =
                demosaic_probe(source, destination, method.value, phase.value);
            if (status == ORV_ERROR_NOT_SUPPORTED)
                return std::string();
            if (status == ORV_OK) {
                phases += (phases.empty() ? "" : " ") + std::string(phase.name);
                ++count;
            }
        }
        if (count == 0)
            continue;
        text += (text.empty() ? "" : " ") + std::string(method.name);
        if (count < kBayerPhases.size())
            text += ", phase " + phases + " only";
    }
    return text.empty() ? text : " (" + text + ")";
}

} // namespace

int run_formats() {
    std::printf("Pixel formats (name, code, bits per pixel, layout):\n");
    for (const FormatInfo &format : kFormats) {
        std::string bits = format.bits_per_pixel
                               ? std::to_string(format.bits_per_pixel)
                               : "-";
        std::printf("  %-7s 0x%08X %3s  %s\n", format.name,
                    static_cast<unsigned>(format.code), bits.c_str(),
                    format.layout);
    }

    std::printf("\nConversions (source -> destinations, as OVC_Convert "
                "answers; Bayer: methods offered):\n");
    for (const FormatInfo &source : kFormats) {
        std::string line;
        for (const FormatInfo &destination : kFormats) {
            if (source.family == Family::bayer) {
                std::string methods = offered_methods(source, destination);
                if (!methods.empty())
                    line += std::string(" ") + destination.name + methods;
            } else if (converts(source, destination)) {
                line += std::string(" ") + destination.name;
            }
        }
        std::printf("  %-7s ->%s\n", source.name,
                    line.empty() ? " (none: not a source)" : line.c_str());
    }
    return 0;
}

} // namespace orvtool
