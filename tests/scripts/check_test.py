#!/usr/bin/python3 -B
"""scripts/check finds what it is there to find: a small clean tree passes, and each violation planted in a copy is named
with its file and line. A check that misses its violation fails here."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

REAL = Path(__file__).resolve().parents[2]

TREE = {
    "CMakeLists.txt": """cmake_minimum_required(VERSION 3.25)
project(Small LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
include_directories(${PROJECT_SOURCE_DIR})
add_subdirectory(platform/foundation)
add_subdirectory(pathutils)
add_subdirectory(app)
add_subdirectory(fuzz)
add_subdirectory(tests)
""",
    "CMakePresets.json": """{ "version": 6, "configurePresets": [ { "name": "check", "generator": "Ninja",
  "binaryDir": "${sourceDir}/build/check", "cacheVariables": { "CMAKE_CXX_COMPILER": "clang++" } } ] }
""",
    "README.md": "# Small\n\nRead [the rules](CONTRIBUTING.md).\n",
    "CONTRIBUTING.md": "Keep `app/ItemActions.cpp` small; build/small/app is made, docs/TOPIC is any, /docs/x is elsewhere.\n",
    "run": "#!/usr/bin/env bash\nset -eu\necho \"$#\"\n",
    "packaging/small.desktop": "[Desktop Entry]\nType=Application\nName=Small\nExec=small\n",
    "packaging/com.example.small.metainfo.xml.in": """<?xml version="1.0" encoding="UTF-8"?>
<component type="console-application">
  <id>com.example.small</id>
  <metadata_license>MIT</metadata_license>
  <project_license>MIT</project_license>
  <name>Small</name>
  <summary>Does little</summary>
  <description><p>It does next to nothing, and says so in a few words, which are many enough to be shown in a list of programs.</p></description>
  <content_rating type="oars-1.1"/>
  <url type="homepage">https://small.example/</url>
  <provides><binary>small</binary></provides>
  <releases><release version="@VERSION@" date="2026-01-01"/></releases>
</component>
""",
    "packaging/icons/16.svg": '<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16"/>\n',
    "docs/man/small.1": ".TH SMALL 1\n.SH NAME\nsmall \\- does little\n",
    "docs/pairs.txt": "# Pairs of other names.\napp/AppController.h app/ItemActions.cpp\n",
    "docs/operations.txt": """# Operations.

app/ItemActions
  -trashAction:     trashAction_

pathutils/BundleVersions
  -pxVersionOfPath  pxVersionOfPath

pathutils/FileOperations
  -pxRemoveFile     pxRemoveFile
""",
    "platform/foundation/CMakeLists.txt": "add_library(foundation OBJECT text/NSString.cpp)\n",
    "platform/foundation/text/NSString.h": """#pragma once

namespace mac {

// A text, by its length alone.
class NSString {
public:
    int length() const { return m_length; }
    void setLength_(int length);

private:
    int m_length = 0;
};

} // namespace mac
""",
    "platform/foundation/text/NSString.cpp": """#include "platform/foundation/text/NSString.h"

namespace mac {

void NSString::setLength_(int length) { m_length = length; }

} // namespace mac
""",
    "platform/foundation/objects/Class.h": """#pragma once

namespace mac {

// The object as a T; null when it is of another class.
template <class T, class Object>
T* as(Object* object) {
    return dynamic_cast<T*>(object);
}

// The only new.
template <class T>
T* adopt() {
    return new T();
}

} // namespace mac
""",
    "platform/foundation/objects/Method.h": """#pragma once

namespace mac {

// A row of a method table.
struct Method {
    char const* selector;
};

template <auto function>
constexpr Method method(char const* selector) {
    return {selector};
}

template <auto function>
constexpr Method classMethod(char const* selector) {
    return {selector};
}

} // namespace mac
""",
    "pathutils/CMakeLists.txt": "add_library(pathutils OBJECT BundleVersions.cpp)\n",
    "pathutils/BundleVersions.h": """#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {
// The version.
int pxVersionOfPath(NSString const& path);

} // namespace mac
""",
    "pathutils/BundleVersions.cpp": """#include "pathutils/BundleVersions.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

