"""Which changes are found in which lines, and how a sample is taken."""

import unittest

import changes

# For each line: the kind and the changed line of every change, all blanks being single.
FOUND = [
    ("if (a < b) return;", [
        ("comparison", "if (a <= b) return;"), ("comparison", "if (a >= b) return;"),
        ("condition", "if (!(a < b)) return;"), ("removed statement", "if (a < b) ;"),
    ]),
    ("x = a == b;", [("comparison", "x = a != b;"), ("removed statement", ";")]),
    ("x = a && b;", [("logic", "x = a || b;"), ("removed statement", ";")]),
    ("const int x = a + b;", [("arithmetic", "const int x = a - b;")]),
    ("const int x = 8;", [("number", "const int x = 7;"), ("number", "const int x = 9;")]),
    ("const int x = 010;", [("number", "const int x = 7;"), ("number", "const int x = 9;")]),
    ("const auto x = 8U;", [("number", "const auto x = 7U;"), ("number", "const auto x = 9U;")]),
    ("for (; p; ++p) {", [("step", "for (; p; --p) {"), ("removed statement", "for (; ; ++p) {")]),
    ("const bool x = true;", [("truth", "const bool x = false;")]),
    ("return a;", [
        ("return value", "return !(a);"), ("return value", "return (a) + 1;"),
        ("return value", "return {};"),
    ]),
    ("return nullptr;", [("return value", "return 1;")]),
    ("return -1;", [
        ("number", "return -0;"), ("number", "return -2;"), ("return value", "return 0;"),
    ]),
    ("return;", [("removed statement", ";")]),
    ("call(a);", [("removed statement", ";")]),
    ("*p = a;", [("removed statement", ";")]),
    ("std::string a = b;", []),
    ("using std::move;", []),
    ("while (f(a)) {", [("condition", "while (!(f(a))) {")]),
    ("if (f(')', \")\")) {", [
        ("condition", "if (!(f(')', \")\"))) {"), ("character", "if (f('x', \")\")) {"),
        ("text", "if (f(')', \"x)\")) {"), ("text", "if (f(')', \"\")) {"),
    ]),
    ("const char c = 'x';", [("character", "const char c = 'y';")]),
    (r"const char c = '\n';", [("character", "const char c = 'x';")]),
    ('const auto s = "a < b";', [
        ("text", 'const auto s = "xa < b";'), ("text", 'const auto s = "";'),
    ]),
    (r'const auto s = "\"8";', [
        ("text", r'const auto s = "x\"8";'), ("text", 'const auto s = "";'),
    ]),
    ('const auto s = "";', [("text", 'const auto s = "x";')]),
    ('const auto s = R"(8 < "9")";', []),
    ("const auto s = 'a'; // 8 < 9, 'b' and \"c\"", [
        ("character", "const auto s = 'x'; // 8 < 9, 'b' and \"c\""),
    ]),
    ("/* a < b */", []),
    ("#define A 8 < 9", []),
    ('#include "a.h"', []),
    ("static_assert(a == 8);", []),
    ("__attribute__((format(printf, 1, 2)))", []),
    ("std::vector<int> a;", []),
]  # fmt: skip


def changes_of(source):
    return list(changes.changes_of("src/a.cpp", source))


class ChangesTest(unittest.TestCase):
    def test_every_line_has_exactly_these_changes(self):
        for line, expected in FOUND:
            with self.subTest(line):
                source = f"{{\n  {line}\n}}\n"
                found = [(change.kind, change.after) for change in changes_of(source)]
                self.assertCountEqual(found, expected)

    def test_a_change_changes_its_line_and_nothing_else(self):
        for line, _ in FOUND:
            source = f"{{\n  {line}\n}}\n"
            for change in changes_of(source):
                with self.subTest(str(change)):
                    changed = [" ".join(text.split()) for text in change.apply(source).split("\n")]
                    self.assertEqual(changed, ["{", change.after, "}", ""])
                    self.assertEqual((change.line, change.before), (2, line))

    def test_a_statement_of_two_lines_is_removed_whole(self):
        removed = changes_of("{\n  call(a,\n       b);\n}\n")
        self.assertEqual([change.after for change in removed], [";"])

    def test_equal_lines_have_changes_with_different_keys(self):
        keys = [change.key for change in changes_of("{\n  call(a);\n  call(a);\n}\n")]
        self.assertEqual(len(set(keys)), 2)


class SampleTest(unittest.TestCase):
    LINES = [f"  call(a{number});\n" for number in range(50)]

    def sample(self, lines, seed):
        source = "{\n" + "".join(lines) + "}\n"
        return [change.before for change in changes.sample({"src/a.cpp": source}, seed)]

    def test_a_seed_has_always_the_same_order(self):
        self.assertEqual(self.sample(self.LINES, 1), self.sample(self.LINES, 1))

    def test_another_seed_has_another_order_of_the_same_changes(self):
        self.assertNotEqual(self.sample(self.LINES, 1), self.sample(self.LINES, 2))
        self.assertCountEqual(self.sample(self.LINES, 1), self.sample(self.LINES, 2))

    def test_the_order_stays_when_other_lines_change(self):
        kept = [text for text in self.sample(self.LINES, 1) if text != "call(a7);"]
        self.assertEqual(self.sample(self.LINES[:7] + self.LINES[8:], 1), kept)

    def test_of_a_table_of_texts_one_change_in_ten_counts(self):
        rows = [f'  {{"NAME{number}", "value"}},\n' for number in range(200)]
        share = len(self.sample(rows, 1)) / len(changes_of("{\n" + "".join(rows) + "}\n"))
        self.assertTrue(0.05 < share < 0.15, share)


if __name__ == "__main__":
    unittest.main()
