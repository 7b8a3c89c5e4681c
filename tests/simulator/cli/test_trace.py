"""--trace: what passes between the plugin, the host and the system, on standard error and beside nothing else's way."""

from __future__ import annotations

import re

from program import FolderTest, Running, run, unstyled

import unittest

_LINE = re.compile(r"^(host|plugin|program|system|asks) +", re.MULTILINE)


class Trace(FolderTest):
    def _trace(self, *arguments: str) -> list[str]:
        """The lines of the trace, of a run that finds one file."""
        self.make("a.txt", "hello\n")
        ran = run(str(self.folder), "--once", "--trace", *arguments)
        self.assertEqual(ran.returncode, 0, ran.stderr)
        self.assertEqual(ran.stdout, run(str(self.folder), "--once", *arguments).stdout)
        return ran.stderr.splitlines()

    def _follow(self, lines: list[str], *expected: str) -> None:
        """These are among the lines, in this order."""
        rest = iter(lines)
        for line in expected:
            self.assertIn(line, rest, f"{line!r} does not follow; the trace is:\n" + "\n".join(lines))

    def test_it_begins_with_the_host_s_age_and_the_layout_that_the_plugin_chose(self) -> None:
        lines = self._trace("--host-version", "2011.4")
        self.assertEqual(lines[:2], ["Host      2011.4", "plugin    REALPluginMain(the resolver)"])
        self.assertIn("Records   of version 9: MDItemQTX, MDQueryQTX, MDQueryBatchingParamsQTX", lines)

    def test_each_service_that_the_plugin_asks_for_was_found_or_not(self) -> None:
        lines = self._trace("--host-version", "2011.4")
        self.assertIn("asks        RegisterPluginVersion: found", lines)
        self.assertIn("asks        REALGetStringCFString: not found", lines)
        self.assertNotIn("asks        REALGetStringCFString: not found", self._trace("--host-version", "2016.1"))

    def test_calls_in_all_directions_are_indented_by_those_that_they_are_made_in(self) -> None:
        self._follow(
            self._trace(),
            "plugin    MDQueryQTX #1.Execute(4)",
            "system      MDQueryExecute(MDQuery \"kMDItemFSName == \"*\"\", 4)",
            "plugin    → true",
            "plugin    hears kMDQueryDidFinishNotification",
            "program     MDQueryQTX #1.Finish()",
            "plugin        MDQueryQTX #1.ResultCount()",
            'system          MDQueryGetResultCount(MDQuery "kMDItemFSName == "*"")',
            "plugin        → 1",
        )

    def test_texts_objects_and_results_can_be_read(self) -> None:
        lines = self._trace()
        self._follow(
            lines,
            "plugin    MDItemQTX.kMDItemPath()",
            'host        REALBuildString(..., 11) → "kMDItemPath"',
            'host        REALSetStringEncoding("kMDItemPath", 0x08000100)',
            'plugin    → "kMDItemPath"',
        )
        self.assertIn("host        REALinRuntime() → true", lines)
        self.assertIn(f"system      CFArrayAppendValue(<file://{self.folder}/>)", lines)
        self.assertIn("system      CFGetTypeID(CFNumber 6)", lines)
        self.assertIn("system      CFURLGetTypeID(), CFBooleanGetTypeID(), CFNumberGetTypeID()", lines)

    def test_a_host_s_objects_keep_their_numbers(self) -> None:
        text = "\n".join(self._trace())
        begun = re.search(r"PluginNewInstance\(\"MDQueryBatchingParamsQTX\"\) → (MDQueryBatchingParamsQTX #\d+)$", text, re.M)
        assert begun is not None, text
        self.assertIn(f"plugin    MDQueryQTX #1.BatchingParameters = {begun[1]}\n", text)

    def test_nothing_of_it_is_seen_without_the_option(self) -> None:
        self.make("a.txt")
        self.assertIsNone(_LINE.search(run(str(self.folder), "--once").stderr))

    def test_one_file_s_attributes_can_be_traced_too(self) -> None:
        path = self.make("a.txt")
        ran = run("--show", str(path), "--trace")
        self.assertEqual(ran.returncode, 0, ran.stderr)
        self.assertRegex(ran.stderr, r"\nplugin    MDItemQTX #\d+\.AttributeNames\(\)\n")

    def test_a_terminal_tells_the_callees_apart_by_colour_unless_it_shall_not(self) -> None:
        self.make("a.txt")
        for environment, is_coloured in (({}, True), ({"NO_COLOR": "1"}, False)):
            with self.subTest(environment=environment):
                with Running(
                    str(self.folder), "--once", "--trace", terminal_width=80, environment=environment
                ) as running:
                    self.assertEqual(running.end(), 0, running.output)
                self.assertEqual("\x1b[36mhost " in running.output, is_coloured)
                self.assertIn("\nsystem      MDQueryExecute(", unstyled(running.output))


if __name__ == "__main__":
    unittest.main()
