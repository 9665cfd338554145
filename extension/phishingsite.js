// about:PhishingSite: the band's own block page (phishingsite.htm with its
// logo.gif, its report link pointing at the configured web site), as the
// host hands it out.
async function show() {
  const [page, logo] = await Promise.all([
    chrome.runtime.sendMessage({ type: 'resource', name: 'phishingsite.htm' }),
    chrome.runtime.sendMessage({ type: 'resource', name: 'logo.gif' }),
  ]);
  if (!page?.text) {
    document.body.textContent = 'This phishing site has been blocked by the Tarnwick Toolbar.';
    return;
  }
  const parsed = new DOMParser().parseFromString(page.text, 'text/html');
  for (const image of parsed.querySelectorAll('img[src="logo.gif"]')) {
    if (logo?.base64) image.src = `data:image/gif;base64,${logo.base64}`;
  }
  document.title = parsed.title;
  for (const style of parsed.head.querySelectorAll('style')) document.head.append(style);
  document.body.replaceWith(document.adoptNode(parsed.body));
}

show();
