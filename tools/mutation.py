"""The small changes that tools/mutants makes to a C++ source: operators, constants, conditions, calls and returned values.

Source splits the text into tokens, without comments and lines of the preprocessor. It relies on the layout that
clang-format gives: only operators have a blank on both sides, and each statement of an if or loop is in braces.
"""
import collections
import itertools
import re

TOKEN = re.compile(r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|\#(?:\\\n|[^\n])*)
    |(?P<string>(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
    |(?P<char>(?:u8|[uUL])?'(?:\\.[^']*|[^'\\\n])')
    |(?P<number>\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*)
    |(?P<word>[A-Za-z_]\w*)
    |(?P<sign><=>|->\*|<<=|>>=|\.\.\.|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""", re.X | re.S)
Token = collections.namedtuple("Token", "kind text start end")

SIGNS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
         "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "+=": ("-=",), "-=": ("+=",)}
RELATIONS = {"<", "<=", ">", ">=", "==", "!="}
WORDS = {"true": "false", "false": "true"}
NO_CALLS = {"if", "while", "for", "switch", "catch", "return", "sizeof", "alignof", "decltype", "noexcept", "throw",
            "operator", "alignas", "requires"}
EITHER_WAY = {"EqualInLowerCase", "SameId", "min", "max"}  # the order of the arguments does not matter
MEMORY_ONLY = {"reserve", "shrink_to_fit"}
NO_CHANGE = {"nullptr", "nullopt", "S_OK", "true", "false"}  # what "return {}" would return as well, or is changed as a word
ESCAPES = {"n": 10, "t": 9, "r": 13, "0": 0, "b": 8, "f": 12, "v": 11, "a": 7}


def numbers_beside(text):
    """The constants that replace a number: one more and one less, or 1 for 0 and 0 for 1."""
    digits = text.replace("'", "")
    whole = re.fullmatch(r"(0[xX][\da-fA-F]+|0[bB][01]+|\d+)([uUlLzZ]*)", digits)
    if whole:
        value = int(whole[1], 8 if re.fullmatch("0[0-7]+", whole[1]) else 0)
        return [f"{hex(n) if whole[1][:2] in ('0x', '0X') else n}{whole[2]}"
                for n in ([1 - value] if value < 2 else [value + 1, value - 1])]
    real = re.fullmatch(r"([\d.]+(?:[eE][+-]?\d+)?)([fFlL]?)", digits)
    if not real:
        return []
    value = float(real[1])
    beside = (value + 1, value - 1) if 1 <= value < 1e6 else (value * 10, value / 10) if value else (1.0,)
    return [f"{n!r}{real[2]}" for n in beside]


def characters_beside(text):
    prefix, body = text[:-1].split("'", 1)
    if body[0] != "\\":
        value = ord(body)
    elif body[1] in "xuU":
        value = int(body[2:], 16)
    else:
        value = ESCAPES.get(body[1], ord(body[1]))
    shown = lambda n: chr(n) if chr(n).isalnum() and n < 127 else f"\\x{n:x}"
    return [f"{prefix}'{shown(n)}'" for n in ([1 - value] if value < 2 else [value + 1, value - 1])]


class Source:
    """The tokens of a file and the changes that they allow, as (start, end, new text)."""

    def __init__(self, text):
        self.text = text
        self.tokens = [Token(m.lastgroup if m.lastgroup != "mark" else "string", m[0], *m.span())
                       for m in TOKEN.finditer(text) if m.lastgroup != "skip"]
        self.pairs = {}
        open_ones = []
        for i, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in "([{":
                open_ones.append(i)
            elif token.kind == "sign" and token.text in ")]}" and open_ones:
                self.pairs[open_ones.pop()] = i

    def at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def part(self, first, last):
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def ignored(self):
        """The tokens that only declare: static_assert, heads of templates, "= 0" of a member."""
        for i, token in enumerate(self.tokens):
            if token.text == "static_assert":
                yield from range(i, self.pairs[i + 1] + 1)
            elif token.text == "template":
                depth = 0
                for k in range(i + 1, len(self.tokens)):
                    depth += {"<": 1, ">": -1, ">>": -2}.get(self.at(k), 0)
                    yield k
                    if depth <= 0:
                        break
            elif token.text == "0" and self.at(i - 1) == "=" and self.at(i - 2) in (")", "const", "noexcept"):
                yield i

    def bodies(self):
        """The tokens inside of functions."""
        kinds, head = [], 0
        for i, token in enumerate(self.tokens):
            if token.text == "{":
                words = [t.text for t in self.tokens[head:i]]
                is_scope = {"class", "struct", "union", "enum", "namespace"} & set(words) and "(" not in words
                is_table = "=" in words and "(" not in words[:words.index("=")]
                kinds.append(not is_scope and (bool(kinds and kinds[-1]) or ("(" in words and not is_table)))
            elif token.text == "}" and kinds:
                kinds.pop()
            if token.text in ("{", "}", ";"):
                head = i + 1
            if kinds and kinds[-1]:
                yield i

    def changes(self):
        ignored, bodies = set(self.ignored()), set(self.bodies())
        for i, token in enumerate(self.tokens):
            if i in ignored:
                continue
            for new in self.small_changes(i, token):
                yield token.start, token.end, new
            if i in bodies:
                yield from self.condition(i)
                yield from self.call_removal(i)
                yield from self.swaps(i)
                yield from self.returns(i)

    def small_changes(self, i, token):
        if token.kind == "number":
            return numbers_beside(token.text)
        if token.kind == "char":
            return characters_beside(token.text)
        if token.kind == "word":
            return [WORDS[token.text]] if token.text in WORDS else []
        # The layout tells operators from the signs of types: they have a blank on both sides.
        around = self.text[token.start - 1:token.start] + self.text[token.end:token.end + 1]
        return SIGNS.get(token.text, []) if around.isspace() and len(around) == 2 and self.at(i - 1) != "operator" else []

    def condition(self, i):
        if self.at(i) in ("if", "while") and self.at(i + 1) == "(":
            first, last = i + 2, self.pairs[i + 1] - 1
            first = max([k + 1 for k in range(first, last) if self.at(k) == ";"], default=first)
            signs = [self.at(k) for k in range(first, last) if self.at(k) in SIGNS.keys() - {"+", "-"}]
            if len(signs) != 1 or signs[0] not in RELATIONS:  # a single relation is changed as a sign
                yield self.tokens[first].start, self.tokens[last].end, f"!({self.part(first, last)})"

    def call_removal(self, i):
        if self.at(i - 1) not in (";", "{", "}") or self.tokens[i].kind != "word" or self.at(i) in NO_CALLS:
            return
        k, is_call, name = i, False, ""
        while self.tokens[k].kind == "word" and k + 1 < len(self.tokens):
            name = self.at(k)
            k += 1
            while self.at(k) in ("(", "["):
                is_call = self.at(k) == "("
                k = self.pairs[k] + 1
            if self.at(k) not in (".", "->", "::"):
                break
            k += 1
        if is_call and self.at(k) == ";" and name not in MEMORY_ONLY:
            yield self.tokens[i].start, self.tokens[k].end, ";"

    def swaps(self, i):
        if self.at(i) != "(" or self.tokens[i - 1].kind != "word" or self.at(i - 1) in NO_CALLS | EITHER_WAY:
            return
        parts, k = [[i + 1, None]], i + 1
        while k < self.pairs[i]:
            if self.at(k) == ",":
                parts[-1][1] = k - 1
                parts.append([k + 1, None])
            k = self.pairs.get(k, k) + 1
        parts[-1][1] = self.pairs[i] - 1
        for one, two in itertools.pairwise(parts):
            if self.part(*one) != self.part(*two):
                between = self.text[self.tokens[one[1]].end:self.tokens[two[0]].start]
                yield (self.tokens[one[0]].start, self.tokens[two[1]].end,
                       self.part(*two) + between + self.part(*one))

    def returns(self, i):
        if self.at(i) != "return":
            return
        last = i
        while self.at(last) != ";":
            last = self.pairs.get(last, last) + 1
        if last == i + 1:
            yield self.tokens[i].start, self.tokens[last].end, ";"
        elif self.at(i + 1) != "{" and not (self.at(last - 1) in NO_CHANGE and last - i <= 4) and not (
                last == i + 2 and self.tokens[i + 1].kind in ("number", "char")):
            yield self.tokens[i + 1].start, self.tokens[last - 1].end, "{}"
