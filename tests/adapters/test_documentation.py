"""The commands of docs/other-programs.md, run as they stand there, in a folder that looks like the project's."""

import os
import re
import subprocess

import support

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "../.."))


class Documentation(support.LimnTest):
    def test_commands_run(self):
        os.symlink(os.environ["LIMN_BUILD"], "build")
        os.symlink(f"{ROOT}/contrib", "contrib")
        for name, bands in ("photo.png", 3), ("heights.png", 1):
            support.write_png(name, support.smooth(60, 40, bands))
        support.put("four.json",
                    '{"lights": [{"type": "omni"}, {"type": "spot"}, {"type": "directional"}, {"type": "omni"}]}')
        self.run_in_shell("ffmpeg -v error -f lavfi -i testsrc2=size=854x480:rate=25 -frames:v 5 film.mp4")
        self.run_in_shell("melt film.mp4 -consumer xml:project.mlt")
        page = support.content(f"{ROOT}/docs/other-programs.md").decode()
        blocks = re.findall(r"^ *```sh\n(.*?)^ *```", page, re.MULTILINE | re.DOTALL)
        self.assertGreater(len(blocks), 5)
        for block in blocks:
            for name in "lit.mp4", "lit.png":
                if os.path.exists(name):
                    os.remove(name)
            self.run_in_shell(block)
            for made in re.findall(r"lit\.(?:mp4|png)", block):
                self.assertGreater(os.path.getsize(made), 100, block)

    def test_entries_are_valid(self):
        self.run_in_shell(f"desktop-file-validate '{ROOT}'/contrib/*/*.desktop && sh -n '{ROOT}'/contrib/*/limn-in-place")

    def run_in_shell(self, commands):
        answer = subprocess.run(["sh", "-euc", commands], capture_output=True, text=True, timeout=1200,
                                env={**os.environ, "HOME": self.folder})
        self.assertEqual(answer.returncode, 0, commands + answer.stderr)
        self.assertNotIn("stays as it is", answer.stderr, commands)
        self.assertNotIn("stay as they are", answer.stderr, commands)


support.main()
