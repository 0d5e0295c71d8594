// Pixel memory with a buffer handle, and the library calls between images.
#include "image.h"

#include "errors.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace orvtool {

namespace {

// Bytes kept after the last line. The library reads a little beyond an
// image in a few documented places (a demosaic with an odd width reads one
// sample past each line, including the last; RGB30 into RGB48 reads the
// pixel after each line), so every image carries one more zeroed line and
// a few bytes on top.
size_t tail_bytes(uint32_t stride) { return size_t{stride} + 64; }

std::string pair_text(const Image &source, const FormatInfo &target) {
    return std::string(source.format().name) + " to " + target.name;
}

} // namespace

void check_geometry(const std::string &subject, uint32_t width,
                    uint32_t height) {
    if (width == 0 || height == 0)
        throw ToolError(subject + ": the image is empty (" +
                        std::to_string(width) + " x " +
                        std::to_string(height) + ")");
    if (width > kMaxSide || height > kMaxSide ||
        uint64_t{width} * height > kMaxPixels)
        throw ToolError(subject + ": " + std::to_string(width) + " x " +
                        std::to_string(height) +
                        " pixels exceed the limit of " +
                        std::to_string(kMaxSide) + " per side and " +
                        std::to_string(kMaxPixels) + " in all");
}

Image::Image(const FormatInfo &format, uint32_t width, uint32_t height,
             uint32_t stride)
    : format_(&format), width_(width), height_(height), stride_(stride),
      significant_bits_(format.depth), handle_(0) {
    if (uint64_t{stride} * height > kMaxImageBytes)
        throw ToolError(std::to_string(stride) + " x " +
                        std::to_string(height) + " bytes exceed the limit of " +
                        std::to_string(kMaxImageBytes));
    memory_.assign(size_t{stride} * height + tail_bytes(stride), 0);
    handle_ = OFS_BufferCreateImage(memory_.data(), width, height, stride,
                                    format.code);
    if (handle_ == 0)
        throw std::bad_alloc();
}

Image::~Image() { release(); }

Image::Image(Image &&other) noexcept
    : memory_(std::move(other.memory_)), format_(other.format_),
      width_(other.width_), height_(other.height_), stride_(other.stride_),
      significant_bits_(other.significant_bits_),
      bayer_method_(other.bayer_method_), bayer_phase_(other.bayer_phase_),
      handle_(std::exchange(other.handle_, 0)) {}

Image &Image::operator=(Image &&other) noexcept {
    if (this != &other) {
        release();
        memory_ = std::move(other.memory_);
        format_ = other.format_;
        width_ = other.width_;
        height_ = other.height_;
        stride_ = other.stride_;
        significant_bits_ = other.significant_bits_;
        bayer_method_ = other.bayer_method_;
        bayer_phase_ = other.bayer_phase_;
        handle_ = std::exchange(other.handle_, 0);
    }
    return *this;
}

void Image::release() {
    OFS_BufferDestroy(handle_);
    handle_ = 0;
}

void Image::set_bayer(uint32_t method, uint32_t phase) {
    bayer_method_ = method;
    bayer_phase_ = phase;
    OFS_BufferParameterSet(handle_, OFS_BAYER_METHOD, &method);
    OFS_BufferParameterSet(handle_, OFS_BAYER_PHASE, &phase);
}

Image packed_image(const FormatInfo &format, uint32_t width, uint32_t height) {
    uint64_t line = packed_line_bytes(format, width);
    if (line > UINT32_MAX)
        throw ToolError("a line of " + std::to_string(width) + " " +
                        format.name + " pixels is too long");
    return Image(format, width, height, static_cast<uint32_t>(line));
}

void convert_into(const Image &source, Image &destination,
                  const std::string &subject) {
    const FormatInfo &target = destination.format();
    // The demosaic routines need two lines and two columns to work on.
    if (source.format().family == Family::bayer &&
        (source.width() < 2 || source.height() < 2))
        throw ToolError(subject + ": a Bayer mosaic needs at least 2 x 2 "
                                  "sites, this one is " +
                        std::to_string(source.width()) + " x " +
                        std::to_string(source.height()));
    ORV_STATUS status = OVC_Convert(source.handle(), destination.handle());
    switch (status) {
    case ORV_OK:
        return;
    case ORV_ERROR_NOT_SUPPORTED:
        throw ToolError(subject + ": the library does not convert " +
                        pair_text(source, target) + " (" +
                        status_name(status) + ")");
    case ORV_ERROR_NOT_IMPLEMENTED:
        throw ToolError(subject + ": " + pair_text(source, target) +
                        " is not offered with method " +
                        name_of(kBayerMethods, source.bayer_method()) +
                        ", phase " + name_of(kBayerPhases, source.bayer_phase()) +
                        " (" + status_name(status) + ")");
    default:
        throw ToolError(subject + ": converting " + pair_text(source, target) +
                        " failed (" + status_name(status) + ")");
    }
}

