// Which part of the plane the screen shows: y upwards, one unit as long in x as in y.

/** How far one can zoom: units per pixel, as parts of the drawing's extent. */
const finest = 1e-11;
const coarsest = 1;

export class View {
    width = 1;
    height = 1;
    x = 0;
    y = 0;
    /** Pixels of a unit. */
    scale = 1;

    constructor(box) {
        this.whole = box;
        const extent = Math.max(box[2] - box[0], box[3] - box[1]);
        // A drawing that is one point has an extent of its own.
        this.extent = extent > 0 ? extent : Math.max(1, Math.abs(box[0]) * 1e-3);
    }

    screenX(x) {
        return (x - this.x) * this.scale + this.width / 2;
    }

    screenY(y) {
        return this.height / 2 - (y - this.y) * this.scale;
    }

    planeX(x) {
        return this.x + (x - this.width / 2) / this.scale;
    }

    planeY(y) {
        return this.y - (y - this.height / 2) / this.scale;
    }

    pan(dx, dy) {
        this.x -= dx / this.scale;
        this.y += dy / this.scale;
    }

    /** Zooms so that what is at a place of the screen stays there. */
    zoom(screenX, screenY, factor) {
        const [x, y] = [this.planeX(screenX), this.planeY(screenY)];
        this.scale = this.#within(this.scale * factor);
        this.x = x - (screenX - this.width / 2) / this.scale;
        this.y = y + (screenY - this.height / 2) / this.scale;
    }

    /** Shows a box, with some room around it: the page's buttons lie in the corners. */
    fit(box = this.whole, margin = 58) {
        // Where there is little, the buttons at the top still have theirs.
        const room = (pixels) =>
            Math.max(pixels - 2 * margin, Math.min(0.72 * pixels, pixels - 96), 0.4 * pixels);
        const [width, height] = [box[2] - box[0], box[3] - box[1]];
        const scale = Math.min(room(this.width) / width, room(this.height) / height);
        // What has no extent is shown with a thousandth of the drawing around it.
        const most = (room(this.width) / this.extent) * 1000;
        this.scale = this.#within(Math.min(scale, width || height ? Infinity : most));
        this.x = (box[0] + box[2]) / 2;
        this.y = (box[1] + box[3]) / 2;
    }

    holds(box) {
        return (
            this.screenX(box[0]) >= 0 &&
            this.screenX(box[2]) <= this.width &&
            this.screenY(box[3]) >= 0 &&
            this.screenY(box[1]) <= this.height
        );
    }

    #within(scale) {
        const least = 1 / (coarsest * this.extent);
        const most = 1 / (finest * this.extent);
        return Math.min(Math.max(scale, least), most);
    }
}
