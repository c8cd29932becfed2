// The points as the page holds them: blocks, each with places on a grid, and with intensities and
// colours where the scan has them.

import { dataElements, numbersOf } from "../shared/data.js";

/** The coordinates of a point of a block, in steps of the grid. */
function stepsOf(places, index) {
    const [first, second] = [places[2 * index], places[2 * index + 1]];
    return [
        first & 0x1fffff,
        (first >>> 21) | ((second & 0x3ff) << 11),
        (second >>> 10) & 0x1fffff,
    ];
}

export class Points {
    blocks = [];

    constructor(facts) {
        this.facts = facts;
        this.sources = ["places", "intensities", "colours"].map(dataElements);
        this.total = this.sources[0].length;
    }

    /** Decodes the next block; nothing when there are no more. */
    next() {
        const index = this.blocks.length;
        if (index === this.total) {
            return null;
        }
        const [places, intensities, colours] = this.sources;
        const block = {
            places: numbersOf(places[index], Uint32Array),
            intensities: numbersOf(intensities[index], Uint16Array),
            colours: numbersOf(colours[index], Uint8Array),
            first: index === 0 ? 0 : this.blocks[index - 1].end,
        };
        block.count = block.places.length / 2;
        block.end = block.first + block.count;
        this.blocks.push(block);
        return block;
    }

    /** All about a point: its place in the coordinates of the scan, intensity and colour. */
    about(number) {
        const { facts } = this;
        const block = this.blocks.find(({ end }) => number < end);
        const index = number - block.first;
        const place = stepsOf(block.places, index).map(
            (steps, axis) => facts.lowest[axis] + steps * facts.step);
        const result = { place };
        if (block.intensities.length > 0) {
            const level = block.intensities[index];
            const [low, high] = facts.intensity;
            result.intensity = level === 0 ? NaN : low + ((level - 1) / 65534) * (high - low);
        }
        if (block.colours.length > 0) {
            result.colour = [...block.colours.subarray(3 * index, 3 * index + 3)];
        }
        return result;
    }

    /** The part of the scale, from 0 to 1, that all but a hundredth at each end lies in. */
    usualWindow(by) {
        const block = this.blocks[0];
        if (!block) {
            return [0, 1];
        }
        const levels = [];
        for (let i = 0; i < block.count; ++i) {
            if (by === "height") {
                levels.push(stepsOf(block.places, i)[2] / 2097151);
            } else if (block.intensities[i] > 0) {
                levels.push((block.intensities[i] - 1) / 65534);
            }
        }
        levels.sort((a, b) => a - b);
        const at = (share) => levels[Math.round(share * (levels.length - 1))] ?? share;
        const [low, high] = [at(0.01), at(0.99)];
        return high > low ? [low, high] : [at(0), Math.max(at(1), at(0) + 1e-6)];
    }
}
