#!/usr/bin/env bash
# bench/content.sh USB_STICK_CHECK REPETITIONS: the stick check of a stick of 200 real pictures
# (the photographs of Debian's lomiri-wallpapers-20.04, 1.4 to 24 megapixels, copied round-robin)
# and the 142 certificates of Debian's ca-certificates, with its content check against
# --no-content on the same stick. Prints, per repetition, "content MS_WITH MS_WITHOUT" (wall
# clock), "contentcpu MS_WITH MS_WITHOUT" (user and system time of all cores) and
# "contentmemory KIB_WITH KIB_WITHOUT" (peak resident memory), the two runs side by side. The
# stick is a temporary folder under TMPDIR (about 300 MiB).
set -euo pipefail
check=$1 repetitions=$2
photos=(/usr/share/backgrounds/*.jpg)
certificates=(/usr/share/ca-certificates/mozilla/*.crt)
[ -e "${photos[0]}" ] || { echo "bench/content.sh: install lomiri-wallpapers-20.04" >&2; exit 2; }
[ -e "${certificates[0]}" ] || { echo "bench/content.sh: install ca-certificates" >&2; exit 2; }

stick=$(mktemp -d)
trap 'rm -rf "$stick" "$stick.time"' EXIT
for i in $(seq 0 199); do
    cp "${photos[i % ${#photos[@]}]}" "$stick/$(printf 'picture-%03d.jpg' "$i")"
done
cp "${certificates[@]}" "$stick/"
echo "content stick: $(find "$stick" -name '*.jpg' | wc -l) pictures, $(find "$stick" -name '*.crt' | wc -l) certificates" >&2

# run ARGS...: "MS CPU_MS KIB" of one run of the check (status 4 is a finding, not a failure)
run() {
    local start end
    start=$(date +%s%N)
    /usr/bin/time -o "$stick.time" -f '%U %S %M' "$check" "$@" "$stick" >/dev/null 2>&1 || true
    end=$(date +%s%N)
    tail -1 "$stick.time" | awk -v ms=$(((end - start) / 1000000)) \
        '{ printf "%d %d %d\n", ms, ($1 + $2) * 1000, $3 }'
}

run >/dev/null # warm the page cache
for _ in $(seq "$repetitions"); do
    read -r with_ms with_cpu with_kib <<<"$(run)"
    read -r without_ms without_cpu without_kib <<<"$(run --no-content)"
    echo "content $with_ms $without_ms"
    echo "contentcpu $with_cpu $without_cpu"
    echo "contentmemory $with_kib $without_kib"
done
