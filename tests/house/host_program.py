"""Checks programs in the host language against what the plugin declares: every method, property, event and constant is
declared, gets the right number of arguments, and arguments and results have fitting types.

It knows as much of the language as the examples need and complains about everything else, so nothing slips through
unread.
"""

from __future__ import annotations

import re
from collections.abc import Iterable

from host_types import BOOLEAN, INTEGER, NIL, STRING, VALUE_TYPES, Classes, Member, Type, parameters_of, type_of

_TOKEN = re.compile(r'\s*(?:("(?:[^"]|"")*")|(\d+(?:\.\d+)?)|(\w+)|(<>|<=|>=|[-+*<>=().,]))')
_SUB = re.compile(r"sub (\w+)\((.*)\)", re.IGNORECASE)
_COMPARISONS = {"=", "<>", "<", ">", "<=", ">="}


class Problem(Exception):
    pass


def without_comment(line: str) -> str:
    return re.sub(r"""^((?:[^"']|"[^"]*")*)'.*$""", r"\1", line).strip()


class Expression:
    """One expression, taken apart word by word; each part of it gives the type of its value."""

    def __init__(self, text: str, program: Program) -> None:
        self.program = program
        self.words: list[str] = []
        at = 0
        while at < len(text):
            match = _TOKEN.match(text, at)
            if not match:
                raise Problem(f"cannot be read: {text[at:]}")
            self.words.append(match[0].strip())
            at = match.end()
        self.words.append("")

    def peek(self) -> str:
        return self.words[0].lower()

    def skip(self, word: str) -> bool:
        if self.peek() != word:
            return False
        self.words.pop(0)
        return True

    def need(self, word: str) -> None:
        if not self.skip(word):
            raise Problem(f"{word} is missing before {self.words[0] or 'the end'}")

    def whole(self) -> Type | None:
        found = self.logical()
        self.need("")
        return found

    def value(self) -> Type:
        found = self.logical()
        if found is None:
            raise Problem("a method without a result is used as a value")
        return found

    def logical(self) -> Type | None:
        if self.skip("not"):
            self.expect(self.comparison(), BOOLEAN)
            left: Type | None = BOOLEAN
        else:
            left = self.comparison()
        while self.peek() in ("and", "or"):
            self.words.pop(0)
            self.expect(left, BOOLEAN)
            self.expect(self.comparison(), BOOLEAN)
        return left

    def comparison(self) -> Type | None:
        left = self.sum()
        if self.peek() not in _COMPARISONS:
            return left
        self.words.pop(0)
        right = self.sum()
        if left is None or right is None or not (left.takes(right) or right.takes(left)):
            raise Problem(f"{left} cannot be compared with {right}")
        return BOOLEAN

    def sum(self) -> Type | None:
        left = self.primary()
        while self.peek() in ("+", "-", "*"):
            operator = self.words.pop(0)
            right = self.primary()
            both_text = operator == "+" and left == STRING and right == STRING
            if not both_text and not (left and right and left.is_number() and right.is_number()):
                raise Problem(f"{left} {operator} {right}")
        return left

    def expect(self, found: Type | None, wanted: Type) -> None:
        if found is None or not wanted.takes(found):
            raise Problem(f"{wanted} is wanted, not {found}")

    def primary(self) -> Type | None:
        word = self.words.pop(0)
        if word.startswith('"'):
            return STRING
        if word[:1].isdigit():
            return INTEGER
        if word == "-":
            return self.primary()
        if word == "(":
            found = self.value()
            self.need(")")
            return self.chain(found)
        if word.lower() == "nil":
            return NIL
        if word.lower() in ("true", "false"):
            return BOOLEAN
        if not re.fullmatch(r"\w+", word):
            raise Problem(f"a value is wanted, not {word or 'the end'}")
        return self.chain(self.named(word))

    def named(self, word: str) -> Type | None:
        name = word.lower()
        program = self.program
        if name == "new":
            return self.created(self.words.pop(0))
        if name == "array":
            return self.array_of(self.arguments())
        if name in program.variables:
            return program.variables[name]
        if name in program.subs:
            return self.call([program.subs[name]], word)
        if name in program.classes.members[""]:
            return self.call(program.classes.members[""][name], word)
        if name in program.classes.members and self.skip("."):
            member = self.words.pop(0)
            shared = [form for form in program.classes.members[name].get(member.lower(), []) if form.is_shared]
            return self.call(shared, f"{word}.{member}")
        raise Problem(f"{word} is not known")

    def created(self, class_name: str) -> Type:
        if class_name.lower() not in self.program.classes.members:
            raise Problem(f"there is no class {class_name}")
        constructors = self.program.classes.members[class_name.lower()].get("constructor", [Member()])
        self.call(constructors, f"New {class_name}")
        return type_of(class_name)

    def array_of(self, elements: list[Type]) -> Type:
        if not elements or any(element != elements[0] for element in elements):
            raise Problem("the elements of an array are of one type")
        return Type(elements[0].name, True)

    def arguments(self) -> list[Type]:
        found: list[Type] = []
        if self.skip("(") and not self.skip(")"):
            found.append(self.value())
            while self.skip(","):
                found.append(self.value())
            self.need(")")
        return found

    def call(self, forms: list[Member], name: str) -> Type | None:
        if not forms:
            raise Problem(f"{name} is not declared")
        given = self.arguments()
        for form in forms:
            if form.required <= len(given) <= len(form.parameters) and all(
                wanted.takes(value) for wanted, value in zip(form.parameters, given)
            ):
                return form.result
        raise Problem(f"{name} does not take ({', '.join(map(str, given))})")

    def chain(self, found: Type | None) -> Type | None:
        while self.skip("."):
            member = self.words.pop(0)
            if found is None:
                raise Problem(f"nothing has no {member}")
            if found.is_array and member.lower() in ("append", "indexof", "ubound"):
                forms = {"append": Member((found.element(),), 1), "indexof": Member((found.element(),), 1, INTEGER),
                         "ubound": Member(result=INTEGER)}
                found = self.call([forms[member.lower()]], member)
                continue
            members = {} if found.is_array else self.program.classes.members.get(found.name, {})
            forms = [form for form in members.get(member.lower(), []) if not form.is_shared]
            found = self.call(forms, f"{found}.{member}")
        return found


