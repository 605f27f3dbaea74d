#!/usr/bin/env python3
"""Writes the results of the benchmarks into a page: bench_report.py PAGE.md RESULT.json...

The page's text stays as it is; only what stands between "<!-- begin NAME -->" and "<!-- end -->" is written anew. The
charts are SVG files beside the page.
"""
import json
import pathlib
import re
import statistics
import sys

# Work, the size that counts, what the library is compared with (None: the best of all others), and the most that the
# ratio may be.
BARS = [
    ("identities/register", "1000000", None, 1.0),
    ("identities/find", "1000000", None, 1.0),
    ("identities/find by id", "1000000", None, 1.0),
    ("tables/insert", "1000000", None, 0.8),
    ("tables/find 22 bytes", "1000000", None, 0.8),
    ("tables/find int", "1000000", None, 0.8),
    ("tables/delete and insert", "1000000", None, 0.8),
    ("tables/scan", "1000000", None, 1.5),
    *((f"tree/{work} {objects}", size, beside, 0.05)
      for objects in ("random", "lattice") for work in ("register", "find") for size in ("20000", "100000")
      for beside in ("nanoflann, nearest", "nanoflann, radius")),
    *((f"text/{work} {kind}", "names", None, 0.5) for kind in ("ASCII", "Latin", "CJK") for work in ("decode", "encode")),
    *((f"text/{work} ASCII", "1 MiB", "widening or narrowing copy", 2.0) for work in ("decode", "encode")),
    ("properties/convert a wall", "8", None, 1.5),
    ("properties/build a set", "50", None, 1.5),
    ("properties/copy a set", "50", None, 1.5),
    ("versions/stream out", "1", None, 3.0),
    ("versions/stream in", "1", None, 3.0),
    ("versions/text", "1", None, 1.1),
]
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


def barTable(results):
    rows = []
    for work, size, against, bar in BARS:
        ratio, best = results.ratio(work, size, against)
        if ratio is not None:
            contenders = results.contenders(work, size)
            rows.append([f"{work.split('/')[0]}: {work.split('/')[1]}, {sizeText(size)}", timeText(contenders["library"]),
                         f"{timeText(contenders[best])} ({best})", f"{ratio:.2f}", f"{bar:g}",
                         "met" if ratio <= bar else "**missed**"])
    return table(["Work", "Library", "Beside", "Ratio", "Bar", ""], rows)


def areaTable(results, area):
    """All times of an area, a column for each contender."""
    names = list(dict.fromkeys(key[2] for key in results.times if key[0].startswith(area + "/")))
    rows = []
    for work in results.works(area):
        if work.endswith(("/memory", "/shares")):
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
    for work in ("tree/register line", "tree/find line", "tree/find moved line",
                 "tree/find moved descending line"):
        for size in results.sizes(work):
            half = str(int(size) // 2)
            now, before = results.times[(work, size, "library")], results.times.get((work, half, "library"))
            rows.append([f"{work.split('/')[1]}, {sizeText(size)}", timeText(now),
                         f"{now / before:.2f}" if before else ""])
    return table(["Work", "Per object", "By half the number"], rows)


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
    blocks = {"machine": machineText, "bars": barTable, "memory": memoryTable, "line": growthTable, "import": importTable}
    text = page.read_text()

    def write(match):
        name = match[1]
        made = blocks[name](results) if name in blocks else areaTable(results, name)
        return f"<!-- begin {name} -->\n{made}\n<!-- end -->"

    page.write_text(re.sub(r"<!-- begin (\w+) -->\n.*?<!-- end -->", write, text, flags=re.S))
    for name, works in CHARTS.items():
        title = f"{name.capitalize()}: time per operation (logarithmic)"
        (page.parent / f"performance-{name}.svg").write_text(chart(results, title, works))


if __name__ == "__main__":
    main()
