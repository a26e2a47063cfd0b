"""What tools/check-includes promises, each as one small tree that breaks or keeps a rule."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECKER = pathlib.Path(__file__).parent.parent.parent / "tools" / "check-includes"


class IncludeChecker(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            run = subprocess.run([sys.executable, CHECKER, root], capture_output=True, text=True, check=False)
            return run.returncode, run.stdout + run.stderr

    def assert_refused(self, files, words):
        code, output = self.check(files)
        self.assertEqual(code, 1, output)
        self.assertIn(words, output)

    def test_a_layer_includes_what_stands_below_it(self):
        code, output = self.check({"support/Clock.h": "#pragma once\n",
                                   "model/Slot.h": '#include "support/Clock.h"\n'})
        self.assertEqual(code, 0, output)

    def test_a_layer_must_not_include_what_stands_above_it(self):
        self.assert_refused({"support/Clock.h": '#include "model/Slot.h"\n', "model/Slot.h": ""},
                            "support/Clock.h:1: support must not include model")

    def test_the_daemon_must_not_include_the_application(self):
        self.assert_refused({"server/Server.cpp": '#include "daemon/link/Connector.h"\n', "daemon/link/Connector.h": ""},
                            "server must not include daemon/link")

    def test_only_the_factory_and_the_composition_name_back_ends(self):
        back_end = {"platform/x11/Tap.h": ""}
        self.assert_refused({**back_end, "services/Manager.cpp": '#include "platform/x11/Tap.h"\n'},
                            "services must not include platform/x11")
        code, output = self.check({**back_end, "platform/PlatformFactory.cpp": '#include "platform/x11/Tap.h"\n',
                                   "app/Composition.cpp": '#include "platform/x11/Tap.h"\n'})
        self.assertEqual(code, 0, output)

    def test_values_and_the_daemon_stay_free_of_qt(self):
        for header in ("QString", "QtCore/QObject", "QCoroTask"):
            self.assert_refused({"model/Slot.h": f"#include <{header}>\n"}, "must not include Qt")
            self.assert_refused({"server/Server.cpp": f"#include <{header}>\n"}, "must not include Qt")

    def test_headers_of_the_system_stand_only_behind_the_platform(self):
        for header in ("sys/socket.h", "unistd.h", "xcb/xcb.h", "linux/input.h"):
            self.assert_refused({"services/Manager.cpp": f"#include <{header}>\n"}, "belongs behind an interface")
        code, output = self.check({"platform/linux/Table.cpp": "#include <unistd.h>\n",
                                   "server/Peer.cpp": "#include <sys/socket.h>\n"})
        self.assertEqual(code, 0, output)

    def test_a_file_outside_every_layer_is_refused(self):
        self.assert_refused({"misc/Thing.h": ""}, "stands in no layer")

    def test_an_include_of_a_file_that_is_not_there_is_refused(self):
        self.assert_refused({"model/Slot.h": '#include "Slot2.h"\n'}, "is no file below the source folder")

    def test_an_empty_tree_is_refused(self):
        code, _ = self.check({})
        self.assertEqual(code, 1)


unittest.main()
