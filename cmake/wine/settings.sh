# Where Wine and its files are; sourced by run-wine and prepare-wine, with the programs' word size in $bits.

cache=${DISCOVERY_BUILD_CACHE:-/var/cache/discovery-server-build}

if [ "$bits" = 64 ]; then
    root=/
    loader=/usr/lib/wine/wine64 # Debian has no wine64 command without wine32
    template=$cache/wine64-prefix
else
    loader=/usr/lib/wine/wine
    if [ -x $loader ]; then
        root=/ # the host's own Wine runs 32-bit programs
        template=$cache/wine-prefix-host
    else
        root=$cache/wine-root
        template=$cache/wine-prefix
    fi
fi
server=/usr/lib/wine/wineserver

wine_is_prepared()
{
    [ -x "$root$loader" ] && [ -d "$template" ]
}
