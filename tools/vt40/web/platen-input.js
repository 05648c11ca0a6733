// Works the simulated platen by mouse, touch and keys: drags, turns, presses, rolls, writes and soils.
import { margin } from "./platen-draw.js";
import { angleTo, clamp, fingerAt, handleOf, layRolling, moveBy, rollFrame, sendPeriod, side } from "./platen-model.js";

/** Where the handle of a finger is taken hold of, mm. */
const handleReach = 3.5;
/** What is not laid down by a double click. */
const tools = ["roll", "pen", "dirt"];

export class PlatenInput {
  /** @param {import("./platen.js").Platen} platen */
  constructor(platen) {
    this.platen = platen;
    this.drag = null;
    this.#listen();
  }

  #place(event) {
    const scale = (side + 2 * margin) / this.platen.canvas.clientWidth;
    return { x: event.offsetX * scale - margin, y: event.offsetY * scale - margin };
  }

  #listen() {
    const { canvas } = this.platen;
    const listen = (name, work) => canvas.addEventListener(name, (event) => {
      if (this.platen.enabled) work(event);
    }, { passive: false });
    listen("pointerdown", (event) => {
      if (event.button !== 0) return;
      canvas.setPointerCapture(event.pointerId);
      this.#begin(this.#place(event), event);
    });
    canvas.addEventListener("pointermove", (event) => this.drag && this.#move(this.#place(event)));
    for (const name of ["pointerup", "pointercancel"]) canvas.addEventListener(name, () => this.#end());
    listen("dblclick", (event) => {
      const at = this.#place(event);
      if (!tools.includes(this.platen.what) && fingerAt(this.platen.fingers, at.x, at.y) < 0) this.platen.lay(at);
    });
    listen("wheel", (event) => this.#wheel(event));
    listen("keydown", (event) => this.#key(event));
  }

  #begin(at, event) {
    if (this.platen.what === "roll") {
      if (Math.abs(at.y - rollFrame.y) > rollFrame.half) return;
      this.platen.fingers = [layRolling(at.x - rollFrame.x, this.platen.print)];
      this.drag = { kind: "roll" };
      return this.platen.update();
    }
    if (this.platen.what === "pen") return this.#penDown(at);
    if (this.platen.what === "dirt") {
      this.platen.dirt = this.platen.dirt.concat({ x: at.x, y: at.y, width: 0.8, strength: 0.5 }).slice(-200);
      this.drag = { kind: "dirt", from: at };
      return this.platen.update();
    }
    const handle = this.platen.finger && handleOf(this.platen.finger);
    if (handle && Math.hypot(at.x - handle.x, at.y - handle.y) <= handleReach) {
      this.drag = { kind: "turn" };
      return;
    }
    const index = fingerAt(this.platen.fingers, at.x, at.y);
    if (index !== this.platen.chosen) this.platen.select(index);
    if (index >= 0) this.drag = { kind: "move", from: at, alone: event.ctrlKey || !this.platen.together };
  }

  #move(at) {
    const drag = this.drag;
    if (drag.kind === "pen") return this.#penMove(at);
    if (drag.kind === "roll") {
      this.platen.fingers = [layRolling(at.x - rollFrame.x, this.platen.print)];
    } else if (drag.kind === "dirt") {
      this.#smear(at);
    } else if (!this.platen.finger) {
      return;
    } else if (drag.kind === "turn") {
      this.platen.finger.angle = clamp(angleTo(this.platen.finger, at.x, at.y), -180, 180);
    } else {
      moveBy(drag.alone ? [this.platen.finger] : this.platen.fingers, at.x - drag.from.x, at.y - drag.from.y);
      drag.from = at;
    }
    this.platen.update();
  }

  #end() {
    const drag = this.drag;
    this.drag = null;
    if (drag?.kind === "roll") {
      this.platen.fingers = [];
      this.platen.update();
    }
    if (drag?.kind === "pen") {
      clearInterval(drag.timer);
      if (this.platen.pen.cut(this.platen.now(), true)) this.platen.update();
    }
  }

  /** The last speck becomes a smear from where it was dropped to here. */
  #smear(at) {
    const { from } = this.drag;
    const length = Math.hypot(at.x - from.x, at.y - from.y);
    if (length < 1) return;
    const angle = (Math.atan2(from.y - at.y, at.x - from.x) * 180) / Math.PI;
    const smear = { x: (from.x + at.x) / 2, y: (from.y + at.y) / 2, width: Math.min(3, length * 0.8), length, angle };
    this.platen.dirt = this.platen.dirt.slice(0, -1).concat({ ...smear, strength: 0.4 });
  }

  #penDown(at) {
    this.platen.pen.down(at.x, at.y, this.platen.now());
    this.platen.ink.push([[at.x, at.y]]);
    const timer = setInterval(() => {
      if (this.platen.pen.cut(this.platen.now())) this.platen.update();
    }, sendPeriod);
    this.drag = { kind: "pen", timer };
  }

  #penMove(at) {
    const [x, y] = [clamp(at.x, 0, side), clamp(at.y, 0, side)];
    this.platen.pen.move(x, y);
    this.platen.ink.at(-1).push([x, y]);
    this.platen.redraw();
  }

  #wheel(event) {
    const at = this.#place(event);
    const index = fingerAt(this.platen.fingers, at.x, at.y);
    if (index < 0) return;
    event.preventDefault();
    if (index !== this.platen.chosen) this.platen.select(index);
    // Some systems turn a wheel with Shift into a sideways one.
    const step = -Math.sign(event.deltaY || event.deltaX);
    if (event.shiftKey) this.#turn(2 * step);
    else this.#press(0.05 * step);
  }

  #turn(degrees) {
    if (this.platen.finger) this.platen.set("angle", clamp(this.platen.finger.angle + degrees, -180, 180));
  }

  #press(by) {
    if (this.platen.finger) this.platen.set("pressure", clamp(this.platen.finger.pressure + by, 0, 1));
  }

  #key(event) {
    const step = event.shiftKey ? 0.2 : 1;
    const move = (dx, dy) => {
      if (!this.platen.finger) return;
      moveBy([this.platen.finger], dx * step, dy * step);
      this.platen.update();
    };
    const actions = {
      "ArrowLeft": () => move(-1, 0), "ArrowRight": () => move(1, 0), "ArrowUp": () => move(0, -1), "ArrowDown": () => move(0, 1),
      "[": () => this.#turn(2), "]": () => this.#turn(-2), ",": () => this.#press(-0.05), ".": () => this.#press(0.05),
      "Delete": () => this.platen.liftChosen(), "Backspace": () => this.platen.liftChosen(),
      " ": () => this.platen.fingers.length && this.platen.select((this.platen.chosen + 1) % this.platen.fingers.length),
    };
    if (!Object.hasOwn(actions, event.key) || event.ctrlKey || event.altKey || event.metaKey) return;
    event.preventDefault();
    event.stopPropagation();
    actions[event.key]();
  }
}
