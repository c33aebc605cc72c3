#!/usr/bin/env python3
"""Makes packages from a build: Debian packages (library, -dev, tools) from a Linux build, or a zip file from a Windows
build. The same sources and the same SOURCE_DATE_EPOCH produce the same bytes, in whatever directory they were built.

    SOURCE_DATE_EPOCH=SECONDS dist.py --build FOLDER --out FOLDER --version VERSION (--deb | --zip)
"""
import argparse
import gzip
import hashlib
import os
import pathlib
import shutil
import subprocess
import time
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
EPOCH = int(os.environ["SOURCE_DATE_EPOCH"])
# In the texts, {major} is the major version, which is also the library's SOVERSION.
LIBRARY = "libqamc5032-{major}"
LIBRARY_SHLIBS = "libqamc5032 {major} " + LIBRARY + " (>= {version})\n"
# Package name: component, section, dependencies in addition to those of its programs, short and long description.
PACKAGES = {
    LIBRARY: ("runtime", "libs", "", "operating-system services library",
              "Files, processes, messages, console front ends, tracing, INI files and code\n"
              " pages, with the same behaviour on Linux and Windows."),
    "libqamc5032-dev": ("development", "libdevel", LIBRARY + " (= {version})",
                        "operating-system services library, headers",
                        "What programs need to be built with the library: headers, CMake package,\n pkg-config file."),
    "qamc5032-tools": ("tools", "utils", "", "tools for traces, message catalogs, INI files and dumps",
                       "Programs of the operating-system services library, with manual pages and\n"
                       " completion of their command lines."),
}
CONTROL = """\
Package: {name}
Version: {version}
Architecture: {architecture}
Section: {section}
Priority: optional
Maintainer: The developers of qamc5032 <packages@qamc5032.invalid>
Installed-Size: {size}
{depends}Description: {description}
 {text}
"""


def run(*command, **options):
    return subprocess.run([str(word) for word in command], check=True, text=True, **options)


def install(build, root, *options, **environment):
    shutil.rmtree(root, ignore_errors=True)
    run("cmake", "--install", build, "--strip", *options, stdout=subprocess.DEVNULL, env={**os.environ, **environment})


def files(root):
    return sorted(path for path in root.rglob("*") if not path.is_dir())


def compress(path):
    path.with_name(path.name + ".gz").write_bytes(gzip.compress(path.read_bytes(), 9, mtime=0))
    path.unlink()


def normalize(root):
    for path in [root, *root.rglob("*")]:
        if not path.is_symlink():
            path.chmod(0o755 if path.is_dir() or os.access(path, os.X_OK) else 0o644)
        os.utime(path, (EPOCH, EPOCH), follow_symlinks=False)


def program_dependencies(work, root, library):
    """Returns the packages of the libraries that the programs and libraries of the package are linked with."""
    linked = [path for path in files(root) if not path.is_symlink() and path.read_bytes()[:4] == b"\x7fELF"]
    if not linked:
        return ""
    (work / "debian").mkdir(exist_ok=True)
    (work / "debian/control").write_text("Source: qamc5032\n\nPackage: any\nArchitecture: any\n", encoding="ascii")
    answer = run("dpkg-shlibdeps", "-O", f"-S{work / library}", *linked, cwd=work, stdout=subprocess.PIPE).stdout
    return answer.strip().partition("=")[2]


def add_notices(root, name):
    """Returns the licence and all notices as one text, for the one file where Debian expects them."""
    documents = root / "usr/share/doc"
    shutil.rmtree(documents, ignore_errors=True)
    (documents / name).mkdir(parents=True)
    notices = (ROOT / "LICENSE", ROOT / "THIRD_PARTY_NOTICES.md")
    (documents / name / "copyright").write_bytes(b"\n".join(path.read_bytes() for path in notices))


def deb(build, work, out, version, name):
    component, section, depends, description, text = PACKAGES[name]
    numbers = {"version": version, "major": version.partition(".")[0]}
    name, library = name.format(**numbers), LIBRARY.format(**numbers)
    root = work / name
    install(build, root, "--component", component, DESTDIR=str(root))
    for page in root.glob("usr/share/man/*/*"):
        compress(page)
    add_notices(root, name)
    control = root / "DEBIAN"
    control.mkdir()
    if name == library:
        (control / "shlibs").write_text(LIBRARY_SHLIBS.format(**numbers), encoding="ascii")
        (control / "triggers").write_text("activate-noawait ldconfig\n", encoding="ascii")
    depends = ", ".join(filter(None, [depends.format(**numbers), program_dependencies(work, root, library)]))
    installed = [path for path in files(root) if control not in path.parents]
    sums = [f"{hashlib.md5(path.read_bytes()).hexdigest()}  {path.relative_to(root)}\n"
            for path in installed if not path.is_symlink()]
    (control / "md5sums").write_text("".join(sums), encoding="utf-8")
    architecture = run("dpkg", "--print-architecture", stdout=subprocess.PIPE).stdout.strip()
    size = sum(-(-path.lstat().st_size // 1024) for path in installed)
    (control / "control").write_text(CONTROL.format(
        name=name, version=version, architecture=architecture, section=section, size=size, description=description, text=text,
        depends=f"Depends: {depends}\n" if depends else ""), encoding="utf-8")
    normalize(root)
    run("dpkg-deb", "--root-owner-group", "-Zxz", "--threads-max=1", "--build", root,
        out / f"{name}_{version}_{architecture}.deb")


def zip_file(build, work, out, version):
    root = work / f"qamc5032-{version}-windows-x64"
    install(build, root, "--prefix", root)
    normalize(root)
    with zipfile.ZipFile(out / f"{root.name}.zip", "w") as archive:
        for path in files(root):
            entry = zipfile.ZipInfo(str(path.relative_to(work)), time.gmtime(EPOCH)[:6])
            entry.external_attr = path.stat().st_mode << 16
            archive.writestr(entry, path.read_bytes(), zipfile.ZIP_DEFLATED, 9)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    parser.add_argument("--version", required=True)
    kind = parser.add_mutually_exclusive_group(required=True)
    kind.add_argument("--deb", action="store_true")
    kind.add_argument("--zip", action="store_true")
    arguments = parser.parse_args()
    build, out = arguments.build.resolve(), arguments.out.resolve()
    work = build / "packages"
    out.mkdir(parents=True, exist_ok=True)
    work.mkdir(exist_ok=True)
    os.umask(0o022)
    if arguments.zip:
        zip_file(build, work, out, arguments.version)
    else:
        for name in PACKAGES:
            deb(build, work, out, arguments.version, name)


main()
