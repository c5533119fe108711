// Elements without a framework.

type Properties = Record<string, unknown>;

/** An element with properties; those with a dash, and role, are attributes, onX are listeners. */
export function make<Tag extends keyof HTMLElementTagNameMap>(
  tag: Tag, properties: Properties = {}, ...children: (Node | string)[]
): HTMLElementTagNameMap[Tag] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value as EventListener);
    else if (name.includes("-") || name === "role" || name === "for") element.setAttribute(name, String(value));
    else Object.assign(element, { [name]: value });
  }
  element.append(...children);
  return element;
}

export function svg(tag: string, attributes: Record<string, string | number>, ...children: Node[]): SVGElement {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, String(value));
  element.append(...children);
  return element;
}

export const find = <Found extends Element>(selector: string) => document.querySelector<Found>(selector)!;

/** One of the page's drawings, by its name in icons.ts. */
export function icon(path: string): SVGElement {
  return svg("svg", { viewBox: "0 0 24 24", "aria-hidden": "true", class: "icon" }, svg("path", { d: path }));
}