int pxVersionOfPath(NSString const& path) { return path.length(); }

extern Method const row;
Method const row = method<&pxVersionOfPath>("pxVersionOfPath");

} // namespace mac
""",
    "app/CMakeLists.txt": "add_library(app OBJECT ItemActions.cpp)\n",
    "app/AppController.h": """#pragma once

namespace framekeeper {

// Decides.
class AppController {
public:
    void trashAction_(int sender);

private:
    int m_sender = 0;
    int _query = 0;
};

} // namespace framekeeper
""",
    "app/ItemActions.cpp": """#include "app/AppController.h"
#include "platform/foundation/objects/Method.h"

namespace framekeeper {

void AppController::trashAction_(int sender) { m_sender = sender + _query; }

extern mac::Method const row;
mac::Method const row = mac::method<&AppController::trashAction_>("trashAction:");

} // namespace framekeeper
""",
    "fuzz/CMakeLists.txt": """function(framekeeper_fuzz NAME)
  add_library(${NAME} OBJECT ${ARGN})
endfunction()
framekeeper_fuzz(VersionFuzz VersionFuzz.cpp)
""",
    "app/MainMenu.ui": """<ui version="4.0">
<property name="text"><string>Trash</string></property>
</ui>
""",
    "translations/framekeeper_de.ts": """<TS version="2.1" language="de"><context><name>Framekeeper</name>
<message><source>Trash</source><translation>Papierkorb</translation></message>
</context></TS>
""",
    "fuzz/VersionFuzz.cpp": """#include "pathutils/BundleVersions.h"

int read();
int read() { return mac::pxVersionOfPath({}); }
""",
    "fuzz/corpus/VersionFuzz/short": "1.0",
    "tests/CMakeLists.txt": "add_library(tests OBJECT app/ItemActionsTest.cpp pathutils/BundleVersionsTest.cpp)\n",
    "tests/app/ItemActionsTest.cpp": """#include "app/AppController.h"

#include <gtest/gtest.h>

TEST(ItemActions, Trash) {}
""",
    "tests/pathutils/BundleVersionsTest.cpp": """#include "pathutils/BundleVersions.h"

#include <gtest/gtest.h>

