// Paints the drawing: contours, the ways between them, their signs, and what is lit.

import { drawingColour, paletteColour } from "../shared/colours.js";
import { styleColour } from "../shared/frame.js";
import { SparsePlaces } from "./sparse.js";
import { Tracer } from "./tracer.js";

/** The cost of one stroke grows faster than its length: ten times that of as many short ones. */
const mostSegmentsAtOnce = 48;
const arrowSpacing = 120;
/** Contours smaller than this, in pixels, have no signs of their own. */
const leastWithSigns = 14;

/** Strokes contours of one colour at a time. */
class Strokes {
    constructor(context, view) {
        this.context = context;
        this.tracer = new Tracer(context, view, () => this.#flushWhenLong());
    }

    begin(colour) {
        this.flush();
        this.context.strokeStyle = colour;
        this.context.fillStyle = colour;
    }

    #flushWhenLong() {
        if (this.tracer.segments >= mostSegmentsAtOnce) {
            this.flush();
            this.tracer.lift();
        }
    }

    flush() {
        if (this.tracer.segments > 0) {
            this.context.stroke();
            this.context.beginPath();
            this.tracer.segments = 0;
        }
    }
}

export class Painter {
    /** "contour", "layer" or "drawing". */
    colourBy = "contour";

    constructor(drawing, view) {
        this.drawing = drawing;
        this.view = view;
    }

    /** Takes over the colours of the scheme. */
    useScheme(dark) {
        this.dark = dark;
        this.ink = styleColour("--ink");
        this.paper = styleColour("--paper");
        this.faint = styleColour("--faint");
        this.alarm = styleColour("--alarm");
        this.accent = styleColour("--accent");
    }

    colourOf(contour) {
        if (this.colourBy === "drawing") {
            return drawingColour(this.drawing.colours[contour], this.dark);
        }
        const index = this.colourBy === "layer" ? this.drawing.contourLayers[contour] : contour;
        return paletteColour(index, this.dark);
    }

    layerColour(layer) {
        return this.colourBy === "drawing"
            ? drawingColour(-this.drawing.layers[layer].colour, this.dark)
            : paletteColour(layer, this.dark);
    }

    /**
     * Paints the contours from the first up to, not including, `end`; the last of these up to a
     * point only, when `last` is given. Returns how many it saw.
     */
    paintContours(context, end = this.drawing.count, last = undefined) {
        const { drawing, view } = this;
        const strokes = new Strokes(context, view);
        const dots = new SparsePlaces(1.5);
        const byColour = new Map();
        for (let contour = 0; contour < end; ++contour) {
            if (drawing.isShown(contour) && strokes.tracer.sees(drawing.boxes, contour)) {
                const colour = this.colourOf(contour);
                if (!byColour.has(colour)) {
                    byColour.set(colour, []);
                }
                byColour.get(colour).push(contour);
            }
        }
        let seen = 0;
        byColour.forEach((contours) => (seen += contours.length));
        // Lines of one pixel are painted many times faster than wider ones.
        context.lineWidth = seen > 400 ? 1 : 1.7;
        context.lineJoin = "round";
        context.lineCap = "round";
        context.beginPath();
        for (const [colour, contours] of byColour) {
            strokes.begin(colour);
            for (const contour of contours) {
                const stop = contour === end - 1 ? last : undefined;
                this.#paintContour(strokes, contour, stop, dots);
            }
        }
        strokes.flush();
        return seen;
    }

