// Elements of the page. Texts only ever go in as texts, so that no name of a file is markup.

export function byId(id) {
    return document.getElementById(id);
}

/** A new element: its attributes, and what is in it. */
export function element(tag, attributes = {}, ...content) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (name === "class") {
            made.className = value;
        } else if (name in made && typeof value !== "string") {
            made[name] = value;
        } else {
            made.setAttribute(name, value);
        }
    }
    made.append(...content);
    return made;
}

/** Calls back at the next frame, once however often it was asked for. */
export function oncePerFrame(work) {
    let asked = false;
    return () => {
        if (!asked) {
            asked = true;
            requestAnimationFrame(() => {
                asked = false;
                work();
            });
        }
    };
}

/** Makes a row of buttons tabs: each shows the panel that it controls. */
export function connectTabs(list) {
    const tabs = [...list.querySelectorAll('[role="tab"]')].filter((tab) => !tab.hidden);
    const choose = (chosen) => {
        for (const tab of tabs) {
            const isChosen = tab === chosen;
            tab.setAttribute("aria-selected", String(isChosen));
            tab.tabIndex = isChosen ? 0 : -1;
            byId(tab.getAttribute("aria-controls")).hidden = !isChosen;
        }
    };
    for (const tab of tabs) {
        tab.addEventListener("click", () => choose(tab));
        tab.addEventListener("keydown", (event) => {
            const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
            if (step) {
                const next = tabs[(tabs.indexOf(tab) + step + tabs.length) % tabs.length];
                choose(next);
                next.focus();
                event.preventDefault();
            }
        });
    }
    choose(tabs[0]);
    return choose;
}