class Program:
    def __init__(self, classes: Classes, known: dict[str, Type]) -> None:
        self.classes = classes
        self.variables = dict(known)
        self.globals: dict[str, Type] = {}
        self.subs: dict[str, Member] = {}
        self.class_name = ""
        self.routine = False

    def problems(self, lines: Iterable[str], first_line: int = 1) -> list[str]:
        """What is wrong, one "line: sentence" each; nothing when all is well."""
        lines = list(lines)
        for line in lines:
            if match := _SUB.fullmatch(without_comment(line)):
                self.subs[match[1].lower()] = Member(*parameters_of(match[2]))
        found = []
        for number, line in enumerate(lines, first_line):
            try:
                self.statement(without_comment(line))
            except (Problem, ValueError, IndexError) as problem:
                found.append(f"{number}: {problem}")
        return found

    def evaluate(self, text: str) -> Type | None:
        return Expression(text, self).whole()

    def assign(self, target: Type, text: str) -> None:
        found = self.evaluate(text)
        if found is None or not (target.takes(found) or self.derives(found, target)):
            raise Problem(f"{target} cannot hold {found}")

    def derives(self, found: Type, target: Type) -> bool:
        members = self.classes.members
        return not found.is_array and found.name in members and members.get(target.name) is members[found.name]

    def statement(self, line: str) -> None:
        for pattern, method in _STATEMENTS:
            match = pattern.fullmatch(line)
            if match:
                return method(self, *match.groups())
        if self.evaluate(line) is not None and not line.endswith(")"):
            raise Problem(f"a value without a use: {line}")

    def nothing(self) -> None:
        pass

    def dim(
        self, name: str, array: str | None, new: str | None, kind: str, rest: str | None, value: str | None
    ) -> None:
        declared = Type(kind.lower(), bool(array))
        if kind.lower() not in self.classes.members and kind.lower() not in VALUE_TYPES:
            raise Problem(f"there is no type {kind}")
        if new:
            self.assign(declared, f"New {kind}{rest or ''}")
        elif rest:
            raise Problem(f"cannot be read: {rest}")
        if value:
            self.assign(declared, value)
        self.variables[name.lower()] = declared
        if not self.routine:
            self.globals[name.lower()] = declared

    def for_each(self, name: str, kind: str, array: str) -> None:
        found = self.evaluate(array)
        if found is None or not found.is_array or not type_of(kind).takes(found.element()):
            raise Problem(f"{kind} cannot go through {found}")
        self.variables[name.lower()] = type_of(kind)

    def for_number(self, name: str, first: str, last: str) -> None:
        self.assign(INTEGER, first)
        self.assign(INTEGER, last)
        self.variables[name.lower()] = INTEGER

    def condition(self, text: str, statement: str | None) -> None:
        self.assign(BOOLEAN, text)
        if statement:
            self.statement(statement)

    def show(self, text: str) -> None:
        self.assign(STRING, text)

    def caught(self, name: str, kind: str) -> None:
        if kind.lower() not in self.classes.members:
            raise Problem(f"there is no exception {kind}")
        self.variables[name.lower()] = type_of(kind)

    def begin_class(self, name: str) -> None:
        self.class_name = name.lower()

    def inherits(self, base: str) -> None:
        self.classes.inherit(self.class_name, base.lower())

    def end_class(self) -> None:
        self.class_name = ""

    def event(self, text: str, name: str, parameters: str) -> None:
        owner = self.class_name or self.variables["self"].name
        if " ".join(text.lower().split()) not in self.classes.events.get(owner, set()):
            raise Problem(f"{owner} has no such event: {text}")
        self.begin_routine(name, parameters)
        self.variables["self"] = Type(owner)

    def begin_routine(self, name: str, parameters: str) -> None:
        self.routine = True
        self.variables = dict(self.globals)
        types, _ = parameters_of(parameters)
        names = re.findall(r"(\w+)(?:\(\))? as", parameters, re.IGNORECASE)
        self.variables.update(zip((name.lower() for name in names), types))

    def end_routine(self) -> None:
        self.routine = False

    def set(self, target: str, value: str) -> None:
        owner, _, member = target.rpartition(".")
        if not owner:
            if member.lower() not in self.variables:
                raise Problem(f"{member} is not known")
            return self.assign(self.variables[member.lower()], value)
        found = self.evaluate(owner)
        forms = self.classes.members.get(found.name if found else "", {}).get(member.lower(), [])
        if not any(form.can_be_set and form.result for form in forms):
            raise Problem(f"{target} cannot be set")
        return self.assign(forms[0].result or NIL, value)


_STATEMENTS = [
    (re.compile(pattern, re.IGNORECASE), method)
    for pattern, method in [
        (r"|next|else|end if|try|end try|return", Program.nothing),
        (r"dim (\w+)(\(\))? as (new )?(\w+)(\(.*\))?(?: = (.+))?", Program.dim),
        (r"for each (\w+) as (\w+) in (.+)", Program.for_each),
        (r"for (\w+) as integer = (.+?) (?:to|downto) (.+)", Program.for_number),
        (r"if (.+) then(?: (.+))?", Program.condition),
        (r"print (.+)", Program.show),
        (r"catch (\w+) as (\w+)", Program.caught),
        (r"class (\w+)", Program.begin_class),
        (r"inherits (\w+)", Program.inherits),
        (r"end class", Program.end_class),
        (r"event ((\w+)\((.*)\))", Program.event),
        (_SUB.pattern, Program.begin_routine),
        (r"end (?:sub|event)", Program.end_routine),
        (r"([\w.]+) = (.+)", Program.set),
    ]
]
