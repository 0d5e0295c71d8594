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

FileType output_type(const std::string &out, bool library_tiff) {
    std::optional<FileType> type = file_type_of(out, library_tiff);
    if (!type)
        throw UsageError(out + ": unknown output type (use .png, .tif, .tiff, "
                               ".raw, .pgm or .ppm)");
    return *type;
}

// What every output of a run is: its file type, and the format named by
// --to (nullptr: the file type's choice for each input format).
struct OutputPlan {
    FileType type;
    const FormatInfo *to;
};

OutputPlan output_plan(FileType type, const std::string &out,
                       const std::string &to) {
    OutputPlan plan{type, nullptr};
    if (!to.empty()) {
        plan.to = &lookup_format(to);
        check_file_holds(type, *plan.to, out);
    }
    return plan;
}

// The format that images of `source` are written in, with every choice
// that would fail for each such image refused up front as a UsageError
// naming `subject`, the first input of that format.
const FormatInfo &output_format(const FormatInfo &source,
                                const OutputPlan &plan,
                                const InputDescription &input,
                                const std::string &subject) {
    const FormatInfo &target =
        plan.to ? *plan.to : default_target(source, plan.type, subject);
    if (&target == &source)
        return target;
    if (!library_converts(source, target))
        throw UsageError(subject + ": the library does not convert " +
                         source.name + " to " + target.name + " (" +
                         status_name(ORV_ERROR_NOT_SUPPORTED) + ")");
    if (source.family == Family::bayer &&
        !demosaic_offered(source, target, input.bayer_method, input.bayer_phase))
        throw UsageError(subject + ": " + source.name + " to " + target.name +
                         " is not offered with method " +
                         name_of(kBayerMethods, input.bayer_method) +
                         ", phase " + name_of(kBayerPhases, input.bayer_phase) +
                         " (" + status_name(ORV_ERROR_NOT_IMPLEMENTED) + ")");
    return target;
}

// One line on a conversion whose result the library keeps on purpose and
// a picture would not, where the tool has no simple step around it.
void note_conversion(const FormatInfo &source, const FormatInfo &target) {
    if (source.code == ORV_FORMAT_RGB30 && target.code == ORV_FORMAT_RGB48)
        std::fprintf(stderr, "orvane: note: the library converts rgb30 into "
                             "rgb48 with G and B from the next pixel; --to "
                             "bgr48 keeps them in place\n");
}

// Checks, once for each format among `inputs`, what output_format checks,
// and gives its note. An input whose format cannot be learned is left to
// fail in its own turn.
void check_output_formats(const std::vector<std::string> &inputs,
                          const OutputPlan &plan,
                          const InputDescription &input) {
    std::map<const FormatInfo *, std::string> first_of_format;
    for (const std::string &in : inputs) {
        try {
            first_of_format.emplace(&input_format(in, input), in);
        } catch (const ToolError &) {
        }
    }
    for (const auto &[format, subject] : first_of_format)
        note_conversion(*format, output_format(*format, plan, input, subject));
}

// Options that describe something the inputs or the output do not have
// are refused rather than ignored.
void check_options_apply(const InputOptions &options,
                         const std::vector<std::string> &inputs,
                         FileType type, bool library_tiff) {
    bool geometry = options.width || options.height || options.stride;
    auto pnm = std::find_if(inputs.begin(), inputs.end(),
                            [](const std::string &in) { return !is_raw_input(in); });
    if (geometry && pnm != inputs.end())
        throw UsageError(*pnm + ": a PGM/PPM file brings its own geometry; "
                                "--width, --height and --stride describe raw "
                                "dumps");
    const FormatInfo *format =
        options.format.empty() ? nullptr : find_format(options.format);
    if ((options.bayer_method || options.bayer_phase) &&
        !(format && format->family == Family::bayer))
        throw UsageError("--method and --phase describe a Bayer mosaic; the "
                         "input is one only with --format bay8 ... bay16");
    if (library_tiff && type != FileType::library_tiff)
        throw UsageError("--library-tiff applies to .tif and .tiff outputs");
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
// OUT is a directory (always so for several inputs). The directory is
// made later, once every check has passed.
std::vector<Job> plan_jobs(const ConvertOptions &options, FileType &type,
                           bool &to_directory, bool &to_stream) {
    const std::string &out = options.output;
    std::error_code ignored;
    to_directory = options.inputs.size() > 1 || fs::is_directory(out, ignored) ||
                   (!out.empty() && out.back() == '/');
    if (options.inputs.size() > 1 && !fs::is_directory(out, ignored) &&
        file_type_of(out))
        throw UsageError(std::to_string(options.inputs.size()) +
                         " inputs need an output directory, not the file " + out);
    std::vector<Job> jobs;
    if (!to_directory) {
        // A FIFO or a device has no extension to tell the file type by:
        // --ext tells it.
        to_stream = fs::is_fifo(out, ignored) ||
                    fs::is_character_file(out, ignored) ||
                    fs::is_block_file(out, ignored);
        bool named = file_type_of(out).has_value();
        if (to_stream && !named && !options.extension)
            throw UsageError(out + ": a FIFO or device without an extension "
                                   "needs --ext for the file type");
        if (options.extension && (named || !to_stream))
            throw UsageError("--ext names the file type in an output "
                             "directory, FIFO or device; " + out +
                             " names its own");
        type = output_type(named || !to_stream ? out : "." + *options.extension,
                           options.library_tiff);
        jobs.push_back({options.inputs.front(), out});
        return jobs;
    }
    const std::string extension = options.extension.value_or("png");
    std::optional<FileType> by_extension =
        file_type_of("." + extension, options.library_tiff);
    if (!by_extension)
        throw UsageError("--ext " + extension +
                         ": unknown file type (png, tif, tiff, raw, pgm or ppm)");
    type = *by_extension;
    std::map<std::string, std::string> sources;
    for (const std::string &in : options.inputs) {
        std::string target = (fs::path(out) / fs::path(in).stem()).string() +
                             "." + extension;
        auto [entry, fresh] = sources.emplace(target, in);
        if (!fresh)
            throw UsageError(entry->second + " and " + in +
                             " would both be written to " + target);
        jobs.push_back({in, target});
    }
    return jobs;
}

// Converts `image` into `target` (the image itself when it is already
// that format) and writes it.
void write_output(const Image &image, const std::string &out, FileType type,
                  const FormatInfo &target, const std::string &subject) {
    if (&target == &image.format())
        write_image(image, type, out);
    else
        write_image(convert(image, target, subject), type, out);
}

} // namespace

