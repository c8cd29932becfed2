"""The page of a drawing, in a browser. shapes.html is what MakePages.cpp calls shapes()."""

import re

import pytest
from conftest import share

HOSTILE = "</script><script>window.hacked = 1</script><img src=x onerror=\"window.hacked = 1\">"
PAPER = (255, 255, 255)
BLUE, VERMILLION = (0, 114, 178), (213, 94, 0)
ACCENT, ALARM = (37, 99, 235), (194, 18, 61)


@pytest.fixture
def shapes(open_page):
    return open_page("shapes.html")


def plane(page):
    """Tells where a place of the drawing is on the stage, as it is shown now: a function of x and y,
    by the readout of two places there."""
    _, _, width, height = page.stage()

    def readout(part):
        at = page.hover(part * width, part * height)
        numbers = re.findall(r"[\u2212-]?\d[\d,]*\.?\d*", page.text("#readout"))
        return at, [float(text.replace("\u2212", "-").replace(",", "")) for text in numbers[:2]]

    (at1, told1), (at2, told2) = readout(0.3), readout(0.7)
    return lambda *place: tuple(a + (wanted - t) / (u - t) * (b - a)
                                for wanted, a, b, t, u in zip(place, at1, at2, told1, told2))


def place(page, x, y):
    """Where one place of the drawing is on the stage now."""
    return plane(page)(x, y)


def near(picture, x, y, colour, reach=3, ground=PAPER, least=0.5):
    """Whether a colour is within some pixels of a place. Thin lines are mixed with the ground: there
    is to be at least so much of the colour."""
    path = [c - g for c, g in zip(colour, ground)]

    def is_wanted(pixel):
        along = sum((p - g) * d for p, g, d in zip(pixel, ground, path)) / sum(d * d for d in path)
        along = min(along, 1)
        return along >= least and all(
            abs(p - g - along * d) <= 20 for p, g, d in zip(pixel, ground, path))

    return any(is_wanted(picture.getpixel((round(x) + dx, round(y) + dy)))
               for dx in range(-reach, reach + 1) for dy in range(-reach, reach + 1))


