// The strip of captured pictures, and one of them at full size with its facts and downloads.
import { $, make } from "./dom.js";
import { has, number, t } from "./texts.js";

/** Dots per inch of pels per metre. */
export function dotsPerInch(pelsPerMetre) {
  return Math.round(pelsPerMetre * 0.0254);
}

/** The name of a downloaded picture. */
export function fileName(result, picture) {
  return `${result.serial}-${result.id}-${picture.name}.png`;
}

/** The facts of a result in words, the verdict first. @returns {string[]} */
export function factsOf(result) {
  const [picture] = result.pictures;
  const facts = [];
  const verdict = `verdict.${result.verdict?.name}`;
  if (result.verdict) facts.push(has(verdict) ? t(verdict) : result.verdict.text);
  else if (result.done === false && result.mode !== "preview" && result.kind !== "full") facts.push(t("results.partial"));
  if (result.mode === "auto-live") facts.push(t("results.score", { score: number(result.score) }));
  if (typeof result.millimetres === "number") facts.push(`${number(result.millimetres, 1)} mm`);
  if (picture) facts.push(t("results.size", { ...picture, dpi: dotsPerInch(picture.pelsPerMetre) }));
  if (result.condition) facts.push(t("results.dirt", { condition: result.condition }));
  return facts;
}

export class Results {
  /**
   * @param {import("./connection.js").Connection} connection
   * @param {(work: Promise) => void} attempt shows the error of a call that failed
   */
  constructor(connection, attempt) {
    Object.assign(this, { connection, attempt });
    this.results = new Map();
    this.urls = new Map();
    this.strip = $("strip");
    this.dialog = $("picture");
    $("picture-delete").addEventListener("click", () => this.attempt(this.#delete()));
  }

  /** Fetches all results that the service has kept. */
  async load() {
    const { results } = await this.connection.call("GET", "/api/results");
    const ids = new Set(results.map((result) => result.id));
    for (const id of this.results.keys()) if (!ids.has(id)) this.#forget(id);
    for (const result of results.reverse()) this.add(result);
  }

  /** Puts a result in front of the others. @param {Object} result as the service reports it */
  add(result) {
    if (this.results.has(result.id)) return;
    this.results.set(result.id, result);
    this.strip.prepend(this.#card(result));
    $("strip-none").hidden = true;
    // The service keeps so many.
    for (const id of [...this.results.keys()].slice(0, -32)) this.#forget(id);
  }

  /** Says the strip anew in another language. */
  showTexts() {
    const cards = [...this.results.values()].reverse().map((result) => this.#card(result));
    this.strip.replaceChildren(...cards);
  }

  /** The address of a picture, which is fetched with the token that an address of its own could not carry. */
  async #url(picture) {
    if (!this.urls.has(picture.url)) this.urls.set(picture.url, URL.createObjectURL(await this.connection.blob(picture.url)));
    return this.urls.get(picture.url);
  }

  /** The smallest picture of a result shows what it is. */
  #card(result) {
    const small = result.pictures.reduce((least, one) => (one.width < least.width ? one : least));
    const image = make("img", { alt: t(`kind.${result.kind}`), width: small.width, height: small.height });
    this.#url(small).then((url) => { image.src = url; }, () => {});
    const [first, ...more] = factsOf(result);
    const tone = result.verdict ? (result.verdict.number === 0 ? "good" : "bad") : "plain";
    const label = `${t("results.open", { id: result.id })}: ${first}`;
    const card = make("button",
      { class: "card", type: "button", "aria-label": label, onclick: () => this.attempt(this.open(result.id)) },
      make("span", { class: "card-image" }, image),
      make("span", { class: "card-title" }, make("b", { textContent: t(`kind.${result.kind}`) }),
        make("time", { textContent: new Date(result.time).toLocaleTimeString(), dateTime: result.time })),
      make("span", { class: `card-fact ${tone}`, textContent: first }),
      make("span", { class: "card-more", textContent: more.join(" · ") }));
    const item = make("li", { "data-id": String(result.id) }, card);
    return item;
  }

  /** Shows a result at full size. @param {number} id */
  async open(id) {
    const result = this.results.get(id);
    this.opened = id;
    $("picture-title").textContent = `${t(`kind.${result.kind}`)} ${id}`;
    $("picture-facts").textContent = [result.serial, new Date(result.time).toLocaleString(), ...factsOf(result)].join(" · ");
    const urls = await Promise.all(result.pictures.map((picture) => this.#url(picture)));
    $("picture-image").src = urls[0];
    $("picture-image").alt = t(`kind.${result.kind}`);
    $("picture-downloads").replaceChildren(...result.pictures.map((picture, n) =>
      make("a", { class: "button", href: urls[n], download: fileName(result, picture),
        textContent: `${t("results.download")}: ${t(`picture.${picture.name}`)}, ${picture.width} × ${picture.height}` })));
    if (!this.dialog.open) this.dialog.showModal();
  }

  async #delete() {
    await this.connection.call("DELETE", `/api/results/${this.opened}`);
    this.dialog.close();
    this.#forget(this.opened);
  }

  #forget(id) {
    for (const picture of this.results.get(id)?.pictures ?? []) {
      if (this.urls.has(picture.url)) URL.revokeObjectURL(this.urls.get(picture.url));
      this.urls.delete(picture.url);
    }
    this.results.delete(id);
    this.strip.querySelector(`[data-id="${id}"]`)?.remove();
    $("strip-none").hidden = this.results.size > 0;
  }
}
