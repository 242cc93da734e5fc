"""The answers of every detector to the same pages."""
from functools import cached_property

from . import conditions, score


class Board:
    """`results`: answers by file name for each detector by name, ours first."""

    def __init__(self, truths, results):
        self.truths, self.results = truths, results
        self.ours, *self.peers = results

    def of_group(self, group):
        """The part of it that is about ordinary or hard pages."""
        some = [t for t in self.truths if conditions.BY_NAME[t.condition].group == group]
        return Board(some, self.results)

    @cached_property
    def tallies(self):
        """A Tally by condition for each detector by name."""
        return {name: score.tallies(self.truths, found) for name, found in self.results.items()}

    def total(self, name):
        return score.total(self.tallies[name].values())

    def ahead(self, peer):
        """(condition, the peer's right answers, ours) wherever the peer has more of them."""
        rows = []
        for condition, tally in self.tallies[peer].items():
            theirs = tally.verdicts["right"]
            ours = self.tallies[self.ours][condition].verdicts["right"]
            if theirs > ours:
                rows.append((condition, theirs, ours))
        return rows
