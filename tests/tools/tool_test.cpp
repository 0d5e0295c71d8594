// End-to-end tests of the orvane tool: run the built binary, decode what it
// writes (with libpng and libtiff) and compare with the chart, the inputs
// or the bytes the file must hold.
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <random>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const fs::path kWork = ORVANE_TEST_WORK;
constexpr auto npos = std::string::npos;

std::string slurp(const fs::path &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void spill(const fs::path &path, const std::string &bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::vector<std::string> words(const std::string &text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

// No path or argument of these tests holds a quote.
std::string shell_word(const std::string &word) { return "'" + word + "'"; }

fs::path fresh(const std::string &name) {
    fs::remove_all(kWork / name);
    fs::create_directories(kWork / name);
    return kWork / name;
}

std::set<std::string> entries(const fs::path &directory) {
    std::set<std::string> names;
    for (const auto &entry : fs::directory_iterator(directory))
        names.insert(entry.path().filename().string());
    return names;
}

struct Outcome { int status; std::string out, err; };

// Runs the tool in `dir` with the words of `args`, after the shell commands
// of `setting`; a run ended by a signal has status 128 + the signal.
Outcome orvane(const fs::path &dir, const std::string &args, const std::string &setting = "") {
    std::string command = "cd " + shell_word(dir) + " || exit; " + setting + " exec " ORVANE_TOOL;
    for (const std::string &arg : words(args))
        command += " " + shell_word(arg);
    std::string out = dir.string() + ".stdout", err = dir.string() + ".stderr";
    int raw = std::system((command + " >" + shell_word(out) + " 2>" + shell_word(err)).c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw), slurp(out), slurp(err)};
}

// Runs the tool, which must succeed, and returns the path after -o.
fs::path written(const fs::path &dir, const std::string &args) {
    Outcome run = orvane(dir, args);
    EXPECT_EQ(run.status, 0) << args << ": " << run.err;
    return dir / words(args.substr(args.find(" -o ") + 4))[0];
}

// A picture: width, height, channels and bits a sample, then the samples
// line after line (grey, or R, G, B). All 0 for a file that did not decode.
using Picture = std::vector<uint32_t>;

// Seeded samples from 0 to maxval.
Picture noise(uint32_t width, uint32_t height, uint32_t channels, uint32_t maxval,
              uint32_t seed) {
    std::mt19937 random(seed);
    Picture p = {width, height, channels, maxval > 255 ? 16u : 8u};
    while (p.size() < 4 + size_t{width} * height * channels)
        p.push_back(static_cast<uint32_t>(random() % (maxval + 1)));
    return p;
}

// The samples of `p`, `size` bytes each, big- or little-endian.
std::string bytes(const Picture &p, int size, bool big_endian) {
    std::string text;
    for (size_t at = 4; at < p.size(); ++at)
        for (int i = 0; i < size; ++i)
            text += char(p[at] >> 8 * (big_endian ? size - 1 - i : i));
    return text;
}

std::string pnm(const Picture &p, uint32_t maxval) {
    return (p[2] == 3 ? "P6\n" : "P5\n") + std::to_string(p[0]) + " " + std::to_string(p[1]) +
           "\n" + std::to_string(maxval) + "\n" + bytes(p, maxval > 255 ? 2 : 1, true);
}

Picture read_png(const fs::path &path) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, path.c_str()))
        return {0, 0, 0, 0};
    png.format &= PNG_FORMAT_FLAG_COLOR | PNG_FORMAT_FLAG_LINEAR; // as stored: grey or RGB, 8 or 16
    const bool deep = png.format & PNG_FORMAT_FLAG_LINEAR;
    Picture p = {png.width, png.height, PNG_IMAGE_SAMPLE_CHANNELS(png.format), deep ? 16u : 8u};
    std::vector<uint16_t> samples(PNG_IMAGE_SIZE(png));
    png_image_finish_read(&png, nullptr, samples.data(), 0, nullptr);
    for (size_t i = 0; i < size_t{p[0]} * p[1] * p[2]; ++i)
        p.push_back(deep ? samples[i] : reinterpret_cast<uint8_t *>(samples.data())[i]);
    return p;
}

