"""A browser for the tests of pages, and what holds for every page that it opens."""

import io
import json
import os
import pathlib
import shutil
import subprocess
import time

import pytest

webdriver = pytest.importorskip("selenium.webdriver", reason="python3-selenium is missing")
image_module = pytest.importorskip("PIL.Image", reason="python3-pil is missing")

WIDTH, HEIGHT = 1200, 800
# Seconds for what takes less than one on a computer that does nothing else.
LONGEST_WAIT = 120


def share(picture, wanted):
    """Which part of a picture has a colour that is wanted."""
    pixels = picture.width * picture.height
    return sum(number for number, pixel in picture.getcolors(pixels) if wanted(pixel)) / pixels


def pytest_collection_modifyitems(items):
    for program in ("chromium", "chromedriver"):
        if shutil.which(program) is None:
            for item in items:
                item.add_marker(pytest.mark.skip(reason=f"{program} is missing"))


class Page:
    """A page in the browser. Closed with close(), which tells what it should not have done."""

    def __init__(self, driver, address):
        self.driver = driver
        driver.get_log("browser")
        driver.get_log("performance")
        driver.get("about:blank")
        driver.get(address)
        self.wait(lambda: self.run("return document.documentElement.dataset.ready") == "true")
        self.settle()

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, condition):
        """Waits until a condition holds; how long that takes says nothing."""
        end = time.monotonic() + LONGEST_WAIT
        while not condition():
            assert time.monotonic() < end, "waited in vain"
            time.sleep(0.02)

    def settle(self):
        """Waits until the page has painted all that it has to. A page asks for the next frame, and
        what it does then may ask for another one."""
        self.driver.execute_async_script("""
            const done = arguments[0];
            const frames = (count, next) =>
                requestAnimationFrame(() => (count > 1 ? frames(count - 1, next) : next()));
            const look = () => {
                const isBusy = document.documentElement.dataset.whole === "false" ||
                    document.getAnimations().some((a) => a.playState === "running");
                if (isBusy) {
                    frames(1, look);
                } else {
                    done();
                }
            };
            frames(2, look);""")

    def one(self, selector):
        return self.driver.find_element("css selector", selector)

    def all(self, selector):
        return self.driver.find_elements("css selector", selector)

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0]).textContent", selector)

    def click(self, selector):
        self.one(selector).click()
        self.settle()

    def set(self, selector, value, event="input"):
        """Sets a slider or a choice, as a hand would."""
        self.run("const [selector, value, event] = arguments;"
                 "const field = document.querySelector(selector); field.value = value;"
                 "field.dispatchEvent(new Event(event, {bubbles: true}));",
                 selector, value, event)
        self.settle()

    def press(self, *keys):
        """Presses keys, on whatever has the focus."""
        actions = webdriver.ActionChains(self.driver)
        for key in keys:
            actions.send_keys(key)
        actions.perform()
        self.settle()

    def stage(self):
        return self.run("const box = document.getElementById('stage').getBoundingClientRect();"
                        "return [box.left, box.top, box.width, box.height]")

    def mouse(self, kind, x, y, **more):
        """A movement of the mouse, such as "mouseMoved", at a place of the stage. Returns the place
        that it was at: screens have whole pixels."""
        left, top, _, _ = self.stage()
        at_x, at_y = round(left + x), round(top + y)
        self.driver.execute_cdp_cmd("Input.dispatchMouseEvent",
                                    {"type": kind, "x": at_x, "y": at_y, **more})
        return at_x - left, at_y - top

    def hover(self, x, y):
        at = self.mouse("mouseMoved", x, y)
        self.settle()
        return at

    def click_at(self, x, y):
        for kind in ("mouseMoved", "mousePressed", "mouseReleased"):
            self.mouse(kind, x, y, button="left", clickCount=1)
        self.settle()

    def drag(self, x, y, dx, dy, button="left"):
        buttons = {"left": 1, "right": 2}[button]
        self.mouse("mousePressed", x, y, button=button, buttons=buttons, clickCount=1)
        for step in (0.5, 1):
            self.mouse("mouseMoved", x + dx * step, y + dy * step, button=button, buttons=buttons)
        self.mouse("mouseReleased", x + dx, y + dy, button=button, clickCount=1)
        self.settle()

    def wheel(self, x, y, pixels):
        self.mouse("mouseWheel", x, y, deltaX=0, deltaY=pixels)
        self.settle()

    def pinch(self, x, y, before, after):
        """Two fingers beside a place go from one distance to another."""
        left, top, _, _ = self.stage()

        def fingers(span):
            return [{"x": left + x - span / 2, "y": top + y, "id": 1},
                    {"x": left + x + span / 2, "y": top + y, "id": 2}]

        for kind, points in (("touchStart", fingers(before)), ("touchMove", fingers(after)),
                             ("touchEnd", [])):
            self.driver.execute_cdp_cmd("Input.dispatchTouchEvent",
                                        {"type": kind, "touchPoints": points})
        self.settle()

    def picture(self):
        """What the stage shows, with all that lies on it."""
        self.settle()
        left, top, width, height = self.stage()
        whole = image_module.open(io.BytesIO(self.driver.get_screenshot_as_png())).convert("RGB")
        return whole.crop((round(left), round(top), round(left + width), round(top + height)))

    def size(self, width, height):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
        self.wait(lambda: self.run("return [innerWidth, innerHeight]") == [width, height])
        self.settle()

    def scheme(self, name):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": name}]})
        self.wait(lambda: self.run(
            f"return matchMedia('(prefers-color-scheme: {name})').matches"))
        self.settle()

    def complaints(self):
        """What the console has to say since it was asked last, but for how fast this computer is."""
        return [entry["message"] for entry in self.driver.get_log("browser")
                if "GL Driver Message (OpenGL, Performance" not in entry["message"]]

    def close(self):
        requests = [
            message["params"]["request"]["url"]
            for entry in self.driver.get_log("performance")
            for message in [json.loads(entry["message"])["message"]]
            if message["method"] == "Network.requestWillBeSent"
        ]
        assert [url for url in requests if not url.startswith(("file:", "data:"))] == []
        assert self.complaints() == []
        assert self.run("return window.hacked") is None


