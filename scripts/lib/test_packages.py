"""test_packages.py [--develop] BUILD: installs, runs, upgrades and removes the packages of BUILD.

Each test has a fresh root folder, unpacked from BUILD/debian-12.tar. Prints what was done; the status is
not 0 if something failed.
"""

import argparse
import hashlib
import os
import pathlib
import re
import shutil
import stat
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(__file__).resolve().parents[2]
# What dpkg, apt and ldconfig write for themselves.
VOLATILE = re.compile(
    r"(proc|sys|dev|run|tmp|var/(cache|log|lib/apt)|etc/(ld\.so\.cache|resolv\.conf)"
    r"|var/lib/dpkg/(status|available|lock|triggers|info/format|diversions|statoverride)[^/]*|root)(/|$)"
)
PAGE = SOURCE / "docs" / "install.md"
SAMPLE = 'y = 2 * x  # <@output#double [4,9] {"format":"short"}>\n'


class Failure(Exception):
    pass


def commands_of_page():
    """Returns the commands of each block of the page about installing."""
    return re.findall(r"^```sh\n(.*?)^```$", PAGE.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)


INSTALL_DEB, REMOVE_DEB, INSTALL_ARCHIVE, REMOVE_ARCHIVE = commands_of_page()


def say(text):
    print(text, flush=True)


def require(condition, text):
    if not condition:
        raise Failure(text)
    say(f"  ok: {text}")


class Root:
    """A bare system in a temporary folder."""

    def __init__(self, image):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="root_", dir=image.parent))
        subprocess.run(["tar", "--extract", "--file", image, "--directory", self.path], check=True)
        shutil.copyfile("/etc/resolv.conf", self.path / "etc" / "resolv.conf")
        (self.path / "root" / "sample.py").write_text(SAMPLE)
        options = 'APT::Get::Assume-Yes "true";\nAPT::Install-Recommends "false";\n'
        (self.path / "etc" / "apt" / "apt.conf.d" / "90test").write_text(options)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.path)

    def run(self, *command, status=0):
        """Runs a command in the root, with its own /proc, and returns what it printed."""
        shell = 'mount -t proc proc "$0/proc" && exec chroot "$0" "$@"'
        environment = {
            **{name: text for name, text in os.environ.items() if name.endswith("_proxy")},
            "PATH": "/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
            "DEBIAN_FRONTEND": "noninteractive",
            "LC_ALL": "C.UTF-8",
        }
        done = subprocess.run(
            ["unshare", "--mount", "--pid", "--fork", "bash", "-c", shell, self.path, *map(str, command)],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=environment,
        )
        if done.returncode != status:
            raise Failure(f"{' '.join(map(str, command))}: status {done.returncode}\n{done.stdout}{done.stderr}")
        return done.stdout

    def install(self, *packages):
        self.run("apt-get", "install", *packages)

    def follow(self, commands):
        """Runs the commands of the page in the folder with the package."""
        self.run("sh", "-e", "-c", f"cd /root\n{commands}")

    def add(self, file):
        """Copies a file into the root and returns its path there."""
        shutil.copyfile(file, self.path / "root" / file.name)
        return f"/root/{file.name}"

    def snapshot(self):
        """Returns a description of every file that is not volatile."""
        found = {}
        for path in self.path.rglob("*"):
            name = path.relative_to(self.path).as_posix()
            if not VOLATILE.match(name):
                found[name] = describe(path)
        return found


def describe(path):
    about = path.lstat()
    if stat.S_ISLNK(about.st_mode):
        return os.readlink(path)
    content = hashlib.sha1(path.read_bytes()).hexdigest() if stat.S_ISREG(about.st_mode) else ""
    return f"{about.st_mode:o} {about.st_uid} {about.st_gid} {content}"


def check_runs(root, program):
    for command in (["--version"], ["doctor"], ["check", "/root/sample.py"]):
        root.run(program, *command)
    shown = root.run(program, "parse", "--format", "json", "/root/sample.py")
    require('"OutputNode"' in shown and '"2 * x"' in shown, f"{program} runs, loads its bundles and parses a file")
    root.run(program, "parse", "--format", "json", "/root")
    say(f"  ok: {program} lists a directory")


def require_same(before, after, text):
    names = sorted(name for name in before.keys() | after.keys() if before.get(name) != after.get(name))
    for name in names[:20]:
        say(f"  {name}: {before.get(name, 'missing')} before, {after.get(name, 'missing')} after")
    require(not names, text)


