# Sourced by scripts that build. Lets CMake call the compiler through ccache where that is installed.
# Paths below the clone count as relative, so that all clones share what ccache keeps.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
    export CCACHE_DEPEND=1 # spares the preprocessor run of a source that is not kept yet
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
fi
