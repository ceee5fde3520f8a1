// Browser tests of the web front panel: Debian's chromium, driven by playwright-core, against
// `frontpanel-sim --headless --web 127.0.0.1:0 --listen 127.0.0.1:0` on loopback. The remote
// control port reads the panel back (DISPlay:TEXT?) and switches its mode.
//
// Environment: YXFP_SIM (the simulator binary, required), YXFP_CHROMIUM (default
// /usr/bin/chromium), YXFP_SCREENSHOT_DIR (one PNG per test; default: none).
import { test, before, after } from "node:test";
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { createConnection } from "node:net";
import { mkdirSync, readFileSync } from "node:fs";
import path from "node:path";
import { chromium } from "playwright-core";

const simulator = process.env.YXFP_SIM;
const screenshots = process.env.YXFP_SCREENSHOT_DIR;
let browser;

before(async () => {
  assert.ok(simulator, "set YXFP_SIM to the frontpanel-sim binary");
  if (screenshots) {
    mkdirSync(screenshots, { recursive: true });
  }
  browser = await chromium.launch({
    executablePath: process.env.YXFP_CHROMIUM || "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
           "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
});

after(async () => {
  await browser?.close();
});

/** Starts the simulator and resolves with its web and remote-control ports. */
async function startSimulator(extra = []) {
  const child = spawn(simulator, ["--headless", "--web", "127.0.0.1:0", "--listen",
                                  "127.0.0.1:0", ...extra], { stdio: ["ignore", "pipe", "pipe"] });
  let output = "";
  const ports = await new Promise((resolve, reject) => {
    const timer = setTimeout(() => reject(new Error("simulator did not start:\n" + output)), 10000);
    const look = (chunk) => {
      output += chunk;
      const web = output.match(/web panel on http:\/\/127\.0\.0\.1:(\d+)\//);
      const scpi = output.match(/remote control on 127\.0\.0\.1:(\d+)/);
      if (web && scpi) {
        clearTimeout(timer);
        resolve({ web: Number(web[1]), scpi: Number(scpi[1]) });
      }
    };
    child.stdout.on("data", look);
    child.stderr.on("data", look);
    child.on("exit", (code) => reject(new Error(`simulator exited with ${code}:\n${output}`)));
  });
  return { child, ...ports };
}

async function stopSimulator(simulatorProcess) {
  const exited = new Promise((resolve) => simulatorProcess.child.on("exit", resolve));
  simulatorProcess.child.kill("SIGTERM");
  assert.equal(await exited, 0);
}

/** Sends SCPI command lines and resolves with the response lines of the queries. */
function scpi(port, commands) {
  return new Promise((resolve, reject) => {
    const socket = createConnection({ host: "127.0.0.1", port });
    const expected = commands.filter((command) => command.includes("?")).length;
    let received = "";
    socket.setEncoding("utf8");
    socket.on("data", (chunk) => {
      received += chunk;
      const lines = received.split("\n").filter((line) => line.length > 0);
      if (lines.length >= expected && received.endsWith("\n")) {
        socket.end();
        resolve(lines);
      }
    });
    socket.on("error", reject);
    socket.on("connect", () => {
      socket.write(commands.join("\n") + "\n");
      if (expected === 0) {
        socket.end();
        resolve([]);
      }
    });
  });
}

/** The SCPI readback of all lines, as the strings it contains. */
async function screenByScpi(port) {
  const [line] = await scpi(port, ["DISP:TEXT?"]);
  return [...line.matchAll(/"((?:[^"]|"")*)"/g)].map((match) => match[1].replaceAll('""', '"'));
}

async function openPage(port, query = "", host = "127.0.0.1") {
  const page = await browser.newPage({ acceptDownloads: true });
  await page.goto(`http://${host}:${port}/${query}`);
  await page.waitForSelector("#lcd .line");
  return page;
}

async function pageLines(page) {
  return page.$$eval("#lcd .line", (lines) => lines.map((line) => line.textContent));
}

async function invertedLine(page) {
  return page.$$eval("#lcd .line", (lines) => lines.findIndex((line) => line.querySelector(".inv")));
}

async function shoot(page, name) {
  if (screenshots) {
    await page.screenshot({ path: path.join(screenshots, `${name}.png`) });
  }
}

test("the page shows the same lines as DISPlay:TEXT?", async () => {
  const sim = await startSimulator();
  try {
    const page = await openPage(sim.web);
    await page.waitForFunction(() => document.querySelector("#role").textContent === "control");
    assert.deepEqual(await pageLines(page), await screenByScpi(sim.scpi));
    assert.equal(await page.textContent("#mode"), "LOCAL");
    await shoot(page, "menu");
    await page.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("clicking down moves the inverted line within 100 ms", async () => {
  const sim = await startSimulator();
  try {
    const page = await openPage(sim.web);
    await page.waitForFunction(() => document.querySelector("#role").textContent === "control");
    const latencies = [];
    for (let round = 0; round < 5; ++round) {
      const before = await invertedLine(page);
      const key = round % 2 === 0 ? "down" : "up";
      const latency = await page.evaluate(async (pressed) => {
        const lcd = document.querySelector("#lcd");
        const start = performance.now();
        const changed = new Promise((resolve) => {
          new MutationObserver((_, observer) => {
            observer.disconnect();
            resolve(performance.now() - start);
          }).observe(lcd, { childList: true, subtree: true, characterData: true });
        });
        document.querySelector(`button[data-key="${pressed}"]`).click();
        return changed;
      }, key);
      latencies.push(latency);
      assert.equal(await invertedLine(page), before + (key === "down" ? 1 : -1));
    }
    latencies.sort((a, b) => a - b);
    console.log(`click to frame: median ${latencies[2].toFixed(1)} ms, ` +
                `max ${latencies[4].toFixed(1)} ms`);
    assert.ok(latencies[2] <= 100, `median ${latencies[2]} ms`);
    await shoot(page, "after-down");
    await page.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("keyboard Enter opens the voltage editor and up changes the digit", async () => {
  const sim = await startSimulator();
  try {
    const page = await openPage(sim.web);
    await page.waitForFunction(() => document.querySelector("#role").textContent === "control");
    await page.keyboard.press("Enter");  // Output
    await page.waitForFunction(() => document.querySelector("#lcd .line").textContent
      .includes("Voltage"));
    await page.keyboard.press("Enter");  // the voltage editor
    await page.waitForFunction(() => document.querySelector("#lcd").textContent.includes(">>"));
    const before = (await pageLines(page))[1];
    await page.keyboard.press("ArrowUp");
    await page.waitForFunction((old) => document.querySelectorAll("#lcd .line")[1].textContent
      !== old, before);
    const after = (await pageLines(page))[1];
    assert.notEqual(after, before);
    assert.deepEqual(await pageLines(page), await screenByScpi(sim.scpi));
    await shoot(page, "voltage-editor");
    await page.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("in REMOTE mode an edit shows the local-mode hint", async () => {
  const sim = await startSimulator();
  try {
    const page = await openPage(sim.web);
    await page.waitForFunction(() => document.querySelector("#role").textContent === "control");
    await scpi(sim.scpi, ["SYST:REM", "*OPC?"]);
    await page.waitForFunction(() => document.querySelector("#mode").textContent === "REMOTE");
    await page.keyboard.press("Enter");  // Output
    await page.waitForFunction(() => document.querySelector("#lcd .line").textContent
      .includes("Voltage"));
    await page.keyboard.press("ArrowDown");
    await page.keyboard.press("ArrowDown");  // "Output: Off", switched in place
    await page.waitForFunction(() => document.querySelectorAll("#lcd .line")[2]
      .querySelector(".inv") !== null);
    await page.keyboard.press("Enter");  // refused outside local mode
    await page.waitForFunction(() => document.querySelector("#lcd").textContent
      .includes("Only in local mode!"));
    await shoot(page, "remote-hint");
    await page.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("two pages see the same frames", async () => {
  const sim = await startSimulator();
  try {
    const first = await openPage(sim.web);
    const second = await openPage(sim.web);
    await first.waitForFunction(() => document.querySelector("#role").textContent === "control");
    await first.click('button[data-key="down"]');
    await second.waitForFunction(() => document.querySelectorAll("#lcd .line")[1]
      .querySelector(".inv") !== null);
    assert.deepEqual(await pageLines(first), await pageLines(second));
    assert.equal(await invertedLine(first), await invertedLine(second));
    await shoot(second, "second-page");
    await first.close();
    await second.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("a read-only viewer's clicks do nothing", async () => {
  const sim = await startSimulator(["--web-token", "s3cret"]);
  try {
    const viewer = await openPage(sim.web);
    await viewer.waitForFunction(() => document.querySelector("#role").textContent
      === "read-only viewer");
    const before = await screenByScpi(sim.scpi);
    await viewer.click('button[data-key="down"]', { force: true });
    await viewer.keyboard.press("ArrowDown");
    // The controller's page then moves the panel: had the viewer's keys counted, the cursor
    // would be two lines further.
    const controller = await openPage(sim.web, "?token=s3cret");
    await controller.waitForFunction(() => document.querySelector("#role").textContent
      === "control");
    assert.deepEqual(await screenByScpi(sim.scpi), before);
    await controller.click('button[data-key="down"]');
    await viewer.waitForFunction(() => document.querySelectorAll("#lcd .line")[1]
      .querySelector(".inv") !== null);
    await shoot(viewer, "read-only-viewer");
    await viewer.close();
    await controller.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("the page works under localhost and keeps to its Content-Security-Policy", async () => {
  const sim = await startSimulator(["--web-token", "s3cret"]);
  try {
    const page = await browser.newPage();
    const problems = [];
    page.on("console", (message) => {
      if (message.type() === "error") {
        problems.push(message.text());
      }
    });
    page.on("pageerror", (error) => problems.push(error.message));
    const response = await page.goto(`http://localhost:${sim.web}/?token=s3cret`);
    assert.equal(response.headers()["x-frame-options"], "DENY");
    assert.match(response.headers()["content-security-policy"], /default-src 'none'/);
    await page.waitForSelector("#lcd .line");
    // The token reaches the server in the socket's first message, not in the socket's URL.
    await page.waitForFunction(() => document.querySelector("#role").textContent === "control");
    await page.click('button[data-key="down"]');
    await page.waitForFunction(() => document.querySelectorAll("#lcd .line")[1]
      .querySelector(".inv") !== null);
    assert.deepEqual(problems, []);
    await shoot(page, "localhost");
    await page.close();
  } finally {
    await stopSimulator(sim);
  }
});

test("Save screenshot downloads the screen as a PNG of columns x 6 by lines x 8 pixels", async () => {
  const sim = await startSimulator();
  try {
    const page = await openPage(sim.web);
    const lines = await pageLines(page);
    const [download] = await Promise.all([
      page.waitForEvent("download"),
      page.click("text=Save screenshot"),
    ]);
    assert.equal(download.suggestedFilename(), "panel.png");
    assert.equal(await download.failure(), null);
    const png = readFileSync(await download.path());
    assert.deepEqual([...png.subarray(0, 8)], [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]);
    assert.equal(png.toString("latin1", 12, 16), "IHDR");
    const columns = Math.max(...lines.map((line) => Array.from(line).length));
    assert.equal(png.readUInt32BE(16), columns * 6);
    assert.equal(png.readUInt32BE(20), lines.length * 8);
    // Enter on the focused link saves again and is not the panel's ENTER key.
    await page.focus("#screenshot");
    const [again] = await Promise.all([
      page.waitForEvent("download"),
      page.keyboard.press("Enter"),
    ]);
    assert.equal(again.suggestedFilename(), "panel.png");
    assert.deepEqual(await screenByScpi(sim.scpi), lines);
    await shoot(page, "save-screenshot");
    await page.close();
  } finally {
    await stopSimulator(sim);
  }
});