def make_older(package, folder):
    """Returns a package with a lower version and one more file, which an upgrade has to remove."""
    tree, older = folder / "older", folder / "older.deb"
    subprocess.run(["dpkg-deb", "--raw-extract", package, tree], check=True)
    control = tree / "DEBIAN" / "control"
    control.write_text(re.sub(r"^Version: .*$", "Version: 0.0.9-1", control.read_text(), flags=re.MULTILINE))
    (tree / "usr" / "share" / "doc" / "quenlith" / "dropped").write_text("")
    subprocess.run(["dpkg-deb", "--root-owner-group", "--build", tree, older],
                   stdout=subprocess.DEVNULL, check=True)
    return older


def version_in(root):
    return root.run("dpkg-query", "--show", "--showformat", "${Version}", "quenlith")


def test_deb(image, package, develop):
    say(f"{package.name} in a bare Debian 12:")
    with Root(image) as root, tempfile.TemporaryDirectory() as folder:
        root.run("apt-get", "update", "-q")
        before, packages = root.snapshot(), root.run("dpkg", "--get-selections")
        root.install(root.add(make_older(package, pathlib.Path(folder))))
        added = root.run("dpkg", "--get-selections").count("\n") - packages.count("\n")
        require(version_in(root) == "0.0.9-1", f"an older version is installed, {added} packages in all")
        check_runs(root, "tessera")
        root.add(package)
        root.follow(INSTALL_DEB)
        version = subprocess.check_output(["dpkg-deb", "--field", package, "Version"], text=True).strip()
        require(version_in(root) == version, f"it is upgraded to {version}")
        dropped = root.path / "usr" / "share" / "doc" / "quenlith" / "dropped"
        require(not dropped.exists(), "a file that the new version does not contain is gone")
        require(root.run("dpkg", "--verify", "quenlith") == "", "every file is as packed")
        check_runs(root, "tessera")
        if develop:
            check_develops(root)
        root.follow(REMOVE_DEB)
        if develop:
            root.run("apt-get", "purge", "--autoremove", *DEVELOPER_PACKAGES)
        require(root.run("dpkg", "--get-selections") == packages, "after its removal the same packages are installed")
        if not develop:
            require_same(before, root.snapshot(), f"no file is left or changed ({len(before)} compared)")


DEVELOPER_PACKAGES = ("g++", "cmake", "ninja-build", "pkg-config", "zip", "libboost1.81-dev")


def check_develops(root):
    root.install(*DEVELOPER_PACKAGES)
    shutil.copytree(SOURCE / "examples" / "bundles", root.path / "root" / "bundles")
    root.run("cmake", "-S", "/root/bundles", "-B", "/root/made", "-G", "Ninja")
    root.run("cmake", "--build", "/root/made")
    root.run("tessera", "parse", "--bundle", "/root/made/liboutput_data.so", "/root/sample.py")
    say("  ok: the example bundles are built with the package and loaded")
    flags = root.run("pkg-config", "--cflags", "--libs", "quenlith").split()
    (root.path / "root" / "main.cpp").write_text(
        '#include "quenlith/syntax/Marker.hpp"\n'
        'int main() { return quenlith::syntax::Marker(u"<@output#a>").getId() == u"a" ? 0 : 1; }\n'
    )
    root.run("c++", "-std=c++20", "/root/main.cpp", "-o", "/root/main", *flags)
    root.run("/root/main")
    say("  ok: a program is built with the flags of pkg-config and runs")


def test_archive(image, archive, package):
    say(f"{archive.name} in a bare Debian 12:")
    depends = subprocess.check_output(["dpkg-deb", "--field", package, "Depends"], text=True)
    with Root(image) as root:
        root.run("apt-get", "update", "-q")
        root.install(*(part.split()[0] for part in depends.split(",")))
        before = root.snapshot()
        root.add(archive)
        root.follow(INSTALL_ARCHIVE)
        check_runs(root, "tessera")
        root.follow(REMOVE_ARCHIVE)
        require_same(before, root.snapshot(), f"no file is left or changed ({len(before)} compared)")


def test_lintian(package):
    say(f"lintian on {package.name}:")
    done = subprocess.run(["lintian", "--fail-on", "error,warning", "--allow-root", package],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    require(done.returncode == 0 and not done.stdout, f"no message{done.stdout and ', but: '}{done.stdout}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--develop", action="store_true")
    parser.add_argument("build", type=pathlib.Path)
    options = parser.parse_args()
    [package] = (options.build / "packages").glob("*.deb")
    [archive] = (options.build / "packages").glob("*.tar.gz")
    image = options.build / "debian-12.tar"
    failures = 0
    for test in (
        lambda: test_lintian(package),
        lambda: test_deb(image, package, options.develop),
        lambda: test_archive(image, archive, package),
    ):
        try:
            test()
        except Failure as failure:
            say(f"  FAILED: {failure}")
            failures += 1
    say(f"{failures} of 3 tests failed" if failures else "all tests passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
