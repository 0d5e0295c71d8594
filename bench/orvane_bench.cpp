// Throughput of OVC_Convert, OVC_FieldToFrame and the file writers on
// 1920 x 1080 images of random bytes, timed beside the fastest open-source
// peers (OpenCV, libyuv, libtiff) or a plainly written yardstick
// (yardsticks.h) on the same images in the same run. Every row of the
// table below times the library call and each of the row's peers; after
// the runs, a table gives per row the library's Mpixel/s, the fastest
// peer's, and the ratio of their times.
//
// Times are wall-clock; a row's figure is its fastest single call, each
// call timed on its own, over 5 repetitions of at least 0.1 s each by
// default (interleaved at random across the benchmarks). On a shared
// machine a repetition's mean carries every preemption and every other
// process's use of the caches; the fastest call is the routine's own time.
// Mpixel/s counts the pixels of the 1920 x 1080 image: the source of a
// conversion or a file, the frame made from a 1920 x 540 field. Files go
// to a scratch directory in /dev/shm (else $TMPDIR, else /tmp), so the
// rows time the CPU and not a disk.
//
//   build-bench/bench/orvane_bench                             # every row
//   build-bench/bench/orvane_bench --benchmark_filter=YUV422    # some rows
//   ... --benchmark_out=run.json --benchmark_out_format=json    # for scripts
//
// Benchmark names are Routine/Row/implementation ("Convert/Y8_to_BGRX32/
// orvane", ".../opencv_GRAY2BGRA"); scripts/bench_table reads them so.
#include "images.h"
#include "peers.h"
#include "yardsticks.h"