namespace {

// Significant bits of `target` samples converted from `source`. The
// library narrows by dropping low bits and widens without scaling (8-bit
// grey into BGR48 keeps its values), except BGR36 into the formats of
// 16 bits a channel, which it shifts up to full scale.
unsigned converted_bits(const Image &source, const FormatInfo &target) {
    bool shifted_up = source.format().code == ORV_FORMAT_BGR36 &&
                      (target.code == ORV_FORMAT_BGR48 ||
                       target.code == ORV_FORMAT_RGB48);
    if (shifted_up)
        return target.depth;
    return std::min(source.significant_bits(), target.depth);
}

// Columns added on each side of a mosaic before the library demosaics it,
// and cropped from the result. The demosaic routines keep, on purpose, a
// few results that a picture would not have:
// - ave and med at an odd width take the last column for an inner one and
//   read the sample after each line (the next line's first): one more
//   column makes the width even;
// - med into RGB16 in phase C reads the line below one column too far at
//   odd widths and, at even widths, takes line 0's last green from past
//   the line below; ave into RGB16 from 10- to 16-bit mosaics in phase B
//   leaves the red of the last column of the odd lines unscaled: two more
//   columns take the last column inside;
// - med into BGRX32 and BGR24 from 10- to 16-bit mosaics in phase B
//   leaves the blue of column 0 of the even lines unscaled: two columns on
//   the left take column 0 inside.
struct Margins {
    uint32_t left = 0, right = 0;
};

Margins demosaic_margins(const Image &mosaic, const FormatInfo &target) {
    Margins margins;
    uint32_t method = mosaic.bayer_method(), phase = mosaic.bayer_phase();
    if (method != ORV_BAYER_METHOD_AVE && method != ORV_BAYER_METHOD_MED)
        return margins;
    bool deep = mosaic.format().code != ORV_FORMAT_BAY8;
    bool med = method == ORV_BAYER_METHOD_MED;
    bool phase_b = phase == ORV_BAYER_PHASE_B;
    bool last_column_wrong =
        target.code == ORV_FORMAT_RGB16 &&
        ((med && phase == ORV_BAYER_PHASE_C) || (!med && phase_b && deep));
    if (mosaic.width() % 2 != 0)
        margins.right = 1;
    else if (last_column_wrong)
        margins.right = 2;
    if (med && phase_b && deep &&
        (target.code == ORV_FORMAT_BGRX32 || target.code == ORV_FORMAT_BGR24))
        margins.left = 2;
    return margins;
}

// The column of `width` nearest to `x` whose sites have the colours of
// column x: a margin repeats the mosaic's outer two columns.
uint32_t same_colour_column(int64_t x, uint32_t width) {
    if (x < 0)
        return static_cast<uint32_t>(x & 1);
    if (x >= width)
        return static_cast<uint32_t>(x - 2 * ((x - width) / 2 + 1));
    return static_cast<uint32_t>(x);
}

Image widened(const Image &mosaic, Margins margins) {
    Image wide = packed_image(mosaic.format(),
                              mosaic.width() + margins.left + margins.right,
                              mosaic.height());
    wide.set_bayer(mosaic.bayer_method(), mosaic.bayer_phase());
    const size_t sample = mosaic.format().bits_per_pixel / 8;
    for (uint32_t y = 0; y < mosaic.height(); ++y)
        for (uint32_t x = 0; x < wide.width(); ++x) {
            uint32_t from = same_colour_column(int64_t{x} - margins.left,
                                               mosaic.width());
            std::memcpy(wide.line(y) + x * sample,
                        mosaic.line(y) + from * sample, sample);
        }
    return wide;
}

Image cropped(const Image &image, uint32_t left, uint32_t width) {
    Image crop = packed_image(image.format(), width, image.height());
    const size_t pixel = image.format().bits_per_pixel / 8;
    for (uint32_t y = 0; y < image.height(); ++y)
        std::memcpy(crop.line(y), image.line(y) + left * pixel, crop.stride());
    return crop;
}

} // namespace

Image convert(const Image &source, const FormatInfo &target,
              const std::string &subject) {
    Margins margins;
    if (source.format().family == Family::bayer && source.width() >= 2)
        margins = demosaic_margins(source, target);
    Image destination = packed_image(target, source.width(), source.height());
    if (margins.left + margins.right == 0) {
        convert_into(source, destination, subject);
    } else {
        Image wide = widened(source, margins);
        Image wide_result = packed_image(target, wide.width(), wide.height());
        convert_into(wide, wide_result, subject);
        destination = cropped(wide_result, margins.left, source.width());
    }
    destination.set_significant_bits(converted_bits(source, target));
    return destination;
}

