#!/usr/bin/env bash
# Runs every fuzz target (a folder of seeds under tests/fuzz/corpus/) for SECONDS each, on the
# libFuzzer build in BUILD. Inputs that crash are kept in BUILD/crashes/; the corpus that grows
# stays in BUILD/corpus/, the seeds are left as they are. With --brief, an input that runs too
# long or needs too much memory does not fail the run: GLPK's MathProg translator can be made to
# loop or allocate without end, and CI only keeps the targets alive.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:?usage: scripts/fuzz.sh SECONDS BUILD [--brief]}
build=${2:?usage: scripts/fuzz.sh SECONDS BUILD [--brief]}
brief=${3:-}
extra=()
[ "$brief" = "--brief" ] && extra=(-timeout_exitcode=0 -print_final_stats=0)
root=$(pwd)
mkdir -p "$build/crashes" "$build/run"
failed=()
for seeds in tests/fuzz/corpus/*/; do
  target=$(basename "$seeds")
  mkdir -p "$build/corpus/$target"
  echo "fuzz $target: ${seconds}s"
  # MathProg can write files of its own: the run's folder is a scratch folder.
  if ! (cd "$build/run" && MODRAKE_FUZZ_TARGET=$target "$root/$build/modrake_fuzz" \
          -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=16384 \
          -artifact_prefix="$root/$build/crashes/$target-" "${extra[@]}" \
          "$root/$build/corpus/$target" "$root/$seeds" >"$root/$build/$target.log" 2>&1); then
    failed+=("$target")
    tail -n 40 "$build/$target.log"
  fi
done
if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzz: failed: ${failed[*]} (inputs in $build/crashes/)"
  exit 1
fi
