// Image files of the orvane tool: reading raw dumps and binary PGM/PPM,
// writing PNG, PGM/PPM, TIFF and raw files. Every output goes to a pending
// file first (pending_file.h), so a failed write never leaves a partial
// file.
#ifndef ORVANE_TOOL_IMAGE_IO_H
#define ORVANE_TOOL_IMAGE_IO_H

#include "image.h"

#include <functional>
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

// Takes the one-line warnings of a read that goes on.
using Warn = std::function<void(const std::string &)>;

// The extension of `path` in lower case, without its dot; empty for none.
std::string extension_of(const std::string &path);

// Throws UsageError, naming `path`, for geometry options that cannot
// describe a raw dump (no format, a stride shorter than the line, ...).
void check_raw_input(const InputDescription &input, const std::string &path);

// True for a path that is read as a raw dump (not .pgm/.ppm/.pnm).
bool is_raw_input(const std::string &path);

// The format that `path` is read in, without reading its pixels: --format
// for a raw dump, the header's for a PGM/PPM. Throws ToolError for a file
// that cannot be read, UsageError for a --format that does not fit it.
const FormatInfo &input_format(const std::string &path,
                               const InputDescription &input);

// Reads `path`: a binary PGM or PPM (by its .pgm/.ppm/.pnm extension) or a
// raw dump as OVC_FileWrite writes it (stride x height bytes). Lines are
// repacked without padding; PGM/PPM samples are scaled from the file's
// maxval to the full range of the format's depth, as netpbm does. Throws
// ToolError naming the file; a raw file longer than its geometry is read
// with a warning.
Image read_image(const std::string &path, const InputDescription &input,
                 const Warn &warn);

// tiff is written with libtiff, library_tiff by OVC_FileWriteTiff.
enum class FileType { png, pgm, ppm, tiff, library_tiff, raw };

// The file type of an output path, by extension; nullopt for others.
// `library_tiff` turns .tif/.tiff into FileType::library_tiff.
std::optional<FileType> file_type_of(const std::string &path,
                                     bool library_tiff = false);
const char *file_type_name(FileType type);

// The format an image of `source` is written in when no --to is given:
// the source itself when the file type holds it, else the nearest format
// that the library converts into and the file holds. Throws UsageError
// naming `subject` when there is none.
const FormatInfo &default_target(const FormatInfo &source, FileType type,
                                 const std::string &subject);
// Throws UsageError when `type` cannot hold images of `format`.
void check_file_holds(FileType type, const FormatInfo &format,
                      const std::string &out);

// Writes `image` to `path` as `type`. Every write error reads
// "PATH: cannot write: " and the system's words for its cause.
void write_image(const Image &image, FileType type, const std::string &path);

} // namespace orvtool

#endif // ORVANE_TOOL_IMAGE_IO_H
