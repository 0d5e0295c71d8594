// Image files of the orvane tool: reading raw dumps and binary PGM/PPM,
// writing PNG, PGM/PPM, TIFF and raw files. Every output is written under
// a temporary name beside its destination and renamed into place only
// when complete, so a failed write never leaves a partial file.
#ifndef ORVANE_TOOL_IMAGE_IO_H
#define ORVANE_TOOL_IMAGE_IO_H

#include "image.h"

#include <optional>
#include <string>

namespace orvtool {

// What the command line says about an input: the geometry and format of a
// raw dump (a PGM/PPM brings its own), and the Bayer settings of a mosaic.
struct InputDescription {
    const FormatInfo *format = nullptr;
    std::optional<uint32_t> width, height, stride;
    uint32_t bayer_method = ORV_BAYER_METHOD_MED;
    uint32_t bayer_phase = ORV_BAYER_PHASE_A;
};

// Throws UsageError, naming `path`, for geometry options that cannot
// describe a raw dump (no format, a stride shorter than the line, ...).
void check_raw_input(const InputDescription &input, const std::string &path);

// True for a path that is read as a raw dump (not .pgm/.ppm/.pnm).
bool is_raw_input(const std::string &path);

// Reads `path`: a binary PGM or PPM (by its .pgm/.ppm/.pnm extension) or a
// raw dump as OVC_FileWrite writes it (stride x height bytes). Lines are
// repacked without padding. Throws ToolError naming the file.
Image read_image(const std::string &path, const InputDescription &input);

enum class FileType { png, pgm, ppm, tiff, raw };

// The file type of an output path, by extension; nullopt for others.
std::optional<FileType> file_type_of(const std::string &path);
const char *file_type_name(FileType type);

// The format an image of `source` is written in when no --to is given:
// the source itself when the file type holds it, else the nearest format
// that the library converts into and the file holds.
const FormatInfo &default_target(const FormatInfo &source, FileType type,
                                 const std::string &out);
// Throws UsageError when `type` cannot hold images of `format`.
void check_file_holds(FileType type, const FormatInfo &format,
                      const std::string &out);

// Writes `image` to `path` as `type`.
void write_image(const Image &image, FileType type, const std::string &path);

} // namespace orvtool

#endif // ORVANE_TOOL_IMAGE_IO_H
