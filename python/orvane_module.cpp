// The orvane Python module: numpy arrays in, numpy arrays out, through the
// library's exported C functions.
//
// Each function describes its arrays to the library with buffer
// descriptors (OFS_BufferCreateImage), calls one routine with the GIL
// released and turns a status other than ORV_OK into orvane.Error. An
// array goes to the library in place, its lines at numpy's row stride,
// whenever the library can walk it and every byte the call touches (the
// README's "Reads and writes past the image") lies in memory the array
// can vouch for. Otherwise the call works on a zero-filled copy with the
// room it needs, and a caller's `out` array gets the result copied back.
// New arrays start zero-filled, so bytes the library leaves alone (the X
// byte of the 32-bit formats) read 0, never old heap contents.
#include <orvaneimage.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace py = pybind11;

namespace {

// ---------------------------------------------------------------------------
// Vocabulary: formats as numpy sees them, and the other names.

// A pixel format as a numpy array: `channels` elements of `sample_bytes`
// each per pixel, a 2-D (height, width) array when channels is 1. Y12P is
// the exception: its arrays are (height, bytes of a line). `inferred`
// marks the format an array of that dtype and shape is taken to be when
// the caller names none.
struct Format {
    const char *name;
    uint32_t code;
    uint8_t sample_bytes;
    uint8_t channels;
    bool inferred;

