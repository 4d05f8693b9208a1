"""Turns the benchmark's results into build/bench/report.md and plot.png. Exit code 1 if a bound is missed.
usage: bench-report.py SETUP SECOND-SETUP PLANTED-TEST-FAILED BENCH-FOLDER"""

import collections
import io
import lzma
import os
import re
import subprocess
import sys
import tarfile
from statistics import median

FILES = 2000
SHORT, LONG = 10000, 100000
IMPORTS = {"KERNEL32.dll", "USER32.dll", "GDI32.dll", "ADVAPI32.dll", "SHELL32.dll", "ole32.dll", "msvcrt.dll"}
FIGURES = {
    "install-masks": ("files", "install by masks"),
    "install-records": ("files", "install, a record a file"),
    "removal-masks": ("files", "removal by masks"),
    "removal-records": ("files", "removal, a record a file"),
    "lines-install": ("lines", "list at install"),
    "lines-removal": ("lines", "list at removal"),
}
FILE_FIGURES = list(FIGURES)[:4]

DEFINITIONS = """\
- **Files**: 2,000 of 80 KiB, fifty a folder. The ratio is that of the engine's own functions (`ProcessPackageList`,
  `RemoveLoggedFiles`), called in one process, to a loop over the same files of just the calls that are demanded: a search
  for each record, a look at each source and target, `CopyFileW`; or a search, a look at each file's attributes,
  `DeleteFileW` and then `RemoveDirectoryW`. The list is worked through in slices of 200 files and the loop takes its turn
  after each, in alternating order; the ratio is the median of all slices' ratios, ten in each run. So neither the start
  of a process nor registry, links and pauses are in it.
- **Bare loops**: the same against `CopyFileW`, or `DeleteFileW` and `RemoveDirectoryW`, alone. An engine that replaces
  whatever stands at a target and takes any name for a mask can't come to that, so this has no bound.
- **Another installer**: one of the same files by NSIS, 64-bit, without compression and pages, in turns with `setup.exe
  -install -s` and its `LumUnInst.exe`. An install is timed from the program's start to the end of all that it started.
  A removal is timed from the first vanished file to the last, so that its pauses aren't in it; the other's is one sweep
  of a folder, which looks at no list. The ratio is the median of all rounds.
- **The download**: from its start to the end of all that it started, in turns with `setup.exe -install -s` of the same
  files, unpacked. The list is what `pkgtool list` writes: a record a file. `pkgtool verify` then takes turns with a
  windowed program that reads both copies.
- **Whole programs**: `setup.exe -install -s` and the product's `-regonly`, `LumUnInst.exe` until its second stage has
  ended, and a windowed program with the bare loop. The same with a package of no files gives the fixed part: registry,
  links, the product's start, and a removal's pauses. Net is the difference of the two.
- **Lines**: every second line a remark, the others records that find no file; the counterpart is `fgetws` and
  `FindFirstFileW`. The work is the ratio of a long list's time to a short one's, measured in turns.
- **Memory**: `PeakWorkingSetSize`, which Wine fills with the kernel's own peak (VmHWM), the mapped system libraries
  included. The empty program imports the same libraries by one function each, and waits. The wizard is held against
  an empty program that shows an empty window, since the first window brings the display's libraries with it.
- **Size**: the sections of `size -A` but `.rsrc`. KB and MB are 1,024 and 1,048,576 bytes.
"""


class Report:
    def __init__(self, results):
        self.results = results
        self.missed = False
        self.rows = []

    def pairs(self, name, size):
        pairs = self.results[name, size]
        if not pairs:
            sys.exit(f"bench-report.py: no result for {name} of {size}")
        return pairs

    def ratio(self, name, size=FILES):
        return median(program / plain for program, plain in self.pairs(name, size))

    def program(self, name, size):
        return median(program for program, _ in self.pairs(name, size))

    def plain(self, name, size):
        return median(plain for _, plain in self.pairs(name, size))

    def above(self, name, size):
        return median(program - plain for program, plain in self.pairs(name, size)) / 2**20

    def hold(self, what, bound, measured, met):
        self.missed |= not met
        self.rows.append(f"| {what} | {bound} | {measured} | {'met' if met else '**missed**'} |")

    def most(self, what, bound, measured, unit="", digits=2):
        self.hold(what, f"at most {bound}{unit}", f"{measured:.{digits}f}{unit}", measured <= bound)


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def hold_files(report):
    for name in FILE_FIGURES:
        report.most(f"{FIGURES[name][1]}, to the demanded calls", 1.05, report.ratio(name + "-demanded-slice"), digits=3)
    for name, bound in zip(FILE_FIGURES, (0.85, 1.00, 0.80, 1.25)):
        report.most(f"{FIGURES[name][1]}, to another installer", bound, report.ratio("other-" + name))


