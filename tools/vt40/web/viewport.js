// Where a picture lies in its window: the arithmetic of zoom and movement, without a screen.

const largestScale = 16;

/** Scale and position of a picture of width × height pixels in a window of windowWidth × windowHeight. */
export class Viewport {
  constructor() {
    this.width = this.height = this.windowWidth = this.windowHeight = 1;
    this.scale = 1;
    this.x = this.y = 0;
    /** Whether it keeps filling the window when sizes change. */
    this.fitted = true;
  }

  /** The sizes of picture and window; a picture that is fitted stays so, others keep their middle. */
  resize(width, height, windowWidth, windowHeight) {
    const centre = this.toPicture(this.windowWidth / 2, this.windowHeight / 2);
    const same = width === this.width && height === this.height;
    // The same part of the platen stays in sight when its picture comes with more or fewer pixels.
    const ratio = this.width / width;
    const middle = same ? centre : { x: centre.x / ratio, y: (centre.y / this.height) * height };
    Object.assign(this, { width, height, windowWidth, windowHeight });
    if (this.fitted) return this.fit();
    if (!same) this.scale *= ratio;
    this.x = windowWidth / 2 - middle.x * this.scale;
    this.y = windowHeight / 2 - middle.y * this.scale;
    this.#keepInside();
  }

  /** The scale at which the whole picture is seen. */
  get fitScale() {
    return Math.min(this.windowWidth / this.width, this.windowHeight / this.height);
  }

  /** Shows the whole picture. */
  fit() {
    this.fitted = true;
    this.scale = this.fitScale;
    this.#keepInside();
  }

  /** One pixel of the picture for each pixel of a screen that has so many for one of the window. */
  oneToOne(ratio = 1) {
    this.zoomTo(1 / ratio, this.windowWidth / 2, this.windowHeight / 2);
  }

  /** Changes the scale by a factor, under a point of the window that stays. */
  zoom(factor, x = this.windowWidth / 2, y = this.windowHeight / 2) {
    this.zoomTo(this.scale * factor, x, y);
  }

  zoomTo(scale, x, y) {
    const point = this.toPicture(x, y);
    const least = Math.min(this.fitScale, 1);
    this.scale = Math.min(largestScale, Math.max(least, scale));
    this.fitted = Math.abs(this.scale - this.fitScale) < 1e-9;
    this.x = x - point.x * this.scale;
    this.y = y - point.y * this.scale;
    this.#keepInside();
  }

  /** Moves the picture by pixels of the window. */
  move(x, y) {
    this.x += x;
    this.y += y;
    this.#keepInside();
  }

  /** @returns {{x: number, y: number}} the pixel of the picture under a point of the window */
  toPicture(x, y) {
    return { x: (x - this.x) / this.scale, y: (y - this.y) / this.scale };
  }

  /** A picture smaller than the window lies in its middle, a larger one leaves no gap. */
  #keepInside() {
    const keep = (position, size, room) =>
      size <= room ? (room - size) / 2 : Math.min(0, Math.max(room - size, position));
    this.x = keep(this.x, this.width * this.scale, this.windowWidth);
    this.y = keep(this.y, this.height * this.scale, this.windowHeight);
  }
}
