#!/usr/bin/env python3
"""The page of import-host in a real browser: selecting, filtering, storeys, keys, hostile names, CSV, printing, and that
no request leaves it. Usage: page-test.py HOST IFC-PLUGIN TOY-PLUGIN MODELS [unittest's arguments]; ends with 77 where
there is no Chromium with its driver."""
import contextlib
import csv
import json
import pathlib
import random
import re
import socket
import subprocess
import sys
import tempfile
import time
import unittest

import webdriver

HOST, IFC_PLUGIN, TOY_PLUGIN, MODELS = sys.argv[1:5]

HOSTILE = {
    "'Planter'": "'</script><script>window.hacked = 1</script>'",
    "'Bench'": "'<!--<script>'",
    "'Spine wall'": "'\"><img src=x onerror=\"window.hacked = 2\">'",
    "'Partition'": "'=HYPERLINK(\"http://127.0.0.1/\")'",
    "'Middle post'": "'&lt;b&gt; ]]> {{7*7}} ${7*7}'",
    "'Ground floor'": "'</style><svg onload=window.hacked=3>'",
}


def write_page(folder, name, old, new, plugin=IFC_PLUGIN):
    """A page and the report that belongs to it."""
    page, report = folder / f"{name}.html", folder / f"{name}.json"
    command = [HOST, "--quiet", "--plugin", plugin, "--html", page, "--report", report, "--csv",
               page.with_suffix(".csv")]
    subprocess.run([*command, *(["--compare", old, new] if old else ["--state", folder / f"{name}.state", new])],
                   check=True, stdout=subprocess.DEVNULL)
    return page, json.loads(report.read_text(encoding="utf-8"))


def hostile_models(folder):
    models = []
    for name in ("house.ifc", "house-revised.ifc"):
        text = pathlib.Path(MODELS, name).read_text(encoding="latin-1")
        for harmless, hostile in HOSTILE.items():
            text = text.replace(harmless, hostile)
        models.append(folder / f"hostile-{name}")
        models[-1].write_text(text, encoding="latin-1")
    return models


