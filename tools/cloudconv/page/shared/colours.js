// Colours of contours, of layers and of numbers.

// Told apart by the colour-blind, too: after Okabe and Ito, without a yellow that white swallows;
// and their lighter sisters for a dark ground.
const onLight = ["#0072b2", "#d55e00", "#009e73", "#b5559b", "#c98500", "#3aa0dc", "#30343c"];
const onDark = ["#58aef2", "#ff8f4f", "#35cfa1", "#eb93cb", "#f4b63f", "#8ed3ff", "#e4e7ee"];

export function paletteColour(index, dark) {
    const colours = dark ? onDark : onLight;
    return colours[index % colours.length];
}

function hex(red, green, blue) {
    const number = (red << 16) | (green << 8) | blue;
    return `#${number.toString(16).padStart(6, "0")}`;
}

/** The parts of one of the 240 colours that are 24 hues in five lightnesses, full and pale. */
function hueColour(index) {
    const level = [255, 165, 127, 76, 38][(index % 10) >> 1];
    const least = index % 2 === 1 ? level / 2 : 0;
    const turn = (Math.floor(index / 10) - 1) / 4;
    const part = (offset) => {
        const k = (offset + turn) % 6;
        return Math.floor(level - (level - least) * Math.max(0, Math.min(k, 4 - k, 1)));
    };
    return [part(5), part(3), part(1)];
}

/** The parts of a colour by its index in drawings, 1 to 255 except 7. */
function indexedColour(index) {
    const basic = ["", [255, 0, 0], [255, 255, 0], [0, 255, 0], [0, 255, 255], [0, 0, 255]];
    const greys = { 8: 128, 9: 192, 250: 51, 251: 80, 252: 105, 253: 130, 254: 190, 255: 255 };
    if (index in greys) {
        return Array(3).fill(greys[index]);
    }
    return basic[index] ?? (index === 6 ? [255, 0, 255] : hueColour(index));
}

/** A colour of the drawing: 0xRRGGBB, or an index from 1 to 255 as a number below zero. What would
 *  hardly show on the ground is darker or lighter than drawn, black and white are its opposite. */
export function drawingColour(value, dark) {
    const opposite = dark ? "#e4e7ee" : "#20242c";
    if (value === -7) {
        return opposite;
    }
    const parts =
        value < 0 ? indexedColour(-value) : [(value >> 16) & 255, (value >> 8) & 255, value & 255];
    const light = (0.3 * parts[0] + 0.59 * parts[1] + 0.11 * parts[2]) / 255;
    if (dark) {
        const share = Math.min(1, 0.55 + 1.2 * light);
        const lighter = parts.map((part) => Math.round(255 - (255 - part) * share));
        return light < 0.05 ? opposite : hex(...lighter);
    }
    const share = Math.min(1, 1.25 - 0.65 * light);
    return light > 0.95 ? opposite : hex(...parts.map((part) => Math.round(part * share)));
}

// Ten steps of the colour map viridis: ever lighter, so that the order shows without colours.
const scaleSteps = [
    [68, 1, 84],
    [72, 40, 120],
    [62, 73, 137],
    [49, 104, 142],
    [38, 130, 142],
    [31, 158, 137],
    [53, 183, 121],
    [110, 206, 88],
    [181, 222, 43],
    [253, 231, 37],
];

/** The colours of a scale, from its lowest to its highest value, as bytes r, g, b, a. */
export function scaleBytes(count) {
    const bytes = new Uint8Array(4 * count);
    for (let i = 0; i < count; ++i) {
        const position = (i / (count - 1)) * (scaleSteps.length - 1);
        const step = Math.min(Math.floor(position), scaleSteps.length - 2);
        for (let part = 0; part < 3; ++part) {
            const [from, to] = [scaleSteps[step][part], scaleSteps[step + 1][part]];
            bytes[4 * i + part] = Math.round(from + (to - from) * (position - step));
        }
        bytes[4 * i + 3] = 255;
    }
    return bytes;
}
