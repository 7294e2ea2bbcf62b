"""Writes the list of what is in a package, in the form SPDX 2.3 JSON.

Lists every file with its checksums, every program and library of ours as a component, and the Debian
packages whose code the components load, contain or were compiled with. All of it is read from the files, the
build and dpkg.
"""

import datetime
import hashlib
import json
import re
import uuid

import built
import debian

NAME = "quenlith"
LICENSE = "Apache-2.0"
PATH = f"share/doc/{NAME}/{NAME}.spdx.json"
UNKNOWN = "NOASSERTION"


def identifier(kind, name):
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def digest(algorithm, content):
    return hashlib.new(algorithm, content).hexdigest()


def file_entry(root, path):
    content = path.read_bytes()
    name = path.relative_to(root).as_posix()
    return {
        "fileName": f"./{name}",
        # Names that differ only in letters that an identifier cannot contain get different identifiers.
        "SPDXID": identifier("File", f"{name}-{digest('sha1', name.encode())[:8]}"),
        "fileTypes": ["BINARY" if built.is_linked(path) or b"\0" in content else "TEXT"],
        "checksums": [
            {"algorithm": form.upper(), "checksumValue": digest(form, content)} for form in ("sha1", "sha256")
        ],
        "licenseConcluded": LICENSE,
        "licenseInfoInFiles": [UNKNOWN],
        "copyrightText": UNKNOWN,
    }


def sha1_of(entry):
    return entry["checksums"][0]["checksumValue"]


def own_package(name, version, files=()):
    """Returns the record of one of our components."""
    record = {
        "name": name,
        "SPDXID": identifier("Package", name),
        "versionInfo": version,
        "supplier": "Organization: Quenlith maintainers",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": bool(files),
        "licenseConcluded": LICENSE,
        "licenseDeclared": LICENSE,
        "copyrightText": UNKNOWN,
    }
    if files:
        sums = "".join(sorted(map(sha1_of, files)))
        record["packageVerificationCode"] = {
            "packageVerificationCodeValue": digest("sha1", sums.encode()),
            **({"packageVerificationCodeExcludedFiles": [f"./{PATH}"]} if name == NAME else {}),
        }
        record["licenseInfoFromFiles"] = [UNKNOWN]
    return record


def debian_package(package):
    name, _, address = package.maintainer.partition(" <")
    record = {
        "name": package.name,
        "SPDXID": identifier("Debian", package.name),
        "versionInfo": package.version,
        "supplier": f"Organization: {name} ({address.rstrip('>')})",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": False,
        "sourceInfo": f"built by Debian from the source package {package.source} {package.source_version}",
        "licenseConcluded": UNKNOWN,
        "licenseDeclared": package.license() or UNKNOWN,
        "licenseComments": f"The licences of each file are in /usr/share/doc/{package.name}/copyright of the "
        "Debian package.",
        "copyrightText": UNKNOWN,
        "externalRefs": [
            {
                "referenceCategory": "PACKAGE-MANAGER",
                "referenceType": "purl",
                "referenceLocator": f"pkg:deb/debian/{package.name}@{package.version}?arch={package.architecture}",
            }
        ],
    }
    if package.homepage:
        record["homepage"] = package.homepage
    return record


def relationship(element, kind, related, comment=None):
    record = {"spdxElementId": element, "relationshipType": kind, "relatedSpdxElement": related}
    if comment:
        record["comment"] = comment
    return record


class Component:
    """One of our programs and libraries, with the paths of what it uses from outside."""

    def __init__(self, root, path, build, starts):
        self.path = path
        self.name = re.sub(r"\.so(\.[0-9.]+)?$", "", path.name)
        output = path.relative_to(root).as_posix()
        known = built.library_paths()
        self.needed = built.needed_libraries(path)
        self.loaded = {known[name] for name in self.needed if name in known}
        self.contained = build.static_libraries_of(output) | starts
        self.headers = build.headers_of(output)

    def paths(self):
        return self.loaded | self.contained | self.headers


class Relations:
    """The relationships of components with each other and with Debian packages."""

    def __init__(self, components, owners, packages):
        self._by_library = {}
        for component in components:
            for name in (component.path.name, re.sub(r"(\.so\.\d+\.\d+)\.\d+$", r"\1", component.path.name)):
                self._by_library[name] = component
        self._owners = owners
        self._packages = packages

    def _owning(self, paths):
        names = {self._owners[path].partition(":")[0] for path in paths if path in self._owners}
        return [self._packages[name] for name in sorted(names)]

    def of(self, component):
        own = identifier("Package", component.name)
        for name in component.needed:
            if name in self._by_library:
                yield relationship(own, "DYNAMIC_LINK", identifier("Package", self._by_library[name].name))
        loaded = self._owning(component.loaded)
        for package in loaded:
            yield relationship(own, "DYNAMIC_LINK", identifier("Debian", package.name))
        for package in self._owning(component.contained):
            yield relationship(own, "STATIC_LINK", identifier("Debian", package.name), "object files")
        yield from self._of_headers(component, own, {package.source for package in loaded})

    def _of_headers(self, component, own, shared_sources):
        for package in self._owning(component.headers):
            target = identifier("Debian", package.name)
            if package.source in shared_sources:
                yield relationship(target, "BUILD_DEPENDENCY_OF", own, "headers of a library that is loaded")
            else:
                yield relationship(own, "STATIC_LINK", target, "inline code of headers")


def all_components(root, options):
    build, starts = built.Build(options.build), built.start_files(options.compiler)
    files = sorted(path for path in root.rglob("*") if built.is_linked(path))
    return [Component(root, path, build, starts) for path in files]


def document(root, options, time):
    paths = sorted(path for path in root.rglob("*") if path.is_file() and not path.is_symlink())
    files = {path: file_entry(root, path) for path in paths if path != root / PATH}
    components = all_components(root, options)
    owners = debian.owners({path for component in components for path in component.paths()})
    packages = debian.read_packages({name for name in owners.values()})
    relations = Relations(components, owners, packages)
    main = own_package(NAME, options.version, list(files.values()))
    records = [main]
    links = [relationship("SPDXRef-DOCUMENT", "DESCRIBES", main["SPDXID"])]
    links += [relationship(main["SPDXID"], "CONTAINS", entry["SPDXID"]) for entry in files.values()]
    for component in components:
        record = own_package(component.name, options.version, [files[component.path]])
        records.append(record)
        links.append(relationship(main["SPDXID"], "CONTAINS", record["SPDXID"]))
        links.append(relationship(record["SPDXID"], "CONTAINS", files[component.path]["SPDXID"]))
        links += relations.of(component)
    records += [debian_package(packages[name]) for name in sorted(packages)]
    return head(options, time, list(files.values()), records, links)


def head(options, time, files, packages, relationships):
    # The same content has the same name.
    content = json.dumps([files, packages, relationships], sort_keys=True)
    name = f"{NAME}-{options.version}-{options.kind.lower()}"
    created = datetime.datetime.fromtimestamp(time, datetime.timezone.utc)
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": name,
        "documentNamespace": f"https://spdx.org/spdxdocs/{name}-{uuid.uuid5(uuid.NAMESPACE_URL, content)}",
        "creationInfo": {
            "created": created.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": [f"Tool: {NAME}-package-{options.version}", "Organization: Quenlith maintainers"],
        },
        "packages": packages,
        "files": files,
        "relationships": relationships,
    }


def write(root, options, time):
    target = root / PATH
    target.parent.mkdir(parents=True, exist_ok=True)
    text = json.dumps(document(root, options, time), indent=1, ensure_ascii=False)
    target.write_text(text + "\n", encoding="utf-8")