def toy_model(path, boxes):
    path.write_text("".join(f"{name} box {x} {y} {z} {size} {size} {size} {name}\n" for name, x, y, z, size in boxes))
    return path


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.storage = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.storage.name)
        cls.house, cls.report = write_page(cls.folder, "house", pathlib.Path(MODELS, "house.ifc"),
                                           pathlib.Path(MODELS, "house-revised.ifc"))
        cls.browser = webdriver.Browser()
        cls.addClassCleanup(cls.storage.cleanup)
        cls.addClassCleanup(cls.browser.close)

    def open(self, page=None):
        self.browser.log("browser")
        self.browser.open(page or self.house)
        self.browser.wait("window.page && window.page.isReady", "the page", 300)
        self.assertTrue(self.run_("return Boolean(page.scene)"), "the browser can't draw")

    def run_(self, script, *arguments):
        return self.browser.run(script, *arguments)

    def index_of(self, name):
        return next(i for i, o in enumerate(self.report["objects"]) if o["name"] == name)

    def rows(self):
        return self.run_("return page.list.rows.map((object) => object.index)")

    def drawn(self, state):
        """Indices of the objects that are drawn in a state."""
        return set(self.run_("return page.scene.shapes.pieces.filter((piece, index) => page.scene.states[index] === "
                             f"{state}).map((piece) => piece.object)"))

    def place_of(self, index):
        """Where an object's middle is in the window."""
        return self.run_("""
            const frame = document.getElementById('canvas-frame').getBoundingClientRect();
            const shapes = page.scene.shapes;
            const at = page.scene.project(shapes.centreOf(arguments[0], 0) || shapes.centreOf(arguments[0], 1));
            return [frame.left + at[0], frame.top + at[1]];""", index)

    def choose(self, selector, text):
        self.run_("""
            const select = document.querySelector(arguments[0]);
            select.value = [...select.options].find((option) => option.text === arguments[1]).value;
            select.dispatchEvent(new Event('change'));""", selector, text)

    def complaints(self):
        return [entry["message"] for entry in self.browser.log("browser")
                if entry["level"] == "SEVERE" or "Content Security Policy" in entry["message"]]

    def test_head_says_what_was_compared(self):
        self.open()
        head = self.run_("return document.querySelector('header').innerText")
        self.assertIn("house-revised.ifc", head)
        self.assertIn("compared with house.ifc", head)
        counts = self.run_("return Object.fromEntries([...document.querySelectorAll('#status-filters button')].map("
                           "(button) => [button.dataset.status, Number(button.querySelector('.count').textContent)]))")
        self.assertEqual(counts, self.report["counts"])
        marks = self.run_("return [...document.querySelectorAll('#status-filters .mark')].map((m) => m.textContent)")
        self.assertEqual(len(set(marks)), 8, "each status has a sign of its own")
        self.assertEqual(self.complaints(), [])

    def test_rows_and_objects_select_each_other(self):
        self.open()
        planter, table = self.index_of("Planter"), self.index_of("Café table")
        self.browser.click_at(*self.place_of(planter))
        self.assertEqual(self.run_("return page.selected"), planter)
        self.assertTrue(self.run_("return document.querySelector('.row[aria-selected=true]').innerText.includes('Planter')"))

        self.browser.click(f"#row-{table}")
        self.assertEqual(self.run_("return page.selected"), table)
        chosen = self.run_("""
            const mesh = page.scene.layers.find((layer) => layer.state === 4 && !layer.lines).mesh;
            const point = mesh.geometry.index.array[0];
            return page.scene.shapes.pieces.find((piece) => point >= piece.firstPoint &&
                point < piece.firstPoint + piece.points).object;""")
        self.assertEqual(chosen, table)

        # What stayed is selected as well, though the list does not show it.
        place = self.run_("""
            const frame = document.getElementById('canvas-frame').getBoundingClientRect();
            for (let y = 20; y < frame.height; y += 15) {
                for (let x = 20; x < frame.width; x += 15) {
                    const index = page.scene.pick(x, y);
                    if (index >= 0 && page.report.objects[index].status === 'unchanged') {
                        return [frame.left + x, frame.top + y, index];
                    }
                }
            }""")
        self.browser.click_at(*place[:2])
        self.assertEqual(self.run_("return page.selected"), place[2])
        self.browser.keys("\ue00c")
        self.assertEqual(self.run_("return page.selected"), -1)

    def test_details_show_old_and_new(self):
        self.open()
        def details(name):
            self.run_("page.selectAndOpen(arguments[0])", self.index_of(name))
            return self.run_("return document.querySelector('.details').innerText")
        self.assertRegex(details("Spine wall"), r"FireRating\s+F90\s+F120")
        self.assertIn("-1.6, 1.3, 0 m (2.062 m)", details("Café table"))
        self.assertRegex(details("Study window"), r"03a6ITW7vBEPSH9OqDCYxE → 0dCtG4Dfn5VhFtInjEp39u")
        self.assertRegex(details("Partition"), r"IFCWALL → IFCWALLSTANDARDCASE")
        self.assertRegex(details("Gardener's wall"), r"Volume\s+1.68 m³ → 1.949 m³")
        self.assertRegex(details("Gardener's wall"), r"Box\s+5 × 0.24 × 1.4 m.* → 5.8 × 0.24 × 1.4 m")
        self.browser.click(".details .copy")
        self.browser.wait("document.getElementById('message').textContent === 'Copied ' + arguments[0]".replace(
            "arguments[0]", json.dumps(self.report["objects"][self.index_of("Gardener's wall")]["identity"])), "a copy")

    def test_filters_leave_what_matches(self):
        self.open()
        of = lambda condition: {i for i, o in enumerate(self.report["objects"]) if condition(o)}
        changed = of(lambda o: o["status"] != "unchanged")
        self.assertEqual(set(self.rows()), changed)
        self.browser.click("[data-status=moved]")
        self.assertEqual(set(self.rows()), changed - of(lambda o: o["status"] == "moved"))
        self.assertFalse(self.drawn(1) & of(lambda o: o["status"] == "moved"), "what is filtered out loses its colour")
        self.browser.click("[data-status=unchanged]")
        self.choose("#class-filter", "IFCWALLSTANDARDCASE")
        self.assertEqual(set(self.rows()), of(lambda o: o["class"] == "IFCWALLSTANDARDCASE" and o["status"] != "moved"))
        self.browser.click("#clear-filters")
        self.assertEqual(set(self.rows()), changed)
        self.browser.click("#text-filter")
        self.browser.keys(*"cAFÉ")
        self.browser.wait("page.list.rows.length === 1", "one object")
        self.assertEqual(self.rows(), [self.index_of("Café table")])

        self.browser.click("#clear-filters")
        self.browser.click("#hide-context")
        self.assertEqual(self.drawn(3), set())
        self.assertEqual(self.drawn(1) | self.drawn(2), changed)
        self.browser.click("#show-before")
        self.assertEqual(self.drawn(2), of(lambda o: o["status"] == "removed"))

    def test_rows_are_sorted(self):
        self.open()
        self.browser.click(".cell.name button")
        names = self.run_("return page.list.rows.map((object) => object.name)")
        self.assertEqual(names[0], "Bench")
        self.browser.click(".cell.name button")
        self.assertEqual(self.run_("return page.list.rows.map((object) => object.name)"), names[::-1])
        shown = self.run_("return [...document.querySelectorAll('.row')].sort((a, b) => a.offsetTop - b.offsetTop)"
                          ".map((row) => row.querySelector('.cell.name').textContent)")
        self.assertEqual(shown, names[::-1])

    def test_storeys_are_filtered_and_cut(self):
        self.open()
        storeys = {o["storey"] for o in self.report["objects"]} - {None}
        self.assertGreater(len(storeys), 1)
        for storey in storeys:
            here = {i for i, o in enumerate(self.report["objects"])
                    if storey in (o["storey"], o.get("before", {}).get("storey"))}
            self.choose("#storey-filter", storey)
            self.assertEqual(self.drawn(1) | self.drawn(2) | self.drawn(3), here)
            self.assertTrue(set(self.rows()) <= here)
        self.choose("#storey-filter", "all")

        # Seen from above the roof hides the ground floor until it is cut off.
        self.browser.click("[data-view=top]")
        slabs = [i for i, o in enumerate(self.report["objects"]) if o["storey"] == "Ground floor"]
        x, y = self.place_of(slabs[0])
        pick = """const frame = document.getElementById('canvas-frame').getBoundingClientRect();
            const index = page.scene.pickAmong(arguments[0] - frame.left, arguments[1] - frame.top, () => true);
            return index < 0 ? null : page.report.objects[index].box[1][2]"""
        whole = self.run_(pick, x, y)
        self.choose("#cut-storey", "above Ground floor")
        cut = self.run_(pick, x, y)
        self.assertLess(self.run_("return page.scene.uniforms.cut.value"), 1e29)
        self.assertTrue(whole is not None and (cut is None or cut <= whole))
        low = {o["box"][0][2] for o in self.report["objects"]}
        self.run_("""const slider = document.getElementById('cut-height'); slider.value = slider.min;
            slider.dispatchEvent(new Event('input'));""")
        seen = self.run_("const found = new Set(); const frame = page.scene.frame; for (let x = 0; x < frame.clientWidth;"
                         " x += 12) for (let y = 0; y < frame.clientHeight; y += 12) found.add(page.scene.pickAmong(x, y,"
                         " () => true)); return [...found]")
        cut_height = self.run_("return Number(document.getElementById('cut-height').value)")
        self.assertTrue(min(low) < cut_height and any(index >= 0 for index in seen))
        for index in seen:
            if index >= 0:
                self.assertLessEqual(self.report["objects"][index]["box"][0][2], cut_height + 1e-3)

    def test_mouse_turns_and_moves_and_buttons_look_from_sides(self):
        self.open()
        state = lambda: self.run_("const {position} = page.scene.camera.camera, {target} = page.scene.camera.controls; "
                                  "return [position.x - target.x, position.y - target.y, position.z - target.z,"
                                  " target.x, target.y, target.z]")
        first = state()
        self.browser.drag((300, 450), (420, 470))
        turned = state()
        self.assertEqual([round(v, 6) for v in turned[3:]], [round(v, 6) for v in first[3:]])
        self.assertNotEqual(turned[:3], first[:3])
        self.browser.drag((300, 450), (420, 470), button=2)
        self.assertNotEqual(state()[3:], first[3:])
        for view, axis, sign in (("top", 2, 1), ("front", 1, -1), ("back", 1, 1), ("left", 0, -1), ("right", 0, 1)):
            self.browser.click(f"[data-view={view}]")
            direction = state()[:3]
            self.assertGreater(sign * direction[axis], 0.999 * sum(v * v for v in direction) ** 0.5, view)

    def test_keys_do_what_the_mouse_does(self):
        self.open()
        down, enter, page_end = "\ue015", "\ue007", "\ue010"
        self.run_("document.getElementById('grid').focus()")
        rows = self.rows()
        self.browser.keys(down, down)
        self.assertEqual(self.run_("return page.selected"), rows[1])
        self.browser.keys(enter)
        self.assertEqual(self.run_("return page.list.open"), rows[1])
        self.assertEqual(self.run_("return document.getElementById(document.getElementById('grid').getAttribute("
                                   "'aria-activedescendant')).getAttribute('aria-expanded')"), "true")
        self.browser.keys(page_end)
        self.assertEqual(self.run_("return page.selected"), rows[-1])
        before = self.run_("return page.scene.camera.camera.position.toArray()")
        self.browser.keys("1")
        self.assertNotEqual(self.run_("return page.scene.camera.camera.position.toArray()"), before)
        self.run_("document.getElementById('canvas-frame').focus()")
        before = self.run_("return page.scene.camera.camera.position.toArray()")
        self.browser.keys("\ue012")
        self.assertNotEqual(self.run_("return page.scene.camera.camera.position.toArray()"), before)
        self.browser.keys("h")
        self.assertTrue(self.run_("return document.getElementById('hide-context').checked"))
        self.browser.keys("/")
        self.assertEqual(self.run_("return document.activeElement.id"), "text-filter")
        self.browser.keys("1", "h")
        self.assertEqual(self.run_("return document.getElementById('text-filter').value"), "1h")
        unnamed = self.run_("return [...document.querySelectorAll('button, select, input')].filter((control) => "
                            "!control.textContent.trim() && !control.getAttribute('aria-label') && "
                            "!control.labels?.length).map((control) => control.id)")
        self.assertEqual(unnamed, [], "every control has a name")

    def test_names_never_become_markup(self):
        page, report = write_page(self.folder, "hostile", *hostile_models(self.folder))
        text = page.read_text(encoding="utf-8")
        names = {o["name"] for o in report["objects"]} | {o["storey"] for o in report["objects"]}
        for hostile in HOSTILE.values():
            self.assertIn(hostile[1:-1], names)
        self.assertNotIn("</script><script>window.hacked", text)
        self.open(page)
        for index in range(len(report["objects"])):
            self.run_("page.selectAndOpen(arguments[0]); page.showTooltip(document.getElementById('tooltip'), 300, 300)",
                      index)
        self.browser.click("[data-status=unchanged]")
        self.browser.click("#plans-tab")
        self.run_("page.plans.buildAll()")
        time.sleep(0.3)
        self.assertIsNone(self.run_("return window.hacked ?? null"))
        self.assertEqual(self.run_("return document.querySelectorAll('body img, body iframe, body b').length"), 0)
        self.assertEqual(self.run_("return page.report.objects.length"), len(report["objects"]))
        shown = self.run_("return document.getElementById('list-space').innerText")
        self.assertIn("</script><script>window.hacked = 1</script>", shown)
        self.assertEqual(self.complaints(), [])

    def test_what_is_shown_is_saved_as_csv(self):
        page, report = write_page(self.folder, "table", *hostile_models(self.folder))
        self.open(page)
        self.browser.click("#save-csv")
        file = self.browser.downloads / "hostile-house-revised.ifc.csv"
        for _ in range(200):
            if file.exists():
                break
            time.sleep(0.05)
        data = file.read_bytes()
        written = page.with_suffix(".csv").read_bytes()  # by the host, in the order of the report
        self.assertTrue(data.startswith(b"\xef\xbb\xbf"))
        self.assertEqual(sorted(data.split(b"\r\n")), sorted(written.split(b"\r\n")))
        rows = list(csv.DictReader(data.decode("utf-8-sig").splitlines()))
        self.assertEqual({row["object"] for row in rows},
                         {o["identity"] for o in report["objects"] if o["status"] != "unchanged"})
        self.assertIn("'=HYPERLINK(\"http://127.0.0.1/\")", {row["name"] for row in rows})

    def test_no_request_leaves_the_page(self):
        server = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(server.close)
        server.settimeout(1)
        self.browser.log("performance")
        self.open()
        for selector in ("#plans-tab", "#model-tab", "[data-view=top]", "#theme-button", "#save-csv"):
            self.browser.click(selector)
        requests = [json.loads(entry["message"])["message"] for entry in self.browser.log("performance")]
        urls = {message["params"]["request"]["url"] for message in requests
                if message["method"] == "Network.requestWillBeSent"
                and not message["params"]["documentURL"].startswith("chrome:")}  # the browser's own first page
        self.assertEqual({url for url in urls if not url.startswith(("blob:", "data:"))}, {self.house.as_uri()})

        # Even a script that got in could neither run nor send anything.
        self.run_("""
            const address = arguments[0];
            fetch(address).catch(() => {});
            navigator.sendBeacon(address, 'x');
            for (const [tag, name] of [['img', 'src'], ['script', 'src'], ['iframe', 'src'], ['link', 'href']]) {
                const intruder = document.createElement(tag);
                intruder.rel = 'stylesheet';
                intruder[name] = address;
                document.body.append(intruder);
            }
            const script = document.createElement('script');
            script.textContent = 'window.hacked = 4';
            document.body.append(script);
            const button = document.createElement('button');
            button.setAttribute('onclick', 'window.hacked = 5');
            document.body.append(button);
            button.click();""", f"http://127.0.0.1:{server.getsockname()[1]}/")
        received = b""
        with contextlib.suppress(TimeoutError):
            connection, _ = server.accept()  # browsers may open one in advance; what counts is that nothing is sent
            with connection:
                connection.settimeout(2)
                received = connection.recv(1000)
        self.assertEqual(received, b"")
        self.assertIsNone(self.run_("return window.hacked ?? null"))

    def test_plans_select_and_print_a_page_each(self):
        self.open()
        self.browser.click("#plans-tab")
        plans = self.run_("page.plans.buildAll(); return page.plans.plans.map((plan) => plan.storey)")
        self.assertEqual(set(plans), {o["storey"] or "" for o in self.report["objects"]})
        drawn = self.run_("return page.plans.sections.flatMap((section) => [...section.drawing.querySelectorAll("
                          "'path[data-object]')].map((path) => Number(path.dataset.object)))")
        self.assertEqual(set(drawn), set(range(len(self.report["objects"]))))
        planter = self.index_of("Planter")
        self.run_("page.plans.sections.flatMap((section) => [...section.drawing.querySelectorAll(`[data-object='${"
                  "arguments[0]}']`)])[0].dispatchEvent(new MouseEvent('click', {bubbles: true}))", planter)
        self.assertEqual(self.run_("return page.selected"), planter)
        for width, height in ((21.0, 29.7), (21.59, 27.94)):
            pdf = self.browser.print(page={"width": width, "height": height})
            self.assertEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), len(plans))

    def test_list_and_plans_work_where_nothing_can_be_drawn(self):
        with webdriver.Browser(arguments=["--disable-3d-apis"]) as browser:
            browser.open(self.house)
            browser.wait("window.page && window.page.isReady", "the page")
            self.assertIn("can't draw", browser.run("return document.getElementById('canvas-frame').innerText"))
            browser.click(f"#row-{self.index_of('Planter')}")
            self.assertIn("Planter", browser.run("return document.querySelector('.details').innerText"))
            browser.click("[data-view=top]")
            browser.click("#theme-button")
            browser.click("[data-status=added]")
            self.assertEqual(browser.run("return page.list.places.has(page.selected)"), False)
            browser.click("#plans-tab")
            browser.wait("page.plans.sections[0].drawing?.querySelector('path')", "a plan")

    def test_places_far_from_the_origin_are_drawn_exactly(self):
        far = (500_000.0, 5_400_000.0)
        boxes = [(f"B{i}", far[0] + 0.25 * i, far[1] + 3 * (i % 7), 0, 0.1) for i in range(50)]
        page, _ = write_page(self.folder, "far", None, toy_model(self.folder / "far.toy", boxes), TOY_PLUGIN)
        self.open(page)
        sizes = self.run_("""return page.scene.shapes.pieces.map((piece) => [0, 1, 2].map((axis) => {
            const values = [];
            for (let i = 0; i < piece.points; ++i) {
                values.push(page.scene.shapes.positions[3 * (piece.firstPoint + i) + axis]);
            }
            return Math.max(...values) - Math.min(...values);
        }))""")
        self.assertEqual(len(sizes), 50)
        for size in sizes:
            for length in size:
                self.assertAlmostEqual(length, 0.1, delta=1e-5)

    def test_many_objects_have_few_rows_and_draw_calls(self):
        random.seed(1)
        boxes = [(f"B{i}", 2 * (i % 150), 2 * (i // 150), 0, 1 + i % 3 / 4) for i in range(25_000)]
        moved = [(name, x + 0.5, y, z, size) if random.random() < 0.02 else (name, x, y, z, size)
                 for name, x, y, z, size in boxes]
        page, report = write_page(self.folder, "many", toy_model(self.folder / "many.toy", boxes),
                                  toy_model(self.folder / "many-revised.toy", moved), TOY_PLUGIN)
        self.assertGreater(report["counts"]["moved"], 300)
        self.open(page)
        self.browser.click("[data-status=unchanged]")
        self.assertEqual(len(self.rows()), 25_000)
        for place in (0, 12_345, 24_999):
            self.run_("page.select(page.list.rows[arguments[0]].index)", place)
            row = self.run_("const row = document.querySelector('.row[aria-selected=true]').getBoundingClientRect();"
                            "const list = document.getElementById('list-body').getBoundingClientRect();"
                            "return row.top >= list.top - 1 && row.bottom <= list.bottom + 1")
            self.assertTrue(row, "the selected row is in view")
            self.assertLess(self.run_("return document.querySelectorAll('.row').length"), 100)
        self.run_("page.scene.drawNow()")
        self.assertLess(self.run_("return page.scene.renderer.info.render.calls"), 12)


if __name__ == "__main__":
    if webdriver.tools() is None:
        print("skipped: the tests of the page need Chromium and its driver (chromium, chromium-driver)")
        sys.exit(77)
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)
