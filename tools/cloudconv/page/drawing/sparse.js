// Picks signs that are not too many: of those in one cell of the screen, the first.

export class SparsePlaces {
    #taken = new Set();

    /** @param cell  the side of a cell, in pixels */
    constructor(cell) {
        this.cell = cell;
    }

    take(x, y) {
        if (!Number.isFinite(x + y)) {
            return false;
        }
        const key = Math.floor(x / this.cell) * 65536 + Math.floor(y / this.cell);
        const isFirst = !this.#taken.has(key);
        this.#taken.add(key);
        return isFirst;
    }
}
