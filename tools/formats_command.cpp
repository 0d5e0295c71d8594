// `orvane formats`: every pixel format with its code and layout, and for
// each source format the destinations it converts into. The tool keeps no
// list of conversions: it asks OVC_Convert about every pair.
#include "commands.h"

#include <cstdio>
#include <vector>

namespace orvtool {

namespace {

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

std::string deinterlace_methods_text() {
    std::vector<std::string> taken(kFieldMethods.size());
    std::string every;
    for (const FormatInfo &format : kFormats) {
        if (format.bits_per_pixel == 0)
            continue;
        every += " " + std::string(format.name);
        for (size_t m = 0; m < kFieldMethods.size(); ++m)
            if (library_deinterlaces(format, kFieldMethods[m].value))
                taken[m] += " " + std::string(format.name);
    }
    // Methods that take the same formats share one entry.
    std::string text;
    std::vector<bool> listed(kFieldMethods.size());
    for (size_t m = 0; m < kFieldMethods.size(); ++m) {
        if (listed[m])
            continue;
        std::string methods;
        for (size_t other = m; other < kFieldMethods.size(); ++other)
            if (taken[other] == taken[m]) {
                listed[other] = true;
                methods += (methods.empty() ? "" : ", ") +
                           std::string(kFieldMethods[other].name);
            }
        text += (text.empty() ? "" : "; ") + methods + ":" +
                (taken[m] == every ? std::string(" every format") : taken[m]);
    }
    return text;
}

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
    std::printf("\nDe-interlace methods (as OVC_FieldToFrame answers):\n  "
                "%s\n",
                deinterlace_methods_text().c_str());
    return 0;
}

} // namespace orvtool
