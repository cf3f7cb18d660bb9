#!/usr/bin/env bash
# The Debian package as dpkg and lintian see it: built by cpack from a build folder, then
# its control fields, its contents and lintian (errors fail, the rest is shown).
# usage: tests/package/check_package.sh BUILD_DIR DEB_VERSION    (ctest -L package)
set -euo pipefail
build=$(cd "$1" && pwd) version=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/kplan-package-XXXXXX")
trap 'rm -rf "$work"' EXIT
fail() {
    echo "FAIL: $*" >&2
    exit 1
}

if ! cpack -G DEB -B "$work" --config "$build/CPackConfig.cmake" >"$work/cpack.log" 2>&1; then
    cat "$work/cpack.log"
    fail "cpack did not build the package"
fi
deb=$work/kplan_${version}_amd64.deb
[ -f "$deb" ] || fail "no $(basename "$deb") among: $(cd "$work" && echo *.deb)"
echo "package: $(basename "$deb"), $(stat -c %s "$deb") bytes"

dpkg-deb --info "$deb"
field() { dpkg-deb --field "$deb" "$1"; }
[ "$(field Package)" = kplan ] || fail "Package: $(field Package)"
[ "$(field Version)" = "$version" ] || fail "Version: $(field Version)"
[ "$(field Architecture)" = amd64 ] || fail "Architecture: $(field Architecture)"
[[ $(field Maintainer) =~ ^[^\<]+\ \<[^@\>]+@[^\>]+\>$ ]] || fail "Maintainer: $(field Maintainer)"
[ -n "$(field Section)" ] || fail "no Section"
[[ $(field Description) == *$'\n'* ]] || fail "no long Description"
# What dpkg-shlibdeps found the program and the library linked with.
depends=$(field Depends)
for package in libc6 libstdc++6 libgdal libgeos-c libcairo2 libxlsxwriter libfontconfig1; do
    [[ $depends == *"$package"* ]] || fail "Depends lacks $package: $depends"
done
[[ $(field Recommends) == *fonts-noto-cjk* ]] || fail "Recommends: $(field Recommends)"

contents=$(dpkg-deb --contents "$deb")
has() { grep -qE " \./$1( -> .*)?\$" <<<"$contents" || fail "the package lacks /$1"; }
has usr/bin/kplan
has 'usr/lib/(x86_64-linux-gnu/)?libkplan\.so\.[0-9.]+'
has usr/share/man/man1/kplan.1.gz
has usr/share/bash-completion/completions/kplan
has usr/share/doc/kplan/copyright
has usr/share/doc/kplan/changelog.Debian.gz
has 'usr/share/kplan/standards/通用国标/用地分类/2011国标城乡用地类别.txt'
has usr/share/kplan/patterns/kplan.pat
has usr/share/kplan/samples/sample-plan.dxf
owners=$(awk '{print $2}' <<<"$contents" | sort -u)
[ "$owners" = root/root ] || fail "files not owned by root: $owners"

# The page and the completion shipped are those the program makes of itself.
dpkg-deb --fsys-tarfile "$deb" | tar -xf - -C "$work" ./usr/share/man/man1/kplan.1.gz \
    ./usr/share/bash-completion/completions/kplan
zcat "$work/usr/share/man/man1/kplan.1.gz" | cmp - <("$build/cli/kplan" --generate man) ||
    fail "the manual page differs from kplan --generate man"
cmp "$work/usr/share/bash-completion/completions/kplan" \
    <("$build/cli/kplan" --generate complete-bash) ||
    fail "the completion differs from kplan --generate complete-bash"

echo "lintian:"
LC_ALL=C.UTF-8 lintian --fail-on error --display-info "$deb" || fail "lintian reports errors"
echo "OK"
