// The page in a browser, on a service with a simulated scanner: what an operator sees and does.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { browse, drawnFrames, live, mode, newTab, open, play, serve, shot, spot, state, truth } from "./station.mjs";

let browser;
let station;

before(async () => {
  browser = await browse();
  station = await serve();
});

after(async () => {
  await browser?.close();
  await station?.stop();
});

/**
 * A test on a page of its own that holds the scanner, and of which the browser must have nothing to complain.
 */
function onPage(name, work, options = {}) {
  test(name, async () => {
    const page = await open(browser, station.url, options);
    try {
      await page.locator('#claim[data-whose="mine"]').waitFor();
      await mode(page, "auto");
      await work(page);
      assert.deepEqual(page.faults, []);
    } catch (error) {
      await shot(page, "failed");
      throw error;
    } finally {
      await leave(page);
    }
  });
}

/** Leaves an empty platen and a free scanner to the next test. */
async function leave(page) {
  if (await page.locator('#claim[data-whose="mine"]').isVisible()) {
    await page.locator("#lift").dispatchEvent("click");
    await page.waitForFunction(() => document.getElementById("platen").ariaLabel.includes(" 0 "));
    await page.locator("#claim-do").dispatchEvent("click");
    await page.locator('#claim[data-whose="free"]').waitFor();
  }
  await page.context().close();
}

/** Waits until the first such picture is there. */
function loaded(page, selector) {
  return page.waitForFunction((name) => document.querySelector(name)?.naturalWidth > 0, selector);
}

/** Drags over the platen, through so many points. */
async function drag(page, from, to, steps = 12, pauseMs = 30) {
  const [fromX, fromY] = await spot(page, ...from);
  const [toX, toY] = await spot(page, ...to);
  await page.mouse.move(fromX, fromY);
  await page.mouse.down();
  for (let n = 1; n <= steps; ++n) {
    await page.mouse.move(fromX + ((toX - fromX) * n) / steps, fromY + ((toY - fromY) * n) / steps);
    // The way of a hand takes its time: this is its speed, and no wait for something.
    await page.waitForTimeout(pauseMs);
  }
  await page.mouse.up();
}

onPage("shows the picture at the scanner's rate", async (page) => {
  await state(page, "Lay fingers down");
  await shot(page, "empty");
  await page.locator("#lay").click();
  await state(page, "Lift");
  const previews = await bestRate(page, 45);
  await shot(page, "live");
  assert.ok(previews >= 14.9, `${previews} previews a second, of which the scanner gives 15`);
  await mode(page, "signature");
  const strokes = await bestRate(page, 60);
  assert.ok(strokes >= 18, `${strokes} pictures of a signature a second, of which the scanner gives 20`);
});

/** Frames a second in the best of three stretches: what else runs on a machine takes some away. */
async function bestRate(page, frames) {
  const rates = [];
  for (let n = 0; n < 3; ++n) rates.push(await drawnFrames(page, frames));
  return Math.max(...rates);
}

onPage("a dragged finger appears where it was put", async (page) => {
  await mode(page, "preview");
  await page.selectOption("#what", "finger");
  await page.mouse.dblclick(...(await spot(page, 25, 28)));
  await drag(page, [25, 28], [55, 50]);
  await page.mouse.move(...(await spot(page, 55, 50)));
  await page.mouse.wheel(0, -100);
  await page.keyboard.down("Shift");
  for (let n = 0; n < 8; ++n) await page.mouse.wheel(0, -100);
  await page.keyboard.up("Shift");
  await drawnFrames(page, 6);
  const [seen, laid] = [await live(page), await truth(page)];
  await shot(page, "dragged");
  assert.ok(Math.hypot(seen.x - laid.x, seen.y - laid.y) < 0.006, JSON.stringify({ seen, laid }));
  assert.ok(Math.abs(laid.x * 81.28 - 55) < 1 && Math.abs(laid.y * 81.28 - 50) < 1, JSON.stringify(laid));
  assert.equal(await page.locator("#finger-angle-value").textContent(), "16°");
});

onPage("a hand that settles is captured by itself and lies in the strip", async (page) => {
  const before = await page.locator("#strip li").count();
  await play(page, "settling-slap", 7);
  await state(page, "Hold still");
  await shot(page, "hold-still");
  await page.locator(`#strip li:nth-child(${before + 1})`).waitFor();
  await loaded(page, "#strip img");
  await shot(page, "settled", { fullPage: true });
  await page.locator("#strip .card").first().click();
  await loaded(page, "#picture-image");
  assert.match(await page.locator("#picture-facts").textContent(), /1600 × 1600, 500 dpi/);
  const [download] = await Promise.all([page.waitForEvent("download"), page.locator("#picture-downloads a").first().click()]);
  assert.match(download.suggestedFilename(), /^VT40-AB0001-\d+-full\.png$/);
  await shot(page, "picture");
  await page.locator("#picture-delete").click();
  await page.waitForFunction((count) => document.querySelectorAll("#strip li").length <= count, before);
});

