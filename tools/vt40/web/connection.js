// Talks to the service: calls over HTTP, and events and frames over one WebSocket that comes back by itself.
import { parseFrame } from "./frames.js";

const longestWait = 8000;

/**
 * Milliseconds until the next attempt after so many that failed one after the other.
 * @param {number} failures
 */
export function backOff(failures) {
  return Math.min(longestWait, 500 * 2 ** Math.min(failures, 10));
}

/**
 * A refusal of the service, or none of an answer: number, name, text and advice, with the HTTP status (0: no
 * answer).
 */
export class ServiceError extends Error {
  constructor(status, error) {
    super(error.text);
    Object.assign(this, { status, number: error.number ?? null, name: error.name, text: error.text, advice: error.advice });
  }
}

/**
 * Events: "state" with detail {state: "connecting"|"open"|"closed"|"token"|"refused", seconds}, "frame" with
 * a Frame, and one for each event of the service, under its name and with its data.
 */
export class Connection extends EventTarget {
  /** @param {string} token "" for a service without one */
  constructor(token = "") {
    super();
    this.token = token;
    this.claim = "";
    this.socket = null;
    this.failures = 0;
    this.timer = 0;
  }

  /** Connects, and again after each loss, until the service refuses this page. */
  async connect() {
    clearTimeout(this.timer);
    if (this.socket) return;
    this.#say("connecting");
    try {
      // A WebSocket does not say why it was refused, a call does.
      await this.call("GET", "/api/status");
    } catch (error) {
      if (error.status === 401) return this.#say("token");
      if (error.status === 403) return this.#say("refused");
      return this.#again();
    }
    if (this.socket) return;
    const address = location.origin.replace(/^http/, "ws") + "/api/events";
    this.socket = this.token ? new WebSocket(address, ["vt40", `token.${this.token}`]) : new WebSocket(address);
    this.socket.binaryType = "arraybuffer";
    this.socket.onopen = () => {
      this.failures = 0;
      this.#say("open");
    };
    this.socket.onmessage = (message) => this.#receive(message.data);
    this.socket.onclose = () => {
      this.socket = null;
      this.#again();
    };
  }

  /** @returns {boolean} */
  get isOpen() {
    return this.socket?.readyState === WebSocket.OPEN;
  }

  /**
   * Sends a message; without a connection it is dropped, since the page says everything anew when there is
   * one.
   * @param {Object} message
   */
  send(message) {
    if (this.isOpen) this.socket.send(JSON.stringify(message));
  }

  /**
   * Calls the service. Throws a ServiceError.
   * @param {"GET"|"PUT"|"POST"|"DELETE"} method
   * @param {string} path
   * @param {Object} [body] of a changing call
   * @returns {Promise<Object>}
   */
  async call(method, path, body = {}) {
    const headers = this.#headers();
    const options = { method, headers, cache: "no-store" };
    if (method !== "GET") {
      headers["Content-Type"] = "application/json";
      if (this.claim) headers.Claim = this.claim;
      options.body = JSON.stringify(body);
    }
    const answer = await this.#fetch(path, options);
    const text = await answer.text();
    return text ? JSON.parse(text) : {};
  }

  /**
   * Fetches a picture. Throws a ServiceError.
   * @param {string} path
   * @returns {Promise<Blob>}
   */
  async blob(path) {
    return (await this.#fetch(path, { headers: this.#headers(), cache: "no-store" })).blob();
  }

  #headers() {
    return this.token ? { Authorization: `Bearer ${this.token}` } : {};
  }

  async #fetch(path, options) {
    let answer;
    try {
      answer = await fetch(path, options);
    } catch {
      throw new ServiceError(0, { name: "NO_ANSWER", text: "", advice: "" });
    }
    if (answer.ok) return answer;
    const unknown = { name: "HTTP", text: `${answer.status} ${answer.statusText}`, advice: "" };
    const body = await answer.json().catch(() => ({}));
    throw new ServiceError(answer.status, body.error ?? unknown);
  }

  /** A message that cannot be read is reported like an error of the service; the next one may be good. */
  #receive(data) {
    try {
      const frame = data instanceof ArrayBuffer ? parseFrame(data) : null;
      const message = frame ? { event: "frame" } : JSON.parse(data);
      this.dispatchEvent(new CustomEvent(message.event, { detail: frame ?? message }));
    } catch (error) {
      this.dispatchEvent(new CustomEvent("error", { detail: { error: { name: "MESSAGE", text: error.message, advice: "" } } }));
    }
  }

  #again() {
    const wait = backOff(this.failures++);
    this.#say("closed", Math.ceil(wait / 1000));
    this.timer = setTimeout(() => this.connect(), wait);
  }

  #say(state, seconds = 0) {
    this.dispatchEvent(new CustomEvent("state", { detail: { state, seconds } }));
  }
}
