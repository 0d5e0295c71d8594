// End-to-end tests of the orvane tool: run the built binary, decode what it
// writes (with libpng and libtiff) and compare with the chart, the inputs
// or a one-at-a-time run.
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Outcome {
    int status;
    std::string out, err;
};

std::string quoted(const std::string &word) {
    std::string text = "'";
    for (char c : word)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

std::string slurp(const fs::path &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void spill(const fs::path &path, const std::string &bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Runs the tool in `directory` with `args`, after the shell commands of
// `setting` (a resource limit, say).
Outcome orvane(const fs::path &directory, const std::vector<std::string> &args,
               const std::string &setting = "") {
    std::string command = "cd " + quoted(directory.string()) + " && " +
                          setting + " exec " + quoted(ORVANE_TOOL);
    for (const std::string &arg : args)
        command += " " + quoted(arg);
    fs::path out = directory.parent_path() / (directory.filename().string() + ".stdout");
    fs::path err = directory.parent_path() / (directory.filename().string() + ".stderr");
    command += " >" + quoted(out.string()) + " 2>" + quoted(err.string());
    int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, slurp(out), slurp(err)};
}

// A fresh, empty directory for one test.
fs::path work_directory(const std::string &name) {
    fs::path path = fs::path(ORVANE_TEST_WORK) / name;
    fs::remove_all(path);
    fs::create_directories(path);
    return path;
}

std::set<std::string> entries(const fs::path &directory) {
    std::set<std::string> names;
    for (const auto &entry : fs::directory_iterator(directory))
        names.insert(entry.path().filename().string());
    return names;
}

struct Decoded {
    uint32_t width = 0, height = 0;
    int channels = 0, depth = 0;
    std::vector<uint32_t> samples; // line after line, R G B or grey

    uint32_t at(uint32_t x, uint32_t y, int c) const {
        return samples[(size_t{y} * width + x) * channels + c];
    }
};

bool decode_rows(FILE *file, png_structp png, png_infop info) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_init_io(png, file);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    return true;
}

// Decodes a PNG; an empty result (width 0) for a file libpng refuses.
Decoded read_png(const fs::path &path) {
    Decoded image;
    FILE *file = std::fopen(path.c_str(), "rb");
    if (!file)
        return image;
    png_structp png =
        png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (decode_rows(file, png, info)) {
        image.width = png_get_image_width(png, info);
        image.height = png_get_image_height(png, info);
        image.channels = png_get_channels(png, info);
        image.depth = png_get_bit_depth(png, info);
        png_bytepp rows = png_get_rows(png, info);
        size_t per_line = size_t{image.width} * image.channels;
        for (uint32_t y = 0; y < image.height; ++y)
            for (size_t i = 0; i < per_line; ++i)
                image.samples.push_back(
                    image.depth == 16
                        ? uint32_t{rows[y][2 * i]} << 8 | rows[y][2 * i + 1]
                        : rows[y][i]);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return image;
}

// Decodes a TIFF with libtiff; an empty result for a file it refuses.
Decoded read_tiff(const fs::path &path) {
    Decoded image;
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    TIFF *tiff = TIFFOpen(path.c_str(), "r");
    if (!tiff)
        return image;
    uint16_t bits = 0, channels = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &image.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &image.height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    image.depth = bits;
    image.channels = channels;
    std::vector<uint8_t> line(static_cast<size_t>(TIFFScanlineSize(tiff)));
    size_t per_line = size_t{image.width} * channels;
    for (uint32_t y = 0; y < image.height; ++y) {
        if (TIFFReadScanline(tiff, line.data(), y, 0) != 1 ||
            line.size() < per_line * (bits / 8)) {
            image.width = 0;
            break;
        }
        for (size_t i = 0; i < per_line; ++i) {
            uint16_t wide = 0;
            if (bits == 16)
                std::memcpy(&wide, &line[2 * i], 2);
            image.samples.push_back(bits == 16 ? wide : line[i]);
        }
    }
    TIFFClose(tiff);
    return image;
}

// ---- the chart the demo draws ---------------------------------------------

struct Rgb {
    int r, g, b;
};
const Rgb kBars[8] = {{255, 255, 255}, {255, 255, 0}, {0, 255, 255},
                      {0, 255, 0},     {255, 0, 255}, {255, 0, 0},
                      {0, 0, 255},     {0, 0, 0}};

int luma(Rgb c) { return (299 * c.r + 587 * c.g + 114 * c.b + 500) / 1000; }

// Checks the flat middle of every colour bar (the top half of the chart,
// eight bars across) against the bar's colour, within `tolerance`.
void expect_bars(const Decoded &image, int tolerance, const std::string &what) {
    ASSERT_EQ(image.channels, 3) << what;
    for (uint32_t bar = 0; bar < 8; ++bar) {
        uint32_t left = bar * image.width / 8, right = (bar + 1) * image.width / 8;
        int worst = 0;
        for (uint32_t y = image.height / 12; y < image.height * 5 / 12; ++y)
            for (uint32_t x = left + 4; x + 4 < right; ++x) {
                const int want[3] = {kBars[bar].r, kBars[bar].g, kBars[bar].b};
                for (int c = 0; c < 3; ++c)
                    worst = std::max(worst, std::abs(static_cast<int>(
                                                         image.at(x, y, c)) -
                                                     want[c]));
            }
        EXPECT_LE(worst, tolerance) << what << ", bar " << bar;
    }
}

uint32_t big_endian(const std::string &bytes, size_t at, int size) {
    uint32_t value = 0;
    for (int i = 0; i < size; ++i)
        value = value << 8 | static_cast<uint8_t>(bytes.at(at + i));
    return value;
}

// The middle of each bar of an 8-bit grey picture holds the bar's luma.
void expect_grey_bars(const Decoded &grey, const std::string &what) {
    ASSERT_EQ(grey.channels, 1) << what;
    for (uint32_t bar = 0; bar < 8; ++bar)
        EXPECT_EQ(grey.at((2 * bar + 1) * grey.width / 16, grey.height / 4, 0),
                  static_cast<uint32_t>(luma(kBars[bar])))
            << what << ", bar " << bar;
}

// ---- demo ------------------------------------------------------------------

class Demo : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        directory_ = work_directory("demo");
        run_ = new Outcome(orvane(directory_, {"demo", "out"}));
    }
    static void TearDownTestSuite() { delete run_; }

    // The rows of the demo's table, split into words: every line between
    // the table's heading and the blank line after it. The first word is
    // the file, the last two the PSNR over the chart's bars and lines.
    static std::vector<std::vector<std::string>> table() {
        std::vector<std::vector<std::string>> rows;
        std::istringstream lines(run_->out);
        bool in_table = false;
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("output file", 0) == 0) {
                in_table = true;
                continue;
            }
            if (!in_table)
                continue;
            if (line.empty())
                break;
            std::istringstream words(line);
            rows.emplace_back(std::istream_iterator<std::string>(words),
                              std::istream_iterator<std::string>());
        }
        return rows;
    }

    static fs::path directory_;
    static Outcome *run_;
};

