// What frames the page: language, theme, help, the token's dialog, and errors in words.
import { $, make, themeChanged } from "./dom.js";
import { language, languages, setLanguage, t, translate } from "./texts.js";

const errorStays = 12000;

/** Keys and what they do, for the help; main.js and the canvases obey them. */
export const keyTable = [
  ["keys.page", [["1 – 7", "keys.mode"], ["C", "keys.capture"], ["+  −  0  =", "keys.zoom"], ["L", "keys.lay"],
    ["X", "keys.lift"], ["T", "keys.theme"], ["G", "keys.language"], ["?", "keys.help"]]],
  ["keys.onview", [["keys.arrows", "keys.view"]]],
  ["keys.onplaten", [["keys.space", "keys.next"], ["keys.arrows", "keys.move"], ["[  ]", "keys.turn"], [",  .", "keys.press"],
    ["keys.del", "keys.delete"]]],
];

/**
 * The language to begin with: what was chosen, or what the browser asks for.
 * @param {string|null} chosen
 * @param {readonly string[]} wanted
 */
export function firstLanguage(chosen, wanted) {
  if (languages.includes(chosen)) return chosen;
  const known = wanted.map((name) => name.slice(0, 2)).find((name) => languages.includes(name));
  return known ?? "en";
}

export class Shell {
  /**
   * @param {() => void} changed says anew what the page has said in another language, and draws it in another
   *     theme
   */
  constructor(changed) {
    this.changed = changed;
    this.dark = matchMedia("(prefers-color-scheme: dark)");
    this.dark.addEventListener("change", () => this.#theme(this.theme));
    this.theme = localStorage.getItem("vt40.theme");
    $("language").addEventListener("click", () => this.toggleLanguage());
    $("theme").addEventListener("click", () => this.toggleTheme());
    $("help-open").addEventListener("click", () => this.help());
    for (const button of document.querySelectorAll("dialog [data-close]"))
      button.addEventListener("click", () => button.closest("dialog").close());
    // A click beside a dialog closes it, as one expects.
    for (const dialog of document.querySelectorAll("dialog[data-light]"))
      dialog.addEventListener("click", (event) => event.target === dialog && dialog.close());
  }

  /** Shows the page in the language and theme that were chosen last. */
  begin() {
    this.#speak(firstLanguage(localStorage.getItem("vt40.language"), navigator.languages));
    this.#theme(this.theme);
  }

  toggleLanguage() {
    const next = languages[1 - languages.indexOf(language())];
    localStorage.setItem("vt40.language", next);
    this.#speak(next);
  }

  toggleTheme() {
    this.theme = this.isDark ? "light" : "dark";
    localStorage.setItem("vt40.theme", this.theme);
    this.#theme(this.theme);
  }

  get isDark() {
    return this.theme ? this.theme === "dark" : this.dark.matches;
  }

  help() {
    const rows = keyTable.flatMap(([title, keys]) => [
      make("h3", { textContent: t(title) }),
      make("dl", {}, ...keys.map(([key, meaning]) =>
        make("div", {}, make("dt", {}, make("kbd", { textContent: t(key) })), make("dd", { textContent: t(meaning) })))),
    ]);
    $("help-keys").replaceChildren(...rows);
    $("help").showModal();
  }

  /**
   * Shows an error with what to do.
   * @param {import("./connection.js").ServiceError} error
   */
  fail(error) {
    const own = { NO_ANSWER: ["error.network", "error.network.more"], CLAIM_NEEDED: ["claim.free", "claim.denied"] }[error.name];
    const [text, advice] = own ? own.map((key) => t(key)) : [error.text ?? error.message, error.advice ?? ""];
    const same = [...$("errors").children].find((one) => one.dataset.text === text);
    same?.remove();
    const box = make("div", { "class": "error", "data-text": text },
      make("div", {}, make("b", { textContent: text }), make("span", { textContent: advice })),
      make("button", { "type": "button", "class": "quiet", "aria-label": t("error.dismiss"), textContent: "×",
        onclick: () => box.remove() }));
    $("errors").append(box);
    setTimeout(() => box.remove(), errorStays);
  }

  /**
   * Asks for the token.
   * @param {boolean} wrong whether one was refused
   * @param {(token: string) => void} given
   */
  askToken(wrong, given) {
    const dialog = $("token");
    $("token-wrong").hidden = !wrong;
    $("token-form").onsubmit = (event) => {
      event.preventDefault();
      dialog.close();
      given($("token-input").value.trim());
    };
    if (!dialog.open) dialog.showModal();
  }

  #speak(name) {
    setLanguage(name);
    document.documentElement.lang = name;
    document.title = t("title");
    translate(document);
    this.changed();
  }

  #theme(theme) {
    if (theme) document.documentElement.dataset.theme = theme;
    else delete document.documentElement.dataset.theme;
    $("theme").setAttribute("aria-pressed", String(this.isDark));
    themeChanged();
    this.changed();
  }
}
