// Writing outputs: PNG through libpng, TIFF through libtiff, PGM/PPM by
// the tool, and raw files (and, on request, TIFF files) through the
// library's own writers. Each goes to a pending file that takes the
// destination's place once complete; every failure to write reads
// "PATH: cannot write: " and the system's words for its errno.
#include "errors.h"
#include "image_io.h"
#include "pending_file.h"

#include <png.h>
#include <tiffio.h>

#include <cerrno>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

namespace orvtool {

namespace {

// How samples go into a file. PNG and TIFF keep the image's sample size
// and stretch 2-byte samples of fewer significant bits to the full 16 by
// bit replication; PGM/PPM take 1 or 2 bytes by the significant bits and
// record them in the maxval.
enum class SampleScale { full_range, maxval };

size_t file_sample_bytes(const Image &image, SampleScale scale) {
    if (scale == SampleScale::maxval)
        return image.significant_bits() > 8 ? 2 : 1;
    return image.format().samples.sample_bytes;
}

// The image's samples in file order, line after line: grey, or R, G, B;
// 2-byte samples big-endian.
std::vector<uint8_t> file_order_samples(const Image &image, SampleScale scale) {
    const SampleLayout &layout = image.format().samples;
    const size_t pixel_bytes = image.format().bits_per_pixel / 8;
    const unsigned bits = image.significant_bits();
    const uint32_t mask = (1u << bits) - 1;
    const size_t out_bytes = file_sample_bytes(image, scale);
    const bool stretch = scale == SampleScale::full_range && out_bytes == 2;
    std::vector<uint8_t> out(size_t{image.width()} * image.height() *
                             layout.channels * out_bytes);
    uint8_t *to = out.data();
    for (uint32_t y = 0; y < image.height(); ++y) {
        const uint8_t *pixel = image.line(y);
        for (uint32_t x = 0; x < image.width(); ++x, pixel += pixel_bytes) {
            for (size_t c = 0; c < layout.channels; ++c) {
                const uint8_t *sample = pixel + layout.offset[c];
                uint32_t v = sample[0];
                if (layout.sample_bytes == 2)
                    v |= uint32_t{sample[1]} << 8;
                v &= mask;
                if (stretch && bits < 16)
                    v = (v << (16 - bits)) | (v >> (2 * bits - 16));
                if (out_bytes == 2)
                    *to++ = static_cast<uint8_t>(v >> 8);
                *to++ = static_cast<uint8_t>(v);
            }
        }
    }
    return out;
}

// ---- PNG ------------------------------------------------------------------

struct PngShape {
    uint32_t width, height;
    int colour_type, bit_depth;
    unsigned significant_bits;
};

// Where libpng writes, and what went wrong: the errno of a failed write,
// or libpng's own text.
struct PngSink {
    std::FILE *file;
    int error;
    char message[256];
};

void on_png_write(png_structp png, png_bytep data, size_t length) {
    auto *sink = static_cast<PngSink *>(png_get_io_ptr(png));
    if (std::fwrite(data, 1, length, sink->file) != length) {
        sink->error = errno ? errno : EIO;
        png_error(png, "write failed");
    }
}

void on_png_flush(png_structp png) {
    auto *sink = static_cast<PngSink *>(png_get_io_ptr(png));
    if (std::fflush(sink->file) != 0) {
        sink->error = errno ? errno : EIO;
        png_error(png, "write failed");
    }
}

void on_png_error(png_structp png, png_const_charp message) {
    auto *sink = static_cast<PngSink *>(png_get_error_ptr(png));
    std::snprintf(sink->message, sizeof sink->message, "%s", message);
    png_longjmp(png, 1);
}

void on_png_warning(png_structp, png_const_charp) {}

// libpng reports errors by longjmp, so this function holds nothing that
// has a destructor.
bool encode_png(PngSink &sink, const PngShape &shape, png_bytep *rows) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &sink,
                                              on_png_error, on_png_warning);
    if (!png) {
        sink.error = ENOMEM;
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        sink.error = ENOMEM;
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &sink, on_png_write, on_png_flush);
    png_set_IHDR(png, info, shape.width, shape.height, shape.bit_depth,
                 shape.colour_type, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (shape.significant_bits != static_cast<unsigned>(shape.bit_depth)) {
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
    std::vector<uint8_t> samples =
        file_order_samples(image, SampleScale::full_range);
    size_t row_bytes =
        size_t{image.width()} * layout.channels * layout.sample_bytes;
    std::vector<png_bytep> rows(image.height());
    for (uint32_t y = 0; y < image.height(); ++y)
        rows[y] = samples.data() + y * row_bytes;
    PngShape shape{image.width(), image.height(),
                   layout.channels == 3 ? PNG_COLOR_TYPE_RGB
                                        : PNG_COLOR_TYPE_GRAY,
                   layout.sample_bytes * 8, image.significant_bits()};

    PngSink sink{std::fopen(temporary.c_str(), "wb"), 0, ""};
    if (!sink.file)
        throw write_error(target, errno);
    bool encoded = encode_png(sink, shape, rows.data());
    bool closed = std::fclose(sink.file) == 0;
    if (sink.error != 0)
        throw write_error(target, sink.error);
    if (!encoded)
        throw ToolError(target + ": cannot write: " + sink.message);
    if (!closed)
        throw write_error(target, errno);
}

// ---- TIFF -------------------------------------------------------------------

int on_tiff_error(TIFF *, void *message, const char *, const char *format,
                  va_list arguments) {
    std::vsnprintf(static_cast<char *>(message), 256, format, arguments);
    return 1;
}

int on_tiff_warning(TIFF *, void *, const char *, const char *, va_list) {
    return 1;
}

// An uncompressed TIFF that every reader takes: grey or RGB (in R, G, B
// order), 8 or 16 bits a sample.
void write_tiff(const Image &image, const std::string &temporary,
                const std::string &target) {
    const SampleLayout &layout = image.format().samples;
    std::vector<uint8_t> samples =
        file_order_samples(image, SampleScale::full_range);
    char message[256] = "";
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    if (!options)
        throw write_error(target, ENOMEM);
    TIFFOpenOptionsSetErrorHandlerExtR(options, on_tiff_error, message);
    TIFFOpenOptionsSetWarningHandlerExtR(options, on_tiff_warning, nullptr);
    errno = 0;
    TIFF *tiff = TIFFOpenExt(temporary.c_str(), "w", options);
    TIFFOpenOptionsFree(options);
    if (!tiff)
        throw errno ? write_error(target, errno)
                    : ToolError(target + ": cannot write: " + message);

    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height());
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL,
                 static_cast<uint16_t>(layout.channels));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE,
                 static_cast<uint16_t>(8 * layout.sample_bytes));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                 layout.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));

    // libtiff takes 16-bit samples in the machine's byte order and records
    // that order in the file.
    const size_t row_bytes =
        size_t{image.width()} * layout.channels * layout.sample_bytes;
    if (layout.sample_bytes == 2)
        for (size_t i = 0; i < samples.size(); i += 2) {
            auto v = static_cast<uint16_t>(samples[i] << 8 | samples[i + 1]);
            std::memcpy(&samples[i], &v, sizeof v);
        }
    errno = 0;
    bool written = true;
    for (uint32_t y = 0; y < image.height() && written; ++y)
        written = TIFFWriteScanline(tiff, samples.data() + y * row_bytes, y,
                                    0) == 1;
    written = written && TIFFFlush(tiff) == 1;
    int error = errno;
    TIFFClose(tiff);
    if (!written)
        throw error ? write_error(target, error)
                    : ToolError(target + ": cannot write: " + message);
}

