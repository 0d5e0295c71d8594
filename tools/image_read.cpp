// Reading inputs: raw dumps described on the command line, and binary PGM
// (P5) and PPM (P6) files, 8- or 16-bit, that describe themselves. Every
// size is checked against the limits and against the file's length before
// any pixel memory is allocated.
#include "errors.h"
#include "image_io.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace orvtool {

namespace {

// An input file open for reading, with its length.
class InputFile {
public:
    explicit InputFile(const std::string &path) : path_(path) {
        file_ = std::fopen(path.c_str(), "rb");
        if (!file_)
            throw ToolError(path + ": cannot open: " + system_message(errno));
        struct stat info {};
        if (fstat(fileno(file_), &info) != 0) {
            int error = errno;
            std::fclose(file_);
            throw ToolError(path + ": cannot read: " + system_message(error));
        }
        if (!S_ISREG(info.st_mode)) {
            std::fclose(file_);
            throw ToolError(path + (S_ISDIR(info.st_mode)
                                        ? ": is a directory, not an image file"
                                        : ": not a regular file"));
        }
        size_ = static_cast<uint64_t>(info.st_size);
    }
    ~InputFile() { std::fclose(file_); }
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    uint64_t size() const { return size_; }
    uint64_t position() const {
        long at = std::ftell(file_);
        return at < 0 ? 0 : static_cast<uint64_t>(at);
    }
    int get() { return std::getc(file_); }

    void read(void *into, size_t bytes) {
        if (std::fread(into, 1, bytes, file_) != bytes)
            throw ToolError(path_ + (std::ferror(file_)
                                         ? ": read failed: " + system_message(errno)
                                         : std::string(": ends early")));
    }
    void skip(uint64_t bytes) {
        if (bytes != 0 &&
            std::fseek(file_, static_cast<long>(bytes), SEEK_CUR) != 0)
            throw ToolError(path_ + ": seek failed: " + system_message(errno));
    }

