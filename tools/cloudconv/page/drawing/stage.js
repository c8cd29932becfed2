// What lies on the screen: three canvases over each other. The lowest has the drawing, the middle
// one the part that was walked, the highest what is lit, rings, and the tool.
//
// While the view moves, a drawing that takes long to paint is shown as it was, moved along; it is
// painted again as soon as there is time.

import { byId, oncePerFrame } from "../shared/elements.js";
import { numberText, withUnit } from "../shared/words.js";

/** What may be painted in every frame, in milliseconds; and how long to wait with what may not. */
const quickly = 24;
const pause = 90;

/** Painted by the processor: what takes paths to the graphics card, and there to pieces, is slower
 *  for ten thousand of them, and nobody can tell how long it will take. */
function contextOf(canvas) {
    return canvas.getContext("2d", { willReadFrequently: true });
}

export class Stage {
    #cost = 0;
    #timer = 0;
    /** The view at which the canvases were painted. */
    #painted = null;
    /** The walk as it lies on the middle canvas. */
    #trail = null;

    constructor(drawing, walk, view, painter, player, state) {
        Object.assign(this, { drawing, walk, view, painter, player, state });
        this.box = byId("stage");
        this.base = byId("base-canvas");
        this.trail = byId("trail-canvas");
        this.top = byId("top-canvas");
        this.touched = false;
        this.#resize();
        new ResizeObserver(() => this.#resize()).observe(this.box);
        this.paintTop = oncePerFrame(() => this.#paintTop());
        this.show = oncePerFrame(() => this.#show());
    }

    /** The view has moved, the canvases follow. */
    viewMoved() {
        this.touched = true;
        this.#ask();
    }

    /** What is to be seen is another: all is painted again. */
    repaint() {
        this.#painted = null;
        this.#ask();
    }

    /** The tool has moved. */
    walkMoved() {
        const underway = this.player.isUnderway;
        this.box.classList.toggle("walking", underway);
        // Where the view has moved on, all of it is about to be painted again.
        if (this.#painted && this.#isAsPainted()) {
            this.#paintTrail(true);
        }
        this.paintTop();
    }

    /** Shows all at the next frame; the root tells whether the drawing is as the view has it. */
    #ask() {
        document.documentElement.dataset.whole = "false";
        this.show();
    }

    #resize() {
        const { clientWidth, clientHeight } = this.box;
        const ratio = Math.min(window.devicePixelRatio || 1, 2);
        if (clientWidth === 0 || clientHeight === 0) {
            return;
        }
        for (const canvas of [this.base, this.trail, this.top]) {
            canvas.width = Math.round(clientWidth * ratio);
            canvas.height = Math.round(clientHeight * ratio);
            contextOf(canvas).setTransform(ratio, 0, 0, ratio, 0, 0);
        }
        this.view.width = clientWidth;
        this.view.height = clientHeight;
        if (!this.touched) {
            this.view.fit();
        }
        this.#painted = null;
        this.#show();
    }

    #show() {
        clearTimeout(this.#timer);
        if (this.#painted === null || this.#cost < quickly) {
            this.#paintAll();
        } else {
            this.#moveAlong();
            this.#timer = setTimeout(() => this.#paintAll(), pause);
        }
        this.#paintTop();
        this.#tellScale();
    }

    #isAsPainted() {
        const { x, y, scale } = this.#painted;
        return this.view.x === x && this.view.y === y && this.view.scale === scale;
    }

    /** Puts what is painted to where it now lies. */
    #moveAlong() {
        const { view } = this;
        const before = this.#painted;
        const factor = view.scale / before.scale;
        const x = (before.x - view.x) * view.scale + (view.width / 2) * (1 - factor);
        const y = (view.y - before.y) * view.scale + (view.height / 2) * (1 - factor);
        const transform = `translate(${x}px, ${y}px) scale(${factor})`;
        this.base.style.transform = transform;
        this.trail.style.transform = transform;
    }

    #paintAll() {
        const begin = performance.now();
        const context = this.#cleared(this.base);
        const { painter, state } = this;
        if (state.signs.ways) {
            painter.paintWays(context);
        }
        painter.paintContours(context);
        if (state.signs.directions) {
            painter.paintDirections(context);
        }
        if (state.signs.ends) {
            painter.paintOpenEnds(context);
        }
        this.#painted = { x: this.view.x, y: this.view.y, scale: this.view.scale };
        this.#paintTrail(false);
        // Browsers put painting off until somebody looks.
        context.getImageData(0, 0, 1, 1);
        this.#cost = performance.now() - begin;
        document.documentElement.dataset.paintMilliseconds = this.#cost.toFixed(1);
        document.documentElement.dataset.whole = "true";
    }

    /** Paints what was walked. While the tool goes on, only what is new is painted. */
    #paintTrail(goesOn) {
        const { painter, player } = this;
        if (!player.isUnderway) {
            this.#cleared(this.trail);
            this.#trail = null;
            return;
        }
        const tool = this.walk.at(player.walked);
        const before = this.#trail;
        const isLater = before !== null &&
            (tool.contour > before.contour ||
                (tool.contour === before.contour && tool.point >= before.point));
        const waysBegin = before && isLater ? before.contour + (before.onWay ? 0 : 1) : 0;
        const end = tool.onWay ? tool.contour : tool.contour + 1;
        const context = goesOn && isLater ? contextOf(this.trail) : this.#cleared(this.trail);
        if (this.state.signs.ways) {
            painter.paintWays(context, goesOn && isLater ? waysBegin : 0, end);
        }
        if (goesOn && isLater) {
            painter.paintStretch(context, before, tool);
        } else {
            painter.paintContours(context, end, tool.onWay ? undefined : tool.point);
        }
        this.#trail = tool;
    }

    #paintTop() {
        const { painter, state, player, drawing } = this;
        const context = this.#cleared(this.top);
        if (state.chosen >= 0 && drawing.isShown(state.chosen)) {
            painter.paintLit(context, state.chosen, 3.2);
        }
        if (state.lit >= 0 && state.lit !== state.chosen && drawing.isShown(state.lit)) {
            painter.paintLit(context, state.lit, 3.2);
        }
        if (state.signs.findings) {
            painter.paintFindings(context, state.chosenFinding);
        }
        if (player.isUnderway) {
            const tool = this.walk.at(player.walked);
            painter.paintReach(context, tool);
            painter.paintTool(context, tool);
        }
    }

    #cleared(canvas) {
        const context = contextOf(canvas);
        context.clearRect(0, 0, this.view.width, this.view.height);
        if (canvas !== this.top) {
            canvas.style.transform = "";
        }
        return context;
    }

    /** A line of a round length, to tell sizes by. */
    #tellScale() {
        const { scale } = this.view;
        const most = 130 / scale;
        const power = 10 ** Math.floor(Math.log10(most));
        const length = [5, 2, 1].map((factor) => factor * power).find((step) => step <= most);
        byId("scale-bar").style.width = `${length * scale}px`;
        byId("scale-text").textContent = withUnit(numberText(length), this.drawing.unit);
    }
}
