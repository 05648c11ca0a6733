// What the browser tests share: a service of their own, a browser, and the ways in which they look at the
// page.
import { spawn } from "node:child_process";
import { mkdirSync } from "node:fs";
import { createRequire } from "node:module";
import { createInterface } from "node:readline";

/** The built tool, and the folder in which npm has installed the driver of the browser. */
const tool = process.env.VT40 ?? "build/release/bin/vt40";
const modules = process.env.BROWSER_MODULES ?? "build/browser";
/** Screenshots go here. */
export const shots = process.env.SHOTS ?? "out";
/** Milliseconds after which something that should come has not come. */
export const patience = 20000;

const { chromium } = createRequire(new URL(`file://${process.cwd()}/${modules}/`))("playwright-core");

/**
 * Starts a service with a simulated scanner on a free port.
 * @param {...string} options
 * @returns {Promise<{url: string, pid: number, stop: () => Promise<void>}>}
 */
export async function serve(...options) {
  const port = options.includes("--port") ? [] : ["--port", "0"];
  const child = spawn(tool, ["serve", "--simulate", ...port, ...options], { stdio: ["ignore", "pipe", "inherit"] });
  const ended = new Promise((resolve) => child.once("exit", (code) => resolve(code)));
  const first = createInterface({ input: child.stdout })[Symbol.asyncIterator]().next();
  const line = await Promise.race([first, ended.then((code) => ({ value: `ended with ${code}` }))]);
  const url = /http:\S+/.exec(line.value)?.[0];
  if (!url) throw new Error(`vt40 serve said: ${line.value}`);
  return {
    url,
    pid: child.pid,
    async stop() {
      child.kill("SIGINT");
      await ended;
    },
  };
}

/** @returns {Promise<import("playwright-core").Browser>} the system's browser, without a window */
export function browse() {
  mkdirSync(shots, { recursive: true });
  // The sandbox needs rights that a build machine's root does not give.
  const executablePath = process.env.CHROMIUM ?? "/usr/bin/chromium";
  return chromium.launch({ executablePath, args: ["--no-sandbox", "--disable-gpu"] });
}

/**
 * Opens the page in a context of its own, in English and light unless asked otherwise. What goes wrong in the
 * page, and all that its policy refuses, is kept in page.faults.
 * @param {import("playwright-core").Browser} browser
 * @param {string} url
 * @param {Object} [options] of the context
 */
export async function open(browser, url, options = {}) {
  const usual = { viewport: { width: 1440, height: 960 }, locale: "en-GB", colorScheme: "light" };
  const context = await browser.newContext({ ...usual, ...options });
  return newTab(context, url);
}

/** Opens the page once more in the same browser. */
export async function newTab(context, url) {
  const page = await context.newPage();
  page.setDefaultTimeout(patience);
  page.faults = [];
  page.on("websocket", (socket) => { page.socket = socket; });
  page.on("pageerror", (error) => page.faults.push(String(error)));
  page.on("console", (message) => {
    if (message.type() === "error" && /Content Security Policy|Uncaught/.test(message.text())) page.faults.push(message.text());
  });
  await page.goto(url);
  return page;
}

/** Waits for the state in large words. @param {RegExp|string} word */
export async function state(page, word) {
  await page.locator("#state-word", { hasText: word }).waitFor();
}

/** Chooses a mode and waits until it is on. */
export async function mode(page, name) {
  await page.locator(`#modes [data-mode="${name}"]`).click();
  await page.locator(`#modes [data-mode="${name}"][aria-pressed="true"]`).waitFor();
}

/** Plays a scene. */
export async function play(page, scene, seed = 1) {
  if (!(await page.locator("#scene").isVisible())) await page.locator("#simulator summary").click();
  await page.selectOption("#scene", scene);
  await page.fill("#scene-seed", String(seed));
  await page.locator("#play button").click();
  await page.locator("#scene-note", { hasText: `${scene}:${seed}` }).waitFor();
}

/** Keeps a screenshot for those who look at it. */
export function shot(page, name, options = {}) {
  return page.screenshot({ path: `${shots}/${name}.png`, ...options });
}

/** Where a point of the platen is in the window, in pixels. */
export async function spot(page, xMm, yMm) {
  const box = await page.locator("#platen").boundingBox();
  const scale = box.width / (81.28 + 10);
  return [box.x + (xMm + 5) * scale, box.y + (yMm + 5) * scale];
}

/**
 * Waits until the page has drawn so many frames, which it reports to the service.
 * @returns {Promise<number>} frames per second
 */
export function drawnFrames(page, count) {
  return new Promise((resolve, reject) => {
    const late = setTimeout(() => reject(new Error(`the page has not drawn ${count} frames`)), patience);
    const times = [];
    const sent = ({ payload }) => {
      if (!String(payload).includes("seen")) return;
      times.push(performance.now());
      if (times.length <= count) return;
      clearTimeout(late);
      page.socket.off("framesent", sent);
      resolve((1000 * count) / (times.at(-1) - times[0]));
    };
    page.socket.on("framesent", sent);
  });
}

/**
 * How many pixels of the live picture are dark, and where their middle is, in shares of its side. The whole
 * picture must be in sight.
 */
export function live(page) {
  return page.evaluate(() => {
    const canvas = document.getElementById("live");
    const side = Math.min(canvas.width, canvas.height);
    const [left, top] = [(canvas.width - side) >> 1, (canvas.height - side) >> 1];
    const { data } = canvas.getContext("2d").getImageData(left, top, side, side);
    let [count, x, y] = [0, 0, 0];
    for (let n = 0; n < side * side; ++n) {
      if (data[4 * n] >= 128) continue;
      ++count;
      x += n % side;
      y += Math.floor(n / side);
    }
    return { count, x: x / count / side, y: y / count / side };
  });
}

/** The same of what really lies on the platen. */
export function truth(page) {
  return page.evaluate(async () => {
    const bitmap = await createImageBitmap(await (await fetch("/api/simulator/truth.png")).blob());
    const side = bitmap.width;
    const canvas = new OffscreenCanvas(side, side);
    const context = canvas.getContext("2d");
    context.drawImage(bitmap, 0, 0);
    const { data } = context.getImageData(0, 0, side, side);
    let [count, x, y] = [0, 0, 0];
    for (let n = 0; n < side * side; ++n) {
      if (data[4 * n] >= 128) continue;
      ++count;
      x += n % side;
      y += Math.floor(n / side);
    }
    return { count, x: x / count / side, y: y / count / side };
  });
}
