# The one door to the project. Everything lands in build/; the only thing touched outside is Debian's package database.
SHELL := /bin/bash
.DELETE_ON_ERROR:
.PHONY: help prerequisites build test interruption hostile demo dist wizard screenshots coverage bench lint clean

help:
	@echo 'make demo         install and uninstall silently on a throwaway Windows machine, and show it (about 2 minutes)'
	@echo 'make test         run all tests on throwaway Windows machines (about 5 minutes, 2 of them building)'
	@echo 'make interruption end installs, upgrades and removals at every change they make, run them again (10 minutes)'
	@echo 'make hostile      many more hostile lists and command lines than in the tests (5 minutes)'
	@echo 'make build        build/setup.exe and the sample package build/package/ (one to three minutes)'
	@echo 'make dist         build/dist/: one file to download, its sum, its manifests for winget (1 minute); with'
	@echo '                  PRODUCT=FOLDER of that package, with URL=ADDRESS where it will lie'
	@echo 'make wizard       open the wizard on your display, on a throwaway Windows machine'
	@echo 'make screenshots  take the pictures in docs/images (about 20 seconds)'
	@echo 'make coverage     all tests on a build that counts lines; the report by file (about 5 minutes)'
	@echo 'make bench        time, memory and size against plain counterparts, build/bench/report.md (about 20 minutes)'
	@echo 'make lint         format, static analysis (about 5 minutes)'
	@echo 'make clean        remove build/'

prerequisites:
	@tools/prerequisites.sh

build: prerequisites
	@tools/build.sh release

test: build
	@tools/run-tests.sh release

interruption hostile: build
	@tools/run-tests.sh release --timeout 3600 --tests-regex '^($(if $(filter hostile,$@),Hostile,Interruption))$$'
interruption: export LUMACAP_INTERRUPTIONS ?= 400
hostile: export LUMACAP_HOSTILE_LISTS ?= 200000
hostile: export LUMACAP_HOSTILE_FIRST ?= 20001

demo: prerequisites
	@tools/build.sh release setup sample_package pkgtool player
	@tools/demo.sh

dist: prerequisites
	@tools/build.sh release sample_package pkgtool launch
	@tools/dist.sh

wizard: build
	@tools/wizard.sh

screenshots: build
	@tools/screenshots.sh

coverage: prerequisites
	@tools/build.sh coverage
	@tools/coverage.sh

bench: prerequisites
	@tools/bench.sh

lint: prerequisites
	@tools/lint.sh

clean:
	rm -rf build
