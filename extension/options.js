// The options dialog, drawn from the band's own model (frmOptions): every
// control the model lists, in its order, with its caption, value and labels.
// Each change is played back to a freshly loaded model, which answers with
// the controls as they now stand; OK writes the settings file the command
// line reads. The Trusted Sites list is edited below it.
const $ = (id) => document.getElementById(id);
const send = (message) => chrome.runtime.sendMessage(message);
let changes = [];

function control(view) {
  const row = document.createElement('div');
  row.className = `control ${view.kind}`;
  row.dataset.id = view.id;
  const id = `c-${view.id}`;
  if (view.kind === 'label') {
    const heading = document.createElement('h2');
    heading.textContent = view.caption;
    row.append(heading);
  } else if (view.kind === 'check_box') {
    const box = document.createElement('input');
    box.type = 'checkbox';
    box.id = id;
    box.checked = view.value !== 0;
    box.disabled = !view.enabled;
    box.addEventListener('change', () => change({ id: view.id, value: box.checked ? 1 : 0 }));
    const label = document.createElement('label');
    label.htmlFor = id;
    label.textContent = view.caption;
    row.append(box, label);
  } else if (view.kind === 'text_box') {
    const label = document.createElement('label');
    label.htmlFor = id;
    label.textContent = view.caption;
    const input = document.createElement('input');
    input.type = 'text';
    input.id = id;
    input.value = view.text;
    input.disabled = !view.enabled;
    input.addEventListener('change', () => change({ id: view.id, text: input.value }));
    row.append(label, input);
  } else if (view.kind === 'slider') {
    const label = document.createElement('label');
    label.htmlFor = id;
    label.textContent = view.caption;
    const slider = document.createElement('input');
    slider.type = 'range';
    slider.id = id;
    slider.min = view.min;
    slider.max = view.max;
    slider.step = view.small_step || 1;
    slider.value = view.value;
    slider.disabled = !view.enabled;
    slider.addEventListener('change', () => change({ id: view.id, value: Number(slider.value) }));
    const value = document.createElement('output');
    value.htmlFor = id;
    value.textContent = `${view.value_label}${view.unit_label ? ' ' : ''}${view.unit_label.trim()}`;
    row.append(label, slider, value);
  } else if (view.kind === 'button') {
    const button = document.createElement('button');
    button.type = 'button';
    button.id = id;
    button.textContent = view.caption;
    button.disabled = !view.enabled;
    button.addEventListener('click', () => press(view.id));
    row.append(button);
  }
  return row;
}

function render(reply) {
  if (reply.type === 'error') {
    $('down').textContent = `The options cannot be shown: ${reply.error}`;
    $('down').hidden = false;
    return;
  }
  $('caption').textContent = reply.caption;
  document.title = reply.caption;
  const controls = $('controls');
  controls.replaceChildren();
  const buttons = document.createElement('div');
  buttons.className = 'buttons';
  for (const view of reply.controls) (view.kind === 'button' ? buttons : controls).append(control(view));
  controls.append(buttons);
}

async function change(step) {
  changes.push(step);
  $('status').textContent = '';
  render(await send({ type: 'options', changes }));
}

async function press(id) {
  if (id === 'cbReset') return change({ press: 'cbReset' });
  const reply = await send({ type: 'options', changes, press: id });
  changes = [];
  render(await send({ type: 'options', changes }));
  $('status').textContent = reply.saved ? 'Options saved.' : 'Nothing was changed.';
}

async function showSites(reply) {
  if (reply.type === 'error') {
    $('sites-status').textContent = reply.error;
    return false;
  }
  $('sites').value = reply.sites.join('\n');
  return true;
}

async function load() {
  render(await send({ type: 'options', changes }));
  await showSites(await send({ type: 'trusted' }));
  $('save-sites').addEventListener('click', async () => {
    const sites = $('sites').value.split(/\s+/).filter(Boolean);
    if (await showSites(await send({ type: 'trusted', sites }))) $('sites-status').textContent = 'Trusted Sites saved.';
  });
  $('form').addEventListener('keydown', (event) => {
    if (event.key === 'Enter' && event.target.tagName !== 'BUTTON') {
      event.preventDefault();
      press('cbOK');
    } else if (event.key === 'Escape') {
      press('cbCancel');
    }
  });
}

load();
