// The list of contours: a line each, to light it up, to choose it, and to switch it off.

import { byId, element } from "../shared/elements.js";
import { counted, numberText, withUnit } from "../shared/words.js";
import { VirtualList } from "./virtual-list.js";

/** What of a contour's entities is listed at once. */
const mostEntities = 100;

/** "Contour 12". */
export function contourName(contour) {
    return `Contour ${contour + 1}`;
}

/** "closed · 345.2 mm". */
export function contourWords(drawing, contour) {
    const kind = drawing.kindName(contour);
    return drawing.isOfPoints(contour)
        ? kind
        : `${kind} · ${withUnit(numberText(drawing.lengths[contour]), drawing.unit)}`;
}

export class ContourList {
    constructor(drawing, state) {
        this.drawing = drawing;
        this.state = state;
        this.order = [...Array(drawing.count).keys()];
        this.list = new VirtualList(
            byId("contours"),
            (line) => this.#makeLine(this.order[line]),
            (line) => state.choose(this.order[line], "list"),
        );
        byId("filter").addEventListener("input", () => this.#applyFilter());
        byId("show-all").addEventListener("click", () => this.#switchListed(false));
        byId("show-none").addEventListener("click", () => this.#switchListed(true));
        this.list.setCount(this.order.length);
        this.#tellCount();
    }

    refresh() {
        this.list.refresh();
        this.#tellCount();
    }

    /** Brings a contour into sight; where the filter keeps it out, nothing happens. */
    show(contour) {
        const line = this.order.indexOf(contour);
        if (line >= 0) {
            this.list.show(line);
        }
    }

    /** Tells the chosen contour apart from the others, and all about it. */
    tellChosen() {
        this.list.refresh();
        this.#tellDetails();
    }

    #makeLine(contour) {
        const { drawing, state } = this;
        const box = element("input", {
            type: "checkbox",
            "aria-label": `Show ${contourName(contour).toLowerCase()}`,
        });
        box.checked = drawing.hidden[contour] === 0;
        box.addEventListener("change", () => state.switchContour(contour, !box.checked));
        const layer = drawing.layerName(contour);
        const swatch = element("span", { class: "swatch", "aria-hidden": "true" });
        swatch.style.background = state.painter.colourOf(contour);
        const button = element(
            "button",
            { type: "button", class: "line-button" },
            element("span", { class: "number" }, String(contour + 1)),
            element("span", { class: "words" }, contourWords(drawing, contour)),
            element("span", { class: "layer" }, layer),
        );
        button.setAttribute("aria-pressed", String(state.chosen === contour));
        button.addEventListener("click", () => state.choose(contour, "list"));
        button.addEventListener("dblclick", () => state.zoomTo(contour));
        button.addEventListener("keydown", (event) => {
            if (event.key === " ") {
                box.click();
                event.preventDefault();
                event.stopPropagation();
            } else if (event.key === "Enter") {
                state.choose(contour, "list");
                state.zoomTo(contour);
                event.preventDefault();
            }
        });
        const line = element("div", { class: "line", role: "listitem" }, box, swatch, button);
        line.classList.toggle("chosen", state.chosen === contour);
        line.classList.toggle("switched-off", !drawing.isShown(contour));
        line.addEventListener("pointerenter", () => state.light(contour));
        line.addEventListener("pointerleave", () => state.light(-1));
        return line;
    }

    #applyFilter() {
        const { drawing } = this;
        const words = byId("filter").value.toLowerCase().split(/\s+/).filter(Boolean);
        const isWanted = (contour) => {
            const text = [
                contour + 1,
                drawing.kindName(contour),
                drawing.layerName(contour),
                ...drawing.entitiesOf(contour, mostEntities).map((e) => `${e.kind} ${e.handle}`),
            ].join(" ").toLowerCase();
            return words.every((word) =>
                /^\d+$/.test(word) ? text.split(" ").includes(word) : text.includes(word));
        };
        this.order = [];
        for (let contour = 0; contour < drawing.count; ++contour) {
            if (words.length === 0 || isWanted(contour)) {
                this.order.push(contour);
            }
        }
        byId("contours").scrollTop = 0;
        this.list.setCount(this.order.length);
        this.#tellCount();
    }

    #switchListed(hidden) {
        this.order.forEach((contour) => (this.drawing.hidden[contour] = hidden ? 1 : 0));
        this.state.shownChanged();
    }

    #tellCount() {
        const { drawing, order } = this;
        let shown = 0;
        let length = 0;
        for (const contour of order) {
            if (drawing.isShown(contour)) {
                ++shown;
                length += drawing.lengths[contour];
            }
        }
        byId("contour-count").textContent =
            `${shown === order.length ? "" : `${shown.toLocaleString("en")} of `}` +
            `${counted(order.length, "contour")} · ` +
            withUnit(numberText(length, 5), drawing.unit);
    }

    #tellDetails() {
        const { drawing, state } = this;
        const card = byId("details");
        const contour = state.chosen;
        card.hidden = contour < 0;
        if (contour < 0) {
            return;
        }
        const rows = element("dl");
        const add = (name, value) => {
            if (value !== "") {
                rows.append(element("dt", {}, name), element("dd", {}, value));
            }
        };
        const points = drawing.ends[contour] - drawing.begin(contour);
        add("Kind", drawing.kindName(contour));
        if (!drawing.isOfPoints(contour)) {
            add("Length", withUnit(numberText(drawing.lengths[contour], 7), drawing.unit));
        }
        add("Layer", drawing.layerName(contour));
        add("Points", points.toLocaleString("en"));
        const begin = drawing.begin(contour);
        const coordinate = (at) => numberText(drawing.points[at], 7);
        add("Starts at", `${coordinate(2 * begin)}, ${coordinate(2 * begin + 1)}`);
        add("Entities", this.#entityList(contour));
        const zoom = element("button", { type: "button", class: "small" }, "Zoom to it");
        zoom.addEventListener("click", () => state.zoomTo(contour));
        const close = element(
            "button", { type: "button", class: "small", "aria-label": "Close details" }, "✕");
        close.addEventListener("click", () => state.choose(-1));
        card.replaceChildren(
            element("div", { class: "card-head" }, element("h3", {}, contourName(contour)),
                    zoom, close),
            rows,
        );
    }

    #entityList(contour) {
        const { drawing } = this;
        const count = drawing.entityCount(contour);
        if (count === 0) {
            return "";
        }
        const list = element("ul", { class: "entities" });
        const own = drawing.layerName(contour);
        for (const entity of drawing.entitiesOf(contour, mostEntities)) {
            const words = [entity.kind];
            if (entity.handle) words.push(entity.handle);
            if (entity.insert) words.push(`in block insert ${entity.insert}`);
            if (entity.layer !== own) words.push(`on ${entity.layer}`);
            list.append(element("li", {}, words.join(" ")));
        }
        if (count > mostEntities) {
            list.append(element("li", {}, `and ${counted(count - mostEntities, "more", "more")}`));
        }
        return list;
    }
}
