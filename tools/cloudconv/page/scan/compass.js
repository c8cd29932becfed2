// The directions of x, y and z, in a corner of the view.

import { styleColour } from "../shared/frame.js";

const names = ["x", "y", "z"];
const colours = ["#e0504a", "#3f9a4b", "#4a7de0"];

export function paintCompass(canvas, camera) {
    const size = 76;
    const ratio = Math.min(window.devicePixelRatio || 1, 3);
    canvas.width = size * ratio;
    canvas.height = size * ratio;
    const context = canvas.getContext("2d");
    context.scale(ratio, ratio);
    context.translate(size / 2, size / 2);
    context.font = "600 12px system-ui, sans-serif";
    context.textAlign = "center";
    context.textBaseline = "middle";
    const { right, up, back } = camera.axes();
    const arms = names.map((name, axis) => ({
        name, colour: colours[axis], x: right[axis] * 24, y: -up[axis] * 24, near: back[axis],
    }));
    // What points away is painted first, and paler.
    arms.sort((a, b) => a.near - b.near);
    for (const arm of arms) {
        context.globalAlpha = arm.near < -0.05 ? 0.55 : 1;
        context.strokeStyle = arm.colour;
        context.lineWidth = 2;
        context.beginPath();
        context.moveTo(0, 0);
        context.lineTo(arm.x, arm.y);
        context.stroke();
        context.fillStyle = styleColour("--ink");
        context.fillText(arm.name, arm.x * 1.38, arm.y * 1.38);
    }
}
