"""The orvane module against the library's own C calls, made here through
ctypes on buffers laid out by hand: odd widths, strided views, 8- and
16-bit samples, the calls that read or write past the image, errors, and
two threads at once. The arithmetic itself is the C tests' business."""
import ctypes
import mmap
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import orvane

LIB = ctypes.CDLL("liborvaneimage.so.1")  # the module has loaded both
BUF = ctypes.CDLL("liborvanebuffer.so.1")
LIBC = ctypes.CDLL(None, use_errno=True)
BUF.OFS_BufferCreateImage.restype = ctypes.c_size_t
BUF.OFS_BufferCreateImage.argtypes = [ctypes.c_void_p] + [ctypes.c_uint32] * 4
BUF.OFS_BufferParameterSet.argtypes = [ctypes.c_size_t, ctypes.c_uint32, ctypes.c_void_p]
BUF.OFS_BufferDestroy.argtypes = [ctypes.c_size_t]
FORMATS = orvane.formats()
METHODS = {"dup": 0x109, "ave": 0x209, "med": 0x309}
PHASES = {"a": 0x10A, "b": 0x20A, "c": 0x30A, "d": 0x40A}
FIELD_METHODS = {"linedup": 0, "lineave": 1, "bilinear": 2, "median": 3}
rng = np.random.default_rng(17)


def random(shape, dtype=np.uint8):
    return rng.integers(0, np.iinfo(dtype).max, shape, dtype=dtype, endpoint=True)


def memory(array, tail=64):
    """The array's bytes, packed, followed by `tail` zero bytes."""
    return np.concatenate([np.ascontiguousarray(array).view(np.uint8).ravel(),
                           np.zeros(tail, np.uint8)])


GUARDED_MAPPINGS = []  # mapped for the rest of the run: arrays keep pointing into them


def at_guard_page(array):
    """A copy of `array` whose last byte is the last before a page no
    access may touch, so a read past it kills the process."""
    page = mmap.PAGESIZE
    pages = array.nbytes // page + 2
    memory_map = mmap.mmap(-1, pages * page)
    start = ctypes.addressof(ctypes.c_char.from_buffer(memory_map))
    assert LIBC.mprotect(ctypes.c_void_p(start + (pages - 1) * page), page, 0) == 0
    GUARDED_MAPPINGS.append(memory_map)
    guarded = np.frombuffer(memory_map, array.dtype, array.size,
                            (pages - 1) * page - array.nbytes).reshape(array.shape)
    guarded[...] = array
    return guarded


def c_call(routine, buffers, *args):
    """Calls `routine` on descriptors of (memory, width, height, stride,
    format[, method, phase]) and returns its status."""
    handles = []
    for mem, width, height, stride, fmt, *bayer in buffers:
        handle = BUF.OFS_BufferCreateImage(mem.ctypes.data, width, height, stride,
                                           FORMATS[fmt]["code"])
        for parameter, value in zip((9, 10), bayer):
            BUF.OFS_BufferParameterSet(handle, parameter, ctypes.byref(ctypes.c_uint32(value)))
        handles.append(ctypes.c_size_t(handle))
    status = getattr(LIB, routine)(*handles, *[a if isinstance(a, ctypes.c_char_p)
                                               else ctypes.c_uint32(a) for a in args])
    for handle in handles:
        BUF.OFS_BufferDestroy(handle)
    return status


def c_convert(image, width, fmt, to, shape, bayer=()):
    """OVC_Convert of the packed image (zeros after it) into zeros of `shape` and `to`'s dtype."""
    dst = np.zeros(shape, FORMATS[to]["dtype"])
    dst_mem = memory(dst, tail=2 * dst[0].nbytes + 64)
    src_line = image[0].nbytes if image.shape[0] else 0
    assert c_call("OVC_Convert", [(memory(image, tail=src_line + 64), width, image.shape[0],
                                   src_line, fmt, *bayer),
                                  (dst_mem, width, shape[0], dst[0].nbytes, to)]) == 0
    return dst_mem[:dst.nbytes].view(dst.dtype).reshape(shape)


