#!/usr/bin/env python3
"""Holds the manifests of a download against winget's rules, the download itself and what an install registers.

usage: manifests.py DIST-FOLDER SCENARIO-SETS
"""
import hashlib
import re
import sys
from pathlib import Path

import yaml

# Of each file its type, the keys that it must have beside those of all, and those that it can have.
ALL = 'PackageIdentifier PackageVersion ManifestType ManifestVersion'
FILES = {
    'Tandrel.Lumacap8.yaml': ('version', 'DefaultLocale', ''),
    'Tandrel.Lumacap8.installer.yaml': (
        'installer', 'Installers InstallerType InstallerSwitches AppsAndFeaturesEntries ExpectedReturnCodes Scope',
        'InstallModes UpgradeBehavior UnsupportedArguments ElevationRequirement'),
    'Tandrel.Lumacap8.locale.en-US.yaml': (
        'defaultLocale', 'PackageLocale Publisher PackageName License ShortDescription', 'PublisherUrl'),
}

dist, sets = map(Path, sys.argv[1:])
total = hashlib.sha256((dist / 'Lumacap8Setup.exe').read_bytes()).hexdigest()
assert (dist / 'SHA256SUMS').read_text() == f'{total}  Lumacap8Setup.exe\n'
assert sorted(path.name for path in (dist / 'winget').iterdir()) == sorted(FILES)
manifests = {}
for name, (kind, needed, possible) in FILES.items():
    content = (dist / 'winget' / name).read_bytes()
    assert content[:1] == b'P' and b'\r' not in content and b'@' not in content, name
    manifest = manifests[kind] = yaml.safe_load(content)
    assert set(f'{ALL} {needed}'.split()) <= set(manifest) <= set(f'{ALL} {needed} {possible}'.split()), name
    assert [manifest[key] for key in ALL.split()] == ['Tandrel.Lumacap8', '8.20.1.0', kind, '1.6.0'], name

installer = manifests['installer']
(download,), (entry,) = installer['Installers'], installer['AppsAndFeaturesEntries']
assert download['Architecture'] == 'x64'
assert re.match('https?://', download['InstallerUrl'])
assert download['InstallerSha256'] == total
assert entry.pop('ProductCode') == 'Lumacap 8'
for name, value in entry.items():
    assert f'{name} = {value}\n' in sets.read_text(), name
codes = installer['ExpectedReturnCodes']
assert sorted(code['InstallerReturnCode'] for code in codes) == [1, 2, 0xC0000409]
assert {code['ReturnResponse'] for code in codes} == {'custom'}
switches = installer['InstallerSwitches']
assert switches['Silent'] == switches['SilentWithProgress'] == '-install -s /S'
assert switches['InstallLocation'] == '-instdir "<INSTALLPATH>"'
