// Reads the frames that the service sends, and measures how many come and how late.

/** Bytes of the header that this page understands. */
export const headerSize = 32;
const kinds = ["preview", "full", "roll", "signature"];
const largestSide = 8192;

/**
 * @typedef {Object} Frame
 * @property {"grey"|"jpeg"} format
 * @property {"preview"|"full"|"roll"|"signature"} kind
 * @property {number} width
 * @property {number} height
 * @property {number} pelsPerMetre
 * @property {number} number
 * @property {number} time milliseconds since the epoch at which the frame left the library
 * @property {Uint8Array} payload grey rows, or a JPEG file
 */

/**
 * Takes a message apart. Throws an Error that says what is wrong with a message that is no frame.
 * @param {ArrayBuffer} buffer
 * @returns {Frame}
 */
export function parseFrame(buffer) {
  if (buffer.byteLength < headerSize) throw new Error(`a frame of ${buffer.byteLength} bytes is shorter than its header`);
  const view = new DataView(buffer);
  const magic = String.fromCharCode(...new Uint8Array(buffer, 0, 4));
  if (magic !== "VTF1") throw new Error(`a frame begins with "${magic}" instead of "VTF1"`);
  const format = view.getUint8(4);
  const kind = view.getUint8(5);
  const size = view.getUint16(6, true);
  const width = view.getUint32(8, true);
  const height = view.getUint32(12, true);
  if (format > 1) throw new Error(`a frame has the unknown format ${format}`);
  if (kind >= kinds.length) throw new Error(`a frame has the unknown kind ${kind}`);
  // A later service may have a longer header, of which this page knows the beginning.
  if (size < headerSize || size > buffer.byteLength) throw new Error(`a frame's header has ${size} bytes`);
  if (!width || !height || width > largestSide || height > largestSide)
    throw new Error(`a frame has ${width} × ${height} pixels`);
  const payload = new Uint8Array(buffer, size);
  if (format === 0 && payload.length !== width * height)
    throw new Error(`a frame of ${width} × ${height} pixels has ${payload.length} bytes`);
  return {
    format: format === 0 ? "grey" : "jpeg",
    kind: kinds[kind],
    width,
    height,
    pelsPerMetre: view.getUint32(16, true),
    number: view.getUint32(20, true),
    time: view.getFloat64(24, true),
    payload,
  };
}

/**
 * Spreads grey values to opaque colours.
 * @param {Uint8Array} grey
 * @param {Uint32Array} colours of the same length
 */
export function spreadGrey(grey, colours) {
  for (let n = 0; n < grey.length; ++n) colours[n] = 0xff000000 | (grey[n] * 0x010101);
}

/** Keeps the times of the frames of the last second. Thread-bound, no clock of its own. */
export class FrameMeter {
  #drawn = [];

  /**
   * @param {number} now milliseconds since the epoch at which the frame was drawn
   * @param {number} sent milliseconds since the epoch at which it left the library
   */
  add(now, sent) {
    this.#drawn.push({ now, late: now - sent });
    this.#forget(now);
  }

  /**
   * @returns {{rate: number, latency: number|null}} frames of the last second, and the median delay in
   *     milliseconds
   */
  read(now) {
    this.#forget(now);
    const late = this.#drawn.map((one) => one.late).sort((a, b) => a - b);
    return { rate: late.length, latency: late.length ? late[late.length >> 1] : null };
  }

  #forget(now) {
    while (this.#drawn.length && now - this.#drawn[0].now >= 1000) this.#drawn.shift();
  }
}
