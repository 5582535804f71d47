#!/usr/bin/env python3
"""python3 tests/mutation/mutants_test.py"""

import unittest

from mutants import find_mutants
from workshop import tests_of


def after(text, kind=None):
    """What becomes of the changed lines."""
    return [mutant.after for mutant in find_mutants("some.cpp", text)
            if kind in (None, mutant.kind)]


def in_function(statements):
    return f"void f() {{\n{statements}\n}}\n"


class FindMutants(unittest.TestCase):
    def test_moves_constants_one_up_and_down(self):
        self.assertEqual(after("constexpr int a = 7;\n"),
                         ["constexpr int a = 8;", "constexpr int a = 6;"])
        self.assertEqual(after("constexpr unsigned a = 0x00FFU;\n"),
                         ["constexpr unsigned a = 0x0100U;", "constexpr unsigned a = 0x00FEU;"])
        self.assertEqual(after("constexpr unsigned a = 0;\n"), ["constexpr unsigned a = 1;"])
        self.assertEqual(after("constexpr double a = 1'000.5;\n"),
                         ["constexpr double a = 1001.5;", "constexpr double a = 999.5;"])

    def test_leaves_comments_includes_and_literals_alone(self):
        self.assertEqual(after('// a = 7\n/* b < 8 */\n#include "x9.h"\n#define A(b) \\\n    (b + 1)\n'
                               'const char* const s = "c == 3";\nconst char c = \'4\';\n'), [])

    def test_leaves_developer_texts_alone(self):
        self.assertEqual(after(in_function('    qDebug() << 3 << "x";\n    static_assert(a == 3);\n'
                                           '    NEEDS_EVE3("X", 12);\n'), "constant"), [])
        self.assertEqual(after(in_function('    EVE_ASSERT(a == 3, "text", 12);'), "comparison"),
                         ['EVE_ASSERT(a != 3, "text", 12);'])
        self.assertEqual(after(in_function('    EVE_ASSERT(true, "text", 12);'), "constant"), [])

    def test_exchanges_operators_but_not_references_and_templates(self):
        self.assertEqual(after(in_function("    const auto& a = b + c;\n    T<int>* d = e && f;")),
                         ["const auto& a = b - c;", "T<int>* d = e || f;"])

    def test_negates_conditions_once(self):
        self.assertEqual(after(in_function("    if (a && b)\n        c();"), "negation"),
                         ["if (!(a && b))"])
        self.assertEqual(after(in_function("    if (!a)\n        c();"), "negation"), ["if (a)"])
        self.assertEqual(after(in_function("    if (a == b)\n        c();"), "negation"), [])
        self.assertEqual(after(in_function("    if (const auto a = b())\n        c();"), "negation"),
                         [])

    def test_exchanges_choices(self):
        self.assertEqual(after(in_function("    f(a ? b : c, d);"), "choice"), ["f(a ? c : b, d);"])

    def test_drops_statements_but_not_declarations(self):
        dropped = after(in_function("    int a = 1;\n    Foo b(a);\n    a = 2;\n    ++a;\n"
                                    "    b.c(a,\n        d);\n    emit e();\n    return a;"),
                        "dropped")
        self.assertEqual(dropped, [";"] * 4)

    def test_drops_the_statement_behind_a_condition_or_label(self):
        self.assertEqual(after(in_function("    if (a) b();"), "dropped"), ["if (a) ;"])
        self.assertEqual(after(in_function("    switch (a) {\n    case B: c();\n    }"), "dropped"),
                         ["case B: ;"])

    def test_keeps_the_break_at_the_end_of_a_switch(self):
        statements = ("    switch (a(b)) {\n    case B:\n        if (c) {\n            break;\n        }\n"
                      "        break;\n    default:\n        break;\n    }\n    while (a) {\n        break;\n    }\n")
        lines = [mutant.line for mutant in find_mutants("some.cpp", in_function(statements))
                 if mutant.kind == "dropped"]
        self.assertEqual(lines, [5, 7, 12])

    def test_drops_statements_in_lambdas(self):
        self.assertEqual(after(in_function("    const auto a = [&] {\n        b = 1;\n    };"),
                               "dropped"), [";"])

    def test_keeps_what_is_declared_outside_functions(self):
        self.assertEqual(after("class A {\n    A();\n    void b();\n};\nvoid f(int);\n"), [])

    def test_swaps_neighbouring_arguments_of_a_kind(self):
        self.assertEqual(after(in_function('    f(host, a, g(b, c), "t");'), "swapped"),
                         ['f(host, g(b, c), a, "t");', 'f(host, a, g(c, b), "t");'])

    def test_keeps_the_numbers_of_the_lines(self):
        text = in_function("    a(b,\n      c);\n    d(7);")
        for mutant in find_mutants("some.cpp", text):
            self.assertEqual(mutant.apply(text).count("\n"), text.count("\n"))


class TestsOf(unittest.TestCase):
    def test_finds_the_tests_of_a_folder_or_of_one_further_up(self):
        folders = ["widgets", "simulator/panel", "flow"]
        self.assertEqual(tests_of("widgets/text.cpp", folders), "widgets")
        self.assertEqual(tests_of("widgets/drawing/text.cpp", folders), "widgets")
        self.assertEqual(tests_of("simulator/panel/script.cpp", folders), "simulator/panel")
        self.assertEqual(tests_of("main.cpp", folders), "flow")
        self.assertEqual(tests_of("bench/main.cpp", folders), "")


if __name__ == "__main__":
    unittest.main()
