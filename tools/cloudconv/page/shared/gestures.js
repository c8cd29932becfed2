// Wheel, mouse, pen and fingers, as movements of what is shown.
//
// Places are CSS pixels from the upper left corner of the element.

/** Pixels that a pointer may shake while it clicks. */
const clickRange = 5;
const pixelsPerLine = 16;
const pixelsPerPage = 400;
/** A notch of a wheel is 100 pixels, and zooms by a fifth or so. */
const zoomPerPixel = 0.002;

/**
 * @param handlers  drag(dx, dy, event): one pointer moves while it is down
 *                  pinch(x, y, factor, dx, dy): two fingers, or the wheel, zoom about a place
 *                  click(x, y, event), hover(x, y), leave(), doubleClick(x, y), end()
 */
export function connectGestures(target, handlers) {
    const pointers = new Map();
    let start = null;

    const placeOf = (event) => {
        const box = target.getBoundingClientRect();
        return { x: event.clientX - box.left, y: event.clientY - box.top };
    };
    const middleAndSpan = () => {
        const [a, b] = [...pointers.values()];
        return {
            x: (a.x + b.x) / 2,
            y: (a.y + b.y) / 2,
            span: Math.max(1, Math.hypot(a.x - b.x, a.y - b.y)),
        };
    };

    target.addEventListener("pointerdown", (event) => {
        if (event.button > 2 || pointers.size === 2) {
            return;
        }
        target.setPointerCapture(event.pointerId);
        pointers.set(event.pointerId, placeOf(event));
        start = pointers.size === 1 ? { ...placeOf(event), isClick: event.button === 0 } : null;
        target.focus({ preventScroll: true });
    });

    target.addEventListener("pointermove", (event) => {
        const place = placeOf(event);
        const before = pointers.get(event.pointerId);
        if (!before) {
            handlers.hover?.(place.x, place.y);
            return;
        }
        if (start?.isClick && Math.hypot(place.x - start.x, place.y - start.y) < clickRange) {
            return;
        }
        if (start) {
            start.isClick = false;
        }
        if (pointers.size === 1) {
            pointers.set(event.pointerId, place);
            handlers.drag(place.x - before.x, place.y - before.y, event);
            return;
        }
        const last = middleAndSpan();
        pointers.set(event.pointerId, place);
        const now = middleAndSpan();
        handlers.pinch(now.x, now.y, now.span / last.span, now.x - last.x, now.y - last.y);
    });

    const release = (event) => {
        if (!pointers.delete(event.pointerId)) {
            return;
        }
        const place = placeOf(event);
        if (event.type === "pointerup" && start?.isClick && event.button === 0) {
            handlers.click?.(place.x, place.y, event);
        }
        start = null;
        handlers.end?.();
    };
    target.addEventListener("pointerup", release);
    target.addEventListener("pointercancel", release);
    target.addEventListener("pointerleave", () => handlers.leave?.());
    target.addEventListener("dblclick", (event) => {
        const place = placeOf(event);
        handlers.doubleClick?.(place.x, place.y);
    });
    target.addEventListener("contextmenu", (event) => event.preventDefault());

    target.addEventListener(
        "wheel",
        (event) => {
            event.preventDefault();
            const unit = [1, pixelsPerLine, pixelsPerPage][event.deltaMode] ?? 1;
            // Fingers on a touchpad arrive as a wheel with the control key, in smaller steps.
            const speed = event.ctrlKey ? zoomPerPixel * 4 : zoomPerPixel;
            const pixels = Math.max(-300, Math.min(300, event.deltaY * unit));
            const place = placeOf(event);
            handlers.pinch(place.x, place.y, Math.exp(-pixels * speed), 0, 0);
            handlers.end?.();
        },
        { passive: false },
    );
}
