// The extension's service worker: it reports the browser's events to the
// native host tarnwick-host (the band core) over one persistent port and
// carries out what the host decides. No verdict is made here.
//
// Every top-level http(s) navigation is redirected by the static rule in
// rules.json to check.html before any request leaves the browser. The
// request is seen here first (webRequest, with its post data) and the host
// is asked at once; check.html then asks for the verdict, and either the tab
// gets a one-time allow rule and goes on, or the question page stays.
// A navigation the page starts itself is quicker: the content script holds
// it back and asks first, and when it may go, a rule lets exactly that
// address through, so it goes straight to the site (see judgeAhead).

const HOST = 'com.tarnwick.toolbar';
const RULESET = 'guard';
const BLOCK_PAGE = chrome.runtime.getURL('phishingsite.html');
const BLOCK_PAGE_ADDRESS = 'about:PhishingSite';
const QUESTION_PAGE = chrome.runtime.getURL('check.html');
// How long a new window waits for the page to say how it was opened (its
// page waits on the question page meanwhile, so nothing is requested), and
// how long such a report stays good.
const OPENING_WAIT_MS = 500;
const OPENING_KEPT_MS = 2000;
// A context menu's "open in new tab" comes this long after the click at most.
const CONTEXT_MENU_MS = 60000;
// An allow rule left over from a navigation that never committed.
const ALLOW_RULE_MS = 60000;
// How long a verdict asked for ahead of its request is kept for it.
const PENDING_KEPT_MS = 10000;
// Longer addresses go by way of the question page rather than into a rule.
const MAX_EXACT_URL = 8192;

let port = null;
let hostDown = null; // why the host cannot be reached; null while it can
let nextId = 1;
const waiting = new Map(); // message id -> resolve
const tabs = new Map(); // tab id -> TabState
let ctrlDown = false;
let nextRuleId = 1;
// Allow rules belong to navigations of the worker that made them: those of
// an earlier one go before the first new one is made.
const rulesCleared = chrome.declarativeNetRequest.getSessionRules().then((rules) => {
  const ids = rules.map((rule) => rule.id);
  nextRuleId = Math.max(0, ...ids) + 1;
  return ids.length ? chrome.declarativeNetRequest.updateSessionRules({ removeRuleIds: ids }) : null;
});
const resources = new Map();

class TabState {
  constructor() {
    this.pending = null; // {url, reply, at}: the check asked for ahead of or as the request started
    this.post = null; // {url, formData, raw}: the post data of the last top-level request
    this.allowRule = 0; // the one-time allow rule of a navigation under way
    this.allowedUrl = null; // the one address it lets through, or null for any
    this.allowing = null; // the rule's update, under way or done
    this.redirectedTo = null; // where a navigation let through for one address was sent on
    this.strip = null;
    // How the page opened its windows, oldest first: {event_type, active_element, at}.
    this.openings = [];
    this.late = []; // when windows were judged without a report, which will come late
    this.contextMenu = null; // the last context menu on a link, for its "open in new tab"
    this.popupDecision = null; // for a new window: Promise<boolean>, allowed or not
    this.popupWaiters = [];
    this.committed = false;
  }
}

function tab(id) {
  let state = tabs.get(id);
  if (!state) {
    state = new TabState();
    tabs.set(id, state);
  }
  return state;
}

// --- the native port ---------------------------------------------------

function connect() {
  hostDown = null;
  port = chrome.runtime.connectNative(HOST);
  port.onMessage.addListener((reply) => {
    const resolve = waiting.get(reply.id);
    if (resolve) {
      waiting.delete(reply.id);
      resolve(reply);
    }
  });
  port.onDisconnect.addListener(() => {
    const why = chrome.runtime.lastError?.message || 'tarnwick-host ended';
    port = null;
    setHostDown(why);
    for (const resolve of waiting.values()) resolve({ type: 'error', error: why, down: true });
    waiting.clear();
  });
  ask({ type: 'hello' }).then((reply) => {
    if (reply.type !== 'hello') return;
    chrome.declarativeNetRequest.updateEnabledRulesets({ enableRulesetIds: [RULESET] });
    chrome.action.setBadgeText({ text: '' });
    chrome.action.setTitle({ title: 'Tarnwick Toolbar' });
    chrome.tabs.query({}).then((all) => all.forEach((t) => ask({ type: 'open', tab: t.id })));
  });
}

