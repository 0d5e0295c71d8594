#!/usr/bin/env python3
"""Checks of scripts/bench_table on made-up benchmark reports: which time
stands for a row, which peer is fastest, and how the README section is
replaced. Nothing is built or timed."""
import importlib.machinery
import importlib.util
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True  # no __pycache__ beside the script
SCRIPT = Path(__file__).resolve().parent.parent / "scripts" / "bench_table"
loader = importlib.machinery.SourceFileLoader("bench_table", str(SCRIPT))
bench_table = importlib.util.module_from_spec(
    importlib.util.spec_from_loader("bench_table", loader))
loader.exec_module(bench_table)

PIXELS = 1_000_000


def entry(name, real_time, family, run_type="iteration", aggregate=None, unit="ms", **extra):
    """One benchmark of a report as Google Benchmark writes it."""
    fields = {"run_name": name + "/real_time", "family_index": family, "run_type": run_type,
              "repetitions": 3, "real_time": real_time, "time_unit": unit}
    if aggregate:
        fields["aggregate_name"] = aggregate
    fields.update(extra)
    return fields


def report(*benchmarks, level="avx512"):
    context = {"pixels_per_image": str(PIXELS), "image": "1000 x 1000",
               "orvane_instruction_set": level}
    return {"context": context, "benchmarks": list(benchmarks)}


class Summarise(unittest.TestCase):
    def test_rows(self):
        cases = [
            ("the fastest repetition counts, not the mean or a tiny stddev",
             [entry("Convert/A/orvane", 2.0, 0), entry("Convert/A/orvane", 1.0, 0),
              entry("Convert/A/orvane", 1.5, 0, "aggregate", "mean"),
              entry("Convert/A/orvane", 0.01, 0, "aggregate", "stddev"),
              entry("Convert/A/libyuv_X", 4.0, 1)],
             {"Convert/A": (1000.0, "libyuv_X", 250.0, 0.25)}),
            ("a benchmark's fastest single call counts over its repetitions' means",
             [entry("Convert/G/orvane", 3.0, 0, fastest_call=0.001),
              entry("Convert/G/orvane", 2.0, 0, fastest_call=0.002),
              entry("Convert/G/libyuv_X", 4.0, 1, fastest_call=0.004)],
             {"Convert/G": (1000.0, "libyuv_X", 250.0, 0.25)}),
            ("the fastest peer wins, whatever the listing order; units are converted",
             [entry("Convert/B/orvane", 2.0, 0), entry("Convert/B/opencv_S", 4.0, 1),
              entry("Convert/B/libyuv_F", 1000.0, 2, unit="us")],
             {"Convert/B": (500.0, "libyuv_F", 1000.0, 2.0)}),
            ("a failed peer is no peer, even with a time of zero",
             [entry("Convert/C/orvane", 1.0, 0),
              entry("Convert/C/opencv_S", 0.0, 1, error_occurred=True)],
             {"Convert/C": (1000.0, None, None, None)}),
            ("a failed library leaves the row without ratio",
             [entry("Convert/D/orvane", 0.0, 0, error_occurred=True),
              entry("Convert/D/opencv_S", 1.0, 1)],
             {"Convert/D": (None, "opencv_S", 1000.0, None)}),
            ("rows keep the registration order of an interleaved run",
             [entry("FieldToFrame/F/orvane", 1.0, 5), entry("Convert/E/orvane", 1.0, 3)],
             {"Convert/E": (1000.0, None, None, None),
              "FieldToFrame/F": (1000.0, None, None, None)}),
        ]
        for description, benchmarks, expected in cases:
            with self.subTest(description):
                summary = bench_table.summarise(report(*benchmarks))
                self.assertEqual(list(summary), list(expected))
                for row, values in expected.items():
                    for got, want in zip(summary[row], values):
                        if isinstance(want, float):
                            self.assertAlmostEqual(got, want)
                        else:
                            self.assertEqual(got, want)


class Render(unittest.TestCase):
    def test_second_run_columns_follow_the_rows_of_the_first(self):
        first = report(entry("Convert/A/orvane", 1.0, 0), entry("Convert/A/opencv_S", 2.0, 1),
                       entry("Convert/B/orvane", 1.0, 2))
        second = report(entry("Convert/B/orvane", 4.0, 2), level="avx2")
        section = bench_table.render([first, second], "a CPU", "2000-01-01")
        table = [line for line in section.splitlines() if line.startswith("|")]
        self.assertIn("orvane Mpx/s (avx512) | Ratio (avx512) | orvane Mpx/s (avx2)", table[0])
        self.assertEqual(table[2], "| `Convert/A` | `opencv_S` | 500 | 1000 | 0.50 | — | — |")
        self.assertEqual(table[3], "| `Convert/B` | — | — | 1000 | — | 250 | — |")


class ReplaceSection(unittest.TestCase):
    def test_markers(self):
        begin, end = bench_table.BEGIN, bench_table.END
        text = f"intro\n{begin}\nold\n{end}\nafter\n"
        replaced = bench_table.replace_section(text, "new")
        self.assertEqual(replaced, f"intro\n{begin}\nnew\n{end}\nafter\n")
        self.assertEqual(bench_table.replace_section(replaced, "new"), replaced)
        for broken in ["no markers", f"{begin} only", f"{end}\n{begin}"]:
            with self.subTest(broken), self.assertRaises(ValueError):
                bench_table.replace_section(broken, "new")


if __name__ == "__main__":
    unittest.main()
