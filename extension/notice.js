// The band's other message boxes (a broken component, an update, a command
// this version lacks), shown as they came. A question among them was
// answered No for now.
const notices = JSON.parse(decodeURIComponent(location.hash.slice(1) || '[]'));
const list = document.getElementById('notices');
for (const notice of notices) {
  const box = document.createElement('section');
  const title = document.createElement('h1');
  title.textContent = notice.title;
  const text = document.createElement('p');
  text.textContent = notice.text;
  box.append(title, text);
  list.append(box);
  document.title = notice.title;
}
document.getElementById('ok').addEventListener('click', () => window.close());
