// End-to-end tests of the orvane tool: run the built binary, decode what it
// writes and compare with the chart, the inputs or a one-at-a-time run.
#include <gtest/gtest.h>
#include <png.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

// Runs the tool in `directory` with `args`.
Outcome orvane(const fs::path &directory, const std::vector<std::string> &args) {
    std::string command = "cd " + quoted(directory.string()) + " && " +
                          quoted(ORVANE_TOOL);
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

// The bar luma of an 8-bit grey TIFF, found through its directory.
void expect_grey_tiff_bars(const fs::path &path) {
    std::string tiff = slurp(path);
    ASSERT_GE(tiff.size(), 10u);
    ASSERT_EQ(tiff.substr(0, 4), std::string("MM\0*", 4));
    uint32_t directory = big_endian(tiff, 4, 4);
    uint32_t count = big_endian(tiff, directory, 2);
    uint32_t width = 0, height = 0, offset = 0;
    for (uint32_t i = 0; i < count; ++i) {
        size_t entry = directory + 2 + 12 * i;
        uint32_t tag = big_endian(tiff, entry, 2);
        uint32_t type = big_endian(tiff, entry + 2, 2);
        uint32_t value = big_endian(tiff, entry + 8, type == 3 ? 2 : 4);
        if (tag == 256) width = value;
        if (tag == 257) height = value;
        if (tag == 273) offset = value;
    }
    ASSERT_EQ(tiff.size(), size_t{offset} + size_t{width} * height);
    for (uint32_t bar = 0; bar < 8; ++bar) {
        uint32_t x = (2 * bar + 1) * width / 16, y = height / 4;
        EXPECT_EQ(static_cast<uint8_t>(tiff[offset + size_t{y} * width + x]),
                  luma(kBars[bar]))
            << "bar " << bar;
    }
}

// ---- demo ------------------------------------------------------------------

class Demo : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        directory_ = work_directory("demo");
        run_ = new Outcome(orvane(directory_, {"demo", "out"}));
    }
    static void TearDownTestSuite() { delete run_; }

    // The output files the demo's table names: the next-to-last word of
    // each line between the table's heading and the blank line after it.
    static std::vector<std::string> listed_files() {
        std::vector<std::string> files;
        std::istringstream lines(run_->out);
        bool in_table = false;
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("operation", 0) == 0) {
                in_table = true;
                continue;
            }
            if (!in_table)
                continue;
            if (line.empty())
                break;
            std::istringstream words(line);
            std::vector<std::string> row{std::istream_iterator<std::string>(words), {}};
            if (row.size() >= 2)
                files.push_back(row[row.size() - 2]);
        }
        return files;
    }

    static fs::path directory_;
    static Outcome *run_;
};

fs::path Demo::directory_;
Outcome *Demo::run_ = nullptr;

