// The page: one picture, its recipe, and who shows and changes it.

import { find, icon, make } from "./elements.ts";
import { Handles } from "./handles.ts";
import { History } from "./history.ts";
import { ICONS } from "./icons.ts";
import { Lighter } from "./lighter.ts";
import { Lights } from "./lights.ts";
import { Panel, withRelief } from "./panel.ts";
import { Picture, UnreadablePicture } from "./picture.ts";
import { fragmentOf, jsonOf, jsonOfFragment, normalised, shellWord, withStyle, type Recipe } from "./recipe.ts";
import { Stage } from "./stage.ts";
import { Styles } from "./styles.ts";
import { language, say, useLanguage, type Word } from "./texts.ts";

const FIRST_STYLE = "Evening Lamp";
const SAMPLES = ["still-life", "portrait", "landscape", "texture"];
const JPEG_QUALITY = 0.95;
const SHAPE = 0.01; // how far a map's sides may be from the picture's shape

let lighter: Lighter;
let stage: Stage;
let lights: Lights;
let panel: Panel;
let styles: Styles;
let history: History<Recipe>;
let picture: Picture | null = null;
let map: Picture | null = null;
let attempted: Recipe | null = null;
let linked = false;

const recipe = () => attempted ?? history.now;

function tell(text: string) {
  const status = find<HTMLElement>("#status");
  status.textContent = text;
  status.hidden = text === "";
  if (text !== "") setTimeout(() => status.textContent === text && (status.hidden = true), 6000);
}
const tellFailure = (error: unknown) => tell(say("failed", { why: (error as Error).message }));

function render() {
  const now = recipe();
  lights.render();
  panel.render(now);
  styles.render(now);
  for (const [id, name] of [["#undo", history.undoName], ["#redo", history.redoName]] as const) {
    const button = find<HTMLButtonElement>(id);
    button.disabled = name === "";
    button.title = `${say(id === "#undo" ? "undo" : "redo")}${name === "" ? "" : `: ${say(name as Word)}`}`;
  }
}

function attempt(next: Recipe | null) {
  attempted = next;
  if (picture !== null) stage.light(recipe());
  render();
}

function select(light: number) {
  attempted = null;
  history.amend(withStyle(history.now, { curLight: light }));
  render();
}

/** Kept as files and links hold it. */
function keep(wished: Recipe, step: Word) {
  attempted = null;
  const next: Recipe = { ...wished, style: JSON.parse(jsonOf(wished)) };
  const relief = history.now.relief;
  history.keep(next, step);
  if (picture !== null) {
    stage.light(next);
    if (next.relief !== relief) void styles.draw(picture, next.relief).catch(tellFailure);
  }
  render();
}

function walk(way: "undo" | "redo") {
  attempted = null;
  history[way]();
  if (picture !== null) stage.light(history.now);
  render();
}

function readStyle(style: { name: string } | { bytes: Uint8Array }, relief: Recipe["relief"]): Recipe {
  return { style: normalised(JSON.parse(lighter.engine.json(style))), relief };
}

/** JSON of a style, with its source of heights. Throws what the engine says of it. */
function readJson(text: string): Recipe {
  const read = readStyle({ bytes: new TextEncoder().encode(text) }, "auto");
  const source = JSON.parse(text).relief?.source;
  return source === "luminance" ? { ...read, relief: source } : read;
}

async function openPicture(file: Blob, name: string) {
  let next: Picture;
  try {
    next = await Picture.open(file, name);
  } catch (error) {
    tell(say(error instanceof UnreadablePicture ? "unreadable" : "tooLarge", { name }));
    return;
  }
  picture?.close();
  map?.close();
  picture = next;
  map = null;
  if (!linked || history.undoName !== "") history = new History(withoutMap(recipe()));
  linked = false;
  attempted = null;
  document.body.classList.add("open");
  document.title = `${name} – Limn`;
  tell("");
  stage.show(picture);
  stage.light(history.now);
  render();
  await styles.draw(picture, history.now.relief);
}

const withoutMap = (now: Recipe): Recipe => (now.relief === "map" ? { ...now, relief: "auto" } : now);

async function openStyle(file: File) {
  try {
    const bytes = new Uint8Array(await file.arrayBuffer());
    const isJson = String.fromCharCode(bytes[0] ?? 0) === "{";
    keep(isJson ? readJson(new TextDecoder().decode(bytes)) : readStyle({ bytes }, recipe().relief), "openStyle");
  } catch (error) {
    tell(say("badStyle", { name: file.name, why: (error as Error).message }));
  }
}

const isStyle = (file: File) => /\.(json|lmst|limn)$/i.test(file.name);
const open = (file: File) => (isStyle(file) ? openStyle(file) : openPicture(file, file.name)).catch(tellFailure);

