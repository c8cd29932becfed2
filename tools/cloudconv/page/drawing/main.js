// The page of a drawing: what is where, and what happens on which key.

import { byId, connectTabs, element } from "../shared/elements.js";
import { connectFrame, isDark, isForField } from "../shared/frame.js";
import { connectGestures } from "../shared/gestures.js";
import { counted, decimalsFor, fixedText, numberText, withUnit } from "../shared/words.js";
import { ContourList, contourName, contourWords } from "./contour-list.js";
import { boxOfFinding, listFindings, tellAbout } from "./findings.js";
import { listLayers } from "./layer-list.js";
import { Drawing } from "./model.js";
import { Painter } from "./painter.js";
import { Player } from "./player.js";
import { Stage } from "./stage.js";
import { View } from "./view.js";
import { Walk } from "./walk.js";

/** Pixels from a contour within which the pointer is on it. */
const reach = 8;
/** Of more contours, the ways between them hide more than they show. */
const mostWithWays = 60;

/** What is chosen and lit, and what changes with it. */
class State {
    lit = -1;
    chosen = -1;
    chosenFinding = -1;
    signs = { directions: true, ends: true, findings: true, ways: true };

    constructor(drawing, painter, view) {
        Object.assign(this, { drawing, painter, view });
        this.signs.ways = drawing.count <= mostWithWays;
    }

    light(contour) {
        if (this.lit !== contour) {
            this.lit = contour;
            this.stage.paintTop();
        }
    }

    /** @param from  "list" when it was chosen there, and need not be shown there */
    choose(contour, from = "") {
        this.chosen = contour;
        if (contour >= 0 && from !== "list") {
            this.contourList.show(contour);
        }
        this.contourList.tellChosen();
        if (contour >= 0 && from === "list" && !this.view.holds(this.drawing.boxOf(contour))) {
            this.#bringIntoView(contour);
        }
        this.stage.paintTop();
    }

    zoomTo(contour) {
        this.view.fit(this.drawing.boxOf(contour), 90);
        this.stage.viewMoved();
    }

    chooseFinding(index) {
        this.chosenFinding = index;
        const box = boxOfFinding(this.drawing.findings[index]);
        // Near misses are small: what is around them says where they are.
        const room = Math.max(box[2] - box[0], box[3] - box[1], this.view.extent * 1e-7) * 4;
        this.view.fit([box[0] - room, box[1] - room, box[2] + room, box[3] + room]);
        this.stage.viewMoved();
    }

    switchContour(contour, hidden) {
        this.drawing.hidden[contour] = hidden ? 1 : 0;
        this.shownChanged();
    }

    shownChanged() {
        this.contourList.refresh();
        this.stage.repaint();
    }

    #bringIntoView(contour) {
        const box = this.drawing.boxOf(contour);
        const fits = Math.max(
            ((box[2] - box[0]) * this.view.scale) / this.view.width,
            ((box[3] - box[1]) * this.view.scale) / this.view.height,
        ) <= 0.9;
        if (fits) {
            this.view.x = (box[0] + box[2]) / 2;
            this.view.y = (box[1] + box[3]) / 2;
            this.stage.viewMoved();
        } else {
            this.zoomTo(contour);
        }
    }
}

/** Says where the pointer is, and what is below it. */
function connectPointer(drawing, view, state) {
    const card = byId("card");
    const readout = byId("readout");
    const hideCard = () => {
        card.hidden = true;
        state.light(-1);
    };
    const tellAt = (x, y) => {
        const decimals = decimalsFor(1 / view.scale);
        const [planeX, planeY] = [view.planeX(x), view.planeY(y)];
        readout.textContent = withUnit(
            `${fixedText(planeX, decimals)}, ${fixedText(planeY, decimals)}`, drawing.unit);
        const contour = drawing.nearest(planeX, planeY, reach / view.scale);
        state.light(contour);
        card.hidden = contour < 0;
        if (contour >= 0) {
            const entities = drawing.entitiesOf(contour, 3)
                .map((entity) => `${entity.kind} ${entity.handle}`.trim());
            const more = drawing.entityCount(contour) - entities.length;
            card.replaceChildren(
                element("strong", {}, contourName(contour)),
                element("span", {}, contourWords(drawing, contour)),
                element("span", { class: "layer" }, drawing.layerName(contour)),
                element("span", { class: "layer" },
                        entities.join(", ") + (more > 0 ? ` and ${more} more` : "")),
            );
            const left = x + 16 + card.offsetWidth < view.width ? x + 16 : x - 16 - card.offsetWidth;
            const top = Math.min(y + 16, view.height - card.offsetHeight - 8);
            card.style.transform = `translate(${Math.max(4, left)}px, ${Math.max(4, top)}px)`;
        }
    };
    const moved = () => {
        card.hidden = true;
        state.stage.viewMoved();
    };
    connectGestures(byId("stage"), {
        drag: (dx, dy) => {
            view.pan(dx, dy);
            moved();
        },
        pinch: (x, y, factor, dx, dy) => {
            view.pan(dx, dy);
            view.zoom(x, y, factor);
            moved();
        },
        hover: tellAt,
        leave: () => {
            readout.textContent = "";
            hideCard();
        },
        click: (x, y) => {
            tellAt(x, y);
            state.choose(drawing.nearest(view.planeX(x), view.planeY(y), reach / view.scale));
        },
        doubleClick: (x, y) => {
            view.zoom(x, y, 2);
            moved();
        },
    });
}

