// Decides what the state in large words is, from what the service reports; knows no document.

const reasons = {
  "nothing lies on the platen": "reason.empty",
  "the fingers move": "reason.move",
  "the area of the fingers changes": "reason.area",
  "the fingers have just come to rest": "reason.rest",
  "these fingers are captured; lift them": "reason.lift",
};

/** Milliseconds for which a verdict or a finished signature stays. */
export const outcomeStays = 4000;

/**
 * @typedef {Object} State
 * @property {string} word key of the text
 * @property {"idle"|"act"|"wait"|"good"|"bad"} tone
 * @property {string} more key of a text that says more, or the text itself
 * @property {Object<string, string|number>} values of that text
 */

/** @returns {State} */
function state(word, tone, more = "", values = {}) {
  return { word, tone, more, values };
}

/**
 * The key of a reason that the service gives, or its text when it is a new one.
 * @param {string} reason
 */
export function reasonKey(reason) {
  return reasons[reason] ?? reason ?? "";
}

function fingers(mode, facts, limits) {
  const reason = reasonKey(facts?.reason);
  switch (facts?.state) {
    case "finger": return state("state.still", "wait", reason);
    case "hold still":
      return mode === "preview" ? state("state.ready", "good", "state.ready.more") : state("state.still", "wait", reason);
    case "done":
    case "lift":
      if (mode === "auto-live" && limits && facts.score < limits.minScore)
        return state("state.fake", "bad", "state.fake.more", { score: Math.round(facts.score), limit: limits.minScore });
      return facts.state === "done" ? state("state.done", "good") : state("state.lift", "good", "reason.lift");
    default: return state("state.lay", "act", "reason.empty");
  }
}

function roll(facts, result, forms) {
  if (facts?.state === "rolling") {
    const millimetres = (1000 * facts.width) / (forms?.roll?.pelsPerMetre ?? 19685);
    return state("state.rolling", "wait", "state.rolling.more", { millimetres: millimetres.toFixed(1) });
  }
  if (result?.kind !== "roll" || !result.verdict) return state("state.roll", "act", "state.roll.more");
  const good = result.verdict.number === 0;
  return state(`verdict.${result.verdict.name}`, good ? "good" : "bad", good ? "verdict.good.more" : "verdict.bad.more",
    { millimetres: result.millimetres?.toFixed(1) });
}

function signature(facts, result) {
  if (facts?.ink?.pixels) return state("state.signing", "wait", "state.signing.more");
  return result?.kind === "signature" ? state("state.signed", "good") : state("state.sign", "act", "state.sign.more");
}

/**
 * @param {Object} seen
 * @param {string} seen.link "open" when the service is connected
 * @param {Object|null} seen.status as the service reports it
 * @param {Object|null} seen.facts of the last frame
 * @param {Object|null} seen.result the last one, while it is fresh
 * @returns {State}
 */
export function stateOf({ link, status, facts, result }) {
  if (link === "closed") return state("state.lost", "bad", "state.lost.more");
  if (link !== "open" || !status) return state("state.connecting", "idle");
  if (!status.connected) return state("state.unplugged", "bad", "state.unplugged.more");
  switch (status.mode) {
    case "off": return result ? state("state.done", "good") : state("state.off", "idle", "state.off.more");
    case "full": return result ? state("state.done", "good") : state("state.full", "idle", "state.full.more");
    case "roll": return roll(facts, result, status.forms);
    case "signature": return signature(facts, result);
    case "preview": return result ? state("state.done", "good") : fingers("preview", facts, status.limits);
    default: return fingers(status.mode, facts, status.limits);
  }
}
