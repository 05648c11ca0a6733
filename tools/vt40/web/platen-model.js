// What lies on the simulated platen, in millimetres: fingers, dirt and light, without a screen.

/** Side of the platen, mm. */
export const side = 81.28;
/** Middle of what roll frames show, and its half side, mm. */
export const rollFrame = { x: 40.64, y: 20.32, half: 20.32 };
/** A rolling finger: its unrolled print and the strip that is down. */
export const rollPrint = { width: 28, height: 23, strip: 14 };

/** Milliseconds between two messages while something is dragged. */
export const sendPeriod = 34;

const hands = {
  "slap-right": [[21, "right-loop", 15.4, 22, 14.5, 42.5, -2], [22, "whorl", 16.2, 23.5, 33.2, 27.5, 2],
    [23, "whorl", 15.6, 22.5, 51, 31, 7], [24, "right-loop", 13.2, 19.5, 68.5, 48.5, 13]],
  "slap-left": [[34, "left-loop", 13.2, 19.5, 12.8, 48.5, -13], [33, "whorl", 15.6, 22.5, 30.3, 31, -7],
    [32, "left-loop", 16.2, 23.5, 48.1, 27.5, -2], [31, "arch", 15.4, 22, 66.8, 42.5, 2]],
  "thumbs": [[41, "left-loop", 19.5, 27, 27.5, 41, -6], [42, "whorl", 19.5, 27, 53.8, 41, 6]],
  "finger": [[1, "whorl", 16, 23, 40.64, 40.64, 0]],
};

/**
 * @typedef {Object} Finger
 * @property {number} x middle of the print, mm from the left edge of the picture
 * @property {number} y mm from its top edge
 * @property {number} angle degrees; positive values lean the tip to the left
 * @property {number} pressure 0 to 1
 * @property {number} dryness 0 to 1
 * @property {number} seed
 * @property {string} pattern
 * @property {number} width of the print, mm
 * @property {number} height
 * @property {string} material
 * @property {number|null} strip of a rolling finger: middle of what is down, mm to the right of the print's
 *     middle
 */

export const clamp = (value, least, most) => Math.min(most, Math.max(least, value));

/**
 * The fingers of a hand.
 * @param {"slap-right"|"slap-left"|"thumbs"|"finger"} what
 * @param {{x: number, y: number}|null} [at] middle of the hand; its usual position without
 * @param {{seed?: number, pattern?: string}} [print] for a single finger
 * @returns {Finger[]}
 */
export function layHand(what, at = null, print = {}) {
  const rows = hands[what];
  const middle = { x: mean(rows.map((row) => row[4])), y: mean(rows.map((row) => row[5])) };
  const [dx, dy] = at ? [at.x - middle.x, at.y - middle.y] : [0, 0];
  return rows.map(([seed, pattern, width, height, x, y, angle]) => ({
    x: x + dx, y: y + dy, angle, pressure: 0.6, dryness: 0.1, width, height, material: "skin", strip: null,
    seed: rows.length === 1 ? (print.seed ?? seed) : seed,
    pattern: rows.length === 1 ? (print.pattern ?? pattern) : pattern,
  }));
}

function mean(values) {
  return values.reduce((sum, value) => sum + value, 0) / values.length;
}

/** Most of the way that a strip has to each side. */
export const rollReach = (rollPrint.width - rollPrint.strip) / 2;

/**
 * A finger that stands on its strip and rolls.
 * @param {number} strip mm to the right of the print's middle, kept to what the print has
 * @param {{seed?: number, pattern?: string}} [print]
 * @returns {Finger}
 */
export function layRolling(strip, print = {}) {
  return { x: rollFrame.x, y: rollFrame.y, angle: 0, pressure: 0.6, dryness: 0.1, seed: print.seed ?? 5,
    pattern: print.pattern ?? "whorl", width: rollPrint.width, height: rollPrint.height, material: "skin",
    strip: clamp(strip, -rollReach, rollReach) };
}

