// What pages of both kinds have around what they show: the scheme, the panel, the help.

import { byId } from "./elements.js";

const darkIsWanted = matchMedia("(prefers-color-scheme: dark)");

export function isDark() {
    const asked = document.documentElement.dataset.scheme;
    return asked ? asked === "dark" : darkIsWanted.matches;
}

/** A colour of the style, such as "--ink", as it is in the present scheme. */
export function styleColour(name) {
    return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

/** Connects the buttons of the heading. */
export function connectFrame(onSchemeChange) {
    byId("scheme-button").addEventListener("click", () => {
        document.documentElement.dataset.scheme = isDark() ? "light" : "dark";
        onSchemeChange();
    });
    darkIsWanted.addEventListener("change", onSchemeChange);

    const panelButton = byId("panel-button");
    const showPanel = (shown) => {
        byId("app").classList.toggle("without-panel", !shown);
        panelButton.setAttribute("aria-expanded", String(shown));
    };
    panelButton.addEventListener("click", () => {
        showPanel(panelButton.getAttribute("aria-expanded") !== "true");
    });
    showPanel(true);

    const help = byId("help");
    byId("help-button").addEventListener("click", () => help.showModal());
    help.addEventListener("click", (event) => {
        if (event.target === help) {
            help.close();
        }
    });
}

/** Whether a key is meant for a field that takes text or a choice, not for the whole page. */
export function isForField(event) {
    const tag = event.target.tagName;
    return (
        event.ctrlKey ||
        event.metaKey ||
        event.altKey ||
        tag === "SELECT" ||
        (tag === "INPUT" && event.target.type !== "checkbox") ||
        event.target.closest("dialog") !== null
    );
}
