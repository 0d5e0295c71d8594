// `orvane formats`: every pixel format with its code and layout, and for
// each source format the destinations it converts into. The tool keeps no
// list of conversions: it asks OVC_Convert about every pair.
#include "commands.h"

#include <cstdio>

namespace orvtool {

namespace {

// Bayer pairs are asked once more per method and phase, with a real 2 x 2
// mosaic: the demosaic routines need two lines and two columns, and
// OVC_Convert runs one whenever the pair offers the method and phase.
// ORV_ERROR_NOT_IMPLEMENTED answers a method or phase that it does not
// offer.
bool demosaic_offered(const FormatInfo &source, const FormatInfo &destination,
                      uint32_t method, uint32_t phase) {
    constexpr uint32_t kProbeStride = 64;
    Image from(source, 2, 2, kProbeStride);
    Image to(destination, 2, 2, kProbeStride);
    from.set_bayer(method, phase);
    return OVC_Convert(from.handle(), to.handle()) == ORV_OK;
}

// "dup ave med", "dup" or "dup, phase a only": what a Bayer pair offers.
std::string offered_methods(const FormatInfo &source,
                            const FormatInfo &destination) {
    std::string text;
    for (const NamedValue &method : kBayerMethods) {
        std::string phases;
        size_t count = 0;
        for (const NamedValue &phase : kBayerPhases) {
            if (!demosaic_offered(source, destination, method.value,
                                  phase.value))
                continue;
            phases += (phases.empty() ? "" : " ") + std::string(phase.name);
            ++count;
        }
        if (count == 0)
            continue;
        text += (text.empty() ? "" : " ") + std::string(method.name);
        if (count < kBayerPhases.size())
            text += ", phase " + phases + " only";
    }
    return text;
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
            if (!library_converts(source, destination))
                continue;
            line += std::string(" ") + destination.name;
            if (source.family == Family::bayer)
                line += " (" + offered_methods(source, destination) + ")";
        }
        std::printf("  %-7s ->%s\n", source.name,
                    line.empty() ? " (none: not a source)" : line.c_str());
    }
    return 0;
}

} // namespace orvtool
