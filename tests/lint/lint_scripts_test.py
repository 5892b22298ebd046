"""The lint scripts find what they are for, each on a small tree with one thing wrong."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parent.parent.parent / "scripts"


class LintCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)

    def write(self, path, text=""):
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def check(self, script):
        done = subprocess.run([sys.executable, SCRIPTS / script, self.root], capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        self.assertEqual(done.returncode, 1 if done.stdout else 0)
        return done.stdout

    def accepts(self, script):
        self.assertEqual(self.check(script), "")

    def refuses(self, script, *words):
        output = self.check(script)
        self.assertEqual(len(output.splitlines()), 1, output)
        for word in words:
            self.assertIn(word, output)


class CheckLayers(LintCase):
    def test_accepts_the_edges_of_the_table(self):
        self.write("src/platform/Clock.h", "#include <chrono>\n")
        self.write("src/siblings/tools/Text.h", '#include "platform/Clock.h"\n')
        self.write("src/comm/Core.cpp", '#include "siblings/tools/Text.h"\n#include <vector>\n')
        self.accepts("check_layers")

    def test_refuses_an_edge_upwards(self):
        self.write("src/comm/Core.h")
        self.write("src/siblings/tools/Text.h", '\n#include "comm/Core.h"\n')
        self.refuses("check_layers", "src/siblings/tools/Text.h:2:", "may not include comm")

    def test_refuses_an_unlisted_edge_among_subsystems(self):
        self.write("src/diagnostics/List.h")
        self.write("src/comm/Core.h", '#include "diagnostics/List.h"\n')
        self.refuses("check_layers", "comm may not include diagnostics")

    def test_refuses_a_folder_that_is_not_in_the_table(self):
        self.write("src/novelty/Thing.h")
        self.refuses("check_layers", "src/novelty/Thing.h", "no line in the table")

    def test_refuses_qt_outside_ui(self):
        self.write("src/comm/Core.cpp", "#include <QWidget>\n")
        self.refuses("check_layers", "ui/ folders only")

    def test_accepts_qt_in_ui(self):
        self.write("src/diagnostics/ui/Bar.cpp", "#include <QWidget>\n#include <QtCore/QObject>\n")
        self.accepts("check_layers")

    def test_refuses_a_window_below_what_knows_none(self):
        self.write("src/diagnostics/ui/Bar.h")
        self.write("src/diagnostics/List.cpp", '#include "diagnostics/ui/Bar.h"\n')
        self.refuses("check_layers", "knows no window")

    def test_refuses_a_library_in_a_header(self):
        self.write("src/siblings/tools/Text.h", "#include <pugixml.hpp>\n")
        self.refuses("check_layers", "a header may not name pugixml")

    def test_refuses_a_library_outside_its_place(self):
        self.write("src/comm/Core.cpp", "#include <asio/ip/udp.hpp>\n")
        self.refuses("check_layers", "Asio has no place in comm")

    def test_refuses_a_library_in_a_third_file(self):
        for name in "ABC":
            self.write(f"src/siblings/tools/{name}.cpp", "#include <pugixml.hpp>\n")
        self.refuses("check_layers", "pugixml is named in 3 files")

    def test_refuses_the_operating_system_outside_its_folder(self):
        self.write("src/platform/posix/Files.cpp", "#include <unistd.h>\n")
        self.write("src/comm/Core.cpp", "#include <unistd.h>\n")
        self.refuses("check_layers", "src/comm/Core.cpp:1:", "<unistd.h>")

    def test_refuses_a_header_that_does_not_exist(self):
        self.write("src/comm/Core.cpp", '#include "Core.h"\n')
        self.refuses("check_layers", "not a path below src/")


class CheckLists(LintCase):
    def test_accepts_files_that_are_listed_by_their_folder_or_one_above(self):
        self.write("tests/unit/CMakeLists.txt", "add_executable(a\n  AreaTest.cpp\n  deep/DeepTest.cpp)\n")
        self.write("tests/unit/AreaTest.cpp")
        self.write("tests/unit/deep/DeepTest.cpp")
        self.accepts("check_lists")

    def test_refuses_a_test_that_is_not_listed(self):
        self.write("tests/unit/CMakeLists.txt", "zr_test(test_area OtherAreaTest.cpp)  # AreaTest.cpp\n")
        self.write("tests/unit/OtherAreaTest.cpp")
        self.write("tests/unit/AreaTest.cpp")
        self.refuses("check_lists", "tests/unit/AreaTest.cpp")


class CheckWords(LintCase):
    def test_accepts_the_standard_of_others(self):
        self.write("docs/frames.md", "As in the Modbus application protocol specif" "ication, section 6.\n")
        self.accepts("check_words")

    def test_refuses_a_path_of_one_machine(self):
        self.write("src/comm/Core.cpp", "// see /wo" "rk/notes\n")
        self.refuses("check_words", "src/comm/Core.cpp:1:", "a path of one machine")

    def test_refuses_a_number_of_a_planning_paper(self):
        self.write("README.md", "\nBuilt as Pa" "rt 7.4 tells.\n")
        self.refuses("check_words", "README.md:2:", "planning paper")

    def test_refuses_a_paper_that_the_reader_does_not_have(self):
        self.write("README.md", "As the specif" "ication tells.\n")
        self.refuses("check_words", "the reader doesn't have")

    def test_does_not_look_into_the_build_folder(self):
        self.write("build/dev/notes.txt", "/wo" "rk/notes\n")
        self.accepts("check_words")


class CheckTexts(LintCase):
    def setUp(self):
        super().setUp()
        self.write("resources/language/en.txt", "# 9\n514\tThere is no variable.\n")

    def test_accepts_a_constant_whose_text_exists(self):
        self.write("src/comm/TextIds.h", "inline constexpr unsigned kTextNoVariable = 514;\n")
        self.accepts("check_texts")

    def test_refuses_a_constant_whose_text_is_missing(self):
        self.write("src/comm/TextIds.h", "\ninline constexpr unsigned kMessageGone = 9;\n")
        self.refuses("check_texts", "src/comm/TextIds.h:2:", "kMessageGone", "text 9", "en.txt")

    def test_refuses_a_constant_in_braces(self):
        self.write("src/comm/TextIds.h", "constexpr unsigned kTextGone{515u};\n")
        self.refuses("check_texts", "text 515")

    def test_looks_into_every_language(self):
        self.write("resources/language/de.txt", "514\tKeine\n")
        self.write("resources/language/es.txt", "514\tNinguna\n")
        self.write("src/comm/TextIds.h", "constexpr unsigned kTextGone = 515;\n")
        output = self.check("check_texts")
        for file in ("de.txt", "en.txt", "es.txt"):
            self.assertIn(file, output)

    def test_refuses_a_tree_without_the_texts(self):
        (self.root / "resources/language/en.txt").unlink()
        self.refuses("check_texts", "resources/language/en.txt")

    def other(self, english, text):
        self.write("resources/language/en.txt", f"514\t{english}\n")
        self.write("resources/language/de.txt", text)

    def test_accepts_a_translation(self):
        self.other("&Week %d: %s, 100 %%", "# Deutsch\n514\tW&oche %d: %s zu 100 %%\n")
        self.accepts("check_texts")

    def test_refuses_a_text_that_is_not_translated(self):
        self.other("Week", "# Deutsch\n")
        self.refuses("check_texts", "de.txt", "text 514", "missing")

    def test_refuses_a_translation_of_nothing(self):
        self.other("Week", "514\tWoche\n515\tJahr\n")
        self.refuses("check_texts", "de.txt", "text 515", "not in en.txt")

    def test_refuses_placeholders_of_another_kind(self):
        self.other("Week %d", "514\tWoche %s\n")
        self.refuses("check_texts", "de.txt", "text 514", "%d")

    def test_refuses_placeholders_in_another_order(self):
        self.other("%d of %s", "514\t%s: %d\n")
        self.refuses("check_texts", "de.txt", "text 514", "%d %s")

    def test_refuses_a_placeholder_that_is_left_out(self):
        self.other("Week %d", "514\tWoche\n")
        self.refuses("check_texts", "de.txt", "text 514")

    def test_refuses_a_placeholder_of_another_form(self):
        self.other("%.2f V", "514\t%f V\n")
        self.refuses("check_texts", "de.txt", "text 514", "%.2f")

    def test_refuses_a_mnemonic_in_one_language_only(self):
        self.other("&File", "514\tDatei\n")
        self.refuses("check_texts", "de.txt", "text 514", "mnemonic")

    def test_leaves_other_constants_alone(self):
        self.write("src/comm/Sizes.h", "constexpr int kMaxTextWidth = 99;\nconstexpr std::size_t kMessageBuffer = 1024;\n")
        self.accepts("check_texts")


if __name__ == "__main__":
    unittest.main()