// The host cannot run: the button says so and nothing is blocked.
function setHostDown(why) {
  hostDown = why;
  chrome.declarativeNetRequest.updateEnabledRulesets({ disableRulesetIds: [RULESET] });
  chrome.action.setBadgeText({ text: 'off' });
  chrome.action.setBadgeBackgroundColor({ color: '#757575' });
  chrome.action.setTitle({
    title: `Tarnwick Toolbar is off: the native host could not be started (${why}). ` +
      'Nothing is blocked. Run tarnwick-host --install and restart the browser.',
  });
}

function ask(message) {
  if (!port && !hostDown) connect();
  if (!port) return Promise.resolve({ type: 'error', error: hostDown, down: true });
  const id = nextId++;
  return new Promise((resolve) => {
    waiting.set(id, resolve);
    try {
      port.postMessage({ ...message, id, ctrl: ctrlDown });
    } catch (error) {
      waiting.delete(id);
      resolve({ type: 'error', error: String(error), down: true });
    }
  });
}

// --- what the host decided ----------------------------------------------

const RISK_COLOURS = ['#2e7d32', '#2e7d32', '#2e7d32', '#2e7d32', '#f9a825', '#f9a825', '#ef6c00', '#ef6c00',
  '#c62828', '#c62828', '#c62828'];

function showStrip(tabId, strip) {
  if (!strip) return;
  tab(tabId).strip = strip;
  const rank = strip.risk_rank;
  const known = rank >= 0 && rank <= 10;
  chrome.action.setBadgeText({ tabId, text: known ? String(rank) : '' }).catch(() => {});
  if (known) chrome.action.setBadgeBackgroundColor({ tabId, color: RISK_COLOURS[rank] }).catch(() => {});
  chrome.action.setTitle({ tabId, title: `Tarnwick Toolbar\n${strip.text}`.slice(0, 1000) }).catch(() => {});
}

async function carryOut(tabId, reply) {
  if (reply.strip) showStrip(tabId, reply.strip);
  if (reply.notices?.length) showNotices(reply.notices);
  const pageActions = [];
  for (const action of reply.actions ?? []) {
    if (action.do === 'navigate') await navigate(tabId, action);
    else if (action.do === 'stop') await inPage(tabId, () => window.stop());
    else if (action.do === 'open_about') await chrome.tabs.create({ url: chrome.runtime.getURL('about.html') });
    else if (action.do === 'open_options') await chrome.runtime.openOptionsPage();
    else if (action.do === 'uninstall') chrome.management.uninstallSelf({ showConfirmDialog: true });
    else pageActions.push(action);
  }
  return pageActions;
}

function inPage(tabId, func, args = []) {
  return chrome.scripting
    .executeScript({ target: { tabId }, func, args, injectImmediately: true })
    .catch(() => null);
}

async function navigate(tabId, action) {
  if (action.url === BLOCK_PAGE_ADDRESS) return showBlockPage(tabId, action.no_history);
  if (action.post_data) {
    const request = encodeURIComponent(JSON.stringify({ url: action.url, post_data: action.post_data }));
    return chrome.tabs.update(tabId, { url: `${chrome.runtime.getURL('post.html')}#${request}` });
  }
  return chrome.tabs.update(tabId, { url: action.url });
}

// The refused page is replaced by the block page in its own history entry,
// so Back does not return to it. The band hears of it as about:PhishingSite.
async function showBlockPage(tabId, noHistory) {
  const replaced = noHistory && (await inPage(tabId, (url) => location.replace(url), [BLOCK_PAGE]));
  if (!replaced) await chrome.tabs.update(tabId, { url: BLOCK_PAGE });
  await ask({ type: 'navigate', tab: tabId, url: BLOCK_PAGE_ADDRESS });
  const reply = await ask({ type: 'complete', tab: tabId, url: BLOCK_PAGE_ADDRESS });
  await carryOut(tabId, reply);
}

function showNotices(notices) {
  const url = `${chrome.runtime.getURL('notice.html')}#${encodeURIComponent(JSON.stringify(notices))}`;
  chrome.windows.create({ url, type: 'popup', width: 520, height: 300 }).catch(() => chrome.tabs.create({ url }));
}

// --- navigations --------------------------------------------------------

function isWeb(url) {
  return /^https?:/i.test(url);
}

// Post data as the page sends it: form fields URL-encoded, or the raw bytes.
function postBytes(body) {
  if (!body) return null;
  if (body.formData) {
    const fields = [];
    for (const [name, values] of Object.entries(body.formData)) {
      for (const value of values) fields.push(`${formEncode(name)}=${formEncode(value)}`);
    }
    return btoa(fields.join('&'));
  }
  if (body.raw) {
    let text = '';
    for (const part of body.raw) {
      if (part.bytes) for (const byte of new Uint8Array(part.bytes)) text += String.fromCharCode(byte);
    }
    return btoa(text);
  }
  return null;
}

