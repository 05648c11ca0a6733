// Draws the simulated platen from above: glass, fingers with their nails, dirt, and the pen's strokes.
import { colour, fitCanvas } from "./dom.js";
import { handleOf, rollFrame, rollPrint, side } from "./platen-model.js";

/** Bare glass round the platen, mm, so that hands do not end at its edge. */
export const margin = 5;

/**
 * @param {HTMLCanvasElement} canvas
 * @param {Object} scene
 * @param {import("./platen-model.js").Finger[]} scene.fingers
 * @param {Object[]} scene.dirt
 * @param {number[][][]} scene.ink strokes of the pen
 * @param {number} scene.chosen index of the chosen finger, or -1
 * @param {boolean} scene.rolls whether the frame of rolls is shown
 * @param {boolean} scene.lit whether the platen's light is on
 * @param {number} scene.ambient room light, 0 to 200
 */
export function drawPlaten(canvas, scene) {
  const { context, width } = fitCanvas(canvas);
  const scale = width / (side + 2 * margin);
  context.clearRect(0, 0, width, width);
  context.save();
  context.scale(scale, scale);
  context.translate(margin, margin);
  drawGlass(context, scene);
  context.clip();
  if (scene.rolls) drawRollFrame(context);
  for (const speck of scene.dirt) drawDirt(context, speck);
  scene.fingers.forEach((finger, n) => drawFinger(context, finger, n === scene.chosen));
  drawInk(context, scene.ink);
  context.restore();
}

/** Leaves the outline of the case as the path, within which all else is drawn. */
function drawGlass(context, { lit, ambient }) {
  const outline = () => roundRect(context, -margin, -margin, side + 2 * margin, side + 2 * margin, 4);
  context.fillStyle = colour("case");
  outline();
  context.fill();
  const glass = context.createLinearGradient(0, 0, side, side);
  glass.addColorStop(0, colour(lit ? "glass-lit" : "glass"));
  glass.addColorStop(1, colour("glass"));
  context.fillStyle = glass;
  roundRect(context, 0, 0, side, side, 1.5);
  context.fill();
  if (ambient > 10) {
    context.fillStyle = `rgba(255, 244, 214, ${Math.min(0.5, ambient / 400)})`;
    context.fill();
  }
  context.strokeStyle = colour("grid");
  context.lineWidth = 0.12;
  context.beginPath();
  for (let at = 10; at < side; at += 10) {
    context.moveTo(at, 0);
    context.lineTo(at, side);
    context.moveTo(0, at);
    context.lineTo(side, at);
  }
  context.stroke();
  outline();
}

function drawRollFrame(context) {
  const { x, y, half } = rollFrame;
  context.strokeStyle = colour("accent");
  context.lineWidth = 0.5;
  context.setLineDash([2, 1.4]);
  context.strokeRect(x - half + 0.4, y - half + 0.4, 2 * half - 0.8, 2 * half - 0.8);
  context.setLineDash([]);
}

function drawDirt(context, { x, y, width, length = 0, angle = 0, strength }) {
  context.save();
  context.translate(x, y);
  context.rotate((-angle * Math.PI) / 180);
  context.globalAlpha = 0.35 + 0.6 * strength;
  context.strokeStyle = colour("dirt");
  context.lineWidth = Math.max(0.5, width);
  context.lineCap = "round";
  context.beginPath();
  context.moveTo(-length / 2, 0);
  context.lineTo(length / 2 + 0.01, 0);
  context.stroke();
  context.restore();
}

