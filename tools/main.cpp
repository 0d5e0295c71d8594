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
                    "Pixel format of a raw dump (bay8, bay12, yuv422, y16, "
                    "...; `orvane formats` lists them). With a PGM it "
                    "re-reads the samples, e.g. as a Bayer mosaic")
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
                    "Demosaic method of a Bayer input: " + choices(kBayerMethods))
        ->capture_default_str()
        ->group("Input");
    command
        .add_option("--phase", input.bayer_phase,
                    "Colour phase of a Bayer input, the top-left cell: "
                    "a = RG/GB, b = GR/BG, c = GB/RG, d = BG/GR")
        ->capture_default_str()
        ->group("Input");
}

const char *kOutputHelp =
    "Output file; its extension chooses the writer: .png (8/16-bit grey or "
    "RGB), .pgm/.ppm, .tif/.tiff (the library's TIFF writer: 8-bit grey, or "
    "BGR24 in its historic layout: B, G, R bytes as written in memory and "
    "one third of each line), .raw (the library's raw dump)";

const char *kToHelp =
    "Convert to this format before writing (default: the input's own format "
    "if the output holds it, else the first the library converts it into "
    "of: 8-bit grey for a TIFF, 16-bit grey for a PGM of deep samples, "
    "8-bit grey for a PGM, BGR48 for deep samples, BGR24)";

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
    app.footer("Exit status: 0 done, 1 a file or the library refused the "
               "work, 2 bad command line.");

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
    convert_command->add_option("IN", convert.inputs, "Input files: raw dumps "
                                                      "or .pgm/.ppm")
        ->required();
    convert_command->add_option("-o,--output", convert.output,
                                std::string(kOutputHelp) +
                                    "; or a directory for several inputs")
        ->required();
    convert_command->add_option("--to", convert.to, kToHelp);
    convert_command
        ->add_option("--ext", convert.extension,
                     "File type written into an output directory")
        ->capture_default_str();
    convert_command->add_option("-j,--jobs", convert.jobs,
                                "Parallel conversions (default: one per core)");
    add_input_options(*convert_command, convert.input);
    add_bayer_options(*convert_command, convert.input);

    DeinterlaceOptions deinterlace;
    CLI::App *deinterlace_command = app.add_subcommand(
        "deinterlace", "Rebuild a full frame from one interlaced field with "
                       "OVC_FieldToFrame");
    deinterlace_command->add_option("IN", deinterlace.in, "The field: a raw "
                                                          "dump or .pgm/.ppm")
        ->required();
    deinterlace_command->add_option("-o,--output", deinterlace.output,
                                    kOutputHelp)
        ->required();
    deinterlace_command
        ->add_option("--method", deinterlace.method,
                     "How the lines between are filled: " +
                         choices(kFieldMethods))
        ->capture_default_str();
    deinterlace_command
        ->add_option("--parity", deinterlace.parity,
                     "Which frame lines the field holds: even (0, 2, ...) or "
                     "odd (1, 3, ...)")
        ->required();
    deinterlace_command->add_option("--to", deinterlace.to, kToHelp);
    add_input_options(*deinterlace_command, deinterlace.input);

    app.add_subcommand("formats",
                       "List the pixel formats, and what converts into what "
                       "as OVC_Convert answers");

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

    if (*demo)
        return run_demo(demo_directory);
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
