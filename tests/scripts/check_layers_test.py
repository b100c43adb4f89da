"""Each rule of scripts/check-layers, on a small tree made for it: what is allowed passes, what is not is named."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = sys.argv.pop(1)


class CheckLayers(unittest.TestCase):
    def check(self, path, include):
        """Runs the script on a tree whose one file has one include; returns (exit code, output)."""
        with tempfile.TemporaryDirectory() as tree:
            source = Path(tree, path)
            source.parent.mkdir(parents=True)
            source.write_text(f"#pragma once\n#include {include}\n", encoding="utf-8")
            done = subprocess.run([sys.executable, SCRIPT, tree], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout

    def assert_allowed(self, path, include):
        code, output = self.check(path, include)
        self.assertEqual((code, output), (0, "check-layers: 1 files, all in their layer\n"))

    def assert_refused(self, path, include):
        code, output = self.check(path, include)
        self.assertEqual(code, 1, output)
        self.assertIn(f"{path}:2: ", output)

    def test_a_layer_above_may_be_included(self):
        self.assert_allowed("src/engine/Monitor.h", '"util/Text.h"')
        self.assert_allowed("src/controller/Controller.h", '"engine/TopMonitor.h"')
        self.assert_allowed("src/platform/linux_/Disks.h", '"platform/linux_/low/SmallFile.h"')
        self.assert_allowed("src/app/main.cpp", '"platform/linux_/LinuxPlatform.h"')

    def test_views_know_menus_only(self):
        self.assert_allowed("src/views/MenuViews.h", '"menu/Menu.h"')
        self.assert_allowed("src/app/Application.cpp", '"views/MenuViews.h"')
        self.assert_refused("src/views/MenuViews.h", '"engine/TopMonitor.h"')
        self.assert_refused("src/controller/Controller.cpp", '"views/MenuViews.h"')

    def test_a_layer_below_may_not(self):
        self.assert_refused("src/util/Text.h", '"engine/TopMonitor.h"')
        self.assert_refused("src/engine/Monitor.h", '"controller/Controller.h"')
        self.assert_refused("src/menu/Menu.h", '"statusitem/StatusItem.h"')

    def test_only_the_composition_root_names_a_platform(self):
        self.assert_refused("src/engine/Monitor.h", '"platform/linux_/LinuxPlatform.h"')
        self.assert_refused("src/controller/Controller.cpp", '"platform/none/NonePlatform.h"')

    def test_the_engine_has_no_display(self):
        for header in ("<QWidget>", "<QApplication>", "<QGuiApplication>", "<QIcon>", "<QImage>", "<QMouseEvent>",
                       "<QFontMetrics>", "<QSystemTrayIcon>", "<QtGui/QColor>", "<xcb/xcb.h>"):
            self.assert_refused("src/engine/Monitor.h", header)
        for header in ("<QObject>", "<QTimer>", "<QTimerEvent>", "<QEvent>", "<QProcess>", "<QTextStream>",
                       "<QDBusConnection>", "<QVector>", "<QCoreApplication>"):
            self.assert_allowed("src/engine/Monitor.h", header)

    def test_a_view_may_have_one(self):
        self.assert_allowed("src/statusitem/Strip.h", "<QWidget>")

    def test_the_samplers_have_no_qt(self):
        self.assert_refused("helpers/top/main.cpp", "<QString>")
        self.assert_refused("src/platform/linux_/low/SmallFile.h", "<QByteArray>")
        self.assert_allowed("helpers/top/main.cpp", "<string>")

    def test_the_kernel_is_the_platforms_affair(self):
        self.assert_refused("src/engine/Monitor.cpp", "<linux/rtnetlink.h>")
        self.assert_allowed("src/platform/linux_/Links.cpp", "<linux/rtnetlink.h>")

    def test_an_empty_tree_is_no_success(self):
        with tempfile.TemporaryDirectory() as tree:
            done = subprocess.run([sys.executable, SCRIPT, tree], capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 1)


if __name__ == "__main__":
    unittest.main()
