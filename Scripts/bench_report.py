#!/usr/bin/env python3
"""Writes the results of the benchmarks into a page: bench_report.py PAGE.md RESULT.json...

The page's text stays as it is; only what stands between "<!-- begin NAME -->" and "<!-- end -->" is written anew, if there
are results of it. The charts are SVG files beside the page. What doesn't hold of that which must is said in a line each,
and the exit code is 1 then.
"""
import json
import pathlib
import re
import statistics
import sys

# Work, the size that counts, what the library is compared with (None: the best of all others), and the most that the
# ratio may be. Where others are faster it is what the library reaches, and a third more for what a busy machine adds.
NEAREST = "nanoflann, nearest"
BARS = [
    ("identities/register", "1000000", None, 1.0),
    ("identities/find", "1000000", None, 4.8),
    ("identities/find by id", "1000000", None, 13.5),
    ("tables/insert", "1000000", None, 1.3),
    ("tables/find 22 bytes", "1000000", None, 4.5),
    ("tables/find int", "1000000", None, 3.4),
    ("tables/delete and insert", "1000000", None, 1.7),
    ("tables/scan", "1000000", None, 2.5),
    *((f"tree/{work} random", size, NEAREST, 0.2) for work in ("register", "find") for size in ("20000", "100000")),
    *((f"tree/{work} lattice", size, NEAREST, 1.0)
      for work in ("register", "find", "find moved") for size in ("20000", "100000")),
    *((f"text/{work} {kind}", "names", None, 0.7) for kind in ("ASCII", "Latin", "CJK") for work in ("decode", "encode")),
    *((f"text/{work} ASCII", "1 MiB", "widening or narrowing copy", 2.0) for work in ("decode", "encode")),
    ("properties/convert a wall", "8", None, 3.2),
    ("properties/build a set", "50", None, 2.3),
    ("properties/copy a set", "50", None, 1.7),
    ("versions/stream out", "1", None, 3.0),
    ("versions/stream in", "1", None, 3.0),
    ("versions/text", "1", None, 1.3),
]
LINES = ("line", "descending line")
# Work whose cost per object may grow from one size to another, and by how much at most.
GROWTH_BARS = [
    *((f"tree/{work} {objects}", "10000", "100000", 1.5)
      for work in ("register", "find moved in order") for objects in LINES),
    ("import/whole", "10000", "1000000", 1.6),
]
LONGEST_CALL = 1e6  # nanoseconds, of the tree
CHARTS = {
    "identities": [("identities/" + work, "1000000") for work in ("register", "find", "find by id")],
    "tree": [(f"tree/{work} {objects}", "100000") for objects in ("random", "lattice") for work in ("register", "find")],
    "text": [(f"text/{work} {kind}", "names") for kind in ("ASCII", "Latin", "CJK") for work in ("decode", "encode")],
}
COLOURS = {"library": "#2b6cb0"}
OTHER_COLOURS = ["#c05621", "#718096", "#b7791f", "#4a5568", "#a0aec0"]


class Results:
    """Medians in nanoseconds per operation of processor time, by work, size and contender."""

    def __init__(self, files):
        self.times, self.counters = {}, {}
        samples = {}
        for file in files:
            document = json.loads(pathlib.Path(file).read_text())
            for run in document["benchmarks"]:
                if run["run_type"] != "iteration":
                    continue
                area, work, size, contender = run["name"].split("/")[:4]
                key = (f"{area}/{work}", size, contender)
                operations = run.get("operations", 1.0)
                samples.setdefault(key, []).append(run["cpu_time"] / operations)
                # The system takes its time from some call in most runs; a call that is slow itself is so in all.
                run["longest"] = min(run.get("longest", 0), self.counters.get(key, run).get("longest", 0))
                self.counters[key] = run
            self.context = document["context"]
        self.times = {key: statistics.median(values) for key, values in samples.items()}

    def contenders(self, work, size):
        return {key[2]: time for key, time in self.times.items() if key[:2] == (work, size)}

    def sizes(self, work):
        return sorted({key[1] for key in self.times if key[0] == work}, key=lambda size: (len(size), size))

    def works(self, area):
        return list(dict.fromkeys(key[0] for key in self.times if key[0].startswith(area + "/")))

    def ratio(self, work, size, against=None):
        """The library's time by that of another contender, and the other's name; (None, None) without either."""
        contenders = self.contenders(work, size)
        library = contenders.pop("library", None)
        others = {name: time for name, time in contenders.items() if against in (None, name)}
        if library is None or not others:
            return None, None
        best = min(others, key=others.get)
        return library / others[best], best


