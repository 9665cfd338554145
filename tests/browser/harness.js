// What the browser tests run against, all on this machine: the reference
// toolbar server and a web server for the test sites (both on loopback ports
// the system picks), a scratch program folder, settings and log, and a
// Chromium on a fresh profile with the extension loaded and tarnwick-host
// installed for that profile. Test host names (*.test) reach the site server
// through Chromium's resolver rules; the host is told by a hosts file which
// public addresses those names stand for, so it looks their country up as for
// any site.
import { spawn, execFileSync } from 'node:child_process';
import { cpSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { chromium } from 'playwright-core';

const here = dirname(fileURLToPath(import.meta.url));
export const source = resolve(here, '../..');
export const build = resolve(process.env.TARNWICK_BUILD_DIR ?? join(source, 'build/default'));
export const extensionDir = join(source, 'extension');
export const chromiumProgram = process.env.TARNWICK_CHROMIUM ?? '/usr/bin/chromium';
export const extensionId = 'nafihmbbgljekiadjbdjfdaciliollhj';
export const extensionUrl = (page) => `chrome-extension://${extensionId}/${page}`;

// The test sites and the addresses the host believes they have.
const hostsFile = `
1.1.1.1 phish.test
2.2.2.2 shop.test
8.8.8.8 news.test
9.9.9.9 popup.test ads.test redirect.test
`;
// The toolbar server lists one site whole and one page of another (which
// raises that site's risk rating).
const listed = ['phish.test', 'http://shop.test/cart/login.php'];

export const chromiumFlags = [
  '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync', '--headless=new',
  `--disable-extensions-except=${extensionDir}`, `--load-extension=${extensionDir}`,
  '--host-resolver-rules=MAP *.test 127.0.0.1',
];

function waitForLine(child, stream) {
  return new Promise((done, fail) => {
    let text = '';
    stream.on('data', (chunk) => {
      text += chunk;
      const end = text.indexOf('\n');
      if (end >= 0) done(text.slice(0, end).trim());
    });
    child.on('exit', (code) => fail(new Error(`tarnwick-server ended with ${code}`)));
  });
}

export async function startReferenceServer(scratch) {
  const db = join(scratch, 'server.db');
  const feed = join(scratch, 'feed.txt');
  writeFileSync(feed, `${listed.join('\n')}\n`);
  const server = join(build, 'bin/tarnwick-server');
  execFileSync(server, ['import', '--db', db, '--format', 'lines', feed], { stdio: 'ignore' });
  const child = spawn(server, ['serve', '--listen', '127.0.0.1:0', '--db', db, '--data', join(source, 'data')], {
    stdio: ['ignore', 'pipe', 'ignore'],
  });
  // Never outlive the run, even one that fails half-way.
  const stop = () => child.kill();
  process.once('exit', stop);
  const url = await waitForLine(child, child.stdout);
  return { url, stop };
}

// The test sites: each request is counted under its host name, so a test can
// tell that a blocked site was never asked for anything.
export async function startSites() {
  const counts = new Map();
  const referrers = new Map();
  const posts = [];
  const server = createServer((request, response) => {
    const host = (request.headers.host ?? '').replace(/:\d+$/, '');
    counts.set(host, (counts.get(host) ?? 0) + 1);
    referrers.set(`${host}${request.url}`, request.headers.referer ?? null);
    const port = server.address().port;
    if (host === 'redirect.test') {
      response.writeHead(302, { location: `http://phish.test:${port}/landing` });
      response.end();
      return;
    }
    if (request.method === 'POST') {
      let posted = '';
      request.on('data', (chunk) => {
        posted += chunk;
      });
      request.on('end', () => {
        posts.push({ host, path: request.url, body: posted });
        response.writeHead(200, { 'content-type': 'text/html; charset=utf-8' });
        response.end(`<!doctype html><title>posted</title><h1>posted to ${host}${request.url}</h1>`);
      });
      return;
    }
    let body = `<h1>${host}${request.url}</h1><a id="next" href="http://news.test:${port}/next">next</a>
      <a id="away" href="http://redirect.test:${port}/away">away</a>`;
    if (request.url === '/form') {
      body += `<form method="post" action="/comment"><textarea name="text"></textarea><button id="send">Send</button></form>`;
    }
    if (host === 'popup.test' && request.url === '/click') {
      body += `<button id="open" onclick="window.open('http://news.test:${port}/clicked')">Open</button>`;
    } else if (host === 'popup.test') {
      body += `<script>addEventListener('load', () => setTimeout(() => window.open('http://ads.test:${port}/'), 300));</script>`;
    }
    response.writeHead(200, { 'content-type': 'text/html; charset=utf-8' });
    response.end(`<!doctype html><title>${host}${request.url}</title>${body}`);
  });
  await new Promise((done) => server.listen(0, '127.0.0.1', done));
  const port = server.address().port;
  return {
    url: (host, path = '/') => `http://${host}:${port}${path}`,
    requests: (host) => counts.get(host) ?? 0,
    referrer: (host, path) => referrers.get(`${host}${path}`), // the Referer of the last request, null without
    posts, // {host, path, body} of each form sent
    stop: () => new Promise((done) => server.close(done)),
  };
}

// A scratch home for one run: program folder, settings, log, profile.
export function makeScratch() {
  const scratch = mkdtempSync(join(tmpdir(), 'tarnwick-browser-'));
  const program = join(scratch, 'program');
  mkdirSync(program);
  cpSync(join(build, 'lib/tarnwick'), program, { recursive: true });
  writeFileSync(join(scratch, 'hosts'), hostsFile);
  return {
    dir: scratch,
    program,
    profile: join(scratch, 'profile'),
    settingsFile: join(scratch, 'config/tarnwick/settings.reg'),
    settings: () => {
      try {
        return readFileSync(join(scratch, 'config/tarnwick/settings.reg'), 'utf8');
      } catch {
        return '';
      }
    },
    remove: () => rmSync(scratch, { recursive: true, force: true }),
  };
}

export function hostEnvironment(scratch, serverUrl) {
  return {
    ...process.env,
    XDG_CONFIG_HOME: join(scratch.dir, 'config'),
    XDG_STATE_HOME: join(scratch.dir, 'state'),
    XDG_DATA_HOME: join(scratch.dir, 'data'),
    TARNWICK_PROGRAM_DIR: scratch.program,
    TARNWICK_SERVER: serverUrl,
    TARNWICK_HOSTS: join(scratch.dir, 'hosts'),
  };
}

// tarnwick-host set up for the scratch profile, as a person does with --install.
export function installHost(scratch, env) {
  execFileSync(join(build, 'bin/tarnwick-host'), ['--install', '--user-data-dir', scratch.profile], {
    env,
    stdio: 'ignore',
  });
}

export const browserFlags = (extension) =>
  extension ? chromiumFlags : chromiumFlags.filter((flag) => !flag.includes('extension'));

// Chromium on the scratch profile, with tarnwick-host installed for it
// (unless `withHost: false`); `extension: false` gives the same browser
// without the extension.
export async function launch(scratch, serverUrl, { extension = true, withHost = extension } = {}) {
  mkdirSync(scratch.profile, { recursive: true });
  const env = hostEnvironment(scratch, serverUrl);
  if (withHost) installHost(scratch, env);
  const context = await chromium.launchPersistentContext(scratch.profile, {
    executablePath: chromiumProgram,
    headless: false, // --headless=new is among the flags: the old headless mode has no extensions
    args: browserFlags(extension),
    ignoreDefaultArgs: ['--disable-extensions'],
    env,
    viewport: { width: 900, height: 640 },
  });
  if (!extension) return { context };
  const worker = context.serviceWorkers()[0] ?? (await context.waitForEvent('serviceworker'));
  return { context, worker };
}

// The id Chromium gave the tab showing `page`.
export async function tabIdOf(worker, page) {
  const url = page.url();
  return worker.evaluate(async (address) => {
    const tabs = await chrome.tabs.query({});
    return tabs.find((tab) => tab.url === address)?.id;
  }, url);
}

export function screenshotDir() {
  const dir = process.env.TARNWICK_SCREENSHOTS ?? join(build, 'browser-screenshots');
  mkdirSync(dir, { recursive: true });
  return dir;
}