    #paintContour(strokes, contour, last, dots) {
        const { drawing, view } = this;
        if (drawing.isOfPoints(contour)) {
            for (let i = drawing.begin(contour); i < drawing.ends[contour]; ++i) {
                const x = view.screenX(drawing.points[2 * i]);
                const y = view.screenY(drawing.points[2 * i + 1]);
                if (dots.take(x, y)) {
                    strokes.context.fillRect(x - 1.75, y - 1.75, 3.5, 3.5);
                }
            }
        } else if (strokes.tracer.sizeOf(drawing.boxes, contour) < 1.2) {
            const [x, y] = drawing.boxOf(contour);
            if (dots.take(view.screenX(x), view.screenY(y))) {
                strokes.context.fillRect(view.screenX(x) - 0.6, view.screenY(y) - 0.6, 1.2, 1.2);
            }
        } else {
            strokes.tracer.contour(drawing, contour, undefined, last);
        }
    }

    /** The straight ways to the contours from `begin` on, each from the one before it. */
    paintWays(context, begin = 0, end = this.drawing.count) {
        const { drawing, view } = this;
        const strokes = new Strokes(context, view);
        context.save();
        context.setLineDash([4, 4]);
        context.lineWidth = 1;
        context.beginPath();
        strokes.begin(this.faint);
        for (let contour = Math.max(1, begin); contour < end; ++contour) {
            if (drawing.isShown(contour) && drawing.isShown(contour - 1)) {
                const [from, to] = [2 * (drawing.begin(contour) - 1), 2 * drawing.begin(contour)];
                strokes.tracer.line(
                    view.screenX(drawing.points[from]),
                    view.screenY(drawing.points[from + 1]),
                    view.screenX(drawing.points[to]),
                    view.screenY(drawing.points[to + 1]),
                );
            }
        }
        strokes.flush();
        context.restore();
    }

    /** Where contours begin, and in which direction they go. */
    paintDirections(context) {
        const { drawing, view } = this;
        const starts = new SparsePlaces(16);
        const arrows = new SparsePlaces(34);
        const nowhere = { moveTo() {}, lineTo() {} };
        for (let contour = 0; contour < drawing.count; ++contour) {
            let untilArrow = arrowSpacing / 3;
            const tracer = new Tracer(nowhere, view, (x1, y1, x2, y2) => {
                const length = Math.hypot(x2 - x1, y2 - y1);
                for (; untilArrow < length; untilArrow += arrowSpacing) {
                    const share = untilArrow / length;
                    const [x, y] = [x1 + (x2 - x1) * share, y1 + (y2 - y1) * share];
                    if (this.#isOnScreen(x, y) && arrows.take(x, y)) {
                        this.#paintArrow(context, x, y, Math.atan2(y2 - y1, x2 - x1), contour);
                    }
                }
                untilArrow -= length;
            });
            const hasSigns =
                drawing.isShown(contour) &&
                !drawing.isOfPoints(contour) &&
                tracer.sees(drawing.boxes, contour) &&
                tracer.sizeOf(drawing.boxes, contour) >= leastWithSigns;
            if (hasSigns) {
                tracer.contour(drawing, contour);
                const begin = 2 * drawing.begin(contour);
                const x = view.screenX(drawing.points[begin]);
                const y = view.screenY(drawing.points[begin + 1]);
                if (this.#isOnScreen(x, y) && starts.take(x, y)) {
                    this.#paintDisc(context, x, y, 3.4, this.colourOf(contour));
                }
            }
        }
    }

    /** Rings around the ends of open contours. */
    paintOpenEnds(context) {
        const { drawing, view } = this;
        const ends = new SparsePlaces(7);
        context.lineWidth = 1.4;
        context.strokeStyle = this.ink;
        context.beginPath();
        for (let contour = 0; contour < drawing.count; ++contour) {
            if (!drawing.isShown(contour) || !drawing.isOpen(contour)) {
                continue;
            }
            for (const point of [drawing.begin(contour), drawing.ends[contour] - 1]) {
                const x = view.screenX(drawing.points[2 * point]);
                const y = view.screenY(drawing.points[2 * point + 1]);
                if (this.#isOnScreen(x, y) && ends.take(x, y)) {
                    context.moveTo(x + 5.5, y);
                    context.arc(x, y, 5.5, 0, 2 * Math.PI);
                }
            }
        }
        context.stroke();
    }

    /** Rings around what was found. */
    paintFindings(context, chosen) {
        const rings = new SparsePlaces(4);
        this.drawing.findings.forEach((finding, index) => {
            for (const [planeX, planeY] of finding.places) {
                const x = this.view.screenX(planeX);
                const y = this.view.screenY(planeY);
                const isChosen = index === chosen;
                if (this.#isOnScreen(x, y) && (rings.take(x, y) || isChosen)) {
                    this.#paintRing(context, x, y, isChosen ? 16 : 11, isChosen ? 3 : 2);
                }
            }
        });
    }

    /** Makes a contour stand out. */
    paintLit(context, contour, width) {
        const { drawing } = this;
        if (drawing.isOfPoints(contour)) {
            this.#paintLitPoints(context, contour);
            return;
        }
        for (const [colour, extra] of [[this.paper, 4], [this.accent, 0]]) {
            const strokes = new Strokes(context, this.view);
            context.lineJoin = "round";
            context.lineCap = "round";
            context.lineWidth = width + extra;
            context.beginPath();
            strokes.begin(colour);
            strokes.tracer.contour(drawing, contour);
            strokes.flush();
        }
    }

    #paintLitPoints(context, contour) {
        const { drawing, view } = this;
        const dots = new SparsePlaces(3);
        for (let i = drawing.begin(contour); i < drawing.ends[contour]; ++i) {
            const x = view.screenX(drawing.points[2 * i]);
            const y = view.screenY(drawing.points[2 * i + 1]);
            if (this.#isOnScreen(x, y) && dots.take(x, y)) {
                this.#paintDisc(context, x, y, 4, this.accent);
            }
        }
    }

    /** Paints what the tool has walked since it was somewhere before. */
    paintStretch(context, before, tool) {
        const { drawing } = this;
        const strokes = new Strokes(context, this.view);
        context.beginPath();
        for (let contour = before.contour; contour <= tool.contour; ++contour) {
            const begin = drawing.begin(contour);
            const first = contour === before.contour ? Math.max(before.point, begin) : begin;
            const isLast = contour === tool.contour;
            if (drawing.isShown(contour) && !(isLast && tool.onWay)) {
                strokes.begin(this.colourOf(contour));
                if (drawing.isOfPoints(contour)) {
                    this.#paintContour(strokes, contour, undefined, new SparsePlaces(1.5));
                } else {
                    const last = isLast ? tool.point : drawing.ends[contour] - 1;
                    strokes.tracer.contour(drawing, contour, first, last);
                }
            }
        }
        strokes.flush();
    }

    /** What the tool has walked since the last point that it passed. */
    paintReach(context, tool) {
        const { drawing, view } = this;
        const [x, y] = [drawing.points[2 * tool.point], drawing.points[2 * tool.point + 1]];
        const strokes = new Strokes(context, view);
        context.save();
        context.lineWidth = tool.onWay ? 1 : 1.7;
        context.setLineDash(tool.onWay ? [4, 4] : []);
        context.beginPath();
        strokes.begin(tool.onWay ? this.ink : this.colourOf(tool.contour));
        strokes.tracer.line(
            view.screenX(x), view.screenY(y), view.screenX(tool.x), view.screenY(tool.y));
        strokes.flush();
        context.restore();
    }

    /** The tool of the walk. */
    paintTool(context, tool) {
        const x = this.view.screenX(tool.x);
        const y = this.view.screenY(tool.y);
        if (!this.#isOnScreen(x, y)) {
            return;
        }
        context.save();
        context.translate(x, y);
        context.rotate(-tool.direction);
        context.beginPath();
        context.arc(0, 0, 13, 0, 2 * Math.PI);
        context.globalAlpha = 0.22;
        context.fillStyle = this.accent;
        context.fill();
        context.globalAlpha = 1;
        context.beginPath();
        context.moveTo(11, 0);
        context.lineTo(-7, 7);
        context.lineTo(-3.5, 0);
        context.lineTo(-7, -7);
        context.closePath();
        context.lineWidth = 2;
        context.strokeStyle = this.paper;
        context.stroke();
        context.fill();
        context.restore();
    }

    #isOnScreen(x, y) {
        return x >= -20 && x <= this.view.width + 20 && y >= -20 && y <= this.view.height + 20;
    }

    #paintDisc(context, x, y, radius, colour) {
        context.beginPath();
        context.arc(x, y, radius, 0, 2 * Math.PI);
        context.fillStyle = colour;
        context.fill();
        context.lineWidth = 1.2;
        context.strokeStyle = this.paper;
        context.stroke();
    }

    #paintRing(context, x, y, radius, width) {
        for (const [colour, extra] of [[this.paper, 2], [this.alarm, 0]]) {
            context.beginPath();
            context.arc(x, y, radius, 0, 2 * Math.PI);
            context.lineWidth = width + extra;
            context.strokeStyle = colour;
            context.stroke();
        }
    }

    #paintArrow(context, x, y, direction, contour) {
        context.save();
        context.translate(x, y);
        context.rotate(direction);
        context.beginPath();
        context.moveTo(6, 0);
        context.lineTo(-5, 4.6);
        context.lineTo(-5, -4.6);
        context.closePath();
        context.lineWidth = 2.4;
        context.strokeStyle = this.paper;
        context.stroke();
        context.fillStyle = this.colourOf(contour);
        context.fill();
        context.restore();
    }
}
