"""What the user waits for the hook: a prompt with it and one without, in turns."""

import statistics

from facts import PROMPT, Trial

_pairs = 5


def _pair(trial, bare):
    return 1000 * (trial.stage.seconds_until_asked(PROMPT) - bare.stage.seconds_until_asked(PROMPT))


def measure(families, tell):
    """Tells what the hook adds to a prompt, in each harness that can run here."""
    for family in families:
        if family.harness.name == "cursor":
            continue
        with Trial(family) as trial, Trial(family) as bare:
            trial.set_up()
            _pair(trial, bare)  # the first prompt also fills caches
            added = sorted(_pair(trial, bare) for _ in range(_pairs))
        tell(f"    {family.harness.name}: the hook adds {statistics.median(added):.0f} ms to a prompt "
             f"(median of {_pairs} pairs, from {added[0]:.0f} to {added[-1]:.0f})", flush=True)
