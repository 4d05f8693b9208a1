#!/usr/bin/env python3
# Holds the manifests of a download against winget's rules, the download itself and what an install registers.
# usage: manifests.py DIST-FOLDER SCENARIO-SETS
import hashlib
import sys
from pathlib import Path

import yaml

ALL = 'PackageIdentifier PackageVersion ManifestType ManifestVersion'
# Of each file its type, the keys that it must have beside those, and those that it can have.
FILES = {
    '': ('version', 'DefaultLocale', ''),
    '.installer': ('installer', 'Installers InstallerType InstallerSwitches AppsAndFeaturesEntries',
                   'ExpectedReturnCodes Scope InstallModes UpgradeBehavior UnsupportedArguments ElevationRequirement'),
    '.locale.en-US': ('defaultLocale', 'PackageLocale Publisher PackageName License ShortDescription', 'PublisherUrl'),
}

dist, sets = map(Path, sys.argv[1:])
total = hashlib.sha256((dist / 'Lumacap8Setup.exe').read_bytes()).hexdigest()
assert (dist / 'SHA256SUMS').read_text() == f'{total}  Lumacap8Setup.exe\n'
for name, (kind, needed, possible) in FILES.items():
    content = (dist / f'winget/Tandrel.Lumacap8{name}.yaml').read_bytes()
    assert content[:1] == b'P' and b'\r' not in content, name
    manifest = yaml.safe_load(content)
    assert set(f'{ALL} {needed}'.split()) <= set(manifest) <= set(f'{ALL} {needed} {possible}'.split()), name
    assert [manifest[key] for key in ALL.split()] == ['Tandrel.Lumacap8', '8.20.1.0', kind, '1.6.0'], name
    if kind == 'installer':
        (download,), (entry,) = manifest['Installers'], manifest['AppsAndFeaturesEntries']
        assert (download['Architecture'], download['InstallerSha256']) == ('x64', total)
        assert entry.pop('ProductCode') == 'Lumacap 8'
        for value in entry:
            assert f'{value} = {entry[value]}\n' in sets.read_text(), value
        assert 0 not in [code['InstallerReturnCode'] for code in manifest['ExpectedReturnCodes']]
