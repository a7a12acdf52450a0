"""Three hosts for a test: sshd of the test's own user on 127.0.0.2 to 127.0.0.4, each with a home of its own."""

import getpass
import os
import plistlib
import shutil
import socket
import subprocess
from pathlib import Path

# The build of every copy, which differs from its version.
BUILD = "99"
# How often a host looks for a port when others take those that were free.
MOST_PORTS = 5
ADDRESSES = ("127.0.0.2", "127.0.0.3", "127.0.0.4")
SSHD = shutil.which("sshd", path=os.environ.get("PATH", "") + ":/usr/sbin:/usr/local/sbin")
# As root sshd wants a folder of the system's, which a host without the service lacks: it gets one that it alone sees.
PRIVATE_RUN = "[ -d /run/sshd ] || { mount -t tmpfs none /run && mkdir -m 755 /run/sshd; }; exec \"$@\""


class Missing(Exception):
    """Why there can be no hosts here."""


def make_copy(path, version):
    """A copy of Mirror Frame whose program waits until it is ended, when called with "infinity"."""
    (path / "Contents/Linux").mkdir(parents=True)
    information = {"CFBundleIdentifier": "com.tidelark.mirrorframe", "CFBundleExecutable": "Mirror Frame",
                   "CFBundleVersion": BUILD, "CFBundleShortVersionString": version}
    (path / "Contents/Info.plist").write_bytes(plistlib.dumps(information))
    shutil.copy("/bin/sleep", path / "Contents/Linux/Mirror Frame")


def free_port(address):
    with socket.socket() as listener:
        listener.bind((address, 0))
        return listener.getsockname()[1]


class Host:
    """One sshd. Its home is a folder of that name, in which alone copies are searched."""

    def __init__(self, folder, address, command):
        self.address = address
        self.folder = Path(folder) / address
        self.home = self.folder / "home"
        (self.folder / "runtime").mkdir(parents=True, mode=0o700)
        self.home.mkdir()
        self.key = self.folder / "host_key"
        make_key(self.key)
        self.log = self.folder / "log"
        self.authorized, self.command = Path(folder) / "key.pub", command
        self.start()

    def _write_configuration(self):
        environment = {
            "HOME": self.home, "FRAMEKEEPER_LOCAL_COMPUTER": self.home, "XDG_RUNTIME_DIR": self.folder / "runtime",
            "PATH": f"{self.command.parent}:/usr/local/bin:/usr/bin:/bin", "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen",
        }
        (self.folder / "sshd_config").write_text("\n".join([
            f"ListenAddress {self.address}", f"Port {self.port}", f"HostKey {self.key}", "PidFile none", "UsePAM no",
            "StrictModes no", "PasswordAuthentication no", "PermitRootLogin prohibit-password", "MaxStartups 50",
            f"AuthorizedKeysFile {self.authorized}", "Subsystem sftp internal-sftp", "PrintMotd no", "PrintLastLog no",
            "SetEnv " + " ".join(f'"{name}={value}"' for name, value in environment.items()), ""]))

    def start(self):
        """Starts sshd at a port that is free now."""
        self.port = free_port(self.address)
        self._write_configuration()
        server = [SSHD, "-D", "-f", str(self.folder / "sshd_config"), "-E", str(self.log)]
        if os.geteuid() == 0:
            server = ["unshare", "--mount", "sh", "-ec", PRIVATE_RUN, "sh", *server]
        with self.log.open("wb") as log:
            self.server = subprocess.Popen(server, stdin=subprocess.DEVNULL, stderr=log)

    def stop(self):
        self.server.terminate()
        self.server.wait()

    def reason(self):
        """What sshd says of its failure; empty while it runs."""
        if self.server.poll() is None:
            return ""
        return f"sshd ended with {self.server.returncode}: {self.log.read_text(errors='replace').strip()}"


def make_key(path):
    subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", str(path)], check=True, stdin=subprocess.DEVNULL)


class Hosts:
    """All three, with an inventory of them."""

    def __init__(self, folder, command):
        if SSHD is None:
            raise Missing("sshd is not installed (openssh-server)")
        if shutil.which("ssh") is None:
            raise Missing("ssh is not installed (openssh-client)")
        self.folder = Path(folder)
        make_key(self.folder / "key")
        self.hosts = []
        try:
            for address in ADDRESSES:
                self.hosts.append(Host(folder, address, command))
            for host in self.hosts:
                self._reach(host)
            self._write_inventory()
        except BaseException:
            self.stop()
            raise

    def _write_known_hosts(self):
        known = self.folder / "known_hosts"
        known.write_text("".join(f"[{host.address}]:{host.port} {host.key.with_suffix('.pub').read_text()}" for host in self.hosts))
        self.ssh = ["-i", str(self.folder / "key"), "-o", f"UserKnownHostsFile={known}", "-o", "IdentitiesOnly=yes",
                    "-o", "BatchMode=yes", "-F", "none"]

    def _write_inventory(self):
        self.inventory = self.folder / "inventory"
        self.inventory.write_text("[rooms]\n" + "".join(
            f"{host.address} ansible_port={host.port} ansible_remote_tmp={host.folder}/tmp\n" for host in self.hosts) + f"""
[rooms:vars]
ansible_user={getpass.getuser()}
ansible_ssh_common_args='{" ".join(self.ssh)}'
ansible_python_interpreter=/usr/bin/python3
""")

    def _reach(self, host):
        for _ in range(MOST_PORTS):
            self._write_known_hosts()
            if self._answers(host):
                return
            if "Address already in use" not in host.reason():
                break
            host.start()
        raise Missing(host.reason())

    def _answers(self, host):
        """Waits until sshd listens; false if it has ended."""
        while not host.reason():
            done = subprocess.run(["ssh", *self.ssh, "-p", str(host.port), host.address, "echo", '"$HOME"'], text=True,
                                  capture_output=True, stdin=subprocess.DEVNULL)
            said = done.stdout.strip() or done.stderr.strip()
            if said == str(host.home):
                return True
            if "refused" not in said and not host.reason():
                raise Missing(f"no session can be had from sshd here: {said}; {host.log.read_text(errors='replace').strip()}")
        return False

    def stop(self):
        for host in self.hosts:
            host.stop()
