// What the page says, in English and German.

const ENGLISH = {
  open: "Open", openHint: "Open a photograph", undo: "Undo", redo: "Redo", compare: "Before and after",
  zoom: "100 %", fit: "Fit", zoomHint: "One pixel of the photograph on each of the screen's", save: "Save",
  welcome: "Light your photograph", drop: "Drop a photograph here, paste one, or",
  choose: "Choose a photograph", samples: "Or try one of these",
  privacy: "Your pictures never leave this device. The page lights them itself, and it cannot send them anywhere.",
  linked: "The link brought a lighting set-up. It is used for the photograph that you open.",
  landscape: "Landscape", portrait: "Marble head", "still-life": "Still life", texture: "Wall",
  styles: "Styles", lights: "Lights", surface: "Surface", relief: "Relief", stage: "Lit photograph",
  before: "Before", after: "After", divider: "Divider between before and after",
  spot: "Spotlight", omni: "Omni light", directional: "Directional light",
  add: "Add a light", remove: "Delete", copy: "Duplicate", mirror: "Mirror left to right", on: "Switched on",
  kind: "Kind of light", colour: "Colour", intensity: "Intensity", spread: "Spread", gloss: "Gloss",
  material: "Material", exposure: "Exposure", ambience: "Ambience", ambienceColour: "Colour of the ambient light",
  height: "Height", whiteIsHigh: "White is high", source: "Relief from", none: "None",
  auto: "The photograph", luminance: "Its brightness, as it is", map: "A height map", chooseMap: "Choose a map…",
  dropMap: "Or drop the map here: a grey picture of the same shape, white is high.",
  candle: "Candle", bulb: "Bulb", noon: "Noon", shade: "Shade",
  savePng: "Photograph as PNG", saveJpeg: "Photograph as JPEG", saveStyle: "Style (.json)",
  copyCommand: "Copy command", copyLink: "Copy link to this lighting",
  commandCopied: "The command is on the clipboard.", linkCopied: "The link is on the clipboard. It holds the lights, not the photograph.",
  lighting: "Lighting all of the photograph…", saved: "Saved {name}.", closed: "Close",
  unreadable: "{name} is no picture that this browser can read.", tooLarge: "{name} is larger than the page can light.",
  badStyle: "{name} is no style: {why}", otherShape: "{name} does not have the photograph's shape.", failed: "That failed: {why}",
  mostLights: "A picture has at most sixteen lights.", lastLight: "A picture has at least one light.",
  language: "Deutsch", lightHint: "Arrow keys move it, with Shift further; Delete removes it.",
  moveLight: "Move Light", shapeLight: "Shape Light", addLight: "Add Light", deleteLight: "Delete Light", changeLight: "Light",
  style: "Style", openStyle: "Open Style",
};

export type Word = keyof typeof ENGLISH;

const GERMAN: Record<Word, string> = {
  open: "Öffnen", openHint: "Ein Foto öffnen", undo: "Zurück", redo: "Wieder vor", compare: "Vorher und nachher",
  zoom: "100 %", fit: "Ganz", zoomHint: "Ein Pixel des Fotos auf jedem des Bildschirms", save: "Sichern",
  welcome: "Ins richtige Licht", drop: "Ein Foto hierher ziehen, einfügen, oder",
  choose: "Foto auswählen", samples: "Oder eines von diesen",
  privacy: "Bilder verlassen dieses Gerät nie. Die Seite beleuchtet sie selbst und kann sie nirgendwohin schicken.",
  linked: "Der Link brachte eine Beleuchtung mit. Sie gilt für das Foto, das geöffnet wird.",
  landscape: "Landschaft", portrait: "Marmorkopf", "still-life": "Stillleben", texture: "Mauer",
  styles: "Stile", lights: "Lichter", surface: "Oberfläche", relief: "Relief", stage: "Beleuchtetes Foto",
  before: "Vorher", after: "Nachher", divider: "Teiler zwischen vorher und nachher",
  spot: "Strahler", omni: "Rundumlicht", directional: "Gerichtetes Licht",
  add: "Licht hinzufügen", remove: "Löschen", copy: "Verdoppeln", mirror: "Seiten vertauschen", on: "Eingeschaltet",
  kind: "Art des Lichts", colour: "Farbe", intensity: "Stärke", spread: "Streuung", gloss: "Glanz",
  material: "Material", exposure: "Belichtung", ambience: "Grundlicht", ambienceColour: "Farbe des Grundlichts",
  height: "Höhe", whiteIsHigh: "Weiß ist hoch", source: "Relief aus", none: "Keines",
  auto: "Dem Foto", luminance: "Seiner Helligkeit, wie sie ist", map: "Einer Höhenkarte", chooseMap: "Karte auswählen…",
  dropMap: "Oder die Karte hierher ziehen: ein graues Bild derselben Form, Weiß ist hoch.",
  candle: "Kerze", bulb: "Glühlampe", noon: "Mittag", shade: "Schatten",
  savePng: "Foto als PNG", saveJpeg: "Foto als JPEG", saveStyle: "Stil (.json)",
  copyCommand: "Befehl kopieren", copyLink: "Link zu diesem Licht kopieren",
  commandCopied: "Der Befehl ist in der Zwischenablage.", linkCopied: "Der Link ist in der Zwischenablage. Er enthält die Lichter, nicht das Foto.",
  lighting: "Das ganze Foto wird beleuchtet…", saved: "{name} ist gesichert.", closed: "Schließen",
  unreadable: "{name} ist kein Bild, das dieser Browser lesen kann.", tooLarge: "{name} ist größer, als die Seite beleuchten kann.",
  badStyle: "{name} ist kein Stil: {why}", otherShape: "{name} hat nicht die Form des Fotos.", failed: "Das ging schief: {why}",
  mostLights: "Ein Bild hat höchstens sechzehn Lichter.", lastLight: "Ein Bild hat mindestens ein Licht.",
  language: "English", lightHint: "Pfeiltasten bewegen es, mit Umschalt weiter; Entf löscht es.",
  moveLight: "Licht bewegen", shapeLight: "Licht formen", addLight: "Licht hinzufügen", deleteLight: "Licht löschen", changeLight: "Licht",
  style: "Stil", openStyle: "Stil öffnen",
};

export let language: "en" | "de" = "en";

export function useLanguage(wanted: string | null) {
  const known = [wanted, ...navigator.languages].map((name) => name?.slice(0, 2));
  language = known.find((name) => name === "en" || name === "de") === "de" ? "de" : "en";
  document.documentElement.lang = language;
  for (const element of document.querySelectorAll<HTMLElement>("[data-text]"))
    element.textContent = say(element.dataset.text as Word);
  for (const element of document.querySelectorAll<HTMLElement>("[data-label]")) {
    element.setAttribute("aria-label", say(element.dataset.label as Word));
    if (element.matches("button, label")) element.title = say(element.dataset.label as Word);
  }
}

export function say(word: Word, put: Record<string, string> = {}): string {
  const text = (language === "de" ? GERMAN : ENGLISH)[word];
  return text.replace(/\{(\w+)\}/g, (_, name) => put[name] ?? "");
}
