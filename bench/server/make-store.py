#!/usr/bin/env python3
"""Makes a store of cards of about 1 KB: make-store.py <directory> <number of cards>.

The words follow the distribution of natural language (few are everywhere, most are rare), and the
same number of cards always gives the same store.
"""
import pathlib
import random
import sys

CARD_BYTES = 1000
VOCABULARY = 20_000
SYLLABLES = ["ka", "ro", "mi", "ten", "lu", "sa", "vor", "ne", "pil", "da", "gu", "fen", "os", "tri"]


def word(number):
    text = ""
    number += len(SYLLABLES)
    while number:
        number, digit = divmod(number, len(SYLLABLES))
        text += SYLLABLES[digit]
    return text


def main():
    root, count = pathlib.Path(sys.argv[1]), int(sys.argv[2])
    memory = root / "memory"
    memory.mkdir(parents=True)
    source = random.Random(count)
    vocabulary = [word(number) for number in range(VOCABULARY)]
    weights = [1 / (rank + 1) for rank in range(VOCABULARY)]
    for number in range(count):
        words = iter(source.choices(vocabulary, weights, k=300))
        title = " ".join(next(words) for _ in range(4))
        text = f"---\ntags: [{next(words)}, {next(words)}]\n---\n# {title} {number}\n\n"
        while len(text) < CARD_BYTES:
            text += next(words) + (".\n" if source.random() < 0.1 else " ")
        (memory / f"card-{number:05d}.md").write_text(text)
    prompt = " ".join(source.choices(vocabulary, weights, k=12))
    (root / "rules.md").write_text("- Keep the examples running.\n")
    (root / "prompt.txt").write_text(prompt)


main()
