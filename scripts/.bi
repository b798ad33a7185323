#!/usr/bin/env bash
# Breaks the invariants of an upgrade on purpose, one way after the other, in a copy of the sources,
# and tells which of the simulated histories, and of the staged ones, complain.
#
#   scripts/break-invariants [WORD]
#
#   WORD    only the breaks with that word in their name: "2-" are those of the second invariant
#   --help  this text
#
# docs/upgrade.md has the invariants, tests/upgrade/breaks the breaks. One that nobody complains of
# in 40,000 lives gets 600,000 more; if nobody does then, neither a staged history, this fails. Takes
# a minute or two for each, and some more where many lives are wanted.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

word=""
case ${1-} in
-h | --help) show_help && exit 0 ;;
*) word=${1-} ;;
esac
install_for building running testing
root=$PWD
copy=$scratch/tarn
git clone --quiet "$root" "$copy"
cmake --preset release -S "$copy" -B "$copy/build" -DTARN_BENCHMARKS=OFF >"$scratch/configure.log"
failed=0
for break in "$root"/tests/upgrade/breaks/*"$word"*.patch; do
    name=$(basename "$break" .patch)
    git -C "$copy" checkout --quiet -- src
    git -C "$copy" apply -p1 "$break" || die "$name does not fit the sources any more."
    cmake --build "$copy/build" -t tst_upgrade_simulation -t tst_box_upgrade >"$scratch/build.log" ||
        die "$name does not build: $(tail -n 3 "$scratch/build.log")"
    staged=$("$copy/build/tests/tst_box_upgrade" 2>&1 | grep -c "^FAIL" || true)
    for lives in 40000 600000; do
        TARN_SEED=$lives TARN_LIVES=$lives "$copy/build/tests/tst_upgrade_simulation" \
            >"$scratch/lives.log" 2>&1 || true
        found=$(grep -c "TARN_SEED=" "$scratch/lives.log" || true)
        [ "$found" -eq 0 ] || break
    done
    [ "$((found + staged))" -gt 0 ] || failed=1
    say "$name: $found histories complain, $(sed -nE 's/.*\(\) ([0-9]+ lives).*/\1/p' "$scratch/lives.log")," \
        "$staged staged ones. $(sed -nE 's/.*TARN_SEED=//p' "$scratch/lives.log" | sort -n | head -n 1 | cut -c 1-90)"
done
exit "$failed"