def c_convert_by_lines(image, width, fmt, to, shape):
    """Each line alone: odd-width pairs read and write one pixel past it, into zeros."""
    lines = [c_convert(image[y:y + 1], width, fmt, to, (1,) + shape[1:]) for y in range(shape[0])]
    return np.concatenate(lines)


# What an unnamed source is taken to be, by dtype and shape.
INFERRED = {"y8", "y16", "bgrx32", "bgr48", "rgb30", "bgr24", "yuv422"}
CONVERSIONS = [  # source, its format, destination, reference
    (random((3, 5)), "y8", "bgrx32", c_convert),
    (random((4, 7), np.uint16) >> 4, "y12", "bgr24", c_convert),
    (random((3, 5, 3)), "bgr24", "rgb30", c_convert),
    (random((3, 5, 3), np.uint16), "bgr48", "bgr24", c_convert),
    (random((3, 5)), "y8", "y8", c_convert),
    (random((3, 5), np.uint32), "rgb30", "rgb48", c_convert),  # reads a pixel past each line
    (random((3, 5, 2)), "yuv422", "bgrx32", c_convert_by_lines),  # odd: a pixel past
    (random((4, 6, 2)), "yuv422", "rgb24", c_convert),
    (random((3, 5)), "y12p", "bgr24", c_convert_by_lines),  # 3 pixels, a pair past
    (random((3, 6)), "y12p", "rgb16", c_convert),
]


@pytest.mark.parametrize("image, name, to, reference", CONVERSIONS)
def test_convert_matches_the_library(image, name, to, reference):
    fmt = None if name in INFERRED else name
    result = orvane.convert(image, to, source_format=fmt)
    width = image.shape[1] * 2 // 3 if name == "y12p" else image.shape[1]
    np.testing.assert_array_equal(result, reference(image, width, name, to, result.shape))
    assert result.flags.c_contiguous
    # A strided view and one with a reversed inner axis give the same (RGB30: see below).
    wide = np.zeros((image.shape[0] + 2, image.shape[1] + 3) + image.shape[2:], image.dtype)
    wide[1:-1, 1:-2] = image
    strided = image if to == "rgb48" else wide[1:-1, 1:-2]
    np.testing.assert_array_equal(orvane.convert(strided, to, source_format=fmt), result)
    if image.ndim == 3:
        flipped = np.ascontiguousarray(image[..., ::-1])[..., ::-1]
        np.testing.assert_array_equal(orvane.convert(flipped, to, source_format=fmt), result)
    # So does writing into `out`, a view of a larger array whose other elements keep
    # their value (equal strides included: Y8 into Y8), X bytes too unless grey writes them.
    canvas = np.full((result.shape[0] + 1, result.shape[1] + 3) + result.shape[2:], 0xAA, result.dtype)
    out = canvas[1:, 1:-2]
    assert orvane.convert(strided, to, source_format=fmt, out=out) is out
    expected = np.full_like(canvas, 0xAA)
    expected[1:, 1:-2] = result
    if to.endswith("x32") and name not in ("y8", "y16", "y10", "y12", "y14", "y12p"):
        expected[1:, 1:-2, 0 if to.startswith("x") else 3] = 0xAA
    np.testing.assert_array_equal(canvas, expected)


def test_rgb30_to_rgb48_reads_the_next_pixel_of_a_larger_array_in_place():
    wide = random((3, 6), np.uint32)
    result = orvane.convert(wide[:, :5], "rgb48")
    reference = c_convert(wide, 5, "rgb30", "rgb48", (3, 6, 3))  # stride of 6 pixels
    np.testing.assert_array_equal(result, reference[:, :5])


