// Draws the points by WebGL 2: first into a picture of their own, together with how far each is,
// then with shading onto the screen.
//
// The picture is built up over several frames where a frame is too short for all points: as the
// first points are an even selection of all, it is whole from the start and only gets denser.

import { scaleBytes } from "../shared/colours.js";
import {
    pointFragmentShader,
    pointVertexShader,
    screenFragmentShader,
    screenVertexShader,
} from "./shaders.js";

/** How long one frame may draw points, in milliseconds. */
const frameTime = 30;
/** Points that any computer draws in that time. */
const fewPoints = 40_000;

function compiled(gl, vertexShader, fragmentShader) {
    const program = gl.createProgram();
    for (const [type, source] of [
        [gl.VERTEX_SHADER, vertexShader],
        [gl.FRAGMENT_SHADER, fragmentShader],
    ]) {
        const shader = gl.createShader(type);
        gl.shaderSource(shader, source);
        gl.compileShader(shader);
        if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS)) {
            throw new Error(gl.getShaderInfoLog(shader) ?? "no shader");
        }
        gl.attachShader(program, shader);
    }
    gl.linkProgram(program);
    if (!gl.getProgramParameter(program, gl.LINK_STATUS)) {
        throw new Error(gl.getProgramInfoLog(program) ?? "no program");
    }
    const locations = {};
    const count = gl.getProgramParameter(program, gl.ACTIVE_UNIFORMS);
    for (let i = 0; i < count; ++i) {
        const { name } = gl.getActiveUniform(program, i);
        locations[name] = gl.getUniformLocation(program, name);
    }
    return { program, locations };
}

export class Renderer {
    settings = {
        colourBy: 1, window: [0, 1], pointSize: 2, grows: false, shading: 1, ground: [1, 1, 1],
    };
    #drawn = 0;
    #blocks = [];
    #speed = fewPoints;

