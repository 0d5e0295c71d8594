// The demosaic model: the colour layout of the four phases, the dup copy
// tables, the ave and med neighbour rules with their border cases and the
// deliberate quirks of single routines, and the five output packers.
#include "bayer/reference_model.h"

#include <algorithm>
#include <stdexcept>

namespace bayer_model {

namespace {

enum Colour { kRed, kGreen, kBlue };

// Colours of the top-left 2 x 2 cell of each phase; every other site has
// the colour of the cell site with the same line and column parities.
Colour colour_at(Phase phase, uint32_t y, uint32_t x) {
    static const Colour cell[4][2][2] = {
        {{kRed, kGreen}, {kGreen, kBlue}},  // A
        {{kGreen, kRed}, {kBlue, kGreen}},  // B
        {{kGreen, kBlue}, {kRed, kGreen}},  // C
        {{kBlue, kGreen}, {kGreen, kRed}}}; // D
    return cell[static_cast<int>(phase)][y & 1][x & 1];
}

// Reads sites of the source mosaic and remembers how far into the source
// memory the reads reached.
class Mosaic {
public:
    Mosaic(const std::vector<uint8_t> &bytes, uint32_t stride, uint32_t size)
        : bytes_(bytes), stride_(stride), size_(size) {}

    uint32_t operator()(int64_t y, int64_t x) {
        if (y < 0 || x < 0) throw std::logic_error("site before the image");
        const size_t at = size_t(y) * stride_ + size_t(x) * size_;
        if (at + size_ > bytes_.size())
            throw std::logic_error("model source memory too short");
        extent_ = std::max(extent_, at + size_);
        return size_ == 1 ? bytes_[at] : bytes_[at] | bytes_[at + 1] << 8;
    }
    size_t extent() const { return extent_; }

private:
    const std::vector<uint8_t> &bytes_;
    uint32_t stride_;
    uint32_t size_;
    size_t extent_ = 0;
};

struct Pixel {
    Channel channel[3]; // indexed by Colour
    bool compared = true;
};

Channel value(uint32_t v) { return {v, false}; }

// Truncated mean of one, two or four samples.
Channel mean(const std::vector<uint32_t> &samples) {
    uint32_t sum = 0;
    for (uint32_t s : samples) sum += s;
    const uint32_t shift = samples.size() == 4 ? 2 : samples.size() == 2 ? 1 : 0;
    return value(sum >> shift);
}

// The two middle values of four, halved (rounded down).
Channel median4(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    uint32_t v[4] = {a, b, c, d};
    std::sort(v, v + 4);
    return value((v[1] + v[2]) >> 1);
}

bool is(const Kind &k, Source s, Output o, Method m, Phase p) {
    return k.source == s && k.output == o && k.method == m && k.phase == p;
}

// --- dup: every channel is a copy of one sample -------------------------

// (line, column) offsets of the samples copied into R, G and B.
struct Offset {
    int dy, dx;
};
struct CopyRow {
    Offset red, green, blue;
};

// [phase][line 0 | odd line | even line >= 2][column 0 | odd | even >= 2]
const CopyRow kCopyTable[4][3][3] = {
    {// A
     {{{0, 0}, {0, 1}, {1, 1}}, {{0, -1}, {0, 0}, {1, 0}}, {{0, 0}, {0, -1}, {1, -1}}},
     {{{-1, 0}, {0, 0}, {0, 1}}, {{-1, -1}, {0, -1}, {0, 0}}, {{-1, 0}, {0, 0}, {0, -1}}},
     {{{0, 0}, {-1, 0}, {-1, 1}}, {{0, -1}, {0, 0}, {-1, 0}}, {{0, 0}, {0, -1}, {-1, -1}}}},
    {// B
     {{{0, 1}, {0, 0}, {1, 0}}, {{0, 0}, {0, -1}, {1, -1}}, {{0, -1}, {0, 0}, {1, 0}}},
     {{{-1, 1}, {0, 1}, {0, 0}}, {{-1, 0}, {0, 0}, {0, -1}}, {{-1, -1}, {0, -1}, {0, 0}}},
     {{{0, 1}, {0, 0}, {-1, 0}}, {{0, 0}, {0, -1}, {-1, -1}}, {{0, -1}, {0, 0}, {-1, 0}}}},
    {// C
     {{{1, 0}, {0, 0}, {0, 1}}, {{1, -1}, {0, -1}, {0, 0}}, {{1, 0}, {0, 0}, {0, -1}}},
     {{{0, 0}, {-1, 0}, {-1, 1}}, {{0, -1}, {0, 0}, {-1, 0}}, {{0, 0}, {0, -1}, {-1, -1}}},
     {{{-1, 0}, {0, 0}, {0, 1}}, {{-1, -1}, {0, -1}, {0, 0}}, {{-1, 0}, {0, 0}, {0, -1}}}},
    {// D
     {{{1, 1}, {0, 1}, {0, 0}}, {{1, 0}, {0, 0}, {0, -1}}, {{1, -1}, {0, -1}, {0, 0}}},
     {{{0, 1}, {0, 0}, {-1, 0}}, {{0, 0}, {0, -1}, {-1, -1}}, {{0, -1}, {0, 0}, {-1, 0}}},
     {{{-1, 1}, {-1, 0}, {0, 0}}, {{-1, 0}, {0, 0}, {0, -1}}, {{-1, -1}, {0, -1}, {0, 0}}}}};

Pixel dup_site(const Kind &k, Mosaic &s, uint32_t y, uint32_t x) {
    const int line = y == 0 ? 0 : (y & 1) ? 1 : 2;
    const int column = x == 0 ? 0 : (x & 1) ? 1 : 2;
    CopyRow row = kCopyTable[static_cast<int>(k.phase)][line][column];
    // The RGB16 routines of phase D take column 0's green of the B/G lines
    // from the right, not from above.
    if (k.output == Output::RGB16 && k.phase == Phase::D && line == 2 && column == 0)
        row.green = {0, 1};
    Pixel p;
    p.channel[kRed] = value(s(y + row.red.dy, x + row.red.dx));
    p.channel[kGreen] = value(s(y + row.green.dy, x + row.green.dx));
    p.channel[kBlue] = value(s(y + row.blue.dy, x + row.blue.dx));
    return p;
}

// --- ave: truncated means of the neighbours that exist ------------------

Pixel ave_site(const Kind &k, Mosaic &s, uint32_t width, uint32_t lines,
               uint32_t y, uint32_t x) {
    // With an odd width the last column counts as an inner one: its right
    // neighbour is whatever sample follows the line in memory.
    std::vector<int> across, down; // existing horizontal / vertical offsets
    if (x > 0) across.push_back(-1);
    if (x + 1 < width || width % 2 == 1) across.push_back(1);
    if (y > 0) down.push_back(-1);
    if (y + 1 < lines) down.push_back(1);

    const Colour own = colour_at(k.phase, y, x);
    Pixel p;
    p.channel[own] = value(s(y, x));
    std::vector<uint32_t> row, column, diagonal;
    for (int dx : across) row.push_back(s(y, x + dx));
    for (int dy : down) column.push_back(s(y + dy, x));
    if (own == kGreen) {
        p.channel[colour_at(k.phase, y, x + 1)] = mean(row);
        p.channel[colour_at(k.phase, y + 1, x)] = mean(column);
    } else {
        // Green from both directions inside, from along the border line or
        // column on an edge, from the two that exist at a corner.
        std::vector<uint32_t> cross;
        if (row.size() == 2 && column.size() == 2) {
            cross = row;
            cross.insert(cross.end(), column.begin(), column.end());
        } else if (row.size() == 2) {
            cross = row;
        } else if (column.size() == 2) {
            cross = column;
        } else {
            cross = {row[0], column[0]};
        }
        p.channel[kGreen] = mean(cross);
        for (int dy : down)
            for (int dx : across) diagonal.push_back(s(y + dy, x + dx));
        p.channel[own == kRed ? kBlue : kRed] = mean(diagonal);
    }
    // OVC_BAYn_to_RGB16_ave_B packs the red of the lone last column of its
    // inner B/G lines without the depth shift.
    if (is(k, Source::BAYn, Output::RGB16, Method::ave, Phase::B) &&
        width % 2 == 0 && x == width - 1 && (y & 1) && y + 1 < lines)
        p.channel[kRed].unscaled = true;
    return p;
}

// --- med: median of four inside, two-neighbour means on the border -----

Pixel med_site(const Kind &k, Mosaic &s, uint32_t width, uint32_t lines,
               uint32_t y, uint32_t x) {
    const bool rgb16_c = k.output == Output::RGB16 && k.phase == Phase::C;
    // The RGB16 routines of phase C read the line below one column to the
    // right when the width is odd, from line 1 on.
    const int below_shift = rgb16_c && width % 2 == 1 && y >= 1 ? 1 : 0;
    auto at = [&](int dy, int dx) {
        return s(int64_t(y) + dy, int64_t(x) + dx + (dy == 1 ? below_shift : 0));
    };
    // Two-sample means stay sums: the packer halves them within its shift.
    auto avg = [](uint32_t a, uint32_t b) { return Channel{a + b, false, true}; };

    enum { kFirst, kInner, kLast } column =
        x == 0 ? kFirst : (x == width - 1 && width % 2 == 0) ? kLast : kInner;
    const Colour own = colour_at(k.phase, y, x);
    Pixel p;
    p.channel[own] = value(at(0, 0));

    if (own != kGreen) {
        Channel &green = p.channel[kGreen];
        Channel &opposite = p.channel[own == kRed ? kBlue : kRed];
        if (y == 0) {
            if (column == kFirst) {
                green = avg(at(0, 1), at(1, 0));
                opposite = value(at(1, 1));
            } else if (column == kInner) {
                green = avg(at(0, -1), at(0, 1));
                opposite = avg(at(1, -1), at(1, 1));
            } else {
                // The RGB16 routines of phase C pair the left sample with
                // the one below and to the right (past the line below).
                green = avg(at(0, -1), rgb16_c ? at(1, 1) : at(1, 0));
                opposite = value(at(1, -1));
            }
        } else if (y == lines - 1) {
            if (column == kFirst) {
                green = avg(at(0, 1), at(-1, 0));
                opposite = value(at(-1, 1));
            } else if (column == kInner) {
                green = avg(at(0, -1), at(0, 1));
                opposite = avg(at(-1, -1), at(-1, 1));
            } else {
                green = avg(at(-1, 0), at(0, -1));
                opposite = value(at(-1, -1));
            }
        } else {
            if (column == kFirst) {
                green = avg(at(-1, 0), at(1, 0));
                opposite = avg(at(-1, 1), at(1, 1));
            } else if (column == kInner) {
                green = median4(at(-1, 0), at(0, -1), at(1, 0), at(0, 1));
                opposite = median4(at(-1, -1), at(-1, 1), at(1, -1), at(1, 1));
            } else {
                green = avg(at(-1, 0), at(1, 0));
                opposite = avg(at(-1, -1), at(1, -1));
            }
        }
    } else {
        Channel &row = p.channel[colour_at(k.phase, y, x + 1)];
        Channel &col = p.channel[colour_at(k.phase, y + 1, x)];
        row = column == kFirst ? value(at(0, 1))
              : column == kLast ? value(at(0, -1))
                                : avg(at(0, -1), at(0, 1));
        if (y == 0)
            col = value(at(1, 0));
        else if (y == lines - 1)
            col = value(at(-1, 0));
        else
            col = avg(at(-1, 0), at(1, 0));
    }

    // OVC_BAYn_to_BGRX32_med_B and _BGR24_med_B pack the blue of column 0
    // of the inner G/R lines without the depth shift.
    if (k.source == Source::BAYn && k.phase == Phase::B && k.output != Output::RGB16 &&
        x == 0 && y > 0 && y + 1 < lines && (y & 1) == 0)
        p.channel[kBlue] = {p.channel[kBlue].value >> 1, true, false};
    // What the RGB16 phase-C routines leave in the last column of an odd
    // width from line 1 on is not pinned down.
    if (rgb16_c && width % 2 == 1 && y >= 1 && x == width - 1) p.compared = false;
    return p;
}

// The channel narrowed to the 8-bit scale (not yet cut to a byte).
uint32_t shifted(Channel c, uint32_t depth) {
    if (c.unscaled) return c.value;
    return c.value >> ((c.sum_of_two ? depth - 7 : depth - 8) & 31);
}

// The five-bit blue field of RGB16, from the full-depth value, unmasked.
uint32_t blue_field(Channel c, uint32_t depth) {
    if (c.unscaled) return c.value >> 3;
    return c.value >> ((c.sum_of_two ? depth - 4 : depth - 5) & 31);
}

} // namespace

uint32_t sample_size(Source source) { return source == Source::BAY8 ? 1 : 2; }

uint32_t bytes_per_pixel(Output output) {
    switch (output) {
    case Output::BGRX32:
    case Output::RGBX32: return 4;
    case Output::BGR24: return 3;
    default: return 2;
    }
}

uint32_t lines_written(Method method, uint32_t height) {
    return std::max<uint32_t>(height, method == Method::dup ? 1 : 2);
}

size_t destination_size(const Kind &kind, const Geometry &g) {
    const size_t lines = lines_written(kind.method, g.height);
    return std::max(size_t(g.height) * g.destination_stride,
                    (lines - 1) * g.destination_stride +
                        size_t(g.width) * bytes_per_pixel(kind.output));
}

void pack(const Kind &kind, uint32_t depth, Channel red, Channel green,
          Channel blue, uint8_t *pixel) {
    auto byte = [&](Channel c) { return uint8_t(shifted(c, depth)); };
    uint32_t word = 0;
    switch (kind.output) {
    case Output::BGRX32:
    case Output::BGR24:
        pixel[0] = byte(blue), pixel[1] = byte(green), pixel[2] = byte(red);
        return;
    case Output::RGBX32:
        pixel[0] = byte(red), pixel[1] = byte(green), pixel[2] = byte(blue);
        return;
    case Output::RGB16:
        // Separate shifts per field; blue is taken from the full-depth value
        // and not masked, so out-of-depth bits spill into green.
        word = ((shifted(red, depth) >> 3) << 11) | ((shifted(green, depth) << 3) & 0x7E0) |
               blue_field(blue, depth);
        break;
    case Output::BGR16:
        word = ((byte(blue) >> 3) << 11) | ((byte(green) << 3) & 0x7E0) | (byte(red) >> 3);
        break;
    }
    pixel[0] = uint8_t(word);
    pixel[1] = uint8_t(word >> 8);
}

Result demosaic(const Kind &kind, const Geometry &g,
                const std::vector<uint8_t> &source,
                std::vector<uint8_t> destination) {
    Mosaic s(source, g.source_stride, sample_size(kind.source));
    const uint32_t lines = lines_written(kind.method, g.height);
    const uint32_t bpp = bytes_per_pixel(kind.output);
    const uint32_t depth = kind.source == Source::BAY8 ? 8 : g.depth;
    Result r{std::move(destination), {}, 0};
    r.compared.assign(r.destination.size(), true);
    for (uint32_t y = 0; y < lines; ++y) {
        for (uint32_t x = 0; x < g.width; ++x) {
            const Pixel p = kind.method == Method::dup ? dup_site(kind, s, y, x)
                            : kind.method == Method::ave
                                ? ave_site(kind, s, g.width, lines, y, x)
                                : med_site(kind, s, g.width, lines, y, x);
            const size_t at = size_t(y) * g.destination_stride + size_t(x) * bpp;
            if (at + bpp > r.destination.size())
                throw std::logic_error("model destination too short");
            pack(kind, depth, p.channel[kRed], p.channel[kGreen], p.channel[kBlue],
                 r.destination.data() + at);
            if (!p.compared)
                for (uint32_t i = 0; i < bpp; ++i) r.compared[at + i] = false;
        }
    }
    r.source_extent = s.extent();
    return r;
}

} // namespace bayer_model
