// `orvane convert` and `orvane deinterlace`: read inputs, let the library
// convert or de-interlace them, write the results. Several inputs are
// converted at once on all cores: the library keeps no state, so calls on
// different images run in parallel without locks.
#include "commands.h"
#include "errors.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <mutex>
#include <new>
#include <thread>

namespace orvtool {

namespace fs = std::filesystem;

namespace {

const FormatInfo &lookup_format(const std::string &name) {
    const FormatInfo *format = find_format(name);
    if (!format)
        throw UsageError("unknown format '" + name +
                         "' (`orvane formats` lists them)");
    return *format;
}

template <size_t N>
uint32_t lookup_name(const std::array<NamedValue, N> &table,
                     const std::string &name, const char *what) {
    const NamedValue *entry = find_name(table, name);
    if (!entry)
        throw UsageError(std::string("unknown ") + what + " '" + name +
                         "' (one of " + choices(table) + ")");
    return entry->value;
}

FileType output_type(const std::string &out) {
    std::optional<FileType> type = file_type_of(out);
    if (!type)
        throw UsageError(out + ": unknown output type (use .png, .tif, .tiff, "
                               ".raw, .pgm or .ppm)");
    return *type;
}

const FormatInfo *target_option(const std::string &to, FileType type,
                                const std::string &out) {
    if (to.empty())
        return nullptr;
    const FormatInfo &target = lookup_format(to);
    check_file_holds(type, target, out);
    return &target;
}

// Converts `image` into what the output holds (`to`, or the file type's
// default) and writes it.
void write_output(const Image &image, const std::string &out, FileType type,
                  const FormatInfo *to, const std::string &subject) {
    const FormatInfo &target = to ? *to : default_target(image.format(), type, out);
    check_file_holds(type, target, out);
    if (&target == &image.format()) {
        write_image(image, type, out);
        return;
    }
    write_image(convert(image, target, subject), type, out);
}

double seconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                         start)
        .count();
}

// A progress bar on stderr, drawn only when stderr is a terminal. Errors
// go through it so that they land on lines of their own.
class Progress {
public:
    Progress(size_t total, bool draw)
        : total_(total), draw_(draw && isatty(STDERR_FILENO)) {}

    void error(const std::string &message) {
        std::lock_guard<std::mutex> lock(mutex_);
        if (draw_)
            std::fputs("\r\033[K", stderr);
        std::fprintf(stderr, "orvane: %s\n", message.c_str());
        redraw();
    }
    void advance() {
        std::lock_guard<std::mutex> lock(mutex_);
        ++done_;
        redraw();
    }
    void finish() {
        if (draw_)
            std::fputs("\r\033[K", stderr);
    }

private:
    void redraw() {
        if (!draw_)
            return;
        constexpr size_t kBar = 30;
        size_t filled = total_ ? done_ * kBar / total_ : kBar;
        std::fprintf(stderr, "\r[%s%s] %zu/%zu", std::string(filled, '#').c_str(),
                     std::string(kBar - filled, '.').c_str(), done_, total_);
        std::fflush(stderr);
    }

    std::mutex mutex_;
    size_t done_ = 0;
    const size_t total_;
    const bool draw_;
};

struct Job {
    std::string in, out;
};

// Where each input goes: OUT itself, or OUT/<input name>.<extension> when
// OUT is a directory (always so for several inputs).
std::vector<Job> plan_jobs(const ConvertOptions &options, FileType &type) {
    const std::string &out = options.output;
    std::error_code ignored;
    bool to_directory = options.inputs.size() > 1 ||
                        fs::is_directory(out, ignored) ||
                        (!out.empty() && out.back() == '/');
    if (options.inputs.size() > 1 && !fs::is_directory(out, ignored) &&
        file_type_of(out))
        throw UsageError(std::to_string(options.inputs.size()) +
                         " inputs need an output directory, not the file " + out);
    std::vector<Job> jobs;
    if (!to_directory) {
        type = output_type(out);
        jobs.push_back({options.inputs.front(), out});
        return jobs;
    }
    std::optional<FileType> by_extension = file_type_of("." + options.extension);
    if (!by_extension)
        throw UsageError("--ext " + options.extension +
                         ": unknown file type (png, tif, tiff, raw, pgm or ppm)");
    type = *by_extension;
    std::map<std::string, std::string> sources;
    for (const std::string &in : options.inputs) {
        std::string target = (fs::path(out) / fs::path(in).stem()).string() +
                             "." + options.extension;
        auto [entry, fresh] = sources.emplace(target, in);
        if (!fresh)
            throw UsageError(entry->second + " and " + in +
                             " would both be written to " + target);
        jobs.push_back({in, target});
    }
    std::error_code error;
    fs::create_directories(out, error);
    if (error)
        throw ToolError(out + ": cannot create directory: " + error.message());
    return jobs;
}

} // namespace