#include <orvaneimage.h>
#if __has_include(<orvane/version.h>)
#include <orvane/version.h>
#endif

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace orv_bench {
namespace {

enum class Routine { Convert, FieldToFrame, FileWrite };

struct Row {
    std::string name; // Routine/Row: the benchmark names' first two parts
    Routine routine;
    uint32_t source_format;
    uint32_t destination_format;
    uint32_t method; // Bayer method, field method or file type, by routine
    std::vector<Peer> peers;
    uint32_t phase = ORV_BAYER_PHASE_A; // of a Bayer source
};

constexpr uint32_t kNoMethod = 0;

Row convert(const char *formats, uint32_t from, uint32_t to, std::vector<Peer> peers) {
    return {std::string("Convert/") + formats, Routine::Convert, from, to, kNoMethod,
            std::move(peers)};
}

Row demosaic(const char *formats, uint32_t from, uint32_t to, uint32_t method,
             std::vector<Peer> peers, uint32_t phase = ORV_BAYER_PHASE_A) {
    return {std::string("Convert/") + formats, Routine::Convert, from, to, method,
            std::move(peers), phase};
}

Row field_to_frame(const char *format_and_method, uint32_t format, uint32_t method,
                   std::vector<Peer> peers) {
    return {std::string("FieldToFrame/") + format_and_method, Routine::FieldToFrame, format,
            format, method, std::move(peers)};
}

Row file_write(const char *format_and_type, uint32_t format, uint32_t file_type,
               std::vector<Peer> peers) {
    return {std::string("FileWrite/") + format_and_type, Routine::FileWrite, format, format,
            file_type, std::move(peers)};
}

// Peers are listed by macros that end in a comma, hence no commas between
// them; a peer whose library is missing leaves its row's list shorter.
const std::vector<Row> &rows() {
    static const std::vector<Row> table = {
        convert("Y8_to_BGRX32", ORV_FORMAT_Y8, ORV_FORMAT_BGRX32, {OPENCV_PEER(GRAY2BGRA)}),
        convert("Y8_to_BGR24", ORV_FORMAT_Y8, ORV_FORMAT_BGR24, {OPENCV_PEER(GRAY2BGR)}),
        convert("Y16_to_Y8", ORV_FORMAT_Y16, ORV_FORMAT_Y8,
                {LIBYUV_PEER_CALL("Convert16To8Plane", libyuv_y16_to_y8)}),
        convert("Y12_to_RGB16", ORV_FORMAT_Y12, ORV_FORMAT_RGB16, {}),
        convert("BGR24_to_RGB16", ORV_FORMAT_BGR24, ORV_FORMAT_RGB16, {OPENCV_PEER(BGR2BGR565)}),
        convert("BGRX32_to_BGR24", ORV_FORMAT_BGRX32, ORV_FORMAT_BGR24,
                {LIBYUV_PEER(ARGBToRAW) LIBYUV_PEER(ARGBToRGB24) OPENCV_PEER(BGRA2BGR)
                     OPENCV_PEER(BGRA2RGB)}),
        convert("BGR24_to_BGRX32", ORV_FORMAT_BGR24, ORV_FORMAT_BGRX32,
                {LIBYUV_PEER(RGB24ToARGB) OPENCV_PEER(BGR2BGRA)}),
        convert("BGR24_to_RGB24", ORV_FORMAT_BGR24, ORV_FORMAT_RGB24,
                {LIBYUV_PEER(RGB24ToRAW) OPENCV_PEER(BGR2RGB)}),
        convert("YUV422_to_BGR24", ORV_FORMAT_YUV422, ORV_FORMAT_BGR24,
                {LIBYUV_PEER_VIA_SCRATCH(YUY2ToARGB, ARGBToRGB24) OPENCV_PEER(YUV2BGR_YUY2)}),
        convert("YUV422_to_RGB24", ORV_FORMAT_YUV422, ORV_FORMAT_RGB24,
                {LIBYUV_PEER_VIA_SCRATCH(YUY2ToARGB, ARGBToRAW) OPENCV_PEER(YUV2RGB_YUY2)}),
        convert("YUV422_to_BGRX32", ORV_FORMAT_YUV422, ORV_FORMAT_BGRX32,
                {LIBYUV_PEER(YUY2ToARGB) OPENCV_PEER(YUV2BGRA_YUY2)}),
        // Demosaicing, phase A unless the name says otherwise. OpenCV's
        // bilinear and edge-aware demosaicing are the peers; its 16-bit
        // results are narrowed to 8 bits in a second pass.
        demosaic("BAY8_to_BGR24_dup", ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_DUP,
                 {OPENCV_PEER(BayerBG2BGR) OPENCV_PEER(BayerBG2BGR_EA)}),
        demosaic("BAY8_to_BGR24_ave", ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_AVE,
                 {OPENCV_PEER(BayerBG2BGR) OPENCV_PEER(BayerBG2BGR_EA)}),
        demosaic("BAY8_to_BGR24_med", ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_MED,
                 {OPENCV_PEER(BayerBG2BGR) OPENCV_PEER(BayerBG2BGR_EA)}),
        demosaic("BAY8_to_BGRX32_dup", ORV_FORMAT_BAY8, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_DUP,
                 {OPENCV_PEER(BayerBG2BGRA)}),
        demosaic("BAY8_to_BGRX32_ave", ORV_FORMAT_BAY8, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_AVE,
                 {OPENCV_PEER(BayerBG2BGRA)}),
        demosaic("BAY8_to_BGRX32_med", ORV_FORMAT_BAY8, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_MED,
                 {OPENCV_PEER(BayerBG2BGRA)}),
        demosaic("BAY12_to_BGR24_dup", ORV_FORMAT_BAY12, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_DUP,
                 {OPENCV_PEER_NARROWED(BayerBG2BGR, 4) OPENCV_PEER_NARROWED(BayerBG2BGR_EA, 4)}),
        demosaic("BAY12_to_BGR24_ave", ORV_FORMAT_BAY12, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_AVE,
                 {OPENCV_PEER_NARROWED(BayerBG2BGR, 4) OPENCV_PEER_NARROWED(BayerBG2BGR_EA, 4)}),
        demosaic("BAY12_to_BGR24_med", ORV_FORMAT_BAY12, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_MED,
                 {OPENCV_PEER_NARROWED(BayerBG2BGR, 4) OPENCV_PEER_NARROWED(BayerBG2BGR_EA, 4)}),
        demosaic("BAY12_to_BGRX32_dup", ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_DUP,
                 {OPENCV_PEER_NARROWED(BayerBG2BGRA, 4)}),
        demosaic("BAY12_to_BGRX32_ave", ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_AVE,
                 {OPENCV_PEER_NARROWED(BayerBG2BGRA, 4)}),
        demosaic("BAY12_to_BGRX32_med", ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_MED,
                 {OPENCV_PEER_NARROWED(BayerBG2BGRA, 4)}),
        // The other phases of two rows: each should run as fast as phase A.
        demosaic("BAY8_to_BGR24_med_B", ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_MED,
                 {}, ORV_BAYER_PHASE_B),
        demosaic("BAY8_to_BGR24_med_C", ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_MED,
                 {}, ORV_BAYER_PHASE_C),
        demosaic("BAY8_to_BGR24_med_D", ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_MED,
                 {}, ORV_BAYER_PHASE_D),
        demosaic("BAY12_to_BGRX32_dup_B", ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32,
                 ORV_BAYER_METHOD_DUP, {}, ORV_BAYER_PHASE_B),
        demosaic("BAY12_to_BGRX32_dup_C", ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32,
                 ORV_BAYER_METHOD_DUP, {}, ORV_BAYER_PHASE_C),
        demosaic("BAY12_to_BGRX32_dup_D", ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32,
                 ORV_BAYER_METHOD_DUP, {}, ORV_BAYER_PHASE_D),
        field_to_frame("Y8_LineDup", ORV_FORMAT_Y8, OVC_FIELD_LINEDUP, {YARDSTICK(memcpy_per_line)}),
        field_to_frame("Y8_LineAve", ORV_FORMAT_Y8, OVC_FIELD_LINEAVE, {YARDSTICK(plain_line_average)}),
        field_to_frame("Y8_Bilinear", ORV_FORMAT_Y8, OVC_FIELD_BILINEAR, {YARDSTICK(plain_line_average)}),
        field_to_frame("Y8_Median", ORV_FORMAT_Y8, OVC_FIELD_MEDIAN, {YARDSTICK(plain_line_average)}),
        field_to_frame("BGR24_LineDup", ORV_FORMAT_BGR24, OVC_FIELD_LINEDUP, {YARDSTICK(memcpy_per_line)}),
        field_to_frame("BGR24_LineAve", ORV_FORMAT_BGR24, OVC_FIELD_LINEAVE, {YARDSTICK(plain_line_average)}),
        field_to_frame("BGR24_Bilinear", ORV_FORMAT_BGR24, OVC_FIELD_BILINEAR, {YARDSTICK(plain_line_average)}),
        field_to_frame("BGR24_Median", ORV_FORMAT_BGR24, OVC_FIELD_MEDIAN, {YARDSTICK(plain_line_average)}),
        field_to_frame("BGRX32_LineDup", ORV_FORMAT_BGRX32, OVC_FIELD_LINEDUP, {YARDSTICK(memcpy_per_line)}),
        field_to_frame("BGRX32_LineAve", ORV_FORMAT_BGRX32, OVC_FIELD_LINEAVE, {YARDSTICK(plain_line_average)}),
        field_to_frame("BGRX32_Bilinear", ORV_FORMAT_BGRX32, OVC_FIELD_BILINEAR, {YARDSTICK(plain_line_average)}),
        field_to_frame("BGRX32_Median", ORV_FORMAT_BGRX32, OVC_FIELD_MEDIAN, {YARDSTICK(plain_line_average)}),
        field_to_frame("YUV422_LineDup", ORV_FORMAT_YUV422, OVC_FIELD_LINEDUP, {YARDSTICK(memcpy_per_line)}),
        field_to_frame("YUV422_LineAve", ORV_FORMAT_YUV422, OVC_FIELD_LINEAVE, {YARDSTICK(plain_line_average)}),
        field_to_frame("YUV422_Bilinear", ORV_FORMAT_YUV422, OVC_FIELD_BILINEAR, {YARDSTICK(plain_line_average)}),
        field_to_frame("YUV422_Median", ORV_FORMAT_YUV422, OVC_FIELD_MEDIAN, {YARDSTICK(plain_line_average)}),
        file_write("Y8_Tiff", ORV_FORMAT_Y8, OVC_FILE_TIFF, {LIBTIFF_PEER}),
        file_write("Y8_Raw", ORV_FORMAT_Y8, OVC_FILE_RAW, {YARDSTICK(fopen_fwrite_fclose)}),
    };
    return table;
}

constexpr const char *kLibraryName = "orvane";

// A row's source, filled with the same pseudo-random bytes for every
// implementation, and its destination. Both keep a line to spare for the
// routines that read or write a pixel past the image; a field has half the
// lines of its frame.
class RowImages {
public:
    explicit RowImages(const Row &row)
        : source_format_(row.source_format),
          destination_format_(row.destination_format),
          source_height_(row.routine == Routine::FieldToFrame ? kHeight / 2 : kHeight),
          source_(size_t(source_stride()) * (source_height_ + 1)),
          destination_(size_t(destination_stride()) * (kHeight + 1)) {
        uint32_t x = 12345;
        for (auto &b : source_) b = uint8_t((x = x * 1103515245u + 12345u) >> 24);
    }

    uint32_t source_stride() const { return kWidth * bytes_per_pixel(source_format_); }
    uint32_t destination_stride() const {
        return kWidth * bytes_per_pixel(destination_format_);
    }
    Plane source() {
        return {source_.data(), source_format_, int(kWidth), int(source_height_),
                int(source_stride())};
    }
    Plane destination() {
        return {destination_.data(), destination_format_, int(kWidth), int(kHeight),
                int(destination_stride())};
    }

private:
    uint32_t source_format_, destination_format_, source_height_;
    std::vector<uint8_t> source_, destination_;
};

// The library's buffer descriptors of a row's images.
class LibraryBuffers {
public:
    LibraryBuffers(const Row &row, RowImages &images) {
        const Plane src = images.source(), dst = images.destination();
        source = OFS_BufferCreateImage(src.data, kWidth, uint32_t(src.height),
                                       images.source_stride(), src.format);
        destination = OFS_BufferCreateImage(dst.data, kWidth, uint32_t(dst.height),
                                            images.destination_stride(), dst.format);
        if (row.routine == Routine::Convert && row.method != kNoMethod) {
            OFS_BufferParameterSet(source, OFS_BAYER_METHOD, &row.method);
            OFS_BufferParameterSet(source, OFS_BAYER_PHASE, &row.phase);
        }
    }
    ~LibraryBuffers() {
        OFS_BufferDestroy(source);
        OFS_BufferDestroy(destination);
    }
    LibraryBuffers(const LibraryBuffers &) = delete;
    LibraryBuffers &operator=(const LibraryBuffers &) = delete;

    OFS_HANDLE source, destination;
};

// The scratch directory the file rows write into, removed at exit.
class ScratchDirectory {
public:
    ScratchDirectory() {
        const char *tmpdir = std::getenv("TMPDIR");
        std::string base = std::filesystem::is_directory("/dev/shm") ? "/dev/shm"
                           : tmpdir != nullptr                         ? tmpdir
                                                                       : "/tmp";
        std::string name = base + "/orvane-bench-XXXXXX";
        if (mkdtemp(name.data()) != nullptr) path_ = name;
    }
    ~ScratchDirectory() {
        if (!path_.empty()) std::filesystem::remove_all(path_);
    }
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    // Where the benchmark `name` writes its file (empty without a directory).
    std::string file(std::string name) const {
        if (path_.empty()) return {};
        std::replace(name.begin(), name.end(), '/', '_');
        return path_ + "/" + name;
    }

private:
    std::string path_;
};

const ScratchDirectory &scratch_directory() {
    static const ScratchDirectory directory;
    return directory;
}

ORV_STATUS run_library(const Row &row, const LibraryBuffers &buffers, const char *file) {
    switch (row.routine) {
    case Routine::Convert: return OVC_Convert(buffers.source, buffers.destination);
    case Routine::FieldToFrame:
        return OVC_FieldToFrame(buffers.source, buffers.destination, row.method, 0);
    case Routine::FileWrite:
        return row.method == OVC_FILE_TIFF ? OVC_FileWriteTiff(buffers.source, file)
                                           : OVC_FileWrite(buffers.source, file, row.method);
    }
    return ORV_ERROR_NOT_SUPPORTED;
}

// The counter that carries a benchmark's fastest single call, in seconds.
constexpr const char *kFastestCall = "fastest_call";

// Times the calls of a benchmark's loop one by one and keeps the fastest.
class FastestCall {
public:
    template <class Call> auto time(Call call) {
        const auto start = std::chrono::steady_clock::now();
        const auto result = call();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        fastest_ = std::min(fastest_, took.count());
        return result;
    }
    void report(benchmark::State &state) const { state.counters[kFastestCall] = fastest_; }

private:
    double fastest_ = std::numeric_limits<double>::infinity();
};

void time_library(benchmark::State &state, const Row &row) {
    RowImages images(row);
    const LibraryBuffers buffers(row, images);
    const std::string file = scratch_directory().file(row.name + "/" + kLibraryName);
    FastestCall calls;
    for (auto _ : state) {
        const ORV_STATUS status =
            calls.time([&] { return run_library(row, buffers, file.c_str()); });
        if (status != ORV_OK) {
            state.SkipWithError(("status " + std::to_string(status)).c_str());
            break;
        }
    }
    calls.report(state);
}

void time_peer(benchmark::State &state, const Row &row, const Peer &peer) {
    RowImages images(row);
    std::vector<uint8_t> scratch(size_t(kWidth) * 4 * kHeight);
    const std::string file = scratch_directory().file(row.name + "/" + peer.name);
    const PeerImages planes{
        images.source(), images.destination(),
        {scratch.data(), ORV_FORMAT_BGRX32, int(kWidth), int(kHeight), int(kWidth * 4)},
        file.c_str()};
    FastestCall calls;
    for (auto _ : state) {
        if (!calls.time([&] { return peer.convert(planes); })) {
            state.SkipWithError("the peer did not convert into the destination");
            break;
        }
    }
    calls.report(state);
}

double fastest(const std::vector<double> &values) {
    return *std::min_element(values.begin(), values.end());
}

void register_benchmarks() {
    const auto in_wall_time = [](benchmark::internal::Benchmark *registered) {
        registered->UseRealTime()->Unit(benchmark::kMillisecond);
        registered->ComputeStatistics("min", fastest);
    };
    for (const Row &row : rows()) {
        in_wall_time(benchmark::RegisterBenchmark(
            (row.name + "/" + kLibraryName).c_str(),
            [&row](benchmark::State &state) { time_library(state, row); }));
        for (const Peer &peer : row.peers)
            in_wall_time(benchmark::RegisterBenchmark(
                (row.name + "/" + peer.name).c_str(),
                [&row, &peer](benchmark::State &state) { time_peer(state, row, peer); }));
    }
}

// Shows runs on the console as usual and keeps each benchmark's fastest
// wall time per image: its fastest single call where it counted one, else
// its fastest repetition's mean; from its repetitions or their "min"
// aggregate.
class FastestTimeReporter : public benchmark::ConsoleReporter {
public:
    FastestTimeReporter()
        : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular) {}

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) record(run);
        ConsoleReporter::ReportRuns(runs);
    }

    // Seconds per image, or nothing when the benchmark did not run or failed.
    std::optional<double> seconds(const std::string &name) const {
        const auto found = seconds_.find(name);
        if (found == seconds_.end() || failed(name)) return std::nullopt;
        return found->second;
    }
    bool failed(const std::string &name) const { return failed_.count(name) != 0; }

