// The list of layers, each to be switched on and off.

import { byId, element } from "../shared/elements.js";
import { counted, numberText, withUnit } from "../shared/words.js";

/** How many contours each layer has, and how long they are. */
function contentsOf(drawing) {
    const layers = drawing.layers.map(() => ({ contours: 0, length: 0 }));
    for (let contour = 0; contour < drawing.count; ++contour) {
        const layer = layers[drawing.contourLayers[contour]];
        if (layer) {
            ++layer.contours;
            layer.length += drawing.lengths[contour];
        }
    }
    return layers;
}

function lineOf(drawing, state, index, contents) {
    const { name, off, frozen } = drawing.layers[index];
    const box = element("input", { type: "checkbox", id: `layer-${index}` });
    box.checked = !drawing.layerHidden[index];
    box.addEventListener("change", () => {
        drawing.layerHidden[index] = box.checked ? 0 : 1;
        state.shownChanged();
    });
    const swatch = element("span", { class: "swatch", "aria-hidden": "true" });
    swatch.style.background = state.painter.layerColour(index);
    // Where contours have colours of their own, those of layers mean nothing.
    swatch.hidden = state.painter.colourBy === "contour";
    const marks = [off ? "off" : "", frozen ? "frozen" : ""].filter(Boolean).join(", ");
    return element(
        "li",
        { class: "line" },
        box,
        swatch,
        element(
            "label",
            { for: `layer-${index}` },
            element("span", { class: "words" }, name || "(no name)", marks && ` · ${marks}`),
            element(
                "span",
                { class: "layer" },
                `${counted(contents.contours, "contour")} · ` +
                    withUnit(numberText(contents.length), drawing.unit),
            ),
        ),
    );
}

/** Fills the list. Layers without contours are not in it: there is nothing to switch. */
export function listLayers(drawing, state) {
    const list = byId("layers");
    const contents = contentsOf(drawing);
    const fill = () => {
        const lines = [];
        contents.forEach((layer, index) => {
            if (layer.contours > 0) {
                lines.push(lineOf(drawing, state, index, layer));
            }
        });
        list.replaceChildren(...lines);
    };
    const switchAll = (hidden) => {
        drawing.layerHidden.fill(hidden);
        state.shownChanged();
        fill();
    };
    byId("layers-all").addEventListener("click", () => switchAll(0));
    byId("layers-none").addEventListener("click", () => switchAll(1));
    fill();
    return fill;
}
