// The scanner as a drawn thing: status LEDs, buzzer, character display and platen light, and what sets them.
import { $, make } from "./dom.js";
import { t } from "./texts.js";

const ledCount = 12;
const ledStates = 8;
const columns = 16;

/** Sixteen characters of a display's line; what the display cannot show is a question mark. */
export function displayLine(text) {
  return text.replace(/[^ -~]/g, "?").slice(0, columns).padEnd(columns);
}

export class Device {
  /**
   * @param {import("./connection.js").Connection} connection
   * @param {(work: Promise) => void} attempt shows the error of a call that failed
   */
  constructor(connection, attempt) {
    Object.assign(this, { connection, attempt });
    this.beeps = null;
    this.state = { leds: new Array(ledCount).fill(0), display: ["", ""], beeps: 0, light: false };
    this.leds = this.state.leds.map((_, index) =>
      make("button", { class: "led", type: "button", onclick: () => this.#next(index) }));
    $("leds").append(...this.leds);
    $("beep").addEventListener("click", () => this.attempt(connection.call("POST", "/api/beep", { values: [300, 100] })));
    $("display-form").addEventListener("submit", (event) => {
      event.preventDefault();
      const lines = [$("line1").value, $("line2").value].map((line) => displayLine(line).trimEnd());
      this.attempt(connection.call("PUT", "/api/display", { lines })
        .then(() => this.simulated || this.show({ ...this.state, display: lines })));
    });
    $("scanners").addEventListener("change", () =>
      this.attempt(connection.call("PUT", "/api/scanner", { serial: $("scanners").value })));
    this.show(this.state);
  }

  /** Offers the scanners, when there are several. */
  async load() {
    const { scanners } = await this.connection.call("GET", "/api/scanners");
    $("scanners").replaceChildren(...scanners.map((serial) => make("option", { value: serial, textContent: serial })));
    $("scanners").hidden = scanners.length < 2;
    this.choose($("serial").textContent);
  }

  /** Shows which scanner is in use; another page may have chosen it. @param {string} serial */
  choose(serial) {
    $("scanners").value = serial;
  }

  /**
   * Shows what the simulated scanner reports. A real one reports nothing: there the page shows what it has
   * set.
   * @param {{leds: number[], display: string[], beeps: number, light: boolean}} state
   */
  show(state) {
    this.state = state;
    state.leds.forEach((led, index) => {
      this.leds[index].dataset.state = led;
      this.leds[index].setAttribute("aria-label", t("device.led", { index, state: led }));
      this.leds[index].title = t("device.led", { index, state: led });
    });
    $("display").replaceChildren(...state.display.map((line) =>
      make("span", { class: "line" }, ...[...displayLine(line)].map((letter) => make("i", { textContent: letter })))));
    $("display").setAttribute("aria-label", t("device.display") + ": " + state.display.map((line) => line.trim()).join(", "));
    $("light").textContent = t(state.light ? "device.on" : "device.off");
    $("light").dataset.on = state.light;
    $("beeps").textContent = t("device.beeps", { count: state.beeps });
    if (this.beeps !== null && state.beeps > this.beeps) this.#flash();
    this.beeps = state.beeps;
  }

  /** Says anew what was said in another language. */
  showTexts() {
    this.show(this.state);
  }

  /** @param {boolean} mine whether this page holds the scanner */
  setClaim(mine) {
    for (const element of $("device").querySelectorAll("button, input, select")) element.disabled = !mine;
  }

  #next(index) {
    const state = (this.state.leds[index] + 1) % ledStates;
    this.attempt(this.connection.call("PUT", `/api/led/${index}`, { state }).then(() => {
      if (this.simulated) return;
      const leds = this.state.leds.with(index, state);
      this.show({ ...this.state, leds });
    }));
  }

  #flash() {
    $("buzzer").classList.remove("sounds");
    // The animation begins anew only when the style was read without it.
    void $("buzzer").offsetWidth;
    $("buzzer").classList.add("sounds");
    $("buzzer-said").textContent = t("device.beeped");
  }
}
