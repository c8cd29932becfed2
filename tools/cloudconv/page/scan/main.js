// The page of a scan: what is where, and what happens on which key.

import { jsonOf } from "../shared/data.js";
import { byId, element } from "../shared/elements.js";
import { connectFrame, isForField, styleColour } from "../shared/frame.js";
import { connectGestures } from "../shared/gestures.js";
import { counted, fixedText, numberText, decimalsFor } from "../shared/words.js";
import { Camera, namedViews } from "./camera.js";
import { paintCompass } from "./compass.js";
import { Points } from "./points.js";
import { Renderer } from "./renderer.js";

const ways = ["intensity", "height", "colour"];
const gridSteps = 2097151;

class ScanView {
    #asked = false;
    #wasResized = false;

    constructor(facts) {
        this.facts = facts;
        this.points = new Points(facts);
        this.longest = gridSteps * facts.step;
        const sides = facts.highest.map((high, axis) => (high - facts.lowest[axis]) / this.longest);
        // Places are parts of the scan's longest side, from its lowest corner.
        this.camera = new Camera([0, 0, 0], sides);
        this.renderer = new Renderer(byId("view-canvas"), this.camera);
        this.picked = null;
        this.box = byId("stage");
        this.#resize();
        new ResizeObserver(() => this.#resize()).observe(this.box);
    }

    /** The view or the settings have changed. */
    changed() {
        this.renderer.restart();
        this.frame();
        this.#tell();
    }

    /** Draws at the next frame, and until the root tells that the view is whole. */
    frame() {
        document.documentElement.dataset.whole = "false";
        if (!this.#asked) {
            this.#asked = true;
            requestAnimationFrame(() => {
                this.#asked = false;
                this.renderer.drawFrame();
                document.documentElement.dataset.whole = String(this.renderer.isWhole);
                if (!this.renderer.isWhole) {
                    this.frame();
                }
            });
        }
    }

    /** Decodes the points, block by block, and shows them as they come. */
    load(onDone) {
        const block = this.points.next();
        if (block === null) {
            onDone();
            return;
        }
        this.renderer.add(block);
        this.frame();
        const share = this.points.blocks.length / this.points.total;
        byId("loading").value = share;
        if (this.points.blocks.length === 1) {
            this.chooseColours(this.firstWay());
        }
        setTimeout(() => this.load(onDone), 0);
    }

    firstWay() {
        const { hasIntensity, hasColour } = this.facts;
        return hasColour ? "colour" : hasIntensity ? "intensity" : "height";
    }

    chooseColours(way) {
        this.way = way;
        this.setWindow(...this.points.usualWindow(way));
        this.renderer.settings.colourBy = ways.indexOf(way);
        document.querySelectorAll("[name=colour-by]").forEach((radio) => {
            radio.checked = radio.value === way;
        });
        byId("scale-of-colours").hidden = way === "colour";
        this.changed();
    }

    /** Which part of the range of values, from 0 to 1, the colours spread over. */
    setWindow(low, high) {
        this.renderer.settings.window = [low, high];
        const most = this.mostOfWindow();
        byId("window-low").value = low / most;
        byId("window-high").value = high / most;
        const { facts } = this;
        const [from, range] = this.way === "height"
            ? [facts.lowest[2], this.longest]
            : [facts.intensity[0] ?? 0, (facts.intensity[1] ?? 0) - (facts.intensity[0] ?? 0)];
        byId("low-text").textContent = numberText(from + low * range);
        byId("high-text").textContent = numberText(from + high * range);
        byId("middle-text").textContent = numberText(from + ((low + high) / 2) * range);
        byId("scale-name").textContent = this.way === "height" ? "Height (z)" : "Intensity";
    }

    /** How much of the range of values there is at all: heights are parts of the longest side. */
    mostOfWindow() {
        const { facts } = this;
        return this.way === "height" ? (facts.highest[2] - facts.lowest[2]) / this.longest || 1 : 1;
    }

    pick(x, y) {
        const number = this.points.total > 0 ? this.renderer.pick(x, y) : -1;
        this.picked = number < 0 ? null : this.points.about(number);
        this.changed();
    }

    /** Turns about the point at a place of the screen from now on. */
    lookAt(x, y) {
        this.pick(x, y);
        if (this.picked) {
            this.camera.target = this.#inView(this.picked.place);
            this.camera.distance /= 1.6;
            this.changed();
        }
    }

    #inView(place) {
        return place.map((part, axis) => (part - this.facts.lowest[axis]) / this.longest);
    }

