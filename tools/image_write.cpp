// Writing outputs: PNG through libpng and PGM/PPM by the tool, TIFF and
// raw files through the library's own writers. Each goes to a pending file
// beside the destination that is renamed over it once complete.
#include "errors.h"
#include "image_io.h"
#include "pending_file.h"

#include <png.h>

#include <cctype>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <vector>

namespace orvtool {

namespace {

// The image's samples in file order, line after line: grey, or R, G, B;
// 16-bit samples big-endian. With `widen`, samples of fewer than 16
// significant bits are scaled to the full 16 bits by bit replication (as
// PNG expects; the sBIT chunk records the original depth).
std::vector<uint8_t> file_order_samples(const Image &image, bool widen) {
    const SampleLayout &layout = image.format().samples;
    const size_t pixel_bytes = image.format().bits_per_pixel / 8;
    const unsigned bits = image.format().depth;
    const uint32_t mask = (1u << bits) - 1;
    std::vector<uint8_t> out(size_t{image.width()} * image.height() *
                             layout.channels * layout.sample_bytes);
    uint8_t *to = out.data();
    for (uint32_t y = 0; y < image.height(); ++y) {
        const uint8_t *pixel = image.line(y);
        for (uint32_t x = 0; x < image.width(); ++x, pixel += pixel_bytes) {
            for (size_t c = 0; c < layout.channels; ++c) {
                const uint8_t *sample = pixel + layout.offset[c];
                if (layout.sample_bytes == 1) {
                    *to++ = *sample;
                    continue;
                }
                uint32_t v = uint32_t{sample[0]} | uint32_t{sample[1]} << 8;
                if (widen && bits < 16) {
                    v &= mask;
                    v = (v << (16 - bits)) | (v >> (2 * bits - 16));
                }
                *to++ = static_cast<uint8_t>(v >> 8);
                *to++ = static_cast<uint8_t>(v);
            }
        }
    }
    return out;
}

struct PngShape {
    uint32_t width, height;
    int colour_type, bit_depth;
    unsigned significant_bits;
};

void on_png_error(png_structp png, png_const_charp message) {
    char *text = static_cast<char *>(png_get_error_ptr(png));
    std::snprintf(text, 256, "%s", message);
    png_longjmp(png, 1);
}

void on_png_warning(png_structp, png_const_charp) {}

// libpng reports errors by longjmp, so this function holds nothing that
// has a destructor; `message` receives libpng's text on failure.
bool encode_png(std::FILE *file, const PngShape &shape, png_bytep *rows,
                char *message) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, message,
                                              on_png_error, on_png_warning);
    if (!png) {
        std::snprintf(message, 256, "out of memory");
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        std::snprintf(message, 256, "out of memory");
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, shape.width, shape.height, shape.bit_depth,
                 shape.colour_type, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (shape.significant_bits != 8 && shape.significant_bits != 16) {
        png_color_8 bits{};
        bits.red = bits.green = bits.blue = bits.gray =
            static_cast<png_byte>(shape.significant_bits);
        png_set_sBIT(png, info, &bits);
    }
    png_write_info(png, info);
    png_write_image(png, rows);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

void write_png(const Image &image, const std::string &temporary,
               const std::string &target) {
    const SampleLayout &layout = image.format().samples;
    std::vector<uint8_t> samples = file_order_samples(image, true);
    size_t row_bytes =
        size_t{image.width()} * layout.channels * layout.sample_bytes;
    std::vector<png_bytep> rows(image.height());
    for (uint32_t y = 0; y < image.height(); ++y)
        rows[y] = samples.data() + y * row_bytes;
    PngShape shape{image.width(), image.height(),
                   layout.channels == 3 ? PNG_COLOR_TYPE_RGB
                                        : PNG_COLOR_TYPE_GRAY,
                   layout.sample_bytes * 8, image.format().depth};

    std::FILE *file = std::fopen(temporary.c_str(), "wb");
    if (!file)
        throw ToolError(target + ": cannot write: " + system_message(errno));
    char message[256] = "";
    bool encoded = encode_png(file, shape, rows.data(), message);
    int error = std::ferror(file) ? errno : 0;
    bool closed = std::fclose(file) == 0;
    if (!encoded)
        throw ToolError(target + ": PNG encoding failed: " + message);
    if (error != 0 || !closed)
        throw ToolError(target + ": write failed: " +
                        system_message(error ? error : errno));
}

void write_pnm(const Image &image, const std::string &temporary,
               const std::string &target) {
    const SampleLayout &layout = image.format().samples;
    std::vector<uint8_t> samples = file_order_samples(image, false);
    std::FILE *file = std::fopen(temporary.c_str(), "wb");
    if (!file)
        throw ToolError(target + ": cannot write: " + system_message(errno));
    std::fprintf(file, "P%c\n%u %u\n%u\n", layout.channels == 3 ? '6' : '5',
                 image.width(), image.height(), (1u << image.format().depth) - 1);
    bool written =
        std::fwrite(samples.data(), 1, samples.size(), file) == samples.size();
    int error = written ? 0 : errno;
    if (std::fclose(file) != 0 && written) {
        written = false;
        error = errno;
    }
    if (!written)
        throw ToolError(target + ": write failed: " + system_message(error));
}

void check_library_write(ORV_STATUS status, const Image &image,
                         const char *writer, const std::string &target) {
    if (status == ORV_OK)
        return;
    throw ToolError(target + ": the library's " + writer + " writer refused " +
                    std::to_string(image.width()) + " x " +
                    std::to_string(image.height()) + " " +
                    image.format().name + " (" + status_name(status) + ")");
}

// What each file type holds without conversion. The library's TIFF writer
// finishes 8-bit grey and BGR24 files only; it is never handed another
// format, because it leaves the stream of a refused file open.
bool file_holds(FileType type, const FormatInfo &format) {
    unsigned channels = format.samples.channels;
    switch (type) {
    case FileType::png: return channels != 0;
    case FileType::pgm: return channels == 1;
    case FileType::ppm: return channels == 3;
    case FileType::tiff:
        return format.code == ORV_FORMAT_Y8 || format.code == ORV_FORMAT_BGR24;
    case FileType::raw: return true;
    }
    return false;
}

// Formats worth converting into for `type`, best first: grey stays grey
// where the file allows it, and samples deeper than 8 bits keep 16 bits.
std::vector<uint32_t> candidates(FileType type, const FormatInfo &source) {
    bool deep = source.depth > 8;
    switch (type) {
    case FileType::tiff:
        return {ORV_FORMAT_Y8, ORV_FORMAT_BGR24};
    case FileType::pgm:
        if (deep)
            return {ORV_FORMAT_Y16, ORV_FORMAT_Y8};
        return {ORV_FORMAT_Y8};
    case FileType::png:
    case FileType::ppm:
    case FileType::raw:
        break;
    }
    if (deep)
        return {ORV_FORMAT_BGR48, ORV_FORMAT_BGR24};
    return {ORV_FORMAT_BGR24};
}

} // namespace

std::optional<FileType> file_type_of(const std::string &path) {
    std::string::size_type dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] != '.')
        return std::nullopt;
    std::string extension = path.substr(dot + 1);
    for (char &c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (extension == "png") return FileType::png;
    if (extension == "pgm") return FileType::pgm;
    if (extension == "ppm") return FileType::ppm;
    if (extension == "tif" || extension == "tiff") return FileType::tiff;
    if (extension == "raw") return FileType::raw;
    return std::nullopt;
}

