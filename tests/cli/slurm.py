"""Slurm on this one machine, in a folder of its own, for as long as a `with` lasts."""

import os
import shutil
import socket
import subprocess
import tempfile
import time

CONFIGURATION = """\
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmdPort={ports[1]}
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
SlurmUser=root
SlurmdUser=root
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.log
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SwitchType=switch/none
MpiDefault=none
ReturnToService=2
SlurmdParameters=config_overrides
NodeName={host} NodeAddr=127.0.0.1 CPUs={cpus} State=UNKNOWN
PartitionName=all Nodes={host} Default=YES MaxTime=INFINITE State=UP
"""


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


class Cluster:
    def __enter__(self):
        self.folder, self.daemons = tempfile.mkdtemp(prefix="limn-slurm-"), []
        try:
            self._start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for daemon in reversed(self.daemons):
            daemon.terminate()
            try:
                daemon.wait(timeout=20)
            except subprocess.TimeoutExpired:
                daemon.kill()
                daemon.wait()
        shutil.rmtree(self.folder)

    def run(self, command, limn, **variables):
        """Submits with sbatch and waits for the end of the array."""
        path = f"{os.path.dirname(limn)}:{os.environ['PATH']}"
        return subprocess.run([command[0], "--wait", *command[1:]], capture_output=True, text=True, timeout=900,
                              env={**os.environ, "PATH": path, "SLURM_CONF": self._at("slurm.conf"), **variables})

    def _at(self, name):
        return os.path.join(self.folder, name)

    def _start(self):
        host = socket.gethostname().split(".")[0]
        os.chmod(self.folder, 0o755)
        for name in "state", "spool":
            os.mkdir(self._at(name))
        with open(os.open(self._at("munge.key"), os.O_CREAT | os.O_WRONLY, 0o400), "wb") as file:
            file.write(os.urandom(1024))
        with open(self._at("slurm.conf"), "w", encoding="utf-8") as file:
            file.write(CONFIGURATION.format(host=host, folder=self.folder, ports=free_ports(2), cpus=max(2, os.cpu_count())))
        names = {"key-file": "munge.key", "socket": "munge.socket", "pid-file": "munged.pid", "log-file": "munged.log",
                 "seed-file": "munge.seed"}
        self._daemon("munged", "--force", "--foreground", *(f"--{key}={self._at(name)}" for key, name in names.items()))
        self._wait(lambda: os.path.exists(self._at("munge.socket")))
        self._daemon("slurmctld", "-D", "-f", self._at("slurm.conf"))
        self._daemon("slurmd", "-D", "-f", self._at("slurm.conf"), "-N", host)
        self._wait(lambda: "idle" in subprocess.run(
            ["sinfo", "--noheader", "--format=%t"], capture_output=True, text=True,
            env={**os.environ, "SLURM_CONF": self._at("slurm.conf")}).stdout)

    def _daemon(self, *command):
        with open(self._at(command[0] + ".out"), "wb") as told:
            self.daemons.append(subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=told, stderr=told))

    def _wait(self, condition):
        deadline = time.monotonic() + 60
        while not condition():
            ended = [daemon.args[0] for daemon in self.daemons if daemon.poll() is not None]
            if ended or time.monotonic() > deadline:
                told = "".join(open(self._at(name), encoding="utf-8", errors="replace").read()
                               for name in sorted(os.listdir(self.folder)) if name.endswith((".out", ".log")))
                raise RuntimeError(f"Slurm does not start; ended: {ended}\n{told}")
            time.sleep(0.2)