private:
    void record(const Run &run) {
        const std::string &name = run.run_name.function_name;
        if (run.error_occurred) {
            failed_.insert(name);
            return;
        }
        const bool timing = run.run_type == Run::RT_Iteration || run.aggregate_name == "min";
        if (!timing) return;
        const auto fastest_call = run.counters.find(kFastestCall);
        const double time =
            fastest_call != run.counters.end()
                ? fastest_call->second.value
                : run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
        auto [entry, inserted] = seconds_.emplace(name, time);
        if (!inserted) entry->second = std::min(entry->second, time);
    }

    std::map<std::string, double> seconds_;
    std::set<std::string> failed_;
};

double megapixels_per_second(double seconds) { return kPixelsPerImage / seconds / 1e6; }

void print_ratio_table(const FastestTimeReporter &times, const char *instruction_set) {
    std::printf("\nFastest wall time per image; the library runs on %s.\n"
                "ratio = library time / fastest peer time (below 1: the library is faster)\n\n",
                instruction_set);
    std::printf("%-30s %12s  %-38s %10s %7s\n", "row", "orvane Mpx/s", "fastest peer",
                "Mpx/s", "ratio");
    for (const Row &row : rows()) {
        const std::string library = row.name + "/" + kLibraryName;
        if (times.failed(library)) {
            std::printf("%-30s %12s\n", row.name.c_str(), "failed");
            continue;
        }
        const std::optional<double> library_seconds = times.seconds(library);
        if (!library_seconds) continue; // filtered out
        const Peer *best = nullptr;
        double best_seconds = std::numeric_limits<double>::infinity();
        for (const Peer &peer : row.peers) {
            const std::optional<double> peer_seconds = times.seconds(row.name + "/" + peer.name);
            if (peer_seconds && *peer_seconds < best_seconds) {
                best = &peer;
                best_seconds = *peer_seconds;
            }
        }
        std::printf("%-30s %12.1f", row.name.c_str(), megapixels_per_second(*library_seconds));
        if (best != nullptr)
            std::printf("  %-38s %10.1f %7.2f", best->name.c_str(),
                        megapixels_per_second(best_seconds), *library_seconds / best_seconds);
        std::printf("\n");
    }
}

