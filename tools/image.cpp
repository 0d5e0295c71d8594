// Pixel memory with a buffer handle, and the library calls between images.
#include "image.h"

#include "errors.h"

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
      handle_(0) {
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
      handle_(std::exchange(other.handle_, 0)) {}

Image &Image::operator=(Image &&other) noexcept {
    if (this != &other) {
        release();
        memory_ = std::move(other.memory_);
        format_ = other.format_;
        width_ = other.width_;
        height_ = other.height_;
        stride_ = other.stride_;
        handle_ = std::exchange(other.handle_, 0);
    }
    return *this;
}

void Image::release() {
    OFS_BufferDestroy(handle_);
    handle_ = 0;
}

void Image::set_bayer(uint32_t method, uint32_t phase) {
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
    case ORV_ERROR_NOT_IMPLEMENTED: {
        uint32_t method = 0, phase = 0;
        OFS_BufferParameterGet(source.handle(), OFS_BAYER_METHOD, &method);
        OFS_BufferParameterGet(source.handle(), OFS_BAYER_PHASE, &phase);
        throw ToolError(subject + ": " + pair_text(source, target) +
                        " is not offered with method " +
                        name_of(kBayerMethods, method) + ", phase " +
                        name_of(kBayerPhases, phase) + " (" +
                        status_name(status) + ")");
    }
    default:
        throw ToolError(subject + ": converting " + pair_text(source, target) +
                        " failed (" + status_name(status) + ")");
    }
}

Image convert(const Image &source, const FormatInfo &target,
              const std::string &subject) {
    Image destination = packed_image(target, source.width(), source.height());
    convert_into(source, destination, subject);
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

Image frame_for(const Image &field) {
    return Image(field.format(), field.width(), 2 * field.height(),
                 field.stride());
}

void field_to_frame(const Image &field, Image &frame, uint32_t method,
                    uint32_t parity, const std::string &subject) {
    // The neighbourhood methods weigh a pixel with the pixels beside it,
    // and YUV 4:2:2 comes in pairs: four pixels is the narrowest line every
    // method handles.
    if (field.width() < 4)
        throw ToolError(subject + ": a field must be at least 4 pixels wide, "
                                  "this one is " +
                        std::to_string(field.width()));
    ORV_STATUS status =
        OVC_FieldToFrame(field.handle(), frame.handle(), method, parity);
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

} // namespace orvtool
