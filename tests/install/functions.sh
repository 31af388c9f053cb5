# Functions for the checks in this folder, which set $source and $work first.
cmake=${CMAKE:-cmake}
cxx=${CXX:-c++}
failures=0

# What has not changed since the last run is not compiled again.
launcher=()
if command -v ccache >/dev/null; then
    launcher=(ccache)
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1
fi

fail() {
    echo "FAIL!  $*"
    failures=$((failures + 1))
}

# quietly COMMAND...: shows the output only if the command fails
quietly() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log"
        echo "FAIL!  $*"
        exit 1
    }
}

# configured SOURCE BUILD [OPTION...]
configured() {
    quietly "$cmake" -G Ninja -S "$1" -B "$2" -DCMAKE_CXX_COMPILER="$cxx" "${@:3}"
}

# answers TEXT PROGRAM [LIBRARIES]: checks that the program, run in a meter, prints the text
answers() {
    local answer
    answer=$("$source/simulator/meter-run" --bind "$work" --setenv LD_LIBRARY_PATH "${3-}" -- \
        "$2" 2>"$work/log") || {
        cat "$work/log"
        fail "$2 does not run"
        return
    }
    [ "$answer" = "$1" ] || fail "$2 answers '$answer'"
}