    size_t pixel_bytes() const { return size_t{sample_bytes} * channels; }
    bool is_bayer() const {
        return code >= ORV_FORMAT_BAY8 && code <= ORV_FORMAT_BAY16;
    }
};

// Every format with a memory layout, in code order (format 04 has none).
constexpr std::array<Format, 29> kFormats = {{
    {"y8", ORV_FORMAT_Y8, 1, 1, true},
    {"y16", ORV_FORMAT_Y16, 2, 1, true},
    {"y32", ORV_FORMAT_Y32, 4, 1, false},
    {"rgb15", ORV_FORMAT_RGB15, 2, 1, false},
    {"rgb16", ORV_FORMAT_RGB16, 2, 1, false},
    {"xbgr32", ORV_FORMAT_XBGR32, 1, 4, false},
    {"bgrx32", ORV_FORMAT_BGRX32, 1, 4, true},
    {"bgr48", ORV_FORMAT_BGR48, 2, 3, true},
    {"bgr15", ORV_FORMAT_BGR15, 2, 1, false},
    {"bgr16", ORV_FORMAT_BGR16, 2, 1, false},
    {"xrgb32", ORV_FORMAT_XRGB32, 1, 4, false},
    {"rgbx32", ORV_FORMAT_RGBX32, 1, 4, false},
    {"rgb48", ORV_FORMAT_RGB48, 2, 3, false},
    {"rgb30", ORV_FORMAT_RGB30, 4, 1, true},
    {"bgr30", ORV_FORMAT_BGR30, 4, 1, false},
    {"bgr24", ORV_FORMAT_BGR24, 1, 3, true},
    {"rgb24", ORV_FORMAT_RGB24, 1, 3, false},
    {"y10", ORV_FORMAT_Y10, 2, 1, false},
    {"y12", ORV_FORMAT_Y12, 2, 1, false},
    {"y14", ORV_FORMAT_Y14, 2, 1, false},
    {"bay8", ORV_FORMAT_BAY8, 1, 1, false},
    {"bay10", ORV_FORMAT_BAY10, 2, 1, false},
    {"bay12", ORV_FORMAT_BAY12, 2, 1, false},
    {"bay14", ORV_FORMAT_BAY14, 2, 1, false},
    {"bay16", ORV_FORMAT_BAY16, 2, 1, false},
    {"y12p", ORV_FORMAT_Y12P, 1, 1, false},
    {"bgr36", ORV_FORMAT_BGR36, 2, 3, false},
    {"1d", ORV_FORMAT_1D, 2, 3, false},
    {"yuv422", ORV_FORMAT_YUV422, 1, 2, true},
}};

struct NamedValue {
    const char *name;
    uint32_t value;
};

constexpr std::array<NamedValue, 3> kBayerMethods = {{
    {"dup", ORV_BAYER_METHOD_DUP},
    {"ave", ORV_BAYER_METHOD_AVE},
    {"med", ORV_BAYER_METHOD_MED}}};
constexpr std::array<NamedValue, 4> kBayerPhases = {{
    {"a", ORV_BAYER_PHASE_A},
    {"b", ORV_BAYER_PHASE_B},
    {"c", ORV_BAYER_PHASE_C},
    {"d", ORV_BAYER_PHASE_D}}};
constexpr std::array<NamedValue, 4> kFieldMethods = {{
    {"linedup", OVC_FIELD_LINEDUP},
    {"lineave", OVC_FIELD_LINEAVE},
    {"bilinear", OVC_FIELD_BILINEAR},
    {"median", OVC_FIELD_MEDIAN}}};
// "even": the field holds the even frame lines (a non-zero parity).
constexpr std::array<NamedValue, 2> kParities = {{{"even", 1}, {"odd", 0}}};
constexpr std::array<NamedValue, 8> kStatuses = {{
    {"ORV_OK", ORV_OK},
    {"ORV_ERROR_NOT_IMPLEMENTED", ORV_ERROR_NOT_IMPLEMENTED},
    {"ORV_ERROR_OPEN_FAILED", ORV_ERROR_OPEN_FAILED},
    {"ORV_ERROR_BAD_PARAM", ORV_ERROR_BAD_PARAM},
    {"ORV_ERROR_NOT_SUPPORTED", ORV_ERROR_NOT_SUPPORTED},
    {"ORV_ERROR_BAD_FORMAT", ORV_ERROR_BAD_FORMAT},
    {"ORV_ERROR_WRITE_FAILED", ORV_ERROR_WRITE_FAILED},
    {"ORV_ERROR_CLOSE_FAILED", ORV_ERROR_CLOSE_FAILED}}};

std::string lower_case(std::string text) {
    for (char &c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// "'dup', 'ave' or 'med'": the choices of a table, for messages.
template <class Table> std::string choices(const Table &table) {
    std::string text;
    for (size_t i = 0; i < table.size(); ++i)
        text += std::string(i == 0 ? "'" : i + 1 == table.size() ? " or '" : ", '") +
                table[i].name + "'";
    return text;
}

// The entry of `table` called `name` (any case); a ValueError listing
// the choices otherwise.
template <class Table>
const auto &find_name(const Table &table, const std::string &name,
                      const char *what) {
    const std::string lower = lower_case(name);
    for (const auto &entry : table)
        if (lower == entry.name)
            return entry;
    throw py::value_error(std::string(what) + " must be " + choices(table) +
                          ", not '" + name + "'");
}

std::string status_name(ORV_STATUS status) {
    for (const NamedValue &entry : kStatuses)
        if (entry.value == status)
            return entry.name;
    return "status " + std::to_string(status);
}

// ---------------------------------------------------------------------------
// orvane.Error: a status other than ORV_OK, with its name and number.

PyObject *error_type = nullptr;

struct LibraryError : std::runtime_error {
    LibraryError(const std::string &call, ORV_STATUS status_)
        : std::runtime_error(call + ": " + status_name(status_) + " (" +
                             std::to_string(status_) + ")"),
          status(status_) {}
    ORV_STATUS status;
};

// Throws LibraryError for a status other than ORV_OK; `call` names the
// call (built only then).
template <class Text> void check(ORV_STATUS status, Text call) {
    if (status != ORV_OK)
        throw LibraryError(call(), status);
}

void raise_library_error(const LibraryError &error) {
    py::object instance =
        py::reinterpret_borrow<py::object>(error_type)(error.what());
    instance.attr("status") = error.status;
    instance.attr("status_name") = status_name(error.status);
    PyErr_SetObject(error_type, instance.ptr());
}

// ---------------------------------------------------------------------------
// Arrays as images.

py::dtype dtype_of(const Format &format) {
    switch (format.sample_bytes) {
    case 1: return py::dtype::of<uint8_t>();
    case 2: return py::dtype::of<uint16_t>();
    default: return py::dtype::of<uint32_t>();
    }
}

bool has_samples(const py::array &array, uint8_t sample_bytes) {
    switch (sample_bytes) {
    case 1: return py::array_t<uint8_t>::check_(array);
    case 2: return py::array_t<uint16_t>::check_(array);
    default: return py::array_t<uint32_t>::check_(array);
    }
}

bool has_layout(const py::array &array, const Format &format) {
    const bool plane = format.channels == 1;
    return has_samples(array, format.sample_bytes) &&
           array.ndim() == (plane ? 2 : 3) &&
           (plane || array.shape(2) == format.channels);
}

// "uint8 arrays of shape (height, width, 3)"
std::string layout_text(const Format &format) {
    std::string shape = format.code == ORV_FORMAT_Y12P
                            ? "(height, line bytes)"
                        : format.channels == 1
                            ? "(height, width)"
                            : "(height, width, " +
                                  std::to_string(format.channels) + ")";
    return py::str(dtype_of(format)).cast<std::string>() + " arrays of shape " +
           shape;
}

std::string array_text(const py::array &array) {
    return py::str(array.dtype()).cast<std::string>() + " of shape " +
           py::str(array.attr("shape")).cast<std::string>();
}

const Format &format_named(const std::string &name) {
    return find_name(kFormats, name, "a format");
}

// The format the caller named, or the one inferred from dtype and shape;
// a ValueError when the array does not have its layout.
const Format &format_for(const py::array &array,
                         const std::optional<std::string> &name,
                         const char *what) {
    if (name) {
        const Format &format = format_named(*name);
        if (!has_layout(array, format))
            throw py::value_error(std::string(what) + ": " + format.name +
                                  " images are " + layout_text(format) +
                                  ", got " + array_text(array));
        return format;
    }
    for (const Format &format : kFormats)
        if (format.inferred && has_layout(array, format))
            return format;
    std::string known;
    for (const Format &format : kFormats)
        if (format.inferred)
            known += std::string(known.empty() ? "" : "; ") + format.name +
                     ": " + layout_text(format);
    throw py::value_error(std::string(what) + ": expected one of " + known +
                          " (or name the format), got " + array_text(array));
}

// An image's geometry in `format`: width and height in pixels, and the
// bytes of one line's pixels.
struct Image {
    const Format *format;
    uint32_t width, height;
    size_t line_bytes;
};

uint32_t checked_u32(py::ssize_t value, const char *what) {
    if (value > py::ssize_t{UINT32_MAX})
        throw py::value_error(std::string(what) + " is above 2^32 - 1");
    return static_cast<uint32_t>(value);
}

// A line must fit the library's 32-bit stride, with a pixel to spare for
// the odd widths that write one more.
Image sized(const Format &format, uint32_t width, uint32_t height) {
    const size_t bytes = format.code == ORV_FORMAT_Y12P
                             ? (3 * size_t{width} + 1) / 2
                             : width * format.pixel_bytes();
    if (bytes + format.pixel_bytes() > UINT32_MAX)
        throw py::value_error("a line of " + std::to_string(width) +
                              " pixels is too long for the library");
    return {&format, width, height, bytes};
}

Image image_of(const py::array &array, const Format &format, const char *what) {
    const py::ssize_t columns = array.shape(1);
    uint32_t width = checked_u32(columns, "the width");
    if (format.code == ORV_FORMAT_Y12P) {
        // Two pixels in three bytes; an odd width ends on two bytes, so a
        // line of 3k + 1 bytes holds no whole number of pixels.
        if (columns % 3 == 1)
            throw py::value_error(std::string(what) +
                                  ": a y12p line holds 3 bytes a pixel pair "
                                  "(2 for a last single pixel), got " +
                                  std::to_string(columns) + " bytes");
        width = checked_u32(columns * 2 / 3, "the width");
    }
    return sized(format, width, checked_u32(array.shape(0), "the height"));
}

// The numpy shape of an image: (height, width) or (height, width,
// channels); (height, line bytes) for Y12P.
std::vector<py::ssize_t> shape_of(const Image &image) {
    std::vector<py::ssize_t> shape{
        image.height, static_cast<py::ssize_t>(image.format->code == ORV_FORMAT_Y12P
                                                   ? image.line_bytes
                                                   : image.width)};
    if (image.format->channels > 1)
        shape.push_back(image.format->channels);
    return shape;
}

// ---------------------------------------------------------------------------
// Memory the library gets, and the room a call needs in it.

// The bytes one call touches in one buffer, from its first pixel: `lines`
// lines `pitch` apart, `line_bytes` from the start of each (more than the
// line's pixels where the call reaches past them). The call can walk only
// pitches of at least `min_pitch`, or `exact_pitch` alone when that is
// set. `drift` is how much further than its stride the library moves
// from one line to the next (odd-width Y12P and YUV 4:2:2): the stride it
// is told is the pitch less the drift, so its lines land on the array's.
struct Reach {
    size_t lines;
    size_t line_bytes;
    size_t min_pitch;
    size_t exact_pitch = 0;
    size_t drift = 0;

    size_t extent(size_t pitch) const {
        return lines == 0 ? 0 : (lines - 1) * pitch + line_bytes;
    }
    size_t copy_pitch() const { return exact_pitch ? exact_pitch : min_pitch; }
    bool walks(size_t pitch) const {
        return exact_pitch ? pitch == exact_pitch : pitch >= min_pitch;
    }
};

// What a call touches of an image's own lines, nothing more.
Reach own_lines(const Image &image) {
    return {image.height, image.line_bytes, image.line_bytes};
}

// Pixel memory as the library gets it: the first pixel, the line pitch,
// and the object that keeps the memory alive.
struct Lines {
    py::object owner;
    uint8_t *first;
    size_t pitch;
};

// The first byte of an array's memory. The library takes sources through
// non-const addresses but never writes them.
uint8_t *first_byte(const py::array &array) {
    return static_cast<uint8_t *>(const_cast<void *>(array.data()));
}

// The row stride of an array whose lines the library can walk in place:
// each line's pixels packed and aligned, lines a positive whole number of
// samples apart that fits the library's 32-bit stride. 0 otherwise.
size_t walkable_pitch(const py::array &array, const Image &image) {
    const py::ssize_t sample = image.format->sample_bytes;
    const bool packed_pixels =
        array.strides(1) == sample * (array.ndim() == 3 ? array.shape(2) : 1) &&
        (array.ndim() == 2 || array.strides(2) == sample);
    const py::ssize_t pitch = array.strides(0);
    if (!packed_pixels || !(array.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_) || pitch <= 0 ||
        pitch % sample != 0 || pitch > py::ssize_t{UINT32_MAX} ||
        static_cast<size_t>(pitch) < image.line_bytes)
        return 0;
    return static_cast<size_t>(pitch);
}

// Whether the `bytes` from an array's first element lie in memory numpy
// vouches for: its own lines, or the whole of the outermost contiguous
// array it is a view of (so a slice of a larger image has the rest of
// that image as room).
bool has_room(const py::array &array, const Image &image, size_t pitch,
              size_t bytes) {
    if (bytes <= own_lines(image).extent(pitch))
        return true;
    py::array outer = array;
    for (py::object base = outer.base(); py::isinstance<py::array>(base);
         base = outer.base())
        outer = py::reinterpret_borrow<py::array>(base);
    if (!(outer.flags() & (py::array::c_style | py::array::f_style)))
        return false;
    const auto *begin = static_cast<const uint8_t *>(outer.data());
    const auto *first = static_cast<const uint8_t *>(array.data());
    const auto *end = begin + outer.nbytes();
    return first >= begin && first < end &&
           bytes <= static_cast<size_t>(end - first);
}

py::module_ numpy() { return py::module_::import("numpy"); }

// An array of `image`'s shape and dtype over lines `pitch` apart at
// `first`, kept alive by `owner`.
py::array view(const Image &image, uint8_t *first, size_t pitch,
               const py::object &owner) {
    const auto sample = static_cast<py::ssize_t>(image.format->sample_bytes);
    std::vector<py::ssize_t> strides{static_cast<py::ssize_t>(pitch)};
    if (image.format->channels > 1)
        strides.push_back(sample * image.format->channels);
    strides.push_back(sample);
    return py::array(dtype_of(*image.format), shape_of(image), strides, first,
                     owner);
}

// Zero-filled memory for `reach` at its copy pitch; `contents`, when
// given, is copied onto the image's lines in it.
Lines fresh_lines(const Image &image, const Reach &reach,
                  const py::array *contents) {
    const size_t pitch = reach.copy_pitch();
    const size_t bytes = std::max<size_t>(reach.extent(pitch), 1);
    py::array memory = numpy().attr("zeros")(bytes, "uint8");
    auto *first = static_cast<uint8_t *>(memory.mutable_data());
    if (contents)
        numpy().attr("copyto")(view(image, first, pitch, memory), *contents);
    return {memory, first, pitch};
}

// A source's memory for a call: the array itself when the library can
// walk its lines and the call's reach stays inside memory numpy vouches
// for, else a padded copy.
Lines source_lines(const py::array &array, const Image &image,
                   const Reach &reach) {
    const size_t pitch = walkable_pitch(array, image);
    if (pitch != 0 && reach.walks(pitch) &&
        has_room(array, image, pitch, reach.extent(pitch)))
        return {array, first_byte(array), pitch};
    return fresh_lines(image, reach, &array);
}

// A destination: the caller's `out` array or a new one. The library
// writes into `out` in place only when it writes nothing but the image's
// own pixels there; otherwise it writes into a zero-filled buffer that
// starts as a copy of `out` (so bytes the library keeps stay as they
// were) and is copied back.
class Destination {
public:
    Destination(const Image &image, const Reach &reach,
                const std::optional<py::array> &out)
        : image_(image), out_(out) {
        const size_t pitch = out ? walkable_pitch(*out, image) : 0;
        if (pitch != 0 && reach.drift == 0 && reach.walks(pitch) &&
            reach.lines <= image.height && reach.line_bytes <= image.line_bytes) {
            lines_ = {*out, first_byte(*out), pitch};
            in_place_ = true;
        } else {
            lines_ = fresh_lines(image, reach, out ? &*out : nullptr);
        }
    }

    const Lines &lines() const { return lines_; }

    // The result: `out`, or the new array, C-contiguous.
    py::array result() const {
        if (in_place_)
            return *out_;
        py::array written = view(image_, lines_.first, lines_.pitch, lines_.owner);
        if (out_) {
            numpy().attr("copyto")(*out_, written);
            return *out_;
        }
        return numpy().attr("ascontiguousarray")(written);
    }

private:
    Image image_;
    std::optional<py::array> out_;
    Lines lines_;
    bool in_place_ = false;
};

// A buffer descriptor for the library, destroyed with this object.
class Descriptor {
public:
    Descriptor(const Image &image, const Lines &lines, const Reach &reach)
        : handle_(OFS_BufferCreateImage(
              lines.first, image.width, image.height,
              static_cast<uint32_t>(lines.pitch - reach.drift),
              image.format->code)) {
        if (handle_ == 0)
            throw std::bad_alloc();
    }
    ~Descriptor() { OFS_BufferDestroy(handle_); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    OFS_HANDLE handle() const { return handle_; }
    void set(uint32_t parameter, uint32_t value) {
        OFS_BufferParameterSet(handle_, parameter, &value);
    }

private:
    OFS_HANDLE handle_;
};

template <class Call> ORV_STATUS without_gil(Call call) {
    py::gil_scoped_release release;
    return call();
}

// ---------------------------------------------------------------------------
// Conversion and demosaicing: OVC_Convert.

struct BayerChoice {
    uint32_t method = 0, phase = 0;
};

// What OVC_Convert reaches in the source beyond its lines, and how it
// walks them.
Reach source_reach(const Image &src, const Format &to, BayerChoice bayer) {
    const uint32_t w = src.width;
    Reach reach = own_lines(src);
    if (src.format->code == ORV_FORMAT_YUV422) {
        // Read as one packed run of lines of an even number of pixels.
        reach.exact_pitch = reach.line_bytes = 2 * (w + (w & 1u));
    } else if (src.format->code == ORV_FORMAT_Y12P && (w & 1u)) {
        // Odd widths read a whole last pair and drift two bytes a line.
        reach.min_pitch = reach.line_bytes = 3 * (size_t{w} + 1) / 2;
        reach.drift = 2;
    } else if (src.format->code == ORV_FORMAT_RGB30 && to.code == ORV_FORMAT_RGB48) {
        reach.line_bytes += 4; // G and B of the last pixel come from the next
    } else if (src.format->is_bayer()) {
        // Line 0 takes colours from line 1; ave and med at an odd width read
        // the sample after each line, RGB16 med_C up to two.
        const bool med = bayer.method == ORV_BAYER_METHOD_MED;
        const bool ave_or_med = med || bayer.method == ORV_BAYER_METHOD_AVE;
        size_t past = ave_or_med && (w & 1u) ? 1 : 0;
        if (med && bayer.phase == ORV_BAYER_PHASE_C && to.code == ORV_FORMAT_RGB16)
            past = 2;
        reach.lines = std::max<size_t>(src.height, 2);
        reach.line_bytes += past * src.format->sample_bytes;
    }
    return reach;
}

// What OVC_Convert writes in the destination beyond its lines.
Reach destination_reach(const Image &src, const Image &dst, BayerChoice bayer) {
    Reach reach = own_lines(dst);
    const bool pairs = src.format->code == ORV_FORMAT_YUV422 ||
                       src.format->code == ORV_FORMAT_Y12P;
    if (pairs && (src.width & 1u)) {
        // A whole last pair is written, and the lines drift a pixel each.
        reach.drift = dst.format->pixel_bytes();
        reach.min_pitch = reach.line_bytes += reach.drift;
    } else if (src.format->is_bayer()) {
        // Heights 0 and 1 still get one line (dup) or two (ave, med).
        const size_t least = bayer.method == ORV_BAYER_METHOD_DUP ? 1 : 2;
        reach.lines = std::max<size_t>(dst.height, least);
    }
    return reach;
}

py::array convert_image(const py::array &image, const Image &src,
                        const Format &to, BayerChoice bayer,
                        const std::optional<py::array> &out) {
    const Image dst = sized(to, src.width, src.height);
    if (out) {
        const std::vector<py::ssize_t> shape = shape_of(dst);
        if (!has_samples(*out, to.sample_bytes) ||
            shape.size() != static_cast<size_t>(out->ndim()) ||
            !std::equal(shape.begin(), shape.end(), out->shape()))
            throw py::value_error(
                "out: " + std::string(to.name) + " results of " +
                std::to_string(src.width) + " x " + std::to_string(src.height) +
                " pixels are " + layout_text(to) + ", got " + array_text(*out));
        if (!out->writeable())
            throw py::value_error("out is read-only");
    }
    const Reach src_reach = source_reach(src, to, bayer);
    const Lines src_lines = source_lines(image, src, src_reach);
    Reach dst_reach = destination_reach(src, dst, bayer);
    // Y8 into Y8 and Y16 into Y16 at equal strides copy whole strides,
    // padding included: an `out` whose stride matches the source's gets
    // packed lines instead, so no byte beside its pixels is written.
    const bool copies_strides =
        src.format->code == to.code &&
        (to.code == ORV_FORMAT_Y8 || to.code == ORV_FORMAT_Y16);
    if (copies_strides && out && walkable_pitch(*out, dst) == src_lines.pitch &&
        src_lines.pitch > dst.line_bytes)
        dst_reach.exact_pitch = dst.line_bytes;
    const Destination destination(dst, dst_reach, out);

    Descriptor source(src, src_lines, src_reach);
    Descriptor target(dst, destination.lines(), dst_reach);
    source.set(OFS_BAYER_METHOD, bayer.method);
    source.set(OFS_BAYER_PHASE, bayer.phase);
    check(without_gil([&] { return OVC_Convert(source.handle(), target.handle()); }),
          [&] { return std::string("OVC_Convert, ") + src.format->name + " to " + to.name; });
    return destination.result();
}

BayerChoice bayer_choice(const Image &mosaic, const std::string &method,
                         const std::optional<std::string> &phase) {
    if (mosaic.width < 2)
        throw py::value_error("a Bayer mosaic needs at least 2 columns, got " +
                              std::to_string(mosaic.width));
    if (!phase)
        throw py::value_error("a Bayer mosaic needs phase=" + choices(kBayerPhases));
    return {find_name(kBayerMethods, method, "method").value,
            find_name(kBayerPhases, *phase, "phase").value};
}

py::array convert(const py::array &image, const std::string &to,
                  const std::optional<std::string> &source_format,
                  const std::optional<std::string> &method,
                  const std::optional<std::string> &phase,
                  const std::optional<py::array> &out) {
    const Image src =
        image_of(image, format_for(image, source_format, "image"), "image");
    BayerChoice bayer;
    if (src.format->is_bayer())
        bayer = bayer_choice(src, method.value_or("ave"), phase);
    else if (method || phase)
        throw py::value_error("method and phase apply to Bayer sources only; "
                              "the image is " + std::string(src.format->name));
    return convert_image(image, src, format_named(to), bayer, out);
}

py::array demosaic(const py::array &mosaic, const std::string &phase,
                   const std::string &method, const std::string &output,
                   std::optional<uint32_t> depth) {
    const bool words = has_samples(mosaic, 2);
    if (!words && depth.value_or(8) != 8)
        throw py::value_error("a uint8 mosaic has depth 8");
    const uint32_t bits = words ? depth.value_or(16) : 8;
    if (bits != 8 && bits != 10 && bits != 12 && bits != 14 && bits != 16)
        throw py::value_error("depth must be 10, 12, 14 or 16 for a uint16 "
                              "mosaic, not " + std::to_string(bits));
    const Image src = image_of(
        mosaic, format_for(mosaic, "bay" + std::to_string(bits), "mosaic"), "mosaic");
    return convert_image(mosaic, src, format_named(output),
                         bayer_choice(src, method, phase), std::nullopt);
}

// ---------------------------------------------------------------------------
// De-interlacing: OVC_FieldToFrame.

py::array field_to_frame(const py::array &field_array, const std::string &method_name,
                         const std::string &parity_name,
                         const std::optional<std::string> &format_name) {
    const Image field = image_of(
        field_array, format_for(field_array, format_name, "field"), "field");
    const uint32_t method = find_name(kFieldMethods, method_name, "method").value;
    const uint32_t parity = find_name(kParities, parity_name, "parity").value;

    // Frame lines are as long as the field's stride, padding included, so
    // the field goes packed: the frame then holds its pixels alone.
    // Bilinear and Median read a few lines longer than that, the last of
    // them past the field (24-bit lines of one pixel are six bytes, Median
    // Y8 lines of one pixel two; a packed YUV 4:2:2 line is never odd).
    Reach reach = own_lines(field);
    reach.exact_pitch = field.line_bytes;
    const bool neighbours = method == OVC_FIELD_BILINEAR || method == OVC_FIELD_MEDIAN;
    const uint32_t code = field.format->code;
    if (neighbours && (code == ORV_FORMAT_BGR24 || code == ORV_FORMAT_RGB24) &&
        field.line_bytes == 3)
        reach.line_bytes = 6;
    if (method == OVC_FIELD_MEDIAN && code == ORV_FORMAT_Y8 && field.line_bytes == 1)
        reach.line_bytes = 2;
    const Lines field_lines = source_lines(field_array, field, reach);

    const Image frame = sized(*field.format, field.width, 2 * field.height);
    const Destination destination(frame, own_lines(frame), std::nullopt);
    Descriptor source(field, field_lines, reach);
    Descriptor target(frame, destination.lines(), own_lines(frame));
    check(without_gil([&] {
              return OVC_FieldToFrame(source.handle(), target.handle(), method, parity);
          }),
          [&] {
              return "OVC_FieldToFrame, " + lower_case(method_name) + " on " +
                     field.format->name;
          });
    return destination.result();
}

// ---------------------------------------------------------------------------
// Files: OVC_FileWrite and OVC_FileWriteTiff.

void write_raw(const std::filesystem::path &path, const py::array &image,
               const std::optional<std::string> &format_name) {
    const Image src =
        image_of(image, format_for(image, format_name, "image"), "image");
    // A raw file holds height x stride bytes: packed lines keep it to the
    // image's own bytes.
    Reach reach = own_lines(src);
    reach.exact_pitch = src.line_bytes;
    const Lines lines = source_lines(image, src, reach);
    Descriptor buffer(src, lines, reach);
    check(without_gil([&] {
              return OVC_FileWrite(buffer.handle(), path.c_str(), OVC_FILE_RAW);
          }),
          [&] { return "OVC_FileWrite, " + path.string(); });
}

void write_tiff(const std::filesystem::path &path, const py::array &image) {
    // The writer finishes Y8 and BGR24 files only; any other format leaves
    // a partial file behind and its stream open, so it is refused here.
    const Format &y8 = format_named("y8"), &bgr24 = format_named("bgr24");
    const Format *format = has_layout(image, y8)      ? &y8
                           : has_layout(image, bgr24) ? &bgr24
                                                      : nullptr;
    if (!format)
        throw py::value_error("write_tiff takes y8 images (" + layout_text(y8) +
                              ") or bgr24 images (" + layout_text(bgr24) +
                              "), got " + array_text(image));
    const Image src = image_of(image, *format, "image");
    const Reach reach = own_lines(src);
    const Lines lines = source_lines(image, src, reach);
    Descriptor buffer(src, lines, reach);
    check(without_gil([&] { return OVC_FileWriteTiff(buffer.handle(), path.c_str()); }),
          [&] { return "OVC_FileWriteTiff, " + path.string(); });
}

// ---------------------------------------------------------------------------
// The conversion table, as OVC_Convert answers it.

// Whether OVC_Convert converts `from` into `to`, asked with empty images:
// the library checks the pair and converts nothing. A Bayer source without
// a method answers ORV_ERROR_NOT_IMPLEMENTED for the pairs it demosaics.
bool converts(const Format &from, const Format &to) {
    static uint8_t source_probe[8], destination_probe[8];
    const OFS_HANDLE source = OFS_BufferCreateImage(source_probe, 2, 0, 8, from.code);
    const OFS_HANDLE destination =
        OFS_BufferCreateImage(destination_probe, 2, 0, 8, to.code);
    const ORV_STATUS status = without_gil([&] { return OVC_Convert(source, destination); });
    OFS_BufferDestroy(source);
    OFS_BufferDestroy(destination);
    return status == ORV_OK || status == ORV_ERROR_NOT_IMPLEMENTED;
}

py::dict formats() {
    py::dict table;
    for (const Format &from : kFormats) {
        py::list destinations;
        for (const Format &to : kFormats)
            if (converts(from, to))
                destinations.append(to.name);
        py::dict entry;
        entry["code"] = from.code;
        entry["dtype"] = dtype_of(from);
        entry["channels"] = from.channels;
        entry["converts_to"] = py::tuple(destinations);
        table[from.name] = entry;
    }
    return table;
}

} // namespace

PYBIND11_MODULE(orvane, m) {
    m.doc() = "OrvaneImage for numpy: pixel-format conversion, Bayer "
              "demosaicing, field-to-frame de-interlacing, raw and TIFF files.";

    error_type = PyErr_NewExceptionWithDoc(
        "orvane.Error",
        "The library refused a call. `status` is the status number, "
        "`status_name` its name (ORV_ERROR_NOT_SUPPORTED, ...).",
        nullptr, nullptr);
    m.attr("Error") = py::reinterpret_borrow<py::object>(error_type);
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const LibraryError &error) {
            raise_library_error(error);
        }
    });

