# Sourced: lets CMake compile through ccache, so that what several builds compile alike (packages,
# consumers of a copy of the sources) is compiled once. Values in the environment hold.
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
  export CCACHE_DIR=${CCACHE_DIR-$PWD/build/ccache}
  # By relative paths, the name of a precompiled header is the same in every folder below build/.
  export CCACHE_BASEDIR=${CCACHE_BASEDIR-$PWD}
  # Objects without debugging information do not depend on where they are built; precompiled
  # headers need the rest.
  export CCACHE_NOHASHDIR=${CCACHE_NOHASHDIR-1}
  export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}
fi
