// Where the scan is seen from: on a sphere around a place that one looks at. Up stays up.

import { cross, dot, perspective, product, sum, viewMatrix } from "./matrix.js";

/** The tangent of half the angle of view: some 43 degrees in all. */
const slope = 0.39;
/** A pixel turns by this much, in radians. */
const turnPerPixel = 0.006;
/** Straight down, but for what keeps right from left. */
const steepest = Math.PI / 2 - 1e-4;

const quarter = Math.PI / 4;
export const namedViews = {
    top: [-Math.PI / 2, steepest],
    front: [-Math.PI / 2, 0],
    side: [0, 0],
    iso: [-Math.PI / 2 + quarter, 0.6155],
};

export class Camera {
    width = 1;
    height = 1;

    /** @param lowest, highest  the box around what there is to see */
    constructor(lowest, highest) {
        this.middle = lowest.map((low, axis) => (low + highest[axis]) / 2);
        const sides = lowest.map((low, axis) => highest[axis] - low);
        this.sides = sides;
        // A scan that is one point is seen from one unit away.
        this.radius = Math.hypot(...sides) / 2 || 0.5;
        this.show("iso");
    }

    /** Looks at all of it from a side that has a name. */
    show(name) {
        [this.heading, this.rise] = namedViews[name];
        this.fit();
    }

    /** Looks at all of it from where one is. */
    fit() {
        this.target = [...this.middle];
        const aspect = this.width / this.height;
        const { right, up, back } = this.axes();
        // Each corner has to be inside of the angle of view, upwards and sideways.
        let needed = this.radius * 1e-3;
        for (let corner = 0; corner < 8; ++corner) {
            const place = this.sides.map((side, axis) => ((corner >> axis) & 1 ? 0.5 : -0.5) * side);
            const aside = Math.abs(dot(place, right)) / Math.max(aspect, 0.1);
            const across = Math.max(aside, Math.abs(dot(place, up))) / slope;
            needed = Math.max(needed, dot(place, back) + 1.1 * across);
        }
        this.distance = needed;
    }

    /** Unit vectors: to the right, up, and from what is looked at towards the eye. */
    axes() {
        const { heading, rise } = this;
        const back = [
            Math.cos(heading) * Math.cos(rise),
            Math.sin(heading) * Math.cos(rise),
            Math.sin(rise),
        ];
        const right = [-Math.sin(heading), Math.cos(heading), 0];
        return { right, up: cross(back, right), back };
    }

    turn(dx, dy) {
        this.heading -= dx * turnPerPixel;
        this.rise = Math.max(-steepest, Math.min(steepest, this.rise + dy * turnPerPixel));
    }

    /** How long, in units, a pixel is at what is looked at. */
    unitsPerPixel() {
        return (2 * slope * this.distance) / this.height;
    }

    pan(dx, dy) {
        const { right, up } = this.axes();
        const size = this.unitsPerPixel();
        this.target = sum(sum(this.target, right, -dx * size), up, dy * size);
    }

    /** Goes nearer, so that what is at a place of the screen stays about there. */
    zoom(x, y, factor) {
        const before = this.distance;
        const least = this.radius * 1e-4;
        this.distance = Math.min(Math.max(before / factor, least), this.radius * 100);
        const kept = 1 - this.distance / before;
        const { right, up } = this.axes();
        const size = (2 * slope * before) / this.height;
        this.target = sum(this.target, right, (x - this.width / 2) * size * kept);
        this.target = sum(this.target, up, (this.height / 2 - y) * size * kept);
    }

    /** Where the eye is. */
    eye() {
        return sum(this.target, this.axes().back, this.distance);
    }

    /** Everything between these distances is seen. */
    depthRange() {
        const eye = this.eye();
        const away = Math.hypot(...eye.map((part, axis) => part - this.middle[axis]));
        const far = away + this.radius * 1.01;
        const near = Math.max(away - this.radius * 1.01, this.distance * 0.02, far * 1e-5);
        return { near: Math.min(near, far * 0.99), far };
    }

    /** Turns places into those of the screen, each from -1 to 1. */
    matrix() {
        const { right, up, back } = this.axes();
        const { near, far } = this.depthRange();
        return product(
            perspective(slope, this.width / this.height, near, far),
            viewMatrix(right, up, back, this.eye()),
        );
    }

    /** Where a place is on the screen, in pixels; nothing when it is behind. */
    project(place) {
        const m = this.matrix();
        const part = (row) =>
            m[row] * place[0] + m[4 + row] * place[1] + m[8 + row] * place[2] + m[12 + row];
        const w = part(3);
        if (w <= 0) {
            return null;
        }
        return {
            x: ((part(0) / w + 1) / 2) * this.width,
            y: ((1 - part(1) / w) / 2) * this.height,
        };
    }
}