Picture read_tiff(const fs::path &path) {
    TIFF *tiff = TIFFOpen(path.c_str(), "r");
    uint32_t width = 0, height = 0;
    uint16_t bits = 0, channels = 0;
    if (!tiff)
        return {0, 0, 0, 0};
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    Picture p = {width, height, channels, bits};
    std::vector<uint16_t> line(std::max<size_t>(size_t(TIFFScanlineSize(tiff)), width * channels));
    for (uint32_t y = 0; y < height && TIFFReadScanline(tiff, line.data(), y, 0) == 1; ++y)
        for (size_t i = 0; i < size_t{width} * channels; ++i)
            p.push_back(bits == 16 ? line[i] : reinterpret_cast<uint8_t *>(line.data())[i]);
    TIFFClose(tiff);
    return p;
}

// The largest difference of a picture of the demo's chart from the colour
// (grey: the luma) of its eight bars, over their middles in the top half:
// white, yellow, cyan, green, magenta, red, blue, black.
int bar_error(const Picture &p) {
    const int bars[8] = {7, 6, 3, 2, 5, 4, 1, 0}; // R, G, B bits
    int worst = p[0] ? 0 : 256;
    for (uint32_t y = p[1] / 12; y < p[1] * 5 / 12; ++y)
        for (uint32_t x = 0; x < p[0]; ++x) {
            int bar = bars[x * 8 / p[0]];
            int rgb[3] = {(bar >> 2 & 1) * 255, (bar >> 1 & 1) * 255, (bar & 1) * 255};
            int luma = (299 * rgb[0] + 587 * rgb[1] + 114 * rgb[2] + 500) / 1000;
            for (uint32_t c = 0; c < p[2] && (x + 4) % (p[0] / 8) >= 8; ++c) // 4 in from the edges
                worst = std::max(worst, std::abs(int(p[4 + (y * p[0] + x) * p[2] + c]) -
                                                 (p[2] == 1 ? luma : rgb[c])));
        }
    return worst;
}

// The demo writes every file its table lists and nothing else, each showing
// the chart's bars (YUV rounds twice, bilinear weighs 510/512). The command
// it ends with converts its raw mosaic back; a PGM read as a mosaic keeps it.
TEST(Demo, WritesWhatItListsAndItsRawMosaicConvertsBack) {
    fs::path dir = fresh("demo"), out = dir / "out";
    Outcome run = orvane(dir, "demo out");
    ASSERT_EQ(run.status, 0) << run.err;
    std::set<std::string> listed;
    std::istringstream table(run.out.substr(run.out.find("output file")));
    std::string line;
    for (std::getline(table, line); std::getline(table, line) && !line.empty();) {
        const std::string file = words(line)[0];
        listed.insert(file);
        if (file == "bay8-a.raw" || file == "field.ppm")
            continue;
        Picture picture = file == "chart-y8.tif" ? read_tiff(out / file) : read_png(out / file);
        EXPECT_EQ(Picture(picture.begin(), picture.begin() + 4),
                  Picture({640, 480, file.rfind("chart-y8", 0) == 0 ? 1u : 3u, 8})) << file;
        EXPECT_LE(bar_error(picture), file[0] == 'y' ? 3 : file.rfind("field-", 0) == 0) << file;
    }
    // 24 demosaics, the chart, YUV, the field and its 4 frames, grey PNG, TIFF, raw.
    EXPECT_EQ(listed.size(), 34u) << run.out;
    EXPECT_EQ(entries(out), listed);

    std::string hint = run.out.substr(run.out.rfind('\n', run.out.size() - 2) + 1);
    ASSERT_EQ(hint.rfind("  " ORVANE_TOOL " convert out/", 0), 0u) << hint;
    hint = "cd " + shell_word(dir) + " &&" + hint.substr(0, hint.size() - 1) + " >/dev/null";
    ASSERT_EQ(std::system(hint.c_str()), 0) << hint;
    EXPECT_EQ(bar_error(read_png(out / "bay8-ave-a-from-raw.png")), 0);

    const std::string pgm = "P5\n640 480\n255\n" + slurp(out / "bay8-a.raw");
    spill(dir / "mosaic.pgm", pgm);
    EXPECT_EQ(slurp(written(dir, "convert mosaic.pgm --format BAY8 -o c.pgm")), pgm);
}

