"""package_test.py CPACK BUILD SOURCE [--update]: packs BUILD and reads what is in the packages.

--update writes contents.txt, the list of the files that both packages contain.
"""

import gzip
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest
import zipfile

import search_paths

CPACK, BUILD, SOURCE = sys.argv[1:4]
CONTENTS = pathlib.Path(__file__).parent / "contents.txt"
TIME = 1_700_000_000
# Files that only the .deb contains.
DEBIAN_FILES = [
    "share/doc/quenlith/changelog.Debian.gz",
    "share/doc/quenlith/changelog.gz",
    "share/lintian/overrides/quenlith",
]
LIST = "share/doc/quenlith/quenlith.spdx.json"


def output_of(*command):
    environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C"}
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True, env=environment).stdout


def files_below(root):
    """Returns the paths of the files below `root`; a configuration's name is replaced."""
    paths = (path.relative_to(root).as_posix() for path in root.rglob("*") if not path.is_dir())
    return sorted(re.sub(r"QuenlithTargets-\w+", "QuenlithTargets-CONFIGURATION", path) for path in paths)


class Packed:
    """The packages, made once, and what they unpack to."""

    def __init__(self, work):
        self.work = work
        # What is packed must not depend on the mask of the one who packs.
        before = os.umask(0o077)
        try:
            subprocess.run([CPACK, "--config", f"{BUILD}/CPackConfig.cmake", "-B", work],
                           env={**os.environ, "SOURCE_DATE_EPOCH": str(TIME)}, stdout=subprocess.DEVNULL, check=True)
        finally:
            os.umask(before)
        [self.archive] = work.glob("*.tar.gz")
        [self.debian] = work.glob("*.deb")
        with tarfile.open(self.archive) as archive:
            archive.extractall(work / "archive")
        [self.root] = (work / "archive").iterdir()
        subprocess.run(["dpkg-deb", "--extract", self.debian, work / "debian"], check=True)
        self.debian_root = work / "debian" / "usr"
        self.linked = search_paths.linked_files(self.root)


def setUpModule():
    global packed
    work = pathlib.Path(tempfile.mkdtemp(prefix="quenlith_cpack_"))
    unittest.addModuleCleanup(shutil.rmtree, work)
    packed = Packed(work)


