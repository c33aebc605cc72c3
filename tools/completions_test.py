"""Tests completions.py, page_sections.py and program_texts.py with texts that shells could take for something else, and with faulty ones.
The test of the installed package asks the shells for the completions of ordinary programs."""
import pathlib
import subprocess
import tempfile
import unittest

from completions import SHELLS, completion, read_values
from page_sections import read_sections, section_page
from program_texts import described_texts

ZSH_SCRIPT = pathlib.Path(__file__).resolve().parent.parent / "cmake/complete.zsh"
MODES = ["$(touch @)", "a'b", "c:d", "e f", "\\g"]
ODD = """\
Name: odd-tool
Title: It's "odd"
Conventions: yes
Usage:
 [(-mode <a'b|$(touch @)|c:d|e f|\\g>)] [-größe] "[-quoted]" (-dir <directory>)
 ! [-secret]
Help:
 -mode <mode>  the mode's [kind]: `touch @` $(touch @)
"""
# Arguments after the name of the program, and what bash offers for the last one, in the form that it inserts.
OFFERS = [
    ("-mode ''", ["a\\'b", "\\$\\(touch\\ @\\)", "c:d", "e\\ f", "\\\\g"]),
    ("--mode = e\\\\ ", ["e\\ f"]),
    ("--gr", ["--größe"]),
    ("-quo", []),
    ("-secret", []),
    ("-dir /usr/shar", ["/usr/share"]),
    ("-- -mo", []),
]
FAULTY_VALUES = ["x: a", "-mode", "-mode:", "-nothing: a"]
FAULTY_TEXTS = ["", "Hello", "Name: a", "Usage:\n -v", "Name: a\nUsage: -v", "Name: a\nUsage:\n -v\nOther: x"]


def bash_offers(script, arguments):
    lines = [f"source {script}", f"COMP_WORDS=(odd-tool {arguments})", "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))",
             "_odd_tool", 'for offer in "${COMPREPLY[@]}"; do echo "$offer"; done']
    answer = subprocess.run(["bash", "-c", "\n".join(lines)], check=True, capture_output=True, encoding="utf-8",
                            env={"LC_ALL": "C.UTF-8", "PATH": "/usr/bin:/bin"})
    return answer.stdout.splitlines()


class CompletionsTest(unittest.TestCase):
    def test_odd_words_are_offered_and_never_run(self):
        with tempfile.TemporaryDirectory() as directory:
            victim, script = f"{directory}/victim", pathlib.Path(directory, "odd-tool")
            texts = described_texts(ODD.replace("@", victim), "test")
            script.write_text(completion("bash", texts, {}), encoding="utf-8")
            for arguments, offers in OFFERS:
                with self.subTest(arguments):
                    self.assertEqual(bash_offers(script, arguments), [offer.replace("@", victim) for offer in offers])
            commands = {"fish": ["fish", "-N", "-c", f"source {directory}/_odd-tool; complete -C 'odd-tool -mode '"],
                        "zsh": ["zsh", "-f", ZSH_SCRIPT, directory, "odd-tool -mode "]}
            for shell, command in commands.items():
                pathlib.Path(directory, "_odd-tool").write_text(completion(shell, texts, {}), encoding="utf-8")
                answer = subprocess.run(command, check=True, stdout=subprocess.PIPE, encoding="utf-8",
                                        env={"HOME": directory, "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8"}).stdout
                offers = sorted(line.split("\t")[0] for line in answer.splitlines())
                self.assertEqual(offers, sorted(mode.replace("@", victim) for mode in MODES), shell)
            self.assertFalse(pathlib.Path(victim).exists())

    def test_faults_are_reported(self):
        texts = described_texts(ODD, "test")
        for line in FAULTY_VALUES:
            for shell in SHELLS:
                with self.subTest(line), self.assertRaises(SystemExit):
                    completion(shell, texts, read_values([line]))
        for text in FAULTY_TEXTS:
            with self.subTest(text), self.assertRaises(SystemExit):
                described_texts(text, "test")

    def test_sections_of_manual_pages(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory, "sections.txt")
            pathlib.Path(directory, "runs.session").write_text(
                '# Say it:\n~ T\n+ a.txt x\n$ odd-tool -quoted @/b/a.txt\n> 1\\t%/c/d\\\\\n= 1\n', encoding="utf-8")
            path.write_text("EXIT STATUS\n0    fine\n12   too\n     long\n\nEXAMPLES\n{{session runs.session}}\n"
                            "SEE ALSO\nls(1),\n.so it is\n", encoding="utf-8")
            page = [line for lines in read_sections(path).values() for line in section_page(lines, str)]
            self.assertEqual(page, [
                ".TP", "\\fB0\\fR", "fine", ".TP", "\\fB12\\fR", "too long", ".PP", "Say it:", ".PP", ".RS 4", ".nf",
                "$ odd-tool -quoted a.txt", "1\td\\", ".fi", ".RE", ".PP", "\\fBls\\fR(1), .so it is"])
            for text in ("no heading\n", "EXAMPLES\n{{session absent}}\n"):
                path.write_text(text, encoding="utf-8")
                with self.subTest(text), self.assertRaises((SystemExit, OSError)):
                    read_sections(path)

    def test_values_of_other_switches_are_arguments_of_commands(self):
        texts = described_texts("Name: t\nUsage:\n (-file <f>) (-name <n>)", "test")
        values = read_values(["-name: $2 lister --of={x} {-file} 'a b'"])
        self.assertIn("""'lister' '--of={x}' "$value1" 'a b' 2>/dev/null </dev/null | cut -f2""",
                      completion("bash", texts, values))
        self.assertIn("""& 'lister' '--of={x}' "$value1" 'a b' 2>$null""", completion("powershell", texts, values))


unittest.main()
