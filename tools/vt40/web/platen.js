// The simulated platen as it stands: what lies on it, what is chosen, and when it is sent to the service.
import { $, oncePerFrame } from "./dom.js";
import { drawPlaten } from "./platen-draw.js";
import { PlatenInput } from "./platen-input.js";
import { layHand, moveBy, sceneOf, sendPeriod } from "./platen-model.js";
import { PenWriter } from "./pen.js";
import { t } from "./texts.js";

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
    this.redraw = oncePerFrame(() => this.#draw());
    new ResizeObserver(this.redraw).observe(this.canvas);
    new PlatenInput(this);
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
    const fingers = layHand(["roll", "pen", "dirt"].includes(this.what) ? "finger" : this.what, at, this.print);
    moveBy(fingers, 0, 0);
    // A hand lies where it was laid; a second one of the same kind would lie on top of it.
    const hand = fingers.length > 1;
    this.fingers = (hand && !at ? [] : this.fingers).concat(fingers).slice(-32);
    this.select(hand ? -1 : this.fingers.length - 1);
    this.update();
  }

  /** Takes away what the pen has written. */
  wipe() {
    this.pen.clear();
    this.ink = [];
    this.redraw();
  }

  lift() {
    this.fingers = [];
    this.wipe();
    this.select(-1);
    this.update();
  }

  liftChosen() {
    if (!this.finger) return;
    this.fingers.splice(this.chosen, 1);
    this.select(-1);
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
    this.wipe();
    this.select(-1);
  }

  /** Takes over what lies there according to the service. @param {Object} scene as the service takes it */
  adopt(scene) {
    const [usual] = layHand("finger");
    // A finger that rolls by itself has no position that could be shown.
    const still = (scene.fingers ?? []).filter((finger) => !finger.roll);
    this.fingers = still.map(({ print, ...finger }) => ({ ...usual, ...print, ...finger }));
    Object.assign(this, { dirt: scene.dirt ?? [], ambient: scene.ambient ?? 6, noise: scene.noise ?? 1 });
    this.select(-1);
  }

  /**
   * Changes a value of the chosen finger, or of the hand that moves with it.
   * @param {string} key
   * @param {number|string} value
   */
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

  /** Chooses the finger of an index; -1 for none. @param {number} index */
  select(index) {
    this.chosen = index;
    this.changed();
    this.redraw();
  }

  #draw() {
    drawPlaten(this.canvas, { ...this, rolls: this.what === "roll" });
    this.canvas.setAttribute("aria-label", t("platen.canvas", { count: this.fingers.length }));
  }
}
