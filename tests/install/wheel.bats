#!/usr/bin/env bats
# The Python package as a wheel, built against the installed library and installed without an
# index.
#
# Environment: BUILD_TREE, the build to install; BINDIR and LIBDIR, its folders below the
# prefix; CMAKE; PYTHON; SOURCE_TREE.

bats_require_minimum_version 1.5.0

setup() {
  export PIP_CONFIG_FILE=/dev/null
  unset PYTHONPATH
  cd "$BATS_TEST_TMPDIR" || return
}

@test "Wheel_BuiltAgainstTheInstalledLibrary_CallsADevice" {
  local prefix="$PWD/moved here"
  "$CMAKE" --install "$BUILD_TREE" --prefix "$prefix" >/dev/null
  cp -r "$SOURCE_TREE/python" python # nothing is written into the source tree
  CFLAGS=-O0 PKG_CONFIG_PATH="$prefix/$LIBDIR/pkgconfig" \
    "$PYTHON" -m pip wheel --no-build-isolation --no-deps --no-index --wheel-dir . ./python
  diff <(cd "$SOURCE_TREE/python" && find . | sort) <(cd python && find . | sort)

  "$PYTHON" -m venv --without-pip venv
  "$PYTHON" -m pip --python venv/bin/python install --no-index --no-deps networkgrpc-*.whl
  cat >call.py <<'PROGRAM'
import networkgrpc
from networkgrpc import dante, simulator

with simulator.Simulator() as device:
    device.configure()
    dante.set_name("Hall")
    print(networkgrpc.__version__, device.state()["dante"]["name"])
PROGRAM
  run -0 env LD_LIBRARY_PATH="$prefix/$LIBDIR" PATH="$prefix/$BINDIR:$PATH" venv/bin/python -I call.py
  echo "$output"
  [ "$output" = "$(PKG_CONFIG_PATH="$prefix/$LIBDIR/pkgconfig" pkg-config --modversion NetworkgRPC) Hall" ]
}
