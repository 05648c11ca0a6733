// The page and its service: the token, a service that goes and comes back, and how long the way to the screen
// is.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { after, before, test } from "node:test";

import { browse, drawnFrames, live, mode, open, patience, serve, shot, state } from "./station.mjs";

let browser;

before(async () => {
  browser = await browse();
});

after(async () => {
  await browser?.close();
});

test("a service with a token lets in who has it, with small pictures for other machines, and asks the others", async () => {
  // To the page, all but the usual names of this machine is another machine.
  const station = await serve("--host", "127.0.0.2", "--token", "open-sesame");
  try {
    const invited = await open(browser, station.url);
    await invited.locator('#claim[data-whose="mine"]').waitFor();
    await mode(invited, "preview");
    const jpeg = invited.socket.waitForEvent("framereceived", ({ payload }) => payload instanceof Buffer && payload[4] === 1);
    await invited.locator("#lay").click();
    await state(invited, "Still");
    assert.ok((await jpeg).payload.length < 800 * 800 / 2);
    await drawnFrames(invited, 5);
    assert.ok((await live(invited)).count > 5000, "the picture of a hand is drawn");
    assert.deepEqual(invited.faults, []);
    await invited.context().close();
    const other = await open(browser, station.url.replace(/#.*/, ""));
    await other.locator("#token").waitFor();
    await shot(other, "token");
    await other.fill("#token-input", "guess");
    await other.locator("#token-form button").click();
    await other.locator("#token-wrong").waitFor();
    await other.fill("#token-input", "open-sesame");
    await other.locator("#token-form button").click();
    await other.locator('#link[data-state="open"]').waitFor();
    await other.reload();
    await other.locator('#link[data-state="open"]').waitFor();
    await other.context().close();
  } finally {
    await station.stop();
  }
});

test("the page connects again to a service that was started anew, without being loaded again", async () => {
  let station = await serve();
  try {
    const page = await open(browser, station.url);
    await page.locator('#claim[data-whose="mine"]').waitFor();
    await page.evaluate(() => { window.loadedOnce = true; });
    const port = new URL(station.url).port;
    await station.stop();
    await state(page, "No connection");
    await shot(page, "no-connection");
    assert.ok(!(await page.locator("#claim").isVisible()) && (await page.locator("#lay").isDisabled()));
    station = await serve("--port", port);
    await page.locator('#claim[data-whose="mine"]').waitFor();
    await state(page, "Lay fingers down");
    await drawnFrames(page, 5);
    assert.ok(await page.evaluate(() => window.loadedOnce));
    await page.context().close();
  } finally {
    await station.stop();
  }
});

test("of several scanners one is chosen, and its picture follows", async () => {
  const finger = { print: { seed: 5, pattern: "left-loop" }, x: 40, y: 40 };
  const scene = { scanners: [{ serial: "VT40-AB0001" }, { serial: "VT40-AB0002", fingers: [finger] }] };
  const station = await serve("--scene", JSON.stringify(scene));
  try {
    const page = await open(browser, station.url);
    await page.locator('#claim[data-whose="mine"]').waitFor();
    await state(page, "Lay fingers down");
    await page.selectOption("#scanners", "VT40-AB0002");
    await page.locator("#serial", { hasText: "VT40-AB0002" }).waitFor();
    await state(page, "Lift");
    assert.ok((await live(page)).count > 2000, "the picture of the other scanner's finger is drawn");
    await shot(page, "two-scanners");
    await page.selectOption("#scanners", "VT40-AB0001");
    await page.locator("#serial", { hasText: "VT40-AB0001" }).waitFor();
    await state(page, "Lay fingers down");
    assert.deepEqual(page.faults, []);
    await page.context().close();
  } finally {
    await station.stop();
  }
});

/** Processor seconds of a process so far. */
function processorSeconds(pid) {
  const fields = readFileSync(`/proc/${pid}/stat`, "utf8").replace(/^.*\) /, "").split(" ");
  return (Number(fields[11]) + Number(fields[12])) / 100;
}

/**
 * Milliseconds from the slider that turns the finger in the middle of the platen until the live picture shows
 * it turned.
 */
function latency(page, degrees) {
  return page.evaluate(([angle, most]) => new Promise((resolve, reject) => {
    const canvas = document.getElementById("live");
    const scale = Math.min(canvas.width, canvas.height) / 81.28;
    // Ten millimetres beside the middle there is skin when the finger lies across, and none when it is
    // upright.
    const [x, y] = [canvas.width / 2 + 9 * scale, canvas.height / 2 - 3 * scale];
    const context = canvas.getContext("2d");
    const isDark = () => context.getImageData(x, y, scale, 6 * scale).data.some((value, n) => n % 4 === 0 && value < 100);
    const slider = document.getElementById("finger-angle");
    const [before, begun] = [isDark(), performance.now()];
    const look = () => {
      if (isDark() !== before) resolve(performance.now() - begun);
      else if (performance.now() - begun > most) reject(new Error("the picture has not changed"));
      else requestAnimationFrame(look);
    };
    slider.value = angle;
    slider.dispatchEvent(new Event("input"));
    look();
  }), [degrees, patience]);
}

test("what moves on the platen is on the screen within 150 ms, at the pace of the hardware", async () => {
  const station = await serve();
  try {
    const page = await open(browser, station.url);
    await page.locator('#claim[data-whose="mine"]').waitFor();
    await mode(page, "preview");
    await page.selectOption("#what", "finger");
    await page.locator("#lay").click();
    await drawnFrames(page, 15);
    const times = [];
    for (let n = 0; n < 21; ++n) {
      times.push(await latency(page, n % 2 ? 0 : 90));
      await drawnFrames(page, 3 + (n % 3));
    }
    const sorted = [...times].sort((a, b) => a - b);
    const [before, begun] = [processorSeconds(station.pid), performance.now()];
    const rate = await drawnFrames(page, 75);
    const share = (processorSeconds(station.pid) - before) / ((performance.now() - begun) / 1000);
    console.log(`# from the platen to the screen: median ${sorted[10].toFixed(0)} ms, most ${sorted.at(-1).toFixed(0)} ms; ` +
      `${rate.toFixed(1)} pictures a second; the service takes ${(100 * share).toFixed(0)} % of a core`);
    assert.ok(sorted[10] <= 150, times.join(" "));
    await page.context().close();
  } finally {
    await station.stop();
  }
});