// Files known exactly. PGM/PPM copies keep every byte; PNG and TIFF files
// (on four threads; 8-bit grey also by the library's TIFF writer) hold the
// samples in R, G, B order, 12 bits stretched to 16 by bit replication. A
// raw dump is little-endian and reads back at a longer stride. Symbolic
// links (dangling too) and FIFOs (--ext typing one) are written through.
TEST(Convert, FilesHoldWhatTheyMust) {
    fs::path dir = fresh("files");
    fs::create_directory(dir / "real");
    spill(dir / "real/old.pgm", "old");
    fs::create_symlink("real/old.pgm", dir / "link.pgm");
    fs::create_symlink("real/new.pgm", dir / "dangling.pgm");
    ASSERT_EQ(mkfifo((dir / "fifo.pgm").c_str(), 0666) | mkfifo((dir / "pipe").c_str(), 0666), 0);
    // A PGM line 0, maxval / 2, maxval scales to the depth that holds maxval, rounded as
    // netpbm does: maxval, the copy's maxval and its middle sample.
    const uint32_t scaled[][3] = {{1, 255, 0}, {100, 255, 128}, {300, 1023, 512},
                                  {4095, 4095, 2047}};
    std::vector<std::pair<std::string, std::string>> cases;
    for (const auto &[maxval, full, middle] : scaled) {
        const std::string in = "m" + std::to_string(maxval) + ".pgm";
        spill(dir / in, pnm({3, 1, 1, 0, 0, maxval / 2, maxval}, maxval));
        cases.push_back({"convert " + in + " -o out-" + in,
                         pnm({3, 1, 1, 0, 0, middle, full}, full)});
    }
    const uint32_t maxvals[] = {255, 4095, 65535, 255, 65535};
    std::vector<Picture> pictures;
    std::string all;
    for (uint32_t i = 0; i < 5; ++i) {
        Picture original = noise(37 + i, 23, i < 3 ? 1 : 3, maxvals[i], i);
        std::string in = "in" + std::to_string(i) + (i < 3 ? ".pgm" : ".ppm");
        spill(dir / in, pnm(original, maxvals[i]));
        cases.push_back({"convert " + in + " -o copy-" + in, pnm(original, maxvals[i])});
        for (size_t at = 4; at < original.size() && maxvals[i] == 4095; ++at)
            original[at] = original[at] << 4 | original[at] >> 8;
        pictures.push_back(original);
        all += " " + in;
    }
    std::string dump = bytes(pictures[2], 2, false), padded; // 39 x 23 y16
    for (size_t y = 0; y < 23; ++y)
        padded += dump.substr(y * 78, 78) + std::string(6, '\xEE');
    spill(dir / "padded.raw", padded);
    cases.push_back({"convert in2.pgm -o dump.raw", dump});
    cases.push_back({"convert padded.raw --format y16 --width 39 --height 23 --stride 84 -o b.pgm",
                     slurp(dir / "in2.pgm")});
    for (std::string out : {"link.pgm", "dangling.pgm", "fifo.pgm", "pipe --ext PGM"})
        cases.push_back({"convert in0.pgm -o " + out, slurp(dir / "in0.pgm")});
    for (const auto &[args, expected] : cases) {
        fs::path out = dir / words(args.substr(args.find(" -o ") + 4))[0];
        const bool fifo = fs::is_fifo(out); // read while the tool writes
        auto got = std::async(fifo ? std::launch::async : std::launch::deferred, [=] {
            return slurp(out);
        });
        written(dir, args);
        if (fifo) // lets the reader go, should the tool never have opened the FIFO
            close(open(out.c_str(), O_WRONLY | O_NONBLOCK));
        EXPECT_EQ(got.get(), expected) << args;
    }
    EXPECT_TRUE(fs::is_symlink(dir / "link.pgm") && fs::is_symlink(dir / "dangling.pgm") &&
                fs::is_fifo(dir / "fifo.pgm") && fs::is_fifo(dir / "pipe"));

    EXPECT_EQ(read_tiff(written(dir, "convert in0.pgm --library-tiff -o o.tif")), pictures[0]);
    for (std::string ext : {"png", "tif"}) {
        Outcome run = orvane(dir, "convert -j 4 --ext " + ext + " -o all" + all);
        EXPECT_NE(run.out.find("converted 5 of 5 files"), npos) << run.err;
        for (uint32_t i = 0; i < 5; ++i)
            EXPECT_EQ((ext == "png" ? read_png : read_tiff)(
                          dir / "all" / ("in" + std::to_string(i) + "." + ext)),
                      pictures[i]) << ext << " " << i;
    }
}

