/* Replaces what differs between the page and its next version, and nothing else: the scroll position, the focus and what the
   reader has opened stay as they are. */

/* Makes the element `shown` equal to `next`, apart from the state of details, which is the reader's. */
function updateElement(shown, next) {
  for (const { name } of [...shown.attributes]) {
    if (name !== "open" && !next.hasAttribute(name)) shown.removeAttribute(name);
  }
  for (const { name, value } of next.attributes) {
    if (name !== "open" && shown.getAttribute(name) !== value) shown.setAttribute(name, value);
  }
  updateChildren(shown, [...shown.childNodes], [...next.childNodes]);
}

function updateNode(shown, next) {
  if (shown.isEqualNode(next)) return;
  if (shown.nodeType === Node.ELEMENT_NODE && shown.nodeName === next.nodeName) updateElement(shown, next);
  else shown.replaceWith(next);
}

/* Children that are equal at the begin and at the end stay: what was edited is between them. */
function updateChildren(parent, shown, next) {
  let begin = 0;
  let end = 0;
  const least = Math.min(shown.length, next.length);
  while (begin < least && shown[begin].isEqualNode(next[begin])) begin++;
  while (end < least - begin && shown.at(-1 - end).isEqualNode(next.at(-1 - end))) end++;
  const place = shown[shown.length - end] ?? null;
  const changed = shown.slice(begin, shown.length - end);
  const wanted = next.slice(begin, next.length - end);
  const both = Math.min(changed.length, wanted.length);
  for (let i = 0; i < both; i++) updateNode(changed[i], wanted[i]);
  for (const node of changed.slice(both)) node.remove();
  for (const node of wanted.slice(both)) parent.insertBefore(node, place);
}

/* Returns the id that the line `shown` has in the document `next`, if an edit was at one place: the lines after it have moved
   by as many lines as have come or gone. */
function idOfLine(shown, next) {
  const [file, number] = shown.id.split("-");
  const countLines = (text) => text.querySelectorAll(`li[id^="${file}-"]`).length;
  const moved = `${file}-${Number(number) + countLines(next) - countLines(document)}`;
  const isSame = (id) => next.getElementById(id)?.textContent === shown.textContent;
  return !isSame(shown.id) && isSame(moved) ? moved : shown.id;
}

/* Keeps the line in the middle of the window where it is. The browser would keep its element there, which may get the text
   of another line. */
function keepPlace(next, update) {
  const line = document.elementFromPoint(innerWidth / 2, innerHeight / 2)?.closest("li[id]");
  if (!line) return update();
  const id = idOfLine(line, next);
  const top = line.getBoundingClientRect().top;
  document.documentElement.style.overflowAnchor = "none";
  update();
  const place = document.getElementById(id);
  if (place) scrollBy(0, place.getBoundingClientRect().top - top);
  requestAnimationFrame(() => { document.documentElement.style.overflowAnchor = ""; });
}

async function showNextVersion() {
  const answer = await fetch("./");
  if (!answer.ok) return;
  const next = new DOMParser().parseFromString(await answer.text(), "text/html");
  keepPlace(next, () => updateElement(document.body, next.body));
  document.title = next.title;
}

/* One version after the other, and after a burst of them only the last. */
let isUpdating = false;
let isOld = false;
async function follow() {
  isOld = true;
  if (isUpdating) return;
  isUpdating = true;
  while (isOld) {
    isOld = false;
    await showNextVersion().catch(() => {});
  }
  isUpdating = false;
}

/* A page that the reader has left may be kept for the way back; it does not follow meanwhile. */
let events;
addEventListener("pageshow", () => {
  const title = document.title;
  events = new EventSource("events");
  events.onmessage = follow;
  events.onerror = () => { document.title = "(not connected) " + title; };
});
addEventListener("pagehide", () => events.close());