function formEncode(text) {
  return encodeURIComponent(text).replace(/%20/g, '+');
}

chrome.webRequest.onBeforeRequest.addListener(
  (details) => {
    if (details.tabId < 0 || hostDown || !isWeb(details.url)) return;
    const state = tab(details.tabId);
    if (lets(state, details.url)) return; // the navigation the person or the host let go
    if (state.redirectedTo === details.url) return; // judged where it ends, as any redirect
    state.post = details.method === 'POST' ? { url: details.url, body: details.requestBody } : null;
    if (judgedAhead(state, details.url)) return;
    state.pending = {
      url: details.url,
      reply: ask({ type: 'navigate', tab: details.tabId, url: details.url, post_data: postBytes(state.post?.body) }),
      at: Date.now(),
    };
  },
  { urls: ['<all_urls>'], types: ['main_frame'] },
  ['requestBody'],
);

// A redirect of a navigation let through for its one address: the next
// address comes to the question page, which lets it go on unasked.
chrome.webRequest.onBeforeRedirect.addListener(
  (details) => {
    const state = tabs.get(details.tabId);
    if (state?.allowRule && state.allowedUrl) state.redirectedTo = details.redirectUrl;
  },
  { urls: ['<all_urls>'], types: ['main_frame'] },
);

function withoutFragment(url) {
  const hash = url.indexOf('#');
  return hash < 0 ? url : url.slice(0, hash);
}

function lets(state, url) {
  if (!state.allowRule) return false;
  return state.allowedUrl === null || withoutFragment(state.allowedUrl) === withoutFragment(url);
}

function judgedAhead(state, url) {
  return state.pending?.url === url && Date.now() - state.pending.at < PENDING_KEPT_MS;
}

// Only an address the rule language can state exactly is let through alone:
// the filter's own wildcards must not widen it. The rules see the fragment.
function exactFilter(url) {
  return url.length > MAX_EXACT_URL || /[*^|]/.test(url) ? null : `|${url}|`;
}

// A navigation the page holds back until the band has judged it (content.js
// starts it again once this answers). When it may go, a rule lets that one
// address through, so it is requested straight from the page; otherwise it
// meets the question page, which takes the verdict kept here.
async function judgeAhead(tabId, url) {
  if (hostDown || !isWeb(url) || !exactFilter(url)) return {};
  const state = tab(tabId);
  // The page has gone on to another address: what it was let through to before is void.
  if (state.allowedUrl) endAllow(tabId, state.allowRule);
  const pending = { url, reply: ask({ type: 'navigate', tab: tabId, url }), at: Date.now() };
  state.pending = pending;
  const reply = await pending.reply;
  if (state.pending !== pending || reply.type === 'error' || reply.cancel) return {};
  // The page waits on the rule, not on the strip: what the band shows is
  // done once the page has its answer. Refused, the rule leaves the
  // navigation to the question page, which takes the verdict kept for it.
  await allowOnce(tabId, url).then(() => {
    if (state.pending === pending) state.pending = null;
    setTimeout(() => carryOut(tabId, reply).catch(() => {}), 0);
  }, () => endAllow(tabId, state.allowRule));
  return {};
}

// Lets the tab's next navigation past the guard rule: any address (from the
// question page, whose redirects must follow it) or only `url`, so that the
// page cannot put another address in its place meanwhile.
async function allowOnce(tabId, url = null) {
  await rulesCleared;
  const state = tab(tabId);
  if (state.allowRule && state.allowedUrl === url) return state.allowing;
  const replaced = state.allowRule;
  const id = nextRuleId++;
  const condition = { tabIds: [tabId], resourceTypes: ['main_frame'] };
  if (url) Object.assign(condition, { urlFilter: exactFilter(url), isUrlFilterCaseSensitive: true });
  state.allowRule = id;
  state.allowedUrl = url;
  state.allowing = chrome.declarativeNetRequest.updateSessionRules({
    removeRuleIds: replaced ? [replaced] : [],
    addRules: [{ id, priority: 2, action: { type: 'allow' }, condition }],
  });
  setTimeout(() => endAllow(tabId, id), ALLOW_RULE_MS);
  return state.allowing;
}