    /** @throws Error where the browser has no WebGL 2 */
    constructor(canvas, camera) {
        const gl = canvas.getContext("webgl2", {
            alpha: false, antialias: false, depth: false, powerPreference: "high-performance",
        });
        if (!gl) {
            throw new Error("This browser has no WebGL 2, which the view needs.");
        }
        Object.assign(this, { canvas, camera, gl });
        this.points = compiled(gl, pointVertexShader, pointFragmentShader);
        this.screen = compiled(gl, screenVertexShader, screenFragmentShader);
        this.scale = gl.createTexture();
        gl.bindTexture(gl.TEXTURE_2D, this.scale);
        gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, 256, 1, 0, gl.RGBA, gl.UNSIGNED_BYTE,
                      scaleBytes(256));
        this.#useNearest();
        this.screenArray = gl.createVertexArray();
    }

    get isWhole() {
        return this.#drawn >= this.total;
    }

    get total() {
        return this.#blocks.length ? this.#blocks[this.#blocks.length - 1].end : 0;
    }

    /** Takes over a block of points. */
    add(block) {
        const { gl } = this;
        const array = gl.createVertexArray();
        gl.bindVertexArray(array);
        const attribute = (location, numbers, connect) => {
            if (numbers.length > 0) {
                gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
                gl.bufferData(gl.ARRAY_BUFFER, numbers, gl.STATIC_DRAW);
                gl.enableVertexAttribArray(location);
                connect();
            }
        };
        attribute(0, block.places, () => gl.vertexAttribIPointer(0, 2, gl.UNSIGNED_INT, 0, 0));
        attribute(1, block.intensities, () =>
            gl.vertexAttribPointer(1, 1, gl.UNSIGNED_SHORT, true, 0, 0));
        attribute(2, block.colours, () =>
            gl.vertexAttribPointer(2, 3, gl.UNSIGNED_BYTE, true, 0, 0));
        gl.bindVertexArray(null);
        this.#blocks.push({ array, first: block.first, end: block.end });
    }

    resize(width, height) {
        const { gl, canvas } = this;
        canvas.width = width;
        canvas.height = height;
        const makeTexture = (...format) => {
            const texture = gl.createTexture();
            gl.bindTexture(gl.TEXTURE_2D, texture);
            gl.texStorage2D(gl.TEXTURE_2D, 1, format[0], width, height);
            this.#useNearest();
            return texture;
        };
        gl.deleteTexture(this.picture ?? null);
        gl.deleteTexture(this.depths ?? null);
        gl.deleteFramebuffer(this.target ?? null);
        this.picture = makeTexture(gl.RGBA8);
        this.depths = makeTexture(gl.DEPTH_COMPONENT24);
        this.target = gl.createFramebuffer();
        gl.bindFramebuffer(gl.FRAMEBUFFER, this.target);
        gl.framebufferTexture2D(
            gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, this.picture, 0);
        gl.framebufferTexture2D(
            gl.FRAMEBUFFER, gl.DEPTH_ATTACHMENT, gl.TEXTURE_2D, this.depths, 0);
        gl.bindFramebuffer(gl.FRAMEBUFFER, null);
        this.restart();
    }

    /** What is seen has changed: the picture begins anew. */
    restart() {
        this.#drawn = 0;
    }

    /** Draws as many points as one frame has time for, and shows what there is by now. */
    drawFrame() {
        const { gl } = this;
        const begin = performance.now();
        gl.bindFramebuffer(gl.FRAMEBUFFER, this.target);
        gl.viewport(0, 0, this.canvas.width, this.canvas.height);
        gl.enable(gl.DEPTH_TEST);
        if (this.#drawn === 0) {
            gl.clearColor(0, 0, 0, 0);
            gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
        }
        const from = this.#drawn;
        const to = Math.min(this.total, from + this.#speed);
        this.#useProgram(false);
        this.#drawPoints(from, to);
        this.#drawn = to;
        this.#show();
        // Waits for the processor, or the time would be that of asking only.
        gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(4));
        const time = Math.max(1, performance.now() - begin);
        if (to - from === this.#speed || time > frameTime) {
            const wanted = (this.#speed * frameTime) / time;
            this.#speed = Math.round(
                Math.max(fewPoints, Math.min(wanted, 2 * this.#speed, 50_000_000)));
        }
    }

    /** The number of the nearest point that is drawn within some pixels; -1 without one. */
    pick(x, y, reach = 8) {
        const { gl } = this;
        const size = 2 * reach + 1;
        const ratio = this.canvas.width / this.camera.width;
        const [left, bottom] = [
            Math.round(x * ratio) - reach,
            this.canvas.height - 1 - Math.round(y * ratio) - reach,
        ];
        gl.bindFramebuffer(gl.FRAMEBUFFER, this.target);
        gl.enable(gl.SCISSOR_TEST);
        gl.scissor(left, bottom, size, size);
        gl.clearColor(0, 0, 0, 0);
        gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
        this.#useProgram(true);
        this.#drawPoints(0, this.#drawn);
        const codes = new Uint8Array(4 * size * size);
        gl.readPixels(left, bottom, size, size, gl.RGBA, gl.UNSIGNED_BYTE, codes);
        gl.disable(gl.SCISSOR_TEST);
        gl.bindFramebuffer(gl.FRAMEBUFFER, null);
        this.restart();
        let best = -1;
        let bestDistance = Infinity;
        for (let i = 0; i < size * size; ++i) {
            const code = codes[4 * i] + codes[4 * i + 1] * 256 + codes[4 * i + 2] * 65536 +
                codes[4 * i + 3] * 16777216;
            const away = Math.hypot((i % size) - reach, Math.floor(i / size) - reach);
            if (code > 0 && away < bestDistance) {
                best = code - 1;
                bestDistance = away;
            }
        }
        return best;
    }

    #useProgram(picks) {
        const { gl, settings, camera } = this;
        const { program, locations } = this.points;
        gl.useProgram(program);
        const ratio = this.canvas.width / camera.width;
        gl.uniformMatrix4fv(locations.toScreen, false, camera.matrix());
        gl.uniform1f(locations.pointSize, settings.pointSize * ratio);
        gl.uniform1f(locations.growth, settings.grows ? camera.distance : 0);
        gl.uniform1i(locations.colourBy, settings.colourBy);
        gl.uniform2f(locations.window, ...settings.window);
        gl.uniform1i(locations.picks, picks ? 1 : 0);
        gl.uniform1i(locations.isRound, settings.pointSize * ratio >= 3 ? 1 : 0);
        gl.uniform1i(locations.scale, 0);
        gl.activeTexture(gl.TEXTURE0);
        gl.bindTexture(gl.TEXTURE_2D, this.scale);
    }

    #drawPoints(from, to) {
        const { gl } = this;
        for (const block of this.#blocks) {
            const [first, end] = [Math.max(from, block.first), Math.min(to, block.end)];
            if (first < end) {
                gl.uniform1i(this.points.locations.firstPoint, block.first);
                gl.bindVertexArray(block.array);
                gl.drawArrays(gl.POINTS, first - block.first, end - first);
            }
        }
        gl.bindVertexArray(null);
    }

    #show() {
        const { gl, settings, camera } = this;
        const { program, locations } = this.screen;
        const { near, far } = camera.depthRange();
        gl.bindFramebuffer(gl.FRAMEBUFFER, null);
        gl.disable(gl.DEPTH_TEST);
        gl.useProgram(program);
        gl.activeTexture(gl.TEXTURE0);
        gl.bindTexture(gl.TEXTURE_2D, this.picture);
        gl.activeTexture(gl.TEXTURE1);
        gl.bindTexture(gl.TEXTURE_2D, this.depths);
        gl.uniform1i(locations.picture, 0);
        gl.uniform1i(locations.depths, 1);
        gl.uniform2f(locations.depthRange, near, far);
        gl.uniform1f(locations.strength, settings.shading * 60);
        gl.uniform1f(locations.reach, Math.max(1, settings.pointSize / 2));
        gl.uniform3f(locations.ground, ...settings.ground);
        gl.bindVertexArray(this.screenArray);
        gl.drawArrays(gl.TRIANGLES, 0, 3);
        gl.bindVertexArray(null);
    }

    #useNearest() {
        const { gl } = this;
        for (const filter of [gl.TEXTURE_MIN_FILTER, gl.TEXTURE_MAG_FILTER]) {
            gl.texParameteri(gl.TEXTURE_2D, filter, gl.NEAREST);
        }
        for (const wrap of [gl.TEXTURE_WRAP_S, gl.TEXTURE_WRAP_T]) {
            gl.texParameteri(gl.TEXTURE_2D, wrap, gl.CLAMP_TO_EDGE);
        }
    }
}