onPage("a roll that slips shows its verdict", async (page) => {
  await mode(page, "roll");
  await play(page, "roll-slipped", 3);
  await state(page, "Keep rolling");
  await shot(page, "rolling");
  await state(page, "Slipped");
  await page.locator("#strip .bad", { hasText: "Slipped" }).first().waitFor();
  await shot(page, "slipped");
});

onPage("a finger that the mouse rolls over the platen makes a clean print", async (page) => {
  await mode(page, "roll");
  await state(page, "Roll a finger");
  await shot(page, "roll");
  await drag(page, [33.64, 20], [47.64, 20], 60, 25);
  await state(page, "Clean roll");
  await page.locator("#strip .good", { hasText: "Clean roll" }).first().waitFor();
  await shot(page, "clean-roll");
});

onPage("what the mouse writes becomes a signature", async (page) => {
  await mode(page, "signature");
  await state(page, "Sign");
  const before = await page.locator("#strip li").count();
  await drag(page, [15, 28], [30, 10], 14);
  await drag(page, [30, 10], [40, 30], 14);
  await drag(page, [38, 22], [66, 14], 20);
  await state(page, "Signing");
  await shot(page, "signing");
  await state(page, "Signed");
  await page.locator(`#strip li:nth-child(${before + 1})`).waitFor();
  const ink = await page.evaluate(async () => (await (await fetch("/api/results")).json()).results[0].ink);
  await shot(page, "signed");
  // The scanner sees a pen after some frames of 20 a second, on a way of 3 mm; the ends of strokes are there.
  const mm = (pixels) => pixels / 19.685;
  const close = (value, wanted) => assert.ok(Math.abs(value - wanted) < 4, JSON.stringify(ink));
  close(mm(ink.left), 15);
  close(mm(ink.top), 10);
  close(mm(ink.left + ink.width), 66);
  close(mm(ink.top + ink.height), 30);
});

onPage("a scanner that was unplugged comes back without loading the page again", async (page) => {
  await page.evaluate(() => { window.loadedOnce = true; });
  await page.locator("#simulator summary").click();
  await page.locator("#plug").click();
  await state(page, "Scanner unplugged");
  await shot(page, "unplugged");
  await page.locator("#plug", { hasText: "Plug in" }).click();
  await state(page, "Lay fingers down");
  await drawnFrames(page, 10);
  assert.ok(await page.evaluate(() => window.loadedOnce));
});

onPage("two tabs share the scanner: one asks, the other hands over", async (page) => {
  const other = await newTab(page.context(), station.url);
  await other.locator('#claim[data-whose="other"]').waitFor();
  assert.match(await other.locator("#claim-text").textContent(), /Held by Tab \d/);
  assert.ok(await other.locator('#modes [data-mode="off"]').isDisabled());
  await drawnFrames(other, 5);
  await other.locator("#claim-do").click();
  await page.locator("#claim-wanted").waitFor();
  await shot(page, "asked");
  await shot(other, "held-by-other");
  await page.locator("#claim-hand").click();
  await other.locator('#claim[data-whose="mine"]').waitFor();
  await page.locator('#claim[data-whose="other"]').waitFor();
  await mode(other, "preview");
  await page.locator('#modes [data-mode="preview"][aria-pressed="true"]').waitFor();
  await other.locator("#lay").click();
  await state(other, "Still");
  await other.locator("#lift").click();
  await state(other, "Lay fingers down");
  assert.deepEqual(other.faults, []);
  await other.locator("#claim-do").click();
  await page.locator("#claim-do", { hasText: "Take" }).click();
  await page.locator('#claim[data-whose="mine"]').waitFor();
  await other.close();
});

onPage("keys choose, lay, capture and explain themselves", async (page) => {
  await page.keyboard.press("2");
  await page.locator('#modes [data-mode="preview"][aria-pressed="true"]').waitFor();
  await page.keyboard.press("l");
  await state(page, "Still");
  const before = await page.locator("#strip li").count();
  await page.keyboard.press("c");
  await page.locator(`#strip li:nth-child(${before + 1})`).waitFor();
  await page.locator("#platen").focus();
  await page.keyboard.press(" ");
  const pressed = await page.locator("#finger-pressure-value").textContent();
  await page.keyboard.press(".");
  assert.notEqual(await page.locator("#finger-pressure-value").textContent(), pressed);
  await page.keyboard.press("Delete");
  await page.waitForFunction(() => document.getElementById("platen").ariaLabel.includes(" 3 "));
  await page.keyboard.press("?");
  await page.locator("#help").waitFor();
  await shot(page, "help");
  await page.keyboard.press("Escape");
});

