// The content script of every web page (top frame): it tells the service
// worker what the band asks about the page (whether Ctrl is held, how a new
// window was opened, the page's named forms, where the page is going) and
// carries out what the band asks of the page (fill in and focus fields,
// watch a form's submission).
// Password and file fields are never read.
(() => {
  if (window !== window.top) return;
  const MAX_VALUE = 4096;
  // One port to the service worker for the page's life: a navigation held
  // back waits on its answer, and a port answers sooner than a message that
  // opens a channel of its own. It closes when the page goes into the
  // back-forward cache or the worker restarts, and is opened again on use.
  let port = null;
  let nextId = 1;
  const answers = new Map();
  const connect = () => {
    port = chrome.runtime.connect({ name: 'page' });
    port.onMessage.addListener(({ id, reply }) => {
      answers.get(id)?.(reply);
      answers.delete(id);
    });
    port.onDisconnect.addListener(() => {
      port = null;
      for (const resolve of answers.values()) resolve(null);
      answers.clear();
    });
  };
  const send = (message) =>
    new Promise((resolve) => {
      try {
        if (!port) connect();
        const id = nextId++;
        answers.set(id, resolve);
        port.postMessage({ id, message });
      } catch {
        resolve(null);
      }
    });

  let ctrl = false;
  const setCtrl = (down) => {
    if (down === ctrl) return;
    ctrl = down;
    send({ type: 'ctrl', down });
  };
  addEventListener('keydown', (event) => event.key === 'Control' && setCtrl(true), true);
  addEventListener('keyup', (event) => event.key === 'Control' && setCtrl(false), true);
  addEventListener('blur', () => setCtrl(false), true);

  // A navigation the page starts itself (a link, a script, a form sent by
  // GET) is held back while the band judges it, then started again as it
  // was: when the band lets it go, the service worker has let exactly that
  // address through, so it goes straight to the site instead of by way of
  // the question page, which judges everything that is not held back here.
  // One held too long is started anyway and meets the question page.
  const LEAVING_WAIT_MS = 250;
  let restarting = null;
  let held = 0;
  const changesItsRequest = (element) =>
    Boolean(element?.hasAttribute?.('referrerpolicy') || element?.hasAttribute?.('ping') ||
      /\bnoreferrer\b/i.test(element?.getAttribute?.('rel') ?? ''));
  const mayHoldBack = (event) =>
    event.cancelable && !event.hashChange && !event.destination.sameDocument && event.downloadRequest === null &&
    !event.formData && ['push', 'replace'].includes(event.navigationType) &&
    /^https?:/i.test(event.destination.url) && !changesItsRequest(event.sourceElement);
  window.navigation?.addEventListener('navigate', (event) => {
    const url = event.destination.url;
    if (restarting === url) {
      restarting = null;
      return;
    }
    if (!mayHoldBack(event)) return;
    event.preventDefault();
    const mine = ++held;
    const history = event.navigationType;
    const waited = new Promise((resolve) => setTimeout(resolve, LEAVING_WAIT_MS));
    Promise.race([send({ type: 'leaving', url }), waited]).then(() => {
      if (mine !== held) return;
      restarting = url;
      const { committed, finished } = navigation.navigate(url, { history });
      committed.catch(() => {});
      finished.catch(() => {});
    });
  });

  const activeElement = () => {
    const active = document.activeElement;
    return Boolean(active) && active !== document.body && active !== document.documentElement;
  };
  // window.open, as page.js reports it from the page's own world.
  document.addEventListener('tarnwick-opening', (event) => {
    let detail = {};
    try {
      detail = JSON.parse(event.detail);
    } catch {
      return;
    }
    send({ type: 'opening', event_type: detail.event_type ?? null, active_element: Boolean(detail.active_element) });
  });
  // Links and forms that open a window of their own, and the context menu's
  // "open in new tab".
  const opensWindow = (element) => {
    const target = element?.closest?.('a[href], area[href], form')?.getAttribute('target');
    return target && !['_self', '_top', '_parent'].includes(target.toLowerCase());
  };
  for (const type of ['click', 'auxclick', 'submit']) {
    addEventListener(type, (event) => {
      if (type === 'auxclick' || opensWindow(event.target)) {
        send({ type: 'opening', event_type: event.isTrusted ? type : null, active_element: activeElement() });
      }
    }, true);
  }
  addEventListener('contextmenu', (event) => {
    if (event.isTrusted && event.target.closest?.('a[href], area[href]')) {
      send({ type: 'opening', event_type: 'contextmenu', active_element: activeElement() });
    }
  }, true);

  const fieldsOf = (form) => {
    const fields = {};
    for (const element of form.elements) {
      if (!element.name || ['password', 'file'].includes(element.type)) continue;
      if ((element.type === 'checkbox' || element.type === 'radio') && !element.checked) continue;
      fields[element.name] = String(element.value ?? '').slice(0, MAX_VALUE);
    }
    return fields;
  };
  const namedForms = () => {
    const forms = {};
    for (const form of document.forms) {
      const name = form.getAttribute('name');
      if (name && !(name in forms)) forms[name] = fieldsOf(form);
    }
    return forms;
  };
  const formNamed = (name) => [...document.forms].find((form) => form.getAttribute('name') === name);

  const carryOut = (actions) => {
    for (const action of actions ?? []) {
      const form = formNamed(action.form);
      const field = form?.elements.namedItem(action.field);
      if (action.do === 'fill' && field) field.value = action.value;
      else if (action.do === 'focus' && field) field.focus();
      else if (action.do === 'watch_submit' && form) {
        form.addEventListener('submit', () => send({ type: 'submit', form: action.form, fields: fieldsOf(form) }));
      }
    }
  };

  const describe = async () => {
    const reply = await send({ type: 'document', url: location.href, forms: namedForms() });
    carryOut(reply?.actions);
  };
  if (document.readyState === 'loading') document.addEventListener('DOMContentLoaded', describe, { once: true });
  else describe();
})();