function endAllow(tabId, id) {
  const state = tabs.get(tabId);
  if (!id || (state && state.allowRule !== id)) return;
  if (state) Object.assign(state, { allowRule: 0, allowedUrl: null, allowing: null, redirectedTo: null });
  chrome.declarativeNetRequest.updateSessionRules({ removeRuleIds: [id] }).catch(() => {});
}

// What check.html is told: go on (with the form to send again), ask the
// person, or nothing at all for a window that is being closed.
async function verdict(tabId, url, openedBy) {
  const state = tab(tabId);
  if (openedBy !== undefined && !state.committed) {
    const allowed = await popupDecided(state);
    if (allowed === false) return { closed: true };
  }
  const post = state.post?.url === url ? state.post.body?.formData ?? null : null;
  if (state.redirectedTo === url) {
    state.redirectedTo = null;
    await allowOnce(tabId);
    return { go: true, post, url };
  }
  let pending = judgedAhead(state, url) ? state.pending.reply : null;
  state.pending = null;
  if (!pending) pending = ask({ type: 'navigate', tab: tabId, url });
  const reply = await pending;
  if (reply.type === 'error') return { go: true, post, url, error: reply.error };
  await carryOut(tabId, reply);
  if (reply.cancel) {
    // The tab now shows the question page, a page of its own: the band must
    // not take a second try at the same address for a jump within a page.
    await ask({ type: 'navigate', tab: tabId, url: QUESTION_PAGE });
    return { go: false, message: reply.message, post, url };
  }
  await allowOnce(tabId);
  return { go: true, post, url };
}

// Yes on the question page: the band hears the navigation again with the
// person's answer, and the tab may go on once.
async function agreed(tabId, url) {
  const state = tab(tabId);
  const post = state.post?.url === url ? postBytes(state.post.body) : null;
  const reply = await ask({ type: 'navigate', tab: tabId, url, post_data: post, agreed: true });
  if (reply.type !== 'error') await carryOut(tabId, reply);
  await allowOnce(tabId);
}

chrome.webNavigation.onCommitted.addListener(async (details) => {
  if (details.frameId !== 0) return;
  const state = tab(details.tabId);
  if (!isWeb(details.url)) return;
  state.committed = true;
  endAllow(details.tabId, state.allowRule);
  if (hostDown) return;
  const reply = await ask({ type: 'complete', tab: details.tabId, url: details.url });
  await carryOut(details.tabId, reply);
});

// The permission ends with the first answer that is not a redirect: a
// redirect's next address goes on under it (and is judged when it commits,
// as the band judges where a redirect ended), anything after it is checked.
chrome.webRequest.onHeadersReceived.addListener(
  (details) => {
    if (details.tabId < 0 || (details.statusCode >= 300 && details.statusCode < 400)) return;
    endAllow(details.tabId, tabs.get(details.tabId)?.allowRule);
  },
  { urls: ['<all_urls>'], types: ['main_frame'] },
);

chrome.webNavigation.onErrorOccurred.addListener((details) => {
  if (details.frameId === 0 && isWeb(details.url)) endAllow(details.tabId, tabs.get(details.tabId)?.allowRule);
});

chrome.tabs.onRemoved.addListener((tabId) => {
  const state = tabs.get(tabId);
  if (state) endAllow(tabId, state.allowRule);
  tabs.delete(tabId);
  if (port) ask({ type: 'close', tab: tabId });
});

// --- pop-ups --------------------------------------------------------------

function popupDecided(state) {
  if (state.popupDecision) return state.popupDecision;
  return new Promise((resolve) => {
    state.popupWaiters.push(resolve);
    setTimeout(() => resolve(undefined), OPENING_WAIT_MS * 2);
  }).then(() => state.popupDecision);
}

// Each window the page opens is reported once, in the order they open.
function openingOf(source) {
  const now = Date.now();
  source.openings = source.openings.filter((opening) => now - opening.at <= OPENING_KEPT_MS);
  const opening = source.openings.shift();
  if (opening) return opening;
  if (source.contextMenu && now - source.contextMenu.at <= CONTEXT_MENU_MS) return source.contextMenu;
  return null;
}

function reportOpening(state, opening) {
  const now = Date.now();
  state.late = state.late.filter((at) => now - at <= OPENING_KEPT_MS);
  if (opening.event_type === 'contextmenu') state.contextMenu = opening;
  else if (state.late.length) state.late.shift(); // its window was judged without it
  else state.openings.push(opening);
}