@pytest.mark.parametrize("shape, dtype, depth, method, phase, output", [
    ((5, 7), np.uint8, None, "ave", "a", "bgr24"),  # odd width reads past each line
    ((6, 8), np.uint8, None, "med", "c", "rgb16"),  # two samples past the line below
    ((1, 6), np.uint8, None, "ave", "b", "bgrx32"),  # one line reads and writes two
    ((1, 5), np.uint8, None, "dup", "d", "rgbx32"),
    ((4, 9), np.uint16, 12, "med", "b", "bgrx32"),
    ((4, 6), np.uint16, None, "dup", "a", "bgr24"),
])
def test_demosaic_matches_the_library(shape, dtype, depth, method, phase, output):
    mosaic = random(shape, dtype) >> (16 - depth if depth else 0)
    result = orvane.demosaic(mosaic, phase, method, output, depth)
    fmt = "bay%d" % (depth or 8 * mosaic.itemsize)
    channels = FORMATS[output]["channels"]
    reference = c_convert(mosaic, shape[1], fmt, output,
                          (max(shape[0], 2), shape[1]) + ((channels,) if channels > 1 else ()),
                          (METHODS[method], PHASES[phase]))
    np.testing.assert_array_equal(result, reference[:shape[0]])  # X bytes 0 in both
    via_convert = orvane.convert(mosaic, output, source_format=fmt, method=method, phase=phase)
    np.testing.assert_array_equal(via_convert, result)


@pytest.mark.parametrize("shape, fmt, method, parity", [
    ((4, 1), None, "median", "even"),  # a one-pixel Y8 line reads two bytes
    ((3, 1, 3), None, "bilinear", "odd"),  # a one-pixel BGR24 line reads six
    ((3, 4, 4), None, "lineave", "even"),
    ((2, 6, 2), None, "bilinear", "odd"),
    ((3, 5), "y16", "linedup", "even"),
])
def test_field_to_frame_matches_the_library(shape, fmt, method, parity):
    field = random(shape, np.uint16 if fmt == "y16" else np.uint8)
    frame = orvane.field_to_frame(field, method, parity, fmt)
    name = fmt or {2: "y8", 3: {2: "yuv422", 3: "bgr24", 4: "bgrx32"}.get(shape[-1])}[len(shape)]
    line = field[0].nbytes
    reference = np.zeros((2 * shape[0],) + shape[1:], field.dtype)
    assert c_call("OVC_FieldToFrame", [(memory(field, tail=8), shape[1], shape[0], line, name),
                                       (reference, shape[1], 2 * shape[0], line, name)],
                  FIELD_METHODS[method], parity == "even") == 0
    np.testing.assert_array_equal(frame, reference)
    # Given a field that ends at the edge of mapped memory, the module finds
    # the room the library reads past its lines elsewhere.
    np.testing.assert_array_equal(orvane.field_to_frame(at_guard_page(field), method, parity, fmt),
                                  frame)
    interlaced = np.zeros_like(reference)
    interlaced[::2] = field
    np.testing.assert_array_equal(orvane.field_to_frame(interlaced[::2], method, parity, fmt), frame)


def test_median6_matches_the_library():
    for values in [(1, 2, 3, 4, 5, 6), (255, 0, 255, 0, 7, 9), (0x1FF, 3, 3, 3, 0x100, 0)]:
        assert orvane.median6(*values) == LIB.ORV_median6(*values)


@pytest.mark.parametrize("image, fmt", [(random((3, 5)), None), (random((3, 5, 3)), None),
                                         (random((2, 4), np.uint16), "bay12")])
def test_files_hold_what_the_library_writes(tmp_path, image, fmt):
    name = fmt or ("y8" if image.ndim == 2 else "bgr24")
    writers = [("raw", lambda p, a: orvane.write_raw(p, a, fmt), "OVC_FileWrite", [2])]
    if fmt is None:
        writers.append(("tif", orvane.write_tiff, "OVC_FileWriteTiff", []))
    wide = np.zeros((image.shape[0], image.shape[1] + 2) + image.shape[2:], image.dtype)
    wide[:, 1:-1] = image
    for ext, write, routine, args in writers:
        ours, theirs = tmp_path / ("ours." + ext), tmp_path / ("theirs." + ext)
        write(ours, wide[:, 1:-1])
        buffer = (memory(image), image.shape[1], image.shape[0], image[0].nbytes, name)
        assert c_call(routine, [buffer], ctypes.c_char_p(bytes(theirs)), *args) == 0
        assert ours.read_bytes() == theirs.read_bytes()


