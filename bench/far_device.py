"""A far device to measure on: a folder behind a real sshd and sshfs on loopback, with a proxy
between them that delays every byte."""

import collections
import getpass
import multiprocessing
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time


def fail(why):
    sys.exit(f"bench: no far device here: {why}")


def pump(source, sink, delay):
    """Hands on what `source` sends, each piece `delay` seconds later, in order."""
    pieces = collections.deque()
    arrived = threading.Semaphore(0)

    def deliver():
        while True:
            arrived.acquire()
            due, piece = pieces.popleft()
            time.sleep(max(0, due - time.monotonic()))
            try:
                sink.sendall(piece)
                if not piece:
                    sink.shutdown(socket.SHUT_WR)
            except OSError:
                return
            if not piece:
                return

    threading.Thread(target=deliver, daemon=True).start()
    while True:
        try:
            piece = source.recv(1 << 16)
        except OSError:
            piece = b""
        pieces.append((time.monotonic() + delay, piece))
        arrived.release()
        if not piece:
            return


def serve_delayed(listener, port, delay):
    while True:
        near, _ = listener.accept()
        far = socket.create_connection(("127.0.0.1", port))
        for end in (near, far):
            end.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        for ends in ((near, far), (far, near)):
            threading.Thread(target=pump, args=(*ends, delay), daemon=True).start()


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class FarDevice:
    """Folder `here` as it lies on the server; mount() shows it at `there`, `delay` seconds away each
    way, with nothing of it known yet."""

    def __init__(self, delay):
        for program in ("sshd", "sshfs", "ssh-keygen", "fusermount3"):
            if not shutil.which(program, path=os.environ["PATH"] + ":/usr/sbin"):
                fail(f"{program} is missing; run script/bootstrap --dev")
        if not os.access("/dev/fuse", os.R_OK | os.W_OK):
            fail("/dev/fuse can't be opened")
        self.base = tempfile.mkdtemp(prefix="sweepwright-far-")
        self.here = f"{self.base}/server"
        self.there = f"{self.base}/device"
        os.mkdir(self.here)
        os.mkdir(self.there)
        self.processes = []
        self.mounted = False
        try:
            port = self.start_server()
            listener = socket.create_server(("127.0.0.1", 0))
            self.port = listener.getsockname()[1]
            proxy = multiprocessing.Process(target=serve_delayed, args=(listener, port, delay),
                                            daemon=True)
            proxy.start()
            listener.close()
            self.processes.append(proxy)
            self.mount()
        except BaseException:
            self.close()
            raise

    def start_server(self):
        for name in ("host", "user"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f",
                            f"{self.base}/{name}"], check=True)
        if os.getuid() == 0:
            os.makedirs("/run/sshd", exist_ok=True)
        port = free_port()
        with open(f"{self.base}/sshd.conf", "w") as conf:
            conf.write(f"Port {port}\nListenAddress 127.0.0.1\nHostKey {self.base}/host\n"
                       f"AuthorizedKeysFile {self.base}/user.pub\nPidFile none\nStrictModes no\n"
                       "UsePAM no\nPermitRootLogin prohibit-password\nPasswordAuthentication no\n"
                       "Subsystem sftp internal-sftp\n")
        server = subprocess.Popen([shutil.which("sshd", path="/usr/sbin:/usr/bin:/sbin"), "-D",
                                   "-e", "-f", f"{self.base}/sshd.conf"],
                                  stderr=subprocess.PIPE, text=True)
        self.processes.append(server)
        said = []
        for line in server.stderr:
            said.append(line.strip())
            if "Server listening" in line:
                threading.Thread(target=server.stderr.read, daemon=True).start()
                return port
        fail("sshd ended: " + "; ".join(said))

    def mount(self):
        """Afresh, so that no cache holds anything of the device."""
        self.unmount()
        options = (f"port={self.port},IdentityFile={self.base}/user,BatchMode=yes,"
                   "StrictHostKeyChecking=no,UserKnownHostsFile=/dev/null,LogLevel=ERROR")
        mounted = subprocess.run(["sshfs", "-o", options,
                                  f"{getpass.getuser()}@127.0.0.1:{self.here}", self.there],
                                 capture_output=True, text=True, check=False)
        if mounted.returncode != 0 or not os.path.ismount(self.there):
            fail("sshfs can't mount: " + mounted.stderr.strip())
        self.mounted = True

    def unmount(self):
        if self.mounted:
            subprocess.run(["fusermount3", "-u", self.there], check=True)
            self.mounted = False

    def round_trip(self):
        """Seconds that one question to the device takes; the least of some."""
        least = float("inf")
        for i in range(20):
            start = time.perf_counter()
            os.path.lexists(f"{self.there}/absent-{i}")
            least = min(least, time.perf_counter() - start)
        return least

    def close(self):
        try:
            self.unmount()
        finally:
            for process in self.processes:
                process.terminate()
            shutil.rmtree(self.base, ignore_errors=True)