    #tell() {
        paintCompass(byId("compass"), this.camera);
        this.#tellScale();
        const card = byId("card");
        const ring = byId("ring");
        const at = this.picked && this.camera.project(this.#inView(this.picked.place));
        card.hidden = ring.hidden = !at;
        if (!at) {
            return;
        }
        ring.style.transform = `translate(${at.x}px, ${at.y}px)`;
        const decimals = decimalsFor(this.facts.step * 10);
        const { place, intensity, colour } = this.picked;
        const lines = place.map((part, axis) =>
            element("span", {}, `${"xyz"[axis]} ${fixedText(part, decimals)}`));
        if (intensity !== undefined) {
            lines.push(element("span", { class: "soft" }, `intensity ${numberText(intensity, 6)}`));
        }
        if (colour) {
            lines.push(element("span", { class: "soft" }, `colour ${colour.join(" ")}`));
        }
        card.replaceChildren(...lines);
        const { width, height } = this.camera;
        const left = at.x + 18 + card.offsetWidth < width ? at.x + 18 : at.x - 18 - card.offsetWidth;
        const top = Math.min(Math.max(4, at.y - 20), height - card.offsetHeight - 8);
        card.style.transform = `translate(${Math.max(4, left)}px, ${top}px)`;
    }

    /** A line of a round length, as long as that is at the middle of what is looked at. */
    #tellScale() {
        const perPixel = this.camera.unitsPerPixel() * this.longest;
        const most = 130 * perPixel;
        const power = 10 ** Math.floor(Math.log10(most));
        const length = [5, 2, 1].map((factor) => factor * power).find((step) => step <= most);
        byId("scale-bar").style.width = `${length / perPixel}px`;
        byId("scale-text").textContent = numberText(length);
    }

    #resize() {
        const { clientWidth, clientHeight } = this.box;
        if (clientWidth === 0 || clientHeight === 0) {
            return;
        }
        const ratio = Math.min(window.devicePixelRatio || 1, 2);
        this.camera.width = clientWidth;
        this.camera.height = clientHeight;
        if (!this.#wasResized) {
            this.#wasResized = true;
            this.camera.fit();
        }
        this.renderer.resize(Math.round(clientWidth * ratio), Math.round(clientHeight * ratio));
        this.changed();
    }
}

function connectControls(view) {
    const { renderer, camera } = view;
    const { settings } = renderer;
    for (const radio of document.querySelectorAll("[name=colour-by]")) {
        radio.addEventListener("change", () => view.chooseColours(radio.value));
    }
    const slider = (id, onInput) => {
        const input = byId(id);
        input.addEventListener("input", () => {
            onInput(Number(input.value));
            view.changed();
        });
    };
    slider("point-size", (size) => (settings.pointSize = size));
    slider("shading", (strength) => (settings.shading = strength));
    byId("grows").addEventListener("change", (event) => {
        settings.grows = event.target.checked;
        view.changed();
    });
    slider("window-low", (share) => {
        const high = settings.window[1];
        view.setWindow(Math.min(share * view.mostOfWindow(), high), high);
    });
    slider("window-high", (share) => {
        const low = settings.window[0];
        view.setWindow(low, Math.max(share * view.mostOfWindow(), low));
    });
    byId("window-usual").addEventListener("click", () => {
        view.setWindow(...view.points.usualWindow(view.way));
        view.changed();
    });
    byId("window-all").addEventListener("click", () => {
        view.setWindow(0, view.mostOfWindow());
        view.changed();
    });
    const actions = {
        zoomBy: (factor) => {
            camera.zoom(camera.width / 2, camera.height / 2, factor);
            view.changed();
        },
        fit: () => {
            camera.fit();
            view.changed();
        },
        show: (name) => {
            camera.show(name);
            view.changed();
        },
    };
    byId("zoom-in").addEventListener("click", () => actions.zoomBy(1.4));
    byId("zoom-out").addEventListener("click", () => actions.zoomBy(1 / 1.4));
    byId("fit").addEventListener("click", actions.fit);
    for (const chip of document.querySelectorAll("[data-view]")) {
        chip.addEventListener("click", () => actions.show(chip.dataset.view));
    }
    return actions;
}

