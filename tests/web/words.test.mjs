// Words and markup of the page: both languages are whole, and what the modules look up is there.
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { test } from "node:test";

import { tabName } from "../../tools/vt40/web/claim.js";
import { displayLine } from "../../tools/vt40/web/device.js";
import { plotsOf } from "../../tools/vt40/web/plots.js";
import { factsOf } from "../../tools/vt40/web/results.js";
import { firstLanguage, keyTable } from "../../tools/vt40/web/shell.js";
import { stateOf } from "../../tools/vt40/web/state.js";
import { has, setLanguage, t, table } from "../../tools/vt40/web/texts.js";

const folder = new URL("../../tools/vt40/web/", import.meta.url);
const html = readFileSync(new URL("index.html", folder), "utf8");
const scripts = readdirSync(folder).filter((name) => name.endsWith(".js"))
  .map((name) => [name, readFileSync(new URL(name, folder), "utf8")]);
const found = (text, pattern) => [...text.matchAll(pattern)].map((match) => match[1]);

test("each text is there in both languages, with the same values in it", () => {
  for (const [key, row] of Object.entries(table)) {
    assert.equal(row.length, 2, key);
    assert.ok(row.every((text) => text.trim() !== ""), key);
    assert.deepEqual(...row.map((text) => found(text, /\{(\w+)\}/g).sort()), key);
  }
});

test("each text that is looked up exists, and each that exists is looked up", () => {
  const all = html + scripts.filter(([name]) => name !== "texts.js").map(([, text]) => text).join("\n");
  const asked = [...found(html, /data-(?:text|label|hint)="([^"]+)"/g), ...found(all, /\bt\("([^"$]+)"/g)];
  for (const key of asked) assert.ok(has(key), key);
  // Keys that are put together have these beginnings.
  const built = /^(mode|verdict|kind|picture|plot|what|fault|claim|link|state|keys|reason|platen\.hint)\./;
  for (const key of Object.keys(table)) assert.ok(built.test(key) || all.includes(`"${key}"`), `${key} is never said`);
  for (const [title, keys] of keyTable) assert.ok([title, ...keys.map(([, meaning]) => meaning)].every(has), title);
  for (const names of Object.values(plotsOf)) assert.ok(names.every((name) => has(`plot.${name}`)));
});

test("a text takes its values, and an unknown one is shown by its key", () => {
  setLanguage("de");
  assert.equal(t("claim.other", { name: "$& {x}" }), "Gehalten von $& {x}");
  setLanguage("klingon");
  assert.equal(t("claim.other", {}), "Held by {name}");
  assert.equal(t("constructor"), "constructor");
});

test("elements and modules that are asked for exist, and nothing stands inline", () => {
  const ids = found(html, /\bid="([^"]+)"/g);
  assert.equal(new Set(ids).size, ids.length, "an identifier stands twice");
  for (const [name, text] of scripts) {
    for (const id of found(text, /\$\("([^"]+)"\)/g)) assert.ok(ids.includes(id), `${name}: ${id}`);
    for (const module of found(text, /from "\.\/([^"]+)"/g))
      assert.ok(scripts.some(([other]) => other === module), `${name}: ${module}`);
    assert.match(text, /^\/\/ [A-Z]/, `${name} says what it is for`);
    assert.doesNotMatch(text, /innerHTML|insertAdjacentHTML|document\.write|eval\(/, name);
  }
  assert.doesNotMatch(html, /\son\w+=|\sstyle=|<style|<script(?![^>]*\ssrc=)|https?:/);
});

/** What the state says with these facts; "word tone". */
function said(seen) {
  const { word, tone, more } = stateOf({ link: "open", facts: null, result: null, ...seen });
  assert.ok(has(word), word);
  assert.ok(more === "" || has(more) || more.includes(" "), more);
  return `${word} ${tone}`;
}

const running = (mode, facts, result = null) =>
  said({ status: { connected: true, mode, limits: { minScore: 50 } }, facts, result });

test("the state in large words follows what the scanner reports", () => {
  assert.equal(said({ link: "closed", status: { connected: true, mode: "auto" } }), "state.lost bad");
  assert.equal(said({ status: { connected: false, mode: "auto" } }), "state.unplugged bad");
  assert.equal(running("auto", null), "state.lay act");
  assert.equal(running("auto", { state: "finger", reason: "the fingers move" }), "state.still wait");
  assert.equal(running("auto", { state: "finger", reason: "some new reason" }), "state.still wait");
  assert.equal(running("auto", { state: "hold still", reason: "" }), "state.still wait");
  assert.equal(running("preview", { state: "hold still", reason: "" }), "state.ready good");
  assert.equal(running("auto", { state: "done" }), "state.done good");
  assert.equal(running("auto-live", { state: "lift", score: 80 }), "state.lift good");
  assert.equal(running("auto-live", { state: "lift", score: 8 }), "state.fake bad");
  assert.equal(running("roll", { state: "no finger" }), "state.roll act");
  assert.equal(running("roll", { state: "rolling", width: 100 }), "state.rolling wait");
  const slipped = { kind: "roll", verdict: { number: -801, name: "KLV_VERDICT_SLIPPED" } };
  assert.equal(running("roll", { state: "no finger" }, slipped), "verdict.KLV_VERDICT_SLIPPED bad");
  assert.equal(running("roll", { state: "rolling", width: 5 }, slipped), "state.rolling wait");
  assert.equal(running("signature", { ink: { pixels: 3 } }), "state.signing wait");
  assert.equal(running("signature", { ink: { pixels: 0 } }, { kind: "signature" }), "state.signed good");
  assert.equal(running("off", null), "state.off idle");
});

test("a picture's facts begin with the verdict", () => {
  setLanguage("en");
  const pictures = [{ name: "roll", width: 800, height: 800, pelsPerMetre: 19685 }];
  const verdict = { number: -802, name: "KLV_VERDICT_TOO_FAST", text: "rolled too fast" };
  assert.deepEqual(factsOf({ kind: "roll", mode: "roll", done: true, millimetres: 21.34, condition: 0, verdict, pictures }),
    ["Too fast", "21.3 mm", "800 × 800, 500 dpi"]);
  assert.equal(factsOf({ kind: "roll", mode: "roll", done: false, pictures })[0], "not finished");
  assert.equal(factsOf({ kind: "roll", verdict: { name: "NEW", text: "said anew" }, pictures })[0], "said anew");
});

test("the language is what was chosen, or what the browser asks for first", () => {
  assert.equal(firstLanguage("de", ["en"]), "de");
  assert.equal(firstLanguage(null, ["fr-FR", "de-AT", "en"]), "de");
  assert.equal(firstLanguage("xx", ["fr"]), "en");
});

test("tabs count on, and a tab that is loaded again keeps its name", () => {
  const storage = () => {
    const kept = new Map();
    return { getItem: (key) => kept.get(key) ?? null, setItem: (key, value) => kept.set(key, value) };
  };
  const [shared, first] = [storage(), storage()];
  assert.deepEqual([tabName(first, shared), tabName(first, shared), tabName(storage(), shared)], ["Tab 1", "Tab 1", "Tab 2"]);
});

test("a line of the display has sixteen characters that it can show", () => {
  assert.equal(displayLine("Daumen löst"), "Daumen l?st     ");
  assert.equal(displayLine("x".repeat(40)).length, 16);
});