InputDescription resolve_input(const InputOptions &options) {
    InputDescription input;
    if (!options.format.empty())
        input.format = &lookup_format(options.format);
    input.width = options.width;
    input.height = options.height;
    input.stride = options.stride;
    input.bayer_method =
        lookup_name(kBayerMethods, options.bayer_method, "Bayer method");
    input.bayer_phase =
        lookup_name(kBayerPhases, options.bayer_phase, "Bayer phase");
    return input;
}

int run_convert(const ConvertOptions &options) {
    InputDescription input = resolve_input(options.input);
    FileType type = FileType::png;
    std::vector<Job> jobs = plan_jobs(options, type);
    const FormatInfo *to = target_option(options.to, type, options.output);
    auto raw = std::find_if(jobs.begin(), jobs.end(),
                            [](const Job &job) { return is_raw_input(job.in); });
    if (raw != jobs.end())
        check_raw_input(input, raw->in);

    unsigned threads = options.jobs ? options.jobs
                                    : std::max(1u, std::thread::hardware_concurrency());
    threads = static_cast<unsigned>(std::min<size_t>(threads, jobs.size()));
    Progress progress(jobs.size(), jobs.size() > 1);
    std::atomic<size_t> next{0}, failed{0};
    std::atomic<uint64_t> pixels{0};
    auto start = std::chrono::steady_clock::now();

    auto worker = [&] {
        for (size_t i = next++; i < jobs.size(); i = next++) {
            const Job &job = jobs[i];
            try {
                Image image = read_image(job.in, input);
                write_output(image, job.out, type, to, job.in);
                pixels += image.pixels();
            } catch (const std::bad_alloc &) {
                progress.error(job.in + ": out of memory");
                ++failed;
            } catch (const std::exception &e) {
                progress.error(e.what());
                ++failed;
            }
            progress.advance();
        }
    };
    std::vector<std::thread> pool;
    for (unsigned t = 1; t < threads; ++t)
        pool.emplace_back(worker);
    worker();
    for (std::thread &thread : pool)
        thread.join();
    progress.finish();

    double elapsed = seconds_since(start);
    std::string failures =
        failed ? "; " + std::to_string(failed) + " failed" : std::string();
    std::printf("converted %zu of %zu file%s (%.2f megapixels) in %.2f s on "
                "%u thread%s%s\n",
                jobs.size() - failed, jobs.size(), jobs.size() == 1 ? "" : "s",
                static_cast<double>(pixels) / 1e6, elapsed, threads,
                threads == 1 ? "" : "s", failures.c_str());
    return failed ? kExitFailure : 0;
}

int run_deinterlace(const DeinterlaceOptions &options) {
    InputDescription input = resolve_input(options.input);
    uint32_t method = lookup_name(kFieldMethods, options.method,
                                  "de-interlace method");
    uint32_t parity = lookup_name(kFieldParities, options.parity, "parity");
    FileType type = output_type(options.output);
    const FormatInfo *to = target_option(options.to, type, options.output);
    if (is_raw_input(options.in))
        check_raw_input(input, options.in);

    Image field = read_image(options.in, input);
    Image frame = frame_for(field);
    if (frame.format().family == Family::bayer)
        frame.set_bayer(input.bayer_method, input.bayer_phase);
    field_to_frame(field, frame, method, parity, options.in);
    write_output(frame, options.output, type, to, options.in);
    std::printf("%s -> %s: %u x %u %s field, %s lines, to a %u x %u frame by "
                "%s\n",
                options.in.c_str(), options.output.c_str(), field.width(),
                field.height(), field.format().name, options.parity.c_str(),
                frame.width(), frame.height(), options.method.c_str());
    return 0;
}

} // namespace orvtool
