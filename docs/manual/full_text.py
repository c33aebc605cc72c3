"""Makes the index of the full-text search: the text of each section of the built manual, as a script that a browser can
load from a file. Doxygen's own search knows names and titles only."""
import html.parser
import json
import re

LISTS = re.compile(r"-members\.html$|^(annotated|classes|files|hierarchy|pages|full-text-search|(functions|globals)(_\w+)?)"
                   r"\.html$")
HEADINGS = {"h1", "h2", "h3", "h4"}


class Sections(html.parser.HTMLParser):
    """Splits a page at its headings. The anchor of a heading is in it or directly before it."""

    def __init__(self, text):
        super().__init__()
        self.found = []  # [heading, anchor, words]
        self.title, self.anchor = "", ""
        self.heading = None  # the tag, while in a heading
        self.in_title = self.is_content = False
        self.hidden = 0
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag == "title":
            self.in_title = True
        elif tag in ("script", "style"):
            self.hidden += 1
        elif tag == "div" and "contents" in (attrs.get("class") or "").split():
            self.is_content = True
            self.found.append(["", "", []])
        elif tag == "a" and attrs.get("id"):
            self.anchor = attrs["id"]
            if self.heading:
                self.found[-1][1] = self.anchor
        elif tag in HEADINGS and self.is_content:
            self.heading = tag
            self.found.append(["", self.anchor, []])

    def handle_endtag(self, tag):
        if tag == "title":
            self.in_title = False
        elif tag in ("script", "style"):
            self.hidden -= 1
        elif tag == self.heading:
            self.heading, self.anchor = None, ""

    def handle_data(self, data):
        if self.in_title:
            self.title += data
        elif self.heading:
            self.found[-1][0] += data
        elif self.is_content and not self.hidden:
            self.found[-1][2].append(data)


def entries(path):
    """Returns the sections of a page: title of the page, heading, link and text."""
    page = Sections(path.read_text(encoding="utf-8"))
    title = page.title.split(": ", 1)[-1]
    for heading, anchor, words in page.found:
        text = " ".join(" ".join(words).split())
        heading = " ".join(heading.replace("\u25c6", "").split())
        if text or heading:
            yield [title, heading, path.name + (f"#{anchor}" if anchor else ""), text]


def write_index(manual):
    index = [entry for path in sorted(manual.glob("*.html")) if not LISTS.search(path.name) for entry in entries(path)]
    text = json.dumps(index, ensure_ascii=False, separators=(",", ":"))
    (manual / "full-text-index.js").write_text(f"const fullText = {text};\n", encoding="utf-8")
