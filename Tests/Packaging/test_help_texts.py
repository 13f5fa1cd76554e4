"""Man pages and completions name what --help names: no option less, and none that is not there."""

import re
import unittest

from stranger import BUILD, PROGRAMS, SOURCE, Help, StrangerTest, commands_of, need, run

COMPLETIONS = SOURCE / "Packaging/Completions"

# A command that takes all that another one takes. The page tells those options once, and its own beside them.
TAKES_ALL_OF = {"report": "spot"}
# But for these, which make files.
BUT_NOT = {"report": {"--prepare", "--media", "--trust", "--encoding", "--copy-media", "--keep-stereo", "--keep-off",
                      "--resample"}}


def every_command():
    """Each program with each of its commands."""
    for name in PROGRAMS:
        for command in commands_of(name):
            yield name, command


def reading(path):
    return path.read_text(encoding="utf-8")


class ManPages(unittest.TestCase):
    """The page's source: the built one, in which the version stands."""

    def page(self, name):
        return reading(BUILD / f"Packaging/{name}.1")

    def options_by_command(self, name):
        """Options are told under `.Ss NAME COMMAND`; what stands before the first of these is the program's."""
        text = self.page(name)
        sections = re.split(rf"^\.Ss {name} (\w+)$", text, flags=re.MULTILINE)
        parts = {"": sections[0], **dict(zip(sections[1::2], sections[2::2]))}
        found = {}
        for command, part in parts.items():
            part = re.split(r"^\.Sh (?:FILES|ENVIRONMENT|EXIT)", part, flags=re.MULTILINE)[0]
            found[command] = set()
            for line in re.findall(r"^\.It Fl (.*)$", part, re.MULTILINE):
                names = re.match(r"\S+(?: , \S+)*", line)[0]
                found[command].update("-" + option for option in names.split(" , "))
        return found

    def test_namesTheOptionsOfHelp(self):
        for name in PROGRAMS:
            found = self.options_by_command(name)
            self.assertEqual(set(found), set(commands_of(name)), f"the commands of {name}")
            for command in found:
                with self.subTest(program=name, command=command):
                    inherited = found.get(TAKES_ALL_OF.get(command), set())
                    inherited = inherited - BUT_NOT.get(command, set())
                    self.assertEqual(found[command] | inherited, Help(name, command).options)

    def test_namesTheHostsOfHelp(self):
        hosts = Help("velmora", "spot").hosts
        self.assertIn("embedded", hosts)
        told = re.findall(r"^\.It Cm ([\w-]+) Ns (?:Op )?Pf : Ar (\S+)$", self.page("velmora"), re.MULTILINE)
        self.assertEqual(dict(told), {host: target.lower() for host, target in hosts.items()})

    def test_namesTheChoicesOfHelp(self):
        for name, command in every_command():
            for option, choices in Help(name, command).choices.items():
                with self.subTest(program=name, command=command, option=option):
                    self.assertIn(f"\n.It Fl {option[1:]} Cm {' | '.join(choices)}\n", self.page(name))

    def test_tellsTheExitStatusesOfHelp(self):
        told = re.search(r"^Exit status: (.*?)\n(?:\n|\Z)", Help("velmora").text + "\n", re.MULTILINE | re.DOTALL)[1]
        section = self.page("velmora").split("\n.Sh EXIT STATUS\n")[1].split("\n.Sh ")[0]
        self.assertEqual(re.findall(r"^\.It (\d+)$", section, re.MULTILINE),
                         re.findall(r"(?:^|;\s+)(\d+) ", told))

    def test_tellsTheVersion(self):
        version = run(PROGRAMS["velmora"], "--version").stdout.split()[1]
        for name in PROGRAMS:
            self.assertIn(f'.Os "Velmora {version}"', self.page(name))


