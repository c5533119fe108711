// Drawn in strokes of 1.6 on a field of 24.
export const ICONS = {
  open: "M4 18V6h5l2 2.5h9V18zM4 11.5h16",
  undo: "M8.5 5 4.5 9l4 4M5 9h9a5 5 0 0 1 0 10H9",
  redo: "M15.5 5l4 4-4 4M19 9h-9a5 5 0 0 0 0 10h5",
  compare: "M12 4v16M4 6h5M4 18h5M4 6v12M15 6h5v12h-5M9.5 12H7m2.5 0",
  zoom: "M10.5 4.5a6 6 0 1 0 0 12 6 6 0 0 0 0-12M15 15l5 5M8 10.5h5M10.5 8v5",
  save: "M12 4v10m-4-4 4 4 4-4M5 19h14",
  add: "M12 5v14M5 12h14",
  bin: "M5 7h14M10 4h4M7 7l1 13h8l1-13M10.5 11v5M13.5 11v5",
  copy: "M9 9h10v11H9zM15 9V4H5v11h4",
  mirror: "M12 4v16M9 8v8l-5 2V6zM15 8v8l5 2V6z",
  spot: "M9 4h6l1 5H8zM8 9l-4 9m12-9 4 9M4 19c3 2 13 2 16 0",
  omni: "M9 15a5.5 5.5 0 1 1 6 0v2H9zM10 20h4",
  directional: "M12 8.5a3.5 3.5 0 1 0 0 7 3.5 3.5 0 0 0 0-7M12 3v2M12 19v2M3 12h2M19 12h2M5.6 5.6 7 7M17 17l1.4 1.4M5.6 18.4 7 17M17 7l1.4-1.4",
} as const;
