# make run   builds the library and the CLI and applies every available effect
#            to the built-in sample picture, writing PNGs to out/, and
#            writes all of them on one contact sheet, out/gallery.png
# make test  builds everything and runs the whole test suite
# make bench builds and runs the benchmarks (with OpenCV beside, when present)
SHELL := /bin/bash
BUILD ?= build
CLI = $(BUILD)/tools/kelvarine

.PHONY: run test bench deps configure

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null

run: configure
	cmake --build $(BUILD) -j2 --target kelvarine_cli
	@mkdir -p out
	@$(CLI) list | awk 'NR > 1 && $$4 == "yes" { id = $$2; $$1 = $$2 = $$3 = $$4 = ""; \
	    sub(/^ +/, ""); gsub(/ /, "_"); print id, $$0 }' | \
	while read -r id name; do \
	  $(CLI) apply "$$id" "out/$$id-$$name.png" && echo "out/$$id-$$name.png"; \
	done
	$(CLI) gallery out/gallery.png

test: configure
	cmake --build $(BUILD) -j2
	ctest --test-dir $(BUILD) -j2 --output-on-failure

bench: deps
	@bash scripts/install-deps.sh libopencv-dev
	cmake -S . -B $(BUILD)-bench -DCMAKE_BUILD_TYPE=Release -DKV_TESTS=OFF -DKV_BENCH=ON >/dev/null
	cmake --build $(BUILD)-bench -j2 --target kelvarine_bench
	$(BUILD)-bench/bench/kelvarine_bench --benchmark_min_time=0.2