class Bash(StrangerTest):
    """What bash really offers."""

    def offers(self, *words):
        """The completions of the last word."""
        script = """
            source "$1" || exit
            shift
            COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
            function=$(complete -p "$1" | sed 's/.*-F \\([^ ]*\\).*/\\1/')
            $function
            printf '%s\\n' "${COMPREPLY[@]}"
        """
        file = COMPLETIONS / f"{words[0]}.bash"
        out = self.succeed("bash", "--norc", "-c", script, "bash", file, *words, cwd=self.folder)
        return set(out.splitlines()) - {""}

    def test_offersTheOptionsOfHelp(self):
        for name, command in every_command():
            with self.subTest(program=name, command=command):
                self.assertEqual(self.offers(name, *command.split(), "-"), Help(name, command).options)

    def test_offersTheChoicesOfHelp(self):
        for name, command in every_command():
            for option, choices in Help(name, command).choices.items():
                with self.subTest(program=name, command=command, option=option):
                    self.assertEqual(self.offers(name, command, option, ""), set(choices))
                    self.assertEqual(self.offers(name, command, option, "=", ""), set(choices))

    def test_offersTheHostsOfHelp(self):
        for command in ("spot", "report"):
            self.assertEqual(self.offers("velmora", command, "--host", ""), set(Help("velmora", command).hosts))

    def test_offersTheCommandsOfHelp(self):
        self.assertEqual(self.offers("velmora", ""), set(Help("velmora").commands))

    def test_offersProjectsAndFolders(self):
        for file in ("One.adl", "TWO.ADL", "Night Train.adl", "voice.wav", "session.json", "page.html"):
            (self.folder / file).touch()
        (self.folder / "Reel 1").mkdir()
        projects = {"One.adl", "TWO.ADL", "Night Train.adl", "Reel 1"}
        self.assertEqual(self.offers("velmora", "info", ""), projects)
        self.assertEqual(self.offers("velmora", "spot", "--fades", "N"), {"Night Train.adl"})
        self.assertEqual(self.offers("velmora", "spot", "--copy-to", ""), {"Reel 1"})
        self.assertEqual(self.offers("velmora", "spot", "--host", "embedded", ":", "s"), {"session.json"})
        self.assertEqual(self.offers("velmora", "spot", "--host", "embedded", ":"), {"session.json", "Reel 1"})
        self.assertEqual(self.offers("velmora", "spot", "--host", "ardour", ":"), {"Reel 1"})
        self.assertEqual(self.offers("velmora", "spot", "--bounce", ""), {"voice.wav", "Reel 1"})
        self.assertEqual(self.offers("velmora", "report", "One.adl", "-o", "p"), {"page.html"})
        self.assertEqual(self.offers("velmora", "spot", "--start", ""), set())
        if "velmora-desktop" in PROGRAMS:
            self.assertEqual(self.offers("velmora-desktop", ""), projects)


class Zsh(unittest.TestCase):
    """What zsh is told; it is asked itself only whether it can read that."""

    def test_namesTheOptionsOfHelp(self):
        for name, command in every_command():
            text = reading(COMPLETIONS / f"{name}.zsh")
            functions = dict(re.findall(r"^(_\w+)\(\) \{\n(.*?)^\}", text, re.MULTILINE | re.DOTALL))
            body = functions.get("_" + "_".join([name, command]).rstrip("_"), text)
            if f"_{name}_placing " in body:  # what several commands have in common
                body += functions[f"_{name}_placing"]
            options = set(re.findall(r"^\s+['\"](?:\([^)]*\)|\*)?(--?[\w-]+)\[", body, re.MULTILINE))
            for names in re.findall(r"\{(-[^}]*)\}'\[", body):
                options.update(names.split(","))
            with self.subTest(program=name, command=command):
                self.assertEqual(options, Help(name, command).options)

    def test_namesTheHostsOfHelp(self):
        offered = re.search(r"^ +compadd -S '' (.*)$", reading(COMPLETIONS / "velmora.zsh"), re.MULTILINE)[1]
        self.assertEqual(set(offered.split()), set(Help("velmora", "spot").hosts))

    @need("zsh")
    def test_reads(self):
        for name in PROGRAMS:
            result = run("zsh", "-f", "-n", COMPLETIONS / f"{name}.zsh")
            self.assertEqual((result.returncode, result.stderr), (0, ""))


class Fish(StrangerTest):
    """What fish really offers, and without fish what it is told."""

    def test_namesTheOptionsOfHelp(self):
        for name in PROGRAMS:
            text = reading(COMPLETIONS / f"{name}.fish")
            named = {"--" + option for option in re.findall(r"^complete .*? -l ([\w-]+)", text, re.MULTILINE)}
            expected = set().union(*(Help(name, command).options for command in commands_of(name)))
            self.assertEqual(named, {option for option in expected if option.startswith("--")})

    def test_namesTheHostsOfHelp(self):
        offered = re.search(r"^complete .* -l host -x -a \"(.*?)\"", reading(COMPLETIONS / "velmora.fish"), re.MULTILINE)[1]
        self.assertEqual(set(offered.split()), set(Help("velmora", "spot").hosts))

    def offers(self, *words):
        """The completions of the last word."""
        line = " ".join(filter(None, words[:-1])) + " " + words[-1]
        out = self.succeed("fish", "--no-config", "-c", f"source $argv[1]; complete -C '{line}'",
                           COMPLETIONS / f"{words[0]}.fish", env={"HOME": str(self.folder), "PATH": "/usr/bin:/bin"})
        return {line.split("\t")[0] for line in out.splitlines()}

    @need("fish")
    def test_offersTheOptionsOfHelp(self):
        for name, command in every_command():
            with self.subTest(program=name, command=command):
                self.assertEqual(self.offers(name, command, "-"), Help(name, command).options)

    @need("fish")
    def test_offersTheHostsAndCommandsOfHelp(self):
        self.assertEqual(self.offers("velmora", "spot", "--host", ""), set(Help("velmora", "spot").hosts))
        self.assertEqual(self.offers("velmora", ""), set(Help("velmora").commands))


if __name__ == "__main__":
    unittest.main()
