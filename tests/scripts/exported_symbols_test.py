#!/usr/bin/python3 -B
"""scripts/exported-symbols names what installed headers declare and a library defines, and nothing else."""

import subprocess
import tempfile
import unittest
from pathlib import Path

REAL = Path(__file__).resolve().parents[2]

HEADER = """#pragma once
#include <string>

namespace mac {

// int inAComment();
enum class Kind : int { First, Second };

class Text final {
public:
    class Body;
    Text();
    explicit Text(std::string const& text = {});
    ~Text();
    int length() const;
    int twice() const { return length() * 2; }
    Text& operator+=(Text const& other);
    virtual void change();

private:
    int m_length{0};
};

template <class T>
T copyOf(T const& value) {
    return value;
}
int count(Kind kind, std::string const& separator = {", "});
extern int lastCount;

} // namespace mac
"""

SOURCE = """#include "room/Text.h"

namespace mac {

class Text::Body {
public:
    int hidden();
};
int Text::Body::hidden() { return 1; }
Text::Text() = default;
Text::Text(std::string const& text) : m_length(static_cast<int>(text.size())) {}
Text::~Text() = default;
int Text::length() const { return m_length + Body().hidden(); }
Text& Text::operator+=(Text const& other) { m_length += other.twice(); return *this; }
void Text::change() {}
int undeclared() { return copyOf(3); }
int count(Kind, std::string const&) { return undeclared(); }
int inAComment() { return 0; }
int lastCount = 0;

} // namespace mac
"""

EXPECTED = {
    "mac::Text::Text()", "mac::Text::Text(std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> > const&)",
    "mac::Text::~Text()", "mac::Text::length() const", "mac::Text::operator+=(mac::Text const&)", "mac::Text::change()",
    "mac::count(mac::Kind, std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> > const&)",
    "mac::lastCount", "typeinfo for mac::Text", "typeinfo name for mac::Text", "vtable for mac::Text",
}


class ExportedSymbols(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "include/room").mkdir(parents=True)
        (self.root / "include/room/Text.h").write_text(HEADER)
        (self.root / "text.cpp").write_text(SOURCE)

    def build(self, *options):
        subprocess.run(["g++", "-std=c++20", "-O0", "-fPIC", "-shared", f"-I{self.root}/include", self.root / "text.cpp",
                        "-o", self.root / "libtext.so", *options], check=True)

    def script(self):
        return subprocess.run([REAL / "scripts/exported-symbols", self.root / "include", self.root / "libtext.so"], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def names(self):
        done = self.script()
        self.assertEqual(done.returncode, 0, done.stdout)
        readable = subprocess.run(["c++filt"], input=done.stdout, text=True, stdout=subprocess.PIPE, check=True).stdout
        return {line.strip().rstrip(";") for line in readable.splitlines() if "mac::" in line and not line.strip().startswith("_")}

    def test_names_what_is_declared_and_defined(self):
        self.build()
        self.assertEqual(self.names(), EXPECTED)

    def test_names_the_same_of_a_library_that_was_linked_with_it(self):
        self.build()
        (self.root / "text.map").write_text(self.script().stdout)
        self.build(f"-Wl,--version-script={self.root}/text.map")
        self.assertEqual(self.names(), EXPECTED)
        exported = subprocess.run(["nm", "-DC", "--defined-only", self.root / "libtext.so"], text=True, stdout=subprocess.PIPE, check=True)
        self.assertIn("mac::Text::length() const", exported.stdout)
        self.assertNotIn("undeclared", exported.stdout)
        self.assertNotIn("hidden", exported.stdout)

    def test_finds_that_there_is_nothing_to_look_at(self):
        self.build()
        (self.root / "include/room/Text.h").unlink()
        done = self.script()
        self.assertEqual(done.returncode, 1)
        self.assertIn("declares nothing", done.stdout)


if __name__ == "__main__":
    unittest.main()
