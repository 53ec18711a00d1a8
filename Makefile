# vdpgl's two commands: `make demo` and `make test`. Everything builds into
# build/ with CMake and Ninja; the plug-in ends up at build/libvdpgl.so.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: all deps build test bench bench-frames test-sanitize test-tsan coverage demo clean

all: build

deps:
	@bash scripts/install-deps

$(BUILD)/build.ninja: CMakeLists.txt | deps
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

build: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

# Port benchmarks (Google Benchmark); not part of `make test`.
bench: deps
	cmake -S . -B $(BUILD)-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DVDPGL_BUILD_BENCH=ON -DVDPGL_BUILD_TESTS=OFF
	cmake --build $(BUILD)-bench -j $(JOBS) --target vdpgl_bench
	$(BUILD)-bench/bench/vdpgl_bench $(BENCH_ARGS)

# Whole frames: the stress scenes replayed offscreen by vdpgl-play --bench,
# figures and charts into bench-results/ (SCENES picks some).
bench-frames: deps
	cmake -S . -B $(BUILD)-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DVDPGL_BUILD_BENCH=ON -DVDPGL_BUILD_TESTS=OFF
	cmake --build $(BUILD)-bench -j $(JOBS) --target vdpgl vdpgl-play vdpgl-scenes
	bash scripts/bench-frames $(BUILD)-bench $(SCENES)

# The whole suite built with AddressSanitizer and UndefinedBehaviorSanitizer.
# Leak checking is off: the GL driver unloads itself before the check runs
# and leaves reports that name no module, so they cannot be told apart.
test-sanitize: deps
	cmake -S . -B $(BUILD)-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVDPGL_SANITIZE=address,undefined
	cmake --build $(BUILD)-asan -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=0 ctest --test-dir $(BUILD)-asan --output-on-failure -j $(JOBS)

# The whole suite built with coverage instrumentation (-O0) in its own build
# directory; prints the line and branch coverage of src/ (tests and tools are
# not counted). Counts of an earlier run, and the notes of objects whose
# source is gone, are cleared first.
coverage: deps
	cmake -S . -B $(BUILD)-coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug \
	  -DCMAKE_C_FLAGS="--coverage -O0" -DCMAKE_CXX_FLAGS="--coverage -O0" \
	  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage
	cmake --build $(BUILD)-coverage -j $(JOBS)
	ninja -C $(BUILD)-coverage -t cleandead > /dev/null
	find $(BUILD)-coverage -name '*.gcno' | while read -r n; do [ -e "$${n%.gcno}.o" ] || rm -f "$$n"; done
	find $(BUILD)-coverage -name '*.gcda' -delete
	ctest --test-dir $(BUILD)-coverage --output-on-failure -j $(JOBS)
	gcovr --root . --filter 'src/' --print-summary $(BUILD)-coverage

# The unit tests built with ThreadSanitizer: the threaded ones meet the
# emulation thread as the editor and the control panel do; and the UI tests,
# where the UI thread, the emulation thread and the host's thread meet.
test-tsan: deps
	cmake -S . -B $(BUILD)-tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVDPGL_SANITIZE=thread
	cmake --build $(BUILD)-tsan -j $(JOBS) --target vdpgl_unit_tests vdpgl_ui_tests
	TSAN_OPTIONS="suppressions=$(CURDIR)/tests/tsan-suppressions.txt" $(BUILD)-tsan/tests/vdpgl_unit_tests --gtest_brief=1
	TSAN_OPTIONS="suppressions=$(CURDIR)/tests/tsan-suppressions.txt" $(BUILD)-tsan/tests/vdpgl_ui_tests --gtest_brief=1

# Writes the demo traces and plays the scenes: the sprite showcase, the
# backgrounds scene and the rotation scene, in the display window when there
# is a display (else offscreen), every 10th frame into demo-frames/<scene>/.
# It builds only the plug-in and the two tools it runs, not the test suite.
demo: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS) --target vdpgl vdpgl-play vdpgl-scenes
	@bash scripts/demo $(BUILD)

clean:
	rm -rf $(BUILD) $(BUILD)-bench $(BUILD)-asan $(BUILD)-tsan $(BUILD)-coverage demo-frames bench-results
