#!/bin/sh
# Throughput of `mapwright convert` beside PROJ's cs2cs on the same job: the
# same 1,000,000 points, UTM zone 37 on Pulkovo 1942 to geographic WGS 84,
# each tool reading a file and writing a file; the best of three runs each.
# Both write longitude and latitude with 8 decimals (about 1 mm); cs2cs also
# writes the height it carries. Prints both times, the ratio, and how far
# the two results lie apart (the library shifts the datum with the standard
# Molodensky formulas, cs2cs with an exact geocentric translation).
#
# Usage: bench/cli_throughput.sh [MAPWRIGHT]    (default build/cli/mapwright)
#        POINTS=200000 bench/cli_throughput.sh  (another count)
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
mw=${1:-$root/build/cli/mapwright}
points=${POINTS:-1000000}
runs=3

[ -x "$mw" ] || { echo "no mapwright at $mw: run 'make build' or give its path" >&2; exit 2; }
command -v cs2cs >/dev/null 2>&1 || { echo "cs2cs is missing: apt-get install proj-bin" >&2; exit 2; }

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
# A private copy of the catalogs and registry: the user's are not touched.
cp -R "$root/data/Auxiliary Data" "$tmp/"
export MAPWRIGHT_APPDIR="$tmp" MAPWRIGHT_REGISTRY="$tmp/registry.sqlite3"

# A 1000 x 1000 grid over zone 37 around Moscow (about 240 km by 410 km),
# easting and northing in metres with millimetres.
awk -v n="$points" 'BEGIN {
  for (i = 0; i < n; i++)
    printf "%.3f %.3f\n", 300000 + (i % 1000) * 237.1234, 6000000 + int(i / 1000) * 411.7617
}' > "$tmp/in.txt"

now() { date +%s.%N; }

# best COMMAND...: the shortest wall time of $runs runs, in seconds.
best() {
  b=""
  i=0
  while [ $i -lt $runs ]; do
    t0=$(now)
    "$@"
    t1=$(now)
    b=$(awk -v a="$t0" -v z="$t1" -v b="$b" 'BEGIN { t = z - a; if (b == "" || t < b) b = t; printf "%.3f", b }')
    i=$((i + 1))
  done
  echo "$b"
}

run_mapwright() {
  "$mw" convert --from 'utm zone=37 north datum="Pulkovo 1942"' --to 'geographic datum="WGS 84"' \
    --lon-first --precision 3 "$tmp/in.txt" > "$tmp/mapwright.txt"
}
run_cs2cs() {
  cs2cs -f %.8f +proj=utm +zone=37 +ellps=krass +towgs84=28,-130,-95 +to +proj=longlat +datum=WGS84 \
    "$tmp/in.txt" > "$tmp/cs2cs.txt"
}

t_mw=$(best run_mapwright)
t_cs=$(best run_cs2cs)

# Both did the same job: the largest distance between their results, metres.
apart=$(paste "$tmp/mapwright.txt" "$tmp/cs2cs.txt" | awk '
  { d2r = 3.141592653589793 / 180
    dx = ($1 - $3) * 111320 * cos($2 * d2r); dy = ($2 - $4) * 110574
    d = sqrt(dx * dx + dy * dy); if (d > m) m = d; n++ }
  END { printf "%.4f", m; if (n != '"$points"') exit 1 }') || { echo "the outputs differ in length" >&2; exit 1; }

echo "points:    $points, UTM zone 37 (Pulkovo 1942) -> geographic (WGS 84), best of $runs runs"
awk -v mw="$t_mw" -v cs="$t_cs" -v n="$points" -v apart="$apart" -v bin="$mw" 'BEGIN {
  printf "mapwright: %7.3f s  %6.2f million points/s  (%s)\n", mw, n / mw / 1e6, bin
  printf "cs2cs:     %7.3f s  %6.2f million points/s  (PROJ)\n", cs, n / cs / 1e6
  printf "ratio mapwright/cs2cs: %.2f (goal: at most 1)\n", mw / cs
  printf "largest distance between the two results: %s m\n", apart
}'
