# Where Wine and its files are; sourced by run-wine and prepare-wine.

cache=${DISCOVERY_BUILD_CACHE:-/var/cache/discovery-server-build}
loader=/usr/lib/wine/wine # the 32-bit one; Debian's 64-bit loader has another name

if [ -x $loader ]; then
    root=/ # the host's own Wine runs 32-bit programs
    template=$cache/wine-prefix-host
else
    root=$cache/wine-root
    template=$cache/wine-prefix
fi

wine_is_prepared()
{
    [ -x "$root$loader" ] && [ -d "$template" ]
}
