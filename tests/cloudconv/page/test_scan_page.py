"""The page of a scan, in a browser. ripples.html is what MakePages.cpp calls ripples()."""

import pytest
from conftest import share

HOSTILE = "</script><script>window.hacked = 1</script><img src=x onerror=\"window.hacked = 1\">"
PAPER = (255, 255, 255)


@pytest.fixture
def ripples(open_page):
    return open_page("ripples.html")


def is_paper(pixel):
    return pixel == PAPER


def is_red(pixel):
    return pixel[0] > 120 and pixel[2] < 60


def is_blue(pixel):
    return pixel[2] > 120 and pixel[0] < 60


def units_per_pixel(page):
    """How long a pixel is at what the view looks at: by the line that tells lengths."""
    return float(page.text("#scale-text")) / page.one("#scale-bar").rect["width"]


def halves(page):
    picture = page.picture()
    middle = picture.width // 2
    return (picture.crop((0, 0, middle, picture.height)),
            picture.crop((middle, 0, picture.width, picture.height)))


def test_shows_the_colours_of_the_file_where_it_has_some(ripples):
    ripples.click("[data-view=top]")
    left, right = halves(ripples)
    assert share(left, is_red) > 0.4 and share(left, is_blue) < 0.05
    assert share(right, is_blue) > 0.4 and share(right, is_red) < 0.05