onPage("zooms to single pixels and back", async (page) => {
  await page.locator("#lay").click();
  await state(page, "Lift");
  await page.locator('[data-zoom="="]').click();
  await page.waitForFunction(() => document.getElementById("zoom").textContent === "100 %");
  await page.locator("#live").hover();
  for (let n = 0; n < 8; ++n) await page.mouse.wheel(0, -100);
  await page.waitForFunction(() => parseInt(document.getElementById("zoom").textContent, 10) > 400);
  await shot(page, "zoomed");
  await page.locator('[data-zoom="0"]').click();
  await page.waitForFunction(() => parseInt(document.getElementById("zoom").textContent, 10) < 100);
});

onPage("an error is shown in words, with what to do", async (page) => {
  await page.locator("#simulator summary").click();
  await page.selectOption("#fault", "mode");
  await page.locator("#fault-do").click();
  await page.locator('#modes [data-mode="full"]').click();
  const error = page.locator("#errors .error");
  await error.waitFor();
  assert.ok((await error.locator("b").textContent()).length > 10);
  await shot(page, "error");
  await page.selectOption("#fault", "clear");
  await page.locator("#fault-do").click();
});

onPage("lights, buzzer and display of the scanner are drawn as they are set", async (page) => {
  await page.locator("#line1").fill("Hello");
  await page.locator("#display-form button").first().click();
  await page.locator('#display[aria-label^="Display: Hello"]').waitFor();
  await page.locator("#leds button").nth(3).click();
  await page.locator('#leds button:nth-child(4)[data-state="1"]').waitFor();
  const beeps = Number((await page.locator("#beeps").textContent()).replace(/\D/g, ""));
  await page.locator("#beep").click();
  await page.locator("#beeps", { hasText: `Beeps: ${beeps + 1}` }).waitFor();
  await page.locator("#device").screenshot({ path: `${process.env.SHOTS ?? "out"}/device.png` });
  // The lamp goes out with the seventh press, and is then as it was.
  for (let n = 0; n < 7; ++n) {
    await page.locator("#leds button").nth(3).click();
    await page.locator(`#leds button:nth-child(4)[data-state="${(n + 2) % 8}"]`).waitFor();
  }
});

/** What is wider than the window, though it does not scroll by itself. */
function overflowing(page) {
  return page.evaluate(() => {
    const width = document.documentElement.clientWidth;
    const wide = [...document.querySelectorAll("body *")].filter((element) => {
      if (element.closest(".strip, .hidden, .skip")) return false;
      const box = element.getBoundingClientRect();
      return box.width > 0 && (box.right > width + 0.5 || box.left < -0.5);
    });
    return [document.documentElement.scrollWidth - width, ...wide.map((element) => element.outerHTML.slice(0, 80))];
  });
}

for (const locale of ["en-GB", "de-DE"])
  onPage(`fits a phone of 360 pixels: ${locale}`, async (page) => {
    await page.locator("#simulator summary").click();
    await page.locator("#lay").click();
    await page.mouse.click(...(await spotInView(page, 33, 27)));
    await page.locator("#finger").waitFor();
    for (const name of ["roll", "signature", "auto-live", "auto"]) {
      await mode(page, name);
      assert.deepEqual(await overflowing(page), [0], name);
    }
    await page.waitForFunction(() => document.getElementById("state").dataset.tone === "good");
    await page.evaluate(() => scrollTo(0, 0));
    await shot(page, `phone-${locale}`, { fullPage: true });
    await page.keyboard.press("?");
    await page.locator("#help").waitFor();
    assert.deepEqual(await overflowing(page), [0], "help");
  }, { viewport: { width: 360, height: 740 }, locale });

async function spotInView(page, x, y) {
  await page.locator("#platen").scrollIntoViewIfNeeded();
  return spot(page, x, y);
}

onPage("is dark and German when the browser is, and the other when asked", async (page) => {
  const back = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  await state(page, "Finger auflegen");
  assert.equal(await page.locator("html").getAttribute("lang"), "de");
  const dark = await back();
  await page.locator("#lay").click();
  await state(page, "Abheben");
  await shot(page, "dark-german", { fullPage: true });
  await page.locator("#theme").click();
  assert.notEqual(await back(), dark);
  await page.locator("#language").click();
  await state(page, "Lift");
  await page.reload();
  await state(page, "Lift");
  assert.notEqual(await back(), dark);
}, { colorScheme: "dark", locale: "de-DE" });
