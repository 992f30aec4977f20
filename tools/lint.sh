#!/bin/bash
# Checks the layout of every source with clang-format and the sources of src/ (or the files named)
# with clang-tidy. Needs clang-format-19 and clang-tidy-19; nothing else does.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/release
if [[ ! -f $build/compile_commands.json ]]; then cmake --preset release > /dev/null; fi

files=("$@")
if [[ ${#files[@]} -eq 0 ]]; then
    git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format-19 --dry-run -Werror
    mapfile -t files < <(git ls-files 'src/*.cpp')
fi
# g++ names options that clang does not know.
printf '%s\0' "${files[@]}" |
    xargs -0 -n 4 -P "$(nproc)" clang-tidy-19 -p $build --quiet \
        --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument
