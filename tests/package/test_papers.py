"""What stands beside the package: its versions agree, the pages of the manual are whole and have no faults of form, the Flatpak manifest says what
flatpak-builder reads and names things that exist."""

import os
import pathlib
import re
import subprocess
import unittest
import xml.etree.ElementTree

import yaml

SOURCE = pathlib.Path(__file__).resolve().parents[2]
PACKAGING = SOURCE / "packaging"
APPLICATION = "org.tuppi.Transcriber"


def manual(page, width):
    """How a page is read on lines of so many columns, with what is wrong with it."""
    return subprocess.run(["man", "--warnings", "--local-file", page], capture_output=True, text=True,
                          env=dict(os.environ, LC_ALL="C.UTF-8", MANPAGER="cat", MANWIDTH=str(width)))


class Papers(unittest.TestCase):
    def test_one_version_everywhere(self):
        version = re.search(r"project\(TuppiTranscriber VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text())[1]
        changelog = (PACKAGING / "debian/changelog").read_text()
        self.assertTrue(changelog.startswith(f"tuppi-transcriber ({version}-1) "), changelog[:60])
        metainfo = xml.etree.ElementTree.parse(PACKAGING / f"{APPLICATION}.metainfo.xml")
        self.assertEqual(metainfo.find("releases/release").get("version"), version)

    def test_no_page_of_the_manual_has_a_fault(self):
        for page in sorted((PACKAGING / "man").iterdir()):
            done = manual(page, width=80)
            self.assertEqual((done.returncode, done.stderr), (0, ""), page.name)
            self.assertIn("NAME", done.stdout)

    def test_the_manual_has_every_option_of_the_application(self):
        page = manual(PACKAGING / "man/tuppi-transcriber.1", width=80).stdout
        program = pathlib.Path(os.environ["TUPPI_BUILD"]) / "tuppi-transcriber"
        told = subprocess.run([program, "--help"], stdout=subprocess.PIPE, text=True, check=True).stdout
        options = re.findall(r"^  (-.*?)(?:  |$)", told, re.M)
        self.assertIn("--model <ID>", options)
        listed = re.findall(r"^ {7}(-.*)$", page.split("OPTIONS")[1].split("EXIT STATUS")[0], re.M)
        self.assertEqual(sorted(listed), sorted(re.sub("[<>]", "", option) for option in options))

    def test_the_manual_has_every_command_and_variable_of_the_engine(self):
        page = " ".join(manual(PACKAGING / "man/tuppi-engine.1", width=1000).stdout.split())
        engine = pathlib.Path(os.environ["TUPPI_BUILD"]) / "runtime/tuppi-engine"
        told = subprocess.run([engine, "--help"], stdout=subprocess.PIPE, text=True, check=True).stdout
        usages = [usage for line in re.findall(r"^  (\S.*)$", told, re.M) for usage in line.split(" | ")]
        self.assertIn("split ID LINE --join [--json]", usages)
        self.assertEqual([usage for usage in usages if usage not in page], [])
        code = "".join(path.read_text() for path in (SOURCE / "runtime/src").rglob("*.cpp"))
        variables = set(re.findall(r'"(TUPPI_[A-Z_]+|OLLAMA_HOST)"', code))
        self.assertIn("TUPPI_NICE", variables)
        self.assertEqual([name for name in sorted(variables) if name not in page], [])


class Flatpak(unittest.TestCase):
    def setUp(self):
        self.manifest = yaml.safe_load((PACKAGING / f"flatpak/{APPLICATION}.yml").read_text())

    def test_it_names_this_program_and_a_runtime(self):
        self.assertEqual(self.manifest["id"], APPLICATION)
        self.assertEqual(self.manifest["command"], "tuppi-transcriber")
        for key in ("runtime", "runtime-version", "sdk", "base", "base-version"):
            self.assertIsInstance(self.manifest[key], str, key)

    def test_every_permission_is_one_that_flatpak_knows(self):
        known = re.compile(r"--(share=(ipc|network)|socket=(wayland|fallback-x11|pulseaudio)|device=dri|filesystem=home"
                           r"|talk-name=org(\.\w+)+|env=\w+=\S+)")
        self.assertEqual([word for word in self.manifest["finish-args"] if not known.fullmatch(word)], [])

    def test_every_module_has_a_way_to_be_built_and_a_source(self):
        names = [module["name"] for module in self.manifest["modules"]]
        self.assertEqual(len(names), len(set(names)))
        self.assertEqual(names[-1], "tuppi-transcriber")
        for module in self.manifest["modules"]:
            self.assertIn(module["buildsystem"], ("autotools", "cmake-ninja"))
            self.assertTrue(all(source["type"] == "dir" and source["path"] for source in module["sources"]))
        own = PACKAGING / "flatpak" / self.manifest["modules"][-1]["sources"][0]["path"]
        self.assertEqual(own.resolve(), SOURCE)


if __name__ == "__main__":
    unittest.main()