// ---- PGM/PPM ------------------------------------------------------------------

void write_pnm(const Image &image, const std::string &temporary,
               const std::string &target) {
    const SampleLayout &layout = image.format().samples;
    std::vector<uint8_t> samples = file_order_samples(image, SampleScale::maxval);
    std::FILE *file = std::fopen(temporary.c_str(), "wb");
    if (!file)
        throw write_error(target, errno);
    std::fprintf(file, "P%c\n%u %u\n%u\n", layout.channels == 3 ? '6' : '5',
                 image.width(), image.height(),
                 (1u << image.significant_bits()) - 1);
    bool written =
        std::fwrite(samples.data(), 1, samples.size(), file) == samples.size();
    int error = written ? 0 : errno;
    if (std::fclose(file) != 0 && written) {
        written = false;
        error = errno;
    }
    if (!written)
        throw write_error(target, error);
}

// ---- the library's writers -------------------------------------------------------

// The library's writers report open, write and close failures by status;
// the C library leaves the cause in errno.
void write_by_library(const Image &image, FileType type,
                      const std::string &temporary, const std::string &target) {
    errno = 0;
    ORV_STATUS status =
        type == FileType::raw
            ? OVC_FileWrite(image.handle(), temporary.c_str(), OVC_FILE_RAW)
            : OVC_FileWriteTiff(image.handle(), temporary.c_str());
    int error = errno;
    switch (status) {
    case ORV_OK:
        return;
    case ORV_ERROR_OPEN_FAILED:
    case ORV_ERROR_WRITE_FAILED:
    case ORV_ERROR_CLOSE_FAILED:
        throw write_error(target, error);
    default:
        throw ToolError(target + ": the library's " +
                        (type == FileType::raw ? "raw" : "TIFF") +
                        " writer refused " + std::to_string(image.width()) +
                        " x " + std::to_string(image.height()) + " " +
                        image.format().name + " (" + status_name(status) + ")");
    }
}

