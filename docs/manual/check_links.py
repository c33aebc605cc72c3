"""Finds broken links in the built manual: files that do not exist, and anchors that a file does not have. The tree at the
side and the search index, which are JavaScript, are checked as well. Links to other sites are not followed; a page must
not load anything from one, because the manual is read without a network."""
import html.parser
import pathlib
import re
import urllib.parse

LOADED = {"img", "script", "link", "object", "iframe"}
IN_SCRIPT = re.compile(r"""["'](?:\.\./)?([\w.-]+\.html(?:#[\w-]+)?)["']""")


class PageLinks(html.parser.HTMLParser):
    """The anchors of a page, and its links, each with its line."""

    def __init__(self, text):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name == "id" or (name == "name" and tag == "a"):
                self.anchors.add(value)
            elif name in ("href", "src", "data") and value:
                self.links.append((value, self.getpos()[0], tag in LOADED))


def is_broken(link, page, pages, is_loaded):
    parts = urllib.parse.urlsplit(link)
    if parts.scheme in ("http", "https"):
        return is_loaded
    if parts.scheme:
        return False
    target = (page.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else page
    if not target.is_file():
        return True
    anchor = urllib.parse.unquote(parts.fragment)
    return bool(anchor) and target in pages and anchor not in pages[target].anchors


def broken_links(manual):
    """Returns the number of links in the directory, and those that are broken as "page:line: link"."""
    manual = manual.resolve()
    pages = {page: PageLinks(page.read_text(encoding="utf-8")) for page in sorted(manual.rglob("*.html"))}
    found = [(page, *link) for page, parsed in pages.items() for link in parsed.links]
    for script in sorted(manual.rglob("*.js")):
        text = script.read_text(encoding="utf-8")
        # Scripts of the search index are in a directory of their own, but their links count from the pages.
        found += [(manual / script.name, link, text.count("\n", 0, match.start()) + 1, False)
                  for match in IN_SCRIPT.finditer(text) for link in [match[1]]]
    broken = [f"{page.relative_to(manual)}:{line}: {link}" for page, link, line, is_loaded in found
              if not re.match(r"javascript:", link) and is_broken(link, page, pages, is_loaded)]
    return len(found), broken
