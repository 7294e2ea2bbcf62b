"""parallel_test.py TESSERA EXAMPLES: two hosts that GNU parallel uses, of which one is lost in the middle.

The hosts are two ssh servers on this machine that listen on 127.0.0.1 only. Without parallel and openssh-server,
ends with status 77.
"""

import getpass
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

from sample import PATH, SHARDS, SLOW_SHARD, Sample, ancestors, kill, name_of, require, wait_for

TESSERA, EXAMPLES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
PROGRAMS = ("parallel", "sshd", "ssh", "ssh-keygen")
SERVER = """
ListenAddress 127.0.0.1
Port {port}
HostKey {folder}/key
AuthorizedKeysFile {folder}/key.pub
PidFile {folder}/{name}.pid
StrictModes no
UsePAM no
"""
CLIENT = """
Host a b
  HostName 127.0.0.1
  User {user}
  IdentityFile {folder}/key
  IdentitiesOnly yes
  StrictHostKeyChecking no
  UserKnownHostsFile /dev/null
  LogLevel ERROR
Host a
  Port {ports[0]}
Host b
  Port {ports[1]}
"""


class Hosts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.sample = Sample(folder.name, TESSERA)
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / "key"], check=True)
        pathlib.Path("/run/sshd").mkdir(exist_ok=True)
        listeners = [socket.create_server(("127.0.0.1", 0)) for _ in "ab"]
        ports = [listener.getsockname()[1] for listener in listeners]
        for listener in listeners:
            listener.close()
        self.servers = [self.start_server(name, port) for name, port in zip("ab", ports)]
        client = self.folder / "client"
        client.write_text(CLIENT.format(user=getpass.getuser(), folder=self.folder, ports=ports))
        (self.folder / "hosts").write_text(f"1/ssh -F {client} a\n1/ssh -F {client} b\n")
        self.environment = dict(os.environ, PATH=PATH, TESSERA=str(TESSERA), PARALLEL_HOME=str(self.folder))

    def start_server(self, name, port):
        configuration = self.folder / name
        configuration.write_text(SERVER.format(port=port, folder=self.folder, name=name))
        server = subprocess.Popen([shutil.which("sshd", path=PATH), "-D", "-f", configuration], start_new_session=True,
                                  stderr=subprocess.DEVNULL)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        wait_for((self.folder / f"{name}.pid").exists, "ssh server")
        return server.pid

    def start_run(self):
        run = subprocess.Popen([EXAMPLES / "parse-hosts.sh", "hosts", "list", "out", str(SHARDS)], cwd=self.folder,
                               env=self.environment, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True)
        self.addCleanup(run.wait)
        return run

    def lose_host_of(self, process):
        """Kills `process` and everything between it and the ssh server, and the server."""
        above = ancestors(process)
        server, = set(above) & set(self.servers)
        kill([server, *reversed(above[:above.index(server)]), process])

    def job_log(self):
        return (self.sample.out / "jobs.log").read_text().splitlines()[1:]

    def test_a_host_that_is_lost_loses_no_record(self):
        run = self.start_run()
        process = wait_for(self.sample.waiting_process, "job in the middle of its output")
        self.lose_host_of(process)
        self.sample.release()
        self.assertEqual(run.wait(120), 0)
        self.assertEqual(self.sample.difference(EXAMPLES / "merge.sh"), "")

    def test_a_run_that_is_killed_goes_on_with_the_same_command(self):
        run = self.start_run()
        process = wait_for(self.sample.waiting_process, "job in the middle of its output")
        programs = [process, *(one for one in ancestors(process) if name_of(one) == "tessera")]
        os.killpg(run.pid, signal.SIGKILL)
        kill(reversed(programs))
        self.sample.release()
        # The job log has only jobs that ended. They are not run again: the new run adds to the log.
        logged = self.job_log()
        self.assertNotIn(str(SLOW_SHARD), [line.split("\t")[0] for line in logged])
        again = self.start_run()
        self.assertEqual(again.wait(120), 0)
        self.assertEqual(self.job_log()[:len(logged)], logged)
        self.assertEqual(self.sample.difference(EXAMPLES / "merge.sh"), "")


if __name__ == "__main__":
    require(PROGRAMS)
    unittest.main(argv=sys.argv[:1])
