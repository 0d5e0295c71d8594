// `orvane demo`: synthesises a test chart, runs it through every demosaic
// method and phase (8- and 12-bit mosaics), the YUV 4:2:2 conversion and
// every de-interlace method, and writes what comes out as PNG files, plus
// an 8-bit grey TIFF and a raw dump from the library's own writers. Prints
// what it did, the file each operation wrote and the library's speed.
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

struct Row {
    std::string operation, file;
    double megapixels_per_second; // negative: not a library operation
};

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
    explicit Demo(std::string directory) : directory_(std::move(directory)) {}

    void run() {
        Image chart = chart_bgr24();
        png(chart, "synthesised chart (R, G, B)", "chart.png", -1);
        demosaic_all(ORV_FORMAT_BAY8, "bay8");
        demosaic_all(ORV_FORMAT_BAY12, "bay12");
        yuv422();
        deinterlace_all(chart);
        grey_tiff();
        raw_dump();
    }

    void print() const {
        std::printf("orvane demo: a %u x %u test chart, files in %s/\n\n",
                    kWidth, kHeight, directory_.c_str());
        std::printf("%-36s %-20s %10s\n", "operation", "output file", "MP/s");
        for (const Row &row : rows_) {
            if (row.megapixels_per_second < 0)
                std::printf("%-36s %-20s %10s\n", row.operation.c_str(),
                            row.file.c_str(), "-");
            else
                std::printf("%-36s %-20s %10.1f\n", row.operation.c_str(),
                            row.file.c_str(), row.megapixels_per_second);
        }
        std::printf("\nOpen the PNG files in any image viewer. The raw dump "
                    "converts back with:\n  orvane convert %s/bay8-a.raw "
                    "--format bay8 --width %u --height %u --method ave "
                    "--phase a -o bay8-ave-a.png\n",
                    directory_.c_str(), kWidth, kHeight);
    }

private:
    std::string path(const std::string &file) const {
        return directory_ + "/" + file;
    }

    void png(const Image &image, std::string operation, std::string file,
             double speed_measured) {
        write_image(image, FileType::png, path(file));
        rows_.push_back({std::move(operation), std::move(file), speed_measured});
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

    void deinterlace_all(const Image &chart) {
        Image field = chart_field(chart);
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
    std::vector<Row> rows_;
};

} // namespace

int run_demo(const std::string &directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error)
        throw ToolError(directory + ": cannot create directory: " +
                        error.message());
    Demo demo(directory);
    demo.run();
    demo.print();
    return 0;
}

} // namespace orvtool