// What each file type holds without conversion. The library's TIFF writer
// finishes 8-bit grey and BGR24 files only; it is never handed another
// format, because it leaves the stream of a refused file open. PGM files
// hold a Bayer mosaic's samples as they are; the picture files take it
// demosaiced.
bool file_holds(FileType type, const FormatInfo &format) {
    unsigned channels = format.samples.channels;
    bool mosaic = format.family == Family::bayer;
    switch (type) {
    case FileType::png:
    case FileType::tiff: return channels != 0 && !mosaic;
    case FileType::pgm: return channels == 1;
    case FileType::ppm: return channels == 3;
    case FileType::library_tiff:
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
    case FileType::library_tiff:
        return {ORV_FORMAT_Y8, ORV_FORMAT_BGR24};
    case FileType::pgm:
        if (deep)
            return {ORV_FORMAT_Y16, ORV_FORMAT_Y8};
        return {ORV_FORMAT_Y8};
    case FileType::png:
    case FileType::tiff:
    case FileType::ppm:
    case FileType::raw:
        break;
    }
    if (deep)
        return {ORV_FORMAT_BGR48, ORV_FORMAT_BGR24};
    return {ORV_FORMAT_BGR24};
}

} // namespace

std::optional<FileType> file_type_of(const std::string &path,
                                     bool library_tiff) {
    std::string extension = extension_of(path);
    if (extension == "png") return FileType::png;
    if (extension == "pgm") return FileType::pgm;
    if (extension == "ppm") return FileType::ppm;
    if (extension == "tif" || extension == "tiff")
        return library_tiff ? FileType::library_tiff : FileType::tiff;
    if (extension == "raw") return FileType::raw;
    return std::nullopt;
}

const char *file_type_name(FileType type) {
    switch (type) {
    case FileType::png: return "PNG";
    case FileType::pgm: return "PGM";
    case FileType::ppm: return "PPM";
    case FileType::tiff: return "TIFF";
    case FileType::library_tiff: return "TIFF (library writer)";
    case FileType::raw: return "raw";
    }
    return "?";
}

const FormatInfo &default_target(const FormatInfo &source, FileType type,
                                 const std::string &subject) {
    if (file_holds(type, source))
        return source;
    for (uint32_t code : candidates(type, source)) {
        const FormatInfo &candidate = format_of(code);
        if (library_converts(source, candidate))
            return candidate;
    }
    throw UsageError(subject + ": the library converts " + source.name +
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
    case FileType::tiff:
        write_tiff(image, pending.path(), path);
        break;
    case FileType::pgm:
    case FileType::ppm:
        write_pnm(image, pending.path(), path);
        break;
    case FileType::library_tiff:
    case FileType::raw:
        write_by_library(image, type, pending.path(), path);
        break;
    }
    pending.commit();
}

} // namespace orvtool
