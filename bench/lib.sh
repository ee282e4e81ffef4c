# The common start of the benchmark scripts, sourced by each: strict mode,
# the source tree as working directory, options, usage and the build.
# Copyright 2026 The rastertobrellian authors.
#
# A script sources it first thing:   . "$(dirname "$0")/lib.sh"
set -euo pipefail
bench_script="$(cd "$(dirname "$0")" && pwd)/$(basename "$0")"
cd "$(dirname "$0")/.."

# 'bench_usage' - Print the usage of the running script (its header comment
# from the line "# Usage:" to the end of that comment) and exit with 2.
bench_usage() {
  awk '/^# Usage:/ {on = 1} on && !/^#/ {exit} on' "$bench_script"
  exit 2
}

# 'bench_options OPTIONS ARG ...' - Read the script's options.  OPTIONS is a list
# of LETTER=VARIABLE words: the option -LETTER VALUE sets VARIABLE to VALUE;
# a word ending in "+" (LETTER=VARIABLE+) is a flag without a value that
# sets VARIABLE to 1.  The arguments after the options go into the array
# bench_args.  An unknown option prints the usage and exits with 2.
bench_options() {
  local _bo_table=$1 _bo_letters="" _bo_opt _bo_word _bo_var
  shift
  for _bo_word in $_bo_table; do
    _bo_letters+=${_bo_word%%=*}
    [[ $_bo_word == *+ ]] || _bo_letters+=":"
  done
  OPTIND=1
  while getopts "$_bo_letters" _bo_opt; do
    [ "$_bo_opt" != "?" ] || bench_usage
    for _bo_word in $_bo_table; do
      [ "${_bo_word%%=*}" = "$_bo_opt" ] || continue
      _bo_var=${_bo_word#*=}
      if [[ $_bo_var == *+ ]]; then printf -v "${_bo_var%+}" 1; else printf -v "$_bo_var" '%s' "$OPTARG"; fi
    done
  done
  bench_args=("${@:OPTIND}")
}

# 'bench_configure BUILD' - Configure BUILD as a benchmark build (Release,
# -DBRELLIAN_BUILD_BENCH=ON, its system paths inside itself) unless it is
# one already.
bench_configure() {
  grep -qs '^BRELLIAN_BUILD_BENCH:BOOL=ON$' "$1/CMakeCache.txt" && return 0
  cmake -S . -B "$1" -DBRELLIAN_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release \
    -DBRELLIAN_SYSROOT="$PWD/$1/sysroot" >/dev/null
}

# 'bench_build BUILD TARGET ...' - Build the targets in BUILD, quietly.
bench_build() {
  local build=$1
  shift
  cmake --build "$build" -j2 --target "$@" >/dev/null
}