async function openMap(file: File) {
  if (picture === null) return;
  try {
    const next = await Picture.open(file, file.name);
    const shape = (next.width * picture.height) / (next.height * picture.width);
    if (Math.abs(shape - 1) > SHAPE) return tell(say("otherShape", { name: file.name }));
    map?.close();
    map = next;
    stage.useMap(map);
    keep(withRelief(recipe(), "map"), "relief");
    await styles.draw(picture, "map");
  } catch {
    tell(say("unreadable", { name: file.name }));
  }
}

// ---- What is taken away ----

function offer(blob: Blob, name: string) {
  const link = make("a", { href: URL.createObjectURL(blob), download: name });
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
  tell(say("saved", { name }));
}

async function litWhole(): Promise<ImageData> {
  const now = history.now;
  tell(say("lighting"));
  const heights = await stage.fullHeights(now.style.bumpChannel > 0 ? now.relief : "none");
  const bar = find<HTMLProgressElement>("#progress");
  bar.hidden = false;
  try {
    return await lighter.lightAll(picture!, now, heights, (done) => (bar.value = done));
  } finally {
    bar.hidden = true;
  }
}

async function savePicture(type: "png" | "jpeg") {
  const lit = await litWhole();
  const canvas = new OffscreenCanvas(lit.width, lit.height);
  canvas.getContext("2d")!.putImageData(lit, 0, 0);
  const blob = await canvas.convertToBlob({ type: `image/${type}`, quality: JPEG_QUALITY });
  offer(blob, `${picture!.stem}-lit.${type === "png" ? "png" : "jpg"}`);
}

function saveStyle() {
  const json = JSON.stringify(JSON.parse(jsonOf(history.now, true)), null, 2);
  offer(new Blob([`${json}\n`], { type: "application/json" }), `${picture!.stem}.limn.json`);
}

function command(): string {
  const now = history.now;
  const words = ["limn", "apply", shellWord(picture!.name), "--style", shellWord(jsonOf(now, true))];
  if (now.relief === "map" && now.style.bumpChannel > 0) words.push("--relief", shellWord(map!.name));
  return [...words, "-o", shellWord(`${picture!.stem}-lit.png`)].join(" ");
}

async function copy(text: string, word: Word) {
  await navigator.clipboard.writeText(text);
  tell(say(word));
}

async function copyLink() {
  const address = new URL(location.href);
  address.hash = await fragmentOf(withoutMap(history.now));
  await copy(address.href, "linkCopied");
}

const SAVES: Record<string, () => void | Promise<void>> = {
  savePng: () => savePicture("png"),
  saveJpeg: () => savePicture("jpeg"),
  saveStyle,
  copyCommand: () => copy(command(), "commandCopied"),
  copyLink,
};

// ---- What hands and keys do ----

function connectFiles() {
  const input = find<HTMLInputElement>("#file");
  const mapInput = find<HTMLInputElement>("#map-file");
  for (const button of document.querySelectorAll(".opens")) button.addEventListener("click", () => input.click());
  for (const [of, use] of [[input, open], [mapInput, openMap]] as const)
    of.addEventListener("change", () => {
      if (of.files?.[0]) void use(of.files[0]);
      of.value = "";
    });
  document.addEventListener("dragover", (event) => {
    event.preventDefault();
    document.body.classList.add("dropping");
  });
  document.addEventListener("dragleave", (event) => {
    if (event.relatedTarget === null) document.body.classList.remove("dropping");
  });
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    document.body.classList.remove("dropping");
    const file = event.dataTransfer?.files[0];
    if (file === undefined) return;
    const isMap = picture !== null && (event.target as Element).closest("#relief") !== null;
    void (isMap ? openMap(file) : open(file));
  });
  document.addEventListener("paste", (event) => {
    const file = [...(event.clipboardData?.files ?? [])][0];
    if (file !== undefined) void open(file);
  });
  for (const name of SAMPLES) {
    const image = make("img", { src: `samples/${name}.jpg`, alt: "", width: 132, height: 96 });
    const button = make("button", { type: "button", className: "sample" }, image, make("span", { "data-text": name }));
    button.addEventListener("click", async () => {
      const answer = await fetch(`samples/${name}.jpg`);
      await openPicture(await answer.blob(), `${name}.jpg`);
    });
    find("#samples").append(button);
  }
}

function connectDivider() {
  const room = find<HTMLElement>("#stage");
  const divider = find<HTMLElement>("#divider");
  const place = (before: number) => {
    const at = Math.min(Math.max(before, 0), 1);
    stage.divide(1 - at);
    divider.setAttribute("aria-valuenow", String(Math.round(at * 100)));
    const lit = find("#lit").getBoundingClientRect();
    const box = room.getBoundingClientRect();
    Object.assign(divider.style, {
      left: `${lit.left - box.left + lit.width * at}px`, top: `${lit.top - box.top}px`, height: `${lit.height}px`,
    });
  };
  const isOn = () => !divider.hidden;
  const toggle = () => {
    divider.hidden = isOn();
    find("#compare").setAttribute("aria-pressed", String(isOn()));
    place(isOn() ? 0.5 : 0);
  };
  find("#compare").addEventListener("click", toggle);
  divider.addEventListener("pointerdown", (event) => divider.setPointerCapture(event.pointerId));
  divider.addEventListener("pointermove", (event) => {
    if (!divider.hasPointerCapture(event.pointerId)) return;
    const lit = find("#lit").getBoundingClientRect();
    place((event.clientX - lit.left) / lit.width);
  });
  divider.addEventListener("keydown", (event) => {
    const step = { ArrowLeft: -0.05, ArrowRight: 0.05, Home: -1, End: 1 }[event.key];
    if (step !== undefined) place(1 - stage.divided + step);
  });
  return () => isOn() && place(1 - stage.divided);
}

