#!/usr/bin/env python3
"""Shows that the golden table notices: changes one bit of a constant at a time and counts red rows.

    tools/golden_mutations.py [TREE]

Works on a copy of the sources in TREE (out/mutated unless told otherwise): builds tvrng there once
for each change and compares what it draws with the table. Fails when a change turns no row red.
Takes about a minute of one core for each change.
"""

import pathlib
import shutil
import subprocess
import sys

import golden_table

ROOT = golden_table.ROOT

# What is changed, the file, the constant and the same with one bit flipped.
MUTATIONS = [
    ("matrix of the twister", "tfl_rng/kernels/mt19937.h", "0x9908b0df", "0x9908b0de"),
    ("mask of the twister for vectors", "tfl_rng/kernels/dsfmt19937.h", "0x000ffafffffffb3f",
     "0x000ffafffffffb3e"),
    ("multiplier of mrg32k3a", "tfl_rng/kernels/mrg32k3a_reference.h", "kA23n = 1370589",
     "kA23n = 1370588"),
    ("scale of mrg32k3a, its last bit", "tfl_rng/kernels/mrg32k3a_reference.h",
     "2.328306549295727688e-10", "2.3283065492957274e-10"),
    ("multiplier of philox4x32_10", "tfl_rng/kernels/philox4x32.h", "0xD2511F53", "0xD2511F52"),
    ("parity word of threefry4x64_20", "tfl_rng/kernels/threefry4x64.h", "0x1BD11BDAA9FC1A22",
     "0x1BD11BDAA9FC1A23"),
    ("mixing of swb2712", "tfl_rng/kernels/swb2712_reference.h", "0xc2b2ae35", "0xc2b2ae34"),
    ("default word of the minimal standard generator", "tfl_rng/minimal_standard.h", "1144108930",
     "1144108931"),
    ("offset of the vector conversion to doubles", "tfl_rng/kernels/open52-inl.h",
     "1 - 0x1p-53", "1 - 0x1p-52"),
    ("a far-tail coefficient of the normal quantile, its last bit",
     "tfl_rng/normal_quantile_coefficients.h", "2.01033439929228813265e-7",
     "2.010334399292288e-07"),
    ("an edge of the stream's ziggurat, its last bit", "rng/ziggurat_tables.cpp",
     "0.936429340286575", "0.9364293402865749"),
    ("a height of the stream's ziggurat, its last bit", "rng/ziggurat_tables.cpp",
     "0.977101701267673", "0.9771017012676732"),
    ("an edge of the cores' ziggurat, its last bit", "tfl_rng/core_ziggurat_tables.h",
     "0x1.b8d0be3fdf702p-3", "0x1.b8d0be3fdf703p-3"),
    ("a table value of the logarithm, a low bit", "tfl_rng/elementary_tables.h",
     "-0x1.800f9f3dc9000p-2", "-0x1.800f9f3dc9001p-2"),
    ("tail of the 128-layer ziggurat, its last bit", "tfl_rng/ziggurat128.h", "3.442619855899;",
     "3.4426198558990007;"),
]


def red_rows(tree):
    subprocess.run(["ninja", "--quiet", "-C", tree / "build", "tvrng"], check=True)
    drawn = subprocess.run([tree / "build/bin/tvrng", "doctor", "--table"], check=True, text=True,
                           capture_output=True).stdout
    golden = golden_table.read(golden_table.TABLE.read_text())[2]
    return golden_table.compare(golden, golden_table.read(drawn)[2])[2]


def main():
    tree = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "out/mutated").resolve()
    if not tree.exists():
        shutil.copytree(ROOT, tree, ignore=shutil.ignore_patterns("build*", "out", ".git"))
    subprocess.run(["cmake", "--preset", "release", "-DTV_TESTS=OFF"], cwd=tree, check=True,
                   stdout=subprocess.DEVNULL)
    if red_rows(tree):
        sys.exit("rows are red before anything is changed")
    unnoticed = 0
    for what, file, constant, changed in MUTATIONS:
        path = tree / file
        text = path.read_text()
        if text.count(constant) != 1:
            sys.exit(f"{file}: {constant} stands there {text.count(constant)} times")
        path.write_text(text.replace(constant, changed))
        try:
            rows = red_rows(tree)
        finally:
            path.write_text(text)
        unnoticed += not rows
        example = " ".join(rows[0]) if rows else "NOTHING"
        print(f"| {what} | `{constant}` to `{changed}` | {len(rows)} | {example} |", flush=True)
    return 1 if unnoticed else 0


if __name__ == "__main__":
    sys.exit(main())
