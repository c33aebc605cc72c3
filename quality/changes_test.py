"""Tests of changes.py: lines with all of their changes."""
import unittest

import changes

ROWS = [
    ("if (a < b) return false;", ["if (a <= b) return false;", "if (a >= b) return false;", "if (!(a < b)) return false;",
                                  "if (a < b) {}", "if (a < b) return true;"]),
    ("return a && !b;", ["return a || !b;", "return a && b;"]),
    ("x = y + 0x10U;", ["x = y - 0x10U;", "x = y + (0x10U + 1);", "x = y + (0x10U - 1);", "{}", "return; x = y + 0x10U;",
                        "return {}; x = y + 0x10U;"]),
    ("place->list[i].add(b);", ["{}", "return; place->list[i].add(b);", "return {}; place->list[i].add(b);"]),
    ("while (i != end) ++i;", ["while (i == end) ++i;", "while (!(i != end)) ++i;", "while (i != end) {}",
                               "while (i != end) --i;"]),
    ("n = 1'000;", ["n = (1'000 + 1);", "n = (1'000 - 1);", "{}", "return; n = 1'000;", "return {}; n = 1'000;"]),
    # Types, declarations and names are not operators, statements or numbers.
    ("std::vector<int> list2;", []),
    ("const char* get(const T& x) const;", []),
    ("virtual void run() = 0;", []),
    ("if (const auto at = find(x)) use(at);", ["if (const auto at = find(x)) {}"]),
    # Literals, comments, directives and static assertions.
    ('call("a < 1 \\" && 2", \'1\'); // b == 3', ["{} // b == 3", 'return; call("a < 1 \\" && 2", \'1\'); // b == 3',
                                                'return {}; call("a < 1 \\" && 2", \'1\'); // b == 3']),
    ('return R"(a < 1)";', []),
    ("#define LIMIT 3", []),
    ("static_assert(sizeof(int) == 4);", []),
]


class FindChanges(unittest.TestCase):
    def test_lines(self):
        for line, expected in ROWS:
            with self.subTest(line):
                source = f"void f() {{\n  {line}\n}}\n"
                made = [changes.line_of(source, change) for change in changes.find_changes(source)]
                self.assertEqual(sorted(after for _, _, after in made), sorted(expected))
                self.assertTrue(all(made_of[:2] == (2, line) for made_of in made))

    def test_conditions_over_lines(self):
        source = "  if (a &&\n      b)\n    c();\n"
        made = [changes.apply(source, change) for change in changes.find_changes(source)]
        self.assertIn("  if (!(a &&\n      b))\n    c();\n", made)
        self.assertIn("  if (a &&\n      b)\n    {}\n", made)


if __name__ == "__main__":
    unittest.main()
