#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Damages sample photos and saves copies of them with plexa-cli, each twice with different bytes in new memory.

Reports: sanitizers and crashes, too much time or memory, differences between the two copies, and copies of
truncated files that are not the copies of the whole files. The same seed makes the same files."""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
KINDS = ("cut", "zeros", "flips", "lengths", "splice")
# The rest of the file is absent, or zeros as after a download that was interrupted. These formats have data
# whose end cannot be told from zeros.
TRUNCATED, UNCLEAR = KINDS[:2], ".avif .bmp .dng .ico .kdc .pbm .pgm .ppm .qtk .tga .tif .webp".split()
SUFFIXES = "jpg png tif heic hif avif gif bmp webp jp2 j2k tga ico ppm pgm pbm dng cr2 kdc qtk"
BATCH = 12


def samples(largest, suffixes):
    photos = pathlib.Path(os.environ.get("PLEXA_PHOTOS", ROOT.parent / "shared/photos"))
    folders = [ROOT / "tests/fuzz/corpus", ROOT / "resources/samples", photos]
    files = [f for folder in folders for f in sorted(folder.rglob("*")) if f.suffix.lower()[1:] in suffixes]
    # Those of hundreds of megapixels, which have their size as their name, need many seconds each.
    return [f for f in files if 0 < f.stat().st_size <= largest and not re.match(r"\d{5}x", f.name)]


def damaged(data, other, kind, percent, rng):
    """@param other  the contents of another file, for "splice" """
    at = max(1, len(data) * percent // 100)
    if kind == "cut":
        return data[:at]
    if kind == "zeros":
        return data[:at] + bytes(len(data) - at)
    if kind == "splice":
        return data[:at] + other[len(other) * rng.randrange(100) // 100:]
    changed = bytearray(data)
    reach = len(data) if rng.random() < 0.5 else min(len(data), 2048)  # headers, or anywhere
    for _ in range(rng.choice((1, 2, 4, 16))):
        if kind == "flips":
            changed[rng.randrange(reach)] ^= 1 << rng.randrange(8)
            continue
        size, order = rng.choice((1, 2, 4)), rng.choice(("big", "little"))
        start = rng.randrange(max(1, reach - size))
        value = int.from_bytes(changed[start:start + size], order)
        value = rng.choice((0, 1, value - 1, value + 1, value * 2, len(data), 2 ** (8 * size - 1), -1))
        changed[start:start + size] = (value % 256 ** size).to_bytes(size, order)
    return bytes(changed[:len(data)])


def make_file(number, seed, files, folder):
    """Writes one damaged file. @return its path, its kind and the sample that it was made of"""
    rng = random.Random(f"{seed} {number}")
    suffix = rng.choice(sorted({f.suffix.lower() for f in files}))
    # Half of the files: each format as often as the others.
    chosen = rng.choice(files if number % 2 else [f for f in files if f.suffix.lower() == suffix])
    kind = KINDS[number % len(KINDS)]
    data, other = chosen.read_bytes(), rng.choice(files).read_bytes()
    path = folder / f"{number:05}-{kind}{chosen.suffix}"
    path.write_bytes(damaged(data, other, kind, number // len(KINDS) % 100, rng))
    return path, kind, chosen


class Outcome:
    def __init__(self):
        self.copies, self.seconds, self.memory, self.work, self.complaint = {}, {}, 0, 0, ""


def save(program, files, folder, fill, limit):
    """Saves copies of the files, one after another, into the new folder."""
    log = folder.with_suffix(".log")
    sanitizer = f"malloc_fill_byte={fill}:max_malloc_fill_size=1000000000:quarantine_size_mb=8"
    environment = os.environ | {
        "ASAN_OPTIONS": sanitizer + ":allocator_may_return_null=1", "MALLOC_PERTURB_": str(fill),
        "LSAN_OPTIONS": f"suppressions={ROOT}/tests/support/lsan.supp:print_suppressions=0"}
    command = [program, "save", "--text", "x", "--json", "--jobs", "1", "--output", folder, *files]
    outcome, last = Outcome(), time.monotonic()
    with open(log, "wb") as errors:
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=errors, env=environment)
        timer = threading.Timer(60 + limit * len(files), process.kill)
        timer.start()
        for line in process.stdout:
            record, now = json.loads(line), time.monotonic()
            if "source" in record:
                source = pathlib.Path(record["source"])
                outcome.seconds[source], last = now - last, now
                outcome.copies[source] = record["output"] if record["status"] == "written" else None
                if record["status"] != "written" and not record["error"]:
                    outcome.complaint = "no reason"
        _, status, usage = os.wait4(process.pid, 0)
        timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    outcome.memory, outcome.work = usage.ru_maxrss // 1024, usage.ru_utime + usage.ru_stime
    text = log.read_text(errors="replace")
    if process.returncode not in (0, 1) or "Sanitizer" in text or "runtime error" in text:
        outcome.complaint = f"status {process.returncode}\n{text[-3000:]}"
    elif len(outcome.copies) != len(files):
        outcome.complaint = f"{len(files) - len(outcome.copies)} files without a result"
    return outcome


def pixels(path):
    """@return what identifies the pixels of a copy, by an independent reader"""
    command = ["identify", "-quiet", "-format", "%# ", f"{path}[0]"]
    return subprocess.run(command, capture_output=True, text=True).stdout


def content(path):
    return path and hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def check(options, programs, made, folder):
    """@return complaints as pairs of a file and a text"""
    files = [path for path, _, _ in made]
    runs = [save(programs[i], files, folder / str(i), 190 * i + 1, options.seconds) for i in (0, 1)]
    # The sanitizer takes time and memory itself, so the better run counts.
    memory = min(run.memory for run in runs)
    complaint = " ".join(run.complaint for run in runs if run.complaint)
    if memory > options.megabytes:
        complaint += f" {memory} MB"
    if complaint and len(files) > 1:  # which one was it?
        parts = [check(options, programs, [one], folder / f"alone{i}") for i, one in enumerate(made)
                 if (folder / f"alone{i}").mkdir() is None]
        return sum(parts, []) or [(files[0], f"together with the following ones: {complaint}")]
    found = [(files[0], complaint)] if complaint else []
    for path, kind, sample in made:
        copies = [run.copies.get(path) for run in runs]
        if min(run.seconds.get(path, 0) for run in runs) > options.seconds:
            # Other programs may have slowed it down, and a large sample needs its time.
            work, usual = [save(programs[1], [file], folder / f"time{i}{path.stem}", 1, options.seconds).work
                           for i, file in enumerate((path, sample))]
            if work > max(options.seconds, 2 * usual):
                found.append((path, f"{work:.0f} s"))
        if content(copies[0]) != content(copies[1]):
            found.append((path, "two runs differ"))
        elif kind in TRUNCATED and copies[0] and (kind == "cut" or sample.suffix not in UNCLEAR):
            whole = save(programs[1], [sample], folder / f"whole{path.stem}", 1, options.seconds).copies.get(sample)
            if not whole:
                found.append((path, "a copy, although the whole file gives none"))
            elif content(whole) != content(copies[0]) and pixels(whole) != pixels(copies[0]):
                found.append((path, "half a picture counts as a copy"))
    return found


def run_batch(options, programs, files, numbers):
    with tempfile.TemporaryDirectory(prefix="plexa damaged ä ") as work:
        folder = pathlib.Path(work)
        made = [make_file(number, options.seed, files, folder) for number in numbers]
        found = check(options, programs, made, folder)
        names = {path: sample for path, _, sample in made}
        for path, complaint in found:
            print(f"{path.name} ({names[path].name}): {complaint}", flush=True)
            if options.keep:
                shutil.copy(path, options.keep)
        return len(found)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", nargs="+", help="plexa-cli, or two builds of it, one a run")
    parser.add_argument("--files", type=int, default=60)
    parser.add_argument("--first", type=int, default=0, help="number of the first file")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--seconds", type=float, default=10, help="limit for a copy")
    parser.add_argument("--megabytes", type=int, default=1024, help="limit for a process")
    parser.add_argument("--largest", type=int, default=4_000_000, help="bytes of a sample")
    parser.add_argument("--suffixes", default=SUFFIXES, help="of the samples")
    parser.add_argument("--keep", type=pathlib.Path, help="folder for files with complaints")
    options = parser.parse_args()
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    if options.keep:
        options.keep.mkdir(parents=True, exist_ok=True)
    files = samples(options.largest, options.suffixes.split())
    numbers = range(options.first, options.first + options.files)
    batches = [numbers[i:i + BATCH] for i in range(0, len(numbers), BATCH)]
    programs = [options.program[0], options.program[-1]]
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        found = sum(pool.map(lambda batch: run_batch(options, programs, files, batch), batches))
    print(f"{options.files} damaged files of {len(files)} samples: {found} complaints")
    raise SystemExit(1 if found else 0)


main()
