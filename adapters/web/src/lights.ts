// Lights on the picture: a button at each one's centre, and the selected one's shape and handles.
// The pointer is the stage's: what it takes hold of is what the module's hit test says.

import { CENTER, type Handles, type Hit } from "./handles.ts";
import { make, svg } from "./elements.ts";
import { addedLight, hexOf, withLight, withoutLight, type Light, type Point, type Recipe } from "./recipe.ts";
import { say, type Word } from "./texts.ts";
import type { View } from "./view.ts";

const REACH: Record<string, number> = { mouse: 12, pen: 18, touch: 26 };
const EDGE = 14; // from the stage's edge to the lamps that lie beyond it
const STEP = 1;
const LARGE_STEP = 10;

export interface LightsUser {
  recipe(): Recipe;
  view(): View | undefined;
  /** Whether the view has all of the picture. */
  isWhole(): boolean;
  /** Shown, not kept. */
  attempt(recipe: Recipe): void;
  select(light: number): void;
  keep(recipe: Recipe, step: Word): void;
  pan(dx: number, dy: number): void;
  tell(word: Word): void;
}

const distance = ([x, y]: Point, [x2, y2]: Point) => Math.hypot(x - x2, y - y2);

interface Drag {
  pointer: number;
  hit: Hit | null; // null: the picture itself
  start: Recipe;
  grabbed: Point; // from the handle to the pointer, in units
  last: Point; // on the stage
  moved: boolean;
}

export class Lights {
  readonly #user: LightsUser;
  readonly #handles: Handles;
  readonly #stage: HTMLElement;
  readonly #drawing: SVGElement;
  readonly #buttons: HTMLElement;
  #drag: Drag | null = null;

