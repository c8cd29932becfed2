// Lays contours into a canvas path, in pixels: without points that nobody could tell apart, and
// without what is off the screen. What is left costs what the screen shows, not what the drawing
// has; and a browser's numbers, which are coarse for what is far off, are never asked too much.

import { runLength } from "./model.js";

/** Points nearer than this to the last one, in pixels, are passed by. */
const fineness = 0.6;
/** Pixels around the screen that lines are cut at. */
const margin = 64;

export class Tracer {
    #down = false;
    #x = NaN;
    #y = NaN;

    /**
     * @param path       a canvas context
     * @param onSegment  told each stretch that is on the screen: x1, y1, x2, y2
     */
    constructor(path, view, onSegment = null) {
        this.path = path;
        this.view = view;
        this.onSegment = onSegment;
        this.right = view.width + margin;
        this.bottom = view.height + margin;
        /** Stretches laid so far. */
        this.segments = 0;
    }

    /** What comes next begins a new stretch of the canvas path. */
    lift() {
        this.#down = false;
    }

    /** Whether any of a box is on the screen. */
    sees(boxes, index) {
        const { view } = this;
        const at = 4 * index;
        return (
            view.screenX(boxes[at]) <= this.right &&
            view.screenX(boxes[at + 2]) >= -margin &&
            view.screenY(boxes[at + 3]) <= this.bottom &&
            view.screenY(boxes[at + 1]) >= -margin
        );
    }

    /** The larger side of a box in pixels. */
    sizeOf(boxes, index) {
        const at = 4 * index;
        return (
            Math.max(boxes[at + 2] - boxes[at], boxes[at + 3] - boxes[at + 1]) * this.view.scale
        );
    }

    /** Lays a contour, or what of it lies between two of its points. */
    contour(drawing, contour, first = drawing.begin(contour), last = drawing.ends[contour] - 1) {
        const { view } = this;
        const { points, runBoxes } = drawing;
        const begin = drawing.begin(contour);
        this.#down = false;
        this.#moveTo(view.screenX(points[2 * first]), view.screenY(points[2 * first + 1]));
        for (let from = first; from < last; ) {
            const run = Math.floor((from - begin) / runLength);
            const to = Math.min(begin + (run + 1) * runLength, last);
            this.#stretch(drawing.firstRuns[contour] + run, runBoxes, points, from, to);
            from = to;
        }
    }

    /** Goes on over the points behind `from` up to `to`, all in one run. */
    #stretch(run, runBoxes, points, from, to) {
        const { view } = this;
        const [endX, endY] = [view.screenX(points[2 * to]), view.screenY(points[2 * to + 1])];
        if (!this.sees(runBoxes, run)) {
            this.#down = false;
            this.#moveTo(endX, endY);
            return;
        }
        const isTiny = this.sizeOf(runBoxes, run) < fineness;
        for (let i = isTiny ? to : from + 1; i < to; ++i) {
            const x = view.screenX(points[2 * i]);
            const y = view.screenY(points[2 * i + 1]);
            if (!(Math.abs(x - this.#x) < fineness && Math.abs(y - this.#y) < fineness)) {
                this.#lineTo(x, y);
            }
        }
        this.#lineTo(endX, endY);
    }

    /** Lays a straight line. */
    line(x1, y1, x2, y2) {
        this.#down = false;
        this.#moveTo(x1, y1);
        this.#lineTo(x2, y2);
    }

    #moveTo(x, y) {
        this.#x = x;
        this.#y = y;
    }

    #lineTo(x, y) {
        const [fromX, fromY] = [this.#x, this.#y];
        this.#moveTo(x, y);
        if (this.#isOnScreen(fromX, fromY) && this.#isOnScreen(x, y)) {
            this.#lay(fromX, fromY, x, y, true);
        } else {
            this.#layClipped(fromX, fromY, x, y);
        }
    }

    #isOnScreen(x, y) {
        return x >= -margin && x <= this.right && y >= -margin && y <= this.bottom;
    }

    #lay(x1, y1, x2, y2, goesOn) {
        if (!this.#down) {
            this.path.moveTo(x1, y1);
        }
        this.path.lineTo(x2, y2);
        this.#down = goesOn;
        ++this.segments;
        if (this.onSegment) {
            this.onSegment(x1, y1, x2, y2);
        }
    }

    /** What of a line is on the screen: by its shares where it enters and leaves each of the
     *  halves of the plane that the screen is the meeting of. */
    #layClipped(x1, y1, x2, y2) {
        const [dx, dy] = [x2 - x1, y2 - y1];
        let enter = 0;
        let leave = 1;
        for (const [along, room] of [
            [-dx, x1 + margin],
            [dx, this.right - x1],
            [-dy, y1 + margin],
            [dy, this.bottom - y1],
        ]) {
            if (along < 0) {
                enter = Math.max(enter, room / along);
            } else if (along > 0) {
                leave = Math.min(leave, room / along);
            } else if (!(room >= 0)) {
                leave = -1;
            }
        }
        // False for nan, too.
        if (!(enter < leave && Number.isFinite(dx + dy))) {
            this.#down = false;
            return;
        }
        this.#down = this.#down && enter === 0;
        this.#lay(x1 + enter * dx, y1 + enter * dy, x1 + leave * dx, y1 + leave * dy, leave === 1);
    }
}
