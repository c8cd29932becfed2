// A list of any length, of which only the lines in sight are elements.

import { oncePerFrame } from "../shared/elements.js";

/** Lines above and below those in sight, so that scrolling shows no gaps. */
const spare = 6;

/** Browsers do not lay out elements higher than some 30 million pixels; they lay out this. */
const mostHeight = 8_000_000;

export class VirtualList {
    #lines = new Map();
    #count = 0;
    #active = 0;

    /**
     * @param container   scrolls; its "--line-height" says how high a line is, in pixels
     * @param makeLine    makes an element for the line of an index; the first button in it is what
     *                    has the keyboard's focus
     * @param onActivate  told the index that the keyboard moves to
     */
    constructor(container, makeLine, onActivate) {
        this.container = container;
        this.makeLine = makeLine;
        this.onActivate = onActivate;
        this.lineHeight = parseFloat(getComputedStyle(container).getPropertyValue("--line-height"));
        this.filler = document.createElement("div");
        this.filler.className = "filler";
        this.filler.setAttribute("role", "presentation");
        container.append(this.filler);
        this.update = oncePerFrame(() => this.#update());
        container.addEventListener("scroll", this.update);
        container.addEventListener("keydown", (event) => this.#onKey(event));
        new ResizeObserver(this.update).observe(container);
    }

    setCount(count) {
        this.#count = count;
        this.#active = Math.min(this.#active, Math.max(0, count - 1));
        this.filler.style.height = `${this.#height()}px`;
        this.refresh();
    }

    /** Makes the lines in sight again. */
    refresh() {
        const focused = this.filler.contains(document.activeElement);
        this.#lines.forEach((line) => line.remove());
        this.#lines.clear();
        this.#update();
        if (focused) {
            this.#lines.get(this.#active)?.querySelector("button")?.focus({ preventScroll: true });
        }
    }

    /** Scrolls as little as shows a line, and makes it the one that the keyboard starts from. */
    show(index, { focus = false } = {}) {
        this.#active = index;
        const inSight = this.container.clientHeight;
        const first = this.#firstLine();
        const last = first + inSight / this.lineHeight - 1;
        if (index < first || index > last) {
            const top = index < first ? index : index + 1 - inSight / this.lineHeight;
            this.container.scrollTop = this.#scrollOf(Math.max(0, top));
        }
        this.#update();
        this.#setTabStops();
        if (focus) {
            this.#lines.get(index)?.querySelector("button")?.focus({ preventScroll: true });
        }
    }

    #height() {
        return Math.min(this.#count * this.lineHeight, mostHeight);
    }

    /** How many lines lie above what is in sight, with a fraction. */
    #firstLine() {
        const room = this.#height() - this.container.clientHeight;
        const lines = this.#count - this.container.clientHeight / this.lineHeight;
        return room > 0 ? (this.container.scrollTop / room) * lines : 0;
    }

    #scrollOf(firstLine) {
        const room = this.#height() - this.container.clientHeight;
        const lines = this.#count - this.container.clientHeight / this.lineHeight;
        return lines > 0 ? (firstLine / lines) * room : 0;
    }

    #update() {
        const first = this.#firstLine();
        const inSight = this.container.clientHeight / this.lineHeight;
        const begin = Math.max(0, Math.floor(first) - spare);
        const end = Math.min(this.#count, Math.ceil(first + inSight) + spare);
        for (const [index, line] of this.#lines) {
            if (index < begin || index >= end) {
                line.remove();
                this.#lines.delete(index);
            }
        }
        const top = this.container.scrollTop - first * this.lineHeight;
        for (let index = begin; index < end; ++index) {
            if (!this.#lines.has(index)) {
                const line = this.makeLine(index);
                line.setAttribute("aria-setsize", String(this.#count));
                line.setAttribute("aria-posinset", String(index + 1));
                this.#lines.set(index, line);
                this.filler.append(line);
            }
            const y = top + index * this.lineHeight;
            this.#lines.get(index).style.transform = `translateY(${y}px)`;
        }
        this.#setTabStops();
    }

    /** The tabulator stops at one line only, or the way past a long list would be long. */
    #setTabStops() {
        for (const [index, line] of this.#lines) {
            for (const stop of line.querySelectorAll("button, input")) {
                stop.tabIndex = index === this.#active ? 0 : -1;
            }
        }
    }

    #onKey(event) {
        const page = Math.max(1, Math.floor(this.container.clientHeight / this.lineHeight) - 1);
        const steps = {
            ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page,
            Home: -this.#count, End: this.#count,
        };
        const step = steps[event.key];
        if (step && this.#count > 0) {
            const index = Math.max(0, Math.min(this.#count - 1, this.#active + step));
            this.show(index, { focus: true });
            this.onActivate?.(index);
            event.preventDefault();
            event.stopPropagation();
        }
    }
}
