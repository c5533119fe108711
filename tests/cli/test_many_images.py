"""usage: test_many_images.py COUNT [slurm]
Many images, one in twenty bad, lit in every way that the documentation names: the outputs are always the same."""

import json
import os
import re
import shlex
import signal
import subprocess
import sys
import time

import slurm
import support
from support import content

COUNT, WITH_SLURM = int(sys.argv[1]), "slurm" in sys.argv[2:]
ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "../.."))
STYLE = "Evening Lamp"
WRITERS = {".ppm": support.write_pnm, ".png": support.write_png, ".tif": support.write_tiff}
DAMAGES = [lambda content: b"", lambda content: content[:40], lambda content: b"no image at all",
           lambda content: bytes(len(content))]


def documented(command):
    """The command line of the documentation that begins with this word."""
    return re.search(rf"^{command} .*$", content(f"{ROOT}/docs/many-images.md").decode(), re.MULTILINE).group()


class ManyImages(support.LimnTest):
    def setUp(self):
        super().setUp()
        self.good, self.bad = [], []
        for index in range(COUNT):
            kind = list(WRITERS)[index % 3]
            name = f"{'may' if index % 4 else 'june/week ' + str(index % 5)}/{index:04}{kind}"
            os.makedirs(os.path.dirname("photos/" + name), exist_ok=True)
            WRITERS[kind]("photos/" + name, support.smooth(24 + index % 9, 20, at=index))
            if index % 20 == 7:
                whole = content("photos/" + name)
                support.put("photos/" + name, DAMAGES[index // 20 % len(DAMAGES)](whole))
            (self.bad if index % 20 == 7 else self.good).append(name)
        os.symlink(f"{ROOT}/contrib", "contrib")
        self.options = ["apply", "-r", "photos", "--style", STYLE, "--json"]

    def assertTold(self, text, skipped=0):
        """A line for each image, with the bad ones' codes."""
        lines = [json.loads(line) for line in text.splitlines()]
        self.assertEqual(sorted(line["input"] for line in lines), sorted("photos/" + name for name in self.good + self.bad))
        self.assertEqual(sorted(line["input"] for line in lines if "code" in line),
                         sorted("photos/" + name for name in self.bad))
        self.assertEqual({line["code"] for line in lines if "code" in line}, {3})
        self.assertEqual(len([line for line in lines if "skipped" in line]), skipped)

    def assertLit(self, folder):
        """The folder holds what the one run made, and nothing else."""
        found = sorted(os.path.relpath(os.path.join(where, name), folder)
                       for where, _, names in os.walk(folder) for name in names)
        self.assertEqual(found, sorted(self.good))
        different = [name for name in found if content(f"{folder}/{name}") != content("whole/" + name)]
        self.assertEqual(different, [], folder)

    def light_whole(self):
        self.assertTold(self.limn(*self.options, "-o", "whole", code=3).stdout)
        for name in self.good[::19]:
            single = "single" + os.path.splitext(name)[1]
            self.limn("apply", "--quiet", "--force", "--style", STYLE, "photos/" + name, "-o", single)
            self.assertEqual(content(single), content("whole/" + name), name)
        self.assertLit("whole")
        print(f"counted: images of a batch lit {len(self.good)}, refused {len(self.bad)}")

    def test_ways_give_the_same(self):
        self.light_whole()
        for way in [self.killed_and_resumed, self.in_parallel, *([self.by_slurm] if WITH_SLURM else [])]:
            with self.subTest(way.__name__):
                way()
                self.assertLit("lit")
                os.rename("lit", way.__name__)

    def killed_and_resumed(self):
        for number in signal.SIGTERM, signal.SIGKILL:
            process = subprocess.Popen([support.LIMN, *self.options, "--skip-existing", "-o", "lit"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True)
            for _ in range(COUNT // 6):  # lines, of what is lit or was before
                process.stdout.readline()
            process.send_signal(number)
            process.communicate(timeout=600)
        time.sleep(0.5)  # a killed command's workers find out
        for where, _, names in os.walk("lit"):
            for name in names:
                if name.startswith(".limn-"):  # only what was killed leaves these
                    os.remove(os.path.join(where, name))
        before = {name: os.stat("lit/" + name).st_mtime_ns for name in self.good if os.path.exists("lit/" + name)}
        self.assertTrue(COUNT // 8 <= len(before) < len(self.good), len(before))
        answer = self.limn(*self.options, "--skip-existing", "-o", "lit", code=3)
        self.assertTold(answer.stdout, skipped=len(before))
        self.assertEqual(before, {name: os.stat("lit/" + name).st_mtime_ns for name in before})
        print(f"counted: images of a killed batch kept {len(before)}")

    def in_parallel(self):
        """As many parts as the line says fail, as each has a bad image: that is parallel's exit code."""
        answer = subprocess.run(documented("parallel"), shell=True, capture_output=True, text=True, timeout=600,
                                env={**os.environ, "PATH": f"{os.path.dirname(support.LIMN)}:{os.environ['PATH']}"})
        self.assertTrue(1 <= answer.returncode <= 8, answer.stderr)
        self.assertTold(answer.stdout)

    def by_slurm(self):
        if os.geteuid() != 0:
            self.skipTest("Slurm's daemons run as root")
        with slurm.Cluster() as cluster:
            self.assertNotEqual(cluster.run(shlex.split(documented("sbatch")), support.LIMN).returncode, 0)
            told = sorted(name for name in os.listdir() if name.endswith(".jsonl"))
            self.assertEqual(len(told), 8)
            self.assertTold("".join(content(name).decode() for name in told))
            # Two tasks once more, for what has been lost.
            for name in self.good[::7]:
                os.remove("lit/" + name)
            array = "contrib/slurm/limn-array.sbatch", *self.options[1:-1], "-o", "lit/"
            refused = cluster.run(["sbatch", "--array=3,5", *array], support.LIMN)
            self.assertNotEqual(refused.returncode, 0)
            self.assertFalse(os.path.exists("lit/" + self.good[0]))
            cluster.run(["sbatch", "--array=3,5", *array], support.LIMN, LIMN_SHARDS="8")
            back = [name for name in self.good[::7] if os.path.exists("lit/" + name)]
            self.assertTrue(0 < len(back) < len(self.good[::7]))
            cluster.run(["sbatch", "--array=1-2", *array], support.LIMN)
        print("counted: tasks run by Slurm 14")


support.main(argv=sys.argv[:1])