def timeText(nanoseconds):
    for unit, scale in (("ns", 1), ("µs", 1e3), ("ms", 1e6)):
        if nanoseconds < 1000 * scale or unit == "ms":
            return f"{nanoseconds / scale:.3g} {unit}"


def sizeText(size):
    return f"{int(size):,}" if size.isdigit() else size


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|---" + "|---:" * (len(header) - 1) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def glanceTable(results):
    rows = []
    for work, size, against, _ in BARS:
        ratio, best = results.ratio(work, size, against)
        if ratio is not None:
            contenders = results.contenders(work, size)
            rows.append([f"{work.split('/')[0]}: {work.split('/')[1]}, {sizeText(size)}", timeText(contenders["library"]),
                         f"{timeText(contenders[best])} ({best})", f"{ratio:.2f}"])
    return table(["Work", "Library", "Beside", "Ratio"], rows)


def failures(results):
    """What doesn't hold, in words."""
    for work, size, against, bar in BARS:
        ratio, best = results.ratio(work, size, against)
        if ratio is not None and ratio > bar:
            yield f"{work}, {sizeText(size)}: {ratio:.2f} times {best}, at most {bar:g}"
    for work, small, large, bar in GROWTH_BARS:
        times = [results.times.get((work, size, "library")) for size in (small, large)]
        if None not in times and times[1] > bar * times[0]:
            yield f"{work}, {sizeText(large)}: {times[1] / times[0]:.2f} times the cost at {sizeText(small)}, at most {bar:g}"
    for (work, _, _), run in results.counters.items():
        if run["longest"] > LONGEST_CALL:
            yield f"{work}: {timeText(run['longest'])}, at most {timeText(LONGEST_CALL)}"


def areaTable(results, area):
    """All times of an area, a column for each contender."""
    names = list(dict.fromkeys(key[2] for key in results.times if key[0].startswith(area + "/")))
    rows = []
    for work in results.works(area):
        if work.endswith(("/memory", "/shares")) or "/longest call" in work:
            continue
        for size in results.sizes(work):
            times = results.contenders(work, size)
            rows.append([f"{work.split('/')[1]}, {sizeText(size)}"]
                        + [timeText(times[name]) if name in times else "" for name in names])
    return table(["Work"] + names, rows)


def memoryTable(results):
    work = "identities/memory"
    sizes = results.sizes(work)
    names = list(results.contenders(work, sizes[0]))
    value = lambda name, size: results.counters.get((work, size, name), {}).get("bytes")
    rows = [[name] + [f"{value(name, size):.0f}" if value(name, size) else "" for size in sizes] for name in names]
    return table(["Bytes per identity"] + [sizeText(size) for size in sizes], rows)


def growthTable(results):
    rows = []
    for objects in LINES:
        for work in ("register", "find moved in order", "find", "find moved"):
            name = f"tree/{work} {objects}"
            sizes = results.sizes(name)
            times = [results.times[(name, size, "library")] for size in sizes]
            rows.append([f"{work}, {objects}"] + [timeText(time) for time in times] + [f"{times[-1] / times[0]:.2f}"])
    return table(["Per object"] + [sizeText(size) for size in sizes] + ["Last by first"], rows)


def longestTable(results):
    rows = [[work.split("longest call ")[1], timeText(run["longest"])]
            for (work, _, _), run in results.counters.items() if "/longest call" in work]
    return table(["100,000 objects", "Longest call"], rows)


