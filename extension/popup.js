// The toolbar button's popup: the band's site information strip (the
// server's text with its links, the red risk bar, the hosting country), its
// two menus and the search box, and the person's trust in the site on show.
const $ = (id) => document.getElementById(id);
const send = (message) => chrome.runtime.sendMessage(message);
let tabId;

function link(text, href) {
  const anchor = document.createElement('a');
  anchor.textContent = text;
  anchor.href = href;
  anchor.addEventListener('click', (event) => {
    event.preventDefault();
    chrome.tabs.update(tabId, { url: href });
    window.close();
  });
  return anchor;
}

function showStrip(strip) {
  const text = $('text');
  text.replaceChildren();
  for (const run of strip.runs ?? []) {
    if (run.kind === 'link') text.append(link(run.text, run.target));
    else if (run.kind === 'text') text.append(run.text);
    else if (run.kind === 'country') text.append(country(run.target, run.text));
  }
  const rank = strip.risk_rank;
  $('risk').hidden = rank < 0;
  $('risk-bar').style.width = `${Math.max(0, Math.min(10, rank)) * 10}%`;
  $('risk').title = `Risk rating: ${rank}/10`;
  if (strip.risk_link) {
    $('risk').onclick = () => {
      chrome.tabs.update(tabId, { url: strip.risk_link });
      window.close();
    };
  }
}

// The hosting country where the server's text names it: its flag (the
// country code on a flag-shaped badge) and its name.
function country(code, name) {
  const place = document.createElement('span');
  place.className = 'country';
  place.title = name;
  const flag = document.createElement('span');
  flag.className = 'flag';
  flag.textContent = code;
  const label = document.createElement('span');
  label.className = 'country-name';
  label.textContent = name;
  place.append(flag, ' ', label);
  return place;
}

function fillMenu(list, entries, menu) {
  for (const entry of entries) {
    const item = document.createElement('li');
    if (entry.items) {
      const caption = document.createElement('span');
      caption.className = 'submenu';
      caption.textContent = entry.caption;
      const sub = document.createElement('ul');
      fillMenu(sub, entry.items, menu);
      item.append(caption, sub);
    } else {
      const button = document.createElement('button');
      button.type = 'button';
      button.textContent = entry.caption;
      button.title = entry.link;
      button.dataset.number = entry.number;
      button.addEventListener('click', () => choose(menu, entry.number));
      item.append(button);
    }
    list.append(item);
  }
}

async function choose(menu, choice) {
  const reply = await send({ type: 'menu', tab: tabId, menu, choice });
  if (reply?.type !== 'error' && !reply?.notices?.length) window.close();
}

function menuButton(button, list, entries, menu) {
  fillMenu(list, entries, menu);
  button.addEventListener('click', () => {
    const open = list.hidden;
    for (const other of document.querySelectorAll('.menu')) other.hidden = true;
    list.hidden = !open;
  });
}

function showTrust(site, trusted) {
  $('trust-line').hidden = !site;
  $('site').textContent = site;
  $('trust').textContent = trusted ? 'Remove from Trusted Sites' : 'Add to Trusted Sites';
  $('trust').onclick = async () => {
    const reply = await send({ type: 'trust', tab: tabId, trusted: !trusted });
    if (reply?.type === 'trust') showTrust(reply.site, reply.trusted);
  };
}

async function load() {
  // From the toolbar button it shows the active tab; opened as a page of its
  // own (popup.html?tab=ID) it shows the tab named.
  const named = Number(new URLSearchParams(location.search).get('tab'));
  if (named) tabId = named;
  else [{ id: tabId }] = await chrome.tabs.query({ active: true, currentWindow: true });
  const state = await send({ type: 'popup', tab: tabId });
  if (state.down) {
    $('down').textContent = `Tarnwick Toolbar is off: ${state.down}. Nothing is blocked. ` +
      'Run tarnwick-host --install and restart the browser.';
    $('down').hidden = false;
    $('toolbar').hidden = true;
    $('strip').hidden = true;
    return;
  }
  const { strip, menus } = state;
  showStrip(strip.strip ?? {});
  showTrust(strip.site, strip.trusted);
  $('product-bitmap').src = `data:image/bmp;base64,${menus.product_bitmap}`;
  if (menus.product) menuButton($('product-button'), $('product-menu'), menus.product, 'product');
  if (menus.client && menus.client_logo) {
    $('client-logo').src = `data:image/bmp;base64,${menus.client_logo}`;
    $('client-button').hidden = false;
    menuButton($('client-button'), $('client-menu'), menus.client, 'client');
  }
  $('search').addEventListener('submit', async (event) => {
    event.preventDefault();
    await send({ type: 'search', tab: tabId, query: $('query').value });
    window.close();
  });
}

load();
