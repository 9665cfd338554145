// A navigation the band asked for with post data (the search box): the data
// is sent as the form the band built, URL-encoded.
const request = JSON.parse(decodeURIComponent(location.hash.slice(1)));
const form = document.createElement('form');
form.method = 'post';
form.action = request.url;
for (const pair of atob(request.post_data).split('&')) {
  if (!pair) continue;
  const [name, value = ''] = pair.split('=').map((part) => decodeURIComponent(part.replace(/\+/g, ' ')));
  const field = document.createElement('input');
  field.type = 'hidden';
  field.name = name;
  field.value = value;
  form.append(field);
}
document.body.append(form);
history.replaceState(null, '', location.pathname);
form.submit();