bool library_converts(const FormatInfo &source,
                      const FormatInfo &destination) {
    constexpr uint32_t kProbeStride = 64;
    Image from(source, 2, 0, kProbeStride);
    Image to(destination, 2, 0, kProbeStride);
    ORV_STATUS status = OVC_Convert(from.handle(), to.handle());
    return status == ORV_OK || status == ORV_ERROR_NOT_IMPLEMENTED;
}

bool demosaic_offered(const FormatInfo &source, const FormatInfo &destination,
                      uint32_t method, uint32_t phase) {
    constexpr uint32_t kProbeStride = 64;
    Image from(source, 2, 2, kProbeStride);
    Image to(destination, 2, 2, kProbeStride);
    from.set_bayer(method, phase);
    return OVC_Convert(from.handle(), to.handle()) == ORV_OK;
}

bool library_deinterlaces(const FormatInfo &format, uint32_t method) {
    constexpr uint32_t kProbeWidth = 4;
    if (format.bits_per_pixel == 0)
        return false;
    Image field = packed_image(format, kProbeWidth, 2);
    Image frame = frame_for(field);
    return OVC_FieldToFrame(field.handle(), frame.handle(), method, 1) == ORV_OK;
}

Image frame_for(const Image &field) {
    Image frame(field.format(), field.width(), 2 * field.height(),
                field.stride());
    frame.set_significant_bits(field.significant_bits());
    return frame;
}

namespace {

void check_deinterlaced(ORV_STATUS status, const Image &field, uint32_t method,
                        const std::string &subject) {
    if (status == ORV_ERROR_NOT_SUPPORTED)
        throw ToolError(subject + ": the library does not de-interlace " +
                        field.format().name + " fields by " +
                        name_of(kFieldMethods, method) + " (" +
                        status_name(status) + ")");
    if (status != ORV_OK)
        throw ToolError(subject + ": de-interlacing by " +
                        name_of(kFieldMethods, method) + " failed (" +
                        status_name(status) + ")");
}

// The Median method's 32-bit filled line stops three pixels short of the
// stride and moves the rest of the frame back by as much, so the frame
// shears and its last line stays empty. Each filled line is made here
// from a field of just the two lines around it, at a stride three pixels
// longer: its filled line then covers the whole line, the same bytes the
// method gives the lines of any other format. The tool places the field
// lines itself.
void median_line_by_line(const Image &field, Image &frame, uint32_t parity,
                         const std::string &subject) {
    constexpr uint32_t kShortfall = 12;
    const uint32_t line = field.stride();
    Image pair(field.format(), field.width(), 2, line + kShortfall);
    Image pair_frame = frame_for(pair);
    const uint32_t first = parity ? 0 : 1; // frame line of field line 0
    if (!parity)
        std::memcpy(frame.line(0), field.line(0), line);
    for (uint32_t y = 0; y < field.height(); ++y) {
        std::memcpy(frame.line(first + 2 * y), field.line(y), line);
        if (y + 1 == field.height())
            break;
        std::memcpy(pair.line(0), field.line(y), line);
        std::memcpy(pair.line(1), field.line(y + 1), line);
        check_deinterlaced(OVC_FieldToFrame(pair.handle(), pair_frame.handle(),
                                            OVC_FIELD_MEDIAN, 1),
                           field, OVC_FIELD_MEDIAN, subject);
        std::memcpy(frame.line(first + 2 * y + 1), pair_frame.line(1), line);
    }
    if (parity)
        std::memcpy(frame.line(frame.height() - 1),
                    field.line(field.height() - 1), line);
}

} // namespace

void field_to_frame(const Image &field, Image &frame, uint32_t method,
                    uint32_t parity, const std::string &subject) {
    // The neighbourhood methods weigh a pixel with the pixels beside it,
    // and YUV 4:2:2 comes in pairs: four pixels is the narrowest line every
    // method handles.
    if (field.width() < 4)
        throw ToolError(subject + ": a field must be at least 4 pixels wide, "
                                  "this one is " +
                        std::to_string(field.width()));
    if (method == OVC_FIELD_MEDIAN && field.format().bits_per_pixel == 32 &&
        library_deinterlaces(field.format(), method)) {
        median_line_by_line(field, frame, parity, subject);
        return;
    }
    check_deinterlaced(
        OVC_FieldToFrame(field.handle(), frame.handle(), method, parity), field,
        method, subject);
}

} // namespace orvtool