const char *file_type_name(FileType type) {
    switch (type) {
    case FileType::png: return "PNG";
    case FileType::pgm: return "PGM";
    case FileType::ppm: return "PPM";
    case FileType::tiff: return "TIFF";
    case FileType::raw: return "raw";
    }
    return "?";
}

const FormatInfo &default_target(const FormatInfo &source, FileType type,
                                 const std::string &out) {
    if (file_holds(type, source))
        return source;
    for (uint32_t code : candidates(type, source)) {
        const FormatInfo &candidate = format_of(code);
        if (library_converts(source, candidate))
            return candidate;
    }
    throw UsageError(out + ": the library converts " + source.name +
                     " into nothing a " + file_type_name(type) +
                     " file holds (choose another file type)");
}

void check_file_holds(FileType type, const FormatInfo &format,
                      const std::string &out) {
    if (!file_holds(type, format))
        throw UsageError(out + ": a " + file_type_name(type) +
                         " file cannot hold " + format.name +
                         " pixels (choose another --to, or write .raw)");
}

void write_image(const Image &image, FileType type, const std::string &path) {
    PendingFile pending(path);
    switch (type) {
    case FileType::png:
        write_png(image, pending.path(), path);
        break;
    case FileType::pgm:
    case FileType::ppm:
        write_pnm(image, pending.path(), path);
        break;
    case FileType::tiff:
        check_library_write(OVC_FileWriteTiff(image.handle(),
                                              pending.path().c_str()),
                            image, "TIFF", path);
        break;
    case FileType::raw:
        check_library_write(OVC_FileWrite(image.handle(), pending.path().c_str(),
                                          OVC_FILE_RAW),
                            image, "raw", path);
        break;
    }
    pending.commit();
}

} // namespace orvtool