def hold_lines(report):
    for name in ("lines-install", "lines-removal"):
        work = median(long[0] / short[0] for long, short in zip(report.pairs(name, LONG), report.pairs(name, SHORT)))
        report.most(f"{FIGURES[name][1]}, 100,000 lines to 10,000", 11, work)
    peaks = [report.program("peak-list", size) / 2**20 for size in (SHORT, LONG)]
    # The kernel counts whole pages, and not always the same ones: runs of one list differ by as much.
    report.hold("peak working set of `setup.exe`, 100,000 lines and 10,000", "the same (0.25 MB)",
                f"{peaks[1]:.2f} and {peaks[0]:.2f} MB", abs(peaks[1] - peaks[0]) <= 0.25)


def hold_memory(report):
    report.most("peak working set of a silent install above the empty program's", 6, report.above("peak-silent", 100), " MB")
    report.most("peak working set of the wizard's first page above an empty window's", 1,
                report.above("peak-page-to-window", 100), " MB")


def hold_same(report, what, first, second):
    same = open(first, "rb").read() == open(second, "rb").read()
    report.hold(f"{what} of two builds in two folders", "byte-identical", "identical" if same else "different", same)


def hold_executable(report, setup, second):
    sections = dict(re.findall(r"^(\.\S+)\s+(\d+)", output_of("x86_64-w64-mingw32-size", "-A", setup), re.M))
    size = sum(int(size) for name, size in sections.items() if name != ".rsrc") / 1024
    report.most("code and data of `setup.exe`", 200, size, " KB", 1)
    imports = set(re.findall(r"DLL Name: (\S+)", output_of("x86_64-w64-mingw32-objdump", "-p", setup)))
    report.hold("imports", "protected libraries only", ", ".join(sorted(imports)), imports <= IMPORTS)
    hold_same(report, "`setup.exe`", setup, second)
    return sections


# As small as these files get in one archive.
def solid_archive(package):
    with io.BytesIO() as archive:
        with tarfile.open(fileobj=archive, mode="w") as files:
            files.add(package, "")
        return len(lzma.compress(archive.getvalue(), lzma.FORMAT_ALONE, preset=9 | lzma.PRESET_EXTREME))


def hold_download(report, folder):
    above = (os.path.getsize(f"{folder}/sample/Lumacap8Setup.exe") - solid_archive("build/package")) / 1024
    report.most("`Lumacap8Setup.exe` above a solid LZMA archive of its files", 120, above, " KB", 1)
    hold_same(report, "`Lumacap8Setup.exe`", f"{folder}/sample/Lumacap8Setup.exe", f"{folder}/again/Lumacap8Setup.exe")
    report.most("unpacking and installing, to installing", 2.5, report.ratio("download"))
    report.most("verifying, to reading both copies", 1.5, report.ratio("verify"))


def whole_programs(report):
    lines = ["| | program | plain | net ratio |", "|---|---|---|---|"]
    for what, name in (("install", "setup"), ("removal", "uninstall")):
        full, none = report.pairs(f"{name}-files", FILES), report.pairs(f"{name}-none", 0)
        net = median((f[0] - n[0]) / (f[1] - n[1]) for f, n in zip(full, none))
        for label, size, text in (("files", FILES, f"{net:.2f}"), ("none", 0, "")):
            program, plain = (part(f"{name}-{label}", size) / 1000 for part in (report.program, report.plain))
            lines.append(f"| {what} of {size:,} files | {program:.0f} ms | {plain:.0f} ms | {text} |")
    return lines


