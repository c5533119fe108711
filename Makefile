# Limn's commands. `make demo`, `make test` and those that need more tools install what is missing; the others expect it
# there.

JOBS ?= $(shell nproc)
BUILD := build
LIMN := $(BUILD)/bin/limn
DEMO := $(BUILD)/demo

.PHONY: help demo test test-deep build python deps test-sanitize test-portable test-machines test-web npm web fuzz fuzz-quick bench bench-heights bench-peers plots docs-pictures lint format format-check install deb clean

help: ## Say what there is to make
	@sed -n 's/^\([a-z-]*\):.*## /\1\t/p' $(MAKEFILE_LIST) | column -t -s "$$(printf '\t')"

demo: ## Light the bundled photograph and say where the picture is
	@scripts/deps build
	@$(MAKE) --no-print-directory build TESTS=OFF
	@mkdir -p $(DEMO)
	@$(LIMN) apply --quiet --force --style "Evening Lamp" \
	  --channel resources/photos/still-life-height.png \
	  resources/photos/still-life.jpg -o $(DEMO)/still-life.jpg
	@echo "Lit: $(DEMO)/still-life.jpg   (from resources/photos/still-life.jpg)"

test: deps build ## Build and run every test
	scripts/run-tests $(BUILD) -j $(JOBS) $(CTEST_OPTIONS)

test-deep: ## The long runs: far more of what `make test` tries for a moment; then every machine
	@scripts/deps deep
	@$(MAKE) --no-print-directory build
	scripts/run-tests $(BUILD) -C Deep -L deep $(CTEST_OPTIONS)
	@$(MAKE) --no-print-directory test-machines

TESTS ?= ON
build: ## Build programs into build/bin, modules and libraries into build/lib
	@cmake --preset release -DLIMN_TESTS=$(TESTS) -DLIMN_BENCH=$(TESTS) > $(BUILD).log 2>&1 || { cat $(BUILD).log; rm $(BUILD).log; exit 1; }
	@mkdir -p $(BUILD) && mv $(BUILD).log $(BUILD)/configure.log
	@cmake --build --preset release -j $(JOBS) $(addprefix --target ,$(TARGET))

python: ## Build the Python package into build/lib/python
	@scripts/deps python
	@$(MAKE) --no-print-directory build TESTS=OFF TARGET=limn_python

deps: ## Install the Debian packages that building and testing need
	@scripts/deps

test-sanitize: ## Build with the address and undefined-behaviour sanitizers and run the tests
	cmake --preset sanitize $(SANITIZE_OPTIONS)
	cmake --build --preset sanitize -j $(JOBS)
	ctest --preset sanitize -j $(JOBS)

test-portable: ## Run the tests with 32-bit pointers, and on an emulated 32-bit big-endian machine
	@scripts/deps check
	scripts/test-machines 32-bit big-endian

test-machines: build ## The same, and with clang, the thread sanitizer, valgrind, emulated 64-bit Arm and on Debian 13
	@scripts/deps deep
	scripts/test-machines

npm: ## Build the package for Node and browsers, packed into build-wasm
	@scripts/deps web
	cmake --preset wasm
	cmake --build --preset wasm -j $(JOBS) --target limn_wasm
	cd build-wasm && npm pack --silent ./npm

PAGE_TOOLS := build-wasm/packages/adapters/web
web: npm ## Build the page for browsers into build-wasm/web
	@scripts/npm-packages adapters/web
	@cp adapters/web/build.mjs $(PAGE_TOOLS)
	$(PAGE_TOOLS)/node_modules/.bin/tsc -p adapters/web
	node $(PAGE_TOOLS)/build.mjs . build-wasm/npm/limn.wasm build-wasm/web

test-web: web ## Run the tests of light on WebAssembly, of the package in Node, and of the page in Chromium
	cmake --build --preset wasm -j $(JOBS) --target test_lighting
	ctest --preset wasm
	@scripts/deps
	cmake --preset release > /dev/null
	cmake --build --preset release -j $(JOBS) --target lit_scenes limn
	tests/npm/run build-wasm/limn-*.tgz $(BUILD)/bin/lit_scenes $(LIMN)
	tests/web/run build-wasm/web build-wasm/limn-*.tgz $(BUILD)/bin/lit_scenes $(LIMN)

fuzz: ## Let every fuzzer search for TIME seconds, or RUNS executions
	@scripts/deps check
	scripts/fuzz $(FUZZERS)

fuzz-quick: ## The same for a few seconds each, from one seed
	@scripts/deps check
	TIME=10 SEED=1 scripts/fuzz $(FUZZERS)

bench: build ## Measure the shading, the preview and the editor's canvas
	$(BUILD)/bin/bench_shading
	$(BUILD)/bin/bench_ratios
	$(BUILD)/bin/bench_preview
	$(BUILD)/bin/bench_canvas

bench-heights: build ## Compare heights made of photographs with the true ones
	@scripts/deps python
	cmake --build --preset release -j $(JOBS) --target limn_scenes
	bench/heights $(LIMN) $(BUILD)/bin/limn_scenes

bench-peers: build ## Time limn apply beside other programs, and lights beside theirs
	bench/peers $(LIMN)

plots: build ## Measure and draw what docs/performance.md shows
	bench/plot $(BUILD)/bin/bench_shading docs/pictures/cost-of-lights.svg

docs-pictures: build ## Draw the pictures of docs/ again, as their pages say
	scripts/screenshots $(BUILD)
	scripts/docs --build $(BUILD)

SOURCES = $(shell git ls-files '*.h' '*.hpp' '*.c' '*.cpp')
# Each version lays out a few lines in its own way: what the one of Debian 12 makes of the tree is how it is kept.
CLANG_FORMAT ?= clang-format-14
format: ## Format every source file
	$(CLANG_FORMAT) -i $(SOURCES)

format-check:
	$(CLANG_FORMAT) --dry-run -Werror $(SOURCES)

lint: build ## Run clang-tidy over every source file
	@scripts/deps check
	scripts/lint $(BUILD) $(LINT_FOLDERS)

install: ## Install below PREFIX (default /usr/local), inside DESTDIR if given
	cmake --install $(BUILD) --prefix $(or $(PREFIX),/usr/local)

deb: ## Build Debian packages into build-deb, and check them
	@scripts/deps deb
	scripts/deb build-deb

clean: ## Remove everything that was built
	rm -rf build build-*