def extent(picture, colour, box=None):
    """The width and height of what has a colour."""
    picture = picture.crop(box) if box else picture
    found = [(i % picture.width, i // picture.width)
             for i, pixel in enumerate(picture.getdata())
             if max(abs(a - b) for a, b in zip(pixel, colour)) <= 30]
    assert found
    xs, ys = zip(*found)
    return max(xs) - min(xs), max(ys) - min(ys)


def test_shows_the_contours_in_their_places_and_colours(shapes):
    picture, at = shapes.picture(), plane(shapes)
    assert near(picture, *at(60, 0), BLUE)
    assert near(picture, *at(120, 60), BLUE)
    assert near(picture, *at(30, 60), VERMILLION)
    assert near(picture, *at(10, 40), VERMILLION)
    x, y = at(30, 40)
    assert picture.getpixel((round(x), round(y + 20))) == PAPER


def test_names_of_files_and_layers_are_texts_whatever_they_say(shapes):
    assert shapes.text("#title").startswith(HOSTILE)
    assert shapes.run("return document.title").startswith(HOSTILE)
    shapes.click("#layers-tab")
    assert HOSTILE in shapes.text("#layers")
    shapes.click("#findings-tab")
    assert "unit missing " + HOSTILE in shapes.text("#findings")
    shapes.click("#about-tab")
    assert "1 × INSERT on layer " + HOSTILE in shapes.text("#left-out")
    assert shapes.all("img") == []
    assert shapes.run("return [...document.scripts].filter((s) => !s.type).length") == 1
    assert shapes.run("return window.hacked") is None


def test_runs_no_script_but_its_own_and_asks_no_host(shapes):
    shapes.run("const script = document.createElement('script');"
               "script.textContent = 'window.hacked = 1'; document.body.append(script);"
               "document.body.insertAdjacentHTML('beforeend', '<b onclick=\"window.hacked = 1\">');"
               "document.body.lastChild.click();")
    assert shapes.run("return window.hacked") is None
    asked = shapes.driver.execute_async_script(
        "const done = arguments[0];"
        "fetch('https://localhost:9/').then(() => done('answered'), () => done('refused'));")
    assert asked == "refused"
    complaints = shapes.complaints()
    assert len(complaints) >= 3
    assert all("Content Security Policy" in complaint for complaint in complaints)


def test_wheel_zooms_about_the_pointer(shapes):
    def readout():
        shapes.hover(640, 220)
        return shapes.text("#readout")

    before, scale = readout(), shapes.text("#scale-text")
    at = plane(shapes)
    apart = at(110.05, 20)[0] - at(110, 20)[0]
    for _ in range(8):
        shapes.wheel(640, 220, -120)
    assert shapes.text("#scale-text") != scale
    # The same place, told with more decimals.
    for old, new in zip(before.split(","), readout().split(",")):
        assert float(new.split()[0]) == pytest.approx(float(old.split()[0]), abs=0.2)
    at = plane(shapes)
    wider = at(110.05, 20)[0] - at(110, 20)[0]
    assert wider == pytest.approx(6.82 * apart, rel=0.05)


def test_fingers_zoom_and_the_mouse_drags(shapes):
    x1, y1 = place(shapes, 30, 40)
    shapes.pinch(x1, y1, 100, 200)
    at = plane(shapes)
    assert at(30, 40) == (pytest.approx(x1, abs=2), pytest.approx(y1, abs=2))
    wide = at(50, 40)[0] - at(30, 40)[0]
    shapes.drag(300, 300, 70, -40)
    x2, y2 = place(shapes, 30, 40)
    assert (x2 - x1, y2 - y1) == (pytest.approx(70, abs=2), pytest.approx(-40, abs=2))
    shapes.click("#fit")
    at = plane(shapes)
    assert at(50, 40)[0] - at(30, 40)[0] == pytest.approx(wide / 2, rel=0.05)


def test_keys_move_and_zoom(shapes):
    x, y = place(shapes, 60, 40)
    shapes.run("document.getElementById('stage').focus()")
    shapes.press("\ue014")  # to the right: what is shown moves left
    at = plane(shapes)
    moved = at(60, 40)
    assert (moved[0] - x, moved[1] - y) == (pytest.approx(-60, abs=2), pytest.approx(0, abs=2))
    width = at(120, 0)[0] - at(0, 0)[0]
    shapes.press("+", "+")
    at = plane(shapes)
    assert at(120, 0)[0] - at(0, 0)[0] == pytest.approx(width * 1.5625, rel=0.02)
    shapes.press("0")
    assert place(shapes, 60, 40) == (pytest.approx(x, abs=2), pytest.approx(y, abs=2))


def test_the_contour_below_the_pointer_is_lit_and_told(shapes):
    at = place(shapes, 30, 60)
    shapes.hover(*at)
    assert shapes.text("#card").startswith("Contour 2closed · 125.6\u00a0mm" + HOSTILE)
    assert "CIRCLE 101" in shapes.text("#card")
    assert near(shapes.picture(), at[0], at[1], ACCENT)
    shapes.hover(at[0], at[1] + 60)
    assert not shapes.one("#card").is_displayed()
    assert not near(shapes.picture(), *at, ACCENT)


def test_choosing_a_contour_tells_all_about_it(shapes):
    shapes.click_at(*place(shapes, 80, 20))
    details = shapes.text("#details")
    for words in ("Contour 3", "Kindopen", "Length50\u00a0mm", "Points2", "Starts at60, 20",
                  "LINE 102 in block insert ABC"):
        assert words in details
    assert shapes.text(".line.chosen .number") == "3"
    shapes.press("n")
    assert "Contour 4" in shapes.text("#details")
    shapes.press("\ue00c")
    assert not shapes.one("#details").is_displayed()
    shapes.all(".line-button")[0].click()
    assert "Contour 1" in shapes.text("#details")
    assert near(shapes.picture(), *place(shapes, 60, 0), ACCENT)


def test_contours_and_layers_are_switched_on_and_off(shapes):
    at = plane(shapes)
    on_circle, on_outline = at(30, 60), at(60, 80)
    shapes.all(".line input")[1].click()
    shapes.settle()
    assert not near(shapes.picture(), *on_circle, VERMILLION)
    assert near(shapes.picture(), *on_outline, BLUE)
    assert shapes.text("#contour-count").startswith("5 of 6 contours")
    shapes.click("#show-none")
    assert not near(shapes.picture(), *on_outline, BLUE)
    shapes.click("#show-all")
    shapes.click("#layers-tab")
    # Of the layer without contours there is nothing to switch.
    assert len(shapes.all("#layers input")) == 3
    shapes.click("#layers input")
    assert not near(shapes.picture(), *on_outline, BLUE)
    assert near(shapes.picture(), *on_circle, VERMILLION)
    # A contour that is not shown is not below the pointer either.
    shapes.hover(*on_outline)
    assert not shapes.one("#card").is_displayed()


def test_the_filter_finds_contours_by_number_kind_layer_and_handle(shapes):
    for words, numbers in (("open", "346"), ("2", "2"), ("marks", "56"), ("102", "3"),
                           ("circle", "2"), ("open marks", "6"), ("nothing such", "")):
        shapes.set("#filter", words)
        listed = shapes.run("return [...document.querySelectorAll('.lines .number')]"
                            ".map((e) => e.textContent).join('')")
        assert listed == numbers, words


def test_a_finding_zooms_to_its_rings_which_keep_their_size(shapes):
    shapes.click("#findings-tab")
    assert shapes.text("#findings-tab .badge") == "2"
    x, y = (round(v) for v in place(shapes, 110, 20))
    box = (x - 40, y - 40, x + 40, y + 40)
    before = extent(shapes.picture(), ALARM, box)
    assert before == (pytest.approx(24, abs=3), pytest.approx(24, abs=3))
    shapes.click(".finding")
    at = plane(shapes)
    assert at(110.05, 20)[0] - at(110, 20)[0] > 60, "both ends can be told apart"
    shapes.press("+", "+", "+")
    left = place(shapes, 110, 20)
    box = tuple(round(v) for v in (left[0] - 30, left[1] - 30, left[0] + 30, left[1] + 30))
    after = extent(shapes.picture(), ALARM, box)
    # The chosen one is a little larger than the others, at any zoom.
    assert after == (pytest.approx(35, abs=3), pytest.approx(35, abs=3))
    assert not shapes.all(".finding")[1].is_enabled(), "a finding without a place"


def test_open_ends_have_rings_and_directions_arrows_until_they_are_switched_off(shapes):
    ink = (28, 34, 48)
    end = place(shapes, 60, 60)
    assert near(shapes.picture(), end[0] - 5.5, end[1], ink)
    shapes.click("[data-sign=ends]")
    assert not near(shapes.picture(), end[0] - 6, end[1], ink, reach=2)
    inked = share(shapes.picture(), lambda pixel: pixel == BLUE)
    shapes.click("[data-sign=directions]")
    assert share(shapes.picture(), lambda pixel: pixel == BLUE) < 0.8 * inked
    assert shapes.one("[data-sign=ends]").get_attribute("aria-pressed") == "false"


def test_the_slider_moves_a_tool_along_contours_and_the_ways_between(shapes):
    assert shapes.text("#walked") == "0.0 of 696.1\u00a0mm"
    assert shapes.text("#walked-more") == "ways between: 124.7\u00a0mm"
    # The walk is 820.8 long: a tenth of it is on the first contour, 82 from its start.
    shapes.set("#walk-slider", 1000)
    assert shapes.text("#walked") == "82.1 of 696.1\u00a0mm"
    assert shapes.text("#walked-more") == "contour 1 of 6 · ways 0.0\u00a0mm"
    picture, at = shapes.picture(), plane(shapes)
    assert near(picture, *at(82.1, 0), ACCENT)
    assert near(picture, *at(40, 0), BLUE)
    assert not near(picture, *at(120, 50), BLUE), "not walked yet"
    shapes.set("#walk-slider", 5200)
    assert shapes.text("#walked-more").startswith("way to contour 2 of 6 · ways 26.8")
    shapes.set("#walk-slider", 10000)
    assert shapes.text("#walked") == "696.1 of 696.1\u00a0mm"
    shapes.click("#rewind")
    assert shapes.text("#walked") == "0.0 of 696.1\u00a0mm"
    assert near(shapes.picture(), *at(120, 50), BLUE)


def test_the_walk_plays_pauses_and_ends(shapes):
    def walked():
        return float(shapes.text("#walked").split()[0])

    shapes.press(" ")
    shapes.wait(lambda: walked() > 0)
    shapes.press(" ")
    at = walked()
    shapes.settle()
    assert walked() == at
    shapes.set("#duration", "10", "change")
    shapes.set("#walk-slider", 9900)
    shapes.click("#play")
    shapes.wait(lambda: walked() == 696.1)
    assert shapes.one("#play").get_attribute("aria-label") == "Play the walk"


def test_what_was_left_out_and_the_notes_are_told(shapes):
    shapes.click("#about-tab")
    assert "24 × MTEXT on layer NOTES: annotation" in shapes.text("#left-out")
    assert "Left out: 25 entities" in shapes.text("#left-out")
    assert "the drawing was made for a test" in shapes.text("#left-out")
    assert "Size120\u00a0mm × 80\u00a0mm" in shapes.text("#about")


def test_ten_thousand_contours_are_listed_by_the_few_lines_in_sight(open_page):
    page = open_page("crowd.html")
    assert page.text("#contour-count").startswith("10,000 contours")
    assert len(page.all(".lines .line")) < 50
    page.run("document.getElementById('contours').scrollTop = 1e9")
    page.settle()
    assert "10000" in [e.text for e in page.all(".lines .number")]
    assert len(page.all(".lines .line")) < 50
    # A contour that is chosen in the drawing comes into sight in the list.
    page.click_at(*place(page, 500 - 4, 500))
    assert page.text(".line.chosen .number") == "5051"
    page.run("document.querySelector('.line.chosen .line-button').focus()")
    page.press("\ue010")  # the end of the list
    assert page.text(".line.chosen .number") == "10000"
    page.set("#filter", "row-7")
    assert page.text("#contour-count").startswith("1,200 contours")


def test_a_crowded_drawing_is_coloured_by_layer_and_follows_the_view(open_page):
    page = open_page("crowd.html")
    assert page.one("#colour-by").get_attribute("value") == "layer"
    assert page.one("[data-sign=ways]").get_attribute("aria-pressed") == "false"
    # A drawing that takes long to paint is moved along as it was painted, and painted when the view
    # rests: both in the end show the same.
    first = place(page, 496, 500)
    page.drag(400, 300, 100, 50)
    page.wheel(400, 300, -400)
    assert page.run("return document.getElementById('base-canvas').style.transform") == ""
    moved = place(page, 496, 500)
    assert abs(moved[0] - first[0]) > 50
    assert near(page.picture(), *moved, (0, 158, 115))


def test_a_drawing_of_nothing_opens(open_page):
    page = open_page("nothing.html")
    assert page.text("#summary").startswith("0 contours")
    assert page.text("#findings-panel").strip() == "Nothing found."
    page.click("#play")
    page.press("n", "+", "0")
    page.click_at(300, 300)


def test_follows_the_scheme_and_has_a_button_for_the_other(shapes):
    assert shapes.picture().getpixel((5, 300)) == PAPER
    shapes.scheme("dark")
    assert shapes.picture().getpixel((5, 300)) == (16, 19, 25)
    assert near(shapes.picture(), *place(shapes, 60, 80), (88, 174, 242), ground=(16, 19, 25))
    shapes.click("#scheme-button")
    assert shapes.picture().getpixel((5, 300)) == PAPER


def test_works_at_the_width_of_a_phone(shapes):
    shapes.size(360, 700)
    assert shapes.run("return document.documentElement.scrollWidth") <= 360
    for name in ("#play", "#walk-slider", "#panel-button", "#fit", "#contours-tab"):
        box = shapes.one(name).rect
        assert box["x"] >= 0 and box["x"] + box["width"] <= 360, name
        assert box["height"] >= 24, name
    assert near(shapes.picture(), *place(shapes, 60, 0), BLUE)
    height = shapes.stage()[3]
    shapes.click("#panel-button")
    assert shapes.stage()[3] > height
    assert shapes.one("#panel-button").get_attribute("aria-expanded") == "false"


@pytest.mark.parametrize("width, height", [(320, 568), (390, 844), (844, 390)])
def test_no_button_covers_the_drawing_on_a_phone(shapes, width, height):
    shapes.size(width, height)
    chips = [chip.rect for chip in shapes.all(".chips button")]
    assert len({chip["y"] for chip in chips}) == 1, "in one line"
    left, top, stage_width, _ = shapes.stage()
    assert all(chip["x"] + chip["width"] <= left + stage_width for chip in chips)
    assert top + place(shapes, 60, 80)[1] > max(chip["y"] + chip["height"] for chip in chips)


def test_everything_that_can_be_used_has_a_name_and_the_keyboard_gets_there(shapes):
    nameless = shapes.run("""
        return [...document.querySelectorAll('button, input, select, [tabindex="0"]')].filter((e) =>
            !(e.getAttribute('aria-label') || e.textContent.trim() || e.labels?.length))
            .map((e) => e.outerHTML);""")
    assert nameless == []
    shapes.run("document.activeElement.blur(); window.reached = [];"
               "addEventListener('focusin', (event) => window.reached.push(event.target.id));")
    shapes.press(*30 * ["\ue004"])
    assert {"help-button", "stage", "zoom-in", "contours-tab", "filter", "play", "walk-slider",
            "duration"} <= set(shapes.run("return window.reached"))
    shapes.press("?")
    assert shapes.one("#help").is_displayed()
    shapes.press("\ue00c")
    assert not shapes.one("#help").is_displayed()


def test_tabs_are_chosen_by_arrow_keys(shapes):
    shapes.click("#contours-tab")
    shapes.press("\ue014")
    assert shapes.one("#layers-panel").is_displayed()
    assert not shapes.one("#contours-panel").is_displayed()
    shapes.press("\ue012", "\ue012")
    assert shapes.one("#about-panel").is_displayed()