TEST_F(Demo, WritesEveryFileItListsAndEveryImageShowsTheChart) {
    ASSERT_EQ(run_->status, 0) << run_->err;
    std::vector<std::string> files = listed_files();
    // 24 demosaics, the chart, YUV, 4 de-interlacers, grey PNG, TIFF, raw.
    EXPECT_EQ(files.size(), 33u) << run_->out;
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
            expect_grey_tiff_bars(path);
        } else if (file == "bay8-a.raw") {
            EXPECT_EQ(fs::file_size(path), 640u * 480u);
        } else if (file == "chart-y8.png") {
            Decoded grey = read_png(path);
            ASSERT_EQ(grey.channels, 1);
            for (uint32_t bar = 0; bar < 8; ++bar)
                EXPECT_EQ(grey.at((2 * bar + 1) * grey.width / 16, grey.height / 4, 0),
                          static_cast<uint32_t>(luma(kBars[bar])));
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

// The raw dump converts back to the chart, by every method, and as a PGM
// re-read as a mosaic; a raw copy of the mosaic keeps every byte.
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

TEST(Convert, WritesPgmAndPpmBackUnchangedAndPngWithTheSameSamples) {
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

        run = orvane(dir, {"convert", c.name, "-o", "out.png"});
        ASSERT_EQ(run.status, 0) << c.name << ": " << run.err;
        Decoded png = read_png(dir / "out.png");
        ASSERT_EQ(png.channels, c.kind == '6' ? 3 : 1) << c.name;
        size_t header = original.size() - png.samples.size() * (c.maxval > 255 ? 2 : 1);
        int shift = c.maxval == 4095 ? 4 : 0; // 12 bits widen to 16 in PNG
        for (size_t i = 0; i < png.samples.size(); ++i) {
            uint32_t sample = c.maxval > 255 ? big_endian(original, header + 2 * i, 2)
                                             : static_cast<uint8_t>(original[header + i]);
            ASSERT_EQ(png.samples[i] >> shift, sample) << c.name << ", sample " << i;
        }
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

TEST(Deinterlace, ParityPlacesTheFieldOnEvenOrOddFrameLines) {
    fs::path dir = work_directory("deinterlace");
    std::string field = "P5\n4 3\n255\n";
    for (char line : {'\x10', '\x20', '\x30'})
        field += std::string(4, line);
    spill(dir / "field.pgm", field);
    struct Case {
        const char *parity;
        const char *lines; // the value of each frame line, top down
    };
    const Case cases[] = {{"even", "\x10\x10\x20\x20\x30\x30"},
                          {"odd", "\x10\x10\x10\x20\x20\x30"}};
    for (const Case &c : cases) {
        Outcome run = orvane(dir, {"deinterlace", "field.pgm", "-o", "frame.pgm",
                               "--method", "linedup", "--parity", c.parity});
        ASSERT_EQ(run.status, 0) << run.err;
        std::string expected = "P5\n4 6\n255\n";
        for (size_t y = 0; y < 6; ++y)
            expected += std::string(4, c.lines[y]);
        EXPECT_EQ(slurp(dir / "frame.pgm"), expected) << c.parity;
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
        BadInput{"directory", with({"convert", "folder.raw", "-o", "o.png"}, kMosaic),
                 "folder.raw: not a regular file", 1},
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
                 1},
        BadInput{"bayer-not-offered",
                 with({"convert", "mosaic.raw", "-o", "o.raw", "--to", "bgr16",
                       "--method", "ave"},
                      kMosaic),
                 "mosaic.raw: bay8 to bgr16 is not offered with method ave, phase a "
                 "(ORV_ERROR_NOT_IMPLEMENTED)",
                 1},
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
        BadInput{"tiff-cannot-hold", {"convert", "grey16.pgm", "-o", "o.tif", "--to", "y16"},
                 "o.tif: a TIFF file cannot hold y16 pixels", 2},
        BadInput{"pgm-from-colour", {"convert", "colour.ppm", "-o", "o.pgm"},
                 "o.pgm: the library converts bgr24 into nothing a PGM file holds", 1},
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

TEST(CommandLine, VersionHelpAndMissingCommand) {
    fs::path dir = work_directory("command-line");
    struct Case {
        std::vector<std::string> args;
        int status;
        const char *says;
    };
    const Case cases[] = {
        {{"--version"}, 0, ORVANE_VERSION},
        {{"--version"}, 0, "kernels: "},
        {{"--help"}, 0, "deinterlace"},
        {{"convert", "--help"}, 0, "historic layout"},
        {{"deinterlace", "--help"}, 0, "linedup|lineave|bilinear|median"},
        {{}, 2, "A subcommand is required"},
    };
    for (const Case &c : cases) {
        Outcome run = orvane(dir, c.args);
        EXPECT_EQ(run.status, c.status);
        EXPECT_NE((run.out + run.err).find(c.says), std::string::npos)
            << run.out << run.err;
    }
}

} // namespace
