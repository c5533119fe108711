// One Chromium for a file of tests, and servers for folders.

import { chromium } from "playwright-core";

import { serve } from "./serve.mjs";

let browser;
const servers = [];

export async function start() {
  const args = process.getuid() === 0 ? ["--no-sandbox"] : [];
  browser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args, timeout: 600_000 });
  return browser;
}

export async function urlOf(folder) {
  const server = await serve(folder);
  servers.push(server);
  return `http://127.0.0.1:${server.address().port}/`;
}

export async function stop() {
  await browser.close();
  for (const server of servers) server.close();
}
