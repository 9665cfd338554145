// The page every top-level navigation is redirected to before it is
// requested: it asks the service worker for the host's verdict and then lets
// the navigation go on (taking its own history entry out of the way) or asks
// the person the band's "Page Blocked" question. No is the default; Yes goes
// on to the site once; No stays here.
const target = location.hash.slice(1);
const $ = (id) => document.getElementById(id);
const WORKER_TRIES = 50;

function goOn(post) {
  if (!post) {
    location.replace(target);
    return;
  }
  // A checked form is sent again with its fields; this entry stays in the
  // history, so it remembers that the form went.
  history.replaceState({ sent: true }, '');
  const form = document.createElement('form');
  form.method = 'post';
  form.action = target;
  for (const [name, values] of Object.entries(post)) {
    for (const value of values) {
      const field = document.createElement('input');
      field.type = 'hidden';
      field.name = name;
      field.value = value;
      form.append(field);
    }
  }
  document.body.append(form);
  form.submit();
}

function ask(verdict) {
  // Most navigations go on at once: the stylesheet is only fetched to ask.
  const style = document.createElement('link');
  style.rel = 'stylesheet';
  style.href = 'style.css';
  document.head.append(style);
  document.title = 'Page Blocked';
  $('message').textContent = verdict.message ?? '';
  $('question').hidden = false;
  $('no').focus();
  $('yes').addEventListener('click', async () => {
    await chrome.runtime.sendMessage({ type: 'allow', url: target });
    goOn(verdict.post);
  });
  $('no').addEventListener('click', () => {
    $('question').hidden = true;
    $('stayed-url').textContent = target;
    $('stayed').hidden = false;
    document.title = 'Page Blocked';
  });
}

function back(event) {
  event.preventDefault();
  history.back();
}

// At the browser's start the page can come before the service worker
// listens; it is asked again for a while, and a worker that never answers
// blocks nothing.
async function verdictFor(url) {
  for (let attempt = 1; ; attempt++) {
    try {
      return await chrome.runtime.sendMessage({ type: 'verdict', url });
    } catch (error) {
      if (attempt === WORKER_TRIES) return { go: true, post: null };
      await new Promise((resolve) => setTimeout(resolve, 100));
    }
  }
}

async function check() {
  $('back').addEventListener('click', back);
  $('sent-back').addEventListener('click', back);
  if (history.state?.sent) {
    document.title = 'Form sent';
    $('sent').hidden = false;
    return;
  }
  const verdict = await verdictFor(target);
  if (!verdict || verdict.closed) return;
  if (verdict.go) goOn(verdict.post);
  else ask(verdict);
}

check();