chrome.webNavigation.onCreatedNavigationTarget.addListener((details) => {
  const target = tab(details.tabId);
  const source = tab(details.sourceTabId);
  target.popupDecision = (async () => {
    let opening = openingOf(source);
    for (let waited = 0; !opening && waited < OPENING_WAIT_MS; waited += 10) {
      await new Promise((resolve) => setTimeout(resolve, 10));
      opening = openingOf(source);
    }
    if (!opening) source.late.push(Date.now());
    const reply = await ask({
      type: 'popup',
      tab: details.sourceTabId,
      event_type: opening?.event_type ?? null,
      active_element: opening?.active_element ?? false,
    });
    if (reply.type === 'error') return true;
    await carryOut(details.sourceTabId, reply);
    if (!reply.allowed) await chrome.tabs.remove(details.tabId).catch(() => {});
    return reply.allowed;
  })();
  for (const resolve of target.popupWaiters.splice(0)) resolve();
});

// --- messages from the extension's pages and the content script -----------

// Only the question page as a tab's own page speaks for the tab's navigation:
// the page is open to the web (a navigation must reach it), so a site could
// frame it to earn its tab a pass.
function fromQuestionPage(sender) {
  if (sender.frameId !== 0 || !sender.tab || !sender.url?.startsWith(QUESTION_PAGE)) {
    throw new Error('only the question page of a tab may ask this');
  }
}

const handlers = {
  // check.html
  verdict: (message, sender) => {
    fromQuestionPage(sender);
    return verdict(sender.tab.id, message.url, sender.tab.openerTabId);
  },
  allow: async (message, sender) => {
    fromQuestionPage(sender);
    await agreed(sender.tab.id, message.url);
    return { ok: true };
  },
  // the content script
  leaving: (message, sender) => (sender.frameId === 0 && sender.tab ? judgeAhead(sender.tab.id, String(message.url)) : {}),
  ctrl: (message) => {
    ctrlDown = Boolean(message.down);
    return {};
  },
  opening: (message, sender) => {
    reportOpening(tab(sender.tab.id), {
      event_type: message.event_type ?? null,
      active_element: Boolean(message.active_element),
      at: Date.now(),
    });
    return {};
  },
  document: async (message, sender) => {
    const reply = await ask({ type: 'document', tab: sender.tab.id, url: message.url, forms: message.forms });
    return { actions: await carryOut(sender.tab.id, reply) };
  },
  submit: (message, sender) =>
    ask({ type: 'submit', tab: sender.tab.id, form: message.form, fields: message.fields }),
  // the popup
  popup: async (message) => {
    if (hostDown) return { down: hostDown };
    const [strip, menus] = await Promise.all([ask({ type: 'strip', tab: message.tab }), ask({ type: 'menus' })]);
    return { strip, menus };
  },
  menu: async (message) => {
    const reply = await ask({ type: 'menu', tab: message.tab, menu: message.menu, choice: message.choice });
    await carryOut(message.tab, reply);
    return reply;
  },
  search: async (message) => {
    const reply = await ask({ type: 'search', tab: message.tab, query: message.query });
    await carryOut(message.tab, reply);
    return reply;
  },
  trust: (message) => ask({ type: 'trust', tab: message.tab, url: message.url, trusted: message.trusted }),
  // the options, about and block pages
  options: (message) => ask({ type: 'options', changes: message.changes, press: message.press, key: message.key }),
  trusted: (message) => ask(message.sites ? { type: 'trusted', sites: message.sites } : { type: 'trusted' }),
  about: async (message) => {
    const reply = await ask({ type: 'about', press: message.press });
    if (reply.notices?.length) showNotices(reply.notices);
    return reply;
  },
  resource: async (message) => {
    if (!resources.has(message.name)) {
      const reply = await ask({ type: 'resource', name: message.name });
      if (reply.type === 'error') return reply;
      resources.set(message.name, reply);
    }
    return resources.get(message.name);
  },
  state: () => ({ down: hostDown }),
};

function handle(message, sender) {
  const handler = handlers[message?.type];
  if (!handler) return null;
  return Promise.resolve()
    .then(() => handler(message, sender))
    .catch((error) => ({ type: 'error', error: String(error) }));
}

chrome.runtime.onMessage.addListener((message, sender, sendResponse) => {
  const answer = handle(message, sender);
  if (!answer) return false;
  answer.then(sendResponse);
  return true;
});

// The content script's port (content.js): the same messages, each answered under its id.
chrome.runtime.onConnect.addListener((page) => {
  page.onMessage.addListener(({ id, message }) => {
    const answer = handle(message, page.sender) ?? Promise.resolve(null);
    answer.then((reply) => page.postMessage({ id, reply })).catch(() => {});
  });
});

connect();
