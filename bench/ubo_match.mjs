// uBlock Origin's core (@gorhill/ubo-core) on a generated list in its own
// syntax, timed as `tarnwick match --stats` times ours: the compile (wall
// and processor time, heap and resident memory it added), the median of the
// wall time per URL and the mean processor time per URL, each URL asked as a
// top-level navigation. One JSON object on standard output.
//   node bench/ubo_match.mjs MODULE_DIR LIST URLS [EXPECTED]
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';

const [moduleDir, listFile, urlFile, expectedFile] = process.argv.slice(2);
const { StaticNetFilteringEngine } = await import(
  pathToFileURL(join(moduleDir, 'node_modules', '@gorhill', 'ubo-core', 'index.js')).href);

const urls = readFileSync(urlFile, 'utf8').split('\n').filter((line) => line !== '');
const raw = readFileSync(listFile, 'utf8');

const heapBefore = process.memoryUsage().heapUsed;
const rssBefore = process.memoryUsage().rss;
const cpuBefore = process.cpuUsage();
const wallBefore = process.hrtime.bigint();
const engine = await StaticNetFilteringEngine.create();
await engine.useLists([{ name: 'generated', raw }]);
const compileWallMs = Number(process.hrtime.bigint() - wallBefore) / 1e6;
const compileCpu = process.cpuUsage(cpuBefore);
const memory = process.memoryUsage();

const ask = (url) => engine.matchRequest({ originURL: url, url, type: 'main_frame' }) === 1;
// One pass to warm the engine's caches and the JIT, as the first navigations
// of a session would.
for (const url of urls.slice(0, 2000)) ask(url);

const times = new Float64Array(urls.length);
const verdicts = new Uint8Array(urls.length);
const questionsCpu = process.cpuUsage();
for (let i = 0; i < urls.length; i++) {
  const start = process.hrtime.bigint();
  verdicts[i] = ask(urls[i]) ? 1 : 0;
  times[i] = Number(process.hrtime.bigint() - start);
}
const cpu = process.cpuUsage(questionsCpu);
times.sort();

let agree = null;
if (expectedFile) {
  const expected = readFileSync(expectedFile, 'utf8').split('\n').filter((line) => line !== '');
  agree = expected.filter((value, i) => Number(value) === verdicts[i]).length / expected.length;
}
console.log(JSON.stringify({
  compile_ms: compileWallMs,
  compile_cpu_ms: (compileCpu.user + compileCpu.system) / 1000,
  heap_bytes: memory.heapUsed - heapBefore,
  rss_bytes: memory.rss - rssBefore,
  urls: urls.length,
  median_us: times[Math.floor(times.length / 2)] / 1000,
  mean_cpu_us: (cpu.user + cpu.system) / urls.length,
  blocked: verdicts.reduce((a, b) => a + b, 0),
  agree_with_expected: agree,
}));