@pytest.mark.parametrize("call, message", [
    (lambda: orvane.convert(np.zeros((2, 2), np.int64), "y8"), r"y8: uint8 arrays of shape \(height, width\)"),
    (lambda: orvane.convert(np.zeros((2, 2, 3), np.uint16), "y8", source_format="bgr24"),
     r"bgr24 images are uint8 arrays of shape \(height, width, 3\), got uint16 of shape \(2, 2, 3\)"),
    (lambda: orvane.convert(np.zeros((2, 2), np.uint8), "bgr25"), "a format must be 'y8', "),
    (lambda: orvane.convert(np.zeros((2, 2), np.uint8), "bgr24", phase="a"), "Bayer sources only"),
    (lambda: orvane.convert(np.zeros((2, 4), np.uint8), "bgr24", source_format="y12p"), "y12p line"),
    (lambda: orvane.convert(np.zeros((2, 2), np.uint8), "bgr24", out=np.zeros((2, 2, 4), np.uint8)),
     r"out: bgr24 results of 2 x 2 pixels are uint8 arrays of shape \(height, width, 3\)"),
    (lambda: orvane.demosaic(np.zeros((2, 2), np.uint8), "e"), "phase must be 'a', 'b', 'c' or 'd'"),
    (lambda: orvane.demosaic(np.zeros((2, 1), np.uint8), "a"), "at least 2 columns"),
    (lambda: orvane.demosaic(np.zeros((2, 2), np.uint16), "a", depth=9), "depth must be 10, 12, 14 or 16"),
    (lambda: orvane.field_to_frame(np.zeros((2, 2), np.uint8), "median", "top"), "parity must be"),
    (lambda: orvane.write_tiff("x.tif", np.zeros((2, 2), np.uint16)), "write_tiff takes y8 images"),
])
def test_bad_arguments_say_what_was_expected(call, message):
    with pytest.raises(ValueError, match=message):
        call()


@pytest.mark.parametrize("call, status, name", [
    (lambda: orvane.convert(np.zeros((2, 2), np.uint16), "y10"), 10, "ORV_ERROR_NOT_SUPPORTED"),
    (lambda: orvane.demosaic(np.zeros((2, 2), np.uint8), "b", "dup", "bgr16"), 3, "ORV_ERROR_NOT_IMPLEMENTED"),
    (lambda: orvane.field_to_frame(np.zeros((0, 4), np.uint8), "linedup", "odd"), 8, "ORV_ERROR_BAD_PARAM"),
    (lambda: orvane.field_to_frame(np.zeros((2, 4), np.uint16), "median", "odd"), 10, "ORV_ERROR_NOT_SUPPORTED"),
    (lambda: orvane.write_raw("/nonexistent/x.raw", np.zeros((2, 2), np.uint8)), 5, "ORV_ERROR_OPEN_FAILED"),
])
def test_library_refusals_raise_error_with_the_status(call, status, name):
    with pytest.raises(orvane.Error, match=f"{name} \\({status}\\)") as raised:
        call()
    assert (raised.value.status, raised.value.status_name) == (status, name)


def test_formats_lists_what_convert_accepts():
    samples = {n: np.zeros((2, 3 if n == "y12p" else 2) + ((f["channels"],) if f["channels"] > 1 else ()),
                           f["dtype"]) for n, f in FORMATS.items() if not n.startswith("bay")}
    for source, image in samples.items():
        for to in FORMATS:
            try:
                orvane.convert(image, to, source_format=source)
                assert to in FORMATS[source]["converts_to"], (source, to)
            except orvane.Error:
                assert to not in FORMATS[source]["converts_to"], (source, to)
    assert FORMATS["bay8"]["converts_to"] == ("rgb16", "bgrx32", "bgr16", "rgbx32", "bgr24")


def test_two_threads_convert_at_once():
    images = [random((256, 301, 3)) for _ in range(2)] * 40
    with ThreadPoolExecutor(2) as pool:
        results = list(pool.map(lambda image: orvane.convert(image, "bgrx32"), images))
    for image, result in zip(images, results):
        np.testing.assert_array_equal(result, orvane.convert(image, "bgrx32"))
