"""A command that is stopped keeps what is finished, leaves no temporary files, and exits with 1."""

import os
import signal
import subprocess
import time

import support
from support import LIMN

CANCELLED = 1


def wait_for(condition):
    deadline = time.monotonic() + 200
    while not condition():
        if time.monotonic() > deadline:
            raise TimeoutError
        time.sleep(0.01)


def children(process):
    with open(f"/proc/{process.pid}/task/{process.pid}/children") as file:
        return [int(word) for word in file.read().split()]


class Interruption(support.LimnTest):
    def start(self, *arguments, env=None):
        return subprocess.Popen([LIMN, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                env={**os.environ, **(env or {})})

    def stuck_batch(self):
        """Three finished images, and one on which the plug-in never ends."""
        for name, width in [("a.ppm", 9), ("b.ppm", 9), ("c.ppm", 9), ("stuck.ppm", 4)]:
            support.write_pnm(name, support.smooth(width, 4))
        process = self.start("apply", "--through-plugin", "a.ppm", "b.ppm", "c.ppm", "stuck.ppm", "-o", "out/", "--jobs", 1,
                             env={"LIMN_PLUGIN": support.MISBEHAVING_MODULE})
        wait_for(lambda: os.path.exists("begun"))
        os.remove("begun")
        return process

    def finished(self):
        return sorted(os.listdir("out"))

    def test_signals_stop_at_once(self):
        for number in [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]:
            with self.subTest(number):
                process = self.stuck_batch()
                workers = children(process)
                process.send_signal(number)
                _, told = process.communicate(timeout=100)  # the stuck worker never ends
                self.assertEqual((process.returncode, told), (CANCELLED, "limn: stopped\n"))
                self.assertEqual(self.finished(), ["a.ppm", "b.ppm", "c.ppm"])
                self.assertFalse([pid for pid in workers if os.path.exists(f"/proc/{pid}")])
                for name in self.finished():
                    os.remove("out/" + name)

    def test_killed_worker_fails_its_image_only(self):
        process = self.stuck_batch()
        os.kill(children(process)[0], signal.SIGKILL)
        _, told = process.communicate(timeout=10)
        self.assertEqual(process.returncode, 5)
        self.assertIn("stuck.ppm: its process was killed", told)
        self.assertEqual(self.finished(), ["a.ppm", "b.ppm", "c.ppm"])

    def test_workers_go_with_a_killed_command(self):
        process = self.stuck_batch()
        workers = children(process)
        process.kill()
        process.communicate()
        wait_for(lambda: not [pid for pid in workers if os.path.exists(f"/proc/{pid}")])


support.main()
