// The walk: the contours in order and the straight ways between them, by the length walked.

export class Walk {
    constructor(drawing) {
        this.drawing = drawing;
        const { count } = drawing;
        /** How much of the walk lies before each contour, and before the way that leads to it. */
        this.starts = new Float64Array(count);
        this.wayStarts = new Float64Array(count);
        /** How much of the contours themselves lies before each. */
        this.contoursBefore = new Float64Array(count);
        let walked = 0;
        let along = 0;
        for (let contour = 0; contour < count; ++contour) {
            this.wayStarts[contour] = walked;
            if (contour > 0) {
                const way = drawing.distance(drawing.begin(contour) - 1, drawing.begin(contour));
                walked += Number.isFinite(way) ? way : 0;
            }
            this.starts[contour] = walked;
            this.contoursBefore[contour] = along;
            walked += drawing.lengths[contour];
            along += drawing.lengths[contour];
        }
        this.length = walked;
        this.alongContours = along;
        this.alongWays = walked - along;
    }

    /** The contour that is walked, or that the way leads to, after so much of the walk. */
    contourAt(walked) {
        let low = 0;
        let high = this.drawing.count - 1;
        while (low < high) {
            const middle = (low + high + 1) >> 1;
            if (this.wayStarts[middle] <= walked) {
                low = middle;
            } else {
                high = middle - 1;
            }
        }
        return low;
    }

    /**
     * Where the tool is after so much of the walk.
     *
     * point: the index of the last point passed; x, y: the place; onWay: whether it is between
     * contours; along: how much of it was along contours.
     */
    at(walked) {
        const { drawing } = this;
        const contour = this.contourAt(walked);
        const begin = drawing.begin(contour);
        if (walked < this.starts[contour]) {
            const way = this.starts[contour] - this.wayStarts[contour];
            const share = (walked - this.wayStarts[contour]) / way;
            const place = this.#between(begin - 1, begin, share);
            return { ...place, contour, point: begin - 1, onWay: true,
                     along: this.contoursBefore[contour] };
        }
        const walkedHere = Math.min(walked - this.starts[contour], drawing.lengths[contour]);
        const along = this.contoursBefore[contour] + walkedHere;
        const sums = this.#sumsOf(contour);
        const total = sums[sums.length - 1];
        // Chords are a little shorter than their curves.
        const target = drawing.lengths[contour] > 0
            ? (walkedHere / drawing.lengths[contour]) * total
            : 0;
        let low = 0;
        let high = Math.max(0, sums.length - 2);
        while (low < high) {
            const middle = (low + high + 1) >> 1;
            if (sums[middle] <= target) {
                low = middle;
            } else {
                high = middle - 1;
            }
        }
        const step = (sums[low + 1] ?? target) - sums[low];
        const next = Math.min(begin + low + 1, drawing.ends[contour] - 1);
        const place = this.#between(begin + low, next, step > 0 ? (target - sums[low]) / step : 0);
        return { ...place, contour, point: begin + low, onWay: false, along };
    }

    #between(a, b, share) {
        const { points } = this.drawing;
        const [x1, y1, x2, y2] = [points[2 * a], points[2 * a + 1], points[2 * b], points[2 * b + 1]];
        return {
            x: x1 + (x2 - x1) * share,
            y: y1 + (y2 - y1) * share,
            direction: Math.atan2(y2 - y1, x2 - x1),
        };
    }

    /** The lengths from a contour's first point to each of them. Kept for the contour last asked
     *  for: the tool stays on one for a while. */
    #sumsOf(contour) {
        if (this.lastContour !== contour) {
            const { drawing } = this;
            const [begin, end] = [drawing.begin(contour), drawing.ends[contour]];
            const sums = new Float64Array(end - begin);
            for (let i = begin + 1; i < end; ++i) {
                const step = drawing.isOfPoints(contour) ? 0 : drawing.distance(i - 1, i);
                sums[i - begin] = sums[i - begin - 1] + (Number.isFinite(step) ? step : 0);
            }
            this.lastContour = contour;
            this.lastSums = sums;
        }
        return this.lastSums;
    }
}