def calls(report):
    lines = ["| call | a call | to |", "|---|---|---|"]
    for name, call, to in (("copy", "`CopyFileW`", ""), ("delete", "`DeleteFileW`", ""),
                           ("find", "`FindFirstFileW` and `FindClose`", "`CopyFileW`"),
                           ("find-to-delete", "the same", "`DeleteFileW`"),
                           ("attributes", "`GetFileAttributesW` of a file", "`CopyFileW`"),
                           ("attributes-of-missing", "the same where none is", "`CopyFileW`"),
                           ("write-attributes", "`SetFileAttributesW`", "`DeleteFileW`")):
        share = f"{report.ratio('call-' + name):.2f} {to}" if to else ""
        lines.append(f"| {call} | {report.program('call-' + name, FILES):.0f} us | {share} |")
    return lines


def write_report(report, sections, folder):
    spread = ["| all 2,000 files | seconds | of the other | lowest ratio | median | highest |", "|---|---|---|---|---|---|"]
    for name in FILE_FIGURES:
        for key, other in ((name + "-demanded", "the demanded calls"), (name, "a bare loop"), ("other-" + name, "another installer")):
            ratios = sorted(program / plain for program, plain in report.pairs(key, FILES))
            spread.append(f"| {FIGURES[name][1]}, to {other} | {report.program(key, FILES) / 1e6:.2f} | "
                          f"{report.plain(key, FILES) / 1e6:.2f} | {ratios[0]:.2f} | {median(ratios):.2f} | {ratios[-1]:.2f} |")
    memory = [f"- {what}: {report.program(name, 100) / 2**20:.1f} MB, {report.above(name, 100):.1f} MB above the empty program"
              for what, name in (("silent install for all users", "peak-silent"),
                                 ("silent portable install", "peak-portable"), ("wizard, first page", "peak-page"))]
    sizes = [f"- `{name}`: {int(size) / 1024:.1f} KB" for name, size in sections.items() if int(size)]
    text = ["# Benchmark", "", "| What | Bound | Measured | |", "|---|---|---|---|", *report.rows, "",
            "![Time by files and by lines](plot.png)", "", "## How it is measured", "", DEFINITIONS,
            "## Spread of the runs", "", *spread, "", "## Whole programs", "", *whole_programs(report), "",
            "## What the platform's calls cost", "",
            "An engine that replaces whatever stands at a target and takes any name for a mask needs these calls beside the",
            "copying or deleting: one search a record, a look at each source and target, one at each file's attributes. Under Wine",
            "the search opens a folder, and the look at a missing target reads one, since the host's names tell upper from",
            "lower case.", "", *calls(report), "", "## Peak working sets", "", *memory, "", "## Sections of setup.exe", "", *sizes, ""]
    with open(f"{folder}/report.md", "w") as file:
        file.write("\n".join(text))


def plot(report, folder):
    script = ["set terminal pngcairo size 1200,900 font 'DejaVu Sans,10'", f"set output '{folder}/plot.png'",
              "set multiplot layout 3,2", "set key left top", "set xrange [0:*]", "set yrange [0:*]", "set ylabel 'seconds'"]
    for name, (unit, title) in FIGURES.items():
        with open(f"{folder}/{name}.dat", "w") as data:
            for size in sorted(size for key, size in report.results if key == name):
                data.write(f"{size} {report.program(name, size) / 1e6} {report.plain(name, size) / 1e6}\n")
        script += [f"set title '{title}'", f"set xlabel '{unit}'",
                   f"plot '{folder}/{name}.dat' using 1:2 with linespoints title 'program', "
                   f"'' using 1:3 with linespoints title 'plain'"]
    subprocess.run(["gnuplot"], input="\n".join(script), text=True, check=True)


def main():
    setup, second, planted_failed, folder = sys.argv[1:]
    results = collections.defaultdict(list)
    for line in open(f"{folder}/results.tsv"):
        name, size, program, plain = line.split("\t")
        results[name, int(size)].append((float(program), float(plain)))
    report = Report(results)
    hold_files(report)
    hold_lines(report)
    hold_memory(report)
    sections = hold_executable(report, setup, second)
    hold_download(report, folder)
    report.hold("libraries planted beside `setup.exe`", "none loaded; the control loads them",
                "see planted.txt" if planted_failed != "0" else "none loaded", planted_failed == "0")
    plot(report, folder)
    write_report(report, sections, folder)
    print("\n".join(report.rows), f"\nReport: {folder}/report.md", sep="\n")
    return 1 if report.missed else 0


sys.exit(main())