const char *instruction_set() {
#if __has_include(<orvane/version.h>)
    return OVC_InstructionSet();
#else
    const char *cap = std::getenv("ORVANE_SIMD");
    return cap != nullptr ? cap : "default";
#endif
}

} // namespace
} // namespace orv_bench

int main(int argc, char **argv) {
    using namespace orv_bench;
    // Defaults go before the command line's arguments, which override them.
    std::vector<std::string> defaults = {
        "--benchmark_repetitions=5", "--benchmark_min_time=0.1",
        "--benchmark_display_aggregates_only=true",
        "--benchmark_enable_random_interleaving=true"};
    std::vector<char *> args = {argv[0]};
    for (std::string &flag : defaults) args.push_back(flag.data());
    args.insert(args.end(), argv + 1, argv + argc + 1); // with its null
    int arg_count = int(args.size()) - 1;
    benchmark::Initialize(&arg_count, args.data());
    if (benchmark::ReportUnrecognizedArguments(arg_count, args.data())) return 1;

    const char *level = instruction_set();
    benchmark::AddCustomContext("orvane_instruction_set", level);
    benchmark::AddCustomContext("image", std::to_string(kWidth) + " x " + std::to_string(kHeight));
    benchmark::AddCustomContext("pixels_per_image", std::to_string(kWidth * kHeight));
    set_up_peers();
#if ORV_BENCH_WITH_LIBTIFF
    record_libtiff_version();
#endif
    register_benchmarks();

    FastestTimeReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    print_ratio_table(reporter, level);
    benchmark::Shutdown();
    return 0;
}
