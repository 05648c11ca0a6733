// Puts the page together: what the service reports goes to the parts that show it, and keys and buttons to
// those that act.
import { Claim } from "./claim.js";
import { Connection } from "./connection.js";
import { Device } from "./device.js";
import { $, make } from "./dom.js";
import { Plots } from "./plots.js";
import { Results } from "./results.js";
import { Shell } from "./shell.js";
import { Simulator } from "./simulator.js";
import { outcomeStays, stateOf } from "./state.js";
import { has, number, t } from "./texts.js";
import { LiveView, zooms } from "./view.js";

const modes = ["off", "preview", "full", "auto", "auto-live", "roll", "signature"];
const seen = { link: "connecting", status: null, facts: null, result: null };
let seconds = 0;
let outcomeTimer = 0;
let begins = false;

const connection = new Connection(new URLSearchParams(location.hash.slice(1)).get("token") ?? "");
const shell = new Shell(showTexts);
const attempt = (work) => Promise.resolve(work).catch((error) => shell.fail(error));
const view = new LiveView((frame) => connection.send({ seen: frame.number }));
const plots = new Plots($("plots"));
const results = new Results(connection, attempt);
const device = new Device(connection, attempt);
const simulator = new Simulator(connection, attempt);
const claim = new Claim(connection, attempt, showClaim);

for (const mode of modes)
  $("modes").append(make("button",
    { "type": "button", "data-mode": mode, "data-text": `mode.${mode}`, onclick: () => setMode(mode) }));

function setMode(mode) {
  // Who has chosen a mode has no need of the one that the page begins with.
  begins = false;
  seen.result = null;
  attempt(connection.call("PUT", "/api/mode", { mode }).then(showStatus));
}

function capture() {
  if (!$("capture").disabled) attempt(connection.call("POST", "/api/captures").then((result) => gotResult(result)));
}

/** The state in large words; a screen reader hears it when it changes. */
function showState() {
  const state = stateOf(seen);
  const more = has(state.more) ? t(state.more, state.values) : state.more;
  const box = $("state");
  box.dataset.tone = state.tone;
  if ($("state-word").textContent !== t(state.word)) $("state-word").textContent = t(state.word);
  if ($("state-more").textContent !== more) $("state-more").textContent = more;
}

function showClaim(mine) {
  for (const button of $("modes").children) button.disabled = !mine;
  showCapture();
  device.setClaim(mine);
  simulator.setClaim(mine);
}

function showCapture() {
  const automatic = seen.status?.mode.startsWith("auto");
  $("capture").disabled = !claim.mine || !seen.status?.connected || automatic;
  $("capture").title = automatic ? t("capture.auto") : "";
}

function showStatus(status) {
  const before = seen.status;
  seen.status = status;
  if (!status.connected || before?.mode !== status.mode) seen.facts = null;
  for (const button of $("modes").children) button.setAttribute("aria-pressed", String(button.dataset.mode === status.mode));
  // The choice follows the mode, so that what is laid down fits what is captured.
  if (before?.mode !== status.mode && status.mode === "roll") simulator.choose("roll");
  if (before?.mode !== status.mode && status.mode === "signature") simulator.choose("pen");
  if (["roll", "signature"].includes(before?.mode) && before.mode !== status.mode && !["roll", "signature"].includes(status.mode))
    simulator.choose("slap-right");
  $("serial").textContent = status.serial || "";
  device.choose(status.serial);
  $("simulated").hidden = !status.simulated;
  $("clients").textContent = status.clients > 1 ? t("link.clients", { clients: status.clients }) : "";
  $("version").textContent = [`vt40 ${status.version}`, status.scanLibrary?.version].filter(Boolean).join(" · ");
  device.simulated = status.simulated;
  simulator.show(status.simulated);
  if (status.simulated && before && before.connected !== status.connected) simulator.refresh();
  plots.configure(status.mode, status.limits);
  if (!status.connected || status.mode === "off") view.clear(status.connected ? "view.off" : "state.unplugged");
  showCapture();
  showState();
  begin();
}

function showFacts(facts) {
  seen.facts = facts;
  const pelsPerMetre = seen.status?.forms?.roll?.pelsPerMetre ?? 19685;
  view.setStrip(facts.kind === "roll" && facts.state === "rolling" ? facts : null);
  plots.add({ ...facts, width: facts.kind === "roll" ? (1000 * facts.width) / pelsPerMetre : undefined, ink: facts.ink?.pixels });
  // A finger that comes down ends what is said of the one before.
  if (facts.state === "rolling" || facts.ink?.pixels) seen.result = null;
  showState();
}