class Packages(unittest.TestCase):
    def test_the_packages_contain_the_listed_files(self):
        found = files_below(packed.root)
        if "--update" in sys.argv:
            CONTENTS.write_text("\n".join(found) + "\n")
        self.assertEqual(found, CONTENTS.read_text().splitlines())
        # The man pages of a .deb are compressed.
        debian = [re.sub(r"(share/man/.*)\.gz$", r"\1", path) for path in files_below(packed.debian_root)]
        self.assertEqual(sorted(debian), sorted(found + DEBIAN_FILES))
        self.assertEqual([path.name for path in (packed.work / "debian").iterdir()], ["usr"])

    def test_entries_are_sorted_and_have_one_time_owner_and_mask(self):
        with tarfile.open(packed.archive) as archive:
            members = archive.getmembers()
        self.check_entries(members)
        data = subprocess.run(["dpkg-deb", "--fsys-tarfile", packed.debian], stdout=subprocess.PIPE, check=True)
        path = packed.work / "data.tar"
        path.write_bytes(data.stdout)
        with tarfile.open(path) as archive:
            self.check_entries(archive.getmembers())

    def check_entries(self, members):
        names = [member.name.split("/") for member in members]
        self.assertGreater(len(names), 100)
        self.assertEqual(names, sorted(names))
        for member in members:
            self.assertEqual((member.mtime, member.uid, member.gid, member.uname, member.gname),
                             (TIME, 0, 0, "root", "root"), member.name)
            if not member.issym():
                executable = member.isdir() or member.mode & 0o100
                self.assertEqual(oct(member.mode), oct(0o755 if executable else 0o644), member.name)

    def test_the_parts_of_the_deb_have_one_time_owner_and_mode(self):
        lines = output_of("ar", "tvO", packed.debian).splitlines()
        self.assertEqual([line.split()[0:2] + line.split()[7:8] for line in lines],
                         [["rw-r--r--", "0/0", name] for name in ("debian-binary", "control.tar.gz", "data.tar.gz")])
        self.assertEqual({tuple(line.split()[3:7]) for line in lines}, {("Jan", "1", "00:00", "1970")})

    def test_the_archives_of_bundles_have_one_time_and_mode(self):
        bundles = [path for path in packed.linked if zipfile.is_zipfile(path)]
        self.assertEqual(len(bundles), 3)
        for path in bundles:
            for entry in zipfile.ZipFile(path).infolist():
                self.assertEqual((entry.date_time, entry.extra), ((1980, 1, 1, 0, 0, 0), b""), path)
                mode = 0o40755 if entry.is_dir() else 0o100644
                self.assertEqual(oct(entry.external_attr >> 16), oct(mode), path)

    def test_no_file_contains_a_build_path(self):
        for path in packed.root.rglob("*"):
            if path.is_file() and not path.is_symlink():
                content = self.without_debug_data(path)
                found = [folder for folder in (BUILD, SOURCE, str(packed.work)) if os.fsencode(folder) in content]
                self.assertEqual(found, [], path)

    def without_debug_data(self, path):
        """Returns the content of a file. Only a release build strips the bundles."""
        if path not in packed.linked:
            return path.read_bytes()
        stripped = packed.work / "stripped"
        subprocess.run(["strip", "--strip-debug", "-o", stripped, path], check=True)
        return stripped.read_bytes()

    def test_libraries_are_searched_relative_to_the_file_that_needs_them(self):
        self.assertGreater(len(packed.linked), 5)
        for path in packed.linked:
            for element in search_paths.search_paths(path):
                self.assertRegex(element, r"^\$ORIGIN(/\.\./lib)?$", path)

    def test_only_what_headers_declare_is_exported(self):
        declared = set()
        for header in (packed.root / "include").rglob("*.h*"):
            declared.update(re.findall(r"^namespace ([\w:]+) \{", header.read_text(), re.MULTILINE))
        self.assertGreater(len(declared), 5)
        for path in packed.linked:
            lines = output_of("nm", "--dynamic", "--defined-only", "--demangle", "--format=posix", path).splitlines()
            for line in lines:
                # Weak symbols are templates and inline functions.
                found = re.match(r"(?:(?:(?:typeinfo|vtable|VTT)(?: name)? for|(?:non-)?virtual thunk to) )?(?:std::hash<)?(.+) [TDBR] ", line)
                if found and not found[1].startswith(tuple(f"{name}::" for name in declared)):
                    self.assertRegex(found[1], r"^(_us_|NewInstance_|DeleteInstance_|us)\w+$|^tessera_view_start_server$"
                                     r"|^operator[&|<]{2}\((std::ostream&, )?cppmicroservices::", path)

    def test_the_dependencies_of_the_deb_are_the_packages_of_its_libraries(self):
        depends = output_of("dpkg-deb", "--field", packed.debian, "Depends")
        names = {part.split()[0] for part in depends.split(",")}
        self.assertEqual(names, {"libboost-log1.81.0", "libcpp-httplib0.11", "libc6", "libgcc-s1", "libstdc++6", "libutf8proc2",
                                 "libminizip1"})

    def test_the_change_log_of_the_deb_can_be_read(self):
        folder = packed.debian_root / "share" / "doc" / "quenlith"
        self.assertIn(b"## [Unreleased]", gzip.decompress((folder / "changelog.gz").read_bytes()))
        version = output_of("dpkg-parsechangelog", "--file", self.changelog(folder), "--show-field", "Version")
        self.assertEqual(version.strip(), output_of("dpkg-deb", "--field", packed.debian, "Version").strip())

    def changelog(self, folder):
        target = packed.work / "changelog"
        target.write_bytes(gzip.decompress((folder / "changelog.Debian.gz").read_bytes()))
        return target


