// The extension and tarnwick-host in a real Chromium, against the reference
// toolbar server and test sites that count the requests they get. One
// browser serves the whole file (its start costs more than all the checks);
// the tests run in order, and the options test, which changes the settings,
// comes last.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import * as harness from './harness.js';

let scratch;
let reference;
let sites;
let context;
let worker;
let shots;

before(async () => {
  scratch = harness.makeScratch();
  shots = harness.screenshotDir();
  [reference, sites] = await Promise.all([harness.startReferenceServer(scratch.dir), harness.startSites()]);
  ({ context, worker } = await harness.launch(scratch, reference.url));
  context.setDefaultTimeout(10000);
});

after(async () => {
  await context?.close();
  reference?.stop();
  await sites?.stop();
  scratch?.remove();
});

async function openPage(url) {
  const page = await context.newPage();
  if (url) await page.goto(url);
  return page;
}

const questionShown = (page) => page.waitForSelector('#question:not([hidden])');

// The popup as the toolbar button shows it for the tab of `page`.
async function popupFor(page) {
  const tab = await harness.tabIdOf(worker, page);
  const popup = await context.newPage();
  await popup.setViewportSize({ width: 440, height: 360 });
  await popup.goto(harness.extensionUrl(`popup.html?tab=${tab}`));
  await popup.waitForSelector('#text:not(:empty)');
  return popup;
}

test('a listed site is a question before any request: No stays, Yes goes on once', { timeout: 30000 }, async () => {
  const page = await openPage();
  await page.goto(sites.url('phish.test', '/signin'));
  await questionShown(page);
  assert.equal(await page.title(), 'Page Blocked');
  const message = await page.textContent('#message');
  assert.match(message, /^The page you are trying to visit has been blocked by the Tarnwick Toolbar because it is believed/);
  assert.match(message, /URL: http:\/\/phish\.test:\d+\/signin/);
  assert.equal(await page.evaluate(() => document.activeElement.id), 'no');
  await page.screenshot({ path: join(shots, 'question.png') });
  assert.equal(sites.requests('phish.test'), 0);

  await page.click('#no');
  await page.waitForSelector('#stayed:not([hidden])');
  assert.equal(sites.requests('phish.test'), 0);

  await page.goto(sites.url('phish.test', '/signin'));
  await questionShown(page);
  await Promise.all([page.waitForURL(sites.url('phish.test', '/signin')), page.click('#yes')]);
  assert.equal(await page.textContent('h1'), 'phish.test/signin');
  assert.ok(sites.requests('phish.test') >= 1);

  // Once: the next visit is asked about again.
  await page.goto(sites.url('phish.test', '/again'));
  await questionShown(page);
  await page.close();
});

test('a navigation the page starts goes straight to the site when allowed, and a listed one is still a question', { timeout: 30000 }, async () => {
  const page = await openPage(sites.url('news.test', '/from'));
  await page.waitForURL(sites.url('news.test', '/from'));
  // By way of the question page the site would hear of no referrer.
  await Promise.all([page.waitForURL(sites.url('news.test', '/next')), page.click('#next')]);
  assert.equal(sites.referrer('news.test', '/next'), sites.url('news.test', '/from'));

  const before = sites.requests('phish.test');
  await page.evaluate((url) => {
    location.href = url;
  }, sites.url('phish.test', '/by-script'));
  await questionShown(page);
  assert.equal(sites.requests('phish.test'), before);

  // A page that swaps in a listed address while its first one is judged
  // does not take the second through on the first one's pass.
  await page.goto(sites.url('news.test', '/swap'));
  await page.waitForURL(sites.url('news.test', '/swap'));
  await page.evaluate(([first, second]) => {
    location.href = first;
    setTimeout(() => {
      location.href = second;
    }, 0);
  }, [sites.url('news.test', '/first'), sites.url('phish.test', '/swapped')]);
  await questionShown(page);
  assert.match(await page.textContent('#message'), /phish\.test:\d+\/swapped/);
  assert.equal(sites.requests('phish.test'), before);
  await page.close();
});

