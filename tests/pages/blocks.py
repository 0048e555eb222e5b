"""The code blocks of a page."""

import dataclasses
import re
import textwrap

FENCE = re.compile(r"(?P<indent> *)(?P<fence>```+|~~~+) *(?P<kind>[^ `]*) *(?P<subject>[^`]*)")


@dataclasses.dataclass
class Block:
    """A fenced block: what follows its opening fence, and its lines without their common indent."""

    line: int  # of the opening fence
    kind: str  # the first word after the fence, such as "cpp"
    subject: str  # the rest, such as the file that the block is a part of
    lines: list

    @property
    def text(self):
        """All lines, each with its end."""
        return "".join(line + "\n" for line in self.lines)


def read_blocks(page):
    """All blocks of the page, and the page with blank lines in their places."""
    blocks, prose = [], []
    lines = iter(enumerate(page.splitlines(), start=1))
    for number, line in lines:
        opening = FENCE.fullmatch(line)
        if not opening:
            prose.append(line)
            continue
        content = []
        for _, line in lines:
            if line.strip() == opening["fence"]:
                break
            content.append(line)
        else:
            raise SystemExit(f"line {number}: the block has no end")
        prose += [""] * (len(content) + 2)
        blocks.append(Block(number, opening["kind"], opening["subject"].strip(), dedent(content)))
    return blocks, "\n".join(prose)


def dedent(lines):
    """The lines without their common indent."""
    return textwrap.dedent("\n".join(lines)).split("\n") if lines else []


def is_part(part, whole):
    """Whether the lines stand together in the whole, wherever and however far they are indented."""
    return any(dedent(whole[start:start + len(part)]) == part
               for start in range(len(whole) - len(part) + 1))


def matches(shown, printed):
    """Whether the lines shown stand for the lines printed; "..." stands for any lines."""
    pattern = "".join(
        r"(?:.*\n)+" if line == "..." else re.escape(line) + r"\n" for line in shown)
    return re.fullmatch(pattern, printed) is not None