/** A point in the finger's own axes: across, and towards the palm. */
export function toFinger(finger, x, y) {
  const angle = (finger.angle * Math.PI) / 180;
  const [dx, dy] = [x - finger.x - (finger.strip ?? 0), y - finger.y];
  return { across: dx * Math.cos(angle) - dy * Math.sin(angle), along: dx * Math.sin(angle) + dy * Math.cos(angle) };
}

/** The way back: a point of the platen. */
export function fromFinger(finger, across, along) {
  const angle = (finger.angle * Math.PI) / 180;
  return {
    x: finger.x + (finger.strip ?? 0) + across * Math.cos(angle) + along * Math.sin(angle),
    y: finger.y - across * Math.sin(angle) + along * Math.cos(angle),
  };
}

/** Where the handle that turns a finger is: beyond its tip. */
export function handleOf(finger) {
  return fromFinger(finger, 0, -finger.height / 2 - 6);
}

/**
 * The finger under a point, the one that was laid last when there are several; -1 for none. Its body counts
 * as well, which is above the platen.
 * @param {Finger[]} fingers
 */
export function fingerAt(fingers, x, y) {
  return fingers.findLastIndex((finger) => {
    const { across, along } = toFinger(finger, x, y);
    const half = finger.width / 2;
    if (along > 0) return Math.abs(across) <= half && along <= 2 * finger.height;
    return (across / half) ** 2 + (along / (finger.height / 2)) ** 2 <= 1.15;
  });
}

/** The angle at which a finger's tip points to a place, in degrees from -180 to 180. */
export function angleTo(finger, x, y) {
  return (Math.atan2(finger.x - x, finger.y - y) * 180) / Math.PI;
}

/**
 * Moves fingers together; none leaves the platen with its middle, and they keep their distances.
 * @param {Finger[]} fingers
 */
export function moveBy(fingers, dx, dy) {
  const xs = fingers.map((finger) => finger.x);
  const ys = fingers.map((finger) => finger.y);
  const stepX = clamp(dx, -Math.min(...xs), side - Math.max(...xs));
  const stepY = clamp(dy, -Math.min(...ys), side - Math.max(...ys));
  for (const finger of fingers) {
    finger.x += stepX;
    finger.y += stepY;
  }
}

const round = (value) => Math.round(value * 1000) / 1000;
/** A touch long ago: the finger lies fully. The longest time that a scene takes keeps it there. */
const lies = { touch: 0, lift: 1e6 };

/** @param {Finger} finger @returns {Object} as a scene has it */
export function sceneFinger(finger) {
  const skin = finger.material === "skin";
  const print = { seed: finger.seed, pattern: finger.pattern, width: round(finger.width), height: round(finger.height) };
  if (!skin) print.material = finger.material;
  const scene = { print, x: round(finger.x), y: round(finger.y), angle: round(finger.angle),
    pressure: round(finger.pressure), dryness: skin ? round(finger.dryness) : 0 };
  if (finger.strip === null) return scene;
  return { ...scene, ...lies, roll: { width: rollPrint.strip, path: [{ at: 0, strip: round(finger.strip), down: 1 }] } };
}

/**
 * A finger that rolls over by itself from a moment of the scanner's time line on.
 * @param {Finger} finger
 * @param {number} at seconds
 */
export function rollOver(finger, at) {
  const path = [{ at: 0.3, strip: -rollReach, down: 1 }, { at: 1.8, strip: rollReach }];
  const scene = sceneFinger({ ...finger, strip: null });
  return { ...scene, touch: round(at), roll: { width: rollPrint.strip, path } };
}

/**
 * The platen as the service takes it.
 * @param {{fingers: Finger[], dirt: Object[], ambient: number, noise: number, pen: Object[]}} platen
 * @returns {Object}
 */
export function sceneOf({ fingers, dirt, ambient, noise, pen }) {
  const scene = { fingers: fingers.map(sceneFinger), dirt, ambient, noise };
  if (pen.length) scene.pen = { strokes: pen };
  return scene;
}
