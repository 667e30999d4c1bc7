"""The one HTML head that every page of the site shares.

A page under pages/ starts with a single marker line instead of its own head:

    <!--head title="Checkout · Lumenmoss" stylesheet="/checkout/assets/site.css"-->

and continues with whatever else belongs in its head, then `</head>` and its body. `render`
replaces the marker with the shared head (doctype, charset, viewport, icon, title, stylesheet);
a page without the marker is served as it is. Pure functions, safe from any thread.
"""

import html
import re

HEAD_MARKER = re.compile(rb'\A<!--head title="([^"]*)" stylesheet="([^"]*)"-->\n')

HEAD = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1, viewport-fit=cover">
<title>%(title)s</title>
<link rel="icon" href="/checkout/assets/img/logo.svg">
<link rel="stylesheet" href="%(stylesheet)s">
"""


def head(title, stylesheet):
    """The shared head up to (not including) `</head>`; `title` is plain text."""
    return HEAD % {"title": html.escape(title, quote=False),
                   "stylesheet": html.escape(stylesheet)}


def render(content):
    """The page's bytes with its head marker expanded (the marker's values are already HTML)."""
    match = HEAD_MARKER.match(content)
    if not match:
        return content
    title, stylesheet = (html.unescape(value.decode("utf-8")) for value in match.groups())
    return head(title, stylesheet).encode("utf-8") + content[match.end():]