// A mosaic of two flat halves keeps each half's colour out to the edge
// columns at odd and even widths: where a demosaic reads past a line or
// leaves a border unscaled, the tool widens the mosaic and crops the result.
TEST(Convert, MosaicEdgesKeepTheirColourAtEveryWidth) {
    const char *cases[] = {"bay8 ave a bgr24 33",   // reads the sample after the line
                           "bay12 med c rgb16 33",  // reads the line below one too far
                           "bay12 med c rgb16 34",  // line 0's last green from past it
                           "bay12 ave b rgb16 34",  // last column's red unscaled
                           "bay12 med b bgr24 34"}; // column 0's blue unscaled
    const int halves[2][3] = {{200, 120, 40}, {30, 90, 220}};
    fs::path dir = fresh("mosaic-edges");
    for (const char *text : cases) {
        std::vector<std::string> c = words(text); // format, method, phase, to, width
        const uint32_t width = uint32_t(std::stoul(c[4])), pixel = c[3] == "rgb16" ? 2 : 3;
        const uint32_t phase = uint32_t(c[2][0] - 'a'); // R G / G B; b swaps columns, c lines
        Picture mosaic = {width, 6, 1, 16};
        for (uint32_t y = 0; y < 6; ++y)
            for (uint32_t x = 0; x < width; ++x) {
                uint32_t v = halves[x >= width / 2][((x ^ phase) & 1) + ((y ^ phase >> 1) & 1)];
                mosaic.push_back(c[0] == "bay8" ? v : v << 4 | v >> 4);
            }
        spill(dir / "mosaic.raw", bytes(mosaic, c[0] == "bay8" ? 1 : 2, false));
        std::string out = slurp(written(dir, "convert mosaic.raw --height 6 --width " + c[4] +
            " --format " + c[0] + " --method " + c[1] + " --phase " + c[2] + " --to " + c[3] +
            " -o out.raw")), got, want;
        ASSERT_EQ(out.size(), width * 6 * pixel) << text;
        for (uint32_t y = 0; y < 6; ++y)
            for (uint32_t x : {0u, 1u, width - 2, width - 1}) {
                const int *rgb = halves[x >= width / 2];
                // RGB16 keeps the top 5, 6 and 5 bits of R, G and B.
                int word = (rgb[0] >> 3) << 11 | (rgb[1] >> 2) << 5 | rgb[2] >> 3;
                got += out.substr((y * width + x) * pixel, pixel);
                want += pixel == 2 ? std::string{char(word), char(word >> 8)}
                                   : std::string{char(rgb[2]), char(rgb[1]), char(rgb[0])};
            }
        EXPECT_EQ(got, want) << text; // columns 0, 1, w - 2 and w - 1 of each line
    }
}

// The field lines go on the even or odd frame lines by parity. The 32-bit
// Median method gives the frame it gives 24-bit pixels, X bytes aside.
TEST(Deinterlace, ParityPlacesTheFieldAnd32BitMedianMatches24Bit) {
    fs::path dir = fresh("median32");
    auto without_x = [](std::string bgr) { // drops every fourth byte
        for (size_t i = 3; i < bgr.size(); i += 3)
            bgr.erase(i, 1);
        return bgr;
    };
    std::string field = bytes(noise(8 * 4 * 5, 1, 1, 255, 11), 1, false);
    spill(dir / "bgrx.raw", field);
    spill(dir / "bgr.raw", without_x(field));
    for (std::string parity : {"even", "ODD"}) {
        std::string args = " --width 8 --height 5 --method Median --parity " + parity, placed;
        std::string frame = slurp(written(dir, "deinterlace bgr.raw --format bgr24 -o f.raw" +
                                               args));
        EXPECT_EQ(without_x(slurp(written(dir, "deinterlace bgrx.raw --format bgrx32 -o f32.raw" +
                                               args))), frame) << parity;
        for (size_t y = 0; y < 5; ++y)
            placed += frame.substr((2 * y + (parity == "ODD")) * 24, 24);
        EXPECT_EQ(placed, without_x(field)) << parity;
    }
}

// A run: its arguments, exit status, its one stderr line (nullptr: none), a
// part of its stdout and shell commands run before it.
struct Ending {
    const char *args;
    int status;
    const char *err = nullptr, *out = "", *setting = "";
};

// A file size limit of 4 KiB, its signal ignored: writes fail with EFBIG.
constexpr const char *kSmallFiles = "trap '' XFSZ; ulimit -f 4;";

