# The values that installed files are written with; see CMakeLists.txt.

# The date of what is packaged: SOURCE_DATE_EPOCH where it is set, as by scripts/package.
string(TIMESTAMP KIVO_RELEASE_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP KIVO_RELEASE_TIME "%a, %d %b %Y %H:%M:%S +0000" UTC)

file(READ ${KIVO_PACKAGING}/systemd/confinement.conf KIVO_CONFINEMENT)
string(STRIP "${KIVO_CONFINEMENT}" KIVO_CONFINEMENT)
file(REMOVE_RECURSE ${KIVO_WRITTEN})
file(MAKE_DIRECTORY ${KIVO_WRITTEN})
