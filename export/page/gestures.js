// gestures.js: what mouse, pen and fingers do on the drawing. The left button or one finger turns it, the right
// or middle button, or the left one with Shift, shifts it, the wheel and two fingers bring it nearer and shift it;
// what is pressed and let go at the same place is picked.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const CLICK_REACH = 5;  // pixels by which a press may wander and still be a click
  const WHEEL_LINE = 20;  // pixels of a line, where a wheel counts lines

  function placeOf(element, event) {
    const box = element.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  }

  const middleOf = (a, b) => ({ x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 });
  const distanceOf = (a, b) => Math.hypot(a.x - b.x, a.y - b.y);

  class Gestures {
    //   to   functions that are called with pixels of the element: turn(dx, dy), move(dx, dy),
    //        zoom(factor, place), hover(place or null), pick(place), and for what can be seized grab(place) (returns
    //        what was seized or null), drag(what, place), release(what); start() and end() around what moves
    constructor(element, to) {
      this.element = element;
      this.to = to;
      this.pointers = new Map();
      this.press = null;  // {place, button, seized} of the first pointer that is down
      this.listeners = [];
      this.listen("pointerdown", (event) => this.down(event));
      this.listen("pointermove", (event) => this.moved(event));
      this.listen("pointerup", (event) => this.up(event, true));
      this.listen("pointercancel", (event) => this.up(event, false));
      this.listen("pointerleave", () => this.pointers.size === 0 && to.hover(null));
      this.listen("contextmenu", (event) => event.preventDefault());
      this.listen("wheel", (event) => this.wheel(event), { passive: false });
      element.style.touchAction = "none";
    }

    listen(type, handler, options) {
      this.element.addEventListener(type, handler, options);
      this.listeners.push([type, handler, options]);
    }

    down(event) {
      const place = placeOf(this.element, event);
      this.pointers.set(event.pointerId, place);
      this.element.setPointerCapture(event.pointerId);
      if (this.pointers.size === 1) {
        const isPlain = event.button === 0 && !event.shiftKey;
        this.press = {
          place,
          shifts: !isPlain,
          isClick: isPlain,
          seized: isPlain ? this.to.grab(place) : null,
        };
        this.to.start();
      } else if (this.press) {
        this.press.isClick = false;
      }
    }

    moved(event) {
      const place = placeOf(this.element, event);
      const before = this.pointers.get(event.pointerId);
      if (!before) {
        this.to.hover(place);
        return;
      }
      if (this.pointers.size === 2) {
        this.pinch(event.pointerId, before, place);
      } else if (this.pointers.size === 1 && this.press) {
        this.drag(before, place);
      }
      this.pointers.set(event.pointerId, place);
    }

    drag(before, place) {
      const { press } = this;
      if (press.isClick && distanceOf(press.place, place) > CLICK_REACH) {
        press.isClick = false;
        before = press.place;
      }
      if (press.isClick) {
        return;
      }
      if (press.seized) {
        this.to.drag(press.seized, place);
      } else if (press.shifts) {
        this.to.move(place.x - before.x, place.y - before.y);
      } else {
        this.to.turn(place.x - before.x, place.y - before.y);
      }
    }

    pinch(id, before, place) {
      const [other] = [...this.pointers].filter(([each]) => each !== id).map(([, each]) => each);
      const [from, to] = [middleOf(before, other), middleOf(place, other)];
      this.to.move(to.x - from.x, to.y - from.y);
      const size = distanceOf(before, other);
      if (size > 0) {
        this.to.zoom(Math.max(distanceOf(place, other), 1) / size, to);
      }
    }

    up(event, isDone) {
      if (!this.pointers.delete(event.pointerId) || this.pointers.size > 0) {
        return;
      }
      const { press } = this;
      this.press = null;
      if (press && press.seized) {
        this.to.release(press.seized);
      }
      this.to.end();
      if (press && press.isClick && isDone && !press.seized) {
        this.to.pick(press.place);
      }
    }

    wheel(event) {
      event.preventDefault();
      const pixels = event.deltaMode === 0 ? event.deltaY : event.deltaY * WHEEL_LINE;
      const factor = Math.exp(-Math.min(Math.max(pixels, -200), 200) * (event.ctrlKey ? 0.01 : 0.002));
      this.to.zoom(factor, placeOf(this.element, event));
    }

    dispose() {
      for (const [type, handler, options] of this.listeners) {
        this.element.removeEventListener(type, handler, options);
      }
    }
  }

  Quarn.Gestures = Gestures;
})();