InputDescription resolve_input(const InputOptions &options) {
    InputDescription input;
    if (!options.format.empty())
        input.format = &lookup_format(options.format);
    input.width = options.width;
    input.height = options.height;
    input.stride = options.stride;
    input.bayer_method = lookup_name(kBayerMethods,
                                     options.bayer_method.value_or("med"),
                                     "Bayer method");
    input.bayer_phase = lookup_name(kBayerPhases,
                                    options.bayer_phase.value_or("a"),
                                    "Bayer phase");
    return input;
}

int run_convert(const ConvertOptions &options) {
    InputDescription input = resolve_input(options.input);
    FileType type = FileType::png;
    bool to_directory = false, to_stream = false;
    std::vector<Job> jobs = plan_jobs(options, type, to_directory, to_stream);
    check_options_apply(options.input, options.inputs, type,
                        options.library_tiff);
    OutputPlan plan = output_plan(type, options.output, options.to);
    check_output_formats(options.inputs, plan, input);
    if (to_directory) {
        std::error_code error;
        fs::create_directories(options.output, error);
        if (error)
            throw ToolError(options.output +
                            ": cannot create directory: " + error.message());
    }

    unsigned threads = options.jobs ? options.jobs
                                    : std::max(1u, std::thread::hardware_concurrency());
    threads = static_cast<unsigned>(std::min<size_t>(threads, jobs.size()));
    Progress progress(jobs.size(), jobs.size() > 1);
    Warn warn = [&](const std::string &text) { progress.error("warning: " + text); };
    std::atomic<size_t> next{0}, failed{0};
    std::atomic<uint64_t> pixels{0};
    auto start = std::chrono::steady_clock::now();

    auto worker = [&] {
        for (size_t i = next++; i < jobs.size(); i = next++) {
            const Job &job = jobs[i];
            try {
                Image image = read_image(job.in, input, warn);
                const FormatInfo &target =
                    output_format(image.format(), plan, input, job.in);
                write_output(image, job.out, type, target, job.in);
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
    // The report keeps out of an image written to the standard output.
    std::fprintf(to_stream ? stderr : stdout,
                 "converted %zu of %zu file%s (%.2f megapixels) in %.2f s on "
                 "%u thread%s%s\n",
                 jobs.size() - failed, jobs.size(), jobs.size() == 1 ? "" : "s",
                 static_cast<double>(pixels) / 1e6, elapsed, threads,
                 threads == 1 ? "" : "s", failures.c_str());
    return failed ? kExitFailure : 0;
}

int run_deinterlace(const DeinterlaceOptions &options) {
    InputDescription input = resolve_input(options.input);
    uint32_t parity = lookup_name(kFieldParities, options.parity, "parity");
    FileType type = output_type(options.output, options.library_tiff);
    check_options_apply(options.input, {options.in}, type, options.library_tiff);
    OutputPlan plan = output_plan(type, options.output, options.to);

    const FormatInfo &format = input_format(options.in, input);
    // Bilinear weighs each sample with its own channel's neighbours where
    // the library knows the layout; other formats get whole lines.
    uint32_t method =
        options.method
            ? lookup_name(kFieldMethods, *options.method, "de-interlace method")
        : library_deinterlaces(format, OVC_FIELD_BILINEAR) ? OVC_FIELD_BILINEAR
                                                           : OVC_FIELD_LINEDUP;
    if (!library_deinterlaces(format, method))
        throw UsageError(options.in + ": the library does not de-interlace " +
                         format.name + " fields by " +
                         name_of(kFieldMethods, method) + " (methods and "
                         "formats: " + deinterlace_methods_text() + ")");
    const FormatInfo &target = output_format(format, plan, input, options.in);
    note_conversion(format, target);
    // LineAve averages each byte on its own: right for samples of one
    // byte; for wider samples a carry from the high byte is lost.
    if (method == OVC_FIELD_LINEAVE && format.depth != 8)
        std::fprintf(stderr, "orvane: note: lineave averages bytes, not %s "
                             "samples: a filled sample is 128 levels low "
                             "where the high bytes above and below differ by "
                             "an odd number (linedup keeps samples whole)\n",
                     format.name);

    Image field = read_image(options.in, input, [](const std::string &text) {
        std::fprintf(stderr, "orvane: warning: %s\n", text.c_str());
    });
    Image frame = frame_for(field);
    if (frame.format().family == Family::bayer)
        frame.set_bayer(input.bayer_method, input.bayer_phase);
    field_to_frame(field, frame, method, parity, options.in);
    write_output(frame, options.output, type, target, options.in);
    std::printf("%s -> %s: %u x %u %s field, %s lines, to a %u x %u frame by "
                "%s\n",
                options.in.c_str(), options.output.c_str(), field.width(),
                field.height(), field.format().name,
                name_of(kFieldParities, parity), frame.width(), frame.height(),
                name_of(kFieldMethods, method));
    return 0;
}

} // namespace orvtool