fs::path Demo::directory_;
Outcome *Demo::run_ = nullptr;

TEST_F(Demo, WritesEveryFileItListsAndEveryImageShowsTheChart) {
    ASSERT_EQ(run_->status, 0) << run_->err;
    std::vector<std::string> files;
    for (const auto &row : table()) {
        ASSERT_GE(row.size(), 5u);
        files.push_back(row.front());
        // A picture of the chart is close to it over the bars and ramp.
        const std::string &bars = row[row.size() - 2];
        bool picture = files.back().find(".png") != std::string::npos;
        if (!picture) {
            EXPECT_EQ(bars, "-") << files.back();
        } else if (bars != "exact") {
            EXPECT_GE(std::stod(bars), 24.0) << files.back();
        }
    }
    // 24 demosaics, the chart, YUV, the field and its 4 frames, grey PNG,
    // TIFF, raw.
    EXPECT_EQ(files.size(), 34u) << run_->out;
    EXPECT_EQ(entries(directory_ / "out"),
              std::set<std::string>(files.begin(), files.end()));

    struct Expectation {
        const char *prefix;
        int tolerance; // YUV rounds twice; the bilinear kernel weighs 510/512
    };
    const Expectation expectations[] = {
        {"chart", 0}, {"bay8-", 0}, {"bay12-", 0}, {"yuv422", 3}, {"field-", 1}};
    for (const std::string &file : files) {
        fs::path path = directory_ / "out" / file;
        if (file == "chart-y8.tif") {
            expect_grey_bars(read_tiff(path), file);
        } else if (file == "bay8-a.raw") {
            EXPECT_EQ(fs::file_size(path), 640u * 480u);
        } else if (file == "field.ppm") {
            EXPECT_EQ(fs::file_size(path), 15u + 640u * 240u * 3u);
        } else if (file == "chart-y8.png") {
            expect_grey_bars(read_png(path), file);
        } else {
            Decoded image = read_png(path);
            ASSERT_EQ(image.width, 640u) << file;
            ASSERT_EQ(image.height, 480u) << file;
            int tolerance = -1;
            for (const Expectation &e : expectations)
                if (file.rfind(e.prefix, 0) == 0)
                    tolerance = e.tolerance;
            ASSERT_GE(tolerance, 0) << "unexpected file " << file;
            expect_bars(image, tolerance, file);
        }
    }
}

// The command the demo ends with runs as printed from where the demo was
// started and writes into the demo's folder.
TEST_F(Demo, ClosingHintRunsAndWritesIntoTheDemoFolder) {
    ASSERT_EQ(run_->status, 0) << run_->err;
    std::string out = run_->out;
    std::string hint = out.substr(out.rfind('\n', out.size() - 2) + 1);
    ASSERT_EQ(hint.rfind(std::string("  ") + ORVANE_TOOL + " convert out/", 0), 0)
        << hint;
    std::string command = "cd " + quoted(directory_.string()) + " &&" + hint;
    ASSERT_EQ(std::system((command + " >/dev/null").c_str()), 0) << command;
    expect_bars(read_png(directory_ / "out" / "bay8-ave-a-from-raw.png"), 0, hint);
    fs::remove(directory_ / "out" / "bay8-ave-a-from-raw.png");
}

