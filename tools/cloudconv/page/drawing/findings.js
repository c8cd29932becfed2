// What one should look at before a robot follows the path, and what was left out of it.

import { byId, element } from "../shared/elements.js";
import { counted } from "../shared/words.js";

/** The box around a finding's places. */
export function boxOfFinding(finding) {
    const xs = finding.places.map((place) => place[0]);
    const ys = finding.places.map((place) => place[1]);
    return [Math.min(...xs), Math.min(...ys), Math.max(...xs), Math.max(...ys)];
}

export function listFindings(drawing, state) {
    const list = byId("findings");
    if (drawing.findings.length === 0) {
        list.replaceWith(element("p", { class: "hint" }, "Nothing found."));
    }
    drawing.findings.forEach((finding, index) => {
        const button = element(
            "button",
            { type: "button", class: "finding" },
            element("span", { class: "ring", "aria-hidden": "true" }),
            element("span", {}, finding.text),
        );
        // Nothing to zoom to: it is said, and that is all.
        button.disabled = finding.places.length === 0;
        button.addEventListener("click", () => state.chooseFinding(index));
        list.append(element("li", {}, button));
    });
    byId("findings-tab").append(
        element("span", { class: "badge" }, drawing.findings.length.toLocaleString("en")),
    );
    byId("findings-tab").classList.toggle("alarming", drawing.findings.length > 0);
}

function leftOutText(leftOut) {
    const where = leftOut.layer ? ` on layer ${leftOut.layer}` : "";
    return `${leftOut.number.toLocaleString("en")} × ${leftOut.kind}${where}: ${leftOut.reason}`;
}

/** What the page says about the file as a whole. */
export function tellAbout(drawing, walk, unitText) {
    const rows = byId("about");
    const add = (name, value) =>
        rows.append(element("dt", {}, name), element("dd", {}, value));
    const [left, bottom, right, top] = drawing.box;
    add("Contours", drawing.count.toLocaleString("en"));
    add("Points", (drawing.points.length / 2).toLocaleString("en"));
    add("Length", `${unitText(walk.alongContours, 7)}`);
    add("Ways between", `${unitText(walk.alongWays, 7)}`);
    add("Size", `${unitText(right - left, 6)} × ${unitText(top - bottom, 6)}`);
    add("Unit", drawing.unit || "not named");
    const leftOut = byId("left-out");
    if (drawing.leftOut.length > 0) {
        const number = drawing.leftOut.reduce((sum, entry) => sum + entry.number, 0);
        leftOut.append(
            element("h3", {}, `Left out: ${counted(number, "entity", "entities")}`),
            element(
                "ul", {},
                ...drawing.leftOut.map((entry) => element("li", {}, leftOutText(entry))),
            ),
        );
    }
    if (drawing.notes.length > 0) {
        leftOut.append(
            element("h3", {}, "Notes"),
            element("ul", {}, ...drawing.notes.map((note) => element("li", {}, note))),
        );
    }
}
