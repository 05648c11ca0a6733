// Geometry of the page: zoom of the picture, fingers on the platen, the pen's strokes, the scale of plots.
import assert from "node:assert/strict";
import { test } from "node:test";

import { PenWriter, lead, thin } from "../../tools/vt40/web/pen.js";
import { angleTo, fingerAt, fromFinger, handleOf, layHand, layRolling, moveBy, rollOver, rollReach, sceneOf, side, toFinger }
  from "../../tools/vt40/web/platen-model.js";
import { heightOf, short, topOf } from "../../tools/vt40/web/plots.js";
import { Viewport } from "../../tools/vt40/web/viewport.js";

const near = (is, wanted, what = "") => assert.ok(Math.abs(is - wanted) < 1e-6, `${what} ${is}, not ${wanted}`);

function viewport(width = 800, height = 800, windowWidth = 1000, windowHeight = 500) {
  const view = new Viewport();
  view.resize(width, height, windowWidth, windowHeight);
  return view;
}

test("a picture fits its window and lies in the middle", () => {
  const view = viewport();
  near(view.scale, 0.625);
  near(view.x, 250);
  near(view.y, 0);
});

test("zooming keeps the point under the mouse, within the picture", () => {
  const view = viewport();
  view.zoom(3, 500, 300);
  const before = view.toPicture(600, 200);
  view.zoom(1.7, 600, 200);
  const after = view.toPicture(600, 200);
  near(after.x, before.x);
  near(after.y, before.y);
});

test("no gap opens beside a large picture, and scales have limits", () => {
  const view = viewport();
  view.zoom(4);
  view.move(1e6, -1e6);
  near(view.x, 0);
  near(view.y, 500 - 800 * view.scale);
  view.zoom(1e9);
  near(view.scale, 16);
  view.zoom(1e-9);
  near(view.scale, 0.625);
  assert.ok(view.fitted);
});

test("1:1 counts the pixels of the screen", () => {
  const view = viewport();
  view.oneToOne(2);
  near(view.scale, 0.625, "smaller than what fits is not shown");
  view.oneToOne(1);
  near(view.scale, 1);
});

test("the same part stays in sight when its picture comes with twice the pixels", () => {
  const view = viewport();
  view.zoom(4, 300, 100);
  const before = view.toPicture(500, 250);
  view.resize(1600, 1600, 1000, 500);
  const after = view.toPicture(500, 250);
  near(after.x, 2 * before.x);
  near(after.y, 2 * before.y);
});

test("a finger's axes turn with it, and a positive angle leans its tip to the left", () => {
  const finger = { ...layHand("finger", { x: 30, y: 40 })[0], angle: 30 };
  assert.ok(handleOf(finger).x < 30 && handleOf(finger).y < 40);
  const there = fromFinger(finger, 3, -7);
  const back = toFinger(finger, there.x, there.y);
  near(back.across, 3);
  near(back.along, -7);
  const handle = handleOf(finger);
  near(angleTo(finger, handle.x, handle.y), 30);
});

test("the finger on top is taken, by its print or its body", () => {
  const fingers = [...layHand("finger", { x: 20, y: 20 }), ...layHand("finger", { x: 24, y: 20 })];
  assert.equal(fingerAt(fingers, 22, 20), 1);
  assert.equal(fingerAt(fingers, 13, 20), 0);
  assert.equal(fingerAt(fingers, 24, 50), 1);
  assert.equal(fingerAt(fingers, 24, 5), -1);
});

test("a hand is moved as one, and stops at the edge as one", () => {
  const hand = layHand("slap-right");
  const gap = hand[3].x - hand[0].x;
  moveBy(hand, 1000, -1000);
  near(hand[3].x, side);
  near(hand[3].x - hand[0].x, gap);
  near(Math.min(...hand.map((finger) => finger.y)), 0);
});

test("the platen is told to the service in the keys of a scene", () => {
  const [finger] = layHand("finger", { x: 10.12345, y: 20 });
  const cast = { ...finger, material: "halftone", dryness: 0.5 };
  const scene = sceneOf({ fingers: [finger, cast, layRolling(99)], dirt: [], ambient: 6, noise: 1, pen: [] });
  assert.deepEqual(scene.fingers[0], { print: { seed: 1, pattern: "whorl", width: 16, height: 23 }, x: 10.123, y: 20, angle: 0,
    pressure: 0.6, dryness: 0.1 });
  assert.deepEqual([scene.fingers[1].print.material, scene.fingers[1].dryness], ["halftone", 0]);
  assert.deepEqual(scene.fingers[2].roll.path, [{ at: 0, strip: rollReach, down: 1 }]);
  assert.ok(!("pen" in scene));
  const rolled = rollOver(layRolling(0), 5);
  assert.deepEqual([rolled.touch, "lift" in rolled], [5, false]);
});

test("strokes of the pen follow on each other, in the future and as fast as the scanner needs", () => {
  const pen = new PenWriter();
  pen.down(10, 10, 100);
  let [x, now] = [10, 100];
  for (; now < 101; now += 0.02) {
    // Half of the time the hand writes slowly.
    pen.move((x += now < 100.5 ? 0.2 : 2), 10);
    if (pen.cut(now)) assert.ok(pen.strokes.at(-1).at >= now + lead - 1e-3);
  }
  pen.cut(now, true);
  assert.ok(pen.strokes.length > 5);
  pen.strokes.reduce((before, stroke) => {
    assert.deepEqual(stroke.points[0], before.points.at(-1));
    const end = before.at + (before.points.at(-1)[0] - before.points[0][0]) / before.speed;
    assert.ok(stroke.at >= end - 0.002 && stroke.speed >= 27);
    return stroke;
  });
  near(pen.strokes.at(-1).points.at(-1)[0], Math.round(x * 1000) / 1000);
});

test("a pen that rests or only taps makes no stroke, and old strokes are forgotten", () => {
  const pen = new PenWriter();
  pen.down(10, 10, 1);
  assert.equal(pen.cut(2), false);
  pen.move(10.05, 10);
  assert.equal(pen.cut(3, true), false);
  pen.down(10, 10, 3);
  pen.move(12, 10);
  assert.ok(pen.cut(3.2, true));
  pen.down(10, 10, 30);
  pen.move(12, 10);
  assert.ok(pen.cut(30.2, true));
  assert.equal(pen.strokes.length, 1);
});

test("a stroke keeps its ends and to the number of points that a scene takes", () => {
  const points = Array.from({ length: 1001 }, (_, n) => [n, 0]);
  const thinned = thin(points);
  assert.deepEqual([thinned.length, thinned[0][0], thinned.at(-1)[0]], [200, 0, 1000]);
  assert.equal(thin(points.slice(0, 200)).length, 200);
});

test("plots show all values and the limit", () => {
  near(heightOf(50, 100, false), 0.5);
  near(heightOf(99, 9999, true), 0.5);
  assert.deepEqual([heightOf(-5, 100, true), heightOf(1e9, 100, false)], [0, 1]);
  assert.equal(topOf([3, null, 12], null, 20, false), 25);
  assert.equal(topOf([], 1000, 2000, true), 10000);
  assert.ok(topOf([7], 90, 1, false) > 90);
});

test("numbers are short", () => {
  assert.deepEqual([0, 999, 1000, 1234, 99999999].map(short), ["0", "999", "1 k", "1.2 k", "100 M"]);
});
