// The full-text search: shows the sections of the manual that contain all words, those with a word in their heading first.
(function () {
  "use strict";
  const input = document.getElementById("full-text-words");
  const results = document.getElementById("full-text-results");
  const LIMIT = 50;

  function element(tag, text, parent) {
    const made = document.createElement(tag);
    made.textContent = text;
    parent.appendChild(made);
    return made;
  }

  function rank(entry, words) {
    const title = (entry[0] + " " + entry[1]).toLowerCase(), text = entry[3].toLowerCase();
    let sum = 0;
    for (const word of words) {
      if (title.includes(word)) sum += 10;
      else if (text.includes(word)) sum += 1;
      else return 0;
    }
    return sum;
  }

  // Shows the text around the first word, with every word marked.
  function showText(text, words, parent) {
    const first = Math.max(0, Math.min(...words.map(word => text.toLowerCase().indexOf(word)).filter(at => at >= 0)));
    const start = Number.isFinite(first) ? Math.max(0, first - 80) : 0;
    let rest = text.slice(start, start + 240);
    const paragraph = element("p", start > 0 ? "\u2026 " : "", parent);
    while (rest) {
      const lower = rest.toLowerCase();
      const hits = words.map(word => [lower.indexOf(word), word.length]).filter(hit => hit[0] >= 0);
      if (!hits.length) break;
      const [at, length] = hits.reduce((one, other) => other[0] < one[0] ? other : one);
      paragraph.append(rest.slice(0, at));
      element("mark", rest.slice(at, at + length), paragraph);
      rest = rest.slice(at + length);
    }
    paragraph.append(rest);
  }

  function search() {
    const words = input.value.toLowerCase().split(/\s+/).filter(word => word);
    results.textContent = "";
    if (!words.length) return;
    const found = fullText.map(entry => [rank(entry, words), entry]).filter(pair => pair[0] > 0);
    found.sort((one, other) => other[0] - one[0]);
    element("p", found.length + (found.length === 1 ? " section" : " sections") +
      (found.length > LIMIT ? ", of which the first " + LIMIT + " are shown" : ""), results);
    for (const [, [title, heading, link, text]] of found.slice(0, LIMIT)) {
      const entry = element("div", "", results);
      element("a", heading && heading !== title ? title + ": " + heading : title, entry).href = link;
      showText(text, words, entry);
    }
  }

  input.addEventListener("input", search);
  input.value = new URLSearchParams(location.search).get("q") || "";
  search();
  input.focus();
})();