    // Throws ToolError unless `needed` bytes remain after the position.
    void require(uint64_t needed, const std::string &what) {
        uint64_t found = size_ - std::min(size_, position());
        if (found < needed)
            throw ToolError(path_ + ": too short for " + what + ": " +
                            std::to_string(needed) + " bytes expected, " +
                            std::to_string(found) + " found");
    }

private:
    std::string path_;
    std::FILE *file_;
    uint64_t size_ = 0;
};

std::string geometry_text(uint32_t width, uint32_t height,
                          const FormatInfo &format) {
    return std::to_string(width) + " x " + std::to_string(height) + " " +
           format.name;
}

bool is_pnm_path(const std::string &path) {
    std::string extension = extension_of(path);
    return extension == "pgm" || extension == "ppm" || extension == "pnm";
}

Image read_raw(const std::string &path, const InputDescription &input,
               const Warn &warn) {
    InputFile file(path);
    check_raw_input(input, path);
    const FormatInfo &format = *input.format;
    uint32_t width = *input.width, height = *input.height;
    check_geometry(path, width, height);
    uint64_t line = packed_line_bytes(format, width);
    uint64_t stride = input.stride.value_or(line);
    std::string what = geometry_text(width, height, format) + " at stride " +
                       std::to_string(stride);
    if (stride * height > kMaxImageBytes)
        throw ToolError(path + ": " + what + " exceeds the limit of " +
                        std::to_string(kMaxImageBytes) + " bytes");

    file.require(stride * height, what);
    if (file.size() > stride * height)
        warn(path + ": the file holds " + std::to_string(file.size()) +
             " bytes, " + what + " reads the first " +
             std::to_string(stride * height) +
             " (check --width, --height and --stride)");
    Image image = packed_image(format, width, height);
    for (uint32_t y = 0; y < height; ++y) {
        file.read(image.line(y), static_cast<size_t>(line));
        if (y + 1 < height)
            file.skip(stride - line);
    }
    return image;
}

// Binary PGM/PPM header: "P5" or "P6", width, height and maxval as
// decimal numbers separated by white space and comments, then one white
// space character before the samples.
struct PnmHeader {
    bool colour;
    uint32_t width, height, maxval;
};

uint32_t header_number(InputFile &file, const std::string &path, int &c) {
    while (c == '#' || std::isspace(c)) {
        if (c == '#')
            while (c != '\n' && c != EOF)
                c = file.get();
        c = file.get();
    }
    if (!std::isdigit(c))
        throw ToolError(path + ": malformed PGM/PPM header");
    uint64_t value = 0;
    for (int digits = 0; std::isdigit(c); ++digits, c = file.get()) {
        if (digits == 9)
            throw ToolError(path + ": PGM/PPM header number too large");
        value = value * 10 + static_cast<uint64_t>(c - '0');
    }
    return static_cast<uint32_t>(value);
}

PnmHeader read_pnm_header(InputFile &file, const std::string &path) {
    int p = file.get(), kind = file.get();
    if (p != 'P' || (kind != '5' && kind != '6'))
        throw ToolError(path + ": not a binary PGM or PPM file (P5 or P6)");
    PnmHeader header{};
    header.colour = kind == '6';
    int c = file.get();
    header.width = header_number(file, path, c);
    header.height = header_number(file, path, c);
    header.maxval = header_number(file, path, c);
    if (!std::isspace(c))
        throw ToolError(path + ": malformed PGM/PPM header");
    if (header.maxval == 0 || header.maxval > 65535)
        throw ToolError(path + ": PGM/PPM maxval " +
                        std::to_string(header.maxval) +
                        " is outside 1 to 65535");
    return header;
}

// The format that holds a PGM/PPM's samples: 8-bit grey or BGR24 up to
// maxval 255; above, the narrowest grey depth that holds maxval, or BGR36
// and BGR48 for colour.
const FormatInfo &natural_format(const PnmHeader &header) {
    if (header.colour)
        return format_of(header.maxval < 256    ? ORV_FORMAT_BGR24
                         : header.maxval < 4096 ? ORV_FORMAT_BGR36
                                                : ORV_FORMAT_BGR48);
    return format_of(header.maxval < 256    ? ORV_FORMAT_Y8
                     : header.maxval < 1024 ? ORV_FORMAT_Y10
                     : header.maxval < 4096 ? ORV_FORMAT_Y12
                     : header.maxval < 16384 ? ORV_FORMAT_Y14
                                             : ORV_FORMAT_Y16);
}

// --format re-reads a PGM's samples in any format of one sample a pixel
// (a Bayer mosaic, grey of another depth), a PPM's in any of R, G and B.
const FormatInfo &pnm_format(const PnmHeader &header,
                             const InputDescription &input,
                             const std::string &path) {
    if (!input.format)
        return natural_format(header);
    const FormatInfo &wanted = *input.format;
    unsigned channels = header.colour ? 3 : 1;
    if (wanted.samples.channels == channels)
        return wanted;
    std::string fitting;
    for (const FormatInfo &format : kFormats)
        if (format.samples.channels == channels)
            fitting += (fitting.empty() ? "" : ", ") + std::string(format.name);
    throw UsageError(path + ": --format " + wanted.name + " does not fit a " +
                     (header.colour ? "PPM, which holds R, G and B samples"
                                    : "PGM, which holds one sample") +
                     " a pixel (" + fitting + " do)");
}

// PGM/PPM samples are big-endian, in the order grey or R, G, B, and count
// up to the file's maxval; the image's sit where its layout puts them,
// little-endian, and count up to its depth's full range.
class SampleStore {
public:
    SampleStore(const PnmHeader &header, const FormatInfo &format,
                const std::string &path)
        : path_(path), maxval_(header.maxval),
          full_((uint32_t{1} << format.depth) - 1),
          wide_(header.maxval > 255), layout_(format.samples),
          pixel_bytes_(format.bits_per_pixel / 8) {}

