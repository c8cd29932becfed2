// The drawing as the page holds it: points of all contours, one contour after another, and boxes
// around contours and around runs of their points, by which painting and pointing skip most of it.

import { dataElements, jsonOf, numbersOf } from "../shared/data.js";

/** The kinds of contours, by their numbers. */
const kinds = { open: 0, closed: 1, circle: 2, points: 3 };

/** Points in a run; a run and the one after it share the point between them. */
export const runLength = 32;

/** Boxes are four numbers each: least x, least y, greatest x, greatest y. */
function emptyBoxes(count) {
    const boxes = new Float64Array(4 * count);
    for (let i = 0; i < boxes.length; ++i) {
        boxes[i] = i % 4 < 2 ? Infinity : -Infinity;
    }
    return boxes;
}

function widen(boxes, index, x, y) {
    const at = 4 * index;
    // Comparisons with nan are false: points without a place widen no box.
    if (x < boxes[at]) boxes[at] = x;
    if (y < boxes[at + 1]) boxes[at + 1] = y;
    if (x > boxes[at + 2]) boxes[at + 2] = x;
    if (y > boxes[at + 3]) boxes[at + 3] = y;
}

/** The distance of a place from a box; 0 inside. */
function distanceFromBox(boxes, index, x, y) {
    const at = 4 * index;
    const dx = Math.max(boxes[at] - x, 0, x - boxes[at + 2]);
    const dy = Math.max(boxes[at + 1] - y, 0, y - boxes[at + 3]);
    return Math.hypot(dx, dy);
}

function distanceFromSegment(x, y, x1, y1, x2, y2) {
    const [dx, dy] = [x2 - x1, y2 - y1];
    const square = dx * dx + dy * dy;
    const share = square > 0 ? ((x - x1) * dx + (y - y1) * dy) / square : 0;
    const t = Math.max(0, Math.min(1, share));
    return Math.hypot(x - x1 - t * dx, y - y1 - t * dy);
}

export class Drawing {
    constructor() {
        const facts = jsonOf("facts");
        Object.assign(this, facts);
        const array = (name, type) => numbersOf(dataElements(name)[0], type);
        this.points = array("points", Float64Array);
        this.heights = array("heights", Float64Array);
        this.ends = array("contourEnds", Uint32Array);
        this.contourLayers = array("contourLayers", Uint32Array);
        this.lengths = array("contourLengths", Float64Array);
        this.colours = array("contourColours", Int32Array);
        this.kinds = array("contourKinds", Uint8Array);
        this.entityEnds = array("contourEntityEnds", Uint32Array);
        this.entities = {
            kinds: array("entityKinds", Uint8Array),
            handles: array("entityHandles", BigUint64Array),
            inserts: array("entityInserts", BigUint64Array),
            layers: array("entityLayers", Uint32Array),
        };
        this.count = this.ends.length;
        this.#makeBoxes();
        this.hidden = new Uint8Array(this.count);
        this.layerHidden = new Uint8Array(this.layers.length);
    }

    /** The index of a contour's first point; that of the next contour is behind its last one. */
    begin(contour) {
        return contour === 0 ? 0 : this.ends[contour - 1];
    }

    isOpen(contour) {
        return this.kinds[contour] === kinds.open;
    }

    isOfPoints(contour) {
        return this.kinds[contour] === kinds.points;
    }

    isShown(contour) {
        return this.hidden[contour] === 0 && !this.layerHidden[this.contourLayers[contour]];
    }

    layerName(contour) {
        return this.layers[this.contourLayers[contour]]?.name ?? "";
    }

    kindName(contour) {
        const isOnePoint =
            this.isOfPoints(contour) && this.ends[contour] - this.begin(contour) === 1;
        return isOnePoint ? "point" : this.contourKindNames[this.kinds[contour]];
    }

