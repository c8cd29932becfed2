// What the page holds besides its script: elements that no browser runs, each with a name.

const letterValues = new Uint8Array(128);
[..."ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"].forEach((letter, value) => {
    letterValues[letter.charCodeAt(0)] = value;
});

/** The bytes of a base64 text. */
function decoded(text) {
    if (Uint8Array.fromBase64) {
        return Uint8Array.fromBase64(text);
    }
    const padding = text.endsWith("==") ? 2 : text.endsWith("=") ? 1 : 0;
    const bytes = new Uint8Array((text.length / 4) * 3 - padding);
    for (let from = 0, to = 0; from < text.length; from += 4, to += 3) {
        const bits =
            (letterValues[text.charCodeAt(from)] << 18) |
            (letterValues[text.charCodeAt(from + 1)] << 12) |
            (letterValues[text.charCodeAt(from + 2) & 127] << 6) |
            letterValues[text.charCodeAt(from + 3) & 127];
        // What is behind the end of an array is not stored.
        bytes[to] = bits >> 16;
        bytes[to + 1] = bits >> 8;
        bytes[to + 2] = bits;
    }
    return bytes;
}

/** The elements that hold data under a name, in their order. */
export function dataElements(name) {
    return [...document.querySelectorAll(`script[data-name="${name}"]`)];
}

/** The value of an element of JSON. */
export function jsonOf(name) {
    return JSON.parse(dataElements(name)[0].textContent);
}

/** The numbers of an element of base64, as an array of this type. The element is gone then: its
 *  text may be large. */
export function numbersOf(element, ArrayType) {
    const bytes = decoded(element.textContent);
    element.remove();
    return new ArrayType(bytes.buffer, 0, bytes.length / ArrayType.BYTES_PER_ELEMENT);
}
