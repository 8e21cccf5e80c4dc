# Sourced by scripts that build. Where ccache is installed the compiler is called through it; what it
# keeps is found again by every clone, since paths in the clone are taken relative.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
    export CCACHE_DEPEND=1 # what is not kept yet costs hardly more than without
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
fi
