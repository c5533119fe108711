// Steps back and forth. A step is a recipe; nothing of the picture is kept with it.

export class History<State> {
  #steps: { state: State; name: string }[];
  #at = 0;

  constructor(first: State) {
    this.#steps = [{ state: first, name: "" }];
  }

  get now(): State {
    return this.#steps[this.#at].state;
  }

  /** What undo() and redo() would take back and do again; "" for nothing. */
  get undoName(): string {
    return this.#steps[this.#at].name;
  }
  get redoName(): string {
    return this.#steps[this.#at + 1]?.name ?? "";
  }

  keep(state: State, name: string) {
    if (JSON.stringify(state) === JSON.stringify(this.now)) return;
    this.#steps.splice(this.#at + 1, Infinity, { state, name });
    this.#at += 1;
  }

  /** Another state for the present step: what is selected is no step of its own. */
  amend(state: State) {
    this.#steps[this.#at] = { ...this.#steps[this.#at], state };
  }

  undo() {
    this.#at = Math.max(this.#at - 1, 0);
  }
  redo() {
    this.#at = Math.min(this.#at + 1, this.#steps.length - 1);
  }
}
