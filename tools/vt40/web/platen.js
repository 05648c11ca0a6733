// The simulated platen: lays, drags, turns, presses, rolls and lifts fingers by mouse, touch and keys, writes and soils.
import { $, oncePerFrame } from "./dom.js";
import { drawPlaten, margin } from "./platen-draw.js";
import { angleTo, clamp, fingerAt, handleOf, layHand, layRolling, moveBy, rollFrame, sceneOf, side } from "./platen-model.js";
import { PenWriter } from "./pen.js";
import { t } from "./texts.js";

/** Milliseconds between two messages while something is dragged. */
export const sendPeriod = 34;
/** Where the handle of a finger is taken hold of, mm. */
const handleReach = 3.5;

export class Platen {
  /**
   * @param {(scene: Object) => void} send takes the platen as the service takes it
   * @param {() => number} now seconds on the scanner's time line
   * @param {() => void} changed is called when the chosen finger or its values changed
   */
  constructor(send, now, changed) {
    this.canvas = $("platen");
    Object.assign(this, { sendNow: send, now, changed });
    this.fingers = [];
    this.dirt = [];
    this.ambient = 6;
    this.noise = 1;
    this.lit = true;
    this.what = "slap-right";
    this.print = { seed: 1, pattern: "whorl" };
    this.together = true;
    this.pen = new PenWriter();
    this.ink = [];
    this.chosen = -1;
    this.enabled = false;
    this.drag = null;
    this.redraw = oncePerFrame(() => this.#draw());
    new ResizeObserver(this.redraw).observe(this.canvas);
    this.#listen();
  }

  /** @returns {import("./platen-model.js").Finger|undefined} */
  get finger() {
    return this.fingers[this.chosen];
  }

  /** What a double click lays down. @param {string} what */
  choose(what) {
    this.what = what;
    this.redraw();
  }

  /** Lays down what is chosen. @param {{x: number, y: number}|null} at its middle */
  lay(at = null) {
    if (!this.enabled) return;
    const fingers = layHand(this.what in { roll: 0, pen: 0, dirt: 0 } ? "finger" : this.what, at, this.print);
    moveBy(fingers, 0, 0);
    // A hand lies where it was laid; a second one of the same kind would lie on top of it.
    const hand = fingers.length > 1;
    this.fingers = (hand && !at ? [] : this.fingers).concat(fingers).slice(-32);
    this.#choose(hand ? -1 : this.fingers.length - 1);
    this.update();
  }

  lift() {
    this.fingers = [];
    this.pen.clear();
    this.ink = [];
    this.#choose(-1);
    this.update();
  }

  liftChosen() {
    if (!this.finger) return;
    this.fingers.splice(this.chosen, 1);
    this.#choose(-1);
    this.update();
  }

  clean() {
    this.dirt = [];
    this.update();
  }

  /** Forgets what lies here, since a scene has come instead. */
  replaced() {
    this.fingers = [];
    this.dirt = [];
    this.pen.clear();
    this.ink = [];
    this.#choose(-1);
    this.redraw();
  }

  /** Takes over what lies there according to the service. @param {Object} scene as the service takes it */
  adopt(scene) {
    const [usual] = layHand("finger");
    // A finger that rolls by itself has no position that could be shown.
    const still = (scene.fingers ?? []).filter((finger) => !finger.roll);
    this.fingers = still.map(({ print, ...finger }) => ({ ...usual, ...print, ...finger }));
    Object.assign(this, { dirt: scene.dirt ?? [], ambient: scene.ambient ?? 6, noise: scene.noise ?? 1 });
    this.#choose(-1);
  }

  /** Changes a value of the chosen finger, or of the hand that moves with it. @param {string} key @param {number|string} value */
  set(key, value) {
    if (!this.finger) return;
    this.finger[key] = value;
    this.update();
  }

  /** Shows and sends what lies here, at most 30 times a second; the last state is always sent. */
  update() {
    this.redraw();
    this.changed();
    if (this.timer) return;
    const wait = Math.max(0, (this.sent ?? 0) + sendPeriod - performance.now());
    this.timer = setTimeout(() => {
      this.timer = 0;
      this.sent = performance.now();
      this.sendNow(this.scene());
    }, wait);
  }

  scene() {
    return sceneOf({ fingers: this.fingers, dirt: this.dirt, ambient: this.ambient, noise: this.noise, pen: this.pen.strokes });
  }

  #choose(index) {
    this.chosen = index;
    this.changed();
    this.redraw();
  }

