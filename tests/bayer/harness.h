// Running demosaic routines on test images and holding their output
// against the model: sources sized to exactly what a routine may read,
// destinations preset with a pattern that must survive wherever the
// routine does not write.
#ifndef ORVANE_TESTS_BAYER_HARNESS_H
#define ORVANE_TESTS_BAYER_HARNESS_H

#include "bayer/members.h"

#include <gtest/gtest.h>

namespace bayer_test {

// Every member of `method` on random mosaics of many widths, heights,
// strides and depths, against the model.
void check_random_images(bayer_model::Method method);

// Every member of `method` on flat mosaics: all channels equal the scaled
// sample, except the channels that `unscaled(member, W, H, y, x)` names
// (bit 0 red, bit 1 green, bit 2 blue), which the routine packs unshifted.
using UnscaledSites = unsigned (*)(const Member &, uint32_t width, uint32_t height,
                                   uint32_t y, uint32_t x);
void check_flat_images(bayer_model::Method method, UnscaledSites unscaled);

// A W x H mosaic given sample by sample (line after line, tight stride;
// `samples` may run past the image for the routine's over-reads). Runs
// `m`, checks it against the model and returns the destination, tight.
std::vector<uint8_t> render(const Member &m, uint32_t width, uint32_t height,
                            const std::vector<uint32_t> &samples,
                            uint32_t depth = 8);

// One destination pixel of a tight render: B, G and R bytes of the byte
// outputs, or the 16-bit word of the packed ones (in `word`).
struct Rendered {
    uint8_t blue, green, red;
    uint16_t word;
};
Rendered pixel(const std::vector<uint8_t> &destination, const Member &m,
               uint32_t width, uint32_t y, uint32_t x);

} // namespace bayer_test

#endif // ORVANE_TESTS_BAYER_HARNESS_H
