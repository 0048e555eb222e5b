"""Asking clingo for the least weight of any path.

The encoding plans a fixed number of steps. So clingo is asked for more and more steps, until the
cheapest plan it finds cannot be beaten by a longer one, or no longer one is possible. It proves the
least weight only; which of several equal paths is the answer, it knows nothing of.
"""
from __future__ import annotations

import re
from dataclasses import dataclass, field
from pathlib import Path

from harness.child_process import MemoryLimit, TimeLimit, run_limited
from harness.results import Answer, Outcome

from .encoding import facts
from .instance import EXPENSIVE_COST, Instance, weight_of

PLAN = Path(__file__).with_name("plan.lp")
GOOD_STATUSES = (10, 20, 30)  # satisfiable, unsatisfiable, optimum found
SINGLE_STEPS = 4  # so often the number of steps grows by one; then it doubles


@dataclass
class Inquiry:
    """One question, put to clingo with more and more steps."""

    instance: Instance
    limit: float  # seconds, for all processes together
    options: tuple[str, ...] = ()
    seconds: float = 0.0  # taken by all processes, from start to end
    horizons: list[int] = field(default_factory=list)  # the numbers of steps asked for

    def run(self) -> Answer:
        if self.instance.is_hopeless:
            return Answer(Outcome.NO_PATH, self.seconds)
        try:
            return self._raise_horizon()
        except TimeLimit:
            return Answer(Outcome.TIME_LIMIT, self.limit)
        except MemoryLimit:
            return Answer(Outcome.MEMORY_LIMIT, self.seconds)

    def least_weight_of(self, steps: int) -> int | None:
        """Of plans of so many steps, and nothing proven about longer ones; raises at a limit."""
        cost = self._cheapest_of(steps)
        return None if cost is None else weight_of(cost)

    def _raise_horizon(self) -> Answer:
        longest = self.instance.most_steps
        steps = self.instance.fewest_steps
        while True:
            cost = self._cheapest_of(steps)
            if cost is not None and (steps >= longest or self._cannot_be_beaten(cost, steps)):
                return Answer(Outcome.PATH, self.seconds, weight_of(cost))
            if cost is None and steps >= longest:
                return Answer(Outcome.NO_PATH, self.seconds)
            steps = min(longest, self._next_horizon(cost, steps))

    def _cheapest_of(self, steps: int) -> int | None:
        """The cost of the cheapest plan; none when there is no plan of so many steps."""
        self.horizons.append(steps)
        clingo = run_limited(
            ["clingo", PLAN, "-", "--quiet=1", *self.options],
            text=facts(self.instance, steps),
            seconds=max(self.limit - self.seconds, 0.01),
            good_statuses=GOOD_STATUSES,
        )
        self.seconds += clingo.seconds
        reduced = re.findall(r"Optimization\s*: (\d+)", clingo.output)
        return int(reduced[-1]) + self.instance.hop_cost if reduced else None

    def _steps_to_prove(self, cost: int) -> int | None:
        """Among how many steps a plan has to be cheapest, so that no longer one is cheaper.

        A plan with the fewest possible expensive hops pays for each of its steps but those that
        consist of expensive hops alone, which are no more than it has of these.
        """
        expensive = cost // EXPENSIVE_COST
        if expensive > self.instance.hop_cost // EXPENSIVE_COST:
            return None
        return cost - self.instance.hop_cost + expensive - 1

    def _cannot_be_beaten(self, cost: int, steps: int) -> bool:
        enough = self._steps_to_prove(cost)
        return enough is not None and steps >= enough

    def _next_horizon(self, cost: int | None, steps: int) -> int:
        if cost is None:
            return steps + 1 if len(self.horizons) < SINGLE_STEPS else 2 * steps
        enough = self._steps_to_prove(cost)
        return 2 * steps if enough is None else max(steps + 1, enough)
