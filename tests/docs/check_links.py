#!/usr/bin/env python3
"""Whether every link of a site leads somewhere: to a file, and to a place on a page. Links that leave the site are refused, as
nobody would notice when they break. No network.

Use: check_links.py FOLDER
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

#: What the theme puts under every page.
FOOTER = {"https://www.sphinx-doc.org/", "https://pradyunsg.me", "https://github.com/pradyunsg/furo"}


class Page(HTMLParser):
    def __init__(self, file: Path) -> None:
        super().__init__()
        self.links, self.places = set(), set()
        self.feed(file.read_text())

    def handle_starttag(self, tag: str, attributes: list) -> None:
        for name, value in attributes:
            if name in ("href", "src") and value:
                self.links.add(value)
            elif name in ("id", "name") and value:
                self.places.add(value)


def main(folder: str) -> int:
    root = Path(folder).resolve()
    pages = {file: Page(file) for file in root.rglob("*.html")}
    checked, broken = 0, []
    for file, page in sorted(pages.items()):
        for link in sorted(page.links):
            parts = urlsplit(link)
            if parts.scheme or parts.netloc:
                if link not in FOOTER:
                    broken.append(f"{file.relative_to(root)}: {link} leaves the site")
                continue
            checked += 1
            target = (file.parent / unquote(parts.path)).resolve() if parts.path else file
            target = target / "index.html" if target.is_dir() else target
            if not target.is_file() or root not in target.parents:
                broken.append(f"{file.relative_to(root)}: {link} leads nowhere")
            elif parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].places:
                broken.append(f"{file.relative_to(root)}: {link}: there is no such place on the page")
    print("\n".join(broken) or f"{checked} links of {len(pages)} pages")
    return 1 if broken or not checked else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) == 2 else __doc__)
