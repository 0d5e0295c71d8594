// orvane: look at and convert what a capture board delivered, from the
// command line, through the OrvaneImage library. This file holds the
// command line; the commands live in their own files.
#include "commands.h"
#include "errors.h"
#include "pending_file.h"

#include <CLI/CLI.hpp>
#include <orvaneimage.h>

#include <cstdio>
#include <new>
#include <string>

#ifndef ORVANE_VERSION
#error "ORVANE_VERSION must name the project version"
#endif

namespace {

using namespace orvtool;

void add_input_options(CLI::App &command, InputOptions &input) {
    command
        .add_option("--format", input.format,
                    "Pixel format of a raw dump, any case (`orvane formats` "
                    "lists them). yuv422 is decoded as full-range BT.601 (Y "
                    "0-255, U and V centred on 128, as in JPEG; not the "
                    "16-235 range of video). y12p packs two 12-bit pixels in "
                    "3 bytes: bits 11-4 of the first; bits 3-0 of the first "
                    "(high nibble) and 11-8 of the second (low nibble); bits "
                    "7-0 of the second. With a PGM or PPM file, --format "
                    "re-reads its samples: a PGM as a Bayer mosaic, say")
        ->group("Input");
    command.add_option("--width", input.width, "Width of a raw dump in pixels")
        ->group("Input");
    command.add_option("--height", input.height, "Height of a raw dump in lines")
        ->group("Input");
    command
        .add_option("--stride", input.stride,
                    "Bytes from one line of a raw dump to the next "
                    "(default: the line without padding)")
        ->group("Input");
}

void add_bayer_options(CLI::App &command, InputOptions &input) {
    command
        .add_option("--method", input.bayer_method,
                    "Demosaic method of a Bayer input (default med): " +
                        choices(kBayerMethods))
        ->group("Input");
    command
        .add_option("--phase", input.bayer_phase,
                    "Colour phase of a Bayer input, the top-left cell "
                    "(default a): a = RG/GB, b = GR/BG, c = GB/RG, d = BG/GR")
        ->group("Input");
}

void add_output_options(CLI::App &command, std::string &to,
                        bool &library_tiff) {
    command.add_option(
        "--to", to,
        "Pixel format to convert to before writing. Default: the input's "
        "own format when the file holds it; otherwise grey stays grey, "
        "samples deeper than 8 bits stay 16-bit where the file allows, and "
        "colour becomes BGR24 (a Bayer mosaic is demosaiced)");
    command.add_flag(
        "--library-tiff", library_tiff,
        "Write .tif/.tiff with the library's own TIFF writer "
        "(OVC_FileWriteTiff): 8-bit grey files that any reader takes, or "
        "BGR24 files that keep B, G, R byte order and only the first third "
        "of each line, which other programs show wrongly");
}

const char *kOutputHelp =
    "Output file; its extension chooses the file type: .png or .tif/.tiff "
    "(grey or RGB, 8 or 16 bits), .pgm/.ppm (a PGM also keeps a Bayer "
    "mosaic's samples), .raw (the pixels as they lie in memory, written by "
    "OVC_FileWrite)";

std::string input_limits() {
    return "Inputs hold at most " + std::to_string(kMaxSide) +
           " pixels a side and " + std::to_string(kMaxPixels) +
           " pixels in all.\n";
}

// CLI11 reads an unknown command as a stray argument; the tool names it.
void check_command(int argc, char **argv, const CLI::App &app) {
    if (argc >= 2 && argv[1][0] == '-')
        return;
    std::string names;
    for (const CLI::App *command : app.get_subcommands({})) {
        if (argc >= 2 && command->check_name(argv[1]))
            return;
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    std::string given =
        argc < 2 ? "no command" : "unknown command '" + std::string(argv[1]) + "'";
    throw UsageError(given + " (one of " + names + "; see orvane --help)");
}

int run(int argc, char **argv) {
    CLI::App app{"orvane " ORVANE_VERSION
                 ": look at and convert captured images with OrvaneImage "
                 "(pixel formats, Bayer demosaicing, de-interlacing, raw and "
                 "TIFF files)",
                 "orvane"};
    // The instruction set is the one the library chose for this machine
    // (ORVANE_SIMD caps it).
    app.set_version_flag("--version", [] {
        return std::string("orvane " ORVANE_VERSION ", OrvaneImage library "
                           ORVANE_VERSION ", kernels: ") +
               OVC_InstructionSet();
    });
    app.require_subcommand(1);
    app.footer("Exit status: 0 done, 1 a file could not be read or written "
               "or the library refused the work, 2 a bad command line "
               "(including a conversion the library does not offer for the "
               "inputs' format).\n");

    std::string demo_directory = "orvane-demo";
    CLI::App *demo = app.add_subcommand(
        "demo", "Synthesise a test chart, run every demosaic, YUV and "
                "de-interlace method on it and write the results as PNG "
                "files (plus a TIFF and a raw dump)");
    demo->add_option("DIR", demo_directory, "Directory for the files")
        ->capture_default_str();

    ConvertOptions convert;
    CLI::App *convert_command = app.add_subcommand(
        "convert", "Convert raw dumps and PGM/PPM files with OVC_Convert. "
                   "Several inputs go to a directory and are converted in "
                   "parallel");
    convert_command->footer(input_limits());
    convert_command->add_option("IN", convert.inputs, "Input files: raw dumps "
                                                      "or .pgm/.ppm")
        ->required();
    convert_command->add_option("-o,--output", convert.output,
                                std::string(kOutputHelp) +
                                    "; or a directory for several inputs")
        ->required();
    add_output_options(*convert_command, convert.to, convert.library_tiff);
    convert_command->add_option("--ext", convert.extension,
                                "File type written into an output directory "
                                "(default png)");
    convert_command->add_option("-j,--jobs", convert.jobs,
                                "Parallel conversions (default: one per core)");
    add_input_options(*convert_command, convert.input);
    add_bayer_options(*convert_command, convert.input);

    DeinterlaceOptions deinterlace;
    CLI::App *deinterlace_command = app.add_subcommand(
        "deinterlace", "Rebuild a full frame from one interlaced field with "
                       "OVC_FieldToFrame");
    deinterlace_command->footer(input_limits());
    deinterlace_command->add_option("IN", deinterlace.in, "The field: a raw "
                                                          "dump or .pgm/.ppm")
        ->required();
    deinterlace_command->add_option("-o,--output", deinterlace.output,
                                    kOutputHelp)
        ->required();
    deinterlace_command->add_option(
        "--method", deinterlace.method,
        "How the lines between are filled: " + choices(kFieldMethods) +
            ". Default: bilinear where the format allows, else linedup. "
            "Formats each takes: " + deinterlace_methods_text() +
            ". Bilinear leaves flat areas one level darker (its weights sum "
            "to 510/512); lineave averages bytes, so it suits 8-bit samples");
    deinterlace_command
        ->add_option("--parity", deinterlace.parity,
                     "Which frame lines the field holds: even (0, 2, ...) or "
                     "odd (1, 3, ...)")
        ->required();
    add_output_options(*deinterlace_command, deinterlace.to,
                       deinterlace.library_tiff);
    add_input_options(*deinterlace_command, deinterlace.input);

    app.add_subcommand("formats",
                       "List the pixel formats, and what converts into what "
                       "as OVC_Convert answers");

    check_command(argc, argv, app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp &e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp &e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion &e) {
        return app.exit(e);
    } catch (const CLI::ParseError &e) {
        std::fprintf(stderr, "orvane: %s (see orvane --help)\n", e.what());
        return kExitUsage;
    }

    if (*demo) {
        // A name without a slash was found on PATH; a path is what the
        // user typed, and works from where they stand.
        std::string command = argv[0];
        return run_demo(demo_directory,
                        command.find('/') == std::string::npos ? "orvane"
                                                               : command);
    }
    if (*convert_command)
        return run_convert(convert);
    if (*deinterlace_command)
        return run_deinterlace(deinterlace);
    return run_formats();
}

} // namespace

int main(int argc, char **argv) {
    remove_pending_files_on_signal();
    try {
        return run(argc, argv);
    } catch (const UsageError &e) {
        std::fprintf(stderr, "orvane: %s\n", e.what());
        return kExitUsage;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "orvane: out of memory\n");
        return kExitFailure;
    } catch (const std::exception &e) {
        std::fprintf(stderr, "orvane: %s\n", e.what());
        return kExitFailure;
    }
}
