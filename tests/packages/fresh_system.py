"""A fresh Debian in a folder, from the archive that this machine installs from."""

import glob
import os
import shutil
import subprocess


def archive():
    """Where this machine installs its release from."""
    answer = subprocess.run(["apt-get", "indextargets", "--format", "$(REPO_URI) $(RELEASE) $(COMPONENT)",
                             "Created-By: Packages"], check=True, capture_output=True, text=True)
    for line in answer.stdout.splitlines():
        address, release, component = line.split()
        if release == "bookworm" and component == "main":
            return address
    raise RuntimeError("this machine does not install Debian 12 from any archive")


class FreshSystem:
    def __init__(self, folder):
        self.folder = folder
        subprocess.run(["debootstrap", "--variant=minbase", "bookworm", folder, archive()], check=True,
                       stdout=subprocess.DEVNULL)
        for pattern in ("apt.conf", "apt.conf.d/*proxy*", "apt.conf.d/99*", "sources.list", "sources.list.d/*"):
            for path in glob.glob("/etc/apt/" + pattern):
                shutil.copy(path, folder + path)
        shutil.copy("/etc/resolv.conf", folder + "/etc/resolv.conf")
        subprocess.run(["mount", "-t", "proc", "proc", folder + "/proc"], check=True)

    def close(self):
        """Removes it all, and nothing beyond it."""
        os.chdir("/")
        subprocess.run(["umount", self.folder + "/proc"], check=False)
        subprocess.run(["rm", "-rf", "--one-file-system", self.folder], check=False)

    def run(self, *words, **options):
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "HOME": "/root",
                       "DEBIAN_FRONTEND": "noninteractive", "QT_QPA_PLATFORM": "offscreen"}
        answer = subprocess.run(["chroot", self.folder, *words], env=environment, capture_output=True, text=True,
                                timeout=1800, **options)
        if answer.returncode != 0:
            raise RuntimeError(f"{words}: {answer.returncode}\n{answer.stdout}{answer.stderr}")
        return answer.stdout

    def install(self, *packages):
        self.run("apt-get", "update", "-q")
        self.run("apt-get", "install", "-qy", "--no-install-recommends", *packages)

    def path(self, inside):
        return os.path.join(self.folder, inside.lstrip("/"))
