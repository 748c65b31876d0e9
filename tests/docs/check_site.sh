#!/bin/sh
# Checks the site: its links resolve, a browser shows the start page, the search of a page of tables shows
# the matching rows, and the converter of the catalogue gives the numbers of the library.
#
# usage: check_site.sh SITE CATALOGUE_PROGRAM
site=$1 catalogue=$2
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "site: $*"; failures=$((failures + 1)); }

# dom PAGE: prints the page after its scripts have run, with one tag of a table row on each line.
dom() {
    timeout 120 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
        --disable-background-networking --disable-component-update --disable-sync \
        --user-data-dir="$work/profile" --dump-dom "file://$site/$1" 2>"$work/browser.log" |
        sed 's/<tr/\n<tr/g; s/<\/tr>/<\/tr>\n/g'
}

# Links: each linked file exists, and each linked place in a page.
for page in "$site"/*.html; do
    grep -oE '(href|src)="[^"]*"' "$page" | sed 's/^[^"]*"//; s/"$//' | sort -u |
        while read -r link; do
            file=${link%%#*} file=${file%%\?*} place=
            case $link in
                http:* | https:* | mailto:* | javascript:*) continue ;;
                *\#?*) place=${link#*#} ;;
            esac
            target=${file:-${page##*/}}
            [ -e "$site/$target" ] || { echo "${page##*/}: $link" ; continue; }
            [ -z "$place" ] || grep -qE "(id|name)=\"$place\"" "$site/$target" || echo "${page##*/}: $link"
        done
done >"$work/links"
[ ! -s "$work/links" ] || fail "links that lead nowhere: $(head -5 "$work/links")"

dom index.html >"$work/start"
grep -q 'Every unit is one object' "$work/start" || fail "the start page is not shown"

# The number of visible rows of tables, without header rows.
rows() { grep -E '^<tr class="markdownTableRow' | grep -cv ' hidden'; }
all=$(dom md_docs_catalogue.html | rows)
few=$(dom 'md_docs_catalogue.html?search=sidereal' | rows)
none=$(dom 'md_docs_catalogue.html?search=no+such+unit' | rows)
[ "$all" -gt 650 ] || fail "the catalogue shows $all rows"
[ "$few" -eq 4 ] || fail "a search for \"sidereal\" leaves $few rows, not 4"
[ "$none" -eq 0 ] || fail "a search that matches nothing leaves $none rows"

codes=$(dom md_docs_codes_tables.html | rows)
knots=$(dom 'md_docs_codes_tables.html?search=KNT' | rows)
packs=$(dom 'md_docs_codes_tables.html?search=dozen+pack' | rows)
[ "$codes" -gt 2200 ] || fail "the tables of codes show $codes rows"
[ "$knots" -eq 1 ] || fail "a search for the code KNT leaves $knots rows, not 1"
[ "$packs" -eq 1 ] || fail "a search for the dozen pack leaves $packs rows, not 1"

# compare NUMBER UNIT UNIT_IN_ADDRESS
compare() {
    dom "md_docs_catalogue.html?convert=$1+$3" |
        sed -n 's/^<tr><td>\([^<]*\)<\/td><td>\([^<]*\)<\/td><\/tr>.*/\1\t\2/p' >"$work/shown"
    "$catalogue" convert "$1" "$2" >"$work/given"
    awk -F '\t' '
        NR == FNR { given[$2] = $1; ++units; next }
        {
            ++shown
            off = $1 - given[$2]
            size = given[$2] < 0 ? -given[$2] : given[$2]
            if (!($2 in given) || off > 1e-12 * size || off < -1e-12 * size) {
                print $2 ": the page shows " $1 ", the library gives " given[$2]
                ++wrong
            }
        }
        END { if (shown != units || shown < 7) { print shown " units, not " units; ++wrong } exit wrong > 0 }
    ' "$work/given" "$work/shown" || fail "the page and the library convert $1 $2 differently"
}
compare 2.5 km km
compare 26.5 °C %C2%B0C
compare -40 °C %C2%B0C
compare 1 atm atm
compare 90 ′ %E2%80%B2
compare 1.5 year year
compare 3 l l
compare 7 byte byte

[ $failures -eq 0 ] && echo "site: all well; $all rows in the catalogue, $codes of codes"
exit $((failures > 0))
