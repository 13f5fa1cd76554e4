"""A report read as a browser and a script read it: its markup, the rules that it gives itself, its tables, its facts."""

import base64
import dataclasses
import hashlib
import html.parser

from program import strict_json
from rules import BrokenRule, require

VOID = {"meta", "link", "br", "hr", "img", "input", "wbr", "col"}
# Attributes by which a page asks for something else than itself.
REFERENCES = {"src", "href", "xlink:href", "action", "formaction", "data", "poster", "srcset", "background", "ping", "cite", "longdesc",
              "manifest", "codebase", "archive", "profile", "usemap", "imagesrcset"}
FORBIDDEN = {"iframe", "frame", "object", "embed", "applet", "base", "link", "img", "image", "audio", "video", "source", "track", "form",
             "foreignobject", "portal", "animate", "set"}


@dataclasses.dataclass
class Page:
    title: str
    tables: dict  # by id: rows of the body, each a list of texts
    heads: dict  # by id: the texts of the head's cells
    facts: dict
    shape: list  # every tag in order with its attributes' names


class Parser(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.shape, self.meta = [], [], {}
        self.inline = {"script": [], "style": []}  # (attributes, text)
        self.tables, self.heads, self.table, self.cell, self.in_head = {}, {}, None, None, False
        self.title = ""
        self.ids = []

    def handle_starttag(self, tag, attributes):
        self.handle_startendtag(tag, attributes, closed=False)

    def handle_startendtag(self, tag, attributes, closed=True):
        names = [name for name, _ in attributes]
        require(len(set(names)) == len(names), f"attributes given twice: {tag} {names}")
        require(tag not in FORBIDDEN, f"<{tag}> {attributes}")
        for name, value in attributes:
            require(not name.startswith("on") and name not in ("style", "srcdoc"), f"<{tag} {name}={value!r}>")
            require(name.replace("-", "").replace(":", "").isalnum(), f"an attribute named {name!r}")
            if name in REFERENCES:
                require(value.startswith("#"), f"<{tag} {name}={value!r}>")
            if name == "id":
                self.ids.append(value)
        self.shape.append((tag, tuple(names)))
        values = dict(attributes)
        if tag == "meta":
            self.meta[values.get("http-equiv") or values.get("name") or "charset"] = values.get("content") or values.get("charset")
            require(values.get("http-equiv") in (None, "Content-Security-Policy"), f"{values}")
        if tag in self.inline:
            self.inline[tag].append([values, ""])
        if tag == "table":
            self.table = values.get("id")
            self.tables[self.table], self.heads[self.table] = [], []
        elif tag == "thead":
            self.in_head = True
        elif tag == "tr" and not self.in_head:
            self.tables[self.table].append([])
        elif tag in ("td", "th"):
            self.cell = ""
        if not closed and tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        require(self.open and self.open[-1] == tag, f"</{tag}> closes {self.open[-3:]}")
        self.open.pop()
        if tag == "thead":
            self.in_head = False
        elif tag in ("td", "th"):
            (self.heads[self.table] if self.in_head else self.tables[self.table][-1]).append(self.cell)
            self.cell = None

    def handle_data(self, data):
        if self.cell is not None:
            self.cell += data
        if self.open and self.open[-1] in self.inline:
            self.inline[self.open[-1]][-1][1] += data
        if self.open[-2:] == ["head", "title"]:
            self.title += data

    def handle_comment(self, data):
        raise BrokenRule(f"a comment: {data!r}")

    def unknown_decl(self, data):
        raise BrokenRule(f"a declaration: {data!r}")

    def handle_pi(self, data):
        raise BrokenRule(f"an instruction: {data!r}")


def read(path):
    text = path.read_text("utf-8")
    require(text.startswith("<!DOCTYPE html>"), "a page in quirks mode")
    require(not any(ord(letter) < 32 and letter not in "\n\t" or letter in "\x7f\ufeff" for letter in text), "control characters")
    parser = Parser()
    parser.feed(text)
    parser.close()
    require(parser.open == [], f"open at the end: {parser.open}")
    require(len(set(parser.ids)) == len(parser.ids), "an id given twice")
    check_policy(parser)
    facts = [body for values, body in parser.inline["script"] if values.get("id") == "facts"]
    require(len(facts) == 1, "one element of facts")
    return Page(parser.title, parser.tables, parser.heads, expanded(strict_json(facts[0])), parser.shape)


# What a row of the facts may leave out, and what it then is.
LEFT_OUT = {"events": {"source": None, "track": None, "position": None, "end": None, "fadeIn": 0, "fadeOut": 0, "gainDb": 0},
            "regions": {"path": None, "event": None, "piece": None, "fadeIn": 0, "fadeOut": 0, "gainDb": 0},
            "files": {"event": None, "path": None, "bytes": None, "sha256": None, "noSha256": None, "folder": False},
            "messages": {"code": None, "line": None, "event": None, "entry": None, "effect": None, "remedy": None},
            "sources": {"path": None}, "tracks": {"first": None, "end": None}}


def expanded(facts):
    """The tables of the facts with what their rows leave out."""
    require("columns" not in facts, "a page of this size has facts with names")
    for table, defaults in LEFT_OUT.items():
        require(all(isinstance(row, dict) and None not in row.values() for row in facts[table]), table)
        facts[table] = [defaults | row for row in facts[table]]
    for table in ("regions", "events"):
        for number, row in enumerate(facts[table]):
            row["index"] = number
    return facts


def check_policy(parser):
    """Nothing from elsewhere, and of scripts and styles only those whose checksum the policy names."""
    rules = {name: values for name, *values in (rule.split() for rule in parser.meta["Content-Security-Policy"].split(";") if rule.strip())}
    require(rules.get("default-src") == ["'none'"], f"{rules}")
    for kind in ("script", "style"):
        allowed = rules.get(f"{kind}-src", [])
        require(all(rule.startswith("'sha256-") for rule in allowed), f"{kind}-src {allowed}")
        for values, body in parser.inline[kind]:
            if values.get("type") == "application/json":
                continue
            checksum = base64.b64encode(hashlib.sha256(body.encode("utf-8")).digest()).decode()
            require(f"'sha256-{checksum}'" in allowed, f"a {kind} that the policy does not let run")
            require(set(values) <= {"type"}, f"<{kind} {values}>")
    for name in set(rules) - {"default-src", "script-src", "style-src"}:
        require(rules[name] == ["'none'"], f"{name} {rules[name]}")
