// What stands beside the simulated platen: what to lay down, the chosen finger's values, scenes, room, plug
// and faults.
import { $, make } from "./dom.js";
import { sampleSignature } from "./pen.js";
import { layRolling, rollOver } from "./platen-model.js";
import { Platen } from "./platen.js";
import { number, t } from "./texts.js";

/** Milliseconds after which the scanner's time line is asked for anew. */
const clockStays = 10000;
const faults = {
  "late": { delay: 1000 },
  "lost": { function: "VTScanAPILockRawSequence", first: 1, repeat: 1, result: -50 },
  "mode": { function: "VTScanAPISetCaptureMode", first: 1, repeat: 1, result: -101 },
  "clear": { clear: true },
};

export class Simulator {
  /**
   * @param {import("./connection.js").Connection} connection
   * @param {(work: Promise) => void} attempt shows the error of a call that failed
   */
  constructor(connection, attempt) {
    Object.assign(this, { connection, attempt });
    this.clock = null;
    this.scene = "";
    this.plugged = true;
    this.platen = new Platen((scene) => this.#send(scene), () => this.now(), () => this.#showFinger());
    this.#listen();
  }

  /** Shows the panel of a simulated scanner, and hides it for a real one. @param {boolean} simulated */
  show(simulated) {
    $("simulator").hidden = !simulated;
  }

  /** Takes over what lies on the platen of a service to which the page has just connected. */
  async load() {
    const facts = await this.refresh();
    if (!facts) return;
    const chosen = $("scene").value;
    $("scene").replaceChildren(...facts.scenes.map((name) => make("option", { value: name, textContent: name })));
    if (chosen) $("scene").value = chosen;
    this.platen.adopt(facts.platen ?? {});
    this.#showScene(facts.platen ? "" : facts.scene);
    this.#showRoom();
  }

  /** Asks how the simulator stands. @returns {Promise<Object|null>} null when there is none */
  async refresh() {
    try {
      const facts = await this.connection.call("GET", "/api/simulator");
      this.clock = { time: facts.time, at: performance.now() };
      this.setPlugged(facts.plugged);
      return facts;
    } catch {
      return null;
    }
  }

  /** Seconds on the scanner's time line, which runs with the clock. */
  now() {
    return this.clock ? this.clock.time + (performance.now() - this.clock.at) / 1000 : 0;
  }

  /** @param {boolean} mine whether this page holds the scanner */
  setClaim(mine) {
    this.platen.enabled = mine;
    for (const element of $("simulator").querySelectorAll("button, select, input")) element.disabled = !mine;
    this.#showFinger();
    this.showTexts();
  }

  setPlugged(plugged) {
    this.plugged = plugged;
    $("plug").textContent = t(plugged ? "unplug" : "plug");
  }

  setLight(lit) {
    this.platen.lit = lit;
    this.platen.redraw();
  }

  /** Says anew what was said in another language. */
  showTexts() {
    const kind = ["roll", "pen", "dirt"].includes(this.platen.what) ? this.platen.what : "hand";
    $("platen-hint").textContent = this.platen.enabled ? t(`platen.hint.${kind}`) : t("platen.claim");
    $("lay").textContent = t({ roll: "platen.rollit", pen: "platen.signit" }[kind] ?? "platen.lay");
    $("lay").hidden = kind === "dirt";
    $("together-line").hidden = kind !== "hand";
    this.#showFinger();
    this.setPlugged(this.plugged);
    this.#showScene(this.scene);
    this.platen.redraw();
  }

  /** Lays down, rolls or signs, as is chosen. */
  async act() {
    if (!this.platen.enabled || this.platen.what === "dirt") return;
    if (this.platen.what !== "roll" && this.platen.what !== "pen") return this.platen.lay();
    await this.refresh();
    const at = this.now() + 0.3;
    const scene = this.platen.scene();
    if (this.platen.what === "pen") scene.pen = { strokes: sampleSignature(at) };
    else scene.fingers = [rollOver(layRolling(0, this.platen.print), at)];
    this.#send(scene);
  }

  /** @param {string} what of what can be laid down */
  choose(what) {
    $("what").value = what;
    this.platen.choose(what);
    if (what === "pen" && (!this.clock || performance.now() - this.clock.at > clockStays)) this.refresh();
    this.showTexts();
  }

  #send(scene) {
    this.#showScene("");
    this.connection.send({ platen: scene });
  }

  #showScene(scene) {
    this.scene = scene && scene !== "empty" ? scene : "";
    $("scene-note").textContent = this.scene ? t("platen.scene", { scene: this.scene }) : "";
    $("scene-note").hidden = !this.scene;
  }

  #showRoom() {
    $("ambient").value = this.platen.ambient;
    $("noise").value = this.platen.noise;
  }

  /** The values of the chosen finger, in the panel. */
  #showFinger() {
    const finger = this.platen?.finger;
    $("finger").hidden = !finger;
    $("finger-none").hidden = Boolean(finger) || !["slap-right", "slap-left", "thumbs", "finger"].includes($("what").value);
    if (!finger) return;
    for (const key of ["pressure", "angle", "dryness", "seed", "pattern", "material"]) {
      const input = $(`finger-${key}`);
      if (document.activeElement !== input || input.type === "range") input.value = finger[key];
    }
    $("finger-pressure-value").textContent = `${number(finger.pressure * 100)} %`;
    $("finger-angle-value").textContent = `${number(finger.angle)}°`;
    $("finger-dryness-value").textContent = `${number(finger.dryness * 100)} %`;
  }

  #listen() {
    const on = (id, event, work) => $(id).addEventListener(event, work);
    const platen = this.platen;
    on("what", "change", () => this.choose($("what").value));
    on("lay", "click", () => this.act());
    on("lift", "click", () => platen.lift());
    on("clean", "click", () => platen.clean());
    on("together", "change", () => { platen.together = $("together").checked; });
    on("finger-lift", "click", () => platen.liftChosen());
    for (const key of ["pressure", "angle", "dryness"])
      on(`finger-${key}`, "input", () => platen.set(key, Number($(`finger-${key}`).value)));
    for (const key of ["pattern", "material"]) on(`finger-${key}`, "change", () => platen.set(key, $(`finger-${key}`).value));
    on("finger-seed", "change", () => {
      const seed = Math.round(Number($("finger-seed").value));
      if (seed >= 0 && seed < 1e15) platen.set("seed", platen.print.seed = seed);
    });
    for (const key of ["ambient", "noise"])
      on(key, "input", () => {
        platen[key] = Number($(key).value);
        platen.update();
      });
    on("play", "submit", (event) => {
      event.preventDefault();
      this.attempt(this.#play());
    });
    on("plug", "click", () => this.attempt(this.connection.call("PUT", "/api/simulator/plugged", { plugged: !this.plugged })
      .then((answer) => this.setPlugged(answer.plugged))));
    on("fault-do", "click", () => this.attempt(this.connection.call("POST", "/api/simulator/faults", faults[$("fault").value])));
  }

  async #play() {
    const seed = Math.round(Number($("scene-seed").value)) || 1;
    const answer = await this.connection.call("PUT", "/api/simulator/scene", { scene: `${$("scene").value}:${seed}` });
    this.platen.replaced();
    this.clock = null;
    this.#showScene(answer.scene);
  }
}
