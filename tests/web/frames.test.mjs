// Frames and connection: what comes from the service is taken apart, and refused when it is broken.
import assert from "node:assert/strict";
import { test } from "node:test";

import { backOff } from "../../tools/vt40/web/connection.js";
import { FrameMeter, parseFrame, spreadGrey } from "../../tools/vt40/web/frames.js";

/** A frame as the service sends it; each part can be made wrong. */
function message({ magic = "VTF1", format = 0, kind = 2, header = 32, width = 3, height = 2, room = 6 } = {}) {
  const buffer = new ArrayBuffer(Math.max(32, header) + room);
  const view = new DataView(buffer);
  [...magic].forEach((letter, n) => view.setUint8(n, letter.charCodeAt(0)));
  view.setUint8(4, format);
  view.setUint8(5, kind);
  view.setUint16(6, header, true);
  view.setUint32(8, width, true);
  view.setUint32(12, height, true);
  view.setUint32(16, 19685, true);
  view.setUint32(20, 0x80000001, true);
  view.setFloat64(24, 1700000000123.5, true);
  for (let n = 0; n < room; ++n) view.setUint8(Math.max(32, header) + n, 10 * n);
  return buffer;
}

test("a frame is taken apart", () => {
  const { payload, ...facts } = parseFrame(message());
  assert.deepEqual(facts, { format: "grey", kind: "roll", width: 3, height: 2, pelsPerMetre: 19685, number: 0x80000001,
    time: 1700000000123.5 });
  assert.deepEqual([...payload], [0, 10, 20, 30, 40, 50]);
});

test("a longer header of a later service is passed over, and a JPEG may have any size", () => {
  assert.deepEqual([...parseFrame(message({ header: 40 })).payload], [0, 10, 20, 30, 40, 50]);
  assert.equal(parseFrame(message({ format: 1, room: 2, kind: 0 })).format, "jpeg");
});

test("a broken frame is refused with what is wrong", () => {
  const wrong = [
    [{ magic: "VTF2" }, /"VTF2"/], [{ format: 2 }, /format 2/], [{ kind: 4 }, /kind 4/], [{ header: 31 }, /31 bytes/],
    [{ width: 0 }, /0 × 2/], [{ height: 70000 }, /3 × 70000/], [{ room: 5 }, /has 5 bytes/], [{ room: 7 }, /has 7 bytes/],
  ];
  for (const [change, reason] of wrong) assert.throws(() => parseFrame(message(change)), reason);
  assert.throws(() => parseFrame(message().slice(0, 31)), /31 bytes/);
  const cut = message();
  new DataView(cut).setUint16(6, 60000, true);
  assert.throws(() => parseFrame(cut), /60000 bytes/);
});

test("grey values become opaque colours", () => {
  const colours = new Uint32Array(3);
  spreadGrey(new Uint8Array([0, 127, 255]), colours);
  assert.deepEqual([...colours], [0xff000000, 0xff7f7f7f, 0xffffffff]);
});

test("the meter counts the frames of the last second, and their median delay", () => {
  const meter = new FrameMeter();
  assert.deepEqual(meter.read(0), { rate: 0, latency: null });
  for (const [now, late] of [[0, 500], [900, 10], [950, 30], [999, 20]]) meter.add(now, now - late);
  assert.deepEqual(meter.read(999), { rate: 4, latency: 30 });
  assert.deepEqual(meter.read(1000), { rate: 3, latency: 20 });
  assert.equal(meter.read(3000).rate, 0);
});

test("attempts to connect come less often, and never more than eight seconds apart", () => {
  assert.deepEqual([0, 1, 2, 3, 4, 5, 5000].map(backOff), [500, 1000, 2000, 4000, 8000, 8000, 8000]);
});
