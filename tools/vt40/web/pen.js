// Turns the way of the mouse into strokes that the simulated pen writes a moment later; knows no document.

/** Seconds of writing that go into one stroke of the scene; the pen is as late as that. */
export const chunkSeconds = 0.12;
/** Seconds by which a stroke lies in the future when it is sent, for the way to the simulator. */
export const lead = 0.12;
/** Strokes that lie back further than this are over for the simulator. */
const keepSeconds = 5;
const most = 150;

/** Collects points and cuts them into strokes that follow on each other where the last one has ended. */
export class PenWriter {
  constructor() {
    this.strokes = [];
    this.points = [];
    this.end = 0;
  }

  /**
   * The tip touches the glass.
   * @param {number} x mm
   * @param {number} y mm
   * @param {number} now seconds on the scanner's time line
   */
  down(x, y, now) {
    this.points = [[x, y]];
    this.begun = now;
  }

  /** The tip moves; points closer than a tenth of a millimetre are none. */
  move(x, y) {
    const [lastX, lastY] = this.points.at(-1) ?? [];
    if (lastX !== undefined && Math.hypot(x - lastX, y - lastY) >= 0.1) this.points.push([round(x), round(y)]);
  }

  /**
   * Makes a stroke of what was collected, when there is enough of it.
   * @param {number} now seconds on the scanner's time line
   * @param {boolean} up whether the tip has left the glass, which ends the stroke
   * @returns {boolean} whether there are new strokes to send
   */
  cut(now, up = false) {
    if (!this.points.length || (!up && now - this.begun < chunkSeconds)) return false;
    const seconds = Math.max(0.01, now - this.begun);
    const way = length(this.points);
    this.begun = now;
    const last = this.points.at(-1);
    if (way > 0) {
      // A scanner that looks for what is new does not see a pen that is slower.
      const speed = Math.max(27, way / seconds);
      // The pen of a slow hand has written the last stroke before this one comes, and waits.
      this.end = Math.max(this.end, now + lead);
      this.strokes.push({ at: round(this.end), line: "straight", speed: round(speed), points: thin(this.points) });
      this.end += way / speed;
    }
    this.points = up ? [] : [last];
    this.strokes = this.strokes.filter((stroke) => stroke.at > now - keepSeconds).slice(-most);
    return way > 0;
  }

  /** Forgets all strokes. */
  clear() {
    this.strokes = [];
    this.points = [];
    this.end = 0;
  }
}

const round = (value) => Math.round(value * 1000) / 1000;

/** The length of a line through points. */
export function length(points) {
  let sum = 0;
  for (let n = 1; n < points.length; ++n) sum += Math.hypot(points[n][0] - points[n - 1][0], points[n][1] - points[n - 1][1]);
  return sum;
}

/** At most as many points as a stroke may have; its ends stay. */
export function thin(points, limit = 200) {
  if (points.length <= limit) return points;
  const step = (points.length - 1) / (limit - 1);
  return Array.from({ length: limit }, (_, n) => points[Math.round(n * step)]);
}

/** A signature for those who have no mouse at hand: strokes from a moment of the time line on. */
export function sampleSignature(at) {
  return [
    { at: round(at), points: [[14, 28], [20, 9], [27, 27], [24, 20], [18, 20]] },
    { after: 0.15, points: [[30, 26], [33, 17], [37, 26], [41, 16], [45, 26], [49, 17], [54, 25], [60, 19], [68, 22]] },
    { after: 0.15, line: "straight", points: [[20, 32], [64, 30]] },
  ];
}
