// Images of the orvane tool: pixel memory the tool owns, described to the
// library by a buffer handle, and the library calls that make one image
// from another (OVC_Convert, OVC_FieldToFrame).
#ifndef ORVANE_TOOL_IMAGE_H
#define ORVANE_TOOL_IMAGE_H

#include "vocabulary.h"

#include <orvaneimage.h>

#include <cstdint>
#include <string>
#include <vector>

namespace orvtool {

// Largest image the tool makes: every side fits the TIFF writer's 16-bit
// fields and every size product of the library stays far below 2^32.
constexpr uint32_t kMaxSide = 65535;
constexpr uint64_t kMaxPixels = uint64_t{1} << 26;
constexpr uint64_t kMaxImageBytes = uint64_t{1} << 30;

// Throws ToolError naming `subject` when width x height is empty or above
// the limits.
void check_geometry(const std::string &subject, uint32_t width,
                    uint32_t height);

class Image {
public:
    // Zero-filled pixels of `height` lines at `stride` bytes. The memory
    // runs on past the last line (see image.cpp) for the samples that the
    // library reads and writes just beyond an image.
    Image(const FormatInfo &format, uint32_t width, uint32_t height,
          uint32_t stride);
    ~Image();
    Image(Image &&other) noexcept;
    Image &operator=(Image &&other) noexcept;
    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;

    OFS_HANDLE handle() const { return handle_; }
    const FormatInfo &format() const { return *format_; }
    uint32_t width() const { return width_; }
    uint32_t height() const { return height_; }
    uint32_t stride() const { return stride_; }
    uint8_t *line(uint32_t y) { return memory_.data() + size_t{y} * stride_; }
    const uint8_t *line(uint32_t y) const {
        return memory_.data() + size_t{y} * stride_;
    }
    uint64_t pixels() const { return uint64_t{width_} * height_; }

    // Bits of each sample that carry the picture: the format's depth,
    // unless the samples came from a shallower format unscaled (8-bit grey
    // widened into BGR48 keeps values up to 255). Files record it as their
    // maxval or scale the samples to it.
    unsigned significant_bits() const { return significant_bits_; }
    void set_significant_bits(unsigned bits) { significant_bits_ = bits; }

    // Records the demosaic method and phase that OVC_Convert reads from a
    // Bayer source.
    void set_bayer(uint32_t method, uint32_t phase);
    uint32_t bayer_method() const { return bayer_method_; }
    uint32_t bayer_phase() const { return bayer_phase_; }

private:
    void release();

    std::vector<uint8_t> memory_;
    const FormatInfo *format_;
    uint32_t width_, height_, stride_;
    unsigned significant_bits_;
    uint32_t bayer_method_ = 0, bayer_phase_ = 0;
    OFS_HANDLE handle_;
};

// An image of `format` with the geometry of `source` and unpadded lines.
Image packed_image(const FormatInfo &format, uint32_t width, uint32_t height);

// A new image of `target`, converted from `source` by OVC_Convert; a
// refusal becomes a ToolError that names `subject`, both formats and the
// library's status. Mosaics whose demosaic would read past a line or
// reach the known wrong sites are widened first and cropped after (see
// image.cpp).
Image convert(const Image &source, const FormatInfo &target,
              const std::string &subject);
// OVC_Convert(source, destination) as it stands, for the demo's timings.
void convert_into(const Image &source, Image &destination,
                  const std::string &subject);

// Whether OVC_Convert converts `source` into `destination`, asked with
// zero-height images: the library checks the pair and converts nothing.
// Bayer sources carry no method, so the demosaic routines are never run
// and a pair they serve answers ORV_ERROR_NOT_IMPLEMENTED.
bool library_converts(const FormatInfo &source, const FormatInfo &destination);
// Whether the pair demosaics with `method` and `phase`, asked with a real
// 2 x 2 mosaic: a pair that does not offer them answers
// ORV_ERROR_NOT_IMPLEMENTED.
bool demosaic_offered(const FormatInfo &source, const FormatInfo &destination,
                      uint32_t method, uint32_t phase);
// Whether OVC_FieldToFrame de-interlaces fields of `format` by `method`,
// asked with a small field.
bool library_deinterlaces(const FormatInfo &format, uint32_t method);

// The frame of 2 x height lines that OVC_FieldToFrame rebuilds from
// `field`, same format and line length.
Image frame_for(const Image &field);
// OVC_FieldToFrame(field, frame, method, parity); the 32-bit Median
// method goes a field line pair at a time (see image.cpp).
void field_to_frame(const Image &field, Image &frame, uint32_t method,
                    uint32_t parity, const std::string &subject);

} // namespace orvtool

#endif // ORVANE_TOOL_IMAGE_H
