// Without tarnwick-host the extension says so on its button and blocks
// nothing: a listed site loads as if the extension were not there.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import * as harness from './harness.js';

let scratch;
let reference;
let sites;
let context;
let worker;

before(async () => {
  scratch = harness.makeScratch();
  [reference, sites] = await Promise.all([harness.startReferenceServer(scratch.dir), harness.startSites()]);
  ({ context, worker } = await harness.launch(scratch, reference.url, { withHost: false }));
  context.setDefaultTimeout(10000);
});

after(async () => {
  await context?.close();
  reference?.stop();
  await sites?.stop();
  scratch?.remove();
});

test('without its host the button says the toolbar is off and a listed site loads', { timeout: 30000 }, async () => {
  const page = await context.newPage();
  await page.goto(sites.url('phish.test', '/signin'));
  await page.waitForURL(sites.url('phish.test', '/signin'));
  assert.equal(await page.textContent('h1'), 'phish.test/signin');
  assert.ok(sites.requests('phish.test') >= 1);

  const button = await worker.evaluate(async () => ({
    badge: await chrome.action.getBadgeText({}),
    title: await chrome.action.getTitle({}),
  }));
  assert.equal(button.badge, 'off');
  assert.match(button.title, /^Tarnwick Toolbar is off: the native host could not be started \(.+\)\. Nothing is blocked\./);

  const popup = await context.newPage();
  await popup.goto(harness.extensionUrl('popup.html'));
  await popup.waitForSelector('#down:not([hidden])');
  assert.match(await popup.textContent('#down'), /Run tarnwick-host --install and restart the browser\./);
});