function connectButtons(view, state) {
    const zoomBy = (factor) => {
        view.zoom(view.width / 2, view.height / 2, factor);
        state.stage.viewMoved();
    };
    const fit = () => {
        view.fit();
        state.stage.viewMoved();
    };
    byId("zoom-in").addEventListener("click", () => zoomBy(1.5));
    byId("zoom-out").addEventListener("click", () => zoomBy(1 / 1.5));
    byId("fit").addEventListener("click", fit);
    for (const chip of document.querySelectorAll("[data-sign]")) {
        const sign = chip.dataset.sign;
        chip.setAttribute("aria-pressed", String(state.signs[sign]));
        chip.addEventListener("click", () => {
            state.signs[sign] = !state.signs[sign];
            chip.setAttribute("aria-pressed", String(state.signs[sign]));
            state.stage.repaint();
        });
    }
    return { zoomBy, fit };
}

function connectKeys(view, state, player, { zoomBy, fit }) {
    const panBy = (dx, dy) => (event) => {
        const step = event.shiftKey ? 240 : 60;
        view.pan(dx * step, dy * step);
        state.stage.viewMoved();
    };
    const step = (by) => () => {
        const { count } = state.drawing;
        const from = state.chosen < 0 && by < 0 ? 0 : state.chosen;
        if (count > 0) {
            state.choose((from + by + count) % count);
        }
    };
    const actions = {
        ArrowLeft: panBy(1, 0), ArrowRight: panBy(-1, 0), ArrowUp: panBy(0, 1),
        ArrowDown: panBy(0, -1), "+": () => zoomBy(1.25), "=": () => zoomBy(1.25),
        "-": () => zoomBy(0.8), 0: fit, f: fit, " ": () => player.toggle(),
        n: step(1), p: step(-1), "?": () => byId("help").showModal(),
        Enter: () => state.chosen >= 0 && state.zoomTo(state.chosen),
        Escape: () => state.choose(-1),
    };
    document.addEventListener("keydown", (event) => {
        const onButton = event.target.tagName === "BUTTON" || event.target.type === "checkbox";
        const action = actions[event.key.length === 1 ? event.key.toLowerCase() : event.key];
        if (!action || isForField(event) || (onButton && " Enter".includes(event.key))) {
            return;
        }
        if (event.key.startsWith("Arrow") && event.target.closest("#panel")) {
            return;
        }
        action(event);
        event.preventDefault();
    });
}

function start() {
    const drawing = new Drawing();
    const walk = new Walk(drawing);
    const view = new View(drawing.box);
    const painter = new Painter(drawing, view);
    const unitText = (number, digits) => withUnit(numberText(number, digits), drawing.unit);

    byId("title").textContent = drawing.title;
    byId("summary").textContent = `${counted(drawing.count, "contour")} · ` +
        `${unitText(walk.alongContours, 5)} · ` +
        `${numberText(drawing.box[2] - drawing.box[0])} × ` +
        `${unitText(drawing.box[3] - drawing.box[1])}`;

    const state = new State(drawing, painter, view);
    const layersUsed = new Set(drawing.contourLayers).size;
    painter.colourBy = layersUsed > 1 && drawing.count > 20 ? "layer" : "contour";
    painter.useScheme(isDark());
    byId("colour-by").value = painter.colourBy;

    const player = new Player(walk, drawing.unit, () => state.stage.walkMoved());
    state.stage = new Stage(drawing, walk, view, painter, player, state);
    state.contourList = new ContourList(drawing, state);
    const fillLayers = listLayers(drawing, state);
    const coloursChanged = () => {
        painter.useScheme(isDark());
        fillLayers();
        state.contourList.refresh();
        state.stage.repaint();
    };
    byId("colour-by").addEventListener("change", (event) => {
        painter.colourBy = event.target.value;
        coloursChanged();
    });
    byId("layers-tab").hidden = drawing.layers.length === 0;
    listFindings(drawing, state);
    tellAbout(drawing, walk, unitText);
    connectFrame(coloursChanged);
    connectTabs(byId("tabs"));
    connectPointer(drawing, view, state);
    connectKeys(view, state, player, connectButtons(view, state));
    document.documentElement.dataset.ready = "true";
}

start();
