// Numbers and counts as people read them.

const thousands = new Intl.NumberFormat("en");

/** 12345 as "12,345". */
export function counted(count, singular, plural = `${singular}s`) {
    return `${thousands.format(count)} ${count === 1 ? singular : plural}`;
}

/** A number with about so many digits, never with an exponent where people would write it out. */
export function numberText(number, digits = 4) {
    if (!Number.isFinite(number)) {
        return "–";
    }
    const size = Math.abs(number);
    if (size !== 0 && (size < 1e-9 || size >= 1e15)) {
        return number.toExponential(digits - 1).replace("e+", "e");
    }
    const before = size === 0 ? 1 : Math.floor(Math.log10(size)) + 1;
    const decimals = Math.min(12, Math.max(0, digits - before));
    const text = number.toLocaleString("en", {
        minimumFractionDigits: 0,
        maximumFractionDigits: decimals,
    });
    return text === "-0" ? "0" : text.replace("-", "\u2212");
}

/** A number with so many decimals: for columns and readings that should not jump. */
export function fixedText(number, decimals) {
    const text = number.toLocaleString("en", {
        minimumFractionDigits: decimals,
        maximumFractionDigits: decimals,
    });
    return text.replace("-", "\u2212");
}

/** How many decimals tell places apart that lie this far from each other. */
export function decimalsFor(step) {
    return Math.min(9, Math.max(0, Math.ceil(-Math.log10(step))));
}

/** "12.5 mm"; without a unit, "12.5". */
export function withUnit(text, unit) {
    return unit ? `${text}\u00a0${unit}` : text;
}