test('a form carrying a script is a question before it is sent; Yes sends it as it was', { timeout: 30000 }, async () => {
  const page = await openPage(sites.url('news.test', '/form'));
  await page.waitForURL(sites.url('news.test', '/form'));
  await page.fill('textarea[name=text]', '<script>alert(document.cookie)</script>');
  await page.click('#send');
  await questionShown(page);
  assert.match(await page.textContent('#message'), /script/i);
  assert.equal(sites.posts.length, 0);

  await Promise.all([page.waitForURL(sites.url('news.test', '/comment')), page.click('#yes')]);
  assert.deepEqual(sites.posts, [
    { host: 'news.test', path: '/comment', body: 'text=%3Cscript%3Ealert%28document.cookie%29%3C%2Fscript%3E' },
  ]);
  await page.close();
});

test('a redirect that ends on a listed site is replaced by the block page, out of the history', { timeout: 30000 }, async () => {
  const page = await openPage(sites.url('news.test', '/before'));
  await page.goto(sites.url('redirect.test', '/away')).catch(() => {});
  await page.waitForURL(harness.extensionUrl('phishingsite.html'));
  await page.waitForFunction(() => document.title === 'Phishing Site Blocked');
  assert.match(await page.textContent('body'), /This phishing site has been blocked by the Tarnwick Toolbar\./);
  assert.ok(await page.$eval('#logoImg', (image) => image.complete && image.naturalWidth > 0));
  await page.screenshot({ path: join(shots, 'block-page.png') });

  await page.goBack();
  await page.waitForURL(sites.url('news.test', '/before'));

  // The same from a link the page follows.
  await Promise.all([page.waitForURL(harness.extensionUrl('phishingsite.html')), page.click('#away')]);
  await page.waitForFunction(() => document.title === 'Phishing Site Blocked');
  await page.goBack();
  await page.waitForURL(sites.url('news.test', '/before'));
  await page.close();
});

test('a benign site shows its rank and hosting country in the popup, whose menus run their commands', { timeout: 30000 }, async () => {
  const page = await openPage(sites.url('news.test', '/today'));
  await page.waitForFunction(() => document.title === 'news.test/today');
  const badge = await worker.evaluate(async (url) => {
    const [tab] = await chrome.tabs.query({ url });
    return chrome.action.getBadgeText({ tabId: tab.id });
  }, page.url());
  assert.match(badge, /^([0-9]|10)$/);

  const popup = await popupFor(page);
  assert.equal(await popup.textContent('#text .flag'), 'US');
  assert.equal(await popup.textContent('#text .country-name'), 'United States');
  assert.equal(await popup.isVisible('#risk'), true);
  assert.equal(await popup.isVisible('#product-button'), true);
  assert.equal(await popup.isVisible('#client-button'), true);
  await popup.screenshot({ path: join(shots, 'popup.png') });
  await popup.click('#product-button');
  const [about] = await Promise.all([
    context.waitForEvent('page'),
    popup.click('#product-menu button:text-is("About...")'),
  ]);
  await about.waitForFunction(() => document.title === 'About Tarnwick Toolbar');
  assert.equal(await about.textContent('#version'), 'Version 1.0.0 (20070813)');
  await about.screenshot({ path: join(shots, 'about.png') });
  await about.close();
  await page.close();
});

test('the popup adds the site on show to Trusted Sites, which are not checked, and takes it off again', { timeout: 30000 }, async () => {
  const page = await openPage();
  await page.goto(sites.url('phish.test', '/trusted'));
  await questionShown(page);
  await Promise.all([page.waitForURL(sites.url('phish.test', '/trusted')), page.click('#yes')]);
  const popup = await popupFor(page);
  assert.equal(await popup.textContent('#trust'), 'Add to Trusted Sites');
  await popup.click('#trust');
  await popup.waitForFunction(() => document.getElementById('trust').textContent === 'Remove from Trusted Sites');

  await page.goto(sites.url('phish.test', '/trusted-now'));
  assert.equal(await page.textContent('h1'), 'phish.test/trusted-now');

  await popup.reload();
  await popup.waitForSelector('#trust');
  await popup.click('#trust');
  await popup.waitForFunction(() => document.getElementById('trust').textContent === 'Add to Trusted Sites');
  await page.goto(sites.url('phish.test', '/not-any-more'));
  await questionShown(page);
  await popup.close();
  await page.close();
});

