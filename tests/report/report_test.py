#!/usr/bin/env python3
"""Reports in a real browser. Arguments: the tool, a folder for pictures; environment AXE may name axe.min.js."""
import base64
import copy
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from browser import Browser

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOL = sys.argv[1]
PICTURES = pathlib.Path(sys.argv[2])
AXE = os.environ.get("AXE", "")
HELPERS = (pathlib.Path(__file__).parent / "page.js").read_text(encoding="utf-8")
HOSTILE = "</script><script>window.taken=1</script><img src=x onerror=window.taken=2><!--"
MANY = 300
UNFOLD = "for (const details of document.querySelectorAll('details')) details.open = true"
# Text-headed profiles load with it.
TABLES = {**os.environ, "NVXPROFILE_PROFILE_DIR": str(ROOT / "examples/text_headed")}


def tool(*arguments, status=0, **options):
    result = subprocess.run([TOOL, *map(str, arguments)], capture_output=True, check=False, **options)
    assert result.returncode == status, (arguments, result.returncode, result.stderr.decode())
    return result.stdout.decode("utf-8")


def tool_json(*arguments):
    return json.loads(tool(*arguments, "--json"))


def build(document, path):
    tool("build", "-", "-o", path, input=json.dumps(document).encode())


def entry_of(document, kind):
    return next(entry for entry in document["entries"] if entry["type"] == kind)


def linearization_of(document):
    return entry_of(document, "linearization")["payload"]["curves"]


def lab_of(profile, colors):
    """What Little CMS makes of device colours."""
    command = ["transicc", "-n", "-t1", "-i", profile, "-o", "*Lab"]
    output = subprocess.run(command, input="\n".join(colors) + "\n", capture_output=True, text=True, check=True).stdout
    return [list(map(float, line.split())) for line in output.splitlines() if line[:1].isdigit()]


def lut_a_to_b_profile():
    """A profile from RGB to Lab with all parts of lutAToB: colour table, M curves, matrix, B curves."""
    fixed = lambda *values: struct.pack(f">{len(values)}i", *(round(65536 * value) for value in values))
    para = lambda *values: b"para" + bytes(4) + struct.pack(">HH", 3, 0) + fixed(*values)
    identity = b"curv" + bytes(8)
    # Paper is white; each primary less takes away from the three values in its own way.
    nodes = [
        (65535 * (0.2 + 0.8 * (r + g + b) / 3), 32896 + 12000 * (r - g), 32896 + 9000 * (g - b))
        for r in (0, 1)
        for g in (0, 1)
        for b in (0, 1)
    ]
    clut = (
        bytes([2, 2, 2])
        + bytes(13)
        + bytes([2, 0, 0, 0])
        + b"".join(struct.pack(">3H", *map(round, node)) for node in nodes)
    )
    b_curves, m_curves = 3 * identity, 3 * para(1.2, 0.9, 0.1, 0.4, 0.05)
    matrix = fixed(0.95, 0.03, 0.02, 0.01, 0.97, 0.02, 0, 0.05, 0.95, 0, 0.01, 0.02)
    starts = [32]
    for part in (b_curves, matrix, m_curves):
        starts.append(starts[-1] + len(part))
    lut = (
        b"mAB " + bytes(4) + bytes([3, 3, 0, 0]) + struct.pack(">5I", *starts, 0) + b_curves + matrix + m_curves + clut
    )
    header = struct.pack(
        ">I4sI4s4s4s12s4s", 144 + len(lut), bytes(4), 0x04200000, b"prtr", b"RGB ", b"Lab ", bytes(12), b"acsp"
    )
    header += bytes(28) + fixed(0.9642, 1, 0.8249) + bytes(48)
    return header + struct.pack(">I4sII", 1, b"A2B0", 144, len(lut)) + lut


class ReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        cls.example = json.loads((ROOT / "examples/uv_film.json").read_text(encoding="utf-8"))
        cls.profile = cls.folder / "uv_film.icc"
        build(cls.example, cls.profile)
        cls.page = cls.folder / "one.html"
        tool("report", cls.profile, "-o", cls.page)
        PICTURES.mkdir(parents=True, exist_ok=True)
        cls.browser = Browser(cls.folder / "browser", PICTURES)

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [], "the console complains")
        self.browser.scheme("light")

    # --- helpers ---

    def ask(self, expression):
        return self.browser.driver.execute_async_script(
            HELPERS + f"const done = arguments[arguments.length - 1]; Promise.resolve({expression}).then(done);"
        )

    def open_drawn(self):
        self.browser.open(self.page)
        self.browser.draw_all()

    def find(self, selector):
        return self.browser.driver.find_element(By.CSS_SELECTOR, selector)

    def rows_become(self, count):
        self.assertTrue(
            self.browser.until("return document.querySelectorAll('.index tbody tr').length === arguments[0]", count)
        )

    def table(self, plot):
        """Columns of the table behind a plot, as texts, by name."""
        table = self.ask(f"tableOf({json.dumps(plot)})")
        return dict(zip(table["names"], map(list, zip(*table["rows"]))))

    def numbers(self, plot):
        digits = lambda text: int("".join(c for c in text if c.isdigit()))
        return {name: [digits(cell) for cell in column if cell] for name, column in self.table(plot).items()}

    def figure(self, plot):
        return self.find(f'[data-plot="{plot}"]')

    def show(self, element):
        self.browser.run("arguments[0].scrollIntoView({block: 'center', behavior: 'instant'})", element)

    def plots(self):
        return set(self.browser.run("return [...document.querySelectorAll('[data-plot]')].map((e) => e.dataset.plot)"))

    def texts(self, selector):
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((e) => e.textContent)", selector
        )

    # --- one profile ---

    def test_every_plot_holds_the_samples_of_the_profile(self):
        self.open_drawn()
        expected = self.expected_plots()
        separation = {"neutral", *(f"edge-{i}-{end}" for i in range(4) for end in ("paper", "dark"))}
        drift = {"drift-greatest", "drift-mean"}
        self.assertEqual(self.plots(), set(expected) | separation | drift | {"icc-gamut"})
        for plot, curves in expected.items():
            with self.subTest(plot=plot):
                self.assertEqual(self.numbers(plot), curves)
                self.check_drawing(plot, list(curves.values()))

    def check_drawing(self, plot, curves):
        """Each curve has a corner for each sample, at the height that the axis gives it."""
        ticks = self.ask(f"ticksOf({json.dumps(plot)})")
        value = lambda text: float(text[:-1]) * 655.35 if text.endswith("%") else float(text.replace(",", ""))
        (low, low_y), (high, high_y) = [(value(text), y) for text, y in (ticks[0], ticks[-1])]
        height = lambda sample: low_y + (sample - low) * (high_y - low_y) / (high - low)
        drawn = sorted([round(y) for _, y in corners] for corners in self.ask(f"curvesOf({json.dumps(plot)})").values())
        wanted = sorted([round(height(sample)) for sample in samples] for samples in curves)
        self.assertEqual(list(map(len, drawn)), list(map(len, wanted)))
        worst = max(abs(a - b) for one, other in zip(drawn, wanted) for a, b in zip(one, other))
        self.assertLessEqual(worst, 2, "corners of the curves, in pixels")

    def expected_plots(self):
        """Samples by plot and name of the curve, from what the tool prints."""
        sets = {entry["name"]: entry["curves"] for entry in tool_json("curves", self.profile)["entries"]}
        by_name = lambda curves: {curve["inkName"]: curve["samples"] for curve in curves}
        plots = {name: by_name(sets[name]) for name in ("linearization", "gray-balance", "light-ink")}
        for name in ("multi-ink-limit", "variable"):
            for extend in {curve["extendInfo"] for curve in sets[name]}:
                plots[f"{name}-{extend}"] = by_name(curve for curve in sets[name] if curve["extendInfo"] == extend)
        plots["merged-gray-balance"] = {
            name: [plots["linearization"][name][place] for place in places]
            for name, places in plots["gray-balance"].items()
        }
        for i, curve_set in enumerate(tool_json("special", self.profile)["entries"][0]["curvesVD"]):
            plots[f"special-0-{i}"] = {
                f'{c["inkName"]} dot size {c["extendInfo"]}': c["samples"] for c in curve_set["curves"]
            }
        for entry in entry_of(self.example, "calibration-history")["payload"]["entries"][1:]:
            for curve in entry_of(entry["payload"], "calibration-linearization")["payload"]["curves"]:
                by_calibration = plots.setdefault(f'calibration-linearization-{curve["inkID"]}-0', {})
                by_calibration[entry["containerData"]["name"]] = curve["samples"]
        return plots

    def test_drift_is_that_of_the_calibrations(self):
        self.open_drawn()
        shown = self.ask("curvesOf('drift-greatest')")
        history = entry_of(self.example, "calibration-history")["payload"]["entries"][1:]
        cyan = [entry["payload"]["entries"][0]["payload"]["curves"][0]["samples"] for entry in history]
        greatest = [max(abs(a - b) for a, b in zip(cyan[0], curve)) / 65535 for curve in cyan]
        heights = [shown["1-0"][0][1] - y for _, y in shown["1-0"]]
        for height, change in zip(heights, greatest):
            self.assertAlmostEqual(height / max(heights), change / max(greatest), delta=0.01)

    def test_separation_along_its_axes(self):
        self.browser.open(self.page)
        part = entry_of(self.example, "chroma")["payload"]
        samples, outputs = base64.b64decode(part["samples"]), len(part["outputChannels"])
        node = lambda *places: samples[(((places[0] * 9 + places[1]) * 9 + places[2]) * 9 + places[3]) * outputs :][
            :outputs
        ]
        paths = {
            "neutral": [node(i, i, i, 0) for i in range(9)],
            "edge-1-paper": [node(0, i, 0, 0) for i in range(9)],
            "edge-3-dark": [node(8, 8, 8, i) for i in range(9)],
        }
        for plot, nodes in paths.items():
            columns = list(self.table(plot).values())
            for output, column in enumerate(columns):
                self.assertEqual([round(float(cell) * 255) for cell in column], [inks[output] for inks in nodes], plot)
        slice_table = self.find("canvas.slice")
        self.show(slice_table)
        slice_table.send_keys(Keys.ARROW_LEFT)
        told = self.texts(".slice-row [role=status] td")
        self.assertEqual(told[0], f"{round(node(3, 4, 0, 0)[0] / 2.55, 1):g}%")

    def test_gamut_is_what_an_icc_engine_computes(self):
        """Paper and solids of a profile with Lab and one with XYZ behind lut16, and of one with lutAToB."""
        made = self.folder / "lut_a_to_b.icc"
        made.write_bytes(lut_a_to_b_profile())
        cmyk = ["0 0 0 0", "100 0 0 0", "0 100 0 0", "0 0 100 0", "0 0 0 100"]
        rgb = ["255 255 255", "0 255 255", "255 0 255", "255 255 0"]
        ghostscript = pathlib.Path("/usr/share/color/icc/ghostscript")
        profiles = {ghostscript / "default_cmyk.icc": cmyk, ghostscript / "ps_cmyk.icc": cmyk, made: rgb}
        page = self.folder / "gamuts.html"
        tool("report", *profiles, "-o", page)
        for number, (profile, colors) in enumerate(profiles.items()):
            with self.subTest(profile=profile.name):
                self.browser.open(page, f"#/{number}")
                columns = self.table("icc-gamut").values()
                shown = [[float(column[i].replace("−", "-")) for column in columns] for i in range(len(colors))]
                self.assert_close(shown, lab_of(profile, colors))

    def assert_close(self, shown, computed):
        self.assertEqual(len(shown), len(computed))
        for ours, theirs in zip(shown, computed):
            for a, b in zip(ours, theirs):
                self.assertAlmostEqual(a, b, delta=0.6)

    def test_pointer_and_keys_tell_values(self):
        self.browser.open(self.page)
        area = self.figure("linearization").find_element(By.CSS_SELECTOR, ".area")
        self.show(area)
        self.browser.until("return document.querySelector('[data-plot=linearization] .curve')")
        ActionChains(self.browser.driver).move_to_element(area).perform()
        tip = self.texts('[data-plot="linearization"] .tip td')
        self.assertEqual(len(tip), 6)
        index = int(area.get_attribute("aria-valuenow"))
        self.assertTrue(100 < index < 156, index)
        cyan = linearization_of(self.example)[0]["samples"]
        self.assertIn(f"({cyan[index]:,})", tip[0])
        area.send_keys(Keys.HOME, Keys.ARROW_RIGHT, Keys.ARROW_RIGHT)
        self.assertEqual(area.get_attribute("aria-valuenow"), "2")
        self.assertIn(f"Cyan {cyan[2] / 655.35:.2g}%", area.get_attribute("aria-valuetext"))
        before = self.ask("curvesOf('linearization')")
        area.send_keys("+")
        self.assertNotEqual(self.ask("curvesOf('linearization')"), before)
        area.send_keys(Keys.ESCAPE)
        self.assertEqual(self.ask("curvesOf('linearization')"), before)
        ActionChains(self.browser.driver).move_to_element_with_offset(area, -80, -60).click_and_hold().move_by_offset(
            120, 90
        ).release().perform()
        self.assertNotEqual(self.ask("curvesOf('linearization')"), before, "a dragged frame zooms")

    def test_legend_switches_inks(self):
        self.open_drawn()
        buttons = self.figure("linearization").find_elements(By.CSS_SELECTOR, ".legend button")
        self.show(buttons[0])
        buttons[0].click()
        self.assertEqual(buttons[0].get_attribute("aria-pressed"), "false")
        self.assertNotIn("1-0", self.ask("curvesOf('linearization')"))
        self.assertEqual(len(self.ask("curvesOf('linearization')")), 5)
        buttons[0].click()
        self.assertEqual(len(self.ask("curvesOf('linearization')")), 6)
        ActionChains(self.browser.driver).double_click(buttons[2]).perform()
        self.assertEqual(list(self.ask("curvesOf('linearization')")), ["3-0"], "a double click shows one ink alone")

    def test_slider_marks_a_calibration(self):
        self.open_drawn()
        slider = self.find("#calibrations input[type=range]")
        self.show(slider)
        marked = "return [...document.querySelectorAll('#calibrations .curve.marked')].map((e) => e.dataset.series)"
        self.assertEqual(self.browser.run(marked), ["7"] * 6)
        slider.send_keys(Keys.ARROW_LEFT, Keys.ARROW_LEFT)
        self.assertEqual(self.browser.run(marked), ["5"] * 6)
        self.assertIn("After service", slider.get_attribute("aria-valuetext"))

    def test_every_section_is_there(self):
        self.browser.open(self.page)
        self.assertEqual(
            ", ".join(self.texts("section > h2")),
            "What it is for, Ink curves, Separation table, ICC profile, Calibrations, Special colours, Media settings, "
            "UV lamp, Masks, Entries",
        )
        self.assertIn("38 42 40 35", " ".join(" ".join(self.texts("#media td")).split()))
        self.assertEqual(self.texts("#lamp tbody tr:first-child td")[:5], ["1", "any", "any", "1200", "11"])
        self.assertEqual(self.texts("#special tbody tr:nth-child(2) td")[2:5], ["20 21", "2", "80"])
        self.browser.draw_all()
        pixels = self.browser.run(
            """const canvas = document.querySelector('canvas[data-pattern="5"]');
          const data = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
          let bits = ''; for (let i = 0; i < data.length; i += 4) bits += data[i] < 128 ? 1 : 0; return bits"""
        )
        pattern = base64.b64decode(entry_of(self.example, "mask-patterns")["payload"]["maskPatterns"][4]["maskPattern"])
        self.assertEqual(pixels, "".join(f"{byte:08b}" for byte in pattern))

    def test_names_and_numbers_by_language(self):
        self.browser.open(self.page)
        names = self.browser.run(
            "return [...document.querySelectorAll('#overview dd[lang]')].map((e) => [e.lang, e.textContent])"
        )
        self.assertIn(["de", "Selbstklebefolie, glänzend weiß"], names)
        self.assertIn(["ja", "光沢塩ビフィルム(粘着)"], names)
        self.browser.languages("de-DE")
        try:
            self.browser.open(self.page)
            self.assertIn("1.200 × 1.200 dpi", self.texts("#overview dd"))
            self.assertIn("65.535", self.table("linearization")["Cyan"])
        finally:
            self.browser.languages("en-US")

    # --- several profiles ---

    def other_document(self):
        other = copy.deepcopy(self.example)
        cyan = linearization_of(other)[0]["samples"]
        cyan[1:-1] = [sample - 1000 for sample in cyan[1:-1]]
        linearization_of(other)[0]["samples"] = [max(sample, 0) for sample in cyan]
        other["entries"].remove(entry_of(other, "large-parameter"))
        entry_of(other, "media-property")["payload"]["mediaProperties"][1]["parameters"][0] = 44
        entry_of(other, "special-color")["payload"]["entries"][0]["parameters"][1][3] = 95
        patterns = entry_of(other, "mask-patterns")["payload"]["maskPatterns"]
        patterns[0]["maskPattern"] = patterns[4]["maskPattern"]
        calibrations = entry_of(other, "calibration-history")["payload"]["entries"]
        black = calibrations[2]["payload"]["entries"][0]["payload"]["curves"][3]["samples"]
        black[10] += 655
        del calibrations[8]
        return other

    def test_comparison_shows_what_differs(self):
        other = self.other_document()
        build(other, self.folder / "other.icc")
        page = self.folder / "compare.html"
        tool("report", self.profile, self.folder / "other.icc", "--compare", "-o", page)
        self.browser.open(page)
        self.browser.draw_all()
        both = {
            f"{side}-{name}" for side in ("a", "b", "difference") for name in ("linearization", "merged-gray-balance")
        }
        self.assertEqual(self.plots(), both, "what is the same is not drawn")
        cyan_a, cyan_b = (linearization_of(document)[0]["samples"] for document in (self.example, other))
        for cell, a, b in zip(self.table("difference-linearization")["Cyan"], cyan_a, cyan_b):
            self.assertAlmostEqual(float(cell.replace("−", "-")), (b - a) / 65535, places=5)
        self.assertEqual(set(self.table("difference-linearization")["Black"]), {"0"})
        self.assertIn("Separation table: the same in both", self.texts("details.same summary"))
        special = self.texts("#special .card td")
        self.assertIn("density 100;", special[0])
        self.assertIn("density 95;", special[1])
        self.assertEqual(self.texts("#masks .card h3"), ["Pattern 1"], "the patterns that differ")
        calibrations = self.texts("#calibrations .card td")
        self.assertTrue(calibrations[1].endswith("; curves differ by up to 1%"), calibrations)
        self.assertEqual([calibrations[2][:6], calibrations[3]], ["August", ""])
        self.assertIn("Only in A.", self.texts("#lamp p"))
        self.assertEqual(["".join(cell.split()) for cell in self.texts("#media .card td")], ["38424035", "44424035"])
        folded = self.browser.driver.find_element(By.XPATH, "//summary[text()='Separation table: the same in both']")
        self.show(folded)
        folded.click()
        self.assertTrue(
            self.browser.until("return document.querySelector('[data-plot=\"a-neutral\"] .layer')"),
            "opens where it is folded",
        )
        self.check_accessibility("comparison")
        self.browser.open(page)
        self.browser.picture("comparison")

    def many(self):
        """Copies of a few profiles, and a file that is none."""
        folder = self.folder / "many"
        folder.mkdir()
        names = ["Glossy vinyl", "Matte paper", "Hochglanzfolie weiß", "光沢紙", "Canvas"]
        kinds = []
        for i, name in enumerate(names):
            document = copy.deepcopy(self.example)
            document["record"]["ScanResolution"] = [600, 720, 1200, 1440, 360][i]
            document["record"]["Binary"].update(DefaultMediaName=name, MediaInfo=[])
            kinds.append(folder / f"kind{i}")
            build(document, kinds[-1])
        for i in range(MANY):
            shutil.copy(kinds[i % len(kinds)], folder / f"profile{i:03}.icc")
        (folder / "broken.icc").write_bytes(b"no profile")
        return sorted(folder.glob("*.icc"))

    def test_index_of_many(self):
        page = self.folder / "many.html"
        started = time.monotonic()
        tool("report", *self.many(), "-o", page, status=1)
        made = time.monotonic() - started
        self.assertLess(page.stat().st_size, 15_000_000)
        self.browser.open(page)
        rows = lambda: self.texts(".index tbody tr")
        self.rows_become(MANY + 1)
        self.assertTrue(any("broken.icc" in row and "ICC profile: ends" in row for row in rows()), "says what does not load")
        head = self.browser.driver.find_elements(By.CSS_SELECTOR, ".index thead button")
        head[3].click()
        self.assertIn("360 × 1,200", [row for row in rows() if "broken" not in row][0])
        head[3].click()
        self.assertIn("1,440 × 1,200", [row for row in rows() if "broken" not in row][0])
        search = self.find("input[type=search]")
        search.send_keys("weiß 1,200")
        self.rows_become(MANY // 5)
        self.check_accessibility("index")
        search.clear()
        search.send_keys("profile00")
        self.browser.picture("index-dark", height=900)
        boxes = self.browser.driver.find_elements(By.CSS_SELECTOR, ".index input[type=checkbox]")
        boxes[0].click()
        boxes[1].click()
        self.browser.driver.find_element(By.XPATH, "//button[text()='Compare the two chosen']").click()
        self.assertTrue(self.browser.until("return document.querySelector('h1').textContent === 'Comparison'"))
        self.browser.run("location.hash = '#/1'")
        self.assertTrue(self.browser.until("return document.querySelector('[data-plot=linearization]') !== null"))
        self.assertIn("Left out to keep this page small", self.texts("#separation")[0])
        self.measure(page, made)

    def measure(self, page, made):
        """How long the page takes to open, beside a page of as many bytes that has nothing to do."""
        inert = self.folder / "inert.html"
        inert.write_bytes(
            b"<!DOCTYPE html><meta charset=utf-8><script type=text/plain>" + b"x" * page.stat().st_size + b"</script>"
        )
        opened = {path: [] for path in (page, inert)}
        for path in [page, inert] * 3:
            self.browser.open(path)
            opened[path].append(self.browser.run("return performance.getEntriesByType('navigation')[0].loadEventEnd"))
        print(
            f"\n{MANY} profiles: {page.stat().st_size} bytes, made in {made:.1f} s, opened in {min(opened[page]):.0f} ms; "
            f"as many bytes of nothing in {min(opened[inert]):.0f} ms"
        )

    def test_every_kind_of_profile_opens(self):
        """Containers, text-headed and plain ICC profiles, and the odd ones that the fuzzers start from."""
        files = [self.folder / "two_inks.qct", self.folder / "old.qpf"]
        for document, path in zip(("container.json", "text_headed/glossy.json"), files):
            tool("build", ROOT / "examples" / document, "-o", path)
        files.append(entry_of(self.example, "icc")["file"])
        for kind in ("container", "qpf", "text_header"):
            files += sorted((ROOT / "fuzz/corpus" / kind).iterdir())
        page = self.folder / "kinds.html"
        subprocess.run([TOOL, "report", *files, "-o", page], capture_output=True, check=False, env=TABLES)
        self.browser.open(page)
        lines = self.browser.run("return JSON.parse(document.getElementById('index').textContent).profiles")
        loaded = [i for i, line in enumerate(lines) if "failure" not in line]
        self.assertTrue({0, 1, 2} <= set(loaded))
        for i in loaded:
            self.browser.run(f"location.hash = '#/{i}'")
            self.assertTrue(self.browser.until("return document.querySelectorAll('section').length"), lines[i])
            self.browser.draw_all()
            self.browser.run(UNFOLD)
            self.assertEqual(self.browser.complaints(), [], lines[i])

    # --- text is data ---

    def test_hostile_text_does_nothing(self):
        document = copy.deepcopy(self.example)
        document["record"]["Binary"].update(
            DefaultMediaName=HOSTILE[:60], MakerText="<b>bold</b>", MediaInfo=[{"Language": 9, "Name": HOSTILE[:60]}]
        )
        entry_of(document, "linearization")["label"] = HOSTILE
        linearization_of(document)[0]["inkName"] = HOSTILE
        entry_of(document, "chroma")["payload"]["inputChannels"][0]["channelName"] = HOSTILE
        for entry in entry_of(document, "calibration-history")["payload"]["entries"][1:]:
            entry["containerData"]["name"] = "<img src=x>"
        profile = self.folder / "<svg onload=window.taken=3>.icc"
        build(document, profile)
        page = self.folder / "hostile.html"
        tool("report", profile, profile, "-o", page)
        for address in ("", "#/0", "#/compare/0/1"):
            self.browser.open(page, address)
            self.browser.draw_all()
            self.browser.run(UNFOLD)
            time.sleep(0.2)
            self.assertIsNone(self.browser.run("return window.taken ?? null"))
            self.assertEqual(self.texts("img, iframe, b b, svg[onload]"), [])
        self.browser.open(page, "#/0")
        self.assertIn(HOSTILE, self.texts('[data-plot="linearization"] .legend span'))
        self.assertIn("<b>bold</b>", self.texts("#overview dd"))

    def test_policy_forbids_what_is_not_in_the_file(self):
        self.browser.open(self.page)
        blocked = self.browser.driver.execute_async_script(
            """
          const done = arguments[0];
          const blocked = new Set();
          addEventListener('securitypolicyviolation', (event) => blocked.add(event.effectiveDirective));
          const attempts = [['script', {textContent: new String('window.taken = 1')}], ['img', {src: 'http://localhost:9/x.png'}], ['style', {textContent: 'p {}'}]];
          for (const [name, what] of attempts) { try { document.body.append(Object.assign(document.createElement(name), what)); } catch { blocked.add(name); } }
          try { document.body.innerHTML += 'x'; } catch { blocked.add('innerHTML'); }
          fetch('http://localhost:9/').catch(() => setTimeout(() => done([...blocked]), 200));"""
        )
        for directive in ("img-src", "style-src-elem", "connect-src", "innerHTML"):
            self.assertIn(directive, blocked)
        self.assertTrue({"script", "script-src-elem"} & set(blocked), blocked)
        self.assertIsNone(self.browser.run("return window.taken ?? null"))
        self.assertGreater(len(self.browser.complaints()), 0, "these are the ones that were provoked")

    # --- how it looks, and to whom ---

    def check_accessibility(self, name):
        self.browser.draw_all()
        self.assertEqual(self.ask("accessibilityFaults()"), [], name)
        if not AXE:
            return
        self.browser.run(pathlib.Path(AXE).read_text(encoding="utf-8"))
        for scheme in ("light", "dark"):
            self.browser.scheme(scheme)
            result = self.browser.driver.execute_async_script(
                "axe.run(document, {resultTypes: ['violations']}).then(arguments[0])"
            )
            found = [(v["id"], v["nodes"][0]["html"], v["nodes"][0]["failureSummary"]) for v in result["violations"]]
            self.assertEqual(found, [], f"axe on {name} in {scheme}")

    def test_accessibility_of_a_profile(self):
        self.browser.open(self.page)
        self.check_accessibility("profile")

    def test_light_dark_phone_and_paper(self):
        self.browser.open(self.page)
        self.browser.picture("profile-light")
        background = "return getComputedStyle(document.body.parentElement).backgroundColor"
        light = self.browser.run(background)
        self.browser.scheme("dark")
        self.assertTrue(self.browser.until(background + " !== arguments[0]", light), "follows the reader's scheme")
        self.browser.picture("profile-dark")
        self.find(".actions button").click()
        self.assertEqual(self.browser.run(background), light, "or the reader's choice")
        self.browser.open(self.page)
        self.browser.size(360, 740)
        self.browser.draw_all()
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 360, "fits a phone")
        self.browser.picture("profile-phone", width=360)
        self.browser.open(self.page)
        pdf = self.browser.pdf("profile")
        pages = subprocess.run(
            ["pdftotext", "-layout", pdf, "-"], capture_output=True, text=True, check=True
        ).stdout.split("\f")[:-1]
        for title in ("Ink curves", "Separation table", "Calibrations", "Masks"):
            self.assertTrue(any(page.strip().startswith(title) for page in pages), f"{title} starts a page")
        self.assertIn("Light magenta", "".join(pages))
        self.assertLess(len(pages), 16)

    def test_picture_for_the_readme(self):
        """The one that stands in docs/images, of three plots that lie apart in the page."""
        self.open_drawn()
        self.browser.run(
            """for (const card of document.querySelectorAll('#curves .card, #separation > *:not(h2, .card:has([data-plot=neutral])), section:not(#curves, #separation)')) {
            if (!card.querySelector('[data-plot=linearization], [data-plot=light-ink]')) card.style.display = 'none'; }
          document.getElementById('curves').scrollIntoView({behavior: 'instant'})"""
        )
        self.browser.command(
            "Emulation.setDeviceMetricsOverride", width=1180, height=1130, deviceScaleFactor=0.8, mobile=False
        )
        area = self.figure("linearization").find_element(By.CSS_SELECTOR, ".area")
        ActionChains(self.browser.driver).move_to_element_with_offset(area, -90, 0).perform()
        time.sleep(0.3)
        self.browser.driver.save_screenshot(str(PICTURES / "readme.png"))
        self.browser.size(1280)
        self.assertTrue(20_000 < (PICTURES / "readme.png").stat().st_size < 200_000)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
