// What the page says: texts/ has a file for each language, with the same words.

import de from "../texts/de.json";
import en from "../texts/en.json";

export type Word = keyof typeof en;

const TEXTS: Record<"de" | "en", Record<Word, string>> = { de, en };

export let language: keyof typeof TEXTS = "en";

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
  const text = TEXTS[language][word];
  return text.replace(/\{(\w+)\}/g, (_, name) => put[name] ?? "");
}