    m.def("convert", &convert, py::arg("image"), py::arg("to"), py::kw_only(),
          py::arg("source_format") = py::none(), py::arg("method") = py::none(),
          py::arg("phase") = py::none(), py::arg("out").noconvert() = py::none(),
          "Converts `image` into format `to` (a name from formats()). The "
          "source format is named by `source_format` or inferred from dtype "
          "and shape: uint8 (h, w) y8, (h, w, 2) yuv422, (h, w, 3) bgr24, "
          "(h, w, 4) bgrx32; uint16 (h, w) y16, (h, w, 3) bgr48; uint32 "
          "(h, w) rgb30. Bayer sources take `phase` ('a'-'d') and `method` "
          "('dup', 'ave' or 'med'; 'ave' when omitted). Returns a new array, "
          "or fills and returns `out`.");
    m.def("demosaic", &demosaic, py::arg("mosaic"), py::arg("phase"),
          py::arg("method") = "ave", py::arg("output") = "bgr24",
          py::arg("depth") = py::none(),
          "Demosaics a uint8 mosaic, or a uint16 one of `depth` significant "
          "bits (10, 12, 14 or 16; 16 when omitted), by `method` for colour "
          "`phase` into `output` (bgr24, bgrx32, rgbx32, rgb16 or bgr16).");
    m.def("field_to_frame", &field_to_frame, py::arg("field"), py::arg("method"),
          py::arg("parity"), py::arg("format") = py::none(),
          "Rebuilds a frame of twice the lines from `field` by `method` "
          "('linedup', 'lineave', 'bilinear' or 'median'); `parity` 'even' "
          "when the field holds the even frame lines, else 'odd'.");
    m.def(
        "median6",
        [](uint32_t x0, uint32_t x1, uint32_t x2, uint32_t x3, uint32_t x4,
           uint32_t x5) {
            py::gil_scoped_release release;
            return ORV_median6(x0, x1, x2, x3, x4, x5);
        },
        py::arg("x0"), py::arg("x1"), py::arg("x2"), py::arg("x3"),
        py::arg("x4"), py::arg("x5"),
        "The mean, rounded down, of the third and fourth smallest of six "
        "bytes (the low 8 bits of each argument).");
    m.def("write_raw", &write_raw, py::arg("path"), py::arg("image"),
          py::arg("format") = py::none(),
          "Writes the image's bytes, line after line, to `path`.");
    m.def("write_tiff", &write_tiff, py::arg("path"), py::arg("image"),
          "Writes a y8 or bgr24 image as an uncompressed big-endian TIFF "
          "file. A bgr24 file keeps B, G, R order and the first third of "
          "each line, as the library writes it.");
    m.def("formats", &formats,
          "Every format by name: its code, numpy dtype, channels (1: a "
          "(height, width) array; y12p arrays hold line bytes) and the "
          "formats OVC_Convert converts it into.");
}
