// All words of the page, in English and German, and the functions that look them up and put them into the
// page.

/** Key → [English, German]. A "{name}" is replaced by a value; both languages use the same ones. */
export const table = {
  "title": ["VT40 live view", "VT40 Live-Ansicht"],
  "simulated": ["simulated", "simuliert"],
  "simulated.hint": ["The pictures come from a simulated scanner.", "Die Bilder stammen von einem simulierten Scanner."],
  "language": ["Deutsch", "English"],
  "language.hint": ["Seite auf Deutsch zeigen", "Show the page in English"],
  "theme": ["Dark or light", "Dunkel oder hell"],
  "help": ["Help", "Hilfe"],
  "close": ["Close", "Schließen"],
  "skip": ["Skip to the live picture", "Zum Live-Bild springen"],

  "link.connecting": ["Connecting …", "Verbindung wird aufgebaut …"],
  "link.open": ["Connected", "Verbunden"],
  "link.closed": ["No service, next try in {seconds} s", "Kein Dienst, nächster Versuch in {seconds} s"],
  "link.now": ["Try now", "Jetzt versuchen"],
  "link.clients": ["{clients} watching", "{clients} Zuschauer"],

  "claim.free": ["Nobody holds the scanner", "Niemand hält den Scanner"],
  "claim.mine": ["You hold the scanner ({name})", "Sie halten den Scanner ({name})"],
  "claim.other": ["Held by {name}", "Gehalten von {name}"],
  "claim.take": ["Take", "Übernehmen"],
  "claim.release": ["Release", "Freigeben"],
  "claim.ask": ["Ask for it", "Anfragen"],
  "claim.asked": ["Asked …", "Angefragt …"],
  "claim.wanted": ["{name} asks for the scanner.", "{name} möchte den Scanner."],
  "claim.hand": ["Hand over", "Übergeben"],
  "claim.keep": ["Keep", "Behalten"],
  "claim.denied": ["Take the scanner first, or ask the tab that holds it.",
    "Übernehmen Sie zuerst den Scanner, oder fragen Sie den Tab, der ihn hält."],

  "mode": ["Capture mode", "Aufnahmemodus"],
  "mode.off": ["Off", "Aus"],
  "mode.preview": ["Preview", "Vorschau"],
  "mode.full": ["Full", "Voll"],
  "mode.auto": ["Automatic", "Automatik"],
  "mode.auto-live": ["Auto + liveness", "Auto + Echtheit"],
  "mode.roll": ["Roll", "Abrollen"],
  "mode.signature": ["Signature", "Unterschrift"],
  "capture": ["Capture", "Aufnehmen"],
  "capture.auto": ["In this mode the scanner captures by itself.", "In diesem Modus löst der Scanner selbst aus."],

  "state": ["State", "Zustand"],
  "state.connecting": ["Connecting", "Verbinde"],
  "state.lost": ["No connection", "Keine Verbindung"],
  "state.unplugged": ["Scanner unplugged", "Scanner abgezogen"],
  "state.unplugged.more": ["Plug it in; it is opened by itself.", "Stecken Sie ihn ein; er wird von selbst geöffnet."],
  "state.lost.more": ["The page connects again by itself. Is vt40 serve running?",
    "Die Seite verbindet sich von selbst wieder. Läuft vt40 serve?"],
  "state.off": ["Ready", "Bereit"],
  "state.off.more": ["Choose a mode, or press Capture for one picture.",
    "Wählen Sie einen Modus, oder drücken Sie Aufnehmen für ein Bild."],
  "state.full": ["Live", "Live"],
  "state.full.more": ["Full resolution, five pictures a second.", "Volle Auflösung, fünf Bilder je Sekunde."],
  "state.lay": ["Lay fingers down", "Finger auflegen"],
  "state.still": ["Hold still", "Stillhalten"],
  "state.ready": ["Still", "Ruhig"],
  "state.ready.more": ["Press Capture.", "Drücken Sie Aufnehmen."],
  "state.done": ["Captured", "Aufgenommen"],
  "state.lift": ["Lift", "Abheben"],
  "state.fake": ["Not a live finger?", "Kein echter Finger?"],
  "state.fake.more": ["Liveness score {score} lies below {limit}.", "Echtheitswert {score} liegt unter {limit}."],
  "state.roll": ["Roll a finger", "Finger abrollen"],
  "state.roll.more": ["From one edge of the nail to the other, without stopping.",
    "Von einer Nagelkante zur anderen, ohne anzuhalten."],
  "state.rolling": ["Keep rolling", "Weiterrollen"],
  "state.rolling.more": ["{millimetres} mm so far.", "Bisher {millimetres} mm."],
  "state.sign": ["Sign", "Unterschreiben"],
  "state.sign.more": ["Write with a pen on the glass.", "Schreiben Sie mit einem Stift auf das Glas."],
  "state.signing": ["Signing", "Unterschrift läuft"],
  "state.signing.more": ["It ends when the pen has rested for two seconds.",
    "Sie endet, wenn der Stift zwei Sekunden geruht hat."],
  "state.signed": ["Signed", "Unterschrieben"],

  "reason.empty": ["Nothing lies on the platen.", "Auf der Platte liegt nichts."],
  "reason.move": ["The fingers move.", "Die Finger bewegen sich."],
  "reason.area": ["The area of the fingers changes.", "Die Fläche der Finger ändert sich."],
  "reason.rest": ["The fingers have just come to rest.", "Die Finger sind gerade zur Ruhe gekommen."],
  "reason.lift": ["These fingers are captured; lift them.", "Diese Finger sind aufgenommen; abheben."],

  "verdict.KLV_SUCCESS": ["Clean roll", "Sauber gerollt"],
  "verdict.KLV_VERDICT_SLIPPED": ["Slipped", "Gerutscht"],
  "verdict.KLV_VERDICT_TOO_FAST": ["Too fast", "Zu schnell"],
  "verdict.KLV_VERDICT_TURNED_BACK": ["Turned back", "Zurückgerollt"],
  "verdict.KLV_VERDICT_TWISTED": ["Twisted", "Verdreht"],
  "verdict.KLV_VERDICT_TOO_SMALL": ["Rolled too little", "Zu wenig gerollt"],
  "verdict.good.more": ["{millimetres} mm wide.", "{millimetres} mm breit."],
  "verdict.bad.more": ["Roll the finger once more.", "Rollen Sie den Finger noch einmal."],

  "view": ["Live picture", "Live-Bild"],
  "view.hint": ["Wheel or pinch zooms, dragging moves the picture.",
    "Mausrad oder zwei Finger vergrößern, Ziehen verschiebt das Bild."],
  "view.fit": ["Fit", "Einpassen"],
  "view.one": ["1:1", "1:1"],
  "view.in": ["Zoom in", "Vergrößern"],
  "view.out": ["Zoom out", "Verkleinern"],
  "view.none": ["No picture yet", "Noch kein Bild"],
  "view.off": ["The light is off", "Das Licht ist aus"],
  "view.rate": ["Frame rate", "Bildrate"],
  "view.latency": ["Latency", "Verzögerung"],
  "view.rate.hint": ["Pictures drawn in the last second", "Gezeichnete Bilder in der letzten Sekunde"],
  "view.latency.hint": ["From the scan library's answer to the screen", "Von der Antwort der Bibliothek bis zum Bildschirm"],

  "plots": ["Why it fires, or not", "Warum es auslöst, oder nicht"],
  "plot.fingerPixels": ["Finger pixels", "Fingerpixel"],
  "plot.motion": ["Motion", "Bewegung"],
  "plot.condition": ["Dirt", "Schmutz"],
  "plot.score": ["Liveness score", "Echtheitswert"],
  "plot.width": ["Rolled width, mm", "Rollbreite, mm"],
  "plot.ink": ["Ink pixels", "Tintenpixel"],
  "plot.above": ["fires above {limit}", "löst aus über {limit}"],
  "plot.below": ["fires up to {limit}", "löst aus bis {limit}"],
  "plot.reading": ["{name}: {value}", "{name}: {value}"],

  "results": ["Captured pictures", "Aufgenommene Bilder"],
  "results.none": ["Captured pictures appear here.", "Hier erscheinen aufgenommene Bilder."],
  "results.open": ["Open picture {id}", "Bild {id} öffnen"],
  "results.delete": ["Delete", "Löschen"],
  "results.download": ["Download", "Herunterladen"],
  "results.size": ["{width} × {height}, {dpi} dpi", "{width} × {height}, {dpi} dpi"],
  "results.score": ["score {score}", "Wert {score}"],
  "results.dirt": ["dirt {condition}", "Schmutz {condition}"],
  "results.partial": ["not finished", "nicht beendet"],
  "results.new": ["New picture: {kind}. {verdict}", "Neues Bild: {kind}. {verdict}"],
  "kind.full": ["Fingers", "Finger"],
  "kind.roll": ["Rolled print", "Abgerollter Abdruck"],
  "kind.signature": ["Signature", "Unterschrift"],
  "picture.full": ["full", "voll"],
  "picture.preview": ["preview", "Vorschau"],
  "picture.roll": ["print", "Abdruck"],
  "picture.signature": ["signature", "Unterschrift"],

  "platen": ["Simulated platen", "Simulierte Platte"],
  "platen.canvas": ["Platen from above, {count} fingers", "Platte von oben, {count} Finger"],
  "platen.hint.hand": ["Double-click lays fingers down. Drag them; the wheel presses, Shift and wheel turns.",
    "Doppelklick legt Finger auf. Ziehen bewegt, das Mausrad drückt, Umschalt und Mausrad dreht."],
  "platen.hint.roll": ["Press inside the frame and drag sideways: the finger rolls. Release lifts it.",
    "Im Rahmen drücken und seitwärts ziehen: der Finger rollt. Loslassen hebt ihn ab."],
  "platen.hint.pen": ["Write on the platen with the mouse.", "Schreiben Sie mit der Maus auf die Platte."],
  "platen.hint.dirt": ["Click drops a speck, dragging smears.", "Klicken setzt einen Fleck, Ziehen schmiert."],
  "platen.scene": ["The scene “{scene}” is on. What you lay down replaces it.",
    "Die Szene „{scene}“ läuft. Was Sie auflegen, tritt an ihre Stelle."],
  "platen.claim": ["Take the scanner to move fingers.", "Übernehmen Sie den Scanner, um Finger zu bewegen."],
  "platen.what": ["What to lay down", "Was aufgelegt wird"],
  "what.slap-right": ["Right hand", "Rechte Hand"],
  "what.slap-left": ["Left hand", "Linke Hand"],
  "what.thumbs": ["Two thumbs", "Zwei Daumen"],
  "what.finger": ["One finger", "Ein Finger"],
  "what.roll": ["Rolling finger", "Rollender Finger"],
  "what.pen": ["Pen", "Stift"],
  "what.dirt": ["Dirt", "Schmutz"],
  "platen.lay": ["Lay down", "Auflegen"],
  "platen.rollit": ["Roll it", "Abrollen"],
  "platen.signit": ["Sign for me", "Für mich unterschreiben"],
  "platen.lift": ["Lift all", "Alles abheben"],
  "platen.clean": ["Clean", "Reinigen"],
  "platen.together": ["Hand moves as one", "Hand bewegt sich als Ganzes"],
  "finger.none": ["Choose a finger on the platen to press, turn or change it.",
    "Wählen Sie einen Finger auf der Platte, um ihn zu drücken, zu drehen oder zu ändern."],
  "finger": ["Chosen finger", "Gewählter Finger"],
  "finger.pressure": ["Pressure", "Druck"],
  "finger.angle": ["Turn", "Drehung"],
  "finger.dryness": ["Dryness", "Trockenheit"],
  "finger.seed": ["Print seed", "Abdruck-Startwert"],
  "finger.pattern": ["Pattern", "Muster"],
  "finger.material": ["Material", "Material"],
  "finger.lift": ["Lift finger", "Finger abheben"],
  "pattern.left-loop": ["Left loop", "Linke Schleife"],
  "pattern.right-loop": ["Right loop", "Rechte Schleife"],
  "pattern.whorl": ["Whorl", "Wirbel"],
  "pattern.double-loop": ["Double loop", "Doppelschleife"],
  "pattern.arch": ["Arch", "Bogen"],
  "pattern.tented-arch": ["Tented arch", "Zeltbogen"],
  "material.skin": ["Skin", "Haut"],
  "material.soft-cast": ["Soft cast", "Weicher Abguss"],
  "material.flat-cast": ["Flat cast", "Flacher Abguss"],
  "material.halftone": ["Halftone print", "Rasterdruck"],
  "scene": ["Scene", "Szene"],
  "scene.seed": ["Seed", "Startwert"],
  "scene.play": ["Play", "Abspielen"],
  "room": ["Room light", "Raumlicht"],
  "noise": ["Noise", "Rauschen"],
  "plug": ["Plug in", "Einstecken"],
  "unplug": ["Unplug", "Abziehen"],
  "fault": ["Fault", "Fehler"],
  "fault.late": ["One late frame (1 s)", "Ein spätes Bild (1 s)"],
  "fault.lost": ["Next frame fails", "Nächstes Bild schlägt fehl"],
  "fault.mode": ["Next mode change fails", "Nächster Moduswechsel schlägt fehl"],
  "fault.clear": ["No more faults", "Keine Fehler mehr"],
  "fault.do": ["Inject", "Auslösen"],
  "world": ["Scene, room and faults", "Szene, Raum und Fehler"],

  "device": ["Scanner", "Scanner"],
  "device.leds": ["Status LEDs", "Status-LEDs"],
  "device.led": ["LED {index}: state {state}", "LED {index}: Zustand {state}"],
  "device.display": ["Display", "Anzeige"],
  "device.line1": ["First line", "Erste Zeile"],
  "device.line2": ["Second line", "Zweite Zeile"],
  "device.show": ["Show", "Anzeigen"],
  "device.beep": ["Beep", "Piepsen"],
  "device.beeped": ["The scanner beeps", "Der Scanner piepst"],
  "device.light": ["Platen light", "Plattenlicht"],
  "device.on": ["on", "an"],
  "device.off": ["off", "aus"],
  "device.beeps": ["Beeps: {count}", "Piepser: {count}"],

  "token": ["Access token", "Zugangswort"],
  "token.more": ["This service asks for a token. It stands in the address that vt40 serve printed, after “#token=”.",
    "Dieser Dienst verlangt ein Zugangswort. Es steht in der Adresse, die vt40 serve ausgegeben hat, nach „#token=“."],
  "token.wrong": ["The service refused this token.", "Der Dienst hat dieses Zugangswort abgelehnt."],
  "token.send": ["Open", "Öffnen"],

  "error.network": ["The service does not answer.", "Der Dienst antwortet nicht."],
  "error.network.more": ["Start vt40 serve again; the page connects by itself.",
    "Starten Sie vt40 serve wieder; die Seite verbindet sich von selbst."],
  "error.host": ["The service refuses this address.", "Der Dienst lehnt diese Adresse ab."],
  "error.host.more": ["Open the address that vt40 serve printed.", "Öffnen Sie die Adresse, die vt40 serve ausgegeben hat."],
  "error.dismiss": ["Dismiss message", "Meldung schließen"],

  "keys": ["Keys", "Tasten"],
  "keys.mode": ["off, preview, full, automatic, with liveness, roll, signature",
    "aus, Vorschau, voll, Automatik, mit Echtheit, Abrollen, Unterschrift"],
  "keys.capture": ["capture", "aufnehmen"],
  "keys.zoom": ["zoom in, out, fit, 1:1", "vergrößern, verkleinern, einpassen, 1:1"],
  "keys.lay": ["lay down, roll or sign with what is chosen", "auflegen, abrollen oder unterschreiben, was gewählt ist"],
  "keys.lift": ["lift all", "alles abheben"],
  "keys.next": ["choose the next finger", "nächsten Finger wählen"],
  "keys.move": ["move the chosen finger (Shift: finely)", "gewählten Finger bewegen (Umschalt: fein)"],
  "keys.turn": ["turn the chosen finger", "gewählten Finger drehen"],
  "keys.press": ["press less, more", "weniger, mehr drücken"],
  "keys.delete": ["lift the chosen finger", "gewählten Finger abheben"],
  "keys.view": ["move the picture", "Bild verschieben"],
  "keys.theme": ["dark or light", "dunkel oder hell"],
  "keys.language": ["English or German", "Englisch oder Deutsch"],
  "keys.help": ["this help", "diese Hilfe"],
  "keys.page": ["Everywhere", "Überall"],
  "keys.onview": ["On the live picture", "Auf dem Live-Bild"],
  "keys.onplaten": ["On the platen", "Auf der Platte"],
  "keys.arrows": ["Arrow keys", "Pfeiltasten"],
  "keys.del": ["Delete", "Entf"],
  "keys.space": ["Space", "Leertaste"],
};

