// Runs in the page's own world, before its scripts: a window the page opens
// is reported with what the page was doing at that moment (the event it was
// handling, if the person caused one, and whether an element had the focus),
// which is all the band needs to tell a pop-up the person asked for from one
// a script opened by itself.
(() => {
  const open = window.open;
  const report = () => {
    const event = window.event;
    const active = document.activeElement;
    const detail = {
      event_type: event && event.isTrusted ? event.type : null,
      active_element: Boolean(active) && active !== document.body && active !== document.documentElement,
    };
    document.dispatchEvent(new CustomEvent('tarnwick-opening', { detail: JSON.stringify(detail) }));
  };
  window.open = function (...args) {
    report();
    return open.apply(this, args);
  };
})();