def test_is_coloured_by_intensity_or_height_when_asked(ripples):
    ripples.click("[data-view=top]")
    ripples.click("[value=intensity]")
    picture = ripples.picture()
    middle = picture.getpixel((picture.width // 2, picture.height // 2 + 8))
    assert middle[0] > 120 and middle[2] < 120, "brightest in the middle"
    assert ripples.text("#scale-name") == "Intensity"
    assert share(picture, is_red) < 0.01
    ripples.click("[value=height]")
    assert ripples.text("#scale-name") == "Height (z)"
    assert ripples.text("#low-text").startswith("\u22120.")
    ripples.click("#window-all")
    assert ripples.text("#low-text") == "\u22120.4951"
    assert ripples.text("#high-text") == "0.9602"


def test_the_mouse_turns_moves_and_zooms(ripples):
    ripples.click("[data-view=top]")
    # Half a turn about what is up: left is right.
    ripples.drag(300, 300, 3.14159 / 0.006, 0)
    left, right = halves(ripples)
    assert share(left, is_blue) > 0.4 and share(right, is_red) > 0.4
    ripples.drag(300, 300, 0, -262)
    shown = share(ripples.picture(), lambda pixel: not is_paper(pixel))
    assert shown < 0.35, "seen from the side"
    for _ in range(4):
        ripples.wheel(450, 370, 200)
    assert share(ripples.picture(), lambda pixel: not is_paper(pixel)) < shown / 2
    ripples.click("#fit")
    ripples.drag(300, 300, 0, 250, button="right")
    picture = ripples.picture()
    upper = picture.crop((100, 60, picture.width - 100, picture.height // 3))
    assert share(upper, lambda pixel: is_red(pixel) or is_blue(pixel)) < 0.02


def test_fingers_and_keys_zoom_and_turn(ripples):
    ripples.click("[data-view=top]")
    whole, before = ripples.picture(), units_per_pixel(ripples)
    beside = (5, 200, 45, 500)
    assert share(whole.crop(beside), is_paper) == 1
    ripples.pinch(450, 370, 80, 200)
    assert units_per_pixel(ripples) == pytest.approx(before / 2.5, rel=0.02)
    assert share(ripples.picture().crop(beside), is_paper) < 0.95, "now there are points"
    ripples.run("document.getElementById('stage').focus()")
    ripples.press("0")
    assert units_per_pixel(ripples) == pytest.approx(before, rel=0.02)
    assert ripples.picture() == whole
    ripples.press("2")
    turned = ripples.picture()
    assert share(turned, is_paper) > share(whole, is_paper) + 0.2, "from the front"
    ripples.press("\ue012", "\ue012", "\ue013")
    assert ripples.picture() != turned


def test_a_click_tells_the_coordinates_of_a_point(ripples):
    ripples.click("[data-view=top]")
    _, _, width, height = ripples.stage()
    ripples.click_at(width / 2, height / 2)
    words = ripples.text("#card")
    # The points around the middle lie 0.025 beside it, and their coordinates are the file's.
    assert words.startswith(("x 4,511,999.97", "x 4,512,000.02")), words
    assert "y 5,399,999.97" in words or "y 5,400,000.02" in words, words
    assert "z 0.9" in words
    assert "intensity 9" in words
    assert "colour" in words
    assert ripples.one("#ring").is_displayed()
    ripples.press("\ue00c")
    assert not ripples.one("#card").is_displayed()


def test_larger_points_cover_more(ripples):
    ripples.set("#point-size", 1)
    shown = share(ripples.picture(), lambda pixel: not is_paper(pixel))
    ripples.set("#point-size", 8)
    assert share(ripples.picture(), lambda pixel: not is_paper(pixel)) > shown * 1.1


def test_names_are_texts_and_coordinates_are_those_of_the_file(ripples):
    assert ripples.text("#title").startswith(HOSTILE)
    assert HOSTILE in ripples.text("#notes")
    assert "x4,511,995 … 4,512,005y5,399,995 … 5,400,005" in ripples.text("#about")
    assert ripples.all("img") == []


def test_tells_how_many_points_it_shows_of_how_many(open_page):
    page = open_page("thin.html")
    assert page.text("#summary") == "1,000 of 40,000 points"
    assert "Of 40,000 points this page shows 1,000, evenly picked" in page.text("#notes")
    # Neither intensities nor colours: there is the height to choose.
    assert [e.is_displayed() for e in page.all("[name=colour-by]")] == [False, True, False]
    page.click("[data-view=top]")
    picture = page.picture()
    # The square in the middle, on which no button lies, in columns and in rows.
    middle, centre, half = picture.width // 2, picture.height // 2, 2 * picture.height // 5
    edges = range(-half, half - half // 8, half // 8)
    parts = [(middle + at, centre - half, middle + at + half // 8, centre + half) for at in edges]
    parts += [(middle - half, centre + at, middle + half, centre + at + half // 8) for at in edges]
    shown = [share(picture.crop(part), lambda pixel: not is_paper(pixel)) for part in parts]
    assert max(shown) < 2 * min(shown), "the points are picked from everywhere, without stripes"


def test_a_scan_without_points_opens(open_page):
    page = open_page("no_points.html")
    assert page.text("#summary") == "0 points"
    assert "Left out: 1 point without a place." in page.text("#notes")
    page.click_at(300, 300)
    page.press("1", "+")


def test_says_so_where_the_browser_cannot_draw_in_space(open_page, driver):
    script = driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {
        "source": "HTMLCanvasElement.prototype.getContext = () => null;"
                  "addEventListener('DOMContentLoaded',"
                  " () => { document.documentElement.dataset.ready = 'true'; });"})
    page = open_page("ripples.html")
    driver.execute_cdp_cmd("Page.removeScriptToEvaluateOnNewDocument", script)
    assert "WebGL 2" in page.text("#failure")
    assert page.one("#failure").is_displayed()
    assert "Points40,000" in page.text("#about")


def test_dark_and_narrow(ripples):
    ripples.scheme("dark")
    assert ripples.picture().getpixel((5, 400)) == (16, 19, 25)
    ripples.size(360, 700)
    assert ripples.run("return document.documentElement.scrollWidth") <= 360
    assert share(ripples.picture(), is_red) > 0.05


def test_everything_that_can_be_used_has_a_name(ripples):
    nameless = ripples.run("""
        return [...document.querySelectorAll('button, input, select, [tabindex="0"]')].filter((e) =>
            !(e.getAttribute('aria-label') || e.textContent.trim() || e.labels?.length))
            .map((e) => e.outerHTML);""")
    assert nameless == []