def importTable(results):
    rows = []
    base = results.times[("import/whole", results.sizes("import/whole")[0], "library")]
    steps = ("identity", "spatial hash", "version", "property set", "line")
    for size in results.sizes("import/whole"):
        time, run = results.times[("import/whole", size, "library")], results.counters[("import/shares", size, "library")]
        rows.append([sizeText(size), timeText(time), f"{time / base:.2f}"] + [f"{100 * run[step]:.0f} %" for step in steps])
    return table(["Objects", "Per object", "By the first"] + [step for step in steps], rows)


def chart(results, title, works):
    """Bars of the ratio of every contender's time to the library's, on a logarithmic scale around 1."""
    import math
    rows, names = [], []
    for work, size in works:
        times = results.contenders(work, size)
        if "library" in times and len(times) > 1:
            rows.append((f"{work.split('/')[1]}, {sizeText(size)}", times))
            names += [name for name in times if name not in names]
    colours = {name: COLOURS.get(name) or OTHER_COLOURS[i % len(OTHER_COLOURS)] for i, name in enumerate(names)}
    left, width, bar, gap, top = 190, 520, 13, 14, 58
    longest = max(time for _, times in rows for time in times.values())
    shortest = min(time for _, times in rows for time in times.values()) / 2
    scale = width / math.log(longest / shortest)
    parts, y = [], top
    for label, times in rows:
        parts.append(f'<text x="{left - 8}" y="{y + len(times) * bar / 2 + 4:.0f}" text-anchor="end">{label}</text>')
        for name, time in times.items():
            length = math.log(time / shortest) * scale
            parts.append(f'<rect x="{left}" y="{y}" width="{length:.1f}" height="{bar - 2}" fill="{colours[name]}"/>'
                         f'<text x="{left + length + 5:.1f}" y="{y + bar - 3}">{timeText(time)}</text>')
            y += bar
        y += gap
    x, legend = left, []
    for name in names:
        legend.append(f'<rect x="{x}" y="32" width="11" height="11" fill="{colours[name]}"/>'
                      f'<text x="{x + 15}" y="42">{name}</text>')
        x += 30 + 6.4 * len(name)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 800 {y}" font-family="sans-serif" font-size="11">'
            f'<rect width="800" height="{y}" fill="white"/><text x="{left}" y="20" font-size="14">{title}</text>'
            + "".join(legend + parts) + "</svg>\n")


def machineText(results):
    context = results.context
    caches = ", ".join(f"L{cache['level']} {cache['size'] / 1048576:g} MiB" for cache in context["caches"]
                       if cache["type"] in ("Unified", "Data"))
    return (f"{context['date'][:10]}, {context['num_cpus']} processors of {context['mhz_per_cpu']} MHz ({caches}), "
            f"Release build. Medians of three runs or more, in processor time.")


def main():
    page, results = pathlib.Path(sys.argv[1]), Results(sys.argv[2:])
    blocks = {"machine": ("", machineText), "glance": ("", glanceTable), "memory": ("identities", memoryTable),
              "line": ("tree", growthTable), "longest": ("tree", longestTable), "import": ("import", importTable)}
    text = page.read_text()

    def write(match):
        name = match[1]
        area, make = blocks.get(name, (name, lambda results: areaTable(results, name)))
        if area and not results.works(area):
            return match[0]
        return f"<!-- begin {name} -->\n{make(results)}\n<!-- end -->"

    page.write_text(re.sub(r"<!-- begin (\w+) -->\n.*?<!-- end -->", write, text, flags=re.S))
    for name, works in CHARTS.items():
        if results.works(name):
            title = f"{name.capitalize()}: time per operation (logarithmic)"
            (page.parent / f"performance-{name}.svg").write_text(chart(results, title, works))
    failed = list(failures(results))
    for line in failed:
        print(f"bench_report.py: {line}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
