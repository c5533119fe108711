"""A fresh Debian in a folder, of this machine's release."""

import os
import platform
import subprocess

TREE = os.path.join(os.environ["PROJECT"], "scripts", "debian-tree")


class FreshSystem:
    def __init__(self, folder):
        self.folder = os.path.join(folder, "system")
        self.run("apt-get", "update", "-q")

    def run(self, *words):
        release = platform.freedesktop_os_release()["VERSION_CODENAME"]
        answer = subprocess.run([TREE, release, self.folder, "env", "QT_QPA_PLATFORM=offscreen", *words],
                                capture_output=True, text=True, timeout=1800, check=False)
        if answer.returncode != 0:
            raise RuntimeError(f"{words}: {answer.returncode}\n{answer.stdout}{answer.stderr}")
        return answer.stdout

    def install(self, *packages):
        self.run("apt-get", "install", "-qy", "--no-install-recommends", *packages)

    def path(self, inside):
        return os.path.join(self.folder, inside.lstrip("/"))