function connectPointer(view) {
    const { camera } = view;
    connectGestures(byId("stage"), {
        drag: (dx, dy, event) => {
            if (event.shiftKey || (event.buttons & 6) !== 0) {
                camera.pan(dx, dy);
            } else {
                camera.turn(dx, dy);
            }
            view.changed();
        },
        pinch: (x, y, factor, dx, dy) => {
            camera.pan(dx, dy);
            camera.zoom(x, y, factor);
            view.changed();
        },
        click: (x, y) => view.pick(x, y),
        doubleClick: (x, y) => view.lookAt(x, y),
    });
}

function connectKeys(view, { zoomBy, fit, show }) {
    const { camera } = view;
    const move = (dx, dy) => (event) => {
        if (event.shiftKey) {
            camera.pan(dx * 40, dy * 40);
        } else {
            camera.turn(dx * 12, dy * 12);
        }
        view.changed();
    };
    const actions = {
        ArrowLeft: move(1, 0), ArrowRight: move(-1, 0), ArrowUp: move(0, 1), ArrowDown: move(0, -1),
        "+": () => zoomBy(1.25), "=": () => zoomBy(1.25), "-": () => zoomBy(0.8), 0: fit, f: fit,
        Escape: () => {
            view.picked = null;
            view.changed();
        },
        "?": () => byId("help").showModal(),
    };
    Object.keys(namedViews).forEach((name, index) => {
        actions[String(index + 1)] = () => show(name);
    });
    document.addEventListener("keydown", (event) => {
        const action = actions[event.key.length === 1 ? event.key.toLowerCase() : event.key];
        if (action && !isForField(event)) {
            action(event);
            event.preventDefault();
        }
    });
}

/** "5,000,000 of 8,123,456 points". */
function shownText(facts) {
    return facts.shown === facts.withPlace
        ? counted(facts.shown, "point")
        : `${facts.shown.toLocaleString("en")} of ${counted(facts.withPlace, "point")}`;
}

function tellAbout(facts) {
    const add = (name, value) =>
        byId("about").append(element("dt", {}, name), element("dd", {}, value));
    const size = facts.highest.map((high, axis) => numberText(high - facts.lowest[axis], 5));
    add("Points", facts.points.toLocaleString("en"));
    if (facts.organised) {
        add("Organised", facts.organised.map((side) => side.toLocaleString("en")).join(" × "));
    }
    add("Size", size.join(" × "));
    ["x", "y", "z"].forEach((name, axis) =>
        add(name, `${numberText(facts.lowest[axis], 9)} … ${numberText(facts.highest[axis], 9)}`));
    if (facts.hasIntensity) {
        add("Intensity", facts.intensity.map((value) => numberText(value, 6)).join(" … "));
    }
    const notes = [...facts.notes];
    if (facts.shown < facts.withPlace) {
        notes.unshift(
            `Of ${counted(facts.withPlace, "point")} this page shows ` +
                `${facts.shown.toLocaleString("en")}, evenly picked: that is its limit.`);
    }
    if (facts.withPlace < facts.points) {
        const left = facts.points - facts.withPlace;
        notes.push(`Left out: ${counted(left, "point")} without a place.`);
    }
    byId("notes").append(...notes.map((note) => element("li", {}, note)));
}

function start() {
    const facts = jsonOf("facts");
    byId("title").textContent = facts.title;
    byId("summary").textContent = shownText(facts);
    tellAbout(facts);
    byId("intensity-choice").hidden = !facts.hasIntensity;
    byId("colour-choice").hidden = !facts.hasColour;
    let view;
    try {
        view = new ScanView(facts);
    } catch (error) {
        byId("failure").textContent = error.message;
        byId("failure").hidden = false;
        byId("loading").hidden = true;
        connectFrame(() => {});
        return;
    }
    const schemeChanged = () => {
        const colour = styleColour("--paper");
        view.renderer.settings.ground = [1, 3, 5].map(
            (at) => parseInt(colour.slice(at, at + 2), 16) / 255);
        view.changed();
    };
    connectFrame(schemeChanged);
    schemeChanged();
    connectPointer(view);
    connectKeys(view, connectControls(view));
    // So large that even points would make a surface of a third of the view.
    const room = Math.sqrt((view.camera.width * view.camera.height) / (3 * facts.shown));
    const size = Math.min(6, Math.max(1, Math.round(2.6 * room) / 2));
    byId("point-size").value = size;
    view.renderer.settings.pointSize = size;
    view.load(() => {
        byId("loading").hidden = true;
        document.documentElement.dataset.ready = "true";
    });
}

start();