    void line(const uint8_t *in, Image &image, uint32_t y) const {
        uint8_t *out = image.line(y);
        for (uint32_t x = 0; x < image.width(); ++x, out += pixel_bytes_)
            for (size_t c = 0; c < layout_.channels; ++c, in += wide_ ? 2 : 1) {
                uint32_t v = wide_ ? uint32_t{in[0]} << 8 | in[1] : in[0];
                if (v > maxval_)
                    throw ToolError(path_ + ": sample " + std::to_string(v) +
                                    " at (" + std::to_string(x) + ", " +
                                    std::to_string(y) + ") exceeds the maxval " +
                                    std::to_string(maxval_));
                if (maxval_ != full_)
                    v = static_cast<uint32_t>(
                        (uint64_t{v} * full_ + maxval_ / 2) / maxval_);
                uint8_t *sample = out + layout_.offset[c];
                sample[0] = static_cast<uint8_t>(v);
                if (layout_.sample_bytes == 2)
                    sample[1] = static_cast<uint8_t>(v >> 8);
            }
    }

private:
    const std::string &path_;
    const uint32_t maxval_, full_;
    const bool wide_;
    const SampleLayout &layout_;
    const size_t pixel_bytes_;
};

Image read_pnm(const std::string &path, const InputDescription &input) {
    InputFile file(path);
    PnmHeader header = read_pnm_header(file, path);
    check_geometry(path, header.width, header.height);
    const FormatInfo &format = pnm_format(header, input, path);
    size_t line = size_t{header.width} * (header.colour ? 3 : 1) *
                  (header.maxval > 255 ? 2 : 1);
    file.require(uint64_t{line} * header.height,
                 geometry_text(header.width, header.height, format));

    Image image = packed_image(format, header.width, header.height);
    SampleStore store(header, format, path);
    std::vector<uint8_t> buffer(line);
    for (uint32_t y = 0; y < header.height; ++y) {
        file.read(buffer.data(), line);
        store.line(buffer.data(), image, y);
    }
    return image;
}

} // namespace

void check_raw_input(const InputDescription &input, const std::string &path) {
    if (!input.format || !input.width || !input.height)
        throw UsageError(path + ": a raw dump needs --format, --width and "
                                "--height");
    const FormatInfo &format = *input.format;
    if (format.bits_per_pixel == 0)
        throw UsageError(path + ": format " + format.name +
                         " has no pixel layout to read");
    if ((format.code == ORV_FORMAT_YUV422 || format.code == ORV_FORMAT_Y12P) &&
        *input.width % 2 != 0)
        throw UsageError(path + ": " + format.name +
                         " packs pixels in pairs: --width must be even");
    uint64_t line = packed_line_bytes(format, *input.width);
    if (input.stride && *input.stride < line)
        throw UsageError(path + ": --stride " + std::to_string(*input.stride) +
                         " is smaller than a line of " +
                         std::to_string(*input.width) + " " + format.name +
                         " pixels (" + std::to_string(line) + " bytes)");
}

std::string extension_of(const std::string &path) {
    std::string::size_type dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] != '.')
        return {};
    return lower_case(path.substr(dot + 1));
}

bool is_raw_input(const std::string &path) { return !is_pnm_path(path); }

const FormatInfo &input_format(const std::string &path,
                               const InputDescription &input) {
    InputFile file(path);
    if (!is_pnm_path(path)) {
        check_raw_input(input, path);
        return *input.format;
    }
    return pnm_format(read_pnm_header(file, path), input, path);
}

Image read_image(const std::string &path, const InputDescription &input,
                 const Warn &warn) {
    Image image = is_pnm_path(path) ? read_pnm(path, input)
                                    : read_raw(path, input, warn);
    if (image.format().family == Family::bayer)
        image.set_bayer(input.bayer_method, input.bayer_phase);
    return image;
}

} // namespace orvtool