  #draw() {
    drawPlaten(this.canvas, { ...this, rolls: this.what === "roll" });
    this.canvas.setAttribute("aria-label", t("platen.canvas", { count: this.fingers.length }));
  }

  #place(event) {
    const scale = (side + 2 * margin) / this.canvas.clientWidth;
    return { x: event.offsetX * scale - margin, y: event.offsetY * scale - margin };
  }

  #listen() {
    const canvas = this.canvas;
    const listen = (name, work) => canvas.addEventListener(name, (event) => {
      if (this.enabled) work(event);
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
      if (!(this.what in { roll: 0, pen: 0, dirt: 0 }) && fingerAt(this.fingers, at.x, at.y) < 0) this.lay(at);
    });
    listen("wheel", (event) => this.#wheel(event));
    listen("keydown", (event) => this.#key(event));
  }

  #begin(at, event) {
    if (this.what === "roll") {
      if (Math.abs(at.y - rollFrame.y) > rollFrame.half) return;
      this.fingers = [layRolling(at.x - rollFrame.x, this.print)];
      this.drag = { kind: "roll" };
      return this.update();
    }
    if (this.what === "pen") return this.#penDown(at);
    if (this.what === "dirt") {
      this.dirt = this.dirt.concat({ x: at.x, y: at.y, width: 0.8, strength: 0.5 }).slice(-200);
      this.drag = { kind: "dirt", from: at };
      return this.update();
    }
    const handle = this.finger && handleOf(this.finger);
    if (handle && Math.hypot(at.x - handle.x, at.y - handle.y) <= handleReach) {
      this.drag = { kind: "turn" };
      return;
    }
    const index = fingerAt(this.fingers, at.x, at.y);
    if (index !== this.chosen) this.#choose(index);
    if (index >= 0) this.drag = { kind: "move", from: at, alone: event.ctrlKey || !this.together };
  }

  #move(at) {
    const drag = this.drag;
    if (drag.kind === "pen") return this.#penMove(at);
    if (drag.kind === "roll") {
      this.fingers = [layRolling(at.x - rollFrame.x, this.print)];
    } else if (drag.kind === "dirt") {
      this.#smear(at);
    } else if (!this.finger) {
      return;
    } else if (drag.kind === "turn") {
      this.finger.angle = clamp(angleTo(this.finger, at.x, at.y), -180, 180);
    } else {
      moveBy(drag.alone ? [this.finger] : this.fingers, at.x - drag.from.x, at.y - drag.from.y);
      drag.from = at;
    }
    this.update();
  }

  #end() {
    const drag = this.drag;
    this.drag = null;
    if (drag?.kind === "roll") {
      this.fingers = [];
      this.update();
    }
    if (drag?.kind === "pen") {
      clearInterval(drag.timer);
      if (this.pen.cut(this.now(), true)) this.update();
    }
  }

  /** The last speck becomes a smear from where it was dropped to here. */
  #smear(at) {
    const { from } = this.drag;
    const length = Math.hypot(at.x - from.x, at.y - from.y);
    if (length < 1) return;
    const angle = (Math.atan2(from.y - at.y, at.x - from.x) * 180) / Math.PI;
    this.dirt[this.dirt.length - 1] = { x: (from.x + at.x) / 2, y: (from.y + at.y) / 2, width: Math.min(3, length * 0.8),
      length, angle, strength: 0.4 };
  }

  #penDown(at) {
    this.pen.down(at.x, at.y, this.now());
    this.ink.push([[at.x, at.y]]);
    const timer = setInterval(() => {
      if (this.pen.cut(this.now())) this.update();
    }, sendPeriod);
    this.drag = { kind: "pen", timer };
  }

  #penMove(at) {
    const [x, y] = [clamp(at.x, 0, side), clamp(at.y, 0, side)];
    this.pen.move(x, y);
    this.ink.at(-1).push([x, y]);
    this.redraw();
  }

  #wheel(event) {
    const at = this.#place(event);
    const index = fingerAt(this.fingers, at.x, at.y);
    if (index < 0) return;
    event.preventDefault();
    if (index !== this.chosen) this.#choose(index);
    // Some systems turn a wheel with Shift into a sideways one.
    const step = -Math.sign(event.deltaY || event.deltaX);
    if (event.shiftKey) this.#turn(2 * step);
    else this.#press(0.05 * step);
  }

  #turn(degrees) {
    if (this.finger) this.set("angle", clamp(this.finger.angle + degrees, -180, 180));
  }

  #press(by) {
    if (this.finger) this.set("pressure", clamp(this.finger.pressure + by, 0, 1));
  }

  #key(event) {
    const step = event.shiftKey ? 0.2 : 1;
    const move = (dx, dy) => {
      if (!this.finger) return;
      moveBy([this.finger], dx * step, dy * step);
      this.update();
    };
    const actions = {
      "ArrowLeft": () => move(-1, 0), "ArrowRight": () => move(1, 0), "ArrowUp": () => move(0, -1), "ArrowDown": () => move(0, 1),
      "[": () => this.#turn(2), "]": () => this.#turn(-2), ",": () => this.#press(-0.05), ".": () => this.#press(0.05),
      "Delete": () => this.liftChosen(), "Backspace": () => this.liftChosen(),
      " ": () => this.fingers.length && this.#choose((this.chosen + 1) % this.fingers.length),
    };
    if (!Object.hasOwn(actions, event.key) || event.ctrlKey || event.altKey || event.metaKey) return;
    event.preventDefault();
    event.stopPropagation();
    actions[event.key]();
  }
}