@pytest.fixture(scope="session")
def driver(tmp_path_factory):
    """One browser for all tests, which has a folder of its own for all that it keeps."""
    profile = tmp_path_factory.mktemp("profile")
    os.environ["HOME"] = str(profile)
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in (
            "--headless=new", "--no-sandbox", "--no-first-run",
            # The processor draws what is in space; what is flat, it paints with less work by itself.
            "--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
            "--disable-gpu-compositing", "--disable-quic",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--disable-dev-shm-usage", "--hide-scrollbars", "--force-color-profile=srgb",
            f"--user-data-dir={profile}"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    service = webdriver.chrome.service.Service(shutil.which("chromedriver"))
    browser = webdriver.Chrome(service=service, options=options)
    browser.set_script_timeout(LONGEST_WAIT)
    yield browser
    browser.quit()


@pytest.fixture(scope="session")
def pages(tmp_path_factory):
    """A folder of pages of drawings and scans that are made for this."""
    folder = tmp_path_factory.mktemp("pages")
    subprocess.run([os.environ["MAKE_PAGES"], folder], check=True)
    return folder


@pytest.fixture
def open_page(driver, pages):
    """Opens a page by its name; at the end nothing must be amiss."""
    opened = []

    def opening(name):
        page = Page(driver, pathlib.Path(pages, name).as_uri())
        opened.append(page)
        return page

    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": WIDTH, "height": HEIGHT, "deviceScaleFactor": 1, "mobile": False})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": "light"}]})
    yield opening
    for page in opened[-1:]:
        page.close()
