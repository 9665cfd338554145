// Time the extension and tarnwick-host add to a top-level navigation, and
// the host's memory. Chromium runs on its own (no automation attached, which
// would pause every new page): a loopback site's page, once loaded, sends the
// tab to the site's next address by script, writing into that address when
// it started. The site notes when each request arrives, and each page when
// its load event came, so every navigation gives the time to its request and
// to its load. The same NAVIGATIONS (default 200) run without the extension
// and with it; verdicts come from the loopback reference server.
// Run through bench/extension_bench.sh.
import { execFileSync, spawn } from 'node:child_process';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { createServer } from 'node:http';
import * as harness from '../tests/browser/harness.js';

const navigations = Number(process.env.NAVIGATIONS ?? 200);
// The navigations are shared out over ROUNDS alternating runs without and
// with the extension, so that a change in the machine's load weighs on both.
const rounds = Math.max(1, Number(process.env.ROUNDS ?? 4));
const warmUp = 10;

function percentile(sorted, p) {
  return sorted[Math.min(sorted.length - 1, Math.ceil((p / 100) * sorted.length) - 1)];
}

// Resident memory of the tarnwick-host this build holds running, in MiB.
function hostResidentMiB() {
  const host = `${harness.build}/bin/tarnwick-host`;
  let kib = 0;
  for (const line of execFileSync('ps', ['-eo', 'pid=,args='], { encoding: 'utf8' }).split('\n')) {
    const [pid, program] = line.trim().split(/\s+/);
    if (program !== host) continue;
    kib = Math.max(kib, Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${pid}/status`, 'utf8'))?.[1] ?? 0));
  }
  return kib / 1024;
}

// The chain of pages: /n?from=T is page n, asked for at time T (ms since
// the epoch); its script reports its load and goes on to page n + 1.
function startChain(total) {
  const toRequest = [];
  const toLoad = [];
  let finished;
  const done = new Promise((resolve) => {
    finished = resolve;
  });
  const server = createServer((request, response) => {
    const url = new URL(request.url, 'http://chain');
    const n = Number(url.pathname.slice(1));
    const from = Number(url.searchParams.get('from'));
    if (url.pathname === '/loaded') {
      if (Number(url.searchParams.get('n')) >= warmUp) toLoad.push(Number(url.searchParams.get('ms')));
      response.writeHead(204).end();
      if (Number(url.searchParams.get('n')) === total + warmUp - 1) finished();
      return;
    }
    if (!Number.isInteger(n)) {
      response.writeHead(404).end();
      return;
    }
    if (n >= warmUp && from) toRequest.push(Date.now() - from);
    response.writeHead(200, { 'content-type': 'text/html', 'cache-control': 'no-store' });
    response.end(`<!doctype html><title>page ${n}</title><p>page ${n}</p><script>
      addEventListener('load', () => {
        const from = ${from || 0};
        if (from) navigator.sendBeacon('/loaded?n=${n}&ms=' + (Date.now() - from));
        setTimeout(() => { location.href = '/${n + 1}?from=' + Date.now(); }, 20);
      });</script>`);
  });
  return new Promise((resolve) => {
    server.listen(0, '127.0.0.1', () => resolve({ port: server.address().port, toRequest, toLoad, done, server }));
  });
}

async function run(reference, extension, count) {
  const scratch = harness.makeScratch();
  mkdirSync(scratch.profile, { recursive: true });
  const env = harness.hostEnvironment(scratch, reference.url);
  if (extension) harness.installHost(scratch, env);
  const chain = await startChain(count);
  // The chain starts from a local page once the browser has settled: an
  // address on the command line can be redirected to the question page
  // before the extension can show it, and then it never loads.
  const start = join(scratch.dir, 'start.html');
  writeFileSync(start, `<script>setTimeout(() => { location.href = 'http://news.test:${chain.port}/0'; }, 2000);</script>`);
  // The wrapper /usr/bin/chromium starts the browser as its child: the whole
  // group is stopped at the end.
  const browser = spawn(
    harness.chromiumProgram,
    [...harness.browserFlags(extension), `--user-data-dir=${scratch.profile}`, `file://${start}`],
    { env, stdio: 'ignore', detached: true },
  );
  try {
    const limit = (count + warmUp) * 2000;
    let timer;
    await Promise.race([
      chain.done,
      new Promise((resolve, reject) => {
        timer = setTimeout(() => reject(new Error(`the chain of pages stalled after ${chain.toLoad.length} (extension: ${extension})`)), limit);
      }),
    ]).finally(() => clearTimeout(timer));
    return { toRequest: chain.toRequest, toLoad: chain.toLoad, hostMiB: extension ? hostResidentMiB() : 0 };
  } finally {
    process.kill(-browser.pid);
    await new Promise((resolve) => browser.once('exit', resolve));
    chain.server.close();
    scratch.remove();
  }
}

const scratch = harness.makeScratch();
const reference = await harness.startReferenceServer(scratch.dir);
try {
  const without = { toRequest: [], toLoad: [] };
  const withExtension = { toRequest: [], toLoad: [], hostMiB: 0 };
  for (let round = 0; round < rounds; round++) {
    const count = Math.ceil(navigations / rounds);
    for (const [extension, into] of [[false, without], [true, withExtension]]) {
      const result = await run(reference, extension, count);
      into.toRequest.push(...result.toRequest);
      into.toLoad.push(...result.toLoad);
      into.hostMiB = Math.max(into.hostMiB ?? 0, result.hostMiB);
    }
  }
  for (const list of [without.toRequest, without.toLoad, withExtension.toRequest, withExtension.toLoad]) {
    list.sort((a, b) => a - b);
  }
  const pad = (text, width) => String(text).padEnd(width);
  const ms = (value) => `${value.toFixed(1)} ms`;
  console.log(`${navigations} top-level navigations (${rounds} rounds) by script to new addresses of a loopback site, verdicts from`);
  console.log('the loopback reference server; times from the start of each navigation\n');
  console.log(`${pad('', 34)}${pad('without', 12)}${pad('with', 12)}${pad('added', 12)}ratio`);
  for (const [what, key] of [['to the request at the site', 'toRequest'], ['to the load event', 'toLoad']]) {
    for (const p of [50, 99]) {
      const a = percentile(without[key], p);
      const b = percentile(withExtension[key], p);
      console.log(`${pad(`${what}, p${p}`, 34)}${pad(ms(a), 12)}${pad(ms(b), 12)}${pad(ms(b - a), 12)}${(b / a).toFixed(2)}x`);
    }
  }
  console.log(`\ntarnwick-host resident memory after the run: ${withExtension.hostMiB.toFixed(1)} MiB`);
} finally {
  reference.stop();
  scratch.remove();
}