  constructor(stage: HTMLElement, drawing: SVGElement, buttons: HTMLElement, handles: Handles, user: LightsUser) {
    this.#stage = stage;
    this.#drawing = drawing;
    this.#buttons = buttons;
    this.#handles = handles;
    this.#user = user;
    stage.addEventListener("pointerdown", (event) => this.#press(event));
    stage.addEventListener("pointermove", (event) => (this.#drag === null ? this.#hover(event) : this.#move(event)));
    stage.addEventListener("pointerup", (event) => this.#release(event));
    stage.addEventListener("pointercancel", () => this.#cancel());
    stage.addEventListener("dblclick", (event) => this.#addAt(event));
    buttons.addEventListener("keydown", (event) => this.#key(event));
  }

  render() {
    const view = this.#user.view();
    if (view === undefined) return;
    const { lights, curLight } = this.#user.recipe().style;
    this.#renderButtons(view, lights, curLight);
    const selected = lights[curLight];
    this.#drawing.replaceChildren(...(selected === undefined ? [] : this.#shape(view, selected)));
  }

  #renderButtons(view: View, lights: Light[], selected: number) {
    while (this.#buttons.children.length > lights.length) this.#buttons.lastChild!.remove();
    while (this.#buttons.children.length < lights.length)
      this.#buttons.append(make("button", { className: "lamp", type: "button", onfocus: (event: Event) => this.#focused(event) }));
    const places = lights.map((light) => this.#shown(view, light)); // all before the first change of layout
    lights.forEach((light, i) => {
      const button = this.#buttons.children[i] as HTMLElement;
      const [x, y] = places[i];
      button.style.transform = `translate(${x}px, ${y}px)`;
      button.style.setProperty("--lamp", hexOf(light.color));
      button.classList.toggle("beyond", distance(places[i], view.toStage(light.center)) > EDGE);
      button.classList.toggle("off", !light.on);
      button.classList.toggle("dark", light.intensity < 0);
      button.setAttribute("aria-pressed", String(i === selected));
      button.setAttribute("aria-label", `${say(light.type)} ${i + 1}`);
      button.setAttribute("aria-description", say("lightHint"));
    });
  }

  // Where its lamp is. Those beyond the stage wait at its edge, to be dragged in from there.
  #shown(view: View, light: Light): Point {
    const [x, y] = view.toStage(light.center);
    if (!this.#user.isWhole()) return [x, y];
    const within = (at: number, room: number) => Math.min(Math.max(at, EDGE), Math.max(room - EDGE, EDGE));
    return [within(x, this.#stage.clientWidth), within(y, this.#stage.clientHeight)];
  }

  #isBeyond(view: View, light: Light): boolean {
    return distance(this.#shown(view, light), view.toStage(light.center)) > EDGE;
  }

  // Each line twice: dark and wide beneath, light and thin above, to be seen on any picture.
  #shape(view: View, light: Light): SVGElement[] {
    const [x, y] = view.toStage(light.center);
    const length = ([h, v]: Point) => Math.hypot(h, v) * view.unit;
    const shapes: [string, Record<string, string | number>][] = [];
    const line = (to: Point) => {
      const [x2, y2] = view.toStage([light.center[0] + to[0], light.center[1] + to[1]]);
      shapes.push(["line", { x1: x, y1: y, x2, y2 }]);
    };
    if (light.type === "omni") shapes.push(["circle", { cx: x, cy: y, r: Math.max(light.radius * view.unit, 0) }]);
    if (light.type === "spot") {
      const turn = (Math.atan2(light.handle1[1], light.handle1[0]) * 180) / Math.PI;
      shapes.push(["ellipse", { cx: x, cy: y, rx: length(light.handle1), ry: length(light.handle2),
        transform: `rotate(${turn} ${x} ${y})` }]);
    }
    if (light.type !== "omni") line(light.handle1);
    const drawn = ["halo", "line"].flatMap((look) => shapes.map(([tag, attributes]) => svg(tag, { ...attributes, class: look })));
    const handles = this.#handles.of(light).filter(({ code }) => code !== CENTER).map(({ place }) => {
      const [cx, cy] = view.toStage(place);
      return svg("circle", { cx, cy, r: 5.5, class: "handle" });
    });
    return [...drawn, ...handles];
  }

  #place(event: PointerEvent | MouseEvent): Point {
    const box = this.#stage.getBoundingClientRect();
    return [event.clientX - box.left, event.clientY - box.top];
  }

  #hitAt(event: PointerEvent): Hit | null {
    const view = this.#user.view()!;
    const { lights, curLight } = this.#user.recipe().style;
    const place = this.#place(event);
    const reach = REACH[event.pointerType] ?? 12;
    const beyond = lights.findIndex((light) => this.#isBeyond(view, light) && distance(this.#shown(view, light), place) < reach);
    return beyond >= 0
      ? { light: beyond, code: CENTER }
      : this.#handles.hit(lights, curLight, view.toUnits(place), reach / view.unit);
  }

  #press(event: PointerEvent) {
    if (this.#user.view() === undefined || event.button !== 0 || this.#drag !== null) return;
    if ((event.target as Element).closest("[data-own-pointer]") !== null) return;
    event.preventDefault();
    const place = this.#place(event);
    const hit = this.#hitAt(event);
    let start = this.#user.recipe();
    let grabbed: Point = [0, 0];
    if (hit !== null) {
      const light = start.style.lights[hit.light];
      if (event.altKey && hit.code === CENTER) {
        const copied = addedLight(start, light);
        if (copied === start) return this.#user.tell("mostLights");
        start = copied;
        hit.light = start.style.curLight;
        this.#user.attempt(start);
      } else {
        this.#user.select(hit.light);
        start = this.#user.recipe();
      }
      const handle = this.#handles.of(light).find(({ code }) => code === hit.code)!;
      const view = this.#user.view()!;
      const [x, y] = view.toUnits(place);
      if (!this.#isBeyond(view, light)) grabbed = [x - handle.place[0], y - handle.place[1]];
      (this.#buttons.children[hit.light] as HTMLElement | undefined)?.focus({ preventScroll: true });
    }
    this.#stage.setPointerCapture(event.pointerId);
    this.#drag = { pointer: event.pointerId, hit, start, grabbed, last: place, moved: false };
  }

  #move(event: PointerEvent) {
    const drag = this.#drag!;
    if (event.pointerId !== drag.pointer) return;
    const place = this.#place(event);
    if (drag.hit === null) {
      this.#user.pan(place[0] - drag.last[0], place[1] - drag.last[1]);
      drag.last = place;
      return;
    }
    drag.moved ||= distance(place, drag.last) > 2;
    if (!drag.moved) return;
    const [x, y] = this.#user.view()!.toUnits(place);
    const { light, code } = drag.hit;
    const keep = event.shiftKey ? "direction" : event.ctrlKey || event.metaKey ? "length" : null;
    const point: Point = [x - drag.grabbed[0], y - drag.grabbed[1]];
    this.#user.attempt(withLight(drag.start, light, this.#handles.drag(drag.start.style.lights[light], code, point, keep)));
  }

  #release(event: PointerEvent) {
    const drag = this.#drag;
    if (drag === null || event.pointerId !== drag.pointer) return;
    this.#drag = null;
    if (drag.hit !== null) this.#user.keep(this.#user.recipe(), drag.hit.code === CENTER ? "moveLight" : "shapeLight");
  }

  #cancel() {
    if (this.#drag?.hit) this.#user.attempt(this.#drag.start);
    this.#drag = null;
  }

  #hover(event: PointerEvent) {
    if (this.#user.view() === undefined || event.pointerType !== "mouse") return;
    const hit = this.#hitAt(event);
    this.#stage.style.cursor = hit === null ? "" : hit.code === CENTER ? "move" : "grab";
  }

  #addAt(event: MouseEvent) {
    const view = this.#user.view();
    if (view === undefined || (event.target as Element).closest("[data-own-pointer]") !== null) return;
    const recipe = this.#user.recipe();
    const { lights, curLight } = recipe.style;
    const [x, y] = view.toUnits(this.#place(event));
    if (this.#handles.hit(lights, curLight, [x, y], 12 / view.unit) !== null) return;
    const added = addedLight(recipe, { ...lights[curLight], on: true, center: [x, y] });
    if (added === recipe) this.#user.tell("mostLights");
    else this.#user.keep(added, "addLight");
  }

  #focused(event: Event) {
    const index = [...this.#buttons.children].indexOf(event.currentTarget as Element);
    if (this.#drag === null && this.#user.recipe().style.curLight !== index) this.#user.select(index);
  }

  #key(event: KeyboardEvent) {
    const recipe = this.#user.recipe();
    const index = [...this.#buttons.children].indexOf(event.target as Element);
    const light = recipe.style.lights[index];
    if (light === undefined) return;
    const direction = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] }[event.key];
    if (direction !== undefined) {
      const step = event.shiftKey ? LARGE_STEP : STEP;
      const center: Point = [light.center[0] + direction[0] * step, light.center[1] + direction[1] * step];
      this.#user.keep(withLight(recipe, index, { center }), "moveLight");
    } else if (event.key === "Delete" || event.key === "Backspace") {
      const without = withoutLight(recipe, index);
      if (without === recipe) this.#user.tell("lastLight");
      else this.#user.keep(without, "deleteLight");
      (this.#buttons.children[without.style.curLight] as HTMLElement).focus();
    } else return;
    event.preventDefault();
  }
}
