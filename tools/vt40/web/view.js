// The live picture: draws frames on a canvas that zooms and moves by mouse, touch and keys.
import { $, colour, fitCanvas, oncePerFrame } from "./dom.js";
import { FrameMeter, spreadGrey } from "./frames.js";
import { number, t } from "./texts.js";
import { Viewport } from "./viewport.js";

const zoomStep = 1.25;
const moveStep = 40;

export class LiveView {
  /** @param {(frame: import("./frames.js").Frame) => void} drawn called after a frame is on the screen */
  constructor(drawn) {
    this.canvas = $("live");
    this.viewport = new Viewport();
    this.meter = new FrameMeter();
    this.drawn = drawn;
    this.picture = document.createElement("canvas");
    this.frame = null;
    this.waiting = null;
    this.strip = null;
    this.note = "view.none";
    this.pointers = new Map();
    this.redraw = oncePerFrame(() => this.#draw());
    new ResizeObserver(this.redraw).observe(this.canvas);
    this.#listen();
  }

  /**
   * Takes a frame, which is drawn when the screen is next; an earlier one that still waits is dropped.
   * @param {import("./frames.js").Frame} frame
   */
  show(frame) {
    this.waiting = frame;
    this.redraw();
  }

  /**
   * Marks the columns that a roll has covered; null for none.
   * @param {{left: number, width: number}|null} strip
   */
  setStrip(strip) {
    this.strip = strip;
  }

  /** Takes the picture away. @param {string} note key of the text that stands instead */
  clear(note) {
    if (!this.frame && !this.waiting && this.note === note) return;
    this.note = note;
    this.frame = this.waiting = this.strip = null;
    this.redraw();
  }

  zoom(step) {
    if (step === 0) this.viewport.fit();
    else if (step === 1) this.viewport.oneToOne(window.devicePixelRatio || 1);
    else this.viewport.zoom(step);
    this.redraw();
  }

  async #load(frame) {
    if (this.picture.width !== frame.width || this.picture.height !== frame.height) {
      this.picture.width = frame.width;
      this.picture.height = frame.height;
      this.pixels = null;
    }
    const context = this.picture.getContext("2d");
    if (frame.format === "jpeg") {
      const bitmap = await createImageBitmap(new Blob([frame.payload], { type: "image/jpeg" }));
      context.drawImage(bitmap, 0, 0);
      bitmap.close();
    } else {
      this.pixels ??= context.createImageData(frame.width, frame.height);
      spreadGrey(frame.payload, new Uint32Array(this.pixels.data.buffer));
      context.putImageData(this.pixels, 0, 0);
    }
  }

  async #draw() {
    const frame = this.waiting;
    if (frame && !this.loading) {
      this.waiting = null;
      this.loading = true;
      try {
        await this.#load(frame);
        this.frame = frame;
        this.meter.add(Date.now(), frame.time);
      } catch {
        // A picture that cannot be read is as good as a lost one.
      }
      this.loading = false;
      this.drawn(frame);
      if (this.waiting) this.redraw();
    }
    this.#paint();
  }

  #paint() {
    const { context, width, height } = fitCanvas(this.canvas);
    const view = this.viewport;
    context.clearRect(0, 0, width, height);
    if (!this.frame) {
      context.fillStyle = colour("faint");
      context.font = "16px system-ui, sans-serif";
      context.textAlign = "center";
      context.fillText(t(this.note), width / 2, height / 2);
      return;
    }
    view.resize(this.frame.width, this.frame.height, width, height);
    // Single pixels are looked at when they are larger than those of the screen.
    context.imageSmoothingEnabled = view.scale < 2;
    context.imageSmoothingQuality = "high";
    context.drawImage(this.picture, view.x, view.y, this.frame.width * view.scale, this.frame.height * view.scale);
    if (this.strip?.width && this.frame.kind === "roll") this.#paintStrip(context);
    $("zoom").textContent = `${number(view.scale * (window.devicePixelRatio || 1) * 100)} %`;
  }

  /** A bracket over the columns of the growing print, with its width. */
  #paintStrip(context) {
    const view = this.viewport;
    const left = view.x + this.strip.left * view.scale;
    const right = left + this.strip.width * view.scale;
    const top = view.y + 12;
    context.strokeStyle = context.fillStyle = colour("good");
    context.lineWidth = 3;
    context.beginPath();
    context.moveTo(left, top + 10);
    context.lineTo(left, top);
    context.lineTo(right, top);
    context.lineTo(right, top + 10);
    context.stroke();
    context.font = "600 14px system-ui, sans-serif";
    context.textAlign = "center";
    const millimetres = (1000 * this.strip.width) / this.frame.pelsPerMetre;
    context.fillText(`${number(millimetres, 1)} mm`, (left + right) / 2, top + 22);
  }

  #listen() {
    const canvas = this.canvas;
    const place = (event) => ({ x: event.offsetX, y: event.offsetY });
    canvas.addEventListener("wheel", (event) => {
      event.preventDefault();
      this.viewport.zoom(Math.exp(-Math.sign(event.deltaY) * 0.2), event.offsetX, event.offsetY);
      this.redraw();
    }, { passive: false });
    canvas.addEventListener("dblclick", (event) => {
      if (this.viewport.fitted) this.viewport.zoomTo(1, event.offsetX, event.offsetY);
      else this.viewport.fit();
      this.redraw();
    });
    canvas.addEventListener("pointerdown", (event) => {
      canvas.setPointerCapture(event.pointerId);
      this.pointers.set(event.pointerId, place(event));
    });
    for (const name of ["pointerup", "pointercancel"])
      canvas.addEventListener(name, (event) => this.pointers.delete(event.pointerId));
    canvas.addEventListener("pointermove", (event) => this.#drag(event.pointerId, place(event)));
    canvas.addEventListener("keydown", (event) => this.#key(event));
  }

  /** One pointer moves the picture, two also zoom by their distance. */
  #drag(id, to) {
    const from = this.pointers.get(id);
    if (!from) return;
    this.pointers.set(id, to);
    const other = [...this.pointers].find(([key]) => key !== id)?.[1];
    if (other) {
      const factor = Math.hypot(to.x - other.x, to.y - other.y) / Math.max(1, Math.hypot(from.x - other.x, from.y - other.y));
      this.viewport.zoom(factor, (to.x + other.x) / 2, (to.y + other.y) / 2);
      this.viewport.move((to.x - from.x) / 2, (to.y - from.y) / 2);
    } else {
      this.viewport.move(to.x - from.x, to.y - from.y);
    }
    this.redraw();
  }

  #key(event) {
    const moves = { ArrowLeft: [moveStep, 0], ArrowRight: [-moveStep, 0], ArrowUp: [0, moveStep], ArrowDown: [0, -moveStep] };
    const move = moves[event.key];
    if (!move) return;
    event.preventDefault();
    this.viewport.move(...move);
    this.redraw();
  }
}

/** Factors of the buttons and keys that zoom: 0 fits, 1 is one pixel for each of the screen. */
export const zooms = { "+": zoomStep, "-": 1 / zoomStep, "0": 0, "=": 1 };
