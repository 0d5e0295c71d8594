// `orvane demo`: synthesises a test chart, runs it through every demosaic
// method and phase (8- and 12-bit mosaics), the YUV 4:2:2 conversion and
// every de-interlace method, and writes what comes out as PNG files, plus
// an 8-bit grey TIFF and a raw dump from the library's own writers and the
// field it de-interlaces as a PPM, for the user to try. Prints
// what it did, the file each operation wrote, the library's speed and how
// close each picture is to the chart (PSNR).
#include "commands.h"
#include "errors.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace orvtool {

namespace {

constexpr uint32_t kWidth = 640;
constexpr uint32_t kHeight = 480;

struct Rgb {
    uint8_t r, g, b;
};

// White, yellow, cyan, green, magenta, red, blue, black.
constexpr std::array<Rgb, 8> kBars = {{{255, 255, 255},
                                       {255, 255, 0},
                                       {0, 255, 255},
                                       {0, 255, 0},
                                       {255, 0, 255},
                                       {255, 0, 0},
                                       {0, 0, 255},
                                       {0, 0, 0}}};

// The chart: eight colour bars over the top half, a grey ramp from black
// to white in the third quarter, and in the last quarter black and white
// diagonal lines of period 2, 4, 6 and 8 pixels from left to right (the
// finest is a checkerboard, which no demosaic recovers).
Rgb chart_pixel(uint32_t x, uint32_t y) {
    if (y < kHeight / 2)
        return kBars[x * kBars.size() / kWidth];
    if (y < kHeight * 3 / 4) {
        auto v = static_cast<uint8_t>(x * 255 / (kWidth - 1));
        return {v, v, v};
    }
    uint32_t period = 2 * (1 + x * 4 / kWidth);
    uint8_t v = (x + y) % period < period / 2 ? 255 : 0;
    return {v, v, v};
}

// Full-range BT.601 luma, rounded.
uint8_t luma(Rgb c) {
    return static_cast<uint8_t>((299u * c.r + 587u * c.g + 114u * c.b + 500) /
                                1000);
}

void store_u16(uint8_t *at, uint32_t value) {
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
}

Image chart_bgr24() {
    Image image = packed_image(format_of(ORV_FORMAT_BGR24), kWidth, kHeight);
    for (uint32_t y = 0; y < kHeight; ++y)
        for (uint32_t x = 0; x < kWidth; ++x) {
            Rgb c = chart_pixel(x, y);
            uint8_t *p = image.line(y) + 3 * x;
            p[0] = c.b, p[1] = c.g, p[2] = c.r;
        }
    return image;
}

// Which colour a phase puts on each site of the 2 x 2 cell, line 0 then
// line 1 (phase A: R G / G B).
enum Channel { red, green, blue };
constexpr Channel kPhaseCells[4][2][2] = {{{red, green}, {green, blue}},
                                          {{green, red}, {blue, green}},
                                          {{green, blue}, {red, green}},
                                          {{blue, green}, {green, red}}};

uint8_t channel(Rgb c, Channel which) {
    return which == red ? c.r : which == green ? c.g : c.b;
}

// The chart as a camera with a Bayer filter of `phase` would see it; the
// 12-bit mosaic spreads each 8-bit value over 12 bits.
Image mosaic(uint32_t format_code, size_t phase) {
    Image image = packed_image(format_of(format_code), kWidth, kHeight);
    bool wide = format_code != ORV_FORMAT_BAY8;
    for (uint32_t y = 0; y < kHeight; ++y)
        for (uint32_t x = 0; x < kWidth; ++x) {
            uint8_t v = channel(chart_pixel(x, y), kPhaseCells[phase][y & 1][x & 1]);
            if (wide)
                store_u16(image.line(y) + 2 * x, uint32_t{v} << 4 | v >> 4);
            else
                image.line(y)[x] = v;
        }
    return image;
}

// The chart as a YUV 4:2:2 camera delivers it: full-range BT.601, chroma
// averaged over each pair of pixels.
Image chart_yuv422() {
    Image image = packed_image(format_of(ORV_FORMAT_YUV422), kWidth, kHeight);
    auto byte = [](double v) {
        return static_cast<uint8_t>(std::clamp(std::lround(v), 0L, 255L));
    };
    for (uint32_t y = 0; y < kHeight; ++y)
        for (uint32_t x = 0; x < kWidth; x += 2) {
            Rgb c0 = chart_pixel(x, y), c1 = chart_pixel(x + 1, y);
            double y0 = luma(c0), y1 = luma(c1);
            double db = (c0.b - y0 + c1.b - y1) / 2, dr = (c0.r - y0 + c1.r - y1) / 2;
            uint8_t *p = image.line(y) + 2 * x;
            p[0] = static_cast<uint8_t>(y0);
            p[1] = byte(128 + db / 1.772);
            p[2] = static_cast<uint8_t>(y1);
            p[3] = byte(128 + dr / 1.402);
        }
    return image;
}

// The even lines of the chart: the field an interlaced camera delivers.
Image chart_field(const Image &chart) {
    Image field = packed_image(chart.format(), kWidth, kHeight / 2);
    for (uint32_t y = 0; y < field.height(); ++y)
        std::copy_n(chart.line(2 * y), field.stride(), field.line(y));
    return field;
}

// The chart's luma in 16 bits.
Image chart_y16() {
    Image image = packed_image(format_of(ORV_FORMAT_Y16), kWidth, kHeight);
    for (uint32_t y = 0; y < kHeight; ++y)
        for (uint32_t x = 0; x < kWidth; ++x)
            store_u16(image.line(y) + 2 * x, luma(chart_pixel(x, y)) * 257u);
    return image;
}

// The chart's luma as 8-bit grey: what y16 to y8 should give.
Image chart_y8() {
    Image image = packed_image(format_of(ORV_FORMAT_Y8), kWidth, kHeight);
    for (uint32_t y = 0; y < kHeight; ++y)
        for (uint32_t x = 0; x < kWidth; ++x)
            image.line(y)[x] = luma(chart_pixel(x, y));
    return image;
}

// Peak signal-to-noise ratio of `image` against `reference`, same format
// and size, over every byte of lines `top` to `bottom` (exclusive);
// infinite when they are equal.
double psnr(const Image &image, const Image &reference, uint32_t top,
            uint32_t bottom) {
    const size_t line = packed_line_bytes(image.format(), image.width());
    double squares = 0;
    for (uint32_t y = top; y < bottom; ++y)
        for (size_t i = 0; i < line; ++i) {
            double d = static_cast<double>(image.line(y)[i]) -
                       static_cast<double>(reference.line(y)[i]);
            squares += d * d;
        }
    if (squares == 0)
        return INFINITY;
    double mean = squares / (static_cast<double>(line) * (bottom - top));
    return 10 * std::log10(255.0 * 255.0 / mean);
}

// A path as the shell reads it: quoted when it holds anything but plain
// characters.
std::string shell_word(const std::string &word) {
    bool plain = !word.empty() &&
                 word.find_first_not_of("abcdefghijklmnopqrstuvwxyz"
                                        "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                        "0123456789_-./+=:,@") == std::string::npos;
    if (plain)
        return word;
    std::string quoted = "'";
    for (char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// The chart's smooth parts (bars and ramp) end where its lines begin.
constexpr uint32_t kLinesTop = kHeight * 3 / 4;

struct Row {
    std::string operation, file;
    double megapixels_per_second; // negative: not a library operation
    // PSNR against the chart over its smooth parts and over its lines;
    // NAN for a file that is not a picture of the chart.
    double smooth_psnr = NAN, lines_psnr = NAN;
};

std::string decibels(double psnr) {
    char text[32] = "-";
    if (std::isinf(psnr))
        std::snprintf(text, sizeof text, "exact");
    else if (!std::isnan(psnr))
        std::snprintf(text, sizeof text, "%.1f", psnr);
    return text;
}

// Megapixels per second of `call` on `pixels` pixels, best of `runs`.
template <class Call>
double speed(uint64_t pixels, int runs, Call &&call) {
    double best = 0;
    for (int run = 0; run < runs; ++run) {
        auto start = std::chrono::steady_clock::now();
        call();
        std::chrono::duration<double> took =
            std::chrono::steady_clock::now() - start;
        if (run == 0 || took.count() < best)
            best = took.count();
    }
    return best > 0 ? static_cast<double>(pixels) / best / 1e6 : 0;
}

constexpr int kRuns = 3;

class Demo {
public:
    Demo(std::string directory, std::string command)
        : directory_(std::move(directory)), command_(std::move(command)),
          chart_(chart_bgr24()) {}

    void run() {
        png(chart_, "synthesised chart (R, G, B)", "chart.png", -1);
        demosaic_all(ORV_FORMAT_BAY8, "bay8");
        demosaic_all(ORV_FORMAT_BAY12, "bay12");
        yuv422();
        deinterlace_all();
        grey_tiff();
        raw_dump();
    }

    void print() const {
        std::printf("orvane demo: a %u x %u test chart, files in %s/\n\n",
                    kWidth, kHeight, directory_.c_str());
        std::printf("%-20s %-36s %9s %11s %10s\n", "output file", "operation",
                    "MP/s", "PSNR: bars", "lines");
        for (const Row &row : rows_) {
            char speed[32] = "-";
            if (row.megapixels_per_second >= 0)
                std::snprintf(speed, sizeof speed, "%.1f",
                              row.megapixels_per_second);
            std::printf("%-20s %-36s %9s %11s %10s\n", row.file.c_str(),
                        row.operation.c_str(), speed,
                        decibels(row.smooth_psnr).c_str(),
                        decibels(row.lines_psnr).c_str());
        }
        std::printf(
            "\nPSNR, in dB, compares each picture with the chart (the grey "
            "one with its luma):\nover the colour bars and the grey ramp, "
            "where every method should come close,\nand over the diagonal "
            "lines of period 2 to 8 pixels, which no method rebuilds\nfrom "
            "half the samples. The finest, a checkerboard of period 2, comes "
            "out\nflat magenta (phases a, d) or green (b, c) by aliasing in "
            "every demosaic:\neach 2 x 2 Bayer cell sees its red and blue "
            "sites lit and its green ones dark,\nor the other way round.\n");
        std::printf("\nOpen the PNG files in any image viewer. The raw dump "
                    "converts back with:\n  %s convert %s --format bay8 "
                    "--width %u --height %u --method ave --phase a -o %s\n",
                    shell_word(command_).c_str(),
                    shell_word(path("bay8-a.raw")).c_str(), kWidth, kHeight,
                    shell_word(path("bay8-ave-a-from-raw.png")).c_str());
    }

private:
    std::string path(const std::string &file) const {
        return directory_ + "/" + file;
    }

    void png(const Image &image, std::string operation, std::string file,
             double speed_measured) {
        write_image(image, FileType::png, path(file));
        const Image &reference =
            image.format().code == ORV_FORMAT_Y8 ? chart_y8_ : chart_;
        rows_.push_back({std::move(operation), std::move(file), speed_measured,
                         psnr(image, reference, 0, kLinesTop),
                         psnr(image, reference, kLinesTop, kHeight)});
    }

    void demosaic_all(uint32_t format_code, const std::string &name) {
        const FormatInfo &bgr24 = format_of(ORV_FORMAT_BGR24);
        for (size_t phase = 0; phase < kBayerPhases.size(); ++phase) {
            Image source = mosaic(format_code, phase);
            const char *phase_name = kBayerPhases[phase].name;
            for (const NamedValue &method : kBayerMethods) {
                source.set_bayer(method.value, kBayerPhases[phase].value);
                Image out = packed_image(bgr24, kWidth, kHeight);
                std::string operation = "demosaic " + name + " " + method.name +
                                        ", phase " + phase_name;
                double mps = speed(source.pixels(), kRuns,
                                   [&] { convert_into(source, out, operation); });
                png(out, operation,
                    name + "-" + method.name + "-" + phase_name + ".png", mps);
            }
        }
    }

    void yuv422() {
        Image source = chart_yuv422();
        Image out = packed_image(format_of(ORV_FORMAT_BGR24), kWidth, kHeight);
        double mps = speed(source.pixels(), kRuns,
                           [&] { convert_into(source, out, "yuv422"); });
        png(out, "yuv422 to bgr24", "yuv422.png", mps);
    }

    void deinterlace_all() {
        Image field = chart_field(chart_);
        write_image(field, FileType::ppm, path("field.ppm"));
        rows_.push_back({"the chart's even lines (a field)", "field.ppm", -1});
        uint32_t even = find_name(kFieldParities, "even")->value;
        for (const NamedValue &method : kFieldMethods) {
            Image frame = frame_for(field);
            double mps = speed(frame.pixels(), kRuns, [&] {
                field_to_frame(field, frame, method.value, even,
                               std::string("field by ") + method.name);
            });
            png(frame, std::string("field to frame, ") + method.name,
                std::string("field-") + method.name + ".png", mps);
        }
    }

    void grey_tiff() {
        Image y16 = chart_y16();
        Image y8 = packed_image(format_of(ORV_FORMAT_Y8), kWidth, kHeight);
        double mps = speed(y16.pixels(), kRuns,
                           [&] { convert_into(y16, y8, "y16 to y8"); });
        png(y8, "y16 to y8", "chart-y8.png", mps);
        mps = speed(y8.pixels(), 1,
                    [&] { write_image(y8, FileType::tiff, path("chart-y8.tif")); });
        rows_.push_back({"TIFF writer, y8", "chart-y8.tif", mps});
    }

    void raw_dump() {
        Image source = mosaic(ORV_FORMAT_BAY8, 0);
        double mps = speed(source.pixels(), 1, [&] {
            write_image(source, FileType::raw, path("bay8-a.raw"));
        });
        rows_.push_back({"raw writer, bay8 phase a", "bay8-a.raw", mps});
    }

    std::string directory_;
    std::string command_;
    Image chart_;
    Image chart_y8_ = chart_y8();
    std::vector<Row> rows_;
};

} // namespace

int run_demo(const std::string &directory, const std::string &command) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error)
        throw ToolError(directory + ": cannot create directory: " +
                        error.message());
    Demo demo(directory, command);
    demo.run();
    demo.print();
    return 0;
}

} // namespace orvtool