    /** What a contour is made of: kind, handle, layer, and the block insert that draws it. */
    entitiesOf(contour, most) {
        const begin = contour === 0 ? 0 : this.entityEnds[contour - 1];
        const end = Math.min(this.entityEnds[contour], begin + most);
        const { kinds, handles, inserts, layers } = this.entities;
        const hexadecimal = (handle) => (handle ? handle.toString(16).toUpperCase() : "");
        const all = [];
        for (let i = begin; i < end; ++i) {
            all.push({
                kind: this.entityKindNames[kinds[i]],
                handle: hexadecimal(handles[i]),
                insert: hexadecimal(inserts[i]),
                layer: this.layers[layers[i]]?.name ?? "",
            });
        }
        return all;
    }

    entityCount(contour) {
        return this.entityEnds[contour] - (contour === 0 ? 0 : this.entityEnds[contour - 1]);
    }

    /** The box around a contour, or around all: [least x, least y, greatest x, greatest y]. */
    boxOf(contour) {
        return this.boxes.slice(4 * contour, 4 * contour + 4);
    }

    /** How far apart in space two points are. */
    distance(a, b) {
        const dz = this.heights.length ? this.heights[b] - this.heights[a] : 0;
        return Math.hypot(
            this.points[2 * b] - this.points[2 * a],
            this.points[2 * b + 1] - this.points[2 * a + 1],
            dz,
        );
    }

    /** The shown contour that passes nearest to a place, within a distance; -1 when none does. */
    nearest(x, y, within) {
        let best = -1;
        let bestDistance = within;
        for (let contour = 0; contour < this.count; ++contour) {
            if (
                this.isShown(contour) &&
                distanceFromBox(this.boxes, contour, x, y) <= bestDistance
            ) {
                const found = this.#distanceFrom(contour, x, y, bestDistance);
                // Of equals the last: it was painted over the others.
                if (found <= bestDistance) {
                    best = contour;
                    bestDistance = found;
                }
            }
        }
        return best;
    }

    #distanceFrom(contour, x, y, within) {
        const { points } = this;
        const [begin, end] = [this.begin(contour), this.ends[contour]];
        const alone = this.isOfPoints(contour);
        let best = Infinity;
        for (let run = this.firstRuns[contour], from = begin; from < end; ++run) {
            const to = Math.min(from + runLength, end - 1);
            if (distanceFromBox(this.runBoxes, run, x, y) <= Math.min(best, within)) {
                for (let i = from; i <= to; ++i) {
                    const j = alone || i === to ? i : i + 1;
                    const found = distanceFromSegment(
                        x, y, points[2 * i], points[2 * i + 1], points[2 * j], points[2 * j + 1],
                    );
                    if (found < best) best = found;
                }
            }
            from += runLength;
        }
        return best;
    }

    #makeBoxes() {
        let runs = 0;
        this.firstRuns = new Uint32Array(this.count);
        for (let contour = 0; contour < this.count; ++contour) {
            this.firstRuns[contour] = runs;
            runs += Math.ceil((this.ends[contour] - this.begin(contour)) / runLength);
        }
        this.boxes = emptyBoxes(this.count);
        this.runBoxes = emptyBoxes(runs);
        const whole = emptyBoxes(1);
        for (let contour = 0; contour < this.count; ++contour) {
            const begin = this.begin(contour);
            for (let i = begin; i < this.ends[contour]; ++i) {
                const [x, y] = [this.points[2 * i], this.points[2 * i + 1]];
                const run = this.firstRuns[contour] + Math.floor((i - begin) / runLength);
                widen(this.runBoxes, run, x, y);
                if (i > begin && (i - begin) % runLength === 0) {
                    widen(this.runBoxes, run - 1, x, y);
                }
                widen(this.boxes, contour, x, y);
                widen(whole, 0, x, y);
            }
        }
        this.box = whole[0] <= whole[2] ? [...whole] : [0, 0, 1, 1];
    }
}