/** A finger lies with its pad on the glass, so that its nail and its back are seen. */
function drawFinger(context, finger, chosen) {
  const rolling = finger.strip !== null;
  const width = rolling ? rollPrint.strip + 2 : finger.width;
  const { height, material, pressure } = finger;
  context.save();
  context.translate(finger.x + (finger.strip ?? 0), finger.y);
  context.rotate((-finger.angle * Math.PI) / 180);
  const body = () => fingerShape(context, width + 1.6, height);
  context.save();
  context.shadowColor = "rgba(0, 0, 0, 0.45)";
  context.shadowBlur = 8 + 10 * (1 - pressure);
  context.shadowOffsetY = 3;
  const tone = material === "skin" ? "skin" : "cast";
  const skin = context.createLinearGradient(-width / 2, 0, width / 2, 0);
  skin.addColorStop(0, colour(`${tone}-edge`));
  skin.addColorStop(0.3, colour(tone));
  skin.addColorStop(0.75, colour(tone));
  skin.addColorStop(1, colour(`${tone}-edge`));
  context.fillStyle = skin;
  body();
  context.fill();
  context.restore();
  drawCreases(context, width, height, tone);
  // The nail of a finger that rolls goes to the side with it.
  const turn = rolling ? (finger.strip / (rollPrint.width / 2)) * 0.9 : 0;
  drawNail(context, turn * width * 0.42, width * Math.cos(turn), height, pressure, tone);
  if (chosen) {
    context.strokeStyle = colour("accent");
    context.lineWidth = 0.7;
    body();
    context.stroke();
    context.setLineDash([1.2, 1]);
    context.lineWidth = 0.4;
    context.beginPath();
    context.ellipse(0, 0, finger.width / 2, height / 2, 0, 0, 2 * Math.PI);
    context.stroke();
  }
  context.restore();
  if (chosen && !rolling) drawHandle(context, finger);
}

/** Down to the joint that is nearest to the hand, which lies beyond the case for most. */
function fingerShape(context, width, height) {
  const half = width / 2;
  const end = 3.4 * height;
  context.beginPath();
  context.moveTo(-half * 1.06, end);
  context.bezierCurveTo(-half * 1.12, height * 1.6, -half * 0.94, height * 0.6, -half, 0);
  context.bezierCurveTo(-half, -height * 0.42, -half * 0.62, -height * 0.54, 0, -height * 0.54);
  context.bezierCurveTo(half * 0.62, -height * 0.54, half, -height * 0.42, half, 0);
  context.bezierCurveTo(half * 0.94, height * 0.6, half * 1.12, height * 1.6, half * 1.06, end);
  context.arc(0, end, half * 1.06, 0, Math.PI);
  context.closePath();
}

function drawNail(context, shift, width, height, pressure, tone) {
  const half = Math.max(1, width * 0.33);
  const [top, bottom] = [-height * 0.47, height * 0.04];
  context.fillStyle = colour(`${tone}-nail`);
  context.beginPath();
  context.moveTo(shift - half, bottom - 2);
  context.bezierCurveTo(shift - half * 1.05, top + 3, shift - half * 0.8, top, shift, top);
  context.bezierCurveTo(shift + half * 0.8, top, shift + half * 1.05, top + 3, shift + half, bottom - 2);
  context.quadraticCurveTo(shift, bottom + 2.4, shift - half, bottom - 2);
  context.fill();
  // Blood leaves the tip of a finger that presses.
  context.fillStyle = `rgba(255, 255, 255, ${0.15 + 0.55 * pressure})`;
  context.beginPath();
  context.ellipse(shift, top + 2.6, half * 0.72, 2.1, 0, 0, 2 * Math.PI);
  context.fill();
}

function drawCreases(context, width, height, tone) {
  context.strokeStyle = colour(`${tone}-edge`);
  context.lineWidth = 0.4;
  for (const at of [0.62, 0.7, 0.78, 1.78, 1.88, 1.98]) {
    context.beginPath();
    context.moveTo(-width * 0.27, height * at);
    context.quadraticCurveTo(0, height * (at + 0.05), width * 0.27, height * at);
    context.stroke();
  }
}

function drawHandle(context, finger) {
  const at = handleOf(finger);
  context.fillStyle = colour("accent");
  context.strokeStyle = "#fff";
  context.lineWidth = 0.5;
  context.beginPath();
  context.arc(at.x, at.y, 1.8, 0, 2 * Math.PI);
  context.fill();
  context.stroke();
}

function drawInk(context, ink) {
  context.strokeStyle = colour("ink");
  context.lineWidth = 0.7;
  context.lineCap = context.lineJoin = "round";
  for (const stroke of ink) {
    context.beginPath();
    stroke.forEach(([x, y], n) => context[n ? "lineTo" : "moveTo"](x, y));
    context.stroke();
  }
}

function roundRect(context, x, y, width, height, radius) {
  context.beginPath();
  context.roundRect(x, y, width, height, radius);
}
