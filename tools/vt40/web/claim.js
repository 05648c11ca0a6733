// Who holds the scanner: takes, asks for, hands over and releases the claim, and says whose it is.
import { $ } from "./dom.js";
import { t } from "./texts.js";

/** The name of this tab, which stays when it is loaded again; each new tab counts one further. */
export function tabName(session, shared) {
  let name = session.getItem("vt40.name");
  if (!name) {
    const count = (Number(shared.getItem("vt40.tabs")) || 0) + 1;
    shared.setItem("vt40.tabs", String(count));
    name = `Tab ${count}`;
    session.setItem("vt40.name", name);
  }
  return name;
}

export class Claim {
  /**
   * @param {import("./connection.js").Connection} connection
   * @param {(work: Promise) => void} attempt shows the error of a call that failed
   * @param {(mine: boolean) => void} changed
   */
  constructor(connection, attempt, changed) {
    Object.assign(this, { connection, attempt, changed });
    this.name = tabName(sessionStorage, localStorage);
    this.holder = null;
    this.asked = false;
    this.asker = null;
    connection.claim = sessionStorage.getItem("vt40.claim") ?? "";
    $("claim-do").addEventListener("click", () => attempt(this.act()));
    $("claim-hand").addEventListener("click", () => attempt(this.handOver()));
    $("claim-keep").addEventListener("click", () => this.#ask(null));
    connection.addEventListener("claim", (event) => this.#heard(event.detail));
    connection.addEventListener("claimAsked", (event) => this.#ask(event.detail.name));
  }

  /** @returns {boolean} whether this page holds the scanner */
  get mine() {
    return Boolean(this.connection.claim) && this.holder === this.name;
  }

  /**
   * Says who this page is after it has connected, and takes a scanner that nobody holds.
   * @returns {Promise<boolean>} whether it was taken
   */
  async introduce() {
    this.connection.send({ name: this.name });
    const { holder } = await this.connection.call("GET", "/api/status");
    if (holder === null) {
      await this.take();
      return true;
    }
    if (this.connection.claim && holder === this.name) this.connection.send({ claim: this.connection.claim });
    else this.#keep("");
    this.#show(holder);
    return false;
  }

  /** Shows nobody's claim while there is no service. */
  disconnected() {
    $("claim").hidden = true;
    this.changed(false);
  }

  /** Takes the scanner. */
  async take() {
    const { claim } = await this.connection.call("POST", "/api/claim", { name: this.name });
    this.#keep(claim);
    this.connection.send({ claim });
    this.#show(this.name);
  }

  /** What the button does: takes a free scanner, releases one's own, asks another holder. */
  async act() {
    if (this.mine) {
      await this.connection.call("DELETE", "/api/claim");
      this.#keep("");
      return this.#show(null);
    }
    if (this.holder === null) return this.take();
    await this.connection.call("POST", "/api/claim/ask", { name: this.name });
    this.asked = true;
    this.#show(this.holder);
  }

  async handOver() {
    const to = this.asker;
    this.#ask(null);
    await this.connection.call("POST", "/api/claim/hand-over", { to });
  }

  /** Says anew what was said in another language. */
  showTexts() {
    this.#show(this.holder);
    this.#ask(this.asker);
  }

  #heard({ holder, yours, claim }) {
    if (claim) {
      this.#keep(claim);
      this.connection.send({ claim });
    } else if (!yours && holder !== this.name) {
      this.#keep("");
    }
    this.#show(holder);
  }

  #keep(claim) {
    this.connection.claim = claim;
    sessionStorage.setItem("vt40.claim", claim);
  }

  #show(holder) {
    this.holder = holder;
    const whose = this.mine ? "mine" : holder === null ? "free" : "other";
    if (whose !== "other") this.asked = false;
    if (whose !== "mine") this.#ask(null);
    $("claim").hidden = !this.connection.isOpen;
    $("claim").dataset.whose = whose;
    $("claim-text").textContent = t(`claim.${whose}`, { name: holder ?? "" });
    const ask = this.asked ? "claim.asked" : "claim.ask";
    $("claim-do").textContent = t({ mine: "claim.release", free: "claim.take", other: ask }[whose]);
    $("claim-do").disabled = this.asked;
    this.changed(this.mine && this.connection.isOpen);
  }

  /** Shows that another page asks, or that none does any more. @param {string|null} name */
  #ask(name) {
    this.asker = name;
    $("claim-wanted").hidden = name === null;
    if (name !== null) $("claim-wanted-text").textContent = t("claim.wanted", { name });
  }
}