TEST(BundleVersions, AnswersTheVersion) { EXPECT_EQ(mac::pxVersionOfPath({}), 0); }
""",
}


def after(path, line, text):
    """A change: text put behind a line (counted from 1) of a file."""
    def change(root):
        lines = (root / path).read_text().splitlines(keepends=True)
        (root / path).write_text("".join(lines[:line]) + text + "".join(lines[line:]))
    return change


def new(path, text):
    """A change: a file that was not there."""
    def change(root):
        (root / path).parent.mkdir(parents=True, exist_ok=True)
        (root / path).write_text(text)
    return change


def replace(path, old, text):
    def change(root):
        whole = (root / path).read_text()
        assert old in whole, (path, old)
        (root / path).write_text(whole.replace(old, text))
    return change


WORK = "/" + "work/somewhere"  # in two pieces, so that this file is no finding itself
TO_DO = "TO" + "DO"
SYSTEM = "system"

# The check, what is planted, and how the finding must begin and what it must say.
PLANTED = [
    ("format", [replace("app/ItemActions.cpp", "(int sender)", "( int  sender )")], "app/ItemActions.cpp:6: ", "clang-format"),
    ("headers", [new("pathutils/Sizes.h", "#pragma once\n\nstd::string size();\n")], "pathutils/Sizes.h:3: ", "by itself"),
    ("headers", [replace("pathutils/BundleVersions.h", "#pragma once\n", "struct Twice {};\n")], "pathutils/BundleVersions.h:1: ", "Twice"),
    ("tidy", [replace("app/AppController.h", "m_sender", "sender"), replace("app/ItemActions.cpp", "m_sender", "this->sender")],
     "app/AppController.h:11: ", "private member 'sender'"),
    ("tidy", [after("app/ItemActions.cpp", 3, "int* nothing() { return 0; }\n")], "app/ItemActions.cpp:4: ", "modernize-use-nullptr"),
    # arrows
    ("arrows", [after("pathutils/BundleVersions.cpp", 1, '#include "app/AppController.h"\n')], "pathutils/BundleVersions.cpp:2: ", "app"),
    ("arrows", [after("platform/foundation/text/NSString.cpp", 1, '#include "pathutils/BundleVersions.h"\n')],
     "platform/foundation/text/NSString.cpp:2: ", "platform includes pathutils"),
    ("arrows", [new("platform/files/File.h", "#pragma once\n"), after("platform/foundation/text/NSString.cpp", 1, '#include "platform/files/File.h"\n')],
     "platform/foundation/text/NSString.cpp:2: ", "it stands on system alone"),
    ("arrows", [new("platform/files/File.h", '#pragma once\n#include "platform/finder/Finder.h"\n'),
                new("platform/finder/Finder.h", '#pragma once\n#include "platform/files/File.h"\n')], "platform/finder/Finder.h:2: ", "no order of rooms"),
    ("arrows", [new("coreutils/Strings.cpp", '#include "pathutils/BundleVersions.h"\n')], "coreutils/Strings.cpp:1: ", "alone"),
    ("arrows", [after("pathutils/BundleVersions.cpp", 1, "#include <QString>\n")], "pathutils/BundleVersions.cpp:2: ", "toolkit"),
    ("arrows", [new("command/Verbs.h", "#pragma once\n"), after("app/ItemActions.cpp", 1, '#include "command/Verbs.h"\n')],
     "app/ItemActions.cpp:2: ", "stands above"),
    ("arrows", [after("app/ItemActions.cpp", 1, "#include <unistd.h>\n")], "app/ItemActions.cpp:2: ", "system header"),
    ("arrows", [after("platform/foundation/text/NSString.h", 1, "#include <fcntl.h>\n")], "platform/foundation/text/NSString.h:2: ", "in a header"),
    ("arrows", [new("platform/foundation/Inner.h", "#pragma once\n#include <QString>\n"),
                after("platform/foundation/text/NSString.h", 1, '#include "platform/foundation/Inner.h"\n')],
     "platform/foundation/Inner.h:2: ", "reaches pathutils/BundleVersions.cpp"),
    ("arrows", [after("app/ItemActions.cpp", 1, '#include "ItemActions.h"\n')], "app/ItemActions.cpp:2: ", "no file of the tree"),
    ("arrows", [new("tests/support/Home.h", "#pragma once\n"), after("app/ItemActions.cpp", 1, '#include "tests/support/Home.h"\n')],
     "app/ItemActions.cpp:2: ", "app includes tests"),
    # operations
    ("operations", [after("pathutils/BundleVersions.h", 7, "void pxRemoveFile(NSString const& path);\n")],
     "pathutils/BundleVersions.h:8: ", "pathutils/FileOperations"),
    ("operations", [after("pathutils/BundleVersions.h", 7, "int pxInvented(NSString const& path);\n")], "pathutils/BundleVersions.h:8: ", "not in"),
    ("operations", [after("pathutils/BundleVersions.h", 7, "NSString KRCInvented_(int reference);\n")], "pathutils/BundleVersions.h:8: ", "not in"),
    ("operations", [replace("docs/operations.txt", "trashAction_\n", "trashAction\n")], "docs/operations.txt:4: ", "trashAction_ in C++"),
    ("operations", [new("app/OtherController.h", "#pragma once\nclass OtherController {\n    void trashAction_(int sender);\n};\n")],
     "app/OtherController.h:3: ", "app/ItemActions"),
    ("operations", [new("app/PathRecords.cpp", "void AppController::trashAction_(int sender) {}\n")], "app/PathRecords.cpp:1: ", "app/ItemActions.cpp"),
    ("operations", [replace("app/ItemActions.cpp", '"trashAction:"', '"trash:"')], "docs/operations.txt:4: ", "cannot be sent"),
    ("operations", [replace("pathutils/BundleVersions.cpp", "&pxVersionOfPath", "&other")], "docs/operations.txt:7: ", "cannot be sent"),
    ("operations", [replace("docs/operations.txt", "  -pxVersionOfPath", "  +pxVersionOfPath")], "docs/operations.txt:7: ", "classMethod<"),
    ("operations", [new("docs/operations.txt", "# None.\n")], "scripts/checks/operations:1: ", "looked at no operations"),
    ("operations", [replace("pathutils/BundleVersions.cpp", "Method const row = method<&pxVersionOfPath>(\"pxVersionOfPath\");",
                            "void registerAll() {\n    addCategory<NSURL>({method<&pxVersionOfPath>(\"pxVersionOfPath\")});\n}")],
     "pathutils/BundleVersions.cpp:10: ", "the receiver NSString"),
    # registered
    ("registered", [new("tests/pathutils/LostTest.cpp", "\n")], "tests/pathutils/LostTest.cpp:1: ", "no CMakeLists.txt"),
    ("registered", [replace("tests/CMakeLists.txt", "app/ItemActionsTest.cpp", "# app/ItemActionsTest.cpp\n")],
     "tests/app/ItemActionsTest.cpp:1: ", "no CMakeLists.txt"),
    ("registered", [new("pathutils/FileOperations.cpp", ""), replace("pathutils/CMakeLists.txt", "OBJECT", "OBJECT FileOperations.cpp")],
     "pathutils/FileOperations.cpp:1: ", "tests/pathutils/FileOperationsTest.cpp"),
    ("registered", [new("tests/app/More.cpp", "\nTEST(More, Runs) {}\n"), replace("tests/CMakeLists.txt", "OBJECT", "OBJECT app/More.cpp")],
     "tests/app/More.cpp:2: ", "Test.cpp"),
    ("registered", [new("scripting/CMakeLists.txt", "\n")], "scripting/CMakeLists.txt:1: ", "does not add"),
    ("registered", [after("platform/foundation/text/NSString.h", 7, "    static ClassDescription describeClass();\n")],
     "platform/foundation/text/NSString.h:6: ", "never registered"),
    ("registered", [new("fuzz/NameFuzz.cpp", "\n"), replace("fuzz/CMakeLists.txt", "framekeeper_fuzz(V", "framekeeper_fuzz(NameFuzz NameFuzz.cpp)\nframekeeper_fuzz(V")],
     "fuzz/CMakeLists.txt:1: ", "NameFuzz has no corpus"),
    ("translations", [replace("app/MainMenu.ui", "Trash", "Delete")], "app/MainMenu.ui:2: ", "“Delete” is not in translations/framekeeper_de.ts"),
    ("translations", [replace("app/MainMenu.ui", "Trash", "Delete")], "translations/framekeeper_de.ts:1: ", "“Trash” is no text of the program"),
    ("translations", [replace("translations/framekeeper_de.ts", "Papierkorb", "")], "translations/framekeeper_de.ts:1: ", "has not the forms"),
    ("registered", [new("fuzz/corpus/NameFuzz/one", "\n")], "fuzz/corpus/NameFuzz:1: ", "belongs to no target"),
    ("registered", [new("fuzz/NameFuzz.dict", "\n")], "fuzz/NameFuzz.dict:1: ", "belongs to no target"),
    # rules
    ("rules", [after("pathutils/BundleVersions.cpp", 3, "void* nothing = nullptr;\n")], "pathutils/BundleVersions.cpp:4: ", "nil"),
    ("rules", [after("app/ItemActions.cpp", 3, "int* leak() { return new int(3); }\n")], "app/ItemActions.cpp:4: ", "adopt"),
    ("rules", [after("platform/foundation/text/NSString.cpp", 3, "void* w = new QWidget();\n")], "platform/foundation/text/NSString.cpp:4: ", "adopt"),
    ("rules", [after("app/ItemActions.cpp", 3, "auto* t = dynamic_cast<int*>(x);\n")], "app/ItemActions.cpp:4: ", "as<T>"),
    ("rules", [after("tests/app/ItemActionsTest.cpp", 3, f'int x = {SYSTEM}("ls");\n')], "tests/app/ItemActionsTest.cpp:4: ", "NSTask"),
    ("rules", [after("pathutils/BundleVersions.cpp", 1, "#include <filesystem>\n")], "pathutils/BundleVersions.cpp:2: ", "NSFileManager"),
    ("rules", [after("platform/foundation/text/NSString.cpp", 3, "#ifdef __linux__\n#endif\n")], "platform/foundation/text/NSString.cpp:4: ", "one platform"),
    ("rules", [after("platform/foundation/text/NSString.h", 3, "void log(const char* format, ...);\n")], "platform/foundation/text/NSString.h:4: ", "varargs"),
    ("rules", [after("app/ItemActions.cpp", 3, "char* n = mktemp(t);\n")], "app/ItemActions.cpp:4: ", "mkstemp"),
    ("rules", [after("app/ItemActions.cpp", 3, "using namespace std;\n")], "app/ItemActions.cpp:4: ", "namespace std"),
    ("rules", [after("app/ItemActions.cpp", 3, f"// {TO_DO}: later\n")], "app/ItemActions.cpp:4: ", "README.md"),
    ("rules", [after("CONTRIBUTING.md", 1, f"See {WORK}.\n")], "CONTRIBUTING.md:2: ", "developer"),
    ("rules", [after("run", 1, "cd /" + "home/ann/code\n")], "run:2: ", "developer"),
    ("rules", [after("app/ItemActions.cpp", 3, "// " + "-" * 20 + "\n")], "app/ItemActions.cpp:4: ", "ruler"),
    ("rules", [after("platform/foundation/text/NSString.h", 4, "// False if it fails; errno says why.\n")], "platform/foundation/text/NSString.h:5: ", "Result"),
    ("rules", [after("platform/foundation/text/NSString.cpp", 3, "int fail() { errno = 2; return -1; }\n")], "platform/foundation/text/NSString.cpp:4: ", "SystemError"),
    ("rules", [after("platform/foundation/text/NSString.cpp", 3, "void clear() { std::exchange(errno, 0); }\n")], "platform/foundation/text/NSString.cpp:4: ", "SystemError"),
    ("rules", [replace("app/AppController.h", "#pragma once\n", "")], "app/AppController.h:1: ", "#pragma once"),
    ("rules", [after("app/ItemActions.cpp", 3, "\n" * 400)], "app/ItemActions.cpp:411: ", "split"),
    # shapes
    ("shapes", [new(f"scripts/few{number}.py", "\n") for number in range(100)], "scripts/few0.py:1: ", "fewer than 31"),
    ("shapes", [after("app/ItemActions.cpp", 3, "\n" * 400)], "app/ItemActions.cpp:400: ", "more than 400"),
    ("shapes", [new("pathutils/Lonely.h", "#pragma once\nvoid stand();\n")], "pathutils/Lonely.h:1: ", "no source has its name"),
    ("shapes", [new("pathutils/Lonely.cpp", "void stand() {}\n")], "pathutils/Lonely.cpp:1: ", "no header of this name"),
    ("shapes", [after("docs/pairs.txt", 1, "app/AppController.h app/Gone.cpp\n")], "docs/pairs.txt:2: ", "no file of the tree"),
    ("shapes", [after("docs/pairs.txt", 1, "app/AppController.h pathutils/BundleVersions.cpp\n")], "docs/pairs.txt:2: ", "does not include"),
    # documents
    ("documents", [after("README.md", 3, "![The window](docs/window.png)\n")], "README.md:4: ", "leads nowhere"),
    ("documents", [after("README.md", 3, "| `app/` | decides, see `app/Nowhere.cpp`. |\n")], "README.md:4: ", "app/Nowhere.cpp"),
    ("documents", [after("CONTRIBUTING.md", 1, "\n    ./docs/nothing -e 1\n")], "CONTRIBUTING.md:3: ", "docs/nothing"),
    ("documents", [after("run", 2, "if true; then\n")], "run:5: ", "syntax error"),
    ("documents", [after("run", 2, "cd $1\n")], "run:3: ", "SC2086"),
    ("documents", [new("scripts/count.py", "def (:\n")], "scripts/count.py:1: ", "invalid syntax"),
    ("documents", [lambda root: (root / "run").chmod(0o644)], "run:1: ", "cannot be run"),
    ("documents", [new("packaging/small.bash", "# shellcheck shell=bash\ncd $1\n")], "packaging/small.bash:2: ", "SC2086"),
    # package
    ("package", [replace("packaging/small.desktop", "Type=", "Version=1.5\nType=")], "packaging/small.desktop:1: ", "1.5"),
    ("package", [replace("packaging/com.example.small.metainfo.xml.in", "<name>Small</name>", "")],
     "packaging/com.example.small.metainfo.xml.in:", "name"),
    ("package", [after("docs/man/small.1", 3, ".FROB\n")], "docs/man/small.1:4: ", "FROB"),
    ("package", [replace("packaging/icons/16.svg", "0 0 16 16", "0 0 48 48")], "packaging/icons/16.svg:1: ", "grid"),
    ("package", [new("packaging/collection/galaxy.yml", "---\nnamespace: small\nname: collection\nversion: 1.0.0\n"),
                 new("packaging/collection/playbooks/small.yml", "---\n- hosts: all\n  tasks: []\n")],
     "packaging/collection/playbooks/small.yml:2: ", "name"),
    ("package", [replace("packaging/icons/16.svg", "/>", ">")], "packaging/icons/16.svg:2: ", "no element"),
]
CHECKS = ["format", "headers", "arrows", "operations", "registered", "rules", "shapes", "documents", "package", "reference", "translations", "tidy"]


class Check(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()
        for path, text in TREE.items():
            new(path, text)(self.root)
        (self.root / "run").chmod(0o755)
        for name in (".clang-format", ".clang-tidy", "docs/Doxyfile"):
            shutil.copy(REAL / name, self.root / name)

    def check(self, *arguments):
        environment = {k: v for k, v in os.environ.items() if k not in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")}
        return subprocess.run([REAL / "scripts/check", "--root", self.root, *arguments], env=environment,
                              text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def test_finds_nothing_in_a_clean_tree_with_every_check(self):
        done = self.check()
        self.assertEqual(done.returncode, 0, done.stdout)
        for name in CHECKS:
            self.assertRegex(done.stdout, rf"(?m)^{name} +ok ")

    def test_leaves_out_clang_tidy_when_it_must_be_fast(self):
        done = self.check("--fast")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertNotIn("tidy", done.stdout)

    def test_counts_what_is_not_there_yet_without_failing(self):
        done = self.check("operations")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("2 of 3 operations declared", done.stdout)
        self.assertIn("pathutils/FileOperations: 1 of 1", done.stdout)

    def test_looks_again_at_a_source_when_a_header_it_reaches_has_changed(self):
        self.assertEqual(self.check("tidy").returncode, 0)
        replace("app/AppController.h", "m_sender", "sender")(self.root)
        replace("app/ItemActions.cpp", "m_sender", "this->sender")(self.root)
        self.assertEqual(self.check("tidy").returncode, 1)
        self.assertEqual(self.check("tidy").returncode, 1, "a failure must not be remembered as a pass")

    def test_goes_on_to_the_other_checks_after_a_finding(self):
        after("CONTRIBUTING.md", 1, f"See {WORK}.\n")(self.root)
        done = self.check("--fast")
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stdout, r"(?m)^documents +ok ")
        self.assertTrue(done.stdout.endswith("scripts/check: failed: rules\n"), done.stdout)

    def test_finds_that_there_is_nothing_to_look_at(self):
        names = sorted(path.name for path in (REAL / "scripts/checks").iterdir() if os.access(path, os.X_OK) and path.is_file())
        self.assertEqual(names, sorted(CHECKS))
        with tempfile.TemporaryDirectory() as empty:
            for name in (".clang-format", ".clang-tidy", "docs/Doxyfile", "build/check/compile_commands.json"):
                (Path(empty) / name).parent.mkdir(parents=True, exist_ok=True)
            (Path(empty) / "build/check/compile_commands.json").write_text("[]")
            for name in (".clang-format", ".clang-tidy", "docs/Doxyfile"):
                shutil.copy(REAL / name, Path(empty) / name)
            for name in names:
                with self.subTest(name):
                    done = subprocess.run([REAL / "scripts/checks" / name, empty], text=True,
                                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                    self.assertEqual(done.returncode, 1, done.stdout)
                    self.assertIn(f"scripts/checks/{name}:1: looked at no ", done.stdout)

    def test_knows_no_check_of_another_name(self):
        self.assertEqual(self.check("nonsense").returncode, 2)


class CompileHeaders(unittest.TestCase):
    """scripts/compile-headers, which looks at the installed headers."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()

    def compile(self, *arguments):
        return subprocess.run([REAL / "scripts/compile-headers", self.root, *arguments], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def test_counts_what_compiles_with_each_compiler(self):
        new("room/One.h", "#pragma once\n#include <string>\n")(self.root)
        new("room/Two.h", '#pragma once\n#include "room/One.h"\nstd::string two();\n')(self.root)
        done = self.compile("2")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("2 of 2 installed headers compile by themselves with g++", done.stdout)
        self.assertIn("2 of 2 installed headers compile by themselves with clang++", done.stdout)

    def test_finds_a_header_that_includes_what_is_not_installed(self):
        new("room/Two.h", '#pragma once\n#include "room/One.h"\n')(self.root)
        done = self.compile()
        self.assertEqual(done.returncode, 1)
        self.assertIn("room/Two.h does not compile by itself with g++", done.stdout)
        self.assertIn("0 of 1 ", done.stdout)

    def test_finds_that_there_is_no_header(self):
        done = self.compile()
        self.assertEqual(done.returncode, 1)
        self.assertIn("holds no header", done.stdout)

    def test_finds_that_there_are_fewer_than_were_installed(self):
        new("One.h", "#pragma once\n")(self.root)
        self.assertEqual(self.compile("2").returncode, 1)


def planted_test(check, changes, begins, says):
    def test(self):
        for change in changes:
            change(self.root)
        done = self.check(check)
        self.assertEqual(done.returncode, 1, f"missed:\n{done.stdout}")
        findings = [line for line in done.stdout.split("\n" + begins)] if not done.stdout.startswith(begins) else ["", done.stdout]
        self.assertTrue(any(says in finding for finding in findings[1:]), f"no '{begins}…{says}' in:\n{done.stdout}")
    return test


for number, plant in enumerate(PLANTED, 1):
    setattr(Check, f"test_finds_{plant[0]}_{number:02}", planted_test(*plant))

if __name__ == "__main__":
    unittest.main()