export const languages = ["en", "de"];
let current = 0;

/**
 * Chooses the language of all texts from now on.
 * @param {string} language "en" or "de"; anything else is English
 */
export function setLanguage(language) {
  current = Math.max(0, languages.indexOf(language));
}

/** @returns {string} "en" or "de" */
export function language() {
  return languages[current];
}

/**
 * The text of a key in the chosen language; an unknown key is its own text, so that a fault is seen and
 * breaks nothing.
 * @param {string} key
 * @param {Object<string, string|number>} [values] what stands for "{name}"
 * @returns {string}
 */
export function t(key, values = {}) {
  const row = Object.hasOwn(table, key) ? table[key] : null;
  return (row ? row[current] : key).replace(/\{(\w+)\}/g, (whole, name) => String(values[name] ?? whole));
}

/** @returns {boolean} whether there is a text of this key */
export function has(key) {
  return Object.hasOwn(table, key);
}

/**
 * A number with the separators of the chosen language.
 * @param {number} value
 * @param {number} [digits] after the point
 */
export function number(value, digits = 0) {
  return value.toLocaleString(language(), { maximumFractionDigits: digits, minimumFractionDigits: digits });
}

/**
 * Puts the texts into all elements that name a key: data-text for the content, data-label for screen readers
 * and data-hint for the tool tip.
 * @param {ParentNode} root
 */
export function translate(root) {
  for (const element of root.querySelectorAll("[data-text]")) element.textContent = t(element.dataset.text);
  for (const element of root.querySelectorAll("[data-label]")) element.setAttribute("aria-label", t(element.dataset.label));
  for (const element of root.querySelectorAll("[data-hint]")) element.title = t(element.dataset.hint);
}