const Ending kEndings[] = {
    {"convert nothing.pgm -o o.png", 1, "nothing.pgm: cannot open: No such file or directory"},
    {"convert folder.raw -o o.png", 1, "folder.raw: is a directory, not an image file"},
    {"convert mosaic.raw -o o.png --format bay8 --width 640 --height 480", 1,
     "mosaic.raw: too short for 640 x 480 bay8 at stride 640: 307200 bytes expected, 128 found"},
    {"convert short.pgm -o o.png", 1,
     "short.pgm: too short for 64 x 64 y8: 4096 bytes expected, 5 found"},
    {"convert huge.pgm -o o.png", 1, "huge.pgm: 100000 x 100000 pixels exceed the limit"},
    {"convert garbage.pgm -o o.png", 1, "garbage.pgm: malformed PGM/PPM header"},
    {"convert above.pgm -o o.pgm", 1, "above.pgm: sample 301 at (1, 0) exceeds the maxval 300"},
    {"convert grey.pgm -o no/o.png", 1, "no/o.png: cannot write: No such file or directory"},
    {"deinterlace narrow.pgm -o o.png --parity odd", 1,
     "narrow.pgm: a field must be at least 4 pixels wide"},
    // A write that fails says why in the same words for every writer.
    {"convert big.ppm -o o.png", 1, "orvane: o.png: cannot write: File too large", "", kSmallFiles},
    {"convert big.ppm -o o.tif", 1, "orvane: o.tif: cannot write: File too large", "", kSmallFiles},
    {"convert big.ppm -o o.tiff --library-tiff", 1, "orvane: o.tiff: cannot write: File too large",
     "", kSmallFiles},
    {"convert big.ppm -o o.ppm", 1, "orvane: o.ppm: cannot write: File too large", "", kSmallFiles},
    {"convert big.ppm -o o.raw", 1, "orvane: o.raw: cannot write: File too large", "", kSmallFiles},
    {"convert mosaic.raw -o o.png --format bay9", 2, "unknown format 'bay9'"},
    {"convert mosaic.raw -o o.png --method fast --format bay8 --width 16 --height 8", 2,
     "unknown Bayer method 'fast' (one of dup|ave|med)"},
    {"deinterlace grey.pgm -o o.png --parity top", 2, "unknown parity 'top' (one of even|odd)"},
    {"convert grey16.pgm -o o.raw --to y12", 2,
     "grey16.pgm: the library does not convert y16 to y12 (ORV_ERROR_NOT_SUPPORTED)"},
    {"convert mosaic.raw -o o.raw --to bgr16 --method ave --format bay8 --width 16 --height 8", 2,
     "mosaic.raw: bay8 to bgr16 is not offered with method ave, phase a "
     "(ORV_ERROR_NOT_IMPLEMENTED)"},
    {"convert mosaic.raw -o o.png --format bay8 --width 20 --height 4 --stride 10", 2,
     "mosaic.raw: --stride 10 is smaller than a line of 20 bay8 pixels (20 bytes)"},
    {"convert mosaic.raw -o o.png", 2,
     "mosaic.raw: a raw dump needs --format, --width and --height"},
    {"convert mosaic.raw -o o.png --format yuv422 --width 15 --height 2", 2,
     "mosaic.raw: yuv422 packs pixels in pairs: --width must be even"},
    {"convert grey16.pgm -o o.tif --to y16 --library-tiff", 2,
     "o.tif: a TIFF (library writer) file cannot hold y16 pixels"},
    {"convert colour.ppm colour2.ppm --ext pgm -o out", 2, // once for the whole batch
     "colour.ppm: the library converts bgr24 into nothing a PGM file holds"},
    {"convert colour.ppm --format bay8 -o o.png", 2, "colour.ppm: --format bay8 does not fit a"},
    {"convert grey.pgm --width 8 -o o.png", 2, "grey.pgm: a PGM/PPM file brings its own geometry"},
    {"convert grey.pgm --phase b -o o.png", 2, "--method and --phase describe a Bayer mosaic"},
    {"convert grey.pgm --ext ppm -o o.png", 2, "--ext names the file type in an output directory"},
    {"convert grey.pgm --library-tiff -o o.png", 2,
     "--library-tiff applies to .tif and .tiff outputs"},
    {"deinterlace grey16.pgm --method bilinear --parity even -o o.png", 2,
     "grey16.pgm: the library does not de-interlace y16 fields by bilinear"},
    {"convert grey.pgm -o o.jpg", 2, "o.jpg: unknown output type"},
    {"convert grey.pgm -o o.png --to rgb16", 2, "o.png: a PNG file cannot hold rgb16 pixels"},
    {"convert grey.pgm folder.raw/../grey.pgm -o .", 2, "would both be written to"},
    {"", 2, "no command (one of demo, convert, deinterlace, formats"},
    {"frobnicate", 2, "unknown command 'frobnicate' (one of demo"},
    // Runs that go on, saying in one line what the user must know, or
    // choosing for them.
    {"convert mosaic.raw --format bay8 --width 15 --height 8 -o o.png", 0,
     "mosaic.raw: the file holds 128 bytes, 15 x 8 bay8 at stride 15 reads the first 120",
     "converted 1 of 1 file"},
    {"deinterlace grey16.pgm --parity odd -o o.pgm", 0, nullptr, "by linedup"},
    {"deinterlace grey16.pgm --method lineave --parity odd -o o.pgm", 0,
     "note: lineave averages bytes, not y16 samples", "by lineave"},
    {"convert mosaic.raw --format rgb30 --width 8 --height 4 --to rgb48 -o o.png", 0,
     "note: the library converts rgb30 into rgb48 with G and B from the next pixel"},
    {"--version", 0, nullptr, "orvane " ORVANE_VERSION ", OrvaneImage library"},
    {"deinterlace --help", 0, nullptr, "bilinear, median: y8 xbgr32"},
    // The pairs and Bayer methods as the library answers them.
    {"formats", 0, nullptr, "\n  04      -> (none: not a source)\n"},
    {"formats", 0, nullptr, "\n  y8      -> y8 y16 y32 rgb15 rgb16 xbgr32 bgrx32 bgr48 bgr15 bgr16 "
                            "xrgb32 rgbx32 rgb48 rgb30 bgr30 bgr24 rgb24 y10 y12 y14 bgr36 1d\n"},
    {"formats", 0, nullptr, "\n  bay8    -> rgb16 (dup ave med) bgrx32 (dup ave med) bgr16 (dup, "
                            "phase a only) rgbx32 (dup) bgr24 (dup ave med)\n"},
};