// The raw dump converts back to the chart, by every method, and as a PGM
// re-read as a mosaic; a raw or PGM copy of the mosaic keeps every byte.
TEST_F(Demo, RawBayerDumpConvertsBack) {
    ASSERT_EQ(run_->status, 0) << run_->err;
    fs::path dir = work_directory("bayer-round-trip");
    std::string mosaic = slurp(directory_ / "out" / "bay8-a.raw");
    fs::copy_file(directory_ / "out" / "bay8-a.raw", dir / "bay8-a.raw");
    spill(dir / "mosaic.pgm", "P5\n640 480\n255\n" + mosaic);
    const std::vector<std::string> geometry = {"--format", "bay8", "--width", "640",
                                               "--height", "480", "--phase", "a"};
    for (const char *method : {"dup", "ave", "med"}) {
        std::vector<std::string> args = {"convert", "bay8-a.raw", "-o", "chart.png",
                                         "--method", method};
        args.insert(args.end(), geometry.begin(), geometry.end());
        Outcome run = orvane(dir, args);
        ASSERT_EQ(run.status, 0) << run.err;
        expect_bars(read_png(dir / "chart.png"), 0, method);
    }
    Outcome from_pgm = orvane(dir, {"convert", "mosaic.pgm", "--format", "bay8", "-o",
                                "from-pgm.png"});
    ASSERT_EQ(from_pgm.status, 0) << from_pgm.err;
    expect_bars(read_png(dir / "from-pgm.png"), 0, "PGM as bay8");

    std::vector<std::string> copy = {"convert", "bay8-a.raw", "--to", "bay8", "-o",
                                     "copy.raw"};
    copy.insert(copy.end(), geometry.begin(), geometry.end());
    Outcome run = orvane(dir, copy);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(slurp(dir / "copy.raw"), mosaic);
    run = orvane(dir, {"convert", "mosaic.pgm", "--format", "BAY8", "-o", "copy.pgm"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(slurp(dir / "copy.pgm"), slurp(dir / "mosaic.pgm"));
}

// ---- conversions of the tool's own files ------------------------------------

std::string random_bytes(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    for (char &b : bytes)
        b = static_cast<char>(random());
    return bytes;
}

std::string pnm(char kind, uint32_t width, uint32_t height, uint32_t maxval,
                uint32_t seed) {
    uint32_t channels = kind == '6' ? 3 : 1, bytes = maxval > 255 ? 2 : 1;
    std::string data =
        random_bytes(size_t{width} * height * channels * bytes, seed);
    // Keep 16-bit samples within maxval: mask the high byte of each.
    for (size_t i = 0; bytes == 2 && i < data.size(); i += 2) {
        uint32_t high_bits = 0;
        while ((maxval >> (8 + high_bits)) != 0)
            ++high_bits;
        data[i] = static_cast<char>(data[i] & ((1 << high_bits) - 1));
    }
    return "P" + std::string(1, kind) + "\n" + std::to_string(width) + " " +
           std::to_string(height) + "\n" + std::to_string(maxval) + "\n" + data;
}

// PGM/PPM files come back unchanged, and PNG and TIFF files (libtiff's
// and, for 8-bit grey, the library's own) hold the same samples in R, G,
// B order, 12 bits widened to 16.
TEST(Convert, WritesPgmAndPpmBackUnchangedAndPngAndTiffWithTheSameSamples) {
    struct Case {
        const char *name;
        char kind;
        uint32_t maxval;
    };
    const Case cases[] = {{"grey8.pgm", '5', 255},   {"grey12.pgm", '5', 4095},
                          {"grey16.pgm", '5', 65535}, {"colour8.ppm", '6', 255},
                          {"colour16.ppm", '6', 65535}};
    fs::path dir = work_directory("pnm-round-trip");
    for (const Case &c : cases) {
        std::string original = pnm(c.kind, 37, 23, c.maxval, c.maxval + c.kind);
        spill(dir / c.name, original);
        std::string copy = std::string("copy-") + c.name;
        Outcome run = orvane(dir, {"convert", c.name, "-o", copy});
        ASSERT_EQ(run.status, 0) << c.name << ": " << run.err;
        EXPECT_EQ(slurp(dir / copy), original) << c.name;

        std::vector<std::vector<std::string>> pictures = {{"out.png"}, {"out.tif"}};
        if (c.maxval == 255 && c.kind == '5')
            pictures.push_back({"out.tiff", "--library-tiff"});
        for (const auto &picture : pictures) {
            std::vector<std::string> args = {"convert", c.name, "-o"};
            args.insert(args.end(), picture.begin(), picture.end());
            run = orvane(dir, args);
            ASSERT_EQ(run.status, 0) << c.name << ": " << run.err;
            std::string what = std::string(c.name) + " as " + picture.back();
            Decoded image = picture[0] == "out.png" ? read_png(dir / picture[0])
                                                     : read_tiff(dir / picture[0]);
            ASSERT_EQ(image.width, 37u) << what;
            ASSERT_EQ(image.channels, c.kind == '6' ? 3 : 1) << what;
            size_t header =
                original.size() - image.samples.size() * (c.maxval > 255 ? 2 : 1);
            int shift = c.maxval == 4095 ? 4 : 0;
            for (size_t i = 0; i < image.samples.size(); ++i) {
                uint32_t sample = c.maxval > 255
                                      ? big_endian(original, header + 2 * i, 2)
                                      : static_cast<uint8_t>(original[header + i]);
                ASSERT_EQ(image.samples[i] >> shift, sample) << what << ", sample " << i;
            }
        }
    }
}

// Samples count up to the file's maxval: they are scaled to the full range
// of the depth that holds maxval (rounded as netpbm does), and a PGM
// written back records that depth's maxval.
TEST(Convert, ScalesPgmSamplesByMaxval) {
    struct Case {
        uint32_t maxval;
        std::vector<uint32_t> samples, scaled;
        uint32_t written_maxval;
    };
    const Case cases[] = {
        {1, {0, 1}, {0, 255}, 255},
        {100, {0, 50, 100}, {0, 128, 255}, 255},
        {300, {0, 150, 300}, {0, 512, 1023}, 1023},
        {4095, {0, 7, 4095}, {0, 7, 4095}, 4095},
    };
    fs::path dir = work_directory("maxval");
    for (const Case &c : cases) {
        auto file = [&](uint32_t maxval, const std::vector<uint32_t> &samples) {
            std::string text = "P5\n" + std::to_string(samples.size()) + " 1\n" +
                               std::to_string(maxval) + "\n";
            for (uint32_t v : samples) {
                if (maxval > 255)
                    text += static_cast<char>(v >> 8);
                text += static_cast<char>(v);
            }
            return text;
        };
        spill(dir / "in.pgm", file(c.maxval, c.samples));
        Outcome run = orvane(dir, {"convert", "in.pgm", "-o", "out.pgm"});
        ASSERT_EQ(run.status, 0) << c.maxval << ": " << run.err;
        EXPECT_EQ(slurp(dir / "out.pgm"), file(c.written_maxval, c.scaled))
            << "maxval " << c.maxval;
    }
}

TEST(Convert, RawDumpsRoundTripThroughPgm) {
    fs::path dir = work_directory("raw-round-trip");
    std::string original = pnm('5', 40, 30, 65535, 7);
    spill(dir / "in.pgm", original);
    Outcome run = orvane(dir, {"convert", "in.pgm", "-o", "dump.raw"});
    ASSERT_EQ(run.status, 0) << run.err;
    ASSERT_EQ(fs::file_size(dir / "dump.raw"), 40u * 30u * 2u);

    // A dump with padding: 6 extra bytes a line that the reader skips.
    std::string dump = slurp(dir / "dump.raw"), padded;
    for (size_t y = 0; y < 30; ++y)
        padded += dump.substr(y * 80, 80) + std::string(6, '\xEE');
    spill(dir / "padded.raw", padded);
    run = orvane(dir, {"convert", "padded.raw", "--format", "y16", "--width", "40",
                       "--height", "30", "--stride", "86", "-o", "back.pgm"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(slurp(dir / "back.pgm"), original);
}

// A mosaic of two flat halves keeps each half's colour out to the image's
// edge columns, whatever the width: where the library's demosaic reads
// past a line or leaves a border unscaled, the tool widens the mosaic and
// crops the result.
TEST(Convert, MosaicEdgesKeepTheirColourAtEveryWidth) {
    struct Case {
        const char *format, *method, *phase, *to;
        uint32_t width;
    };
    const Case cases[] = {
        {"bay8", "ave", "a", "bgr24", 33},   // reads the sample after the line
        {"bay8", "med", "d", "bgr24", 33},
        {"bay12", "med", "c", "rgb16", 33},  // reads the line below one too far
        {"bay12", "med", "c", "rgb16", 34},  // line 0's last green from past it
        {"bay12", "ave", "b", "rgb16", 34},  // last column's red unscaled
        {"bay12", "med", "b", "bgr24", 34},  // column 0's blue unscaled
    };
    const Rgb halves[2] = {{200, 120, 40}, {30, 90, 220}};
    const char *phase_names = "abcd";
    const int cells[4][2][2] = {{{0, 1}, {1, 2}}, {{1, 0}, {2, 1}},
                                {{1, 2}, {0, 1}}, {{2, 1}, {1, 0}}}; // R G B
    constexpr uint32_t kHeight = 6;
    fs::path dir = work_directory("mosaic-edges");
    for (const Case &c : cases) {
        bool deep = std::string(c.format) != "bay8";
        int phase = static_cast<int>(std::strchr(phase_names, c.phase[0]) - phase_names);
        std::string mosaic;
        for (uint32_t y = 0; y < kHeight; ++y)
            for (uint32_t x = 0; x < c.width; ++x) {
                const Rgb &colour = halves[x >= c.width / 2];
                int channel = cells[phase][y % 2][x % 2];
                int v = channel == 0 ? colour.r : channel == 1 ? colour.g : colour.b;
                if (deep) {
                    int wide = v << 4 | v >> 4;
                    mosaic += static_cast<char>(wide);
                    mosaic += static_cast<char>(wide >> 8);
                } else {
                    mosaic += static_cast<char>(v);
                }
            }
        spill(dir / "mosaic.raw", mosaic);
        Outcome run = orvane(dir, {"convert", "mosaic.raw", "--format", c.format,
                                   "--width", std::to_string(c.width), "--height",
                                   std::to_string(kHeight), "--method", c.method,
                                   "--phase", c.phase, "--to", c.to, "-o", "out.raw"});
        ASSERT_EQ(run.status, 0) << run.err;
        std::string out = slurp(dir / "out.raw");
        bool packed = std::string(c.to) == "rgb16";
        size_t pixel = packed ? 2 : 3;
        ASSERT_EQ(out.size(), size_t{c.width} * kHeight * pixel);
        // RGB16 keeps the top 5, 6 and 5 bits of R, G and B.
        const int drop[3] = {packed ? 3 : 0, packed ? 2 : 0, packed ? 3 : 0};
        for (uint32_t y = 0; y < kHeight; ++y)
            for (uint32_t x : {0u, 1u, c.width - 2, c.width - 1}) {
                const Rgb &colour = halves[x >= c.width / 2];
                const uint8_t *p =
                    reinterpret_cast<const uint8_t *>(out.data()) +
                    (size_t{y} * c.width + x) * pixel;
                int word = p[0] | p[1] << 8;
                int got[3] = {word >> 11, word >> 5 & 0x3F, word & 0x1F};
                if (!packed)
                    got[0] = p[2], got[1] = p[1], got[2] = p[0];
                int want[3] = {colour.r >> drop[0], colour.g >> drop[1],
                               colour.b >> drop[2]};
                EXPECT_TRUE(std::equal(got, got + 3, want))
                    << c.format << " " << c.method << " " << c.phase << " " << c.to
                    << " width " << c.width << " at (" << x << ", " << y << "): "
                    << got[0] << " " << got[1] << " " << got[2];
            }
    }
}

TEST(Deinterlace, ParityPlacesTheFieldOnEvenOrOddFrameLines) {
    fs::path dir = work_directory("deinterlace");
    std::string field = "P5\n4 3\n255\n";
    for (char line : {'\x10', '\x20', '\x30'})
        field += std::string(4, line);
    spill(dir / "field.pgm", field);
    struct Case {
        const char *parity, *method;
        const char *lines; // the value of each frame line, top down
    };
    const Case cases[] = {{"EVEN", "LineDup", "\x10\x10\x20\x20\x30\x30"},
                          {"odd", "linedup", "\x10\x10\x10\x20\x20\x30"}};
    for (const Case &c : cases) {
        Outcome run = orvane(dir, {"deinterlace", "field.pgm", "-o", "frame.pgm",
                               "--method", c.method, "--parity", c.parity});
        ASSERT_EQ(run.status, 0) << run.err;
        std::string expected = "P5\n4 6\n255\n";
        for (size_t y = 0; y < 6; ++y)
            expected += std::string(4, c.lines[y]);
        EXPECT_EQ(slurp(dir / "frame.pgm"), expected) << c.parity;
    }
}

// The 32-bit Median method keeps every field line where it belongs and
// fills every line between with values from the lines around it.
TEST(Deinterlace, MedianOf32BitFieldsKeepsTheFrameInPlace) {
    constexpr uint32_t kWidth = 8, kHeight = 5, kStride = 4 * kWidth;
    fs::path dir = work_directory("median32");
    std::string field = random_bytes(kStride * kHeight, 11);
    spill(dir / "field.raw", field);
    for (const char *parity : {"even", "odd"}) {
        Outcome run = orvane(dir, {"deinterlace", "field.raw", "--format", "bgrx32",
                                   "--width", std::to_string(kWidth), "--height",
                                   std::to_string(kHeight), "--method", "median",
                                   "--parity", parity, "-o", "frame.raw"});
        ASSERT_EQ(run.status, 0) << run.err;
        std::string frame = slurp(dir / "frame.raw");
        ASSERT_EQ(frame.size(), 2 * field.size());
        uint32_t first = parity[0] == 'e' ? 0 : 1; // frame line of field line 0
        auto byte = [](const std::string &bytes, uint32_t line, uint32_t at) {
            return static_cast<uint8_t>(bytes[size_t{line} * kStride + at]);
        };
        for (uint32_t y = 0; y < kHeight; ++y) {
            EXPECT_EQ(frame.substr((first + 2 * y) * kStride, kStride),
                      field.substr(y * kStride, kStride))
                << parity << ", field line " << y;
            if (y + 1 == kHeight)
                continue;
            for (uint32_t at = 0; at < kStride; ++at) {
                uint8_t low = 255, high = 0;
                for (uint32_t line : {y, y + 1})
                    for (int step : {-4, 0, 4}) {
                        int x = static_cast<int>(at) + step;
                        if (x < 0 || x >= static_cast<int>(kStride))
                            continue;
                        low = std::min(low, byte(field, line, static_cast<uint32_t>(x)));
                        high = std::max(high, byte(field, line, static_cast<uint32_t>(x)));
                    }
                uint8_t filled = byte(frame, first + 2 * y + 1, at);
                EXPECT_TRUE(filled >= low && filled <= high)
                    << parity << ", filled line " << first + 2 * y + 1 << ", byte " << at;
            }
        }
    }
}

// ---- bad input ---------------------------------------------------------------

struct BadInput {
    const char *name;
    std::vector<std::string> args;
    const char *message;
    int status;
};

void PrintTo(const BadInput &c, std::ostream *out) { *out << c.name; }

class BadInputTest : public ::testing::TestWithParam<BadInput> {};

TEST_P(BadInputTest, FailsWithOneLineAndLeavesNoFile) {
    const BadInput &c = GetParam();
    fs::path dir = work_directory(std::string("bad-") + c.name);
    spill(dir / "short.raw", std::string(1000, '\0'));
    spill(dir / "grey.pgm", pnm('5', 8, 6, 255, 1));
    spill(dir / "grey16.pgm", pnm('5', 8, 6, 65535, 2));
    spill(dir / "colour.ppm", pnm('6', 8, 6, 255, 4));
    spill(dir / "colour2.ppm", pnm('6', 8, 6, 255, 5));
    spill(dir / "above.pgm", std::string("P5\n2 1\n300\n\0\0\x01\x2D", 15));
    spill(dir / "narrow.pgm", pnm('5', 2, 6, 255, 3));
    spill(dir / "short.pgm", "P5\n64 64\n255\n" + std::string(10, '\0'));
    spill(dir / "huge.pgm", "P5\n100000 100000\n255\n" + std::string(10, '\0'));
    spill(dir / "garbage.pgm", "P5\n12 x\n255\n");
    spill(dir / "mosaic.raw", std::string(16 * 8, '\x40'));
    fs::create_directory(dir / "folder.raw");
    std::set<std::string> before = entries(dir);

    Outcome run = orvane(dir, c.args);
    EXPECT_EQ(run.status, c.status) << run.err;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(entries(dir), before) << "a file was left behind";
}

const std::vector<std::string> kMosaic = {"--format", "bay8", "--width", "16",
                                          "--height", "8"};

std::vector<std::string> with(std::vector<std::string> args,
                              const std::vector<std::string> &more) {
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

INSTANTIATE_TEST_SUITE_P(
    Tool, BadInputTest,
    ::testing::Values(
        BadInput{"missing", {"convert", "nothing.pgm", "-o", "o.png"},
                 "nothing.pgm: cannot open: No such file or directory", 1},
        BadInput{"directory", {"convert", "folder.raw", "-o", "o.png"},
                 "folder.raw: is a directory, not an image file", 1},
        BadInput{"short-raw",
                 {"convert", "short.raw", "-o", "o.png", "--format", "bay8",
                  "--width", "640", "--height", "480"},
                 "short.raw: too short for 640 x 480 bay8 at stride 640: 307200 "
                 "bytes expected, 1000 found",
                 1},
        BadInput{"short-pgm", {"convert", "short.pgm", "-o", "o.png"},
                 "short.pgm: too short for 64 x 64 y8: 4096 bytes expected, 10 found",
                 1},
        BadInput{"huge-pgm", {"convert", "huge.pgm", "-o", "o.png"},
                 "huge.pgm: 100000 x 100000 pixels exceed the limit", 1},
        BadInput{"garbage-pgm", {"convert", "garbage.pgm", "-o", "o.png"},
                 "garbage.pgm: malformed PGM/PPM header", 1},
        BadInput{"format", {"convert", "short.raw", "-o", "o.png", "--format", "bay9"},
                 "unknown format 'bay9'", 2},
        BadInput{"bayer-method",
                 with({"convert", "mosaic.raw", "-o", "o.png", "--method", "fast"},
                      kMosaic),
                 "unknown Bayer method 'fast' (one of dup|ave|med)", 2},
        BadInput{"bayer-phase",
                 with({"convert", "mosaic.raw", "-o", "o.png", "--phase", "e"}, kMosaic),
                 "unknown Bayer phase 'e' (one of a|b|c|d)", 2},
        BadInput{"field-method",
                 {"deinterlace", "grey.pgm", "-o", "o.png", "--method", "blend",
                  "--parity", "even"},
                 "unknown de-interlace method 'blend'", 2},
        BadInput{"parity",
                 {"deinterlace", "grey.pgm", "-o", "o.png", "--parity", "top"},
                 "unknown parity 'top' (one of even|odd)", 2},
        BadInput{"pair", {"convert", "grey16.pgm", "-o", "o.raw", "--to", "y12"},
                 "grey16.pgm: the library does not convert y16 to y12 "
                 "(ORV_ERROR_NOT_SUPPORTED)",
                 2},
        BadInput{"bayer-not-offered",
                 with({"convert", "mosaic.raw", "-o", "o.raw", "--to", "bgr16",
                       "--method", "ave"},
                      kMosaic),
                 "mosaic.raw: bay8 to bgr16 is not offered with method ave, phase a "
                 "(ORV_ERROR_NOT_IMPLEMENTED)",
                 2},
        BadInput{"stride",
                 {"convert", "mosaic.raw", "-o", "o.png", "--format", "bay8",
                  "--width", "20", "--height", "4", "--stride", "10"},
                 "mosaic.raw: --stride 10 is smaller than a line of 20 bay8 pixels "
                 "(20 bytes)",
                 2},
        BadInput{"no-geometry", {"convert", "mosaic.raw", "-o", "o.png"},
                 "mosaic.raw: a raw dump needs --format, --width and --height", 2},
        BadInput{"odd-yuv",
                 {"convert", "mosaic.raw", "-o", "o.png", "--format", "yuv422",
                  "--width", "15", "--height", "2"},
                 "mosaic.raw: yuv422 packs pixels in pairs: --width must be even", 2},
        BadInput{"library-tiff-cannot-hold",
                 {"convert", "grey16.pgm", "-o", "o.tif", "--to", "y16", "--library-tiff"},
                 "o.tif: a TIFF (library writer) file cannot hold y16 pixels", 2},
        BadInput{"pgm-from-colour", {"convert", "colour.ppm", "-o", "o.pgm"},
                 "colour.ppm: the library converts bgr24 into nothing a PGM file holds",
                 2},
        BadInput{"batch-wide-once",
                 {"convert", "colour.ppm", "colour2.ppm", "--ext", "pgm", "-o", "out"},
                 "colour.ppm: the library converts bgr24 into nothing a PGM file holds",
                 2},
        BadInput{"above-maxval", {"convert", "above.pgm", "-o", "o.pgm"},
                 "above.pgm: sample 301 at (1, 0) exceeds the maxval 300", 1},
        BadInput{"ppm-as-mosaic", {"convert", "colour.ppm", "--format", "bay8", "-o", "o.png"},
                 "colour.ppm: --format bay8 does not fit a PPM", 2},
        BadInput{"geometry-of-pgm", {"convert", "grey.pgm", "--width", "8", "-o", "o.png"},
                 "grey.pgm: a PGM/PPM file brings its own geometry", 2},
        BadInput{"bayer-options-of-grey",
                 {"convert", "grey.pgm", "--phase", "b", "-o", "o.png"},
                 "--method and --phase describe a Bayer mosaic", 2},
        BadInput{"ext-of-one-file", {"convert", "grey.pgm", "--ext", "ppm", "-o", "o.png"},
                 "--ext names the file type in an output directory", 2},
        BadInput{"library-tiff-of-png",
                 {"convert", "grey.pgm", "--library-tiff", "-o", "o.png"},
                 "--library-tiff applies to .tif and .tiff outputs", 2},
        BadInput{"field-format",
                 {"deinterlace", "grey16.pgm", "--method", "bilinear", "--parity",
                  "even", "-o", "o.png"},
                 "grey16.pgm: the library does not de-interlace y16 fields by bilinear",
                 2},
        BadInput{"extension", {"convert", "grey.pgm", "-o", "o.jpg"},
                 "o.jpg: unknown output type", 2},
        BadInput{"png-cannot-hold", {"convert", "grey.pgm", "-o", "o.png", "--to", "rgb16"},
                 "o.png: a PNG file cannot hold rgb16 pixels", 2},
        BadInput{"unwritable", {"convert", "grey.pgm", "-o", "no/such/dir/o.png"},
                 "no/such/dir/o.png: cannot write: No such file or directory", 1},
        BadInput{"narrow-field",
                 {"deinterlace", "narrow.pgm", "-o", "o.png", "--parity", "odd"},
                 "narrow.pgm: a field must be at least 4 pixels wide", 1},
        BadInput{"same-stem", {"convert", "grey.pgm", "folder.raw/../grey.pgm", "-o", "."},
                 "would both be written to", 2}),
    [](const ::testing::TestParamInfo<BadInput> &param) {
        std::string name = param.param.name;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

// Runs that go on, saying in one line what the user must know, or
// choosing for them.
TEST(Convert, GoesOnWithOneLineOfWarning) {
    struct Case {
        std::vector<std::string> args;
        const char *warning; // on stderr; nullptr: nothing
        const char *report;  // on stdout
    };
    const Case cases[] = {
        {{"convert", "long.raw", "--format", "bay8", "--width", "63", "--height",
          "48", "-o", "o.png"},
         "long.raw: the file holds 3072 bytes, 63 x 48 bay8 at stride 63 reads "
         "the first 3024",
         "converted 1 of 1 file"},
        {{"deinterlace", "grey16.pgm", "--parity", "odd", "-o", "o.pgm"}, nullptr,
         "by linedup"},
        {{"deinterlace", "grey16.pgm", "--method", "lineave", "--parity", "odd", "-o",
          "o.pgm"},
         "note: lineave averages bytes, not y16 samples", "by lineave"},
        {{"convert", "long.raw", "--format", "rgb30", "--width", "32", "--height",
          "24", "--to", "rgb48", "-o", "o.png"},
         "note: the library converts rgb30 into rgb48 with G and B from the next "
         "pixel",
         "converted 1 of 1 file"},
    };
    fs::path dir = work_directory("warnings");
    spill(dir / "long.raw", random_bytes(64 * 48, 5));
    spill(dir / "grey16.pgm", pnm('5', 8, 6, 65535, 2));
    for (const Case &c : cases) {
        Outcome run = orvane(dir, c.args);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), c.warning ? 1 : 0)
            << run.err;
        if (c.warning) {
            EXPECT_NE(run.err.find(c.warning), std::string::npos) << run.err;
        }
        EXPECT_NE(run.out.find(c.report), std::string::npos) << run.out;
    }
}

// A FIFO at the output is written through (--ext tells the file type of
// one without an extension) and a symbolic link followed to the file it
// names, which a dangling link creates; neither is replaced.
TEST(Convert, WritesThroughFifosAndSymbolicLinks) {
    fs::path dir = work_directory("targets");
    std::string grey = pnm('5', 8, 6, 255, 1);
    spill(dir / "grey.pgm", grey);
    fs::create_directory(dir / "real");
    spill(dir / "real" / "old.pgm", "old");
    fs::create_symlink("real/old.pgm", dir / "link.pgm");
    fs::create_symlink("real/new.pgm", dir / "dangling.pgm");
    ASSERT_EQ(mkfifo((dir / "fifo.pgm").c_str(), 0666), 0);
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0666), 0);
    struct Case {
        std::vector<std::string> output;
        const char *holder; // the file that gets the bytes; nullptr: a FIFO
    };
    const Case cases[] = {{{"link.pgm"}, "real/old.pgm"},
                          {{"dangling.pgm"}, "real/new.pgm"},
                          {{"fifo.pgm"}, nullptr},
                          {{"pipe", "--ext", "PGM"}, nullptr}};
    for (const Case &c : cases) {
        fs::path out = dir / c.output[0];
        std::future<std::string> piped;
        if (!c.holder)
            piped = std::async(std::launch::async, [&] { return slurp(out); });
        std::vector<std::string> args = {"convert", "grey.pgm", "-o"};
        args.insert(args.end(), c.output.begin(), c.output.end());
        Outcome run = orvane(dir, args);
        if (!c.holder) {
            // Lets the reader go, should the tool never have opened the FIFO.
            int unblock = open(out.c_str(), O_WRONLY | O_NONBLOCK);
            if (unblock >= 0)
                close(unblock);
        }
        ASSERT_EQ(run.status, 0) << c.output[0] << ": " << run.err;
        EXPECT_EQ(c.holder ? slurp(dir / c.holder) : piped.get(), grey) << c.output[0];
        EXPECT_TRUE(c.holder ? fs::is_symlink(out) : fs::is_fifo(out)) << c.output[0];
    }
}

// A write that fails says why, in the same words for every file type, and
// leaves nothing behind.
TEST(Convert, WriteErrorsNameTheirCause) {
    fs::path dir = work_directory("write-errors");
    spill(dir / "big.ppm", pnm('6', 64, 64, 65535, 3));
    const std::vector<std::vector<std::string>> outputs = {
        {"o.png"}, {"o.tif"}, {"o.tiff", "--library-tiff"}, {"o.ppm"}, {"o.raw"}};
    for (const auto &output : outputs) {
        std::vector<std::string> args = {"convert", "big.ppm", "-o"};
        args.insert(args.end(), output.begin(), output.end());
        // A file size limit of a few kilobytes, its signal ignored: writes
        // fail with EFBIG.
        Outcome run = orvane(dir, args, "trap '' XFSZ; ulimit -f 4;");
        EXPECT_EQ(run.status, 1) << output[0];
        EXPECT_EQ(run.err, "orvane: " + output[0] + ": cannot write: File too large\n");
        EXPECT_EQ(entries(dir), std::set<std::string>{"big.ppm"});
    }
}

// ---- several files at once ---------------------------------------------------

TEST(Convert, ParallelRunWritesTheSameBytesAsOneAtATime) {
    fs::path dir = work_directory("parallel");
    // Two batches: raw Bayer dumps of one geometry, and PGM/PPM files of
    // assorted sizes and depths.
    std::vector<std::string> dumps = {"--format", "bay8", "--width", "64",
                                      "--height", "48"};
    std::vector<std::string> pnms;
    for (uint32_t i = 0; i < 12; ++i) {
        std::string dump = "dump" + std::to_string(i) + ".raw";
        spill(dir / dump, random_bytes(64 * 48, i));
        dumps.push_back(dump);
        std::string name = "image" + std::to_string(i) + (i % 2 ? ".pgm" : ".ppm");
        spill(dir / name, pnm(i % 2 ? '5' : '6', 30 + i, 20 + i,
                              i % 4 < 2 ? 255 : 65535, i));
        pnms.push_back(name);
    }
    for (const auto &batch : {dumps, pnms})
        for (const char *extension : {"png", "raw", "ppm"}) {
            for (const char *jobs : {"1", "4"}) {
                std::vector<std::string> args = {"convert", "--ext", extension, "-j",
                                                 jobs, "-o", std::string("out-") + jobs};
                args.insert(args.end(), batch.begin(), batch.end());
                Outcome run = orvane(dir, args);
                ASSERT_EQ(run.status, 0) << extension << ": " << run.err;
                EXPECT_NE(run.out.find("converted 12 of 12 files"), std::string::npos)
                    << run.out;
            }
            EXPECT_EQ(entries(dir / "out-1").size(), 12u);
            EXPECT_EQ(entries(dir / "out-1"), entries(dir / "out-4"));
            for (const auto &entry : fs::directory_iterator(dir / "out-1")) {
                std::string name = entry.path().filename().string();
                EXPECT_EQ(slurp(entry.path()), slurp(dir / "out-4" / name))
                    << extension << ": " << name;
            }
            fs::remove_all(dir / "out-1");
            fs::remove_all(dir / "out-4");
        }
}

// An interrupted conversion removes its pending file: neither a partial
// output nor a temporary file is left.
TEST(Convert, InterruptLeavesNoFileBehind) {
    fs::path dir = work_directory("interrupt");
    // Noise that takes libpng a while to compress.
    spill(dir / "big.pgm", pnm('5', 3000, 3000, 65535, 9));
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        int null = open("/dev/null", O_WRONLY);
        if (chdir(dir.c_str()) != 0 || null < 0)
            _exit(127);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execl(ORVANE_TOOL, ORVANE_TOOL, "convert", "big.pgm", "-o", "big.png",
              static_cast<char *>(nullptr));
        _exit(127);
    }
    auto pending = [&] {
        for (const std::string &name : entries(dir))
            if (name.find(".orvane-") != std::string::npos)
                return true;
        return false;
    };
    bool seen = false;
    for (int wait = 0; wait < 40000 && !seen; ++wait) {
        seen = pending();
        if (!seen)
            usleep(250);
    }
    kill(child, SIGINT);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(seen) << "no pending file appeared while converting";
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
    EXPECT_EQ(entries(dir), std::set<std::string>{"big.pgm"});
}

// ---- what the tool reports about the library and itself ----------------------

TEST(Formats, ListsThePairsTheLibraryConverts) {
    fs::path dir = work_directory("formats");
    Outcome run = orvane(dir, {"formats"});
    ASSERT_EQ(run.status, 0) << run.err;
    auto line_of = [&](const std::string &source) {
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);)
            if (line.rfind("  " + source + " ", 0) == 0 &&
                line.find("->") != std::string::npos)
                return line + " ";
        return std::string();
    };
    struct Case {
        const char *source;
        std::vector<const char *> listed, absent;
    };
    const Case cases[] = {
        {"y8", {" y16 ", " bgr36 ", " 1d "}, {" y12p ", " 04 "}},
        {"y16", {" y8 ", " rgb24 "}, {" y10 ", " 1d "}},
        {"bgrx32", {" bgr24 "}, {" rgb24 ", " y8 "}},
        {"yuv422", {" bgr24 ", " rgbx32 "}, {" rgb16 ", " y8 "}},
        {"bay8", {" bgr16 (dup, phase a only)", " rgbx32 (dup)", " bgr24 (dup ave med)"},
         {" y8 "}},
        {"bay12", {" rgb16 (dup ave med)"}, {" bgr16 "}},
        {"04", {"(none"}, {}},
    };
    for (const Case &c : cases) {
        std::string line = line_of(c.source);
        ASSERT_FALSE(line.empty()) << c.source << " missing in\n" << run.out;
        for (const char *word : c.listed)
            EXPECT_NE(line.find(word), std::string::npos) << line << " lacks " << word;
        for (const char *word : c.absent)
            EXPECT_EQ(line.find(word), std::string::npos) << line << " has " << word;
    }
}

TEST(CommandLine, VersionHelpAndCommands) {
    fs::path dir = work_directory("command-line");
    struct Case {
        std::vector<std::string> args;
        int status;
        const char *says;
    };
    const Case cases[] = {
        {{"--version"}, 0, "orvane " ORVANE_VERSION ", OrvaneImage library"},
        {{"--help"}, 0, "deinterlace"},
        {{"convert", "--help"}, 0, "full-range BT.601"},
        {{"deinterlace", "--help"}, 0, "bilinear, median: y8 xbgr32"},
        {{}, 2, "no command (one of demo, convert, deinterlace, formats"},
        {{"frobnicate"}, 2, "unknown command 'frobnicate' (one of demo"},
    };
    for (const Case &c : cases) {
        Outcome run = orvane(dir, c.args);
        EXPECT_EQ(run.status, c.status);
        EXPECT_NE((run.out + run.err).find(c.says), std::string::npos)
            << run.out << run.err;
    }
}

} // namespace
