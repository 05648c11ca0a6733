// Small functions over the document: finding and making elements, and the page's colours for canvases.

/**
 * The element of an identifier; a missing one is a fault of the page.
 * @param {string} id
 * @returns {HTMLElement}
 */
export function $(id) {
  const element = document.getElementById(id);
  if (!element) throw new Error(`the page has no element "${id}"`);
  return element;
}

/**
 * Makes an element.
 * @param {string} name
 * @param {Object<string, *>} [properties] set as they are; "class", "data-…" and "aria-…" become attributes,
 *     "on…" listeners
 * @param {...(Node|string|null)} children
 * @returns {HTMLElement}
 */
export function make(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (/^(class|role|(data|aria)-.*)$/.test(key)) element.setAttribute(key, value);
    else if (key.startsWith("on")) element.addEventListener(key.slice(2), value);
    else element[key] = value;
  }
  element.append(...children.filter((child) => child !== null));
  return element;
}

let palette = null;

/**
 * A colour of the style sheet as a canvas takes it, for the theme that is shown.
 * @param {string} name of the custom property, without "--"
 * @returns {string}
 */
export function colour(name) {
  palette ??= new Map();
  if (!palette.has(name)) {
    // A custom property is not resolved before some real property uses it.
    const probe = document.body.appendChild(document.createElement("i"));
    probe.style.color = `var(--${name})`;
    palette.set(name, getComputedStyle(probe).color);
    probe.remove();
  }
  return palette.get(name);
}

/** Forgets the colours of the theme that was shown. */
export function themeChanged() {
  palette = null;
}

/**
 * Gives a canvas as many pixels as the screen has for it.
 * @param {HTMLCanvasElement} canvas
 * @returns {{context: CanvasRenderingContext2D, width: number, height: number, ratio: number}} sizes in CSS
 *     pixels
 */
export function fitCanvas(canvas) {
  const ratio = window.devicePixelRatio || 1;
  const width = canvas.clientWidth;
  const height = canvas.clientHeight;
  const [pixelsX, pixelsY] = [Math.round(width * ratio), Math.round(height * ratio)];
  if (canvas.width !== pixelsX || canvas.height !== pixelsY) {
    canvas.width = pixelsX;
    canvas.height = pixelsY;
  }
  const context = canvas.getContext("2d");
  context.setTransform(ratio, 0, 0, ratio, 0, 0);
  return { context, width, height, ratio };
}

/**
 * Calls a function before the next picture of the screen, once however often it is asked for.
 * @param {() => void} draw
 * @returns {() => void}
 */
export function oncePerFrame(draw) {
  let asked = false;
  return () => {
    if (asked) return;
    asked = true;
    requestAnimationFrame(() => {
      asked = false;
      draw();
    });
  };
}
