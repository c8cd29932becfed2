// Plays the walk: a slider, a button, and what they say.

import { byId } from "../shared/elements.js";
import { fixedText, numberText, withUnit } from "../shared/words.js";
import { contourName } from "./contour-list.js";

/** Steps of the slider. */
const sliderSteps = 10_000;

/** Decimals of a length that is shown while it grows. */
function decimalsOf(length) {
    return Math.max(0, Math.min(6, 4 - Math.ceil(Math.log10(Math.max(length, 1e-6)))));
}

export class Player {
    /** How much of the walk lies behind the tool; 0 before it is played. */
    walked = 0;
    #isPlaying = false;
    #lastTime = 0;

    constructor(walk, unit, onMove) {
        this.walk = walk;
        this.unit = unit;
        this.onMove = onMove;
        this.slider = byId("walk-slider");
        this.slider.max = String(sliderSteps);
        this.slider.addEventListener("input", () => {
            this.#stop();
            this.moveTo((Number(this.slider.value) / sliderSteps) * walk.length);
        });
        byId("play").addEventListener("click", () => this.toggle());
        byId("rewind").addEventListener("click", () => this.rewind());
        this.#tell();
    }

    /** Whether the tool is on its way, played or not. */
    get isUnderway() {
        return this.walked > 0;
    }

    toggle() {
        if (this.#isPlaying) {
            this.#stop();
            return;
        }
        if (this.walk.length === 0) {
            return;
        }
        if (this.walked >= this.walk.length) {
            this.walked = 0;
        }
        this.#isPlaying = true;
        this.#lastTime = performance.now();
        this.#showButton();
        requestAnimationFrame((time) => this.#advance(time));
    }

    rewind() {
        this.#stop();
        this.moveTo(0);
    }

    moveTo(walked) {
        this.walked = Math.max(0, Math.min(this.walk.length, walked));
        this.#tell();
        this.onMove();
    }

    #advance(time) {
        if (!this.#isPlaying) {
            return;
        }
        const seconds = Math.max(0, (time - this.#lastTime) / 1000);
        this.#lastTime = time;
        const duration = Number(byId("duration").value);
        this.moveTo(this.walked + (seconds / duration) * this.walk.length);
        if (this.walked >= this.walk.length) {
            this.#stop();
        } else {
            requestAnimationFrame((next) => this.#advance(next));
        }
    }

    #stop() {
        this.#isPlaying = false;
        this.#showButton();
    }

    #showButton() {
        byId("play").setAttribute("aria-label", this.#isPlaying ? "Pause" : "Play the walk");
        byId("play").classList.toggle("playing", this.#isPlaying);
    }

    #tell() {
        const { walk } = this;
        const share = walk.length > 0 ? this.walked / walk.length : 0;
        this.slider.value = String(Math.round(share * sliderSteps));
        this.slider.style.setProperty("--share", `${100 * share}%`);
        const decimals = decimalsOf(walk.length);
        const length = (number) => fixedText(number, decimals);
        const along = this.walked > 0 ? walk.at(this.walked).along : 0;
        const ways = Math.max(0, this.walked - along);
        byId("walked").textContent =
            `${length(along)} of ${withUnit(length(walk.alongContours), this.unit)}`;
        byId("walked-more").textContent = this.walked > 0
            ? `${this.#place()} · ways ${withUnit(length(ways), this.unit)}`
            : `ways between: ${withUnit(numberText(walk.alongWays), this.unit)}`;
        this.slider.setAttribute(
            "aria-valuetext",
            `${byId("walked").textContent}, ${byId("walked-more").textContent}`,
        );
    }

    /** "contour 3 of 12", or the way to it. */
    #place() {
        const { contour, onWay } = this.walk.at(this.walked);
        const name = contourName(contour).toLowerCase();
        return `${onWay ? "way to " : ""}${name} of ${this.walk.drawing.count.toLocaleString("en")}`;
    }
}
