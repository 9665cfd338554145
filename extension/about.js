// The about dialog, drawn from the band's model (frmAbout).
const $ = (id) => document.getElementById(id);

function show(about) {
  if (about.type === 'error') {
    $('title').textContent = `The about dialog cannot be shown: ${about.error}`;
    return;
  }
  document.title = about.caption;
  $('title').textContent = about.title;
  $('version').textContent = about.version;
  $('description').textContent = about.description;
  $('disclaimer').textContent = about.disclaimer;
  $('ok').textContent = about.ok;
  // "&S" marks the access key, as on the dialog's button.
  const access = about.sys_info.indexOf('&');
  $('sys-info').textContent = about.sys_info.replace('&', '');
  if (access >= 0) $('sys-info').accessKey = about.sys_info[access + 1];
}

$('ok').addEventListener('click', () => window.close());
$('sys-info').addEventListener('click', async () => show(await chrome.runtime.sendMessage({ type: 'about', press: 'cmdSysInfo' })));
chrome.runtime.sendMessage({ type: 'about' }).then(show);
