"""The pages of this repository, and what stands in them."""

import pathlib
import re

SOURCE = pathlib.Path(__file__).resolve().parents[2]
NOT_OURS = {"build", "node_modules", ".git"}


def pages():
    """Every Markdown page but the cards of the sample store."""
    found = []
    for page in sorted(SOURCE.rglob("*.md")):
        parts = page.relative_to(SOURCE).parts
        if NOT_OURS.isdisjoint(parts) and "memory" not in parts[2:-1] and parts[-1] != "rules.md":
            found.append(page)
    return found


def name(page):
    return str(page.relative_to(SOURCE))


def text(page):
    return (SOURCE / page).read_text(encoding="utf-8")


def blocks(page):
    """The code blocks of a page: what they are marked as, and their text."""
    return re.findall(r"^```(\w*)\n(.*?)^```$", text(page), re.DOTALL | re.MULTILINE)


def prose(page):
    """The page without its code blocks."""
    return re.sub(r"^```\w*\n.*?^```$", "", text(page), flags=re.DOTALL | re.MULTILINE)


def spans(page):
    """What stands between backticks in the prose, a bar in a table as it is meant."""
    return [re.sub(r"\s+", " ", span).replace("\\|", "|") for span in re.findall(r"`([^`]+)`", prose(page))]