// Every run ends as its row says; a failed one leaves no file behind, a
// successful one adds just its output.
TEST(CommandLine, EveryRunEndsAsItsRowSays) {
    for (const Ending &row : kEndings) {
        SCOPED_TRACE(row.args);
        fs::path dir = fresh("ending");
        const std::pair<const char *, std::string> inputs[] = {
            {"mosaic.raw", std::string(128, '@')}, {"above.pgm", pnm({2, 1, 1, 16, 0, 301}, 300)},
            {"grey.pgm", pnm(noise(8, 6, 1, 255, 1), 255)}, {"short.pgm", "P5 64 64 255 short"},
            {"grey16.pgm", pnm(noise(8, 6, 1, 65535, 2), 65535)}, {"garbage.pgm", "P5 12 x 255 "},
            {"colour.ppm", pnm(noise(8, 6, 3, 255, 4), 255)}, {"huge.pgm", "P5 100000 100000 255 "},
            {"colour2.ppm", pnm(noise(8, 6, 3, 255, 5), 255)},
            {"narrow.pgm", pnm(noise(2, 6, 1, 255, 3), 255)},
            {"big.ppm", pnm(noise(64, 64, 3, 65535, 3), 65535)}};
        for (const auto &[name, contents] : inputs)
            spill(dir / name, contents);
        fs::create_directory(dir / "folder.raw");
        std::set<std::string> files = entries(dir);
        const std::string args = row.args;
        if (row.status == 0 && args.find(" -o ") != npos)
            files.insert(words(args.substr(args.find(" -o ") + 4))[0]);

        Outcome run = orvane(dir, row.args, row.setting);
        EXPECT_EQ(run.status, row.status) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), row.err ? 1 : 0) << run.err;
        EXPECT_NE(run.err.find(row.err ? row.err : ""), npos) << run.err;
        EXPECT_NE(run.out.find(row.out), npos) << run.out;
        EXPECT_EQ(entries(dir), files);
    }
}

// An interrupted conversion leaves neither a partial output nor its pending
// file: a watcher interrupts the tool once that file shows.
TEST(Convert, InterruptLeavesNoFileBehind) {
    fs::path dir = fresh("interrupt");
    spill(dir / "big.pgm", pnm(noise(3000, 3000, 1, 65535, 9), 65535)); // slow to compress
    Outcome run = orvane(dir, "convert big.pgm -o big.png",
                         "(while kill -0 $$; do ls -a | grep -q orvane- && exec kill -INT $$;"
                         " sleep 0.01; done) 2>/dev/null &");
    EXPECT_EQ(run.status, 128 + SIGINT) << "the pending file never showed";
    EXPECT_EQ(entries(dir), std::set<std::string>{"big.pgm"});
}

} // namespace
