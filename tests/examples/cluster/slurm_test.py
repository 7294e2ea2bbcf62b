"""slurm_test.py TESSERA EXAMPLES: a job array in a Slurm of three nodes, of which one is lost in the middle.

The nodes run on this machine and listen on 127.0.0.1 only. Without slurm-wlm and munge, or not as root, ends with
status 77.
"""

import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import unittest

from sample import PATH, SHARDS, SLOW_SHARD, Sample, ancestors, kill, name_of, require, wait_for

TESSERA, EXAMPLES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
PROGRAMS = ("slurmctld", "slurmd", "munged", "sbatch", "scontrol", "squeue")
NODES = ("n1", "n2", "n3")
CONFIGURATION = """
ClusterName=test
SlurmctldHost=localhost(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
CredType=cred/munge
CommunicationParameters=NoInAddrAny
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool.%n
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.%n.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
MpiDefault=none
SwitchType=switch/none
ReturnToService=2
SlurmdTimeout=5
SlurmctldParameters=enable_configless
{nodes}
PartitionName=all Nodes=ALL Default=YES State=UP
"""


def free_ports(count):
    sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(count)]
    ports = [listener.getsockname()[1] for listener in sockets]
    for listener in sockets:
        listener.close()
    return ports


class Cluster:
    """A Slurm of three nodes with one processor each, all on this machine."""

    def __init__(self, folder):
        self.folder = folder
        ports = free_ports(1 + len(NODES))
        nodes = "\n".join(f"NodeName={name} NodeHostname=localhost NodeAddr=127.0.0.1 Port={port} CPUs=1"
                          for name, port in zip(NODES, ports[1:]))
        self.configuration = folder / "slurm.conf"
        self.configuration.write_text(CONFIGURATION.format(folder=folder, ports=ports, nodes=nodes))
        self.environment = dict(os.environ, PATH=PATH, SLURM_CONF=str(self.configuration), TESSERA=str(TESSERA))
        (folder / "state").mkdir()
        key = folder / "munge.key"
        key.write_bytes(os.urandom(128))
        key.chmod(0o400)
        self.processes = []
        self.start("munged", "--foreground", "--force", f"--key-file={key}", f"--socket={folder}/munge.socket",
                   f"--pid-file={folder}/munge.pid", f"--log-file={folder}/munge.log", f"--seed-file={folder}/munge.seed")
        wait_for((folder / "munge.socket").exists, "socket of munged")
        self.start("slurmctld", "-D", "-i")
        self.daemons = {name: self.start("slurmd", "-D", "-N", name) for name in NODES}

    def start(self, *command):
        process = subprocess.Popen(command, env=self.environment, cwd=self.folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        self.processes.append(process)
        return process

    def run(self, *command):
        return subprocess.run(command, env=self.environment, cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True).stdout

    def has_idle_nodes(self):
        return self.run("sinfo", "-h", "-t", "idle", "-o", "%D").strip() == str(len(NODES))

    def stop(self):
        for process in reversed(self.processes):
            process.kill()
            process.wait()


class JobArray(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.sample = Sample(folder.name, TESSERA)
        self.cluster = Cluster(pathlib.Path(folder.name))
        self.addCleanup(self.cluster.stop)
        wait_for(self.cluster.has_idle_nodes, "three idle nodes")

    def kill_node_of(self, process):
        """Kills the node that `process` runs on with all that belongs to it, as a power failure does."""
        node, = self.cluster.run("squeue", "-h", "-r", "-t", "R", "-o", "%N").split()
        of_the_job = [one for one in ancestors(process) if name_of(one).startswith(("slurmstepd", "slurm_script"))]
        kill([self.cluster.daemons[node].pid, *reversed(of_the_job), process])
        return node

    def state_of(self, job, task):
        return self.cluster.run("scontrol", "show", "job", f"{job}_{task}")

    def test_a_node_that_is_lost_loses_no_record(self):
        submitted = self.cluster.run("sbatch", "--parsable", f"--array=1-{SHARDS}", f"--output={self.sample.folder}/%a.log",
                                     EXAMPLES / "parse-array.sbatch", self.sample.list, self.sample.out)
        job = submitted.strip()
        self.assertTrue(job.isdigit(), submitted)
        others = [self.sample.out / f"{shard}.ndjson" for shard in range(1, SHARDS + 1) if shard != SLOW_SHARD]
        wait_for(lambda: all(file.exists() for file in others), "output of the other tasks")
        process = wait_for(self.sample.waiting_process, "task in the middle of its output")
        wait_for(lambda: self.cluster.run("squeue", "-h", "-r", "-t", "R,CG", "-o", "%N").count("n") == 1, "end of the other tasks")
        node = self.kill_node_of(process)
        print(f"{node} was killed when task {SLOW_SHARD} had written {self.sample.partial.stat().st_size} bytes")
        self.sample.release()
        wait_for(lambda: "Restarts=1" in self.state_of(job, SLOW_SHARD), "task that is put in the queue again")
        # A task of a lost node waits for two minutes in case that the node comes back.
        self.cluster.run("scontrol", "update", f"JobId={job}_{SLOW_SHARD}", "StartTime=now")
        wait_for((self.sample.out / f"{SLOW_SHARD}.ndjson").exists, "output of the task that ran again")
        wait_for(lambda: not self.cluster.run("squeue", "-h").strip(), "end of the job")
        self.assertEqual(self.sample.difference(EXAMPLES / "merge.sh"), "")


if __name__ == "__main__":
    require(PROGRAMS)
    unittest.main(argv=sys.argv[:1])