function connectKeys() {
  document.addEventListener("keydown", (event) => {
    if (!(event.ctrlKey || event.metaKey)) return;
    const typing = (event.target as Element).matches?.("input[type=number]");
    const key = event.key.toLowerCase();
    if (key === "z" && !typing) walk(event.shiftKey ? "redo" : "undo");
    else if (key === "y" && !typing) walk("redo");
    else if (key === "o") find<HTMLInputElement>("#file").click();
    else if (key === "s" && picture !== null) void savePicture("png").catch(tellFailure);
    else return;
    event.preventDefault();
  });
}

function connectBar() {
  find("#undo").addEventListener("click", () => walk("undo"));
  find("#redo").addEventListener("click", () => walk("redo"));
  find("#zoom").addEventListener("click", () => stage.zoom(!stage.isWhole));
  for (const [word, save] of Object.entries(SAVES))
    find(`#${word}`).addEventListener("click", async () => {
      find<HTMLElement>("#saves").hidePopover();
      try {
        await save();
      } catch (error) {
        tellFailure(error);
      }
    });
  find("#language").addEventListener("click", () => speak(language === "en" ? "de" : "en"));
  for (const tab of document.querySelectorAll<HTMLElement>("[data-tab]"))
    tab.addEventListener("click", () => showTab(tab.dataset.tab!));
  for (const spot of document.querySelectorAll<HTMLElement>("[data-icon]"))
    spot.prepend(icon(ICONS[spot.dataset.icon as keyof typeof ICONS]));
}

function showTab(name: string) {
  document.body.dataset.shown = name;
  for (const tab of document.querySelectorAll<HTMLElement>("[data-tab]"))
    tab.setAttribute("aria-pressed", String(tab.dataset.tab === name));
}

function speak(wanted: string | null) {
  useLanguage(wanted);
  panel.build();
  render();
}

async function start() {
  useLanguage(new URLSearchParams(location.search).get("lang"));
  lighter = await Lighter.start();
  const room = find<HTMLElement>("#stage");
  stage = new Stage(room, find("#before"), find("#lit"), lighter);
  const handles = new Handles(lighter.engine);
  const user = {
    recipe, attempt, select, keep, tell: (word: Word) => tell(say(word)),
    view: () => (picture === null ? undefined : stage.view), isWhole: () => stage.isWhole,
    pan: (dx: number, dy: number) => stage.pan(dx, dy),
  };
  lights = new Lights(room, find("#shapes"), find("#lamps"), handles, user);
  panel = new Panel({
    ...user, validated: (light) => handles.validated(light),
    newLight: (type) => handles.validated(readJson(JSON.stringify({ lights: [{ type, intensity: 40 }] })).style.lights[0]),
    chooseMap: () => find<HTMLInputElement>("#map-file").click(), hasMap: () => map !== null,
  });
  styles = new Styles(find("#style-list"), lighter, {
    recipe: () => history.now, attempt, keep: (next) => keep(next, "style"),
    heights: (...wanted) => stage.heights(...wanted),
  });
  history = new History(readStyle({ name: FIRST_STYLE }, "auto"));
  connectFiles();
  connectBar();
  connectKeys();
  const replaceDivider = connectDivider();
  stage.onFailure = tellFailure;
  stage.onView = () => {
    lights.render();
    requestAnimationFrame(replaceDivider);
    const zoom = find("#zoom");
    zoom.setAttribute("aria-pressed", String(!stage.isWhole));
  };
  room.addEventListener("wheel", (event) => {
    if (picture === null || stage.isWhole) return;
    event.preventDefault();
    stage.pan(-event.deltaX, -event.deltaY);
  }, { passive: false });
  speak(language);
  showTab("styles");
  await useFragment();
  addEventListener("hashchange", () => void useFragment());
  document.body.classList.add("ready");
  if ("serviceWorker" in navigator) await navigator.serviceWorker.register("sw.js");
}

async function useFragment() {
  const json = await jsonOfFragment(location.hash);
  if (json === null) return;
  try {
    const read = readJson(json);
    if (picture !== null) return keep(read, "openStyle");
    history = new History(read);
    linked = true;
    tell(say("linked"));
  } catch (error) {
    tell(say("badStyle", { name: "#", why: (error as Error).message }));
  }
}

Object.assign(globalThis, { limnPage: { get stage() { return stage; }, recipe, withStyle } }); // for tests
start().catch(tellFailure);