test('a script pop-up without a gesture is closed before it requests; a clicked one opens', { timeout: 30000 }, async () => {
  // The pages that open windows are kept apart: a window closed while
  // Playwright attaches to it can hold up its opener's renderer for seconds.
  const page = await openPage(sites.url('popup.test'));
  await page.waitForURL(sites.url('popup.test'));
  const tab = await harness.tabIdOf(worker, page);
  await worker.evaluate(async (tabId) => {
    while (!(await chrome.action.getTitle({ tabId })).includes('(Popups blocked) ')) {
      await new Promise((done) => setTimeout(done, 50));
    }
  }, tab);
  const popup = await popupFor(page);
  assert.match(await popup.textContent('#text'), /^\(Popups blocked\) /);
  assert.equal(sites.requests('ads.test'), 0);
  const open = await worker.evaluate(() => chrome.tabs.query({}).then((all) => all.map((tab) => tab.url)));
  assert.ok(!open.some((url) => url.includes('ads.test')), open.join(' '));

  const clicking = await openPage(sites.url('popup.test', '/click'));
  const [opened] = await Promise.all([context.waitForEvent('page'), clicking.click('#open')]);
  await opened.waitForURL(sites.url('news.test', '/clicked'));
  assert.equal(await opened.textContent('h1'), 'news.test/clicked');
  await Promise.all([popup.close(), opened.close(), clicking.close(), page.close()]);
});

test('the report form is filled in from the settings and its values saved on submit', async () => {
  const reportPage = `${reference.url}/report_url?url=${encodeURIComponent('http://phish.test/')}`;
  const page = await openPage(reportPage);
  await page.fill('input[name=name]', 'Alice Example');
  await page.fill('input[name=email]', 'alice@example.org');
  await page.fill('textarea[name=reason]', 'It asked for my bank password');
  // The form is checked (with its post data) on the way, then sent.
  await Promise.all([
    page.waitForURL(`${reference.url}/report_url`),
    page.click('form[name=frmReportURL] [type=submit]'),
  ]);
  assert.match(await page.textContent('body'), /Your report \(number \d+\) has been stored/);
  assert.match(scratch.settings(), /"AutoFillName"="Alice Example"/);
  assert.match(scratch.settings(), /"AutoFillEmail"="alice@example.org"/);

  await page.goto(reportPage);
  await page.waitForFunction(() => document.activeElement?.name === 'reason');
  assert.equal(await page.inputValue('input[name=name]'), 'Alice Example');
  assert.equal(await page.inputValue('input[name=email]'), 'alice@example.org');
  await page.close();
});

test('the options page shows the dialog, writes settings.reg on OK, and the next check obeys it', { timeout: 30000 }, async () => {
  const page = await openPage(harness.extensionUrl('options.html'));
  await page.waitForSelector('#controls .control');
  assert.equal(await page.textContent('#caption'), 'Tarnwick Toolbar Options');
  await page.screenshot({ path: join(shots, 'options.png'), fullPage: true });

  // Rated above 1 is blocked from now on; shop.test's front page is not listed.
  const slider = page.locator('[data-id="slOption(4)"] input[type=range]');
  await slider.evaluate((element) => {
    element.value = '1';
    element.dispatchEvent(new Event('change'));
  });
  await page.waitForFunction(() => /^1\b/.test(document.querySelector('[data-id="slOption(4)"] output').textContent));
  assert.doesNotMatch(scratch.settings(), /BlockAtRiskRank/);
  await page.click('#c-cbOK');
  await page.waitForFunction(() => document.getElementById('status').textContent === 'Options saved.');
  assert.match(scratch.settings(), /"BlockAtRiskRank"=/);

  const before = sites.requests('shop.test');
  await page.goto(sites.url('shop.test', '/'));
  await questionShown(page);
  assert.match(await page.textContent('#message'), /risk/i);
  assert.equal(sites.requests('shop.test'), before);
  await page.close();
});