class Components(unittest.TestCase):
    """The SPDX file."""

    def setUp(self):
        self.lists = {root: json.loads((root / LIST).read_text()) for root in (packed.root, packed.debian_root)}
        self.list = self.lists[packed.root]
        self.names = {package["SPDXID"]: package["name"] for package in self.list["packages"]}

    def test_every_record_has_the_required_fields(self):
        required = {
            None: ("spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo"),
            "packages": ("SPDXID", "name", "versionInfo", "downloadLocation", "licenseConcluded", "licenseDeclared",
                         "copyrightText", "supplier", "filesAnalyzed"),
            "files": ("SPDXID", "fileName", "checksums", "licenseConcluded", "licenseInfoInFiles", "copyrightText"),
            "relationships": ("spdxElementId", "relationshipType", "relatedSpdxElement"),
        }
        for part, fields in required.items():
            for record in [self.list] if part is None else self.list[part]:
                self.assertEqual([field for field in fields if record.get(field) in (None, "", [])], [], record)
        self.assertEqual((self.list["spdxVersion"], self.list["dataLicense"]), ("SPDX-2.3", "CC0-1.0"))
        self.assertEqual(self.list["creationInfo"]["created"], "2023-11-14T22:13:20Z")

    def test_identifiers_are_well_formed_unique_and_defined(self):
        for record in self.lists.values():
            known = [record["SPDXID"], *(entry["SPDXID"] for entry in record["packages"] + record["files"])]
            self.assertEqual(len(known), len(set(known)))
            for name in known:
                self.assertRegex(name, r"^SPDXRef-[A-Za-z0-9.-]+$")
            for link in record["relationships"]:
                self.assertIn(link["spdxElementId"], known)
                self.assertIn(link["relatedSpdxElement"], known)

    def test_the_files_are_those_of_the_package_with_their_checksums(self):
        for root, record in self.lists.items():
            expected = {
                f"./{path.relative_to(root).as_posix()}": path
                for path in root.rglob("*")
                if path.is_file() and not path.is_symlink() and path != root / LIST
            }
            self.assertEqual({entry["fileName"] for entry in record["files"]}, set(expected))
            for entry in record["files"]:
                content = expected[entry["fileName"]].read_bytes()
                sums = {check["algorithm"]: check["checksumValue"] for check in entry["checksums"]}
                self.assertEqual(sums, {"SHA1": hashlib.sha1(content).hexdigest(),
                                        "SHA256": hashlib.sha256(content).hexdigest()}, entry["fileName"])

    def test_the_verification_code_covers_the_files(self):
        sums = sorted(entry["checksums"][0]["checksumValue"] for entry in self.list["files"])
        [main] = [package for package in self.list["packages"] if package["name"] == "quenlith"]
        self.assertEqual(main["packageVerificationCode"], {
            "packageVerificationCodeValue": hashlib.sha1("".join(sums).encode()).hexdigest(),
            "packageVerificationCodeExcludedFiles": [f"./{LIST}"],
        })

    def related(self, name, kind):
        return {
            self.names[link["relatedSpdxElement"]]
            for link in self.list["relationships"]
            if link["relationshipType"] == kind and self.names.get(link["spdxElementId"]) == name
            and link["relatedSpdxElement"] in self.names
        }

    def test_each_program_and_library_is_a_component(self):
        found = self.related("quenlith", "CONTAINS")
        self.assertEqual(found, {path.name.split(".so")[0] for path in packed.linked})

    def test_the_libraries_that_a_component_loads_are_linked(self):
        expected = {
            "tessera": {"libutf8proc2", "libc6", "libstdc++6", "libgcc-s1", "libquenlith_json"},
            "libquenlith_cppmicroservices": {"libminizip1", "libc6", "libstdc++6"},
            "libquenlith_logging": {"libboost-log1.81.0", "libstdc++6"},
            "libtessera_view_server": {"libcpp-httplib0.11"},
        }
        for name, libraries in expected.items():
            self.assertLessEqual(libraries, self.related(name, "DYNAMIC_LINK"), name)
        self.assertNotIn("libminizip1", self.related("tessera", "DYNAMIC_LINK"))

    def test_code_of_headers_is_part_of_the_components_compiled_with_them(self):
        expected = {
            "tessera": {"libcli11-dev", "libboost1.81-dev"},
            "libquenlith_cppmicroservices": {"nlohmann-json3-dev"},
            "libzqquenlith_build_markup_code": {"librange-v3-dev", "libboost1.81-dev"},
        }
        for name, packages in expected.items():
            self.assertLessEqual(packages, self.related(name, "STATIC_LINK"), name)
        self.assertNotIn("librange-v3-dev", self.related("tessera", "STATIC_LINK"))
        self.assertNotIn("libcli11-dev", self.related("libquenlith_json", "STATIC_LINK"))

    def test_debian_packages_have_the_installed_version(self):
        debian = [package for package in self.list["packages"] if package["SPDXID"].startswith("SPDXRef-Debian-")]
        self.assertGreater(len(debian), 10)
        for package in debian:
            shown = output_of("dpkg-query", "--show", "--showformat", "${Version}\n", package["name"])
            self.assertIn(package["versionInfo"], shown.split(), package["name"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
