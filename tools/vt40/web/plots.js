// Small running plots of what each frame shows, with the limits by which the scanner decides.
import { colour, fitCanvas, make, oncePerFrame } from "./dom.js";
import { number, t } from "./texts.js";

/** Frames that a plot shows. */
export const length = 150;

/**
 * Where values fall in a plot: 0 is its bottom and 1 its top. Values span decades on a logarithmic scale,
 * which begins with 1.
 * @param {number} value
 * @param {number} top the value at the top
 * @param {boolean} logarithmic
 */
export function heightOf(value, top, logarithmic) {
  const share = logarithmic ? Math.log10(1 + Math.max(0, value)) / Math.log10(1 + top) : value / top;
  return Math.min(1, Math.max(0, share));
}

/**
 * The value at the top of a plot: all values and the limit are in sight, with some room above.
 * @param {number[]} values
 * @param {number|null} limit
 * @param {number} least the top may not lie lower
 * @param {boolean} logarithmic
 */
export function topOf(values, limit, least, logarithmic) {
  const most = Math.max(least, limit ?? 0, ...values.filter((value) => value !== null));
  if (logarithmic) return 10 ** Math.ceil(Math.log10(1.2 * most));
  const step = 10 ** Math.floor(Math.log10(most)) / 2;
  return Math.ceil((1.05 * most) / step) * step;
}

/**
 * A number in few characters: 1234 is "1.2 k".
 * @param {number} value
 */
export function short(value) {
  const units = [[1e9, " G"], [1e6, " M"], [1e3, " k"]];
  const [size, unit] = units.find(([least]) => Math.abs(value) >= least) ?? [1, ""];
  const scaled = value / size;
  return number(scaled, Math.abs(scaled) < 10 && !Number.isInteger(scaled) ? 1 : 0) + unit;
}

/**
 * What can be plotted: the fact's name; the limit's name in the service's status; whether the scanner fires
 * above or below it; and the scale. At most 100 is a score or a condition.
 */
export const kinds = {
  fingerPixels: { limit: "noFingerPixels", fires: "above", least: 2000, logarithmic: true },
  motion: { limit: "stillMotion", fires: "below", least: 1e6, logarithmic: true },
  condition: { limit: null, fires: null, least: 30, logarithmic: false },
  score: { limit: "minScore", fires: "above", least: 100, logarithmic: false },
  width: { limit: null, fires: null, least: 20, logarithmic: false },
  ink: { limit: null, fires: null, least: 500, logarithmic: false },
};

/** Plots of each mode. */
export const plotsOf = {
  "off": [],
  "full": [],
  "preview": ["fingerPixels", "motion", "condition"],
  "auto": ["fingerPixels", "motion", "condition"],
  "auto-live": ["fingerPixels", "motion", "condition", "score"],
  "roll": ["width"],
  "signature": ["ink"],
};

/** One plot. */
class Plot {
  constructor(name) {
    this.name = name;
    this.kind = kinds[name];
    this.values = [];
    this.limit = null;
    this.title = make("span", { class: "plot-title" });
    this.reading = make("output", { class: "plot-reading" });
    this.note = make("span", { class: "plot-note" });
    this.canvas = make("canvas", { role: "img" });
    this.element = make("figure", { class: "plot" },
      make("figcaption", {}, this.title, this.reading), this.canvas, this.note);
  }

  add(value) {
    this.values.push(value);
    if (this.values.length > length) this.values.shift();
  }

  /** Whether the scanner fires with this value, as far as this limit goes. */
  passes(value) {
    if (this.limit === null || value === null) return null;
    return this.kind.fires === "above" ? value > this.limit : value <= this.limit;
  }

  draw() {
    const { context, width, height } = fitCanvas(this.canvas);
    const top = topOf(this.values, this.limit, this.kind.least, this.kind.logarithmic);
    const y = (value) => height - 1 - heightOf(value, top, this.kind.logarithmic) * (height - 4);
    const x = (n) => width - ((this.values.length - 1 - n) * width) / (length - 1);
    const last = this.values.at(-1) ?? null;
    context.clearRect(0, 0, width, height);
    if (this.limit !== null) this.#drawLimit(context, y(this.limit), width, height);
    context.lineWidth = 1.75;
    context.lineJoin = "round";
    context.strokeStyle = colour("line");
    context.beginPath();
    this.values.forEach((value, n) => context[n ? "lineTo" : "moveTo"](x(n), y(value)));
    context.stroke();
    if (last !== null) this.#drawLast(context, width - 3, y(last), last);
    const name = t(`plot.${this.name}`);
    this.title.textContent = name;
    this.reading.textContent = last === null ? "–" : short(last);
    this.note.textContent = this.limit === null ? "" : t(`plot.${this.kind.fires}`, { limit: short(this.limit) });
    const reading = t("plot.reading", { name, value: this.reading.textContent });
    this.canvas.setAttribute("aria-label", `${reading} ${this.note.textContent}`);
  }

  /** The side of the limit on which the scanner fires is tinted. */
  #drawLimit(context, y, width, height) {
    context.fillStyle = colour("good-tint");
    if (this.kind.fires === "above") context.fillRect(0, 0, width, y);
    else context.fillRect(0, y, width, height - y);
    context.strokeStyle = colour("limit");
    context.lineWidth = 1;
    context.setLineDash([5, 4]);
    context.beginPath();
    context.moveTo(0, Math.round(y) + 0.5);
    context.lineTo(width, Math.round(y) + 0.5);
    context.stroke();
    context.setLineDash([]);
  }

  #drawLast(context, x, y, value) {
    context.fillStyle = colour({ true: "good", false: "bad", null: "line" }[this.passes(value)]);
    context.beginPath();
    context.arc(x, y, 3, 0, 2 * Math.PI);
    context.fill();
  }
}

/** The plots of the mode that runs. */
export class Plots {
  /** @param {HTMLElement} element holds the plots */
  constructor(element) {
    this.element = element;
    this.mode = null;
    this.plots = [];
    this.redraw = oncePerFrame(() => this.plots.forEach((plot) => plot.draw()));
    new ResizeObserver(this.redraw).observe(element);
  }

  /**
   * @param {string} mode
   * @param {Object<string, number>} limits of the service's status
   */
  configure(mode, limits) {
    if (mode !== this.mode) {
      this.mode = mode;
      this.plots = (plotsOf[mode] ?? []).map((name) => new Plot(name));
      this.element.replaceChildren(...this.plots.map((plot) => plot.element));
      this.element.closest("section").hidden = this.plots.length === 0;
    }
    for (const plot of this.plots) plot.limit = limits?.[plot.kind.limit] ?? null;
    this.redraw();
  }

  /** @param {Object<string, number>} facts of one frame, under the names of the plots */
  add(facts) {
    for (const plot of this.plots) if (typeof facts[plot.name] === "number") plot.add(facts[plot.name]);
    this.redraw();
  }
}
