#!/usr/bin/python3
"""What the orvane Python module adds to the C call it makes.

Times orvane.convert of a 1920 x 1080 BGR24 image into a BGRX32 `out`
array (no padding copy: both arrays are used in place) against the same
OVC_Convert called on the same memory through ctypes, with descriptors made
once. The two alternate call by call and the fastest of each counts, so a
loaded machine slows them less than it would their means. ctypes' own cost
of a call is shown beside it: the C column includes it.

  PYTHONPATH=build/python /usr/bin/python3 bench/python_overhead.py [--calls N]
"""
import argparse
import ctypes
import time

import numpy as np

import orvane


def fastest(call, calls):
    best = float("inf")
    for _ in range(calls):
        start = time.perf_counter_ns()
        call()
        best = min(best, time.perf_counter_ns() - start)
    return best / 1000.0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--calls", type=int, default=2000, help="calls of each kind")
    calls = parser.parse_args().calls

    lib = ctypes.CDLL("liborvaneimage.so.1")  # loaded by the module already
    buffers = ctypes.CDLL("liborvanebuffer.so.1")
    buffers.OFS_BufferCreateImage.restype = ctypes.c_size_t
    buffers.OFS_BufferCreateImage.argtypes = [ctypes.c_void_p] + [ctypes.c_uint32] * 4
    lib.OVC_Convert.argtypes = [ctypes.c_size_t, ctypes.c_size_t]
    lib.OVC_InstructionSet.restype = ctypes.c_char_p

    height, width = 1080, 1920
    source = np.random.default_rng(1).integers(0, 256, (height, width, 3), dtype=np.uint8)
    out = np.zeros((height, width, 4), np.uint8)
    codes = {name: entry["code"] for name, entry in orvane.formats().items()}
    c_source = buffers.OFS_BufferCreateImage(source.ctypes.data, width, height, width * 3,
                                             codes["bgr24"])
    c_destination = buffers.OFS_BufferCreateImage(out.ctypes.data, width, height, width * 4,
                                                  codes["bgrx32"])

    def module_call():
        orvane.convert(source, "bgrx32", out=out)

    def c_call():
        lib.OVC_Convert(c_source, c_destination)

    module_us, c_us = float("inf"), float("inf")
    for _ in range(calls // 50):  # alternate in rounds of 50 calls
        module_us = min(module_us, fastest(module_call, 50))
        c_us = min(c_us, fastest(c_call, 50))
    ctypes_us = fastest(lib.OVC_InstructionSet, calls)
    print(f"{width} x {height} BGR24 -> BGRX32 into out, fastest of {calls} calls, "
          f"kernels {lib.OVC_InstructionSet().decode()}:")
    print(f"  OVC_Convert through ctypes  {c_us:9.1f} us (ctypes alone: {ctypes_us:.1f} us a call)")
    print(f"  orvane.convert              {module_us:9.1f} us")
    print(f"  ratio {module_us / c_us:.3f}: the module adds {module_us - c_us:.1f} us "
          f"({100 * (module_us - c_us) / c_us:+.1f} %)")


if __name__ == "__main__":
    main()