function gotResult(result) {
  // The answer to a call and the event say the same.
  if (seen.result?.id === result.id) return;
  const { kind, verdict } = result;
  results.add(result);
  if (kind === "signature") simulator.platen.wipe();
  seen.result = result;
  const words = verdict ? t(`verdict.${verdict.name}`) : "";
  $("said").textContent = t("results.new", { kind: t(`kind.${kind}`), verdict: words });
  clearTimeout(outcomeTimer);
  outcomeTimer = setTimeout(() => {
    seen.result = null;
    showState();
  }, outcomeStays);
  showState();
}

function showLink() {
  const text = seen.link === "closed" ? t("link.closed", { seconds }) : t(seen.link === "open" ? "link.open" : "link.connecting");
  $("link-text").textContent = text;
  $("link").dataset.state = seen.link;
  $("link-now").hidden = seen.link !== "closed";
}

async function opened() {
  // A network carries JPEG more easily than rows of grey values.
  const local = ["localhost", "127.0.0.1", "[::1]"].includes(location.hostname);
  connection.send({ format: local ? "grey" : "jpeg", scale: 1 });
  begins = await claim.introduce();
  await Promise.all([results.load(), device.load(), simulator.load()]);
  begin();
}

/** Whoever opens the page wants to see something, as soon as there is a scanner. */
function begin() {
  if (!begins || !seen.status?.connected) return;
  if (seen.status.mode === "off") setMode("auto");
  begins = false;
}

connection.addEventListener("state", (event) => {
  const { state } = event.detail;
  seconds = event.detail.seconds;
  if (state === "token") return shell.askToken(connection.token !== "", (token) => useToken(token));
  if (state === "refused") return shell.fail({ text: t("error.host"), advice: t("error.host.more") });
  // While the page tries again it still has no connection.
  if (!(state === "connecting" && seen.link === "closed")) seen.link = state;
  if (state === "closed") {
    seen.status = null;
    view.clear("state.lost");
    claim.disconnected();
  }
  if (state === "open") attempt(opened());
  showLink();
  showState();
});
connection.addEventListener("status", (event) => showStatus(event.detail));
connection.addEventListener("facts", (event) => showFacts(event.detail));
connection.addEventListener("frame", (event) => view.show(event.detail));
connection.addEventListener("result", (event) => gotResult(event.detail));
connection.addEventListener("error", (event) => shell.fail(event.detail.error));
connection.addEventListener("device", (event) => {
  device.show(event.detail);
  simulator.setLight(event.detail.light);
});

function useToken(token) {
  connection.token = token;
  history.replaceState(null, "", `#token=${encodeURIComponent(token)}`);
  connection.connect();
}

function showTexts() {
  claim.showTexts();
  device.showTexts();
  simulator.showTexts();
  results.showTexts();
  plots.redraw();
  view.redraw();
  showLink();
  if (seen.status) showStatus(seen.status);
  showState();
}

function showRates() {
  const { rate, latency } = view.meter.read(Date.now());
  $("rate").textContent = `${rate} /s`;
  $("latency").textContent = latency === null ? "–" : `${number(Math.max(0, latency))} ms`;
}

const keys = {
  "c": capture, "l": () => attempt(simulator.act()), "x": () => simulator.platen.enabled && simulator.platen.lift(),
  "t": () => shell.toggleTheme(), "g": () => shell.toggleLanguage(), "?": () => shell.help(),
};
document.addEventListener("keydown", (event) => {
  const typing = event.target.closest("input:not([type=range]):not([type=checkbox]), select, textarea, dialog");
  if (typing || event.ctrlKey || event.altKey || event.metaKey) return;
  const mode = modes[Number(event.key) - 1];
  if (mode && claim.mine) setMode(mode);
  else if (Object.hasOwn(zooms, event.key)) view.zoom(zooms[event.key]);
  else if (Object.hasOwn(keys, event.key.toLowerCase())) keys[event.key.toLowerCase()]();
});
for (const button of document.querySelectorAll("[data-zoom]"))
  button.addEventListener("click", () => view.zoom(zooms[button.dataset.zoom]));
$("capture").addEventListener("click", capture);
$("link-now").addEventListener("click", () => connection.connect());
window.addEventListener("online", () => connection.connect());
window.addEventListener("hashchange", () => location.reload());
setInterval(showRates, 250);

shell.begin();
connection.connect();
